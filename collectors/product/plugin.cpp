#include "collectors/kit/Plugin.h"
#include "collectors/product/parse.h"
#include "collectors/product/read.h"

namespace product_collector {

namespace {

zelStatusCode PublishProduct(zelIOHandle* out, const TProduct& product) {
  return kit::TRecord(out, "KVRSG_VNTProduct")
      .Set("Name", product.name)
      .Set("IdentifyingNumber", product.identifyingNumber)
      .Set("Vendor", product.vendor)
      .Set("Version", product.version)
      .Set("InstallPath", product.installPath)
      .Status();
}

struct TProductCollector {
  static constexpr const char* kName = "product";
  using TFindings = TProduct;

  static TProduct Scan(const kit::TLog&) { return Parse(ReadLibraryPath()); }

  static constexpr kit::TPublisher<TProduct> kPublishers[] = {
      {"KVRSG_VNTProduct", PublishProduct},
  };
};

const kit::TPlugin<TProductCollector> productPlugin;

}  // namespace

}  // namespace product_collector
