#include "collectors/memory/parse.h"

#include <limits>
#include <string_view>

#include "collectors/kit/Text.h"

namespace memory_collector {
namespace {

constexpr std::uint64_t kKilo = 1024;

std::optional<std::uint64_t> Kilobytes(std::string_view text) {
  const auto number = kit::ParseNumber<std::uint64_t>(text);
  if (!number || *number > std::numeric_limits<std::uint64_t>::max() / kKilo) return std::nullopt;
  return *number * kKilo;
}

struct TMemInfoRow {
  const char* label;
  std::optional<std::uint64_t> TMemory::*fact;
};
// Sizes carry the unit "kB", counts none.
constexpr TMemInfoRow kSizes[] = {
    {"MemTotal:",     &TMemory::total       },
    {"MemAvailable:", &TMemory::available   },
    {"MemFree:",      &TMemory::free        },
    {"Buffers:",      &TMemory::buffers     },
    {"Cached:",       &TMemory::cached      },
    {"Shmem:",        &TMemory::shared      },
    {"Slab:",         &TMemory::slab        },
    {"SwapTotal:",    &TMemory::swapTotal   },
    {"SwapFree:",     &TMemory::swapFree    },
    {"Hugepagesize:", &TMemory::hugePageSize},
};
constexpr TMemInfoRow kCounts[] = {
    {"HugePages_Total:", &TMemory::hugePages    },
    {"HugePages_Free:",  &TMemory::freeHugePages},
};

bool IsOctal(char letter) { return letter >= '0' && letter <= '7'; }

// The kernel writes blanks and backslashes as three octal digits: "\040".
std::string Unescape(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    if (text.size() >= 4 && text[0] == '\\' && IsOctal(text[1]) && IsOctal(text[2]) &&
        IsOctal(text[3])) {
      result += static_cast<char>((text[1] - '0') * 64 + (text[2] - '0') * 8 + (text[3] - '0'));
      text.remove_prefix(4);
    } else {
      result += text.front();
      text.remove_prefix(1);
    }
  }
  return result;
}

ESwapType SwapType(std::string_view text) {
  return text == "partition" ? kPartition : text == "file" ? kFile : kUnknownSwap;
}

}  // namespace

TMemory ParseMemInfo(const std::string& text) {
  TMemory memory;
  for (const std::string_view line : kit::Split(text, '\n')) {
    const auto words = kit::Words(line);
    if (words.size() == 3 && words[2] == "kB") {
      for (const TMemInfoRow& row : kSizes) {
        if (words[0] == row.label) memory.*row.fact = Kilobytes(words[1]);
      }
    } else if (words.size() == 2) {
      for (const TMemInfoRow& row : kCounts) {
        if (words[0] == row.label) memory.*row.fact = kit::ParseNumber<std::uint64_t>(words[1]);
      }
    }
  }
  return memory;
}

// The first line holds the headings "Filename", "Type", "Size", "Used" and "Priority".
std::vector<TSwap> ParseSwaps(const std::string& text) {
  std::vector<TSwap> result;
  for (const std::string_view line : kit::Split(text, '\n')) {
    const auto words = kit::Words(line);
    if (words.size() != 5) continue;
    const auto size = Kilobytes(words[2]);
    const auto used = Kilobytes(words[3]);
    const auto priority = kit::ParseNumber<std::int32_t>(words[4]);
    const std::string name = kit::Clean(Unescape(words[0]));
    if (!size || !used || !priority || name.empty()) continue;
    result.push_back({name, SwapType(words[1]), *size, *used, *priority});
  }
  return result;
}

}  // namespace memory_collector
