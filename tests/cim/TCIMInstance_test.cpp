#include "zelcore/TCIMInstance.h"

#include <gtest/gtest.h>

#include <memory>

#include "cim/TCIMInstanceImpl.h"
#include "cim/TCIMPropertyImpl.h"
#include "cim/TPathText.h"
#include "tests/cim/Schema.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "tests/support/TimeZone.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/TCIMProperty.h"
#include "zelcore/TOSSpecific.h"
#include "zelcore/detail/Ascii.h"

namespace {

using zelcore::detail::EqualsIgnoringAsciiCase;
using TCIMType = TCIMValue::TCIMType;
using TNames = std::vector<std::string>;

// The path without a reference in between.
std::string QuickPath(const TCIMInstance& instance) {
  TPathText text;
  instance.GetBody()->AppendPath(text);
  return std::string(text.View());
}

class TCIMInstanceTest : public testing::Test {
 protected:
  Schema fSchema;
  TCIMClass& fBase = fSchema.AddClass("ACME_Base");
  TCIMPropertyDecl& fSpeed = fSchema.AddProperty(fBase, "Speed", TCIMValue(5u));
  TCIMClass& fFan = fSchema.AddClass("ACME_Fan", &fBase);
  TCIMPropertyDecl& fBlades =
      fSchema.AddProperty(fFan, "blades", TCIMValue(TCIMType::TypeUint16, 8));
};

TEST_F(TCIMInstanceTest, HasAPropertyForEachDeclaration) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  EXPECT_EQ(&fFan, fan->GetClass());
  EXPECT_EQ(&fSchema.Container(), fan->GetContainer());
  EXPECT_EQ(fan.get(), fan->GetBody()->GetOwner());
  EXPECT_EQ((TNames{"blades", "Name", "Speed"}), NamesOf(fan->EnumerateProperties()));
  EXPECT_EQ(&fSpeed, fan->GetProperty("SPEED")->GetDeclaration());
  EXPECT_EQ(fan->GetProperty("speed"), fan->FindProperty("Speed"));
  EXPECT_EQ(fan->FindProperty("Speed"), fan->EnumerateProperties()[2]);
  EXPECT_TRUE(fan->GetProperty("BLADES")->IsArray());
  for (const TCIMProperty* property : fan->EnumerateProperties()) {
    EXPECT_TRUE(property->GetPropagated());
  }
  EXPECT_EQ(TCIMValue(5u), fan->GetProperty("Speed")->GetValue());
}

// Properties without a value of their own may look at the same body, but never change it.
TEST_F(TCIMInstanceTest, SharesNoValueWithAnother) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  const std::unique_ptr<TCIMInstance> other = fSchema.Instance(fFan);
  TCIMProperty& speed = *fan->GetProperty("Speed");
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { speed.SetValue(TCIMValue("fast")); }));
  EXPECT_TRUE(speed.GetPropagated());
  speed.SetValue(TCIMValue(7u));
  EXPECT_FALSE(speed.GetPropagated());
  EXPECT_TRUE(other->GetProperty("Speed")->GetPropagated());
  EXPECT_EQ(TCIMValue(5u), other->GetProperty("Speed")->GetValue());
  EXPECT_TRUE(fSchema.Instance(fFan)->GetProperty("Speed")->GetPropagated());

  fan->GetProperty("Name")->SetPrevValue(TCIMValue("before"));
  EXPECT_TRUE(fan->GetProperty("Name")->IsPrevValueDifferent());
  EXPECT_TRUE(fan->GetProperty("Name")->GetPropagated());
  EXPECT_FALSE(other->GetProperty("Name")->IsPrevValueDifferent());
}

TEST_F(TCIMInstanceTest, HasABodyOfItsOwnForEachProperty) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  const std::unique_ptr<TCIMInstance> other = fSchema.Instance(fFan);
  for (const TCIMProperty* property : fan->EnumerateProperties()) {
    TCIMPropertyImpl* const body = property->GetBody();
    EXPECT_EQ(property, body->GetOwner());
    EXPECT_EQ(body, property->GetBody());
    EXPECT_EQ(body, &property->GetShownBody());
    EXPECT_TRUE(property->GetPropagated());
    EXPECT_NE(body, other->FindProperty(property->GetName())->GetBody());
  }
  fSpeed.SetValue(TCIMValue(6u));
  EXPECT_EQ(TCIMValue(6u), fan->GetProperty("Speed")->GetValue());
  EXPECT_EQ(TCIMValue(6u), fSchema.Instance(fFan)->GetProperty("Speed")->GetValue());
}

TEST_F(TCIMInstanceTest, KeepsTheDeclarationsItWasMadeWith) {
  const std::unique_ptr<TCIMInstance> before = fSchema.Instance(fFan);
  fSchema.AddProperty(fFan, "Noise", TCIMValue(1u));
  const std::unique_ptr<TCIMInstance> after = fSchema.Instance(fFan);
  EXPECT_EQ(nullptr, before->FindProperty("Noise"));
  EXPECT_NE(nullptr, after->FindProperty("Noise"));
  fFan.RemovePropertyDecl(fBlades);
  EXPECT_NE(nullptr, after->FindProperty("Blades"));
  EXPECT_EQ("blades", after->GetProperty("Blades")->GetName());
  EXPECT_EQ(nullptr, fSchema.Instance(fFan)->FindProperty("Blades"));
}

TEST_F(TCIMInstanceTest, SetsPropertiesInAnyCase) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  const TCIMValue name("front");
  fan->SetPropertyValue("NAME", name);
  fan->SetPropertyValue("sPEED", TCIMValue(7u));
  fan->SetPrevPropertyValue("speed", TCIMValue(6u));
  fan->SetPrevPropertyValue("name");
  EXPECT_EQ(name, fan->GetProperty("Name")->GetValue());
  EXPECT_EQ(TCIMValue(7u), fan->GetProperty("Speed")->GetValue());
  EXPECT_EQ(TCIMValue(6u), fan->GetProperty("Speed")->GetPrevValue());
  EXPECT_TRUE(fan->GetProperty("Name")->GetPrevValue().IsNull());
  EXPECT_EQ("zelStatusTypeMismatch",
            StatusOf([&] { fan->SetPropertyValue("Speed", TCIMValue("fast")); }));
  EXPECT_EQ("SetValue: decl is type uint32 but value is type string", LastLogLine());
  EXPECT_EQ("zelStatusTypeMismatch",
            StatusOf([&] { fan->SetPrevPropertyValue("Speed", TCIMValue("fast")); }));
  EXPECT_EQ("SetPrevValue: decl is type uint32 but value is type string", LastLogLine());
}

TEST_F(TCIMInstanceTest, TakesAWholeProperty) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  fan->SetPropertyValue("Speed", TCIMValue(1u));
  const TCIMPropertyDecl other("SPEED", fBase, TCIMValue("slow"));
  TCIMProperty property(other, TCIMValue("fast"));
  property.SetPrevValue(TCIMValue("idle"));
  fan->SetProperty(property);
  const TCIMProperty& taken = *fan->GetProperty("Speed");
  EXPECT_EQ(&other, taken.GetDeclaration());
  EXPECT_EQ(TCIMValue("fast"), taken.GetValue());
  EXPECT_EQ(TCIMValue("idle"), taken.GetPrevValue());
  property.SetValue(TCIMValue("faster"));
  EXPECT_EQ(TCIMValue("fast"), taken.GetValue());
}

TEST_F(TCIMInstanceTest, TellsWhichPropertiesItDoesNotHave) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  const TCIMPropertyDecl noise("Noise", fBase, TCIMValue(1u));
  const auto expect = [&](const std::string& status, const std::string& name) {
    EXPECT_EQ(status, StatusOf([&] { fan->GetProperty(name); }));
    EXPECT_EQ(status, StatusOf([&] { fan->SetPropertyValue(name, TCIMValue(1u)); }));
    const TCIMValue value(1u);
    EXPECT_EQ(status, StatusOf([&] { fan->SetPropertyValue(name, value); }));
    EXPECT_EQ(status, StatusOf([&] { fan->SetPrevPropertyValue(name, value); }));
    EXPECT_EQ(status, StatusOf([&] { fan->SetPrevPropertyValue(name); }));
  };
  expect("zelStatusNotFound", "Noise");
  expect("zelStatusNotFound", "Spee");
  expect("zelStatusNotFound", "Speeds");
  expect("zelStatusNotFound", "");
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { fan->SetProperty(TCIMProperty(noise)); }));
  EXPECT_EQ(nullptr, fan->FindProperty("Noise"));
  EXPECT_TRUE(LogLines().empty());
  expect("zelStatusInvalidCIMName", "a-b");
  EXPECT_EQ("CIM name 'a-b' is invalid", LastLogLine());
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { fan->FindProperty("1"); }));
}

TEST_F(TCIMInstanceTest, IsNotMadeFromAnother) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { TCIMInstance(*fan, fFan); }));
}

TEST_F(TCIMInstanceTest, SharesItsBodyWithCopies) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  TCIMInstance copy(*fan);
  copy.SetPropertyValue("Speed", TCIMValue(9u));
  EXPECT_EQ(TCIMValue(9u), fan->GetProperty("Speed")->GetValue());
  EXPECT_EQ(fan->GetBody(), copy.GetBody());
}

TEST(TCIMInstance, OutlivesItsContainerInACopy) {
  auto schema = std::make_unique<Schema>();
  TCIMClass& fan = schema->AddClass("ACME_Fan");
  const TCIMInstance copy(schema->AddInstance(fan, "a name that is too long to stand in a value"));
  schema.reset();
  EXPECT_EQ(TCIMValue("a name that is too long to stand in a value"),
            copy.GetProperty("name")->GetValue());
}

TEST_F(TCIMInstanceTest, StartsAfreshWhereAnotherStood) {
  for (int i = 0; i < 3; ++i) {
    const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
    const std::unique_ptr<TCIMInstance> base = fSchema.Instance(fBase);
    for (const TCIMProperty* property : fan->EnumerateProperties()) {
      EXPECT_TRUE(property->GetPropagated());
      EXPECT_FALSE(property->IsPrevValueDifferent());
    }
    fan->SetPropertyValue("Name", TCIMValue("a name that is too long to stand in a value"));
    fan->SetPropertyValue("Blades", TCIMValue(TCIMType::TypeUint16, 8, {}));
    fan->SetPrevPropertyValue("Speed", TCIMValue(6u));
    base->SetPropertyValue("Speed", TCIMValue(7u));
  }
}

TEST_F(TCIMInstanceTest, FindsPropertiesInAnyOrderAndSpelling) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  const char* const names[] = {"Speed", "SPEED", "blades", "Name", "Blades", "name", "None"};
  for (const char* first : names) {
    for (const char* second : names) {
      for (const char* name : {first, second, first, first, second}) {
        const TCIMProperty* const property = fan->FindProperty(name);
        ASSERT_EQ(std::string(name) == "None", property == nullptr) << name;
        if (!property) continue;
        ASSERT_TRUE(EqualsIgnoringAsciiCase(name, property->GetName())) << name;
      }
    }
  }
}

TEST_F(TCIMInstanceTest, IsStampedWithTheTimeItIsMade) {
  for (const char* zone : {"UTC", "America/New_York", "Asia/Kolkata"}) {
    const TimeZone timeZone(zone);
    const std::unique_ptr<TCIMClass> cls = fSchema.Class("ACME_Stamped", &fBase);
    fSchema.AddProperty(*cls, "dateTimeOFCollection", Schema::Null(TCIMType::TypeDateTime));
    const TCIMDateTime before = TOSSpecific::GetLocalTime();
    const std::unique_ptr<TCIMInstance> instance = fSchema.Instance(*cls);
    const TCIMDateTime after = TOSSpecific::GetLocalTime();
    const TCIMProperty& property = *instance->GetProperty("DateTimeOfCollection");
    EXPECT_FALSE(property.GetPropagated());
    const TCIMDateTime stamp = property.GetValue();
    EXPECT_FALSE(stamp < before);
    EXPECT_FALSE(after < stamp);
    EXPECT_EQ(before.GetUTCOffset(), stamp.GetUTCOffset());
  }
}

TEST_F(TCIMInstanceTest, CannotBeMadeWhenItsStampIsNoDateTime) {
  fSchema.AddProperty(fFan, "DateTimeOfCollection", Schema::NullString());
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { fSchema.Instance(fFan); }));
  EXPECT_EQ("SetValue: decl is type string but value is type datetime", LastLogLine());
}

// ---- Validation and commitment

TEST_F(TCIMInstanceTest, NeedsAllItsKeys) {
  fSchema.AddProperty(fFan, "Alpha", TCIMValue(1u), {"KEY"});  // by its default
  fSchema.AddProperty(fFan, "Zeta", Schema::NullString(), {"KEY"});
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  EXPECT_EQ("zelStatusInvalidInstance", StatusOf([&] { fan->Validate(); }));
  EXPECT_EQ("Instance ACME_Fan: key property Name is NULL", LastLogLine());
  EXPECT_EQ(zelLogError, LastLogSeverity());
  EXPECT_EQ("zelStatusInvalidInstance", StatusOf([&] { fan->AddToContainer(); }));
  fan->SetPropertyValue("Name", TCIMValue("front"));
  EXPECT_EQ("zelStatusInvalidInstance", StatusOf([&] { fan->Validate(); }));
  EXPECT_EQ("Instance ACME_Fan: key property Zeta is NULL", LastLogLine());
  fan->SetPropertyValue("Zeta", TCIMValue(""));
  EXPECT_EQ("zelStatusOK", StatusOf([&] { fan->Validate(); }));
  fan->SetPropertyValue("Alpha", Schema::Null(TCIMType::TypeUint32));
  EXPECT_EQ("zelStatusInvalidInstance", StatusOf([&] { fan->Validate(); }));
  EXPECT_TRUE(fFan.EnumerateInstances(false).empty());
}

TEST_F(TCIMInstanceTest, LooksAtTheKeysThatItsClassHasNow) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  fan->SetPropertyValue("Name", TCIMValue("front"));
  fSchema.Qualify(fSpeed, "KEY");
  EXPECT_EQ("zelStatusOK", StatusOf([&] { fan->Validate(); }));
  EXPECT_EQ("ACME_Fan.Name=\"front\",Speed=\"5\"", fan->BuildPath().GetPath());
  EXPECT_EQ("ACME_Fan.Name=\"front\",Speed=\"5\"", QuickPath(*fan));
  fSchema.AddProperty(fFan, "Late", TCIMValue(1u), {"KEY"});
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { fan->Validate(); }));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { fan->BuildPath(); }));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { fFan.AddInstance(*fan); }));
}

TEST_F(TCIMInstanceTest, NeedsNoKeysInADiffContainerButCannotBeCommittedWithoutThem) {
  fSchema.Container().hackhack_TurnIntoADiffContainer();
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  EXPECT_EQ("zelStatusOK", StatusOf([&] { fan->Validate(); }));
  EXPECT_EQ("zelStatusValueIsNULL", StatusOf([&] { fan->AddToContainer(); }));
  EXPECT_TRUE(fFan.EnumerateInstances(false).empty());
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(TCIMInstanceTest, IsCommittedOnce) {
  std::unique_ptr<TCIMInstance> made = fSchema.Instance(fFan);
  made->SetPropertyValue("Name", TCIMValue("front"));
  TCIMInstance& fan = HandOver(std::move(made));
  fan.SetPropertyValue("Name", TCIMValue("back"));
  fan.AddToContainer();
  fFan.AddInstance(fan);
  EXPECT_EQ(std::vector<TCIMInstance*>{&fan}, fFan.EnumerateInstances(false));
  // A key that changes later does not move it.
  EXPECT_EQ(&fan, fFan.FindInstance(fSchema.PathOf(fFan, "front")));
  EXPECT_EQ(nullptr, fFan.FindInstance(fSchema.PathOf(fFan, "back")));
  EXPECT_EQ("ACME_Fan.Name=\"back\"", fan.BuildPath().GetPath());
}

TEST_F(TCIMInstanceTest, IsCommittedAsTheHandleThatIsHandedOver) {
  TCIMInstance maker(&fFan);
  maker.SetPropertyValue("Name", TCIMValue("front"));
  TCIMInstance& copy = HandOver(std::make_unique<TCIMInstance>(maker));
  maker.AddToContainer();
  EXPECT_EQ(std::vector<TCIMInstance*>{&copy}, fFan.EnumerateInstances(false));
}

TEST_F(TCIMInstanceTest, RunsTheValidationOfADerivedInstance) {
  struct Refusing : TCIMInstance {
    using TCIMInstance::TCIMInstance;
    void Validate() const override { throw TZELException(zelStatusAccessDenied); }
  };
  Refusing fan(&fFan);
  fan.SetPropertyValue("Name", TCIMValue("front"));
  EXPECT_EQ("zelStatusAccessDenied", StatusOf([&] { fan.AddToContainer(); }));
  EXPECT_TRUE(fFan.EnumerateInstances(false).empty());
}

TEST_F(TCIMInstanceTest, NamesItsKeysInThePathByTheirBytes) {
  const std::unique_ptr<TCIMClass> cls = fSchema.Class("ACME_Keys");
  for (const char* name : {"alpha", "Zeta", "_x", "Beta"}) {
    fSchema.AddProperty(*cls, name, TCIMValue(1u), {"KEY"});
  }
  fSchema.AddProperty(*cls, "Other", TCIMValue(1u));
  fSchema.AddProperty(*cls, "Text", TCIMValue("a\"b"), {"KEY"});
  const std::unique_ptr<TCIMInstance> instance = fSchema.Instance(*cls);
  instance->SetPropertyValue("Zeta", TCIMValue(255u));
  const std::string path = "ACME_Keys.Beta=\"1\",Text=\"a\"b\",Zeta=\"255\",_x=\"1\",alpha=\"1\"";
  EXPECT_EQ(path, instance->BuildPath().GetPath());
  EXPECT_EQ(path, QuickPath(*instance));
  EXPECT_EQ("zelStatusInvalidOpSequence",
            StatusOf([&] { instance->BuildPath().SetClassName("ACME_Keys"); }));
}

TEST_F(TCIMInstanceTest, HasNoPathWithAKeyOfAnotherType) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  const TCIMPropertyDecl number("Name", fBase, TCIMValue(5u));
  fan->SetProperty(TCIMProperty(number));
  for (const bool whole : {true, false}) {
    ClearLog();
    EXPECT_EQ("zelStatusTypeMismatch",
              StatusOf([&] { whole ? (void)fan->BuildPath() : (void)QuickPath(*fan); }));
    EXPECT_EQ(TNames{"Declaration type: string Value type: uint32"}, LogLines());
  }
}

TEST_F(TCIMInstanceTest, HasABarePathWithoutKeys) {
  const std::unique_ptr<TCIMClass> cls = fSchema.Class("ACME_Bare");
  fSchema.Qualify(*cls, "ABSTRACT");
  const std::unique_ptr<TCIMInstance> instance = fSchema.Instance(*cls);
  EXPECT_EQ("ACME_Bare", instance->BuildPath().GetPath());
  EXPECT_EQ("ACME_Bare", QuickPath(*instance));
  EXPECT_TRUE(instance->EnumerateProperties().empty());
}

// ---- Comparison

TEST_F(TCIMInstanceTest, EqualsAnInstanceOfItsClassWithEqualProperties) {
  const std::unique_ptr<TCIMInstance> one = fSchema.Instance(fFan);
  const std::unique_ptr<TCIMInstance> two = fSchema.Instance(fFan);
  EXPECT_TRUE(*one == *two);
  two->SetPropertyValue("Speed", TCIMValue(5u));
  EXPECT_TRUE(*one == *two);
  two->SetPropertyValue("Speed", TCIMValue(6u));
  EXPECT_FALSE(*one == *two);
  EXPECT_FALSE(*fSchema.Instance(fBase) ==
               *fSchema.Instance(fSchema.AddClass("ACME_Twin", &fBase)));
  fSchema.AddProperty(fFan, "Noise", TCIMValue(1u));
  EXPECT_FALSE(*one == *fSchema.Instance(fFan));
}

TEST_F(TCIMInstanceTest, IsOrderedByItsClassAlone) {
  const std::unique_ptr<TCIMInstance> one = fSchema.Instance(fFan);
  const std::unique_ptr<TCIMInstance> two = fSchema.Instance(fFan);
  one->SetPropertyValue("Speed", TCIMValue(1u));
  EXPECT_FALSE(*one < *two);
  EXPECT_FALSE(*two < *one);
  const std::unique_ptr<TCIMInstance> other = fSchema.Instance(fBase);
  EXPECT_EQ(std::less<>()(&fFan, &fBase), *one < *other);
  EXPECT_EQ(std::less<>()(&fBase, &fFan), *other < *one);
}

// ---- Size

TEST(TCIMInstance, FindsItsPropertiesAmongManyAndAmongCrowdingNames) {
  // Names for which a table of places is of no use: FNV-1a over its 2^16 low bits finds them.
  Schema schema;
  const std::unique_ptr<TCIMClass> cls = schema.Class("ACME_Many");
  TNames names;
  const auto hash = [](const std::string& name) {
    std::uint32_t sum = 2166136261u;
    for (const char c : name) sum = (sum ^ static_cast<unsigned char>(c)) * 16777619u;
    return sum ^ (sum >> 15);
  };
  for (int i = 0; names.size() < 100; ++i) {
    const std::string name = "p" + std::to_string(i);
    if ((hash(name) & 0xFFF) == 7) names.push_back(name);
  }
  for (int i = 0; i < 1000; ++i) names.push_back("Q" + std::to_string(i));
  for (const std::string& name : names) {
    schema.AddProperty(*cls, name, TCIMValue(name));
  }
  const std::unique_ptr<TCIMInstance> instance = schema.Instance(*cls);
  for (const std::string& name : names) {
    ASSERT_EQ(TCIMValue(name), instance->GetProperty(name)->GetValue());
  }
  EXPECT_NE(nullptr, instance->FindProperty("q999"));
  EXPECT_EQ(nullptr, instance->FindProperty("q1000"));
  EXPECT_EQ(nullptr, instance->FindProperty(""));
  EXPECT_EQ(nullptr, instance->FindProperty("zzz"));
}

}  // namespace
