#include <memory>

#include "zelcore/IPluginCallbacks.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TCIMQualifierDecl.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TCPluginCallbacks.h"
#include "zelcore/TOSSpecific.h"
#include "zelcore/TPluginManager.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;

namespace {

void Stamp(TCIMClass& cls, const TCIMQualifierDecl& decl, const std::string& text) {
  auto qualifier = std::make_unique<TCIMQualifier>(decl, TCIMValue(text));
  cls.AddQualifier(*qualifier);
  // A class that carries an equal qualifier already keeps its own.
  if (cls.FindQualifier(decl.GetName()) == qualifier.get()) qualifier.release();
}

}  // namespace

TPluginManager::TPlugin::TPlugin(TPluginManager& manager, IPluginCallbacks* callbacks)
    : fCallbacks(callbacks), fInitialized(false), fManager(manager) {}

TPluginManager::TPlugin::~TPlugin() {
  if (auto* callbacks = dynamic_cast<TCPluginCallbacks*>(fCallbacks)) {
    callbacks->ForgetPluginHandle();
  }
}

IPluginCallbacks* TPluginManager::TPlugin::GetCallbacks() const { return fCallbacks; }

void TPluginManager::TPlugin::Initialize() {
  if (!fCallbacks) Fail(zelStatusInvalidPlugin);
  fCallbacks->Init();
  fInitialized = true;
}

bool TPluginManager::TPlugin::IsInitialized() const { return fInitialized; }

std::string TPluginManager::TPlugin::GetPath() const { return fPath; }

std::string TPluginManager::TPlugin::GetSpecificationPath() const {
  return TOSSpecific::BuildSpecificationPath(GetPath());
}

std::vector<TCIMClass*> TPluginManager::TPlugin::GetClassesCollected() const {
  if (!fClassesCollected) Fail(zelStatusFail);
  return *fClassesCollected;
}

void TPluginManager::TPlugin::SetPath(const std::string& path) { fPath = path; }

void TPluginManager::TPlugin::LoadSpecificationDocument() {
  if (!fCallbacks) Fail(zelStatusInvalidPlugin);
  TContainer& schema = *fManager.GetSchema();
  fClassesCollected = schema.PopulateContainerFromFile(GetSpecificationPath());

  const TCIMQualifierDecl* name = schema.FindQualifierDecl("PLUGINNAME");
  const TCIMQualifierDecl* version = schema.FindQualifierDecl("PLUGINVERSION");
  if (!name || !version) {
    Fail(zelStatusNotFound, "Couldn't find PLUGINNAME/PLUGINVERSION qualifier decl");
  }
  for (TCIMClass* cls : *fClassesCollected) {
    Stamp(*cls, *name, fCallbacks->GetName());
    Stamp(*cls, *version, fCallbacks->GetVersion());
  }
}

void TPluginManager::TPlugin::ForgetCallbacks() { fCallbacks = nullptr; }
