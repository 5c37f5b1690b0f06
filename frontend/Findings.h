#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace zel {

// What can be said of a document. The table in Findings.cpp gives each its name and its text.
enum class TRule {
  kBase,
  kReader,
  kReaderDefault,
  kTooLarge,
  kGzipName,
  kGzipUnnamed,
  kGzipDamaged,
  kByteOrderMark,
  kWideEncoding,
  kNul,
  kEncoding,
  kNotWellFormed,
  kDocTypeSubset,
  kCData,
  kDeclaration,
  kAfterRoot,
  kCharacterReference,
  kStrayText,
  kBoolean,
  kNotANumber,
  kOutOfRange,
  kOctal,
  kDateTime,
  kDateTimeFields,
  kIntervalDays,
  kKeyLost,
  kQualifierShape,
  kDuplicateProperty,
  kNesting,
};

enum class TSeverity { kNote, kWarning, kError };

struct TFinding {
  TRule rule;
  TSeverity severity;
  unsigned long line;
  std::string text;
};

// The name by which people and programs tell findings apart.
const char* IdOf(TRule rule);
// Of a rule without values.
const char* TextOf(TRule rule);
const char* NameOf(TSeverity severity);

// All findings of one document. No more than `limit` of each rule are kept, the others are counted:
// a document can hold millions.
class TFindings {
 public:
  explicit TFindings(std::size_t limit) : fLimit(limit) {}

  // The values fill the places in the rule's text; all are made printable.
  void Add(TRule rule, unsigned long line, const std::vector<std::string>& values = {});

  // What the reader said first, then by line.
  std::vector<TFinding> Sorted() const;
  std::size_t Count(TSeverity severity) const;
  // How many of each rule were not kept.
  std::map<TRule, std::size_t> NotKept() const;
  bool IsClean() const { return Count(TSeverity::kError) + Count(TSeverity::kWarning) == 0; }

 private:
  std::size_t fLimit;
  std::vector<TFinding> fKept;
  std::map<TRule, std::size_t> fCounts;
};

}  // namespace zel
