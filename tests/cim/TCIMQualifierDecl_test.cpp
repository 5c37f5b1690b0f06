#include "zelcore/TCIMQualifierDecl.h"

#include <gtest/gtest.h>

#include "cim/TCIMQualifierDeclImpl.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "zelcore/TContainer.h"

namespace {

using TDecl = TCIMQualifierDecl;
using TCIMType = TCIMValue::TCIMType;

TEST(TCIMQualifierDecl, StartsEmptyWithAContainerAlone) {
  TContainer container;
  const TDecl decl(container);
  EXPECT_EQ("", decl.GetName());
  EXPECT_EQ(TCIMType::TypeNone, decl.GetType());
  EXPECT_TRUE(decl.GetValue().IsNull());
  EXPECT_FALSE(decl.IsArray());
  EXPECT_EQ(0u, decl.GetScope());
  EXPECT_EQ(0u, decl.GetFlavor());
  EXPECT_EQ(&container, decl.GetContainer());
  EXPECT_EQ(&decl, decl.GetBody()->GetOwner());
}

TEST(TCIMQualifierDecl, HoldsWhatItIsMadeWith) {
  TContainer container;
  const TDecl decl(container, "MaxLen", TCIMValue(5u), TDecl::ScopeProperty | TDecl::ScopeReference,
                   TDecl::FlavorToSubclass);
  EXPECT_EQ("MaxLen", decl.GetName());
  EXPECT_EQ(TCIMType::TypeUint32, decl.GetType());
  EXPECT_EQ(TCIMValue(5u), decl.GetValue());
  EXPECT_EQ(12u, decl.GetScope());
  EXPECT_EQ(2u, decl.GetFlavor());
  const TDecl list(container, "Values", TCIMValue(TCIMType::TypeString, 3), TDecl::ScopeNone,
                   TDecl::FlavorNone);
  EXPECT_TRUE(list.IsArray());
}

TEST(TCIMQualifierDecl, NumbersFlavorsAndScopes) {
  EXPECT_EQ(1u, TDecl::FlavorOverridable);
  EXPECT_EQ(2u, TDecl::FlavorToSubclass);
  EXPECT_EQ(4u, TDecl::FlavorTranslatable);
  EXPECT_EQ(1u, TDecl::ScopeClass);
  EXPECT_EQ(2u, TDecl::ScopeAssociation);
  EXPECT_EQ(4u, TDecl::ScopeProperty);
  EXPECT_EQ(8u, TDecl::ScopeReference);
}

TEST(TCIMQualifierDecl, AddsAndTakesAwayFlavorBits) {
  TContainer container;
  TDecl decl(container);
  decl.SetFlavor(TDecl::FlavorOverridable);
  decl.SetFlavor(TDecl::FlavorToSubclass | TDecl::FlavorTranslatable);
  EXPECT_EQ(7u, decl.GetFlavor());
  decl.UnsetFlavor(TDecl::FlavorToSubclass);
  EXPECT_EQ(5u, decl.GetFlavor());
  decl.UnsetFlavor(TDecl::FlavorToSubclass);
  EXPECT_EQ(5u, decl.GetFlavor());
}

TEST(TCIMQualifierDecl, SharesItsBodyWithCopies) {
  TContainer container;
  TDecl decl(container);
  TDecl copy(decl);
  copy.SetName("Units");
  copy.SetValue(TCIMValue("Bytes"));
  EXPECT_EQ("Units", decl.GetName());
  EXPECT_EQ(TCIMValue("Bytes"), decl.GetValue());
  EXPECT_EQ(decl.GetBody(), copy.GetBody());
}

TEST(TCIMQualifierDecl, CopiesItsBodyForAnotherContainer) {
  TContainer container;
  TContainer other;
  const TDecl decl(container, "Units", TCIMValue("Bytes"), TDecl::ScopeProperty,
                   TDecl::FlavorTranslatable);
  const TCIMQualifierDeclImpl copy(*decl.GetBody(), &other);
  EXPECT_EQ(&decl, copy.GetOwner());
  EXPECT_EQ(&other, copy.GetContainer());
  EXPECT_EQ("Units", copy.GetName());
  EXPECT_EQ(TCIMValue("Bytes"), copy.Value());
  EXPECT_EQ(TDecl::ScopeProperty, copy.GetScope());
  EXPECT_EQ(TDecl::FlavorTranslatable, copy.GetFlavor());
  EXPECT_EQ(&container, decl.GetContainer());
}

TEST(TCIMQualifierDecl, ComparesByNameInAnyCase) {
  TContainer container;
  const auto make = [&](const std::string& name) {
    return TDecl(container, name, TCIMValue(name), TDecl::ScopeNone, TDecl::FlavorNone);
  };
  struct {
    const char* a;
    const char* b;
    bool equal;
    bool less;
  } const rows[] = {
      {"Key",  "KEY",  true,  false},
      {"",     "",     true,  false},
      {"",     "a",    false, true },
      {"Key",  "Keys", false, true },
      {"Keys", "KEY",  false, false},
      {"a_",   "aA",   false, true }, // '_' stands before the small letters
      {"A1",   "a_",   false, true },
      {"b",    "A",    false, false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.equal, make(row.a) == make(row.b)) << row.a << " " << row.b;
    EXPECT_EQ(row.less, make(row.a) < make(row.b)) << row.a << " " << row.b;
  }
}

TEST(TCIMQualifierDecl, RefusesToCompareInvalidNames) {
  TContainer container;
  const TDecl good(container, "Key", TCIMValue(), TDecl::ScopeNone, TDecl::FlavorNone);
  const TDecl bad(container, "a-b", TCIMValue(), TDecl::ScopeNone, TDecl::FlavorNone);
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { (void)(good == bad); }));
  EXPECT_EQ("CIM name 'a-b' is invalid", LastLogLine());
  EXPECT_EQ(zelLogError, LastLogSeverity());
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { (void)(bad == good); }));
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { (void)(good < bad); }));
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { (void)(bad < good); }));
}

}  // namespace
