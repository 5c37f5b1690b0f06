#include "xml/TClassOrder.h"

#include <algorithm>

#include "zelcore/TCIMReference.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::LogCore;
using zelcore::detail::Text;

namespace {

// Appends the classes without which the value cannot be read.
void AppendReferenced(const TCIMValue& value, std::vector<TCIMClass*>& classes) {
  if (!value.IsReference()) return;
  if (value.GetReferencedClass()) classes.push_back(value.GetReferencedClass());
  if (value.IsNull()) return;
  const TCIMReference path = value;
  for (const auto& [name, key] : path.EnumerateKeyBindings()) AppendReferenced(key, classes);
}

std::vector<TCIMClass*> EnumerateNeeded(const TCIMClass& cls) {
  std::vector<TCIMClass*> classes;
  if (TCIMClass* const superClass = cls.GetSuperClass()) classes.push_back(superClass);
  for (const TCIMPropertyDecl* decl : EnumerateOwnDecls(cls)) {
    AppendReferenced(decl->GetValue(), classes);
  }
  return classes;
}

}  // namespace

void TClassOrder::Add(TCIMClass& cls) {
  struct TStep {
    explicit TStep(TCIMClass* c) : cls(c), needed(EnumerateNeeded(*c)) {}
    TCIMClass* cls;
    std::vector<TCIMClass*> needed;
    std::size_t next = 0;
  };
  std::vector<TStep> steps;
  const auto begin = [&](TCIMClass* begun) {
    if (begun->IsRootClass()) return;  // in every container already
    if (fIsPlaced.emplace(begun, false).second) steps.emplace_back(begun);
  };
  begin(&cls);
  while (!steps.empty()) {
    TStep& step = steps.back();
    if (step.next == step.needed.size()) {
      fIsPlaced[step.cls] = true;
      fClasses.push_back(step.cls);
      steps.pop_back();
      continue;
    }
    TCIMClass* const needed = step.needed[step.next++];
    const auto found = fIsPlaced.find(needed);
    if (found != fIsPlaced.end() && !found->second) {
      LogCore(zelLogWarning, Text("TCIMXMLWriter: ", step.cls->GetName(), ": needs class ",
                                  needed->GetName(), ", which is declared behind it"));
    } else {
      begin(needed);
    }
  }
}

void TClassOrder::AddReferenced(const TCIMValue& value) {
  std::vector<TCIMClass*> classes;
  AppendReferenced(value, classes);
  for (TCIMClass* cls : classes) Add(*cls);
}

std::vector<const TCIMPropertyDecl*> EnumerateOwnDecls(const TCIMClass& cls) {
  std::vector<const TCIMPropertyDecl*> decls = cls.EnumeratePropertyDecls();
  const auto isInherited = [&](const TCIMPropertyDecl* decl) {
    return decl->GetClass()->GetBody() != cls.GetBody();
  };
  decls.erase(std::remove_if(decls.begin(), decls.end(), isInherited), decls.end());
  return decls;
}
