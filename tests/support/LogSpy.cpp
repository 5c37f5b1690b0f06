#include "tests/support/LogSpy.h"

#include <fstream>

#include "zelcore/TLogger.h"

namespace {

TLogger& Logger() {
  if (!TLogger::GetInstance()) TLogger::Initialize();
  return *TLogger::GetInstance();
}

template <class TTest>
std::vector<std::string> LinesThat(TTest test) {
  std::vector<std::string> lines;
  for (const ILogger::TLogEntry& entry : Logger().GetLog()) {
    if (test(entry)) lines.push_back(entry.message);
  }
  return lines;
}

}  // namespace

void RestartLog() {
  delete TLogger::GetInstance();
  TLogger::Initialize();
}

void SetLogThreshold(zelLogSeverity threshold) { Logger().SetLogThreshold(threshold); }

void ClearLog() { Logger().ClearLog(); }

std::string LastLogLine() {
  const auto& log = Logger().GetLog();
  return log.empty() ? "" : log.back().message;
}

int LastLogSeverity() {
  const auto& log = Logger().GetLog();
  return log.empty() ? -1 : log.back().severity;
}

std::vector<std::string> LogLines() {
  return LinesThat([](const ILogger::TLogEntry&) { return true; });
}

std::vector<std::string> LogLines(zelLogSeverity severity) {
  return LinesThat([=](const ILogger::TLogEntry& entry) { return entry.severity == severity; });
}

LogFile::LogFile(zelLogSeverity threshold) {
  SetLogThreshold(threshold);
  Logger().SetLogFilename(fDir.PathOf("log"));
}

std::vector<std::string> LogFile::Lines() const {
  std::ifstream file(fDir.PathOf("log"));
  std::vector<std::string> lines;
  std::string line;
  std::getline(file, line);  // the banner
  while (std::getline(file, line)) lines.push_back(line);
  return lines;
}
