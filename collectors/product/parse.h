#pragma once

#include <optional>
#include <string>

// What is said of this product.
namespace product_collector {

struct TProduct {
  std::string name;
  std::string version;  // "major.minor.build"
  std::string vendor;
  std::string identifyingNumber;
  std::optional<std::string> installPath;
};

TProduct Parse(const std::optional<std::string>& libraryPath);

}  // namespace product_collector
