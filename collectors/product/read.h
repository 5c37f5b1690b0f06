#pragma once

#include <optional>
#include <string>

// Where this product is. This is the only part that touches the machine.
namespace product_collector {

// The path of the library that this process runs with; nothing when the loader does not tell.
std::optional<std::string> ReadLibraryPath();

}  // namespace product_collector
