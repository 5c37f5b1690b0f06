#pragma once

#include <string>

#include "zelcore/detail/Export.h"

class TContainer;

// Identifies the machine from the instances in a container.
//
// Each getter reads one property of the one instance of a known class. Where that fails it logs why
// at zelLogDebug and throws: zelStatusNotFound (no class, not exactly one instance, no property),
// zelStatusValueIsNULL or zelStatusTypeMismatch. A machine type, model, serial number or version
// that passes no rule gives zelStatusInvalidFormat.
class ZEL_API TCIMSchemaHelper {
 public:
  static const std::string kSystemCreationClassName;           // "KVRSG_ComputerSystem"
  static const std::string kOperatingSystemCreationClassName;  // "KVRSG_OperatingSystem"

  // The constants; the container is not looked at and may be null.
  static std::string GetSystemCreationClassName(TContainer* container);
  static std::string GetOperatingSystemCreationClassName(TContainer* container);

  static std::string GetSystemName(TContainer* container);
  static std::string GetSystemProductName(TContainer* container);
  static std::string GetOperatingSystemName(TContainer* container);
  static std::string GetOperatingSystemVersion(TContainer* container);
  static unsigned short GetOperatingSystemType(TContainer* container);

  // Whether the first four characters are letters or digits.
  static bool IsValidMachineType(const std::string& text);
  // Whether, besides, the next three are letters, digits or blanks.
  static bool IsValidMTM(const std::string& text);

  // MachineTypeModel of the firmware, or the system's product name where that is NULL or missing.
  static std::string GetRawMTMString(TContainer* container);
  // Machine type (4 characters) and model (3) found in the raw text; the type alone when the text
  // has no valid model.
  static std::string GetMTM(TContainer* container);
  static std::string GetMachineType(TContainer* container);
  static std::string GetModelNumber(TContainer* container);

  static std::string GetRawSerialNumberString(TContainer* container);
  // Without trailing blanks.
  static std::string GetSerialNumber(TContainer* container);

  // Of the product that collected the data, and its parts; a missing part is "".
  static std::string GetDataSourceVersion(TContainer* container);
  static std::string GetDataSourceMajorVersion(TContainer* container);
  static std::string GetDataSourceMinorVersion(TContainer* container);
  static std::string GetDataSourceBuildVersion(TContainer* container);
};
