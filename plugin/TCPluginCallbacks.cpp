#include "zelcore/TCPluginCallbacks.h"

#include <cstring>
#include <exception>

#include "plugin/zeliIOHandle.h"
#include "zelcore/IPluginManager.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TPluginManager.h"
#include "zelcore/TRootObject.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;
using zelcore::detail::LogCore;
using zelcore::detail::Text;

namespace {

void ThrowUnlessOK(zelStatusCode status) {
  if (status != zelStatusOK) throw TZELException(status);
}

// Calls one entry of a plug-in's table and throws the status that it answers.
template <class... TArgs>
void Call(zelStatusCode (*entry)(TArgs...), TArgs... args) {
  ThrowUnlessOK(entry ? entry(args...) : zelStatusNotImplemented);
}

std::string OrEmpty(const char* text) { return text ? text : ""; }

std::string CurrentClassName(const zeliIOHandle& handle) {
  const TCIMInstance* instance = handle.GetCurrentInstance();
  return instance ? instance->GetClass()->GetName() : "";
}

}  // namespace

TCPluginCallbacks::TCPluginCallbacks(zelPluginCallbacks* table)
    : fTable(*table), fPluginHandle(nullptr) {
  IPluginManager* manager = TRootObject::GetPluginManager();
  if (!manager) Fail(zelStatusInvalidOpSequence, "There is no plug-in manager");
  fPluginHandle = manager->RegisterPlugin(this);
}

TCPluginCallbacks::~TCPluginCallbacks() {
  if (auto* record = dynamic_cast<TPluginManager::TPlugin*>(fPluginHandle)) {
    record->ForgetCallbacks();
  }
}

int TCPluginCallbacks::GetType() { return GetInfo().type; }
std::string TCPluginCallbacks::GetName() { return OrEmpty(GetInfo().name); }
std::string TCPluginCallbacks::GetVersion() { return OrEmpty(GetInfo().version); }
std::string TCPluginCallbacks::GetInterfaceVersion() { return OrEmpty(GetInfo().interfaceVersion); }
int TCPluginCallbacks::GetURLType() { return GetInfo().urlType; }

// The getters do not fail: log lines need the name of a plug-in that is in trouble.
zelPluginInfo TCPluginCallbacks::GetInfo() {
  if (!fTable.GetInfo) return {};
  try {
    return fTable.GetInfo(this);
  } catch (...) {
    return {};
  }
}

void TCPluginCallbacks::Init() {
  const std::string path = fPluginHandle ? fPluginHandle->GetPath() : "";
  fPluginPath = std::make_unique<char[]>(path.size() + 1);
  std::memcpy(fPluginPath.get(), path.c_str(), path.size() + 1);
  Call(fTable.Init, this);
}

void TCPluginCallbacks::DeInit() { Call(fTable.DeInit, this); }

void TCPluginCallbacks::GetData(TContainer* container, std::vector<TCIMClass*>& classes) {
  zeliIOHandle handle(container, fPluginHandle);
  std::vector<const char*> names;
  names.reserve(classes.size());
  for (const TCIMClass* cls : classes) names.push_back(cls->GetName().c_str());

  zelStatusCode status = zelStatusNotImplemented;
  try {
    if (fTable.GetData) {
      status = fTable.GetData(this, &handle, names.data(), static_cast<int>(names.size()));
    }
  } catch (const std::exception& e) {
    // sic: told in the name of zelAddClass.
    LogCore(zelLogError, Text("zelAddClass: CIM class ", CurrentClassName(handle),
                              " threw exception ", e.what()));
    throw;
  }
  ThrowUnlessOK(status);
  handle.CommitCurrentInstance();
}

void TCPluginCallbacks::PrepareForUnload() {
  Call(fTable.PrepareForUnload, this);
  delete this;
}

IPlugin* TCPluginCallbacks::GetPluginHandle() const { return fPluginHandle; }
const char* TCPluginCallbacks::GetPluginPath() const { return fPluginPath.get(); }
void TCPluginCallbacks::ForgetPluginHandle() { fPluginHandle = nullptr; }
