#pragma once

#include <string>
#include <vector>

#include "zelcore/detail/Export.h"

class IPlugin;
class TContainer;

// Answers queries by asking the plug-ins.
class ZEL_API IQueryManager {
 public:
  virtual ~IQueryManager();

  // Fills `container`, normally the plug-in manager's schema, with instances of the named classes,
  // of all when `classNames` is empty: ordinary classes first, associations second. Names are
  // compared case-sensitively; unknown ones are ignored. Not asked for are abstract classes, those
  // with DONTCOLLECT, and those that have instances already. A plug-in that fails is logged and the
  // next one asked; what a plug-in throws that is no std::exception passes.
  virtual void RunQuery(TContainer* container, std::vector<std::string> classNames) = 0;

  // One plug-in's part of one pass.
  virtual void EnumerateInstances(IPlugin* plugin, TContainer* container,
                                  std::vector<std::string> classNames, bool associations) = 0;
};
