#pragma once

#include <string>

namespace zel {

// Where the plug-ins and the base schema are when the user does not say: beside a `zel` that was
// just built, or where the product was installed.
struct TLocations {
  std::string pluginDirectory;
  std::string baseSchema;
};

TLocations DefaultLocations();

}  // namespace zel
