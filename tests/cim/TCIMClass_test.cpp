#include "zelcore/TCIMClass.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <unordered_map>

#include "cim/TCIMClassImpl.h"
#include "cim/TInstanceRegistry.h"
#include "tests/cim/Schema.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"

namespace {

using TClasses = std::vector<TCIMClass*>;
using TNames = std::vector<std::string>;

TNames PathsOf(const std::vector<TCIMInstance*>& instances) {
  TNames paths;
  for (const TCIMInstance* instance : instances) paths.push_back(instance->BuildPath().GetPath());
  return paths;
}

std::set<TCIMClass*> AssociationsOf(const TCIMClass& cls) {
  const auto& associations = cls.GetBody()->GetAssociationClasses();
  return {associations.begin(), associations.end()};
}

TEST(TCIMClass, HangsBelowTheRootWithoutASuperclass) {
  Schema schema;
  TCIMClass* root = schema.Container().GetRootClass();
  const TCIMClass& fan = schema.AddClass("ACME_Fan");
  EXPECT_EQ(root, fan.GetSuperClass());
  EXPECT_EQ(&schema.Container(), fan.GetContainer());
  EXPECT_FALSE(fan.IsRootClass());
  EXPECT_EQ(TClasses{const_cast<TCIMClass*>(&fan)}, root->EnumerateSubClasses(false));
}

TEST(TCIMClass, SharesItsBodyWithCopies) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  const TCIMClass copy(fan);
  EXPECT_EQ(fan.GetBody(), copy.GetBody());
  schema.AddProperty(fan, "Speed", TCIMValue(1u));
  EXPECT_NE(nullptr, copy.FindPropertyDecl("Speed"));
}

TEST(TCIMClass, ComparesNamesAsGiven) {
  Schema schema;
  Schema other;
  const TCIMClass& upper = schema.AddClass("CIM_A");
  const TCIMClass& lower = other.AddClass("cim_a");
  const std::unique_ptr<TCIMClass> twin = other.Class("CIM_A");
  EXPECT_FALSE(upper == lower);
  EXPECT_TRUE(upper < lower);
  EXPECT_FALSE(lower < upper);
  EXPECT_TRUE(upper == *twin);
  EXPECT_FALSE(upper < *twin);
}

TEST(TCIMClass, ReadsBooleanQualifiersByOneRule) {
  Schema schema;
  struct {
    TCIMValue value;
    const char* status;
    bool isTrue;
  } const rows[] = {
      {TCIMValue(true),                                "zelStatusOK",           true },
      {TCIMValue(false),                               "zelStatusOK",           false},
      {Schema::Null(TCIMValue::TCIMType::TypeBoolean), "zelStatusOK",           false},
      {Schema::NullString(),                           "zelStatusOK",           false},
      {TCIMValue("true"),                              "zelStatusTypeMismatch", false},
      {TCIMValue(1u),                                  "zelStatusTypeMismatch", false},
  };
  for (const auto& row : rows) {
    for (const bool association : {false, true}) {
      const std::unique_ptr<TCIMClass> cls = schema.Class("ACME_Fan");
      EXPECT_FALSE(association ? cls->IsAssociation() : cls->IsAbstract());
      schema.Qualify(*cls, association ? "ASSOCIATION" : "ABSTRACT", row.value);
      bool result = false;
      EXPECT_EQ(row.status,
                StatusOf([&] { result = association ? cls->IsAssociation() : cls->IsAbstract(); }));
      EXPECT_EQ(row.isTrue, result);
    }
    const std::unique_ptr<TCIMClass> cls = schema.Class("ACME_Fan");
    schema.Qualify(schema.AddProperty(*cls, "Name", Schema::NullString()), "KEY", row.value);
    TNames keys;
    EXPECT_EQ(row.status, StatusOf([&] { keys = cls->EnumerateKeyNames(); }));
    EXPECT_EQ(row.isTrue ? TNames{"Name"} : TNames{}, keys);
    const std::string invalid = row.isTrue ? "zelStatusOK" : "zelStatusInvalidClass";
    EXPECT_EQ(row.status == std::string("zelStatusOK") ? invalid : row.status,
              StatusOf([&] { cls->Validate(); }));
  }
  EXPECT_EQ(3u, LogLines().size());  // the three classes without keys
}

TEST(TCIMClass, NeedsAKeyUnlessItIsAbstract) {
  Schema schema;
  std::unique_ptr<TCIMClass> cls = schema.Class("X");
  schema.AddProperty(*cls, "Name", Schema::NullString());
  EXPECT_EQ("zelStatusInvalidClass", StatusOf([&] { cls->Validate(); }));
  EXPECT_EQ("Class X has no keys", LastLogLine());
  EXPECT_EQ(zelLogError, LastLogSeverity());
  EXPECT_EQ("zelStatusInvalidClass", StatusOf([&] { cls->AddToContainer(); }));
  EXPECT_EQ(nullptr, schema.Container().FindClass("X"));
  EXPECT_TRUE(schema.Container().GetRootClass()->EnumerateSubClasses(false).empty());

  TCIMQualifier& abstract = schema.Qualify(*cls, "ABSTRACT");
  EXPECT_EQ("zelStatusOK", StatusOf([&] { cls->Validate(); }));
  abstract.SetValue(TCIMValue(false));
  EXPECT_EQ("zelStatusInvalidClass", StatusOf([&] { cls->Validate(); }));
  schema.AddProperty(*cls, "Id", TCIMValue(1u), {"KEY"});
  EXPECT_EQ("zelStatusOK", StatusOf([&] { HandOver(std::move(cls)); }));
}

TEST(TCIMClass, CountsInheritedKeys) {
  Schema schema;
  TCIMClass& base = schema.AddClass("ACME_Base");
  EXPECT_EQ(TNames{"Name"}, schema.AddClass("ACME_Fan", &base).EnumerateKeyNames());
}

TEST(TCIMClass, RunsTheValidationOfADerivedClass) {
  struct Refusing : TCIMClass {
    using TCIMClass::TCIMClass;
    void Validate() const override { throw TZELException(zelStatusAccessDenied); }
  };
  TContainer container;
  const Refusing cls(container, "ACME_Fan", nullptr);
  EXPECT_EQ("zelStatusAccessDenied", StatusOf([&] { cls.AddToContainer(); }));
  EXPECT_EQ(nullptr, container.FindClass("ACME_Fan"));
}

TEST(TCIMClass, IsRegisteredAsTheHandleThatMadeIt) {
  Schema schema;
  TCIMClass* fan = schema.Class("ACME_Fan").release();
  schema.AddProperty(*fan, "Name", Schema::NullString(), {"KEY"});
  const TCIMClass copy(*fan);
  copy.AddToContainer();
  EXPECT_EQ(fan, schema.Container().GetClass("ACME_Fan"));
  EXPECT_EQ(TClasses{fan}, schema.Container().GetRootClass()->EnumerateSubClasses(false));
}

TEST(TCIMClass, StaysWithItsMakerWhenItsAssociationIsNoBoolean) {
  Schema schema;
  const std::unique_ptr<TCIMClass> cls = schema.Class("ACME_Fan");
  schema.AddProperty(*cls, "Name", Schema::NullString(), {"KEY"});
  schema.Qualify(*cls, "ASSOCIATION", TCIMValue("yes"));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { cls->AddToContainer(); }));
  EXPECT_EQ(nullptr, schema.Container().FindClass("ACME_Fan"));
}

// ---- Inheritance

TEST(TCIMClass, InheritsPropertiesAsTheyAreAtTheTime) {
  Schema schema;
  TCIMClass& base = schema.AddClass("ACME_Base");
  TCIMClass& early = schema.AddClass("ACME_Early", &base);
  TCIMPropertyDecl& speed = schema.AddProperty(base, "Speed", TCIMValue(1u));
  TCIMClass& late = schema.AddClass("ACME_Late", &base);
  EXPECT_EQ(nullptr, early.FindPropertyDecl("Speed"));
  EXPECT_EQ(&speed, late.FindPropertyDecl("SPEED"));
  EXPECT_EQ(&base, late.GetPropertyDecl("Speed")->GetClass());
  EXPECT_EQ(base.GetPropertyDecl("Name"), early.GetPropertyDecl("Name"));
  schema.AddProperty(early, "Noise", TCIMValue(1u));
  EXPECT_EQ(nullptr, base.FindPropertyDecl("Noise"));
  EXPECT_EQ(nullptr, late.FindPropertyDecl("Noise"));
  base.RemovePropertyDecl(speed);
  EXPECT_EQ(nullptr, base.FindPropertyDecl("Speed"));
  EXPECT_EQ(&speed, late.FindPropertyDecl("Speed"));
}

TEST(TCIMClass, InheritsQualifiersThatGoToSubclasses) {
  Schema schema;
  schema.Declare("Down", TCIMQualifierDecl::FlavorToSubclass);
  schema.Declare("Stays", TCIMQualifierDecl::FlavorOverridable);
  TCIMClass& base = schema.AddClass("ACME_Base");
  TCIMQualifier& down = schema.Qualify(base, "Down", TCIMValue("one"));
  schema.Qualify(base, "Stays");
  TCIMClass& fan = schema.AddClass("ACME_Fan", &base);
  EXPECT_EQ(TNames{"Down"}, NamesOf(fan.EnumerateQualifiers()));
  TCIMQualifier* inherited = fan.GetQualifier("down");
  EXPECT_TRUE(inherited->GetPropagated());
  EXPECT_EQ(TCIMValue("one"), inherited->GetValue());
  EXPECT_NE(&down, inherited);
  EXPECT_FALSE(down.GetPropagated());
  inherited->SetValue(TCIMValue("two"));
  EXPECT_EQ(TCIMValue("one"), down.GetValue());
  // The next generation, and the snapshot.
  EXPECT_EQ(TCIMValue("two"), schema.AddClass("ACME_Small", &fan).GetQualifier("Down")->GetValue());
  base.RemoveQualifier(down);
  EXPECT_NE(nullptr, fan.FindQualifier("Down"));
}

TEST(TCIMClass, InheritsNothingFromTheRootWithoutASuperclass) {
  Schema schema;
  schema.AddProperty(*schema.Container().GetRootClass(), "Hidden", TCIMValue(1u));
  const std::unique_ptr<TCIMClass> below = schema.Class("ACME_Below");
  EXPECT_TRUE(below->EnumeratePropertyDecls().empty());
  const std::unique_ptr<TCIMClass> named =
      schema.Class("ACME_Named", schema.Container().GetRootClass());
  EXPECT_EQ(TNames{"Hidden"}, NamesOf(named->EnumeratePropertyDecls()));
}

TEST(TCIMClass, IsASubclassOfItselfAndAllAbove) {
  Schema schema;
  TCIMClass* root = schema.Container().GetRootClass();
  TCIMClass& base = schema.AddClass("ACME_Base");
  TCIMClass& fan = schema.AddClass("ACME_Fan", &base);
  TCIMClass& small = schema.AddClass("ACME_Small", &fan);
  TCIMClass& disk = schema.AddClass("ACME_Disk", &base);
  for (const TCIMClass* above : TClasses{&small, &fan, &base, root}) {
    EXPECT_TRUE(small.IsSubclassOf(above)) << above->GetName();
  }
  EXPECT_FALSE(small.IsSubclassOf(&disk));
  EXPECT_FALSE(base.IsSubclassOf(&fan));
  EXPECT_FALSE(root->IsSubclassOf(&base));
  EXPECT_TRUE(root->IsSubclassOf(root));
  EXPECT_FALSE(fan.IsSubclassOf(nullptr));
  EXPECT_FALSE(root->IsSubclassOf(nullptr));
  // Classes are told apart by their names alone, case included.
  Schema other;
  EXPECT_TRUE(small.IsSubclassOf(other.Class("ACME_Fan").get()));
  EXPECT_FALSE(small.IsSubclassOf(other.Class("acme_fan").get()));
  EXPECT_TRUE(small.IsSubclassOf(other.Container().GetRootClass()));
}

TEST(TCIMClass, ListsSubclassesDepthFirstInTheOrderOfAddition) {
  Schema schema;
  TCIMClass* root = schema.Container().GetRootClass();
  TCIMClass& z = schema.AddClass("Z");
  TCIMClass& a = schema.AddClass("A");
  TCIMClass& z2 = schema.AddClass("Z2", &z);
  TCIMClass& z1 = schema.AddClass("Z1", &z);
  TCIMClass& z21 = schema.AddClass("Z21", &z2);
  TCIMClass& a1 = schema.AddClass("A1", &a);
  const std::unique_ptr<TCIMClass> unregistered = schema.Class("B", &a);
  EXPECT_EQ((TClasses{&z, &a}), root->EnumerateSubClasses(false));
  EXPECT_EQ((TClasses{&z, &z2, &z21, &z1, &a, &a1}), root->EnumerateSubClasses(true));
  EXPECT_EQ((TClasses{&z2, &z21, &z1}), z.EnumerateSubClasses(true));
  EXPECT_TRUE(a1.EnumerateSubClasses(true).empty());
}

TEST(TCIMClass, KeepsListsOfChildrenAndAssociations) {
  Schema schema;
  const std::unique_ptr<TCIMClass> cls = schema.Class("A");
  const std::unique_ptr<TCIMClass> other = schema.Class("B");
  TCIMClassImpl& body = *cls->GetBody();
  body.AddChildClass(*other);
  body.AddChildClass(*other);
  body.RemoveChildClass(*other);
  EXPECT_EQ(TClasses{other.get()}, cls->EnumerateSubClasses(false));
  body.RemoveChildClass(*cls);  // is not there
  EXPECT_EQ(TClasses{other.get()}, cls->EnumerateSubClasses(false));
  body.AddAssociationClass(*other);
  body.AddAssociationClass(*other);
  EXPECT_EQ(std::set<TCIMClass*>{other.get()}, AssociationsOf(*cls));
}

TEST(TCIMClass, HandsItsSubclassesUpWhenItIsRemoved) {
  Schema schema;
  TCIMClass& base = schema.AddClass("ACME_Base");
  TCIMClass& middle = schema.AddClass("ACME_Middle", &base);
  TCIMClass& fan = schema.AddClass("ACME_Fan", &middle);
  TCIMClass copy(middle);  // holds the body
  schema.Container().RemoveClass(middle);
  EXPECT_EQ(&base, fan.GetSuperClass());
  EXPECT_EQ(TClasses{&fan}, base.EnumerateSubClasses(true));
  EXPECT_TRUE(copy.EnumerateSubClasses(false).empty());
  schema.Container().RemoveClass(base);
  EXPECT_EQ(schema.Container().GetRootClass(), fan.GetSuperClass());
  EXPECT_EQ(TClasses{&fan}, schema.Container().GetRootClass()->EnumerateSubClasses(true));
}

// ---- Associations

TEST(TCIMClass, IsRecordedOnTheMostGeneralClassesItAssociates) {
  Schema schema;
  TCIMClass& element = schema.AddClass("CIM_ManagedElement");
  TCIMClass& device = schema.AddClass("CIM_LogicalDevice", &element);
  TCIMClass& fan = schema.AddClass("CIM_Fan", &device);
  TCIMClass& other = schema.AddClass("CIM_Other");
  TCIMClass& up = schema.AddAssociation("A_Up", element, device);
  TCIMClass& down = schema.AddAssociation("A_Down", device, element);
  TCIMClass& twins = schema.AddAssociation("A_Twins", fan, fan);
  TCIMClass& apart = schema.AddAssociation("A_Apart", other, device);
  EXPECT_EQ((std::set<TCIMClass*>{&up, &down}), AssociationsOf(element));
  EXPECT_EQ((std::set<TCIMClass*>{&apart}), AssociationsOf(device));
  EXPECT_EQ((std::set<TCIMClass*>{&twins}), AssociationsOf(fan));
  EXPECT_EQ((std::set<TCIMClass*>{&apart}), AssociationsOf(other));
  // References without a class connect nothing; the root class takes all the others with it.
  std::unique_ptr<TCIMClass> loose = schema.Class("A_Loose");
  schema.Qualify(*loose, "ASSOCIATION");
  schema.AddProperty(*loose, "A", Schema::NullReference(nullptr), {"KEY"});
  schema.AddProperty(*loose, "B", Schema::NullReference(&other));
  TCIMClass& linked = HandOver(std::move(loose));
  EXPECT_EQ((std::set<TCIMClass*>{&apart, &linked}), AssociationsOf(other));
  TCIMClass& all = schema.AddAssociation("A_All", *schema.Container().GetRootClass(), other);
  EXPECT_EQ(std::set<TCIMClass*>{&all}, AssociationsOf(*schema.Container().GetRootClass()));
  EXPECT_EQ(0u, AssociationsOf(other).count(&all));
}

TEST(TCIMClass, IsRecordedBesideOneOfTheSameNameInAnotherContainer) {
  Schema schema;
  Schema other;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  TCIMClass& cools = schema.AddAssociation("ACME_Cools", fan, fan);
  TCIMClass& foreign = other.AddAssociation("acme_cools", fan, fan);
  EXPECT_EQ((std::set<TCIMClass*>{&cools, &foreign}), AssociationsOf(fan));
}

TEST(TCIMClass, IsForgottenByThoseItAssociatedWhenItIsRemoved) {
  Schema schema;
  TCIMClass& disk = schema.AddClass("ACME_Disk");
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  TCIMClass& cools = schema.AddAssociation("ACME_Cools", fan, disk);
  TCIMClass& warms = schema.AddAssociation("ACME_Warms", disk, fan);
  schema.Container().RemoveClass(cools);
  EXPECT_EQ(std::set<TCIMClass*>{&warms}, AssociationsOf(disk));
  EXPECT_EQ(std::set<TCIMClass*>{&warms}, AssociationsOf(fan));
  schema.Container().RemoveClass(disk);
  schema.Container().RemoveClass(warms);
  EXPECT_TRUE(AssociationsOf(fan).empty());
}

TEST(TCIMClass, MayAssociateItself) {
  Schema schema;
  std::unique_ptr<TCIMClass> cls = schema.Class("ACME_Loop");
  schema.Qualify(*cls, "ASSOCIATION");
  schema.AddProperty(*cls, "Self", Schema::NullReference(cls.get()), {"KEY"});
  TCIMClass& loop = HandOver(std::move(cls));
  EXPECT_EQ(std::set<TCIMClass*>{&loop}, AssociationsOf(loop));
  schema.Container().RemoveClass(loop);
  EXPECT_EQ(nullptr, schema.Container().FindClass("ACME_Loop"));
}

// ---- Instances

TEST(TCIMClass, OwnsInstancesInTheOrderOfTheirPaths) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  EXPECT_TRUE(fan.EnumerateInstances(true).empty());
  TCIMInstance& b = schema.AddInstance(fan, "b");
  TCIMInstance& upper = schema.AddInstance(fan, "B");
  TCIMInstance& a = schema.AddInstance(fan, "a");
  EXPECT_EQ((std::vector<TCIMInstance*>{&upper, &a, &b}), fan.EnumerateInstances(false));
  EXPECT_EQ(&a, fan.GetInstance(a.BuildPath()));
  EXPECT_EQ(&a, fan.FindInstance(schema.PathOf(fan, "a")));
  EXPECT_EQ(nullptr, fan.FindInstance(schema.PathOf(fan, "c")));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { fan.GetInstance(schema.PathOf(fan, "c")); }));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { fan.GetInstance(schema.PathOf(fan)); }));
  EXPECT_TRUE(LogLines().empty());
}

TEST(TCIMClass, KeepsInstancesOfOnePathSideBySide) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  std::vector<TCIMInstance*> twins;
  for (int i = 0; i < 3; ++i) {
    schema.AddInstance(fan, "x" + std::to_string(i));
    twins.push_back(&schema.AddInstance(fan, "twin"));
  }
  EXPECT_EQ(twins[0], fan.FindInstance(schema.PathOf(fan, "twin")));
  std::vector<TCIMInstance*> all = fan.EnumerateInstances(false);
  EXPECT_EQ(twins, std::vector<TCIMInstance*>(all.begin(), all.begin() + 3));

  const std::unique_ptr<TCIMInstance> fourth = schema.Instance(fan);
  fourth->SetPropertyValue("Name", TCIMValue("twin"));
  fan.RemoveInstance(*fourth);  // destroys all three
  EXPECT_EQ(nullptr, fan.FindInstance(schema.PathOf(fan, "twin")));
  EXPECT_EQ(3u, fan.EnumerateInstances(false).size());
  EXPECT_EQ("zelStatusOK", StatusOf([&] { fan.RemoveInstance(*fourth); }));
  fan.RemoveInstance(*fan.EnumerateInstances(false).front());
  EXPECT_EQ((TNames{"ACME_Fan.Name=\"x1\"", "ACME_Fan.Name=\"x2\""}),
            PathsOf(fan.EnumerateInstances(false)));
  TCIMInstance& again = schema.AddInstance(fan, "twin");
  EXPECT_EQ(&again, fan.FindInstance(schema.PathOf(fan, "twin")));
}

TEST(TCIMClass, FindsEveryInstanceThroughManyRemovals) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  constexpr int kCount = 2000;
  for (int i = 0; i < kCount; ++i) schema.AddInstance(fan, std::to_string(i * 7919 % kCount));
  for (int step : {3, 2}) {
    for (int i = 0; i < kCount; i += step) {
      if (TCIMInstance* found = fan.FindInstance(schema.PathOf(fan, std::to_string(i)))) {
        fan.RemoveInstance(*found);
      }
    }
    std::size_t left = 0;
    for (int i = 0; i < kCount; ++i) {
      const bool stays = i % 3 != 0 && (step == 3 || i % 2 != 0);
      left += stays;
      ASSERT_EQ(stays, fan.FindInstance(schema.PathOf(fan, std::to_string(i))) != nullptr) << i;
    }
    const TNames paths = PathsOf(fan.EnumerateInstances(false));
    EXPECT_EQ(left, paths.size());
    EXPECT_TRUE(std::is_sorted(paths.begin(), paths.end()));
  }
}

TEST(TCIMClass, FindsInstancesOfPathsOfEveryLength) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  std::map<std::size_t, TCIMInstance*> instances;
  for (const std::size_t length : {0u, 1u, 1000u, 2000u, 3000000u, 7u}) {
    instances[length] = &schema.AddInstance(fan, std::string(length, 'x'));
  }
  for (const auto& [length, instance] : instances) {
    EXPECT_EQ(instance, fan.FindInstance(schema.PathOf(fan, std::string(length, 'x')))) << length;
  }
  EXPECT_EQ(nullptr, fan.FindInstance(schema.PathOf(fan, "xx")));
}

TEST(TCIMClass, TellsApartInstancesOfPathsWhoseHashesAreAlike) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  std::unordered_map<std::uint32_t, std::string> names;  // by the hashes of their paths
  std::string name, other;
  for (unsigned int i = 0; name == other; ++i) {
    name = std::to_string(i);
    const std::string path = schema.PathOf(fan, name).GetPath();
    other = names.emplace(TInstanceRegistry::Hash(path), name).first->second;
  }
  TCIMInstance& first = schema.AddInstance(fan, other);
  EXPECT_EQ(nullptr, fan.FindInstance(schema.PathOf(fan, name)));
  TCIMInstance& second = schema.AddInstance(fan, name);
  EXPECT_EQ(&first, fan.FindInstance(schema.PathOf(fan, other)));
  EXPECT_EQ(&second, fan.FindInstance(schema.PathOf(fan, name)));
  fan.RemoveInstance(first);
  EXPECT_EQ(&second, fan.FindInstance(schema.PathOf(fan, name)));
}

TEST(TCIMClass, FindsWhatIsThereAfterAnyChanges) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  std::map<std::string, TCIMInstance*> first;  // of each name
  std::mt19937 random(11);
  const auto makeName = [&] { return std::to_string(random() % 900); };
  for (int step = 0; step < 30000; ++step) {
    const std::string name = makeName();
    // More come than go, and the other way round, in turn.
    const bool isGrowing = step / 5000 % 2 == 0;
    if (random() % 4 < (isGrowing ? 3 : 1)) {
      TCIMInstance& instance = schema.AddInstance(fan, name);
      first.emplace(name, &instance);
    } else if (const auto gone = first.find(name); gone != first.end()) {
      fan.RemoveInstance(*gone->second);
      first.erase(gone);
    }
    const std::string sought = makeName();
    const auto expected = first.find(sought);
    ASSERT_EQ(expected == first.end() ? nullptr : expected->second,
              fan.FindInstance(schema.PathOf(fan, sought)))
        << step;
  }
  for (const auto& [name, instance] : first) {
    EXPECT_EQ(instance, fan.FindInstance(schema.PathOf(fan, name)));
  }
}

TEST(TCIMClass, ListsInstancesOfSubclassesAfterItsOwn) {
  Schema schema;
  TCIMClass& base = schema.AddClass("Base");
  TCIMClass& z = schema.AddClass("Z", &base);
  TCIMClass& a = schema.AddClass("A", &base);
  TCIMClass& z1 = schema.AddClass("Z1", &z);
  for (TCIMClass* cls : {&a, &z1, &z, &base}) {
    schema.AddInstance(*cls, "2");
    schema.AddInstance(*cls, "1");
  }
  EXPECT_EQ((TNames{"Base.Name=\"1\"", "Base.Name=\"2\"", "Z.Name=\"1\"", "Z.Name=\"2\"",
                    "Z1.Name=\"1\"", "Z1.Name=\"2\"", "A.Name=\"1\"", "A.Name=\"2\""}),
            PathsOf(base.EnumerateInstances(true)));
  EXPECT_EQ(2u, base.EnumerateInstances(false).size());
}

TEST(TCIMClass, DestroysItsInstancesWithItself) {
  struct Mortal : TCIMInstance {
    Mortal(TCIMClass* cls, bool& gone) : TCIMInstance(cls), fGone(gone) {}
    ~Mortal() override { fGone = true; }
    bool& fGone;
  };
  bool gone[3] = {};
  {
    Schema schema;
    TCIMClass& fan = schema.AddClass("ACME_Fan");
    TCIMClass& disk = schema.AddClass("ACME_Disk");
    const auto add = [](TCIMClass& cls, bool& flag, const char* name) {
      auto instance = std::make_unique<Mortal>(&cls, flag);
      instance->SetPropertyValue("Name", TCIMValue(name));
      HandOver(std::move(instance));
    };
    add(fan, gone[0], "a");
    add(fan, gone[1], "b");
    add(disk, gone[2], "c");
    fan.RemoveInstance(*fan.FindInstance(schema.PathOf(fan, "a")));
    EXPECT_TRUE(gone[0] && !gone[1]);
    schema.Container().RemoveClass(fan);
    EXPECT_TRUE(gone[1] && !gone[2]);
  }
  EXPECT_TRUE(gone[2]);
}

// ---- Size

TEST(TCIMClass, FormsChainsOfAnyLength) {
  constexpr int kLength = 100000;
  Schema schema;
  TCIMClass& top = schema.AddClass("C");
  schema.AddProperty(top, "Speed", TCIMValue(1u));
  TCIMClass* last = &top;
  for (int i = 0; i < kLength; ++i) {
    last = &schema.AddClass("C" + std::to_string(i), last);
    if (i % 1000 == 0) schema.AddInstance(*last, "x");
  }
  EXPECT_TRUE(last->IsSubclassOf(&top));
  EXPECT_FALSE(top.IsSubclassOf(last));
  EXPECT_EQ(top.GetPropertyDecl("Speed"), last->GetPropertyDecl("Speed"));
  const TClasses below = top.EnumerateSubClasses(true);
  EXPECT_EQ(kLength, static_cast<int>(below.size()));
  EXPECT_EQ(last, below.back());
  EXPECT_EQ(kLength / 1000, static_cast<int>(top.EnumerateInstances(true).size()));
}

}  // namespace
