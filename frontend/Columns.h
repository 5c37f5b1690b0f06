#pragma once

#include <string>
#include <vector>

class TCIMClass;
class TCIMPropertyDecl;

namespace zel {

// How the instances of a class stand in a table.
struct TColumns {
  std::vector<const TCIMPropertyDecl*> shown;  // as KeepColumns() orders them
  std::vector<const TCIMPropertyDecl*> rest;   // all others, in the order of the lower-case names
};
// Those of a class without COLUMN qualifiers are few enough for a page.
TColumns ColumnsOf(const TCIMClass& cls);

// Whether a key of this name says of which class and system an instance is, rather than which one
// of them it is.
bool IsSurroundingKey(const std::string& name);

}  // namespace zel
