#include "frontend/Columns.h"

#include <algorithm>
#include <optional>

#include "zelcore/zelcore.h"

namespace zel {
namespace {

std::optional<unsigned int> PlaceOf(const TCIMPropertyDecl& decl) {
  const TCIMQualifier* column = decl.FindQualifier("COLUMN");
  if (!column || column->GetType() != TCIMValue::TCIMType::TypeUint32) return std::nullopt;
  const TCIMValue value = column->GetValue();
  if (value.IsNull() || value.IsArray()) return std::nullopt;
  return static_cast<unsigned int>(value);
}

bool IsTellingKey(const TCIMPropertyDecl& decl, const std::vector<std::string>& keys) {
  return std::find(keys.begin(), keys.end(), decl.GetName()) != keys.end() &&
         !IsSurroundingKey(decl.GetName());
}

}  // namespace

bool IsSurroundingKey(const std::string& name) {
  constexpr const char* kSurrounding[] = {"CreationClassName", "SystemCreationClassName",
                                          "SystemName", "CSCreationClassName", "CSName"};
  return std::find(std::begin(kSurrounding), std::end(kSurrounding), name) !=
         std::end(kSurrounding);
}

TColumns ColumnsOf(const TCIMClass& cls) {
  TColumns columns;
  for (const TCIMPropertyDecl* decl : cls.EnumeratePropertyDecls()) {
    (PlaceOf(*decl) ? columns.shown : columns.rest).push_back(decl);
  }
  std::stable_sort(columns.shown.begin(), columns.shown.end(),
                   [](const TCIMPropertyDecl* a, const TCIMPropertyDecl* b) {
                     return PlaceOf(*a) < PlaceOf(*b);
                   });
  if (columns.shown.empty()) {
    const std::vector<std::string> keys = cls.EnumerateKeyNames();
    const auto rest = std::stable_partition(
        columns.rest.begin(), columns.rest.end(),
        [&](const TCIMPropertyDecl* decl) { return IsTellingKey(*decl, keys); });
    columns.shown.assign(columns.rest.begin(), rest);
    columns.rest.erase(columns.rest.begin(), rest);
  }
  return columns;
}

}  // namespace zel
