#pragma once

#include <cstdint>
#include <string>
#include <vector>

// A structure of a firmware table, made field by field: offsets count from its start.
class SmbiosStructure {
 public:
  SmbiosStructure(std::uint8_t type, std::uint16_t handle, std::uint8_t length)
      : fBytes(length, '\0') {
    Byte(0, type).Byte(1, length).Word(2, handle);
  }

  SmbiosStructure& Byte(std::size_t offset, std::uint64_t value) { return Put(offset, value, 1); }
  SmbiosStructure& Word(std::size_t offset, std::uint64_t value) { return Put(offset, value, 2); }
  SmbiosStructure& Dword(std::size_t offset, std::uint64_t value) { return Put(offset, value, 4); }
  SmbiosStructure& Qword(std::size_t offset, std::uint64_t value) { return Put(offset, value, 8); }
  SmbiosStructure& Text(std::size_t offset, const std::string& text) {
    fTexts.push_back(text);
    return Byte(offset, fTexts.size());
  }

  std::string GetBytes() const {
    std::string bytes = fBytes;
    for (const std::string& text : fTexts) bytes += text + '\0';
    if (fTexts.empty()) bytes += '\0';
    return bytes + '\0';
  }

 private:
  SmbiosStructure& Put(std::size_t offset, std::uint64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
      fBytes.at(offset + i) = static_cast<char>(value >> (8 * i) & 0xFF);
    }
    return *this;
  }

  std::string fBytes;
  std::vector<std::string> fTexts;
};

// The structures one after the other, with the end mark.
inline std::string SmbiosTable(const std::vector<SmbiosStructure>& structures) {
  std::string bytes;
  for (const SmbiosStructure& structure : structures) bytes += structure.GetBytes();
  return bytes + SmbiosStructure(127, 0xFEFF, 4).GetBytes();
}
