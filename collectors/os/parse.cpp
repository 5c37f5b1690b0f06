#include "collectors/os/parse.h"

#include <algorithm>

#include "collectors/kit/Text.h"

namespace os_collector {

namespace {

// A value of os-release: bare, in single quotes, or in double quotes with backslashes.
std::string Unquote(std::string_view value) {
  std::string plain;
  char quote = 0;
  for (size_t i = 0; i < value.size(); ++i) {
    const char c = value[i];
    if (c == '\\' && quote != '\'' && i + 1 < value.size()) {
      plain += value[++i];
    } else if (quote ? c == quote : c == '"' || c == '\'') {
      quote = quote ? '\0' : c;
    } else {
      plain += c;
    }
  }
  return plain;
}

TText Find(const std::map<std::string, std::string>& release, const char* name) {
  const auto found = release.find(name);
  return found == release.end() ? std::nullopt : kit::Fact(found->second);
}

void SetDistribution(const TSources& sources, TOperatingSystem& os) {
  const auto release = ParseOsRelease(sources.osRelease.value_or(""));
  os.distribution = Find(release, "ID");
  os.distributionVersion = Find(release, "VERSION_ID");
  os.codename = Find(release, "VERSION_CODENAME");
  os.caption = Find(release, "PRETTY_NAME");
  os.version = Find(release, "VERSION");
  if (!os.version) os.version = os.distributionVersion;
  if (!os.version) os.version = Find(release, "BUILD_ID");  // of distributions without releases
  os.name = Find(release, "NAME").value_or(os.kernelName.value_or("Linux"));
  os.type = ParseOsType(os.distribution.value_or(""), os.architecture.value_or(""));
}

std::optional<int64_t> ParseBootTime(std::string_view statistics) {
  for (const std::string_view line : kit::Split(statistics, '\n')) {
    const auto words = kit::Words(line);
    if (words.size() == 2 && words[0] == "btime") return kit::ParseNumber<int64_t>(words[1]);
  }
  return std::nullopt;
}

// "350735.47 234388.90": seconds since start-up, and idle ones.
std::optional<uint64_t> ParseUptime(std::string_view text) {
  return kit::ParseNumber<uint64_t>(text.substr(0, text.find('.')));
}

bool IsDecimal(std::string_view text) {
  const size_t point = text.find('.');
  const auto isNumber = [](std::string_view digits) {
    return !digits.empty() && std::all_of(digits.begin(), digits.end(), kit::IsDigit);
  };
  return isNumber(text.substr(0, point)) &&
         (point == text.npos || isNumber(text.substr(point + 1)));
}

// "0.75 0.35 0.25 1/25 1747": over 1, 5 and 15 minutes.
void SetLoad(std::string_view text, TOperatingSystem& os) {
  const auto words = kit::Words(text);
  if (words.size() < 3 || !std::all_of(words.begin(), words.begin() + 3, IsDecimal)) return;
  os.load1 = words[0];
  os.load5 = words[1];
  os.load15 = words[2];
}

void SetMemory(std::string_view text, TOperatingSystem& os) {
  const struct {
    std::string_view name;
    std::optional<uint64_t>& bytes;
  } fields[] = {
      {"MemTotal",  os.totalMemory},
      {"MemFree",   os.freeMemory },
      {"SwapTotal", os.totalSwap  },
      {"SwapFree",  os.freeSwap   },
  };
  for (const auto& [name, value] : kit::NamedLines(text)) {
    const auto bytes = kit::ParseKilobytes(value);
    for (const auto& field : fields) {
      if (bytes && field.name == name) field.bytes = bytes;
    }
  }
}

std::optional<kit::TDateTime> Moment(const std::optional<int64_t>& seconds) {
  return seconds ? kit::FromUnixTime(*seconds) : std::nullopt;
}

}  // namespace

std::map<std::string, std::string> ParseOsRelease(std::string_view text) {
  std::map<std::string, std::string> release;
  for (std::string_view line : kit::Split(text, '\n')) {
    line = kit::Trim(line);
    const size_t equals = line.find('=');
    if (line.empty() || line.front() == '#' || equals == line.npos || equals == 0) continue;
    release[std::string(line.substr(0, equals))] = Unquote(line.substr(equals + 1));
  }
  return release;
}

uint16_t ParseOsType(std::string_view distribution, std::string_view architecture) {
  static constexpr struct {
    std::string_view distribution;
    uint16_t narrow, wide;  // on 32 bits, on 64 bits
  } kTypes[] = {
      {"debian",              95,  96 },
      {"ubuntu",              93,  94 },
      {"rhel",                79,  80 },
      {"centos",              106, 107},
      {"ol",                  108, 109},
      {"sles",                84,  85 },
      {"sles_sap",            84,  85 },
      {"suse",                82,  83 },
      {"sled",                82,  83 },
      {"opensuse",            82,  83 },
      {"opensuse-leap",       82,  83 },
      {"opensuse-tumbleweed", 82,  83 },
      {"",                    36,  101}, // any other
  };
  const bool isWide =
      architecture.find("64") != architecture.npos || architecture == "s390x";  // x86_64, riscv64
  const auto* type = std::find_if(std::begin(kTypes), std::end(kTypes) - 1, [&](const auto& row) {
    return row.distribution == distribution;
  });
  return isWide ? type->wide : type->narrow;
}

TOperatingSystem Parse(const TSources& sources) {
  const auto fact = [](const TText& text) { return kit::Fact(text.value_or("")); };
  TOperatingSystem os;
  os.kernelName = fact(sources.kernelName);
  os.kernelRelease = fact(sources.kernelRelease);
  os.kernelVersion = fact(sources.kernelVersion);
  os.architecture = fact(sources.architecture);
  os.bootArguments = fact(sources.bootArguments);
  SetDistribution(sources, os);
  os.bootTime = Moment(ParseBootTime(sources.statistics.value_or("")));
  os.localTime = Moment(sources.now);
  os.uptime = ParseUptime(sources.uptime.value_or(""));
  SetLoad(sources.load.value_or(""), os);
  SetMemory(sources.memory.value_or(""), os);
  os.processes = sources.processes;
  return os;
}

}  // namespace os_collector
