#include "collectors/product/parse.h"

#include "zelcore/zel.h"

namespace product_collector {

TProduct Parse(const std::optional<std::string>& libraryPath) {
  TProduct product;
  product.name = "zelcore";
  product.version = ZEL_VERSION;
  product.vendor = "zelcore maintainers";
  // A copy carries no number of its own: what identifies it is what it is.
  product.identifyingNumber = product.name + "-" + product.version;
  if (libraryPath && libraryPath->find('/') != std::string::npos) {
    const size_t slash = libraryPath->rfind('/');
    product.installPath = slash == 0 ? "/" : libraryPath->substr(0, slash);
  }
  return product;
}

}  // namespace product_collector
