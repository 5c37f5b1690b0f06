#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "zelcore/TCIMQualifierDecl.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Export.h"

class TCIMQualifierImpl;

// One use of a qualifier on a class or a property declaration: a value and flavors of its own, and
// whether it was inherited. Copies are independent. The declaration must outlive it.
class ZEL_API TCIMQualifier {
 public:
  // With the flavor that `decl` has at this moment.
  TCIMQualifier(const TCIMQualifierDecl& decl, const TCIMValue& value);
  TCIMQualifier(const TCIMQualifierDecl& decl, const TCIMValue& value,
                TCIMQualifierDecl::EFlavor flavor);
  TCIMQualifier(const TCIMQualifier& other);
  TCIMQualifier& operator=(const TCIMQualifier& other);
  ~TCIMQualifier();

  // The declaration's name.
  const std::string& GetName() const;
  TCIMQualifierDecl* GetDeclaration() const;
  // Of the own value, not of the declaration.
  TCIMValue::TCIMType GetType() const;
  bool IsArray() const;
  TCIMValue GetValue() const;
  TCIMQualifierDecl::EFlavor GetFlavor() const;

  // Whether it was inherited. Each of the three setters below makes the qualifier the element's
  // own.
  bool GetPropagated() const;
  void SetPropagated(bool propagated);

  void SetValue(const TCIMValue& value);
  // Adds the bits of `flavor`, or takes them away.
  void SetFlavor(TCIMQualifierDecl::EFlavor flavor);
  void UnsetFlavor(TCIMQualifierDecl::EFlavor flavor);

  // By name only, in any case. Throw zelStatusInvalidCIMName for a name that is none.
  bool operator==(const TCIMQualifier& other) const;
  bool operator<(const TCIMQualifier& other) const;

  const boost::shared_ptr<TCIMQualifierImpl>& GetBody() const;

 private:
  boost::shared_ptr<TCIMQualifierImpl> fBody;
};
