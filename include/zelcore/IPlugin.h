#pragma once

#include <string>
#include <vector>

#include "zelcore/detail/Export.h"

class IPluginCallbacks;
class TCIMClass;

// The plug-in manager's record of one plug-in.
class ZEL_API IPlugin {
 public:
  virtual ~IPlugin();

  // Not owned; null after the plug-in was unloaded.
  virtual IPluginCallbacks* GetCallbacks() const = 0;
  virtual void Initialize() = 0;
  virtual bool IsInitialized() const = 0;
  // Of the library and of its specification document.
  virtual std::string GetPath() const = 0;
  virtual std::string GetSpecificationPath() const = 0;
  // The classes that its document declares, in document order. Throws zelStatusFail before a
  // document was read.
  virtual std::vector<TCIMClass*> GetClassesCollected() const = 0;
};
