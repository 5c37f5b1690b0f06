#pragma once

#include <string>
#include <vector>

#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Export.h"

class TCIMPropertyDecl;
class TCIMPropertyImpl;

// A property of an instance: a current value and, for reports of what changed, a previous one. Name
// and type are its declaration's, which must outlive it. Copies are deep.
class ZEL_API TCIMProperty {
 public:
  TCIMProperty(const TCIMPropertyDecl& decl);  // NOLINT(google-explicit-constructor): by design
  // Throws as SetValue().
  TCIMProperty(const TCIMPropertyDecl& decl, const TCIMValue& value);
  // A copy checks the values against the declaration again.
  TCIMProperty(const TCIMProperty& other);
  TCIMProperty& operator=(const TCIMProperty& other);
  ~TCIMProperty();

  const std::string& GetName() const;
  TCIMValue::TCIMType GetType() const;
  bool IsArray() const;
  const TCIMPropertyDecl* GetDeclaration() const;

  // The own value, or the declaration's default.
  TCIMValue GetValue() const;
  // Throws zelStatusTypeMismatch for a value (NULL ones included) of another type than declared,
  // and for a reference to a class that is not a subclass of the declared one. The former value
  // stays.
  void SetValue(const TCIMValue& value);
  void SetValue(TCIMValue&& value);
  // Whether there is no own value, so that the declaration's default shows.
  bool GetPropagated() const;

  // The previous value where one was set, else the same as GetValue().
  TCIMValue GetPrevValue() const;
  // Checked as SetValue(), but any NULL passes. Without a value: records that it was NULL.
  void SetPrevValue(const TCIMValue& value);
  void SetPrevValue();
  // Whether a previous value was ever set.
  bool IsPrevValueDifferent() const;

  // The value as text for people, by the qualifiers of the declaration: NULLDISPLAY, Values and
  // ValueMap, UNITS, DISPLAYFIXEDUNITS, ABBREVIATEUNITS, DISPLAYCPUTIME and BASE. A broken value
  // map is logged and passed over. Throws zelStatusNotSupported where BASE does not suit the value,
  // zelStatusInvalidDateTime for "KiloSeconds" and above, zelStatusValueIsNULL for a NULL element
  // of a mapped array.
  std::string ToString() const;
  // The same of each element. A scalar gives one text, without the value map; a NULL array one,
  // too.
  std::vector<std::string> ToStringVector() const;
  // The same of GetPrevValue().
  std::string PrevToString() const;
  std::vector<std::string> PrevToStringVector() const;

  // By name, then by value; a missing own value counts as the declaration's default.
  bool operator==(const TCIMProperty& other) const;
  bool operator<(const TCIMProperty& other) const;

  // The property's own body, made where there is none yet.
  TCIMPropertyImpl* GetBody() const;
  // To be read only: the properties of instances that have no value of their own may share it.
  const TCIMPropertyImpl& GetShownBody() const { return *fBody; }

 private:
  friend class TCIMInstanceImpl;
  explicit TCIMProperty(TCIMPropertyImpl& shared) : fBody(&shared) {}

  mutable TCIMPropertyImpl* fBody;  // owned, unless it is shared
};
