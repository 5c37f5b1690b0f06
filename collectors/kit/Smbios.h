#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "collectors/kit/Files.h"
#include "collectors/kit/Text.h"

// The firmware's table of the machine's parts. A structure is a formatted part (type, length,
// handle, fields) and a set of texts, to which fields refer by number, from 1:
//
//   type, length, handle (2 bytes) | fields ... | "text 1" 0 "text 2" 0 0
//
// Nothing in it is believed: every length is checked against what is really there, and a field that
// the structure is too short for is absent.
namespace kit {

struct TSmbiosStructure {
  uint8_t type = 0;
  uint16_t handle = 0;
  std::string bytes;  // the formatted part, its four bytes of header included
  std::vector<std::string> strings;

  // Fields, little-endian, at an offset from the start of the structure.
  std::optional<uint8_t> Byte(size_t offset) const { return Field<uint8_t>(offset); }
  std::optional<uint16_t> Word(size_t offset) const { return Field<uint16_t>(offset); }
  std::optional<uint32_t> Dword(size_t offset) const { return Field<uint32_t>(offset); }
  std::optional<uint64_t> Qword(size_t offset) const { return Field<uint64_t>(offset); }

  // The text that the field refers to; nothing for a number without one or a placeholder.
  std::optional<std::string> Text(size_t offset) const {
    const auto number = Byte(offset);
    if (!number || *number == 0 || *number > strings.size()) return std::nullopt;
    return Fact(std::string_view(strings[*number - 1u]));
  }

 private:
  template <class TNumber>
  std::optional<TNumber> Field(size_t offset) const {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(TNumber)) return std::nullopt;
    TNumber number = 0;
    for (size_t i = sizeof(TNumber); i-- > 0;) {
      number = static_cast<TNumber>(static_cast<uint64_t>(number) << 8 |
                                    static_cast<unsigned char>(bytes[offset + i]));
    }
    return number;
  }
};

struct TSmbios {
  // Of the SMBIOS version that the table follows; 0.0 when the entry point does not tell.
  unsigned major = 0;
  unsigned minor = 0;
  std::vector<TSmbiosStructure> structures;  // as they stand in the table

  std::vector<const TSmbiosStructure*> OfType(uint8_t type) const {
    std::vector<const TSmbiosStructure*> found;
    for (const TSmbiosStructure& structure : structures) {
      if (structure.type == type) found.push_back(&structure);
    }
    return found;
  }

  const TSmbiosStructure* First(uint8_t type) const {
    const auto found = OfType(type);
    return found.empty() ? nullptr : found.front();
  }
};

namespace detail {

constexpr size_t kSmbiosHeaderSize = 4;
constexpr uint8_t kSmbiosEndOfTable = 127;

// Takes the texts that `rest` begins with, up to and including the empty one that ends them.
inline std::vector<std::string> TakeSmbiosStrings(std::string_view& rest) {
  std::vector<std::string> strings;
  for (;;) {
    const size_t end = std::min(rest.find('\0'), rest.size());
    const std::string_view text = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (text.empty()) break;
    strings.emplace_back(text);
  }
  // A structure without any text ends with two zero bytes all the same.
  if (strings.empty() && !rest.empty() && rest.front() == '\0') rest.remove_prefix(1);
  return strings;
}

}  // namespace detail

// The structures of a raw table up to its end mark or the first one that does not fit.
inline std::vector<TSmbiosStructure> ParseSmbiosTable(std::string_view table) {
  std::vector<TSmbiosStructure> structures;
  while (table.size() >= detail::kSmbiosHeaderSize) {
    const size_t length = static_cast<unsigned char>(table[1]);
    if (length < detail::kSmbiosHeaderSize || length > table.size()) break;
    TSmbiosStructure structure;
    structure.bytes = std::string(table.substr(0, length));
    structure.type = *structure.Byte(0);
    structure.handle = *structure.Word(2);
    table.remove_prefix(length);
    structure.strings = detail::TakeSmbiosStrings(table);
    if (structure.type == detail::kSmbiosEndOfTable) break;
    structures.push_back(std::move(structure));
  }
  return structures;
}

// The structures together with the version that the entry point tells, in its 64-bit form ("_SM3_")
// or the older one ("_SM_").
inline TSmbios ParseSmbios(std::string_view entryPoint, std::string_view table) {
  TSmbios smbios;
  const auto version = [&](size_t offset) {
    if (entryPoint.size() < offset + 2) return;
    smbios.major = static_cast<unsigned char>(entryPoint[offset]);
    smbios.minor = static_cast<unsigned char>(entryPoint[offset + 1]);
  };
  if (StartsWith(entryPoint, "_SM3_")) {
    version(7);
  } else if (StartsWith(entryPoint, "_SM_")) {
    version(6);
  }
  smbios.structures = ParseSmbiosTable(table);
  return smbios;
}

constexpr const char* kSmbiosTable = "/sys/firmware/dmi/tables/DMI";
constexpr const char* kSmbiosEntryPoint = "/sys/firmware/dmi/tables/smbios_entry_point";

// The machine's table; nothing when it has none or only root may read it (see NeedsRoot()).
inline std::optional<TSmbios> ReadSmbios() {
  const auto table = ReadFile(kSmbiosTable);
  if (!table) return std::nullopt;
  return ParseSmbios(ReadFile(kSmbiosEntryPoint).value_or(""), *table);
}

}  // namespace kit
