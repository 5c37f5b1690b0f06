#include "zelcore/TCIMPropertyDecl.h"

#include <gtest/gtest.h>

#include <memory>

#include "cim/TCIMPropertyDeclImpl.h"
#include "tests/cim/Schema.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"

namespace {

using TCIMType = TCIMValue::TCIMType;
using TNames = std::vector<std::string>;

TEST(TCIMPropertyDecl, TakesItsTypeFromItsValue) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  TCIMPropertyDecl decl("Speed", fan, TCIMValue(5u));
  EXPECT_EQ("Speed", decl.GetName());
  EXPECT_EQ(&fan, decl.GetClass());
  EXPECT_EQ(TCIMType::TypeUint32, decl.GetType());
  EXPECT_FALSE(decl.IsArray());
  EXPECT_EQ(TCIMValue(5u), decl.GetValue());
  EXPECT_EQ(&decl, decl.GetBody()->GetOwner());
  decl.SetValue(TCIMValue(TCIMType::TypeString, 4));
  EXPECT_TRUE(decl.IsArray());
  EXPECT_EQ(TCIMType::TypeString | TCIMType::TypeArray, decl.GetType());
  EXPECT_EQ("zelStatusOK", StatusOf([&] { decl.Validate(); }));

  TCIMPropertyDecl copy(decl);
  copy.SetName("Pace");
  EXPECT_EQ("Pace", decl.GetName());
}

TEST(TCIMPropertyDecl, IsNotMadeFromAnother) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  TCIMPropertyDecl decl("Speed", fan, TCIMValue(5u));
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { TCIMPropertyDecl(decl, fan); }));
  EXPECT_TRUE(LogLines().empty());
}

TEST(TCIMPropertyDecl, ComparesByNameInAnyCase) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  const TCIMPropertyDecl speed("Speed", fan, TCIMValue(5u));
  const TCIMPropertyDecl upper("SPEED", fan, TCIMValue("fast"));
  const TCIMPropertyDecl noise("noise", fan, TCIMValue(5u));
  const TCIMPropertyDecl invalid("a-b", fan, TCIMValue(5u));
  EXPECT_TRUE(speed == upper);
  EXPECT_FALSE(speed < upper);
  EXPECT_FALSE(upper < speed);
  EXPECT_FALSE(speed == noise);
  EXPECT_TRUE(noise < speed);
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { (void)(speed == invalid); }));
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { (void)(invalid < speed); }));
  EXPECT_EQ("CIM name 'a-b' is invalid", LastLogLine());
}

TEST(TCIMPropertyDecl, IsFoundInAnyCaseAndListedInOrder) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  TCIMPropertyDecl& speed = schema.AddProperty(fan, "Speed", TCIMValue(5u));
  schema.AddProperty(fan, "_id", TCIMValue(5u), {"KEY"});
  schema.AddProperty(fan, "apple", TCIMValue(5u), {"KEY"});
  EXPECT_EQ(&speed, fan.GetPropertyDecl("sPEED"));
  EXPECT_EQ(&speed, fan.FindPropertyDecl("SPEED"));
  EXPECT_EQ((TNames{"_id", "apple", "Name", "Speed"}), NamesOf(fan.EnumeratePropertyDecls()));
  EXPECT_EQ((TNames{"_id", "apple", "Name"}), fan.EnumerateKeyNames());

  EXPECT_EQ(nullptr, fan.FindPropertyDecl("Spee"));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { fan.GetPropertyDecl("Spee"); }));
  TCIMPropertyDecl absent("Spee", fan, TCIMValue(1u));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { fan.RemovePropertyDecl(absent); }));
  EXPECT_TRUE(LogLines().empty());
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { fan.FindPropertyDecl("1"); }));
  TCIMPropertyDecl invalid("1", fan, TCIMValue(1u));
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { fan.RemovePropertyDecl(invalid); }));
  fan.RemovePropertyDecl(speed);  // destroys it
  EXPECT_EQ(nullptr, fan.FindPropertyDecl("Speed"));
}

TEST(TCIMPropertyDecl, StaysUnderTheNameItWasAddedWith) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  TCIMPropertyDecl& decl = schema.AddProperty(fan, "Before", TCIMValue(5u), {"KEY"});
  decl.SetName("After");
  EXPECT_EQ(&decl, fan.FindPropertyDecl("before"));
  EXPECT_EQ(nullptr, fan.FindPropertyDecl("After"));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { fan.RemovePropertyDecl(decl); }));
  EXPECT_EQ((TNames{"After", "Name"}), fan.EnumerateKeyNames());
  // Properties are named as the declaration is when the instance is made.
  const std::unique_ptr<TCIMInstance> instance = schema.Instance(fan);
  EXPECT_NE(nullptr, instance->FindProperty("AFTER"));
  EXPECT_EQ(nullptr, instance->FindProperty("Before"));
  EXPECT_EQ(&decl, fan.FindPropertyDecl("before"));
  EXPECT_EQ(nullptr, fan.FindPropertyDecl("After"));
}

TEST(TCIMPropertyDecl, BecomesAKeyWithItsQualifier) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  TCIMPropertyDecl& speed = schema.AddProperty(fan, "Speed", TCIMValue(5u));
  EXPECT_EQ(TNames{"Name"}, fan.EnumerateKeyNames());
  TCIMQualifier& key = schema.Qualify(speed, "key");
  EXPECT_EQ((TNames{"Name", "Speed"}), fan.EnumerateKeyNames());
  key.SetValue(TCIMValue(false));
  EXPECT_EQ(TNames{"Name"}, fan.EnumerateKeyNames());
  key = *schema.Qualifier("KEY");
  EXPECT_EQ((TNames{"Name", "Speed"}), fan.EnumerateKeyNames());
  speed.RemoveQualifier(key);
  EXPECT_EQ(TNames{"Name"}, fan.EnumerateKeyNames());
}

TEST(AddPropertyDecl, RefusesWhatDoesNotFit) {
  Schema schema;
  TCIMClass& base = schema.AddClass("CIM_Base");
  schema.AddProperty(base, "Speed", TCIMValue(5u));
  TCIMClass& fan = schema.AddClass("CIM_Fan", &base);
  schema.AddProperty(fan, "Noise", TCIMValue(5u));
  const std::string override = "Attempt to override property ";
  struct {
    const char* name;
    TCIMValue value;
    bool override;
    const char* status;
    std::string line;
  } const rows[] = {
      {"Disk",  Schema::NullReference(&base),   false, "zelStatusNotAssociation",
       "Attempt to add reference property Disk to non-association class CIM_Fan"                                    },
      {"Speed", Schema::NullReference(&base),   true,  "zelStatusNotAssociation",
       "Attempt to add reference property Speed to non-association class CIM_Fan"                                   },
      {"a-b",   Schema::NullReference(&base),   true,  "zelStatusNotAssociation",
       "Attempt to add reference property a-b to non-association class CIM_Fan"                                     },
      {"a-b",   TCIMValue(5u),                  true,  "zelStatusInvalidCIMName", "CIM name 'a-b' is invalid"       },
      {"Fresh", TCIMValue(5u),                  true,  "zelStatusNotFound",
       override + "Fresh in class CIM_Fan: property doesn't exist in base class"                                    },
      {"SPEED", TCIMValue(5),                   true,  "zelStatusTypeMismatch",
       override + "SPEED in class CIM_Fan: different types"                                                         },
      {"Speed", TCIMValue(TCIMType::TypeUint32, 2),    true,                      "zelStatusTypeMismatch",
       override + "Speed in class CIM_Fan: different types"},
      {"Noise",       TCIMValue(5),                               true,                  "zelStatusTypeMismatch",
       override + "Noise in class CIM_Fan: different types"  },
      {"Noise",       TCIMValue(6u),                               true,                 "zelStatusAlreadyExists",
       override + "Noise in class CIM_Fan: original was defined in this class"},
      {"speed",       TCIMValue(5u),                               false,                 "zelStatusAlreadyExists",
       "Attempt to add property speed to class CIM_Fan: already exists" },
      {"Noise",       TCIMValue("loud"),                               false,             "zelStatusAlreadyExists",
       "Attempt to add property Noise to class CIM_Fan: already exists"},
  };
  const std::vector<TCIMPropertyDecl const*> before = fan.EnumeratePropertyDecls();
  for (const auto& row : rows) {
    const std::unique_ptr<TCIMPropertyDecl> decl = schema.Property(fan, row.name, row.value);
    if (row.override) schema.Qualify(*decl, "OVERRIDE");
    EXPECT_EQ(row.status, StatusOf([&] { decl->AddToContainer(); })) << row.line;
    EXPECT_EQ(row.line, LastLogLine());
    EXPECT_EQ(zelLogError, LastLogSeverity());
    EXPECT_EQ(before, fan.EnumeratePropertyDecls());
  }
}

TEST(AddPropertyDecl, OverridesWhatIsInherited) {
  Schema schema;
  TCIMClass& base = schema.AddClass("CIM_Base");
  TCIMPropertyDecl& original = schema.AddProperty(base, "Speed", TCIMValue(5u));
  TCIMClass& fan = schema.AddClass("CIM_Fan", &base);
  TCIMClass& sibling = schema.AddClass("CIM_Sibling", &base);
  std::unique_ptr<TCIMPropertyDecl> decl = schema.Property(fan, "SPEED", TCIMValue(7u));
  // The qualifier's being there counts, whatever its value.
  schema.Qualify(*decl, "OVERRIDE", TCIMValue(false));
  TCIMPropertyDecl& own = HandOver(std::move(decl));
  EXPECT_EQ(&own, fan.GetPropertyDecl("Speed"));
  EXPECT_EQ(&original, base.GetPropertyDecl("Speed"));
  EXPECT_EQ(&original, sibling.GetPropertyDecl("Speed"));
  EXPECT_EQ((TNames{"Name", "SPEED"}), NamesOf(fan.EnumeratePropertyDecls()));
  // Once more, one class below.
  TCIMClass& small = schema.AddClass("CIM_Small", &fan);
  EXPECT_EQ(&own, small.GetPropertyDecl("Speed"));
  TCIMPropertyDecl& again = schema.AddProperty(small, "Speed", TCIMValue(9u), {"OVERRIDE"});
  EXPECT_EQ(&again, small.GetPropertyDecl("Speed"));
}

TEST(AddPropertyDecl, TakesAnObjectOnce) {
  Schema schema;
  TCIMClass& base = schema.AddClass("CIM_Base");
  TCIMPropertyDecl& inherited = schema.AddProperty(base, "Speed", TCIMValue(5u));
  TCIMClass& fan = schema.AddClass("CIM_Fan", &base);
  schema.Qualify(inherited, "OVERRIDE");
  EXPECT_EQ("zelStatusOK", StatusOf([&] { fan.AddPropertyDecl(inherited); }));
  EXPECT_EQ(&inherited, fan.GetPropertyDecl("Speed"));
}

TEST(AddPropertyDecl, TakesReferencesIntoAssociations) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("CIM_Fan");
  const std::unique_ptr<TCIMClass> cools = schema.Class("CIM_Cools");
  schema.Qualify(*cools, "ASSOCIATION", TCIMValue(false));
  std::unique_ptr<TCIMPropertyDecl> decl =
      schema.Property(*cools, "Fan", Schema::NullReference(&fan));
  EXPECT_EQ("zelStatusNotAssociation", StatusOf([&] { decl->AddToContainer(); }));
  cools->GetQualifier("ASSOCIATION")->SetValue(TCIMValue(true));
  TCIMPropertyDecl& reference = HandOver(std::move(decl));
  EXPECT_EQ(&reference, cools->GetPropertyDecl("Fan"));
  // An array of references is no reference.
  TCIMClass& disk = schema.AddClass("CIM_Disk");
  EXPECT_EQ("zelStatusOK", StatusOf([&] {
              schema.AddProperty(disk, "Fans", TCIMValue(TCIMType::TypeReference, 2));
            }));
}

}  // namespace
