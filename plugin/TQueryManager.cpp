#include "zelcore/TQueryManager.h"

#include <algorithm>
#include <exception>

#include "zelcore/IPlugin.h"
#include "zelcore/IPluginCallbacks.h"
#include "zelcore/IPluginManager.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TRootObject.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::LogCore;
using zelcore::detail::Text;

namespace {

// Asked afresh: a plug-in may change its name, and may be gone after it was called.
std::string NameOf(const IPlugin& plugin) {
  IPluginCallbacks* callbacks = plugin.GetCallbacks();
  return callbacks ? callbacks->GetName() : "";
}

bool IsNotCollected(const TCIMClass& cls) {
  const TCIMQualifier* qualifier = cls.FindQualifier("DONTCOLLECT");
  if (!qualifier) return false;
  const TCIMValue value = qualifier->GetValue();
  return !value.IsNull() && static_cast<bool>(value);
}

bool IsAskedFor(const TCIMClass& cls, const std::vector<std::string>& classNames,
                bool associations) {
  const bool isNamed = classNames.empty() || std::find(classNames.begin(), classNames.end(),
                                                       cls.GetName()) != classNames.end();
  return isNamed && !cls.IsAbstract() && !IsNotCollected(cls) &&
         cls.EnumerateInstances(false).empty() && cls.IsAssociation() == associations;
}

}  // namespace

TQueryManager* TQueryManager::fgInstance = nullptr;

int TQueryManager::Initialize() {
  fgInstance = new TQueryManager;
  return 0;
}

TQueryManager* TQueryManager::GetInstance() { return fgInstance; }

void TQueryManager::RunQuery(TContainer* container, std::vector<std::string> classNames) {
  // Associations last: what they refer to is there by then.
  RunAllPlugins(container, classNames, false);
  RunAllPlugins(container, classNames, true);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): as in the interface
void TQueryManager::RunAllPlugins(TContainer* container, std::vector<std::string> classNames,
                                  bool associations) {
  IQueryManager& self = *this;
  for (const auto& plugin : TRootObject::GetPluginManager()->GetPluginsContainer()) {
    IPluginCallbacks* callbacks = plugin->GetCallbacks();
    if (callbacks && callbacks->GetType() == 0) {
      self.EnumerateInstances(plugin.get(), container, classNames, associations);
    }
  }
}

void TQueryManager::EnumerateInstances(IPlugin* plugin, TContainer* container,
                                       std::vector<std::string> classNames, bool associations) {
  auto* query = dynamic_cast<IPluginBasicQueryCallbacks*>(plugin->GetCallbacks());
  if (!query) {
    LogCore(zelLogError,
            Text("Plugin ", NameOf(*plugin), " doesn't support the IPluginBasicQueryCallbacks."));
    return;
  }
  try {
    std::vector<TCIMClass*> requested;
    for (TCIMClass* cls : plugin->GetClassesCollected()) {
      if (!IsAskedFor(*cls, classNames, associations)) continue;
      LogCore(zelLogDebug, Text("Asking plugin ", NameOf(*plugin), " for ", cls->GetName()));
      requested.push_back(cls);
    }
    query->GetData(container, requested);
  } catch (const std::exception& e) {
    LogCore(zelLogError, Text("Plugin ", NameOf(*plugin), " threw exception ", e.what()));
  }
}
