#include "collectors/system/parse.h"

#include <algorithm>
#include <set>

#include "collectors/kit/Smbios.h"
#include "collectors/kit/Text.h"

namespace system_collector {

namespace {

// ---- Firmware ----

constexpr uint8_t kBiosPart = 0, kSystemPart = 1, kBoardPart = 2, kChassisPart = 3;

// Where a text is found: the kernel's file of it, and its place in the firmware's table. Files that
// the kernel does not have are null.
struct TField {
  const char* file;
  size_t offset;
};

// Texts from the firmware's table where it can be read, from the kernel's files otherwise.
class TFirmware {
 public:
  explicit TFirmware(const TSources& sources)
      : fDmi(sources.dmi),
        fSmbios(kit::ParseSmbios(sources.smbiosEntryPoint, sources.smbiosTable.value_or(""))) {}

  // The structures of a type; a null one, which stands for the kernel's files, if there is none.
  std::vector<const kit::TSmbiosStructure*> Parts(uint8_t type) const {
    auto parts = fSmbios.OfType(type);
    if (parts.empty()) parts.push_back(nullptr);
    return parts;
  }

  TText Text(const kit::TSmbiosStructure* part, const TField& field) const {
    if (part) return part->Text(field.offset);
    return field.file ? kit::Fact(File(field.file).value_or("")) : std::nullopt;
  }

  TText File(const char* name) const {
    const auto found = fDmi.find(name);
    return found == fDmi.end() ? std::nullopt : TText(found->second);
  }

  // Since version 2.6 the first three groups of a UUID are little-endian.
  bool HasLittleEndianUuids() const {
    return fSmbios.major > 2 || (fSmbios.major == 2 && fSmbios.minor >= 6);
  }

 private:
  const std::map<std::string, std::string>& fDmi;
  kit::TSmbios fSmbios;
};

TText FormatUuid(const kit::TSmbiosStructure& part, bool isLittleEndian) {
  constexpr size_t kOffset = 0x08;
  static constexpr size_t kAsStored[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  static constexpr size_t kSwapped[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  const size_t* order = isLittleEndian ? kSwapped : kAsStored;
  std::string text;
  for (size_t i = 0; i < 16; ++i) {
    const auto byte = part.Byte(kOffset + order[i]);
    if (!byte) return std::nullopt;
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += "0123456789abcdef"[*byte >> 4];
    text += "0123456789abcdef"[*byte & 15];
  }
  return ParseUuid(text);
}

void SetFirmwareIdentity(const TFirmware& firmware, TComputer& computer) {
  const auto* part = firmware.Parts(kSystemPart).front();
  computer.manufacturer = firmware.Text(part, {"sys_vendor", 0x04});
  computer.productName = firmware.Text(part, {"product_name", 0x05});
  computer.version = firmware.Text(part, {"product_version", 0x06});
  computer.serialNumber = firmware.Text(part, {"product_serial", 0x07});
  computer.skuNumber = firmware.Text(part, {"product_sku", 0x19});
  computer.family = firmware.Text(part, {"product_family", 0x1A});
  computer.uuid = part ? FormatUuid(*part, firmware.HasLittleEndianUuids())
                       : ParseUuid(firmware.File("product_uuid").value_or(""));
}

std::optional<TBios> MakeBios(const TSources& sources, const TFirmware& firmware,
                              const TComputer& computer) {
  const auto* part = firmware.Parts(kBiosPart).front();
  TBios bios;
  bios.manufacturer = firmware.Text(part, {"bios_vendor", 0x04});
  bios.version = firmware.Text(part, {"bios_version", 0x05});
  bios.releaseDate = ParseBiosDate(firmware.Text(part, {"bios_date", 0x08}).value_or(""));
  bios.machineTypeModel = ParseMachineTypeModel(computer.productName, computer.skuNumber);
  const bool isKnown =
      bios.manufacturer || bios.version || bios.releaseDate || bios.machineTypeModel;
  if (!isKnown && !sources.isUefi) return std::nullopt;

  bios.mode = sources.isUefi ? EFirmwareMode::Uefi : EFirmwareMode::Bios;
  constexpr size_t kAttributes = 4;
  if (sources.secureBoot && sources.secureBoot->size() == kAttributes + 1) {
    bios.secureBoot = (*sources.secureBoot)[kAttributes] == 1;
  }
  return bios;
}

std::vector<TBoard> MakeBoards(const TFirmware& firmware) {
  std::vector<TBoard> boards;
  for (const auto* part : firmware.Parts(kBoardPart)) {
    TBoard board;
    board.manufacturer = firmware.Text(part, {"board_vendor", 0x04});
    board.model = firmware.Text(part, {"board_name", 0x05});
    board.version = firmware.Text(part, {"board_version", 0x06});
    board.serialNumber = firmware.Text(part, {"board_serial", 0x07});
    board.assetTag = firmware.Text(part, {"board_asset_tag", 0x08});
    if (board.manufacturer || board.model || board.version || board.serialNumber) {
      board.tag = "Base Board " + std::to_string(boards.size());
      boards.push_back(std::move(board));
    }
  }
  return boards;
}

// The type without the bit that tells of a lock.
std::optional<uint16_t> ChassisType(const TFirmware& firmware, const kit::TSmbiosStructure* part) {
  constexpr uint16_t kLock = 0x80;
  auto type = kit::ParseNumber<uint16_t>(firmware.File("chassis_type").value_or(""));
  if (part) type = part->Byte(0x05);
  if (!type || (*type & ~kLock) == 0) return std::nullopt;
  return static_cast<uint16_t>(*type & ~kLock);
}

std::vector<TChassis> MakeChassis(const TFirmware& firmware) {
  std::vector<TChassis> all;
  for (const auto* part : firmware.Parts(kChassisPart)) {
    TChassis chassis;
    chassis.manufacturer = firmware.Text(part, {"chassis_vendor", 0x04});
    chassis.version = firmware.Text(part, {"chassis_version", 0x06});
    chassis.serialNumber = firmware.Text(part, {"chassis_serial", 0x07});
    chassis.assetTag = firmware.Text(part, {"chassis_asset_tag", 0x08});
    chassis.type = ChassisType(firmware, part);
    if (part) {
      // The SKU follows a list of contained elements, whose count and size stand before it.
      const size_t list = size_t{part->Byte(0x13).value_or(0)} * part->Byte(0x14).value_or(0);
      chassis.skuNumber = part->Text(0x15 + list);
    }
    if (chassis.manufacturer || chassis.version || chassis.serialNumber || chassis.type) {
      chassis.tag = "Chassis " + std::to_string(all.size());
      all.push_back(std::move(chassis));
    }
  }
  return all;
}

// ---- Device tree ----

// The first of the zero-terminated texts of a property.
TText DeviceTreeText(const TSources& sources, const char* name) {
  const auto found = sources.deviceTree.find(name);
  if (found == sources.deviceTree.end()) return std::nullopt;
  return kit::Fact(kit::Split(found->second, '\0').front());
}

void SetIdentity(const TSources& sources, const TFirmware& firmware, TComputer& computer) {
  SetFirmwareIdentity(firmware, computer);
  if (computer.productName || computer.manufacturer || computer.uuid || computer.serialNumber) {
    computer.identitySource = "SMBIOS";
    return;
  }
  computer.productName = DeviceTreeText(sources, "model");
  computer.serialNumber = DeviceTreeText(sources, "serial-number");
  computer.identitySource = computer.productName ? "device tree" : "none";
}

// ---- Kernel ----

std::optional<uint64_t> ParseTotalMemory(const TSources& sources) {
  for (const auto& [name, value] : kit::NamedLines(sources.memoryInfo)) {
    if (name == "MemTotal") return kit::ParseKilobytes(value);
  }
  return std::nullopt;
}

void CountProcessors(const TSources& sources, TComputer& computer) {
  std::set<uint32_t> packages;
  uint32_t logical = 0;
  const auto add = [&](std::string_view id) {
    if (const auto number = kit::ParseNumber<uint32_t>(id)) packages.insert(*number);
  };
  for (const std::string& id : sources.packageIds) add(id);
  const bool isTold = !packages.empty();
  for (const auto& [name, value] : kit::NamedLines(sources.cpuInfo)) {
    if (name == "processor") ++logical;
    if (name == "physical id" && !isTold) add(value);
  }
  if (!packages.empty()) computer.processors = static_cast<uint32_t>(packages.size());
  if (logical > 0) computer.logicalProcessors = logical;
}

TText ParseMachineId(const TText& text) {
  const bool isId =
      text && text->size() == 32 && text->find_first_not_of("0123456789abcdef") == text->npos;
  return isId ? kit::Fact(*text) : std::nullopt;  // before the first start it is "uninitialized"
}

}  // namespace

TText ParseMachineTypeModel(const TText& productName, const TText& skuNumber) {
  constexpr size_t kLength = 7, kTypeLength = 4;
  const std::string product = productName.value_or("");
  const size_t bracket = product.find("-[");
  if (bracket != product.npos && product.size() >= bracket + 2 + kLength) {
    const std::string code = product.substr(bracket + 2, kLength);
    const bool isCode =
        std::all_of(code.begin(), code.begin() + kTypeLength, kit::IsAlphanumeric) &&
        std::all_of(code.begin() + kTypeLength, code.end(),
                    [](char c) { return kit::IsAlphanumeric(c) || c == ' '; });
    if (isCode) return code;
  }
  const bool isSku = skuNumber && skuNumber->size() == kLength &&
                     std::all_of(skuNumber->begin(), skuNumber->end(), kit::IsAlphanumeric);
  return isSku ? skuNumber : std::nullopt;
}

std::optional<kit::TDateTime> ParseBiosDate(std::string_view text) {
  const auto parts = kit::Split(kit::Trim(text), '/');
  if (parts.size() != 3) return std::nullopt;
  const auto month = kit::ParseNumber<uint16_t>(parts[0]);
  const auto day = kit::ParseNumber<uint16_t>(parts[1]);
  auto year = kit::ParseNumber<uint16_t>(parts[2]);
  if (!month || !day || !year) return std::nullopt;
  if (parts[2].size() == 2) year = static_cast<uint16_t>(*year + 1900);
  if (*year < 1970 || *year > 9999 || *month < 1 || *month > 12) return std::nullopt;
  const bool isLeapYear = (*year % 4 == 0 && *year % 100 != 0) || *year % 400 == 0;
  static constexpr uint16_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (*day < 1 || *day > kDays[*month - 1] + (*month == 2 && isLeapYear)) return std::nullopt;
  kit::TDateTime date;
  date.year = *year;
  date.month = *month;
  date.day = *day;
  return date;
}

TText ParseUuid(std::string_view text) {
  const std::string uuid = kit::LowerCase(kit::Trim(text));
  if (uuid.size() != 36) return std::nullopt;
  std::string digits;
  for (size_t i = 0; i < uuid.size(); ++i) {
    const bool isDash = i == 8 || i == 13 || i == 18 || i == 23;
    if (isDash != (uuid[i] == '-')) return std::nullopt;
    if (!isDash) digits += uuid[i];
  }
  if (digits.find_first_not_of("0123456789abcdef") != digits.npos) return std::nullopt;
  if (digits.find_first_not_of('0') == digits.npos) return std::nullopt;
  if (digits.find_first_not_of('f') == digits.npos) return std::nullopt;
  return uuid;
}

TSystem Parse(const TSources& sources) {
  const TFirmware firmware(sources);
  TSystem system;
  TComputer& computer = system.computer;
  computer.name = sources.hostName;
  computer.machineId = ParseMachineId(sources.machineId);
  SetIdentity(sources, firmware, computer);
  // Without any trace of the hardware there is nothing to tell physical from virtual by.
  if (!sources.cpuInfo.empty() || !sources.dmi.empty() || !sources.deviceTree.empty()) {
    computer.virtualization = ParseVirtualization(sources);
  }
  computer.containerType = ParseContainerType(sources);
  computer.totalPhysicalMemory = ParseTotalMemory(sources);
  CountProcessors(sources, computer);
  system.bios = MakeBios(sources, firmware, computer);
  system.boards = MakeBoards(firmware);
  system.chassis = MakeChassis(firmware);
  return system;
}

}  // namespace system_collector
