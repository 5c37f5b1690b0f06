#include "frontend/Findings.h"

#include <fmt/args.h>
#include <fmt/format.h>

#include <algorithm>

#include "frontend/ValueText.h"

namespace zel {
namespace {

constexpr auto kError = TSeverity::kError;
constexpr auto kWarning = TSeverity::kWarning;
constexpr auto kNote = TSeverity::kNote;

struct TRow {
  TRule rule;
  const char* id;
  TSeverity severity;
  const char* text;
};

// In the order of TRule. {} stands for a value; the first of most is where in the model.
constexpr TRow kRows[] = {
    {TRule::kBase,               "base",                kNote,    "declares no KEY qualifier, so '{}' was read before it"         },
    {TRule::kReader,             "reader",              kError,   "{}"                                                            },
    {TRule::kReaderDefault,      "reader-default",      kWarning, "{}"                                                            },
    {TRule::kTooLarge,           "too-large",           kError,   "more than 100 MiB of text, which the reader refuses"           },
    {TRule::kGzipName,           "gzip-name",           kError,
     "the path holds \".gz\", so the reader expects gzip, which this is not"                                                      },
    {TRule::kGzipUnnamed,        "gzip-unnamed",        kError,
     "this is gzip, but the path holds no \".gz\", so the reader takes it for text"                                               },
    {TRule::kGzipDamaged,        "gzip-damaged",        kError,   "the gzip data are cut or damaged"                              },
    {TRule::kByteOrderMark,      "byte-order-mark",     kError,
     "begins with a byte-order mark; the reader wants '<' as the very first byte"                                                 },
    {TRule::kWideEncoding,       "wide-encoding",       kError,   "is in UTF-16; the reader wants UTF-8"                          },
    {TRule::kNul,                "nul",                 kError,   "a NUL byte, which the reader takes for the end of the document"},
    {TRule::kEncoding,           "encoding",            kWarning,
     "says that it is in {}, which is not what the reader goes by: its bytes are taken as they "
     "stand"                                                                                                                      },
    {TRule::kNotWellFormed,      "not-well-formed",     kError,   "no well-formed XML: {}"                                        },
    {TRule::kDocTypeSubset,      "doctype-subset",      kError,
     "declarations inside a DOCTYPE, of which the reader knows nothing; not checked any further"                                  },
    {TRule::kCData,              "cdata",               kError,
     "a CDATA section, at which the reader stops without a word: the rest is not read"                                            },
    {TRule::kDeclaration,        "declaration",         kError,
     "a \"<!\" that begins no comment, at which the reader stops without a word: the rest is not "
     "read"                                                                                                                       },
    {TRule::kAfterRoot,          "after-root",          kWarning,
     "something after the root element, which the reader does not look at"                                                        },
    {TRule::kCharacterReference, "character-reference", kWarning,
     "{}: {} is one byte for the reader, hexadecimal {}"                                                                          },
    {TRule::kStrayText,          "stray-text",          kWarning, "{}: the text '{}' stands where none is read"                   },
    {TRule::kBoolean,            "boolean",             kWarning,
     "{}: '{}' is read as {}: booleans are \"true\" and \"false\" in lower case"                                                  },
    {TRule::kNotANumber,         "not-a-number",        kWarning, "{}: '{}' is no {}; it is read as {}"                           },
    {TRule::kOutOfRange,         "out-of-range",        kWarning,
     "{}: '{}' does not fit into {}; it is read as {}"                                                                            },
    {TRule::kOctal,              "octal",               kWarning, "{}: '{}' begins with 0 and is read as octal, {}"               },
    {TRule::kDateTime,           "datetime",            kWarning, "{}: '{}' is no datetime; it is read as {}"                     },
    {TRule::kDateTimeFields,     "datetime-fields",     kWarning,
     "{}: there is no moment '{}'; the reader takes it as it stands"                                                              },
    {TRule::kIntervalDays,       "interval-days",       kWarning,
     "{}: '{}' is read as an interval of {} days: more than 65535 do not fit"                                                     },
    {TRule::kKeyLost,            "key-lost",            kError,
     "{}: is a key in {}; overridden here without a KEY of its own, it is none any more"                                          },
    {TRule::kQualifierShape,     "qualifier-shape",     kWarning,
     "{}: is declared as {}, so this is read as NULL"                                                                             },
    {TRule::kDuplicateProperty,  "duplicate-property",  kWarning,
     "{}: is given more than once; the last value counts"                                                                         },
    {TRule::kNesting,            "nesting",             kWarning,
     "more than 1000 elements inside each other; not checked any further"                                                         },
};

constexpr bool AreInOrder() {
  std::size_t place = 0;
  for (const TRow& row : kRows) {
    if (row.rule != static_cast<TRule>(place++)) return false;
  }
  return place == static_cast<std::size_t>(TRule::kNesting) + 1;
}
static_assert(AreInOrder());

const TRow& RowOf(TRule rule) { return kRows[static_cast<std::size_t>(rule)]; }

}  // namespace

const char* IdOf(TRule rule) { return RowOf(rule).id; }

const char* TextOf(TRule rule) { return RowOf(rule).text; }

const char* NameOf(TSeverity severity) {
  constexpr const char* kNames[] = {"note", "warning", "error"};
  return kNames[static_cast<std::size_t>(severity)];
}

void TFindings::Add(TRule rule, unsigned long line, const std::vector<std::string>& values) {
  if (++fCounts[rule] > fLimit) return;
  fmt::dynamic_format_arg_store<fmt::format_context> store;
  for (const std::string& value : values) store.push_back(Printable(value));
  const TRow& row = RowOf(rule);
  fKept.push_back({rule, row.severity, line, fmt::vformat(row.text, store)});
}

std::vector<TFinding> TFindings::Sorted() const {
  std::vector<TFinding> sorted = fKept;
  std::stable_sort(sorted.begin(), sorted.end(), [](const TFinding& a, const TFinding& b) {
    const bool isSaidA = a.rule <= TRule::kReaderDefault;
    const bool isSaidB = b.rule <= TRule::kReaderDefault;
    return isSaidA != isSaidB ? isSaidA : !isSaidA && a.line < b.line;
  });
  return sorted;
}

std::size_t TFindings::Count(TSeverity severity) const {
  std::size_t count = 0;
  for (const auto& [rule, number] : fCounts) {
    if (RowOf(rule).severity == severity) count += number;
  }
  return count;
}

std::map<TRule, std::size_t> TFindings::NotKept() const {
  std::map<TRule, std::size_t> notKept;
  for (const auto& [rule, number] : fCounts) {
    if (number > fLimit) notKept[rule] = number - fLimit;
  }
  return notKept;
}

}  // namespace zel
