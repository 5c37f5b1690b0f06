#pragma once

#include <boost/shared_ptr.hpp>
#include <map>
#include <string>
#include <vector>

#include "cim/Names.h"
#include "zelcore/TCIMQualifier.h"

// The qualifiers of one class or property declaration, and the rule by which they are attached; see
// ICIMAllowQualifiers.
class TQualifierSet {
 public:
  void Add(TCIMQualifier& qualifier);
  TCIMQualifier* Get(const std::string& name) const;
  TCIMQualifier* Find(const std::string& name) const;
  std::vector<TCIMQualifier const*> Enumerate() const;
  void Remove(TCIMQualifier& qualifier);

  // The value of a qualifier, or null when it is not there or NULL.
  const TCIMValue* FindValue(const char* name) const;
  // Whether the qualifier is there, not NULL and true. Throws zelStatusTypeMismatch when it is no
  // boolean.
  bool IsTrue(const char* name) const;

  // Copies those that `superClass` hands down, marked as inherited.
  void InheritFrom(const TQualifierSet& superClass);

 private:
  // Keyed by the lower-case name.
  std::map<std::string, boost::shared_ptr<TCIMQualifier>, zelcore::detail::TNameLess> fQualifiers;
};
