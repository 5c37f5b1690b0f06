#pragma once

#include <string>
#include <vector>

#include "zelcore/detail/Export.h"

class TCIMQualifier;

// What carries qualifiers: classes and property declarations.
class ZEL_API ICIMAllowQualifiers {
 public:
  virtual ~ICIMAllowQualifiers();

  // Takes `qualifier`, made with `new`; an overridable one of its name is replaced. Over one that
  // is not overridable: throws zelStatusNotOverridable when value or flavor differ, and otherwise
  // returns with `qualifier` still the caller's (the element's own is another object then).
  virtual void AddQualifier(TCIMQualifier& qualifier) = 0;

  // Throws zelStatusNotFound. Owned by the element.
  virtual TCIMQualifier* GetQualifier(const std::string& name) const = 0;

  // In the order of the lower-case names.
  virtual std::vector<TCIMQualifier const*> EnumerateQualifiers() const = 0;

  // Destroys the element's qualifier of that name. Throws zelStatusNotFound.
  virtual void RemoveQualifier(TCIMQualifier& qualifier) = 0;
};
