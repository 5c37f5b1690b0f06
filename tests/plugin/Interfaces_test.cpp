// The virtual operations stand where programs that were built before expect them.

#include <gtest/gtest.h>

#include "tests/support/Slot.h"
#include "zelcore/ILogger.h"
#include "zelcore/IPlugin.h"
#include "zelcore/IPluginCallbacks.h"
#include "zelcore/IPluginManager.h"
#include "zelcore/IQueryManager.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCPluginCallbacks.h"
#include "zelcore/TContainer.h"

namespace {

// That the operations follow each other, right behind the destructor.
template <class... TOperations>
void ExpectInOrder(TOperations... operations) {
  std::size_t expected = 2;
  for (const std::size_t slot : {Slot(operations)...}) EXPECT_EQ(expected++, slot);
}

TEST(Interfaces, KeepTheOrderOfPlugInOperations) {
  ExpectInOrder(&IPlugin::GetCallbacks, &IPlugin::Initialize, &IPlugin::IsInitialized,
                &IPlugin::GetPath, &IPlugin::GetSpecificationPath, &IPlugin::GetClassesCollected);
  ExpectInOrder(&IPluginCallbacks::GetType, &IPluginCallbacks::GetName,
                &IPluginCallbacks::GetVersion, &IPluginCallbacks::GetInterfaceVersion,
                &IPluginCallbacks::PrepareForUnload, &IPluginCallbacks::Init,
                &IPluginCallbacks::DeInit);
  ExpectInOrder(&IPluginBasicQueryCallbacks::GetData);
  EXPECT_EQ(Slot(&TCPluginCallbacks::GetData) + 1, Slot(&TCPluginCallbacks::GetURLType));
}

TEST(Interfaces, KeepTheOrderOfTheManagersOperations) {
  ExpectInOrder(&IPluginManager::FindAndLoadPlugins, &IPluginManager::LoadPlugin,
                &IPluginManager::RegisterPlugin, &IPluginManager::GetPluginsContainer,
                &IPluginManager::SearchForPluginByName, &IPluginManager::GetSchema);
  ExpectInOrder(&IQueryManager::RunQuery, &IQueryManager::EnumerateInstances);
}

TEST(Interfaces, KeepTheOrderOfTheLoggersOperations) {
  using TText = void (ILogger::*)(IPlugin const*, zelLogSeverity, const std::string&);
  using TDump = void (ILogger::*)(IPlugin const*, zelLogSeverity, void const*, int);
  ExpectInOrder(static_cast<TText>(&ILogger::OutputLogEntry),
                static_cast<TDump>(&ILogger::OutputLogEntry), &ILogger::GetLog, &ILogger::ClearLog,
                &ILogger::SetLogThreshold, &ILogger::GetLogThreshold, &ILogger::SetLogFilename);
}

TEST(Interfaces, KeepTheOrderOfTheModelsOperations) {
  ExpectInOrder(&ICIMElement::Validate, &ICIMElement::AddToContainer, &ICIMElement::GetContainer);
  ExpectInOrder(&ICIMAllowQualifiers::AddQualifier, &ICIMAllowQualifiers::GetQualifier,
                &ICIMAllowQualifiers::EnumerateQualifiers, &ICIMAllowQualifiers::RemoveQualifier);
  ExpectInOrder(&TContainer::AllocateClass, &TContainer::AllocateInstance,
                &TContainer::AllocateQualifierDecl);
  ExpectInOrder(&TCIMClass::Validate, &TCIMClass::AddToContainer, &TCIMClass::GetContainer,
                &TCIMClass::AddQualifier, &TCIMClass::GetQualifier, &TCIMClass::EnumerateQualifiers,
                &TCIMClass::RemoveQualifier);
  ExpectInOrder(&TCIMPropertyDecl::AddQualifier, &TCIMPropertyDecl::GetQualifier,
                &TCIMPropertyDecl::EnumerateQualifiers, &TCIMPropertyDecl::RemoveQualifier);
  ExpectInOrder(&TCIMInstance::Validate, &TCIMInstance::AddToContainer,
                &TCIMInstance::GetContainer);
}

}  // namespace
