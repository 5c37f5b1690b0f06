#pragma once

#include <string>
#include <vector>

#include "zelcore/detail/Export.h"

class TCIMClass;
class TContainer;

// What every plug-in answers. A status other than 0 from the plug-in is thrown as TZELException.
class ZEL_API IPluginCallbacks {
 public:
  virtual ~IPluginCallbacks();

  // 0 collects and is queried, 1 has a document only, others neither.
  virtual int GetType() = 0;
  virtual std::string GetName() = 0;
  virtual std::string GetVersion() = 0;
  virtual std::string GetInterfaceVersion() = 0;
  // When it succeeds, this object no longer exists.
  virtual void PrepareForUnload() = 0;
  virtual void Init() = 0;
  virtual void DeInit() = 0;
};

// What a plug-in that collects answers besides; found by dynamic_cast from IPluginCallbacks.
class ZEL_API IPluginBasicQueryCallbacks {
 public:
  virtual ~IPluginBasicQueryCallbacks();

  // Fills `container` with instances of `classes`, which may be empty.
  virtual void GetData(TContainer* container, std::vector<TCIMClass*>& classes) = 0;
};
