#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Export.h"

class TCIMQualifierDeclImpl;

// Declares a qualifier, once per container: its name, its type and default value, what it may be
// attached to and how it is inherited. Copies of the handle share one declaration.
class ZEL_API TCIMQualifierDecl {
 public:
  enum EFlavor : unsigned int {
    FlavorNone = 0,
    FlavorOverridable = 1,   // an element that has it may get another in its place
    FlavorToSubclass = 2,    // subclasses inherit it
    FlavorTranslatable = 4,  // carried and reported only
  };

  // Stored and reported only: nothing is refused because of its scope.
  enum EScope : unsigned int {
    ScopeNone = 0,
    ScopeClass = 1,
    ScopeAssociation = 2,
    ScopeProperty = 4,
    ScopeReference = 8,
  };

  // Without a name, untyped, scope and flavor 0.
  TCIMQualifierDecl(TContainer& container);  // NOLINT(google-explicit-constructor): by design
  TCIMQualifierDecl(TContainer& container, const std::string& name, const TCIMValue& value,
                    EScope scope, EFlavor flavor);
  virtual ~TCIMQualifierDecl();

  // Accepts every declaration.
  void Validate() const;

  // Hands this object, which must have been made with `new`, to its container. Throws
  // zelStatusAlreadyExists for a name that is taken; this object has been destroyed by then.
  void AddToContainer() const;

  // As given; names are compared without regard to case.
  const std::string& GetName() const;
  // Renaming a registered declaration does not move it in its container.
  void SetName(const std::string& name);
  TCIMValue::TCIMType GetType() const;
  bool IsArray() const;
  TCIMValue GetValue() const;
  void SetValue(const TCIMValue& value);
  TContainer* GetContainer() const;
  EScope GetScope() const;
  EFlavor GetFlavor() const;
  // Adds the bits of `flavor`, or takes them away.
  void SetFlavor(EFlavor flavor);
  void UnsetFlavor(EFlavor flavor);

  // By name only, in any case. Throw zelStatusInvalidCIMName for a name that is none.
  bool operator==(const TCIMQualifierDecl& other) const;
  bool operator<(const TCIMQualifierDecl& other) const;

  const boost::shared_ptr<TCIMQualifierDeclImpl>& GetBody() const;

 private:
  boost::shared_ptr<TCIMQualifierDeclImpl> fBody;
};

constexpr TCIMQualifierDecl::EFlavor operator|(TCIMQualifierDecl::EFlavor a,
                                               TCIMQualifierDecl::EFlavor b) {
  return static_cast<TCIMQualifierDecl::EFlavor>(static_cast<unsigned int>(a) |
                                                 static_cast<unsigned int>(b));
}

constexpr TCIMQualifierDecl::EScope operator|(TCIMQualifierDecl::EScope a,
                                              TCIMQualifierDecl::EScope b) {
  return static_cast<TCIMQualifierDecl::EScope>(static_cast<unsigned int>(a) |
                                                static_cast<unsigned int>(b));
}
