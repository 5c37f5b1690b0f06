#include "zelcore/TCIMSchemaHelper.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/Ascii.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;
using zelcore::detail::IsAsciiAlnum;
using zelcore::detail::LogCore;
using zelcore::detail::Text;
using TCIMType = TCIMValue::TCIMType;

namespace {

// ---- Product data ------------------------------------------------------------------------------

// Products whose name tells the machine type but not the model.
struct TKnownProduct {
  const char* name;
  const char* mtm;
};
constexpr TKnownProduct kKnownProducts[] = {
    {"KVR Server 1200",         "4101xxx"},
    {"KVR Server 2400",         "4102xxx"},
    {"KVR Server 4800",         "4104xxx"},
    {"KVR Blade Server 20",     "4120xxx"},
    {"KVR Storage Server 3600", "4136xxx"},
};

// How the product names of this family begin; machine type, model and "]" follow. The brackets of
// the brand would lead the rule for other names astray.
constexpr std::string_view kFamilyPrefix = "KVR-[R]9000 Rack-[";
static_assert(kFamilyPrefix.size() == 18);

// ---- Reading one property ----------------------------------------------------------------------

// What there must be exactly one instance of.
struct TSubject {
  const char* className;
  const char* label;
};
constexpr TSubject kComputerSystem = {"KVRSG_ComputerSystem", "computer system"};
constexpr TSubject kOperatingSystem = {"KVRSG_OperatingSystem", "operating system"};
constexpr TSubject kProduct = {"KVRSG_VNTProduct", "product"};

constexpr const char* kBIOSElementClassName = "KVRSG_SystemBIOSElement";
constexpr const char* kMachineTypeModel = "MachineTypeModel";

[[noreturn]] void Refuse(zelStatusCode code, const std::string& reason) {
  LogCore(zelLogDebug, "TCIMSchemaHelper: " + reason);
  Fail(code);
}

TCIMInstance* OnlyInstance(TContainer* container, const TSubject& subject) {
  const TCIMClass* cls = container->FindClass(subject.className);
  if (!cls) Refuse(zelStatusNotFound, Text("no ", subject.label));
  const std::vector<TCIMInstance*> instances = cls->EnumerateInstances(true);
  if (instances.size() != 1) Refuse(zelStatusNotFound, Text(subject.label, " instances != 1"));
  return instances.front();
}

// The value, which is of `type` and not NULL.
TCIMValue ValueOf(const TCIMProperty& property, const char* name, TCIMType::ECIMType type) {
  const TCIMValue value = property.GetValue();
  if (value.IsNull()) Refuse(zelStatusValueIsNULL, Text(name, " is NULL"));
  if (value.GetType() != type) {
    Refuse(zelStatusTypeMismatch, Text(name, " wasn't a ", TCIMType(type).ToString()));
  }
  return value;
}

TCIMValue ValueOf(TContainer* container, const TSubject& subject, const char* name,
                  TCIMType::ECIMType type) {
  const TCIMProperty* property = OnlyInstance(container, subject)->FindProperty(name);
  if (!property) Refuse(zelStatusNotFound, Text("didn't find ", name, " property"));
  return ValueOf(*property, name, type);
}

std::string StringOf(TContainer* container, const TSubject& subject, const char* name) {
  return ValueOf(container, subject, name, TCIMType::TypeString);
}

// The firmware's word on machine type and model, or null.
const TCIMProperty* FindFirmwareMTM(TContainer* container) {
  const TCIMClass* cls = container->FindClass(kBIOSElementClassName);
  if (!cls) return nullptr;
  for (const TCIMInstance* element : cls->EnumerateInstances(true)) {
    const TCIMProperty* property = element->FindProperty(kMachineTypeModel);
    if (property && !property->GetValue().IsNull()) return property;
  }
  return nullptr;
}

// ---- Understanding texts -----------------------------------------------------------------------

constexpr std::size_t kMachineTypeLength = 4;
constexpr std::size_t kMTMLength = 7;

std::string WithoutTrailingBlanks(const std::string& text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

// The machine type and model that stand at `position`, or "".
std::string MTMAt(const std::string& text, std::size_t position) {
  const std::string mtm = text.substr(std::min(position, text.size()), kMTMLength);
  return TCIMSchemaHelper::IsValidMTM(mtm) ? mtm : "";
}

std::string KnownProduct(const std::string& text) {
  const auto* product =
      std::find_if(std::begin(kKnownProducts), std::end(kKnownProducts),
                   [&](const TKnownProduct& known) { return text == known.name; });
  return product == std::end(kKnownProducts) ? "" : product->mtm;
}

// "KVR-[R]9000 Rack-[4190A1B]-"
std::string FamilyMTM(const std::string& text) {
  const std::size_t end = kFamilyPrefix.size() + kMTMLength;
  const bool bracketed = text.compare(0, kFamilyPrefix.size(), kFamilyPrefix) == 0 &&
                         text.size() > end && text[end] == ']';
  return bracketed ? MTMAt(text, kFamilyPrefix.size()) : "";
}

// "Anything -[4190A1B]-"
std::string BracketedMTM(const std::string& text) {
  const std::size_t bracket = text.find("-[");
  return bracket == std::string::npos ? "" : MTMAt(text, bracket + 2);
}

std::string LeadingMTM(const std::string& text) { return MTMAt(text, 0); }

std::string LeadingMachineType(const std::string& text) {
  return TCIMSchemaHelper::IsValidMachineType(text) ? text.substr(0, kMachineTypeLength) : "";
}

// In this order; the first that finds something wins.
constexpr std::string (*kMTMRules[])(const std::string&) = {
    KnownProduct, FamilyMTM, BracketedMTM, LeadingMTM, LeadingMachineType,
};

// The part of the version "major.minor.build" with that index, or "".
std::string VersionPart(const std::string& version, int index) {
  std::size_t begin = 0;
  for (; index > 0; --index) {
    const std::size_t dot = version.find('.', begin);
    if (dot == std::string::npos) return "";
    begin = dot + 1;
  }
  return version.substr(begin, version.find('.', begin) - begin);
}

}  // namespace

const std::string TCIMSchemaHelper::kSystemCreationClassName = kComputerSystem.className;
const std::string TCIMSchemaHelper::kOperatingSystemCreationClassName = kOperatingSystem.className;

std::string TCIMSchemaHelper::GetSystemCreationClassName(TContainer*) {
  return kSystemCreationClassName;
}

std::string TCIMSchemaHelper::GetOperatingSystemCreationClassName(TContainer*) {
  return kOperatingSystemCreationClassName;
}

std::string TCIMSchemaHelper::GetSystemName(TContainer* container) {
  return StringOf(container, kComputerSystem, "Name");
}

std::string TCIMSchemaHelper::GetSystemProductName(TContainer* container) {
  return StringOf(container, kComputerSystem, "ProductName");
}

std::string TCIMSchemaHelper::GetOperatingSystemName(TContainer* container) {
  return StringOf(container, kOperatingSystem, "Name");
}

std::string TCIMSchemaHelper::GetOperatingSystemVersion(TContainer* container) {
  return StringOf(container, kOperatingSystem, "Version");
}

unsigned short TCIMSchemaHelper::GetOperatingSystemType(TContainer* container) {
  return ValueOf(container, kOperatingSystem, "OSType", TCIMType::TypeUint16);
}

bool TCIMSchemaHelper::IsValidMachineType(const std::string& text) {
  return text.size() >= kMachineTypeLength &&
         std::all_of(text.begin(), text.begin() + kMachineTypeLength, IsAsciiAlnum);
}

bool TCIMSchemaHelper::IsValidMTM(const std::string& text) {
  return text.size() >= kMTMLength && IsValidMachineType(text) &&
         std::all_of(text.begin() + kMachineTypeLength, text.begin() + kMTMLength,
                     [](char c) { return IsAsciiAlnum(c) || c == ' '; });
}

std::string TCIMSchemaHelper::GetRawMTMString(TContainer* container) {
  const TCIMProperty* firmware = FindFirmwareMTM(container);
  if (!firmware) return GetSystemProductName(container);
  return ValueOf(*firmware, kMachineTypeModel, TCIMType::TypeString);
}

std::string TCIMSchemaHelper::GetMTM(TContainer* container) {
  const std::string text = WithoutTrailingBlanks(GetRawMTMString(container));
  for (const auto rule : kMTMRules) {
    const std::string mtm = rule(text);
    if (mtm.empty()) continue;
    LogCore(zelLogDebug, "TCIMSchemaHelper- Detected MTM " + mtm);
    return mtm;
  }
  Refuse(zelStatusInvalidFormat, "no MTM recognised");
}

std::string TCIMSchemaHelper::GetMachineType(TContainer* container) {
  return GetMTM(container).substr(0, kMachineTypeLength);
}

// "" when only the machine type is known.
std::string TCIMSchemaHelper::GetModelNumber(TContainer* container) {
  return GetMTM(container).substr(kMachineTypeLength);
}

std::string TCIMSchemaHelper::GetRawSerialNumberString(TContainer* container) {
  return StringOf(container, kComputerSystem, "SerialNumber");
}

std::string TCIMSchemaHelper::GetSerialNumber(TContainer* container) {
  constexpr std::size_t kCheckedLength = 7;
  const std::string serial = WithoutTrailingBlanks(GetRawSerialNumberString(container));
  const std::string checked = serial.substr(0, kCheckedLength);
  if (serial.empty() || !std::all_of(checked.begin(), checked.end(), IsAsciiAlnum)) {
    Refuse(zelStatusInvalidFormat, "SerialNumber isn't valid");
  }
  return serial;
}

std::string TCIMSchemaHelper::GetDataSourceVersion(TContainer* container) {
  return StringOf(container, kProduct, "Version");
}

std::string TCIMSchemaHelper::GetDataSourceMajorVersion(TContainer* container) {
  return VersionPart(GetDataSourceVersion(container), 0);
}

std::string TCIMSchemaHelper::GetDataSourceMinorVersion(TContainer* container) {
  return VersionPart(GetDataSourceVersion(container), 1);
}

std::string TCIMSchemaHelper::GetDataSourceBuildVersion(TContainer* container) {
  return VersionPart(GetDataSourceVersion(container), 2);
}
