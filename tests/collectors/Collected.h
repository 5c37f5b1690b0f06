#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/LogSpy.h"
#include "tests/support/TempDir.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TPluginManager.h"
#include "zelcore/TQueryManager.h"

// A copy of a captured machine (tests/testdata/machines/NAME) that a test may change, or a machine
// without any file.
class Machine {
 public:
  Machine() = default;
  explicit Machine(const std::string& name) {
    std::filesystem::copy(ZEL_SOURCE_DIR "/tests/testdata/machines/" + name, GetRoot(),
                          std::filesystem::copy_options::recursive);
  }

  const std::string& GetRoot() const { return fRoot.GetPath(); }
  void Write(const std::string& path, const std::string& contents) const {
    fRoot.WriteFile(path, contents);
  }
  void Remove(const std::string& path) const { std::filesystem::remove_all(fRoot.PathOf(path)); }

 private:
  TempDir fRoot;
};

// What the built plug-ins collect of a machine, in the order of their names. One per process:
// plug-ins stay loaded for good. The log is new at threshold zelLogStatus.
class Collected {
 public:
  using TInstances = std::vector<TCIMInstance*>;

  Collected(const Machine& machine, const std::vector<std::string>& plugins) {
    RestartLog();
    setenv("ZEL_SYSROOT", machine.GetRoot().c_str(), 1);
    TPluginManager::Initialize(fDir.GetPath());
    TQueryManager::Initialize();
    Schema().PopulateContainerFromFile(ZEL_SOURCE_DIR "/schema/zelcore.base.xml");
    for (const std::string& name : plugins) {
      std::filesystem::copy(ZEL_BINARY_DIR "/plugins/" + name, fDir.PathOf(name));
      TPluginManager::GetInstance()->LoadPlugin(fDir.PathOf(name + "/lib" + name + ".pi.so"));
    }
    TQueryManager::GetInstance()->RunQuery(&Schema(), {"KVRSG_ComputerSystem"});
    TQueryManager::GetInstance()->RunQuery(&Schema(), {});
  }
  Collected(const Collected&) = delete;
  Collected& operator=(const Collected&) = delete;
  ~Collected() { unsetenv("ZEL_SYSROOT"); }

  static TContainer& Schema() { return *TPluginManager::GetInstance()->GetSchema(); }

  // In the order of their paths.
  static TInstances Of(const std::string& className) {
    return Schema().GetClass(className)->EnumerateInstances(false);
  }

  // The plain value; "NULL" without one. Elements of an array are joined by blanks.
  static std::string Text(const TCIMInstance& instance, const std::string& property) {
    const TCIMValue& value = instance.GetProperty(property)->GetValue();
    if (value.IsNull()) return "NULL";
    if (!value.IsArray()) return value.ToString(10);
    std::string text;
    const std::vector<TCIMValue>& elements = value;
    for (const TCIMValue& element : elements) {
      text += (text.empty() ? "" : " ") + element.ToString(10);
    }
    return text;
  }

  // One property of all instances of a class.
  static std::vector<std::string> Texts(const std::string& className, const std::string& property) {
    std::vector<std::string> texts;
    for (const TCIMInstance* instance : Of(className)) texts.push_back(Text(*instance, property));
    return texts;
  }

  // Of the instances that the references of an association lead to, one property. Throws when one
  // leads nowhere.
  static std::vector<std::string> Ends(const std::string& className, const std::string& end,
                                       const std::string& property) {
    std::vector<std::string> texts;
    for (const TCIMInstance* instance : Of(className)) {
      const TCIMReference reference = instance->GetProperty(end)->GetValue();
      texts.push_back(Text(dynamic_cast<TCIMInstance&>(*reference.GetCIMElement()), property));
    }
    return texts;
  }

 private:
  TempDir fDir;
};
