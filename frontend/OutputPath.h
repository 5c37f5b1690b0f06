#pragma once

#include <string>

namespace zel {

class TInventory;

// `path`; when it is empty or a directory, HOST-YYYYMMDD-HHMMSS and `extension` (".xml.gz") in the
// current directory or that one, by the name of the inventory's system and the start of its run. A
// redacted inventory is called "redacted".
std::string OutputPath(const std::string& path, const TInventory& inventory,
                       const std::string& extension);

}  // namespace zel
