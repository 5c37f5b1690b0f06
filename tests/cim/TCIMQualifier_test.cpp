#include "zelcore/TCIMQualifier.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tests/cim/Schema.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"

namespace {

using TDecl = TCIMQualifierDecl;
using TCIMType = TCIMValue::TCIMType;

TEST(TCIMQualifier, TakesTheFlavorOfItsDeclarationAtTheTime) {
  Schema schema;
  TDecl& decl = schema.Declare("Units", TDecl::FlavorOverridable | TDecl::FlavorToSubclass);
  const TCIMQualifier qualifier(decl, TCIMValue("Bytes"));
  decl.SetFlavor(TDecl::FlavorTranslatable);
  EXPECT_EQ(3u, qualifier.GetFlavor());
  EXPECT_FALSE(qualifier.GetPropagated());
  EXPECT_EQ(&decl, qualifier.GetDeclaration());
  EXPECT_EQ("Units", qualifier.GetName());
  EXPECT_EQ(4u, TCIMQualifier(decl, TCIMValue("Bytes"), TDecl::FlavorTranslatable).GetFlavor());
}

TEST(TCIMQualifier, HasTheTypeOfItsOwnValue) {
  Schema schema;
  const TDecl& decl = schema.Declare("Units", TDecl::FlavorNone);  // boolean
  const TCIMQualifier text(decl, TCIMValue("Bytes"));
  EXPECT_EQ(TCIMType::TypeString, text.GetType());
  EXPECT_FALSE(text.IsArray());
  EXPECT_TRUE(TCIMQualifier(decl, TCIMValue(TCIMType::TypeString, 2)).IsArray());
}

TEST(TCIMQualifier, IsIndependentOfItsCopies) {
  Schema schema;
  const TDecl& decl = schema.Declare("Units", TDecl::FlavorToSubclass);
  TCIMQualifier first(decl, TCIMValue("Bytes"));
  first.SetPropagated(true);
  TCIMQualifier copy(first);
  EXPECT_EQ(&decl, copy.GetDeclaration());
  EXPECT_EQ(TCIMValue("Bytes"), copy.GetValue());
  EXPECT_EQ(2u, copy.GetFlavor());
  EXPECT_TRUE(copy.GetPropagated());
  copy.SetValue(TCIMValue("Volts"));
  EXPECT_EQ(TCIMValue("Bytes"), first.GetValue());
  EXPECT_TRUE(first.GetPropagated());

  TCIMQualifier assigned(decl, TCIMValue("Hertz"));
  assigned = first;
  EXPECT_EQ(TCIMValue("Bytes"), assigned.GetValue());
  EXPECT_TRUE(assigned.GetPropagated());
  assigned.SetFlavor(TDecl::FlavorOverridable);
  EXPECT_EQ(2u, first.GetFlavor());
  EXPECT_NE(first.GetBody(), assigned.GetBody());
  EXPECT_NE(first.GetBody(), copy.GetBody());
}

TEST(TCIMQualifier, BecomesTheElementsOwnByEveryChange) {
  Schema schema;
  TCIMQualifier qualifier(schema.Declare("Units", TDecl::FlavorToSubclass), TCIMValue("Bytes"));
  const std::function<void()> changes[] = {
      [&] { qualifier.SetValue(TCIMValue("Bytes")); },
      [&] { qualifier.SetFlavor(TDecl::FlavorNone); },
      [&] { qualifier.UnsetFlavor(TDecl::FlavorNone); },
  };
  for (const auto& change : changes) {
    qualifier.SetPropagated(true);
    EXPECT_TRUE(qualifier.GetPropagated());
    change();
    EXPECT_FALSE(qualifier.GetPropagated());
  }
  qualifier.SetFlavor(TDecl::FlavorOverridable | TDecl::FlavorTranslatable);
  qualifier.UnsetFlavor(TDecl::FlavorToSubclass);
  EXPECT_EQ(5u, qualifier.GetFlavor());
}

TEST(TCIMQualifier, ComparesByNameAlone) {
  Schema schema;
  Schema other;
  const TDecl& lower = schema.Declare("units", TDecl::FlavorNone);
  const TDecl& upper = other.Declare("UNITS", TDecl::FlavorToSubclass);
  const TCIMQualifier bytes(lower, TCIMValue("Bytes"));
  const TCIMQualifier volts(upper, TCIMValue("Volts"));
  EXPECT_TRUE(bytes == volts);
  EXPECT_FALSE(bytes < volts);
  EXPECT_FALSE(volts < bytes);
  EXPECT_TRUE(*schema.Qualifier("KEY") < bytes);
  EXPECT_FALSE(*schema.Qualifier("KEY") == bytes);

  schema.Declare("ugly", TDecl::FlavorNone).SetName("1a");
  const TCIMQualifier invalid(*schema.Container().GetQualifierDecl("ugly"), TCIMValue(true));
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { (void)(bytes == invalid); }));
  EXPECT_EQ("CIM name '1a' is invalid", LastLogLine());
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { (void)(invalid < bytes); }));
}

// ---- Attachment: the same rule for classes and property declarations

class QualifierAttachment : public testing::TestWithParam<bool> {
 protected:
  QualifierAttachment() {
    fSchema.Declare("Fixed", TDecl::FlavorToSubclass);
    fSchema.Declare("Loose", TDecl::FlavorOverridable);
  }

  ICIMAllowQualifiers& Element() {
    return GetParam() ? static_cast<ICIMAllowQualifiers&>(fClass) : fDecl;
  }
  TCIMQualifier* Find(const std::string& name) {
    return GetParam() ? fClass.FindQualifier(name) : fDecl.FindQualifier(name);
  }
  std::string StatusOfAdding(TCIMQualifier& qualifier) {
    return StatusOf([&] { Element().AddQualifier(qualifier); });
  }

  Schema fSchema;
  TCIMClass fClass{fSchema.Container(), "ACME_Fan", nullptr};
  TCIMPropertyDecl fDecl{"Speed", fClass, TCIMValue(1u)};
};

INSTANTIATE_TEST_SUITE_P(OfClassesAndProperties, QualifierAttachment, testing::Bool());

TEST_P(QualifierAttachment, FindsInAnyCaseAndListsInOrder) {
  EXPECT_TRUE(Element().EnumerateQualifiers().empty());
  TCIMQualifier& loose = fSchema.Qualify(Element(), "Loose");
  TCIMQualifier& fixed = fSchema.Qualify(Element(), "Fixed");
  TCIMQualifier& key = fSchema.Qualify(Element(), "KEY");
  EXPECT_EQ(&fixed, Element().GetQualifier("FIXED"));
  EXPECT_EQ(&key, Find("kEy"));
  EXPECT_EQ((std::vector<TCIMQualifier const*>{&fixed, &key, &loose}),
            Element().EnumerateQualifiers());
}

TEST_P(QualifierAttachment, TellsWhatIsNotThere) {
  EXPECT_EQ(nullptr, Find("KEY"));
  EXPECT_EQ(nullptr, Find(""));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { Element().GetQualifier("KEY"); }));
  const std::unique_ptr<TCIMQualifier> key = fSchema.Qualifier("KEY");
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { Element().RemoveQualifier(*key); }));
  EXPECT_TRUE(LogLines().empty());
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { Element().GetQualifier("a b"); }));
  EXPECT_EQ("CIM name 'a b' is invalid", LastLogLine());
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { Find("a b"); }));
  const TDecl odd(fSchema.Container(), "a b", TCIMValue(true), TDecl::ScopeNone, TDecl::FlavorNone);
  TCIMQualifier unnamed(odd, TCIMValue(true));
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { Element().RemoveQualifier(unnamed); }));
}

TEST_P(QualifierAttachment, ReplacesAnOverridableOneWhateverTheNew) {
  fSchema.Qualify(Element(), "Loose", TCIMValue("one"));
  auto next = std::make_unique<TCIMQualifier>(*fSchema.Container().GetQualifierDecl("Loose"),
                                              TCIMValue(2u), TDecl::FlavorNone);
  TCIMQualifier& taken = *next;
  Element().AddQualifier(*next.release());
  EXPECT_EQ(&taken, Find("Loose"));
  EXPECT_EQ(1u, Element().EnumerateQualifiers().size());
  // The one that is there now is fixed.
  const std::unique_ptr<TCIMQualifier> third = fSchema.Qualifier("Loose");
  EXPECT_EQ("zelStatusNotOverridable", StatusOfAdding(*third));
}

TEST_P(QualifierAttachment, KeepsAFixedOne) {
  TCIMQualifier& fixed = fSchema.Qualify(Element(), "Fixed", TCIMValue("one"));
  const TDecl& decl = *fixed.GetDeclaration();
  TCIMQualifier otherValue(decl, TCIMValue("two"));
  EXPECT_EQ("zelStatusNotOverridable", StatusOfAdding(otherValue));
  TCIMQualifier otherFlavor(decl, TCIMValue("one"), TDecl::FlavorOverridable);
  EXPECT_EQ("zelStatusNotOverridable", StatusOfAdding(otherFlavor));
  TCIMQualifier same(decl, TCIMValue("one"));  // stays the caller's
  EXPECT_EQ("zelStatusOK", StatusOfAdding(same));
  EXPECT_EQ(&fixed, Find("Fixed"));
  EXPECT_EQ(TCIMValue("one"), fixed.GetValue());
  EXPECT_TRUE(LogLines().empty());
}

TEST_P(QualifierAttachment, IsDoneOncePerObject) {
  TCIMQualifier& loose = fSchema.Qualify(Element(), "Loose");
  EXPECT_EQ("zelStatusOK", StatusOfAdding(loose));
  EXPECT_EQ(&loose, Find("Loose"));
  EXPECT_EQ(TCIMValue(true), loose.GetValue());
}

TEST_P(QualifierAttachment, RemovesByName) {
  TCIMQualifier& loose = fSchema.Qualify(Element(), "Loose");
  fSchema.Qualify(Element(), "Fixed");
  Element().RemoveQualifier(loose);  // destroys it
  EXPECT_EQ(nullptr, Find("Loose"));
  const std::unique_ptr<TCIMQualifier> twin = fSchema.Qualifier("Fixed", TCIMValue("other"));
  Element().RemoveQualifier(*twin);
  EXPECT_EQ(nullptr, Find("Fixed"));
}

TEST_P(QualifierAttachment, RefusesInvalidNames) {
  TDecl& decl = fSchema.Declare("Odd", TDecl::FlavorNone);
  decl.SetName("a.b");
  TCIMQualifier odd(decl, TCIMValue(true));
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOfAdding(odd));
  EXPECT_EQ("CIM name 'a.b' is invalid", LastLogLine());
  EXPECT_TRUE(Element().EnumerateQualifiers().empty());
}

}  // namespace
