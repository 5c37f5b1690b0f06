#pragma once

#include <string>

class TCIMClass;
class TCIMPropertyDecl;
class TCIMReference;
class TCIMValue;

// What people call classes, properties and instances.

namespace zel {

// "Cache memory", for KVRSG_CacheMemory without a DISPLAYNAME.
std::string TitleOf(const TCIMClass& cls);
// "Cache memory L1d-0": the class, and the keys that tell its instances apart.
std::string TitleOf(const TCIMReference& path);
// The same of what a reference leads to, there or not; empty for other values.
std::string TargetOf(const TCIMValue& value);
// "KVRSG_CacheMemory.L1d-0"
std::string ShortPath(const TCIMReference& path);

// "Line size", for LineSize without a DISPLAYNAME.
std::string LabelOf(const TCIMPropertyDecl& decl);

}  // namespace zel
