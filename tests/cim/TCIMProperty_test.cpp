#include "zelcore/TCIMProperty.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "cim/TCIMPropertyImpl.h"
#include "tests/cim/Schema.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"

namespace {

using TCIMType = TCIMValue::TCIMType;

class TCIMPropertyTest : public testing::Test {
 protected:
  Schema fSchema;
  TCIMClass& fFan = fSchema.AddClass("ACME_Fan");
  const TCIMPropertyDecl& fDecl = fSchema.AddProperty(fFan, "Speed", TCIMValue(5u));
};

TEST_F(TCIMPropertyTest, ShowsItsDeclarationsDefaultUntilItHasAValue) {
  TCIMProperty property(fDecl);
  EXPECT_EQ("Speed", property.GetName());
  EXPECT_EQ(TCIMType::TypeUint32, property.GetType());
  EXPECT_FALSE(property.IsArray());
  EXPECT_EQ(&fDecl, property.GetDeclaration());
  EXPECT_EQ(&property, property.GetBody()->GetOwner());
  EXPECT_TRUE(property.GetPropagated());
  EXPECT_EQ(TCIMValue(5u), property.GetValue());
  property.SetValue(TCIMValue(5u));
  EXPECT_FALSE(property.GetPropagated());
  property.SetValue(TCIMValue(7u));
  EXPECT_EQ(TCIMValue(7u), property.GetValue());
  property.SetValue(Schema::Null(TCIMType::TypeUint32));
  EXPECT_TRUE(property.GetValue().IsNull());
  EXPECT_FALSE(property.GetPropagated());
}

TEST_F(TCIMPropertyTest, TakesValuesByCopyAndByMove) {
  const TCIMValue copied(7u);
  TCIMProperty property(fDecl, copied);
  EXPECT_EQ(TCIMValue(7u), property.GetValue());
  TCIMValue moved(9u);
  property.SetValue(std::move(moved));
  EXPECT_EQ(TCIMValue(9u), property.GetValue());
  TCIMValue wrong("fast");
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { property.SetValue(std::move(wrong)); }));
  EXPECT_EQ(TCIMValue("fast"), wrong);
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { TCIMProperty(fDecl, wrong); }));
  property.SetValue(property.GetBody()->Value());
  EXPECT_EQ(TCIMValue(9u), property.GetValue());
}

TEST_F(TCIMPropertyTest, RefusesValuesOfOtherTypes) {
  TCIMProperty property(fDecl, TCIMValue(7u));
  struct {
    TCIMValue value;
    const char* line;
  } const rows[] = {
      {TCIMValue("fast"),              "SetValue: decl is type uint32 but value is type string"},
      {TCIMValue(7),                   "SetValue: decl is type uint32 but value is type sint32"},
      {TCIMValue(7ul),                 "SetValue: decl is type uint32 but value is type uint64"},
      {Schema::NullString(),           "SetValue: decl is type uint32 but value is type string"},
      {TCIMValue(TCIMType::TypeUint32, 2),
       "SetValue: decl is type uint32 but value is type uint32"},
      {Schema::Null(TCIMType::TypeReference),
       "SetValue: decl is type uint32 but value is type reference"                                                 },
  };
  for (const auto& row : rows) {
    EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { property.SetValue(row.value); })) << row.line;
    EXPECT_EQ(row.line, LastLogLine());
    EXPECT_EQ(zelLogError, LastLogSeverity());
    EXPECT_EQ(TCIMValue(7u), property.GetValue());
    ClearLog();
    EXPECT_EQ(row.value.IsNull() ? "zelStatusOK" : "zelStatusTypeMismatch",
              StatusOf([&] { property.SetPrevValue(row.value); }));
    const std::string line = row.value.IsNull() ? "" : "SetPrev" + std::string(row.line).substr(3);
    EXPECT_EQ(line, LastLogLine());
  }
}

TEST_F(TCIMPropertyTest, RefersToTheDeclaredClassOrASubclass) {
  TCIMClass& element = fSchema.AddClass("CIM_Element");
  TCIMClass& device = fSchema.AddClass("CIM_Device", &element);
  TCIMClass& association = fSchema.AddAssociation("CIM_Link", element, element);
  TCIMProperty property(*association.GetPropertyDecl("Antecedent"));
  property.SetValue(TCIMValue(fSchema.PathOf(element, "a")));
  property.SetValue(Schema::NullReference(&device));
  property.SetValue(TCIMValue(fSchema.PathOf(device, "b")));
  EXPECT_EQ("zelStatusTypeMismatch",
            StatusOf([&] { property.SetValue(TCIMValue(fSchema.PathOf(fFan, "c"))); }));
  EXPECT_EQ("SetValue: decl references type CIM_Element but value references ACME_Fan",
            LastLogLine());
  EXPECT_EQ(zelLogError, LastLogSeverity());
  EXPECT_EQ("zelStatusTypeMismatch",
            StatusOf([&] { property.SetValue(Schema::NullReference(nullptr)); }));
  EXPECT_EQ("SetValue: decl references type CIM_Element but value references ", LastLogLine());
  EXPECT_EQ("zelStatusTypeMismatch",
            StatusOf([&] { property.SetPrevValue(TCIMValue(fSchema.PathOf(fFan, "c"))); }));
  EXPECT_EQ("SetPrevValue: decl references type CIM_Element but value references ACME_Fan",
            LastLogLine());
  EXPECT_FALSE(property.IsPrevValueDifferent());
  EXPECT_EQ("CIM_Device.Name=\"b\"", property.GetValue().ToString(10));
  property.SetPrevValue(Schema::NullReference(&fFan));  // NULL: not looked at
  EXPECT_TRUE(property.IsPrevValueDifferent());
}

TEST_F(TCIMPropertyTest, RefersToAnyClassWhenTheDeclarationNamesNone) {
  const std::unique_ptr<TCIMClass> link = fSchema.Class("CIM_Link");
  const TCIMPropertyDecl decl("Any", *link, Schema::NullReference(nullptr));
  TCIMProperty property(decl);
  EXPECT_EQ("zelStatusOK", StatusOf([&] {
              property.SetValue(TCIMValue(fSchema.PathOf(fFan, "c")));
              property.SetValue(Schema::NullReference(nullptr));
            }));
}

TEST_F(TCIMPropertyTest, RemembersAPreviousValue) {
  TCIMProperty property(fDecl);
  EXPECT_FALSE(property.IsPrevValueDifferent());
  EXPECT_EQ(TCIMValue(5u), property.GetPrevValue());
  property.SetValue(TCIMValue(7u));
  EXPECT_EQ(TCIMValue(7u), property.GetPrevValue());
  property.SetPrevValue(TCIMValue(6u));
  EXPECT_TRUE(property.IsPrevValueDifferent());
  EXPECT_EQ(TCIMValue(6u), property.GetPrevValue());
  property.SetValue(TCIMValue(8u));
  EXPECT_EQ(TCIMValue(6u), property.GetPrevValue());
  property.SetPrevValue();
  EXPECT_TRUE(property.IsPrevValueDifferent());
  EXPECT_TRUE(property.GetPrevValue().IsNull());
  EXPECT_EQ(TCIMType::TypeNone, property.GetPrevValue().GetType());
  EXPECT_EQ(TCIMValue(8u), property.GetValue());
}

TEST_F(TCIMPropertyTest, IsCopiedDeeply) {
  TCIMProperty first(fDecl, TCIMValue(7u));
  first.SetPrevValue(TCIMValue(6u));
  TCIMProperty copy(first);
  EXPECT_EQ(TCIMValue(7u), copy.GetValue());
  EXPECT_EQ(TCIMValue(6u), copy.GetPrevValue());
  EXPECT_TRUE(copy.IsPrevValueDifferent());
  EXPECT_EQ(&copy, copy.GetBody()->GetOwner());
  copy.SetValue(TCIMValue(8u));
  copy.SetPrevValue();
  EXPECT_EQ(TCIMValue(7u), first.GetValue());
  EXPECT_EQ(TCIMValue(6u), first.GetPrevValue());

  const TCIMPropertyDecl other("Noise", fFan, TCIMValue("none"));
  TCIMProperty assigned(other, TCIMValue("loud"));
  assigned.SetPrevValue(TCIMValue("low"));
  assigned = TCIMProperty(fDecl);
  EXPECT_EQ(&fDecl, assigned.GetDeclaration());
  EXPECT_TRUE(assigned.GetPropagated());
  EXPECT_FALSE(assigned.IsPrevValueDifferent());
  EXPECT_EQ(TCIMValue(5u), assigned.GetValue());
  EXPECT_EQ(&assigned, assigned.GetBody()->GetOwner());
  TCIMProperty& itself = first;
  first = itself;
  EXPECT_EQ(TCIMValue(7u), first.GetValue());
  EXPECT_EQ(TCIMValue(6u), first.GetPrevValue());
}

TEST_F(TCIMPropertyTest, ChecksItsValuesAgainWhenItIsCopied) {
  TCIMPropertyDecl decl("Noise", fFan, TCIMValue("none"));
  TCIMProperty noise(decl, TCIMValue("loud"));
  TCIMProperty other(decl, TCIMValue("quiet"));
  decl.SetValue(TCIMValue(1u));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { TCIMProperty copy(noise); }));
  EXPECT_EQ("SetValue: decl is type uint32 but value is type string", LastLogLine());
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { other = noise; }));
  EXPECT_EQ(TCIMValue("quiet"), other.GetValue());
}

TEST_F(TCIMPropertyTest, ComparesByNameThenByValue) {
  const TCIMPropertyDecl upper("SPEED", fFan, TCIMValue(7u));
  const TCIMPropertyDecl noise("Noise", fFan, TCIMValue(9u));
  const TCIMProperty speed7(fDecl, TCIMValue(7u));
  const TCIMProperty speed5(fDecl);  // by its default
  EXPECT_TRUE(speed7 == TCIMProperty(upper));
  EXPECT_FALSE(speed7 == speed5);
  EXPECT_TRUE(speed5 == TCIMProperty(fDecl, TCIMValue(5u)));
  EXPECT_TRUE(speed5 < speed7);
  EXPECT_FALSE(speed7 < speed5);
  EXPECT_FALSE(speed7 < TCIMProperty(upper));
  EXPECT_TRUE(TCIMProperty(noise) < speed5);
  EXPECT_FALSE(speed5 < TCIMProperty(noise));
  EXPECT_FALSE(speed7 == TCIMProperty(noise, TCIMValue(7u)));
}

}  // namespace
