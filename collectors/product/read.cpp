#include "collectors/product/read.h"

#include <dlfcn.h>
#include <limits.h>
#include <stdlib.h>

#include "zelcore/zel.h"

namespace product_collector {

std::optional<std::string> ReadLibraryPath() {
  Dl_info info;
  if (!dladdr(reinterpret_cast<const void*>(&zelWriteLog), &info) || !info.dli_fname) {
    return std::nullopt;
  }
  char path[PATH_MAX];
  return realpath(info.dli_fname, path) ? path : info.dli_fname;
}

}  // namespace product_collector
