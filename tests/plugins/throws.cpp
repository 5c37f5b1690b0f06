// Throws from GetData, with an instance under construction.
#include <stdexcept>

#include "plugin.h"

namespace {

zelPluginInfo GetInfo(TCPluginCallbacks*) { return {"throws", "1.0", "1.0", 0, 0}; }

zelStatusCode GetData(TCPluginCallbacks*, zelIOHandle* handle, const char**, int count) {
  if (count == 0) throw std::out_of_range("nothing to do");
  zelAddClass(handle, "Throws_Thing");
  zelAddStringProperty(handle, "Id", "kept");
  zelAddClass(handle, "Throws_Thing");
  throw std::runtime_error("disk on fire");
}

__attribute__((constructor)) void Load() {
  Register({nullptr, Succeed, Succeed, GetData, GetInfo, Succeed});
}

}  // namespace
