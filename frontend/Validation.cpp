#include "frontend/Validation.h"

#include <fmt/format.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <new>
#include <string_view>

#include "frontend/DocumentText.h"
#include "frontend/ExitCode.h"
#include "frontend/Locations.h"
#include "frontend/Log.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

void ReadBase(TContainer& container, const std::string& path) {
  const auto refuse = [&](const std::string& why) {
    throw TCommandError(
        kExitBadInput,
        Printable(fmt::format("cannot read the base schema '{}': {}; name another with --base",
                              path, why)));
  };
  if (access(path.c_str(), R_OK) != 0) refuse(strerror(errno));
  TLogger::GetInstance()->ClearLog();
  try {
    container.PopulateContainerFromFile(path);
  } catch (const std::exception& error) {
    refuse(WhyFailed(error));
  }
}

void ReadBases(TContainer& container, const TValidationOptions& options, const std::string& text,
               TFindings& findings) {
  for (const std::string& base : options.bases) ReadBase(container, base);
  if (!options.bases.empty() || DeclaresKey(text)) return;
  const std::string base = DefaultLocations().baseSchema;
  findings.Add(TRule::kBase, 0, {base});
  ReadBase(container, base);
}

TCounts CountIn(const TContainer& container) {
  const TCIMClass& root = *container.GetRootClass();
  return {container.EnumerateQualifiers().size(), root.EnumerateSubClasses(true).size(),
          root.EnumerateInstances(true).size()};
}

bool StartsWith(const std::string& text, std::string_view start) {
  return text.compare(0, start.size(), start) == 0;
}

// The line that a message of the reader tells; 0 when it tells none.
unsigned long LineIn(const std::string& message) {
  constexpr std::string_view kWord = " line ";
  unsigned long line = 0;
  const std::size_t at = message.find(kWord);
  if (at == std::string::npos) return 0;
  std::from_chars(message.data() + at + kWord.size(), message.data() + message.size(), line);
  return line;
}

// A message without a line is followed by the one that ends the document at that line.
void AddLog(TFindings& findings) {
  std::vector<TFinding> said;
  for (const ILogger::TLogEntry& entry : TLogger::GetInstance()->GetLog()) {
    if (entry.severity > zelLogWarning) continue;
    if (StartsWith(entry.message, "Previous error was while parsing file ")) continue;
    const bool isDefault = StartsWith(entry.message, "Invalid datetime found on line ");
    said.push_back({isDefault ? TRule::kReaderDefault : TRule::kReader, TSeverity::kError,
                    LineIn(entry.message), entry.message});
  }
  unsigned long line = 0;
  for (auto finding = said.rbegin(); finding != said.rend(); ++finding) {
    if (finding->line == 0) finding->line = line;
    line = finding->line;
  }
  for (const TFinding& finding : said) findings.Add(finding.rule, finding.line, {finding.text});
}

TCounts ReadDocument(TContainer& container, const std::string& path, TFindings& findings) {
  const TCounts before = CountIn(container);
  TLogger::GetInstance()->ClearLog();
  try {
    container.PopulateContainerFromFile(path);
  } catch (const TZELException& error) {
    if (FirstLoggedError().empty()) findings.Add(TRule::kReader, 0, {error.what()});
  }
  AddLog(findings);
  const TCounts after = CountIn(container);
  return {after.qualifiers - before.qualifiers, after.classes - before.classes,
          after.instances - before.instances};
}

// Of the byte at `offset`.
unsigned long LineAt(std::string_view text, std::size_t offset) {
  return 1 + static_cast<unsigned long>(std::count(
                 text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
}

bool IsWide(std::string_view text) {
  const std::string_view mark = text.substr(0, 2);
  return mark == "\xFF\xFE" || mark == "\xFE\xFF";
}

void CheckByteOrderMark(std::string_view text, TFindings& findings) {
  if (text.substr(0, 3) == "\xEF\xBB\xBF") findings.Add(TRule::kByteOrderMark, 1);
}

// The text up to a NUL.
std::string_view CheckNul(std::string_view text, TFindings& findings) {
  const std::size_t nul = text.find('\0');
  if (nul == std::string_view::npos) return text;
  findings.Add(TRule::kNul, LineAt(text, nul));
  return text.substr(0, nul);
}

// Whether the fault is in a "<!" that begins no comment.
bool IsInDeclaration(std::string_view text, std::size_t offset) {
  const std::size_t begin = text.rfind('<', offset);
  return begin != std::string_view::npos && text.substr(begin, 2) == "<!" &&
         text.substr(begin, 4) != "<!--";
}

void AddFault(std::string_view text, const TStrictReader::TFault& fault, TFindings& findings) {
  if (fault.place == TStrictReader::TPlace::kEpilog) {
    findings.Add(TRule::kAfterRoot, fault.line);
  } else if (fault.place == TStrictReader::TPlace::kContent &&
             IsInDeclaration(text, fault.offset)) {
    findings.Add(TRule::kDeclaration, fault.line);
  } else if (fault.offset < text.size() && (text[fault.offset] & 0x80)) {
    findings.Add(TRule::kNotWellFormed, fault.line,
                 {"bytes that are not UTF-8, or not allowed here"});
  } else {
    findings.Add(TRule::kNotWellFormed, fault.line, {fault.reason});
  }
}

// What the document holds, when that is certain.
std::optional<TCounts> CheckText(std::string_view text, TContainer& container,
                                 TFindings& findings) {
  if (IsWide(text)) {
    findings.Add(TRule::kWideEncoding, 1);
    return std::nullopt;
  }
  CheckByteOrderMark(text, findings);
  const std::string_view seen = CheckNul(text, findings);
  TDocumentCheck check(container, findings);
  const auto fault = check.Read(seen, seen.size() == text.size());
  if (fault) AddFault(seen, *fault, findings);
  const bool isTorn = fault && fault->place != TStrictReader::TPlace::kEpilog;
  if (isTorn || check.HasStopped()) return std::nullopt;
  return check.GetCounts();
}

}  // namespace

TValidation Validate(const TInput& input, const TValidationOptions& options) try {
  const TDocumentText document = ReadText(input);
  StartLog("", zelLogStatus);
  TValidation validation{TFindings(options.limit), {}, std::nullopt};
  TFindings& findings = validation.findings;
  TContainer container;
  if (document.fault) {
    findings.Add(*document.fault, 0);
  } else {
    ReadBases(container, options, document.text, findings);
  }
  if (!input.IsStandardInput()) {
    validation.read = ReadDocument(container, input.GetPath(), findings);
  } else if (!document.fault) {
    validation.read = ReadDocument(container, PathOf(KeepText(document.text)), findings);
  }
  if (!document.fault) validation.holds = CheckText(document.text, container, findings);
  return validation;
} catch (const std::bad_alloc& error) {
  throw TCommandError(kExitBadInput, Printable(fmt::format("cannot read '{}': {}", input.GetTitle(),
                                                           WhyFailed(error))));
}

}  // namespace zel
