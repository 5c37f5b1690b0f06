#include "frontend/Columns.h"

#include <algorithm>

#include "frontend/Selection.h"
#include "zelcore/zelcore.h"

namespace zel {

TColumns ColumnsOf(const TCIMClass& cls) {
  constexpr std::size_t kFew = 6;
  const std::vector<TCIMInstance*> instances = cls.EnumerateInstances(false);
  const std::vector<const TCIMPropertyDecl*> all = cls.EnumeratePropertyDecls();
  TSelection selection = {
      &cls, true, {instances.begin(), instances.end()},
        all
  };
  KeepColumns(selection, true);
  TColumns columns = {std::move(selection.properties), {}};
  const bool isAsked = !columns.shown.empty() && columns.shown.front()->FindQualifier("COLUMN");
  if (!isAsked && columns.shown.size() > kFew) columns.shown.resize(kFew);
  std::copy_if(
      all.begin(), all.end(), std::back_inserter(columns.rest), [&](const TCIMPropertyDecl* decl) {
        return std::find(columns.shown.begin(), columns.shown.end(), decl) == columns.shown.end();
      });
  return columns;
}

bool IsSurroundingKey(const std::string& name) {
  constexpr const char* kSurrounding[] = {"CreationClassName", "SystemCreationClassName",
                                          "SystemName", "CSCreationClassName", "CSName"};
  return std::find(std::begin(kSurrounding), std::end(kSurrounding), name) !=
         std::end(kSurrounding);
}

}  // namespace zel
