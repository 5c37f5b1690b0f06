#pragma once

#include <string>

namespace zel {

// "MHz" for "MegaHertz": how people write a unit of CIM. One that is not known stays as it is.
std::string UnitSymbol(const std::string& unit);

}  // namespace zel
