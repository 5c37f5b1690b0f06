#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/cim/PlainTraversal.h"
#include "tests/cim/Schema.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"

namespace {

using TClasses = std::vector<TCIMClass*>;
using TInstances = std::vector<TCIMInstance*>;
using TNames = std::vector<std::string>;

// An element, two devices below it, something else, and the associations between them.
class AssociationsTest : public testing::Test {
 protected:
  TNames ReferencesOf(const TCIMClass& cls, const std::string& assocClass = "",
                      const std::string& role = "") {
    return NamesOf(cls.References(assocClass, role));
  }
  TNames AssociatorsOf(const TCIMClass& cls, const std::string& assocClass = "",
                       const std::string& resultClass = "", const std::string& role = "",
                       const std::string& resultRole = "") {
    return NamesOf(cls.Associators(assocClass, resultClass, role, resultRole));
  }
  static TInstances All(const TCIMInstance& instance) {
    return instance.Associators("", "", "", "");
  }

  // An association instance between two paths, not committed yet.
  std::unique_ptr<TCIMInstance> Link(TCIMClass& association, const TCIMReference& antecedent,
                                     const TCIMReference& dependent) {
    std::unique_ptr<TCIMInstance> link = fSchema.Instance(association);
    link->SetPropertyValue("Antecedent", TCIMValue(antecedent));
    link->SetPropertyValue("Dependent", TCIMValue(dependent));
    return link;
  }
  TCIMInstance& AddLink(TCIMClass& association, const TCIMReference& antecedent,
                        const TCIMReference& dependent) {
    return HandOver(Link(association, antecedent, dependent));
  }
  TCIMReference Path(TCIMClass& cls, const std::string& name) { return fSchema.PathOf(cls, name); }

  Schema fSchema;
  TCIMClass& fElement = fSchema.AddClass("T_Element");
  TCIMClass& fFan = fSchema.AddClass("T_Fan", &fElement);
  TCIMClass& fDisk = fSchema.AddClass("T_Disk", &fElement);
  TCIMClass& fRoom = fSchema.AddClass("T_Room");
  TCIMClass& fCools = fSchema.AddAssociation("t_cools", fFan, fDisk);
  TCIMClass& fBeside = fSchema.AddAssociation("T_Beside", fFan, fFan);
  TCIMClass& fHolds = fSchema.AddAssociation("T_Holds", fRoom, fElement);
  TCIMClass& fAbove = fSchema.AddAssociation("T_Above", fRoom, fFan);
};

// ---- Classes

TEST_F(AssociationsTest, OfAClassAreItsOwnByNameThenThoseOfItsSuperclasses) {
  EXPECT_EQ((TNames{"T_Above", "T_Beside", "t_cools", "T_Holds"}), ReferencesOf(fFan));
  EXPECT_EQ((TNames{"t_cools", "T_Holds"}), ReferencesOf(fDisk));
  EXPECT_EQ((TNames{"T_Holds"}), ReferencesOf(fElement));
  EXPECT_EQ((TNames{"T_Above", "T_Holds"}), ReferencesOf(fRoom));
  EXPECT_EQ(TNames{}, ReferencesOf(*fSchema.Container().GetRootClass()));
}

TEST_F(AssociationsTest, OfAClassAreRestrictedToSubclassesOfTheAssociationNamed) {
  TCIMClass& holdsTight = HandOver(fSchema.Class("T_HoldsTight", &fHolds));
  fSchema.Qualify(holdsTight, "ASSOCIATION");
  EXPECT_EQ((TNames{"t_cools"}), ReferencesOf(fFan, "T_COOLS"));
  EXPECT_EQ((TNames{"T_Holds"}), ReferencesOf(fDisk, "T_Holds"));
  EXPECT_EQ(TNames{}, ReferencesOf(fFan, "T_Element"));
  EXPECT_EQ(TNames{}, ReferencesOf(fFan, "T_Unknown"));
  EXPECT_EQ(TNames{}, LogLines());
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { fFan.References("a-b", ""); }));
  EXPECT_EQ("CIM name 'a-b' is invalid", LastLogLine());
}

TEST_F(AssociationsTest, WithARoleMustBeDeclaredToTheClassItself) {
  EXPECT_EQ((TNames{"T_Beside", "t_cools"}), ReferencesOf(fFan, "", "ANTECEDENT"));
  EXPECT_EQ((TNames{"T_Above", "T_Beside"}), ReferencesOf(fFan, "", "Dependent"));
  EXPECT_EQ((TNames{"T_Holds"}), ReferencesOf(fElement, "T_Holds", "Dependent"));
  // The association of the superclass is found without a role alone.
  EXPECT_EQ((TNames{"T_Holds"}), ReferencesOf(fFan, "T_Holds"));
  EXPECT_EQ(TNames{}, ReferencesOf(fFan, "T_Holds", "Dependent"));
  EXPECT_EQ(TNames{}, ReferencesOf(fFan, "", "Nothing"));
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { fFan.References("", "a-b"); }));
}

TEST_F(AssociationsTest, OfAClassThatWasRemovedAreForgotten) {
  fSchema.Container().RemoveClass(fBeside);
  EXPECT_EQ((TNames{"T_Above", "t_cools", "T_Holds"}), ReferencesOf(fFan));
}

TEST_F(AssociationsTest, LeadToTheClassesAtTheOtherEnds) {
  // Above, Beside (one of its two ends is skipped), cools, Holds (declared to the superclass, so
  // that no end is the own one).
  EXPECT_EQ((TNames{"T_Room", "T_Fan", "T_Disk", "T_Room", "T_Element"}), AssociatorsOf(fFan));
  EXPECT_EQ((TNames{"T_Fan"}), AssociatorsOf(fFan, "T_Beside"));
  EXPECT_EQ((TNames{"T_Room"}), AssociatorsOf(fElement));
  EXPECT_EQ((TNames{"T_Fan", "T_Element"}), AssociatorsOf(fRoom));
  EXPECT_EQ((TNames{"T_Fan"}), AssociatorsOf(fRoom, "", "T_Fan"));
  EXPECT_EQ((TNames{"T_Fan", "T_Disk", "T_Element"}), AssociatorsOf(fFan, "", "T_Element"));
  EXPECT_EQ((TNames{"T_Fan", "T_Disk"}), AssociatorsOf(fFan, "", "", "Antecedent"));
  EXPECT_EQ((TNames{"T_Fan", "T_Fan", "T_Disk", "T_Element"}),
            AssociatorsOf(fFan, "", "", "", "dependent"));
  EXPECT_EQ((TNames{"T_Room"}), AssociatorsOf(fFan, "T_Above", "", "Dependent", "Antecedent"));
  EXPECT_EQ((TNames{"T_Fan"}), AssociatorsOf(fFan, "T_Above", "", "Dependent", "Dependent"));
  EXPECT_EQ(TNames{}, AssociatorsOf(fFan, "", "", "", "Nothing"));
}

TEST_F(AssociationsTest, LeadToNoClassThatIsUnknown) {
  EXPECT_EQ(TNames{}, AssociatorsOf(fFan, "T_Unknown"));
  EXPECT_EQ(TNames{}, AssociatorsOf(fFan, "", "T_Unknown"));
  EXPECT_EQ(TNames{}, AssociatorsOf(fFan, "", "T_Unknown", "a-b"));
  EXPECT_EQ(TNames{}, LogLines());
  for (const TNames& names : {
           TNames{"a-b", "",    "",    ""   },
           TNames{"",    "a-b", "",    ""   },
           TNames{"",    "",    "a-b", ""   },
           TNames{"",    "",    "",    "a-b"}
  }) {
    EXPECT_EQ("zelStatusInvalidCIMName",
              StatusOf([&] { fFan.Associators(names[0], names[1], names[2], names[3]); }));
  }
}

TEST_F(AssociationsTest, OfNothingNeedARoleThatCanBeAName) {
  TCIMClass& lone = fSchema.AddClass("T_Lone");
  const TCIMInstance& instance = fSchema.AddInstance(lone, "l");
  EXPECT_EQ(TNames{}, AssociatorsOf(lone, "", "", "Nothing"));
  EXPECT_EQ(TInstances{}, instance.Associators("", "", "Nothing", ""));
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { lone.Associators("", "", "a-b", ""); }));
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { instance.Associators("", "", "a-b", ""); }));
}

TEST_F(AssociationsTest, PassOverPropertiesAndReferencesWithoutAClass) {
  std::unique_ptr<TCIMClass> cls = fSchema.Class("T_Odd");
  fSchema.Qualify(*cls, "ASSOCIATION");
  fSchema.AddProperty(*cls, "Name", Schema::NullString(), {"KEY"});
  fSchema.AddProperty(*cls, "Nowhere", Schema::NullReference(nullptr));
  fSchema.AddProperty(*cls, "Room", Schema::NullReference(&fRoom));
  fSchema.AddProperty(*cls, "Site", Schema::NullReference(&fRoom));
  TCIMClass& odd = HandOver(std::move(cls));
  EXPECT_EQ((TNames{"T_Room"}), AssociatorsOf(fRoom, "T_Odd"));
  EXPECT_EQ(TNames{}, AssociatorsOf(fRoom, "T_Odd", "", "", "Nowhere"));
  EXPECT_EQ(TNames{}, AssociatorsOf(fRoom, "T_Odd", "", "", "Name"));
  EXPECT_EQ(TNames{}, ReferencesOf(fRoom, "T_Odd", "Name"));

  TCIMInstance& attic = fSchema.AddInstance(fRoom, "attic");
  TCIMInstance& one = fSchema.AddInstance(odd, "one");
  EXPECT_EQ(TInstances{}, attic.References("", ""));
  one.SetPropertyValue("Nowhere", TCIMValue(Path(fRoom, "attic")));
  EXPECT_EQ(TInstances{&one}, attic.References("", ""));
}

// ---- Instances

TEST_F(AssociationsTest, OfAnInstanceAreClassByClassInTheOrderOfTheirPaths) {
  TCIMInstance& fan = fSchema.AddInstance(fFan, "f");
  TCIMInstance& b = fSchema.AddInstance(fDisk, "b");
  TCIMInstance& a = fSchema.AddInstance(fDisk, "a");
  TCIMInstance& attic = fSchema.AddInstance(fRoom, "attic");
  TCIMInstance& holds = AddLink(fHolds, Path(fRoom, "attic"), Path(fFan, "f"));
  TCIMInstance& coolsB = AddLink(fCools, Path(fFan, "f"), Path(fDisk, "b"));
  TCIMInstance& coolsA = AddLink(fCools, Path(fFan, "f"), Path(fDisk, "a"));
  TCIMInstance& above = AddLink(fAbove, Path(fRoom, "attic"), Path(fFan, "f"));
  EXPECT_EQ((TInstances{&above, &coolsA, &coolsB, &holds}), fan.References("", ""));
  EXPECT_EQ((TInstances{&coolsA, &coolsB}), fan.References("", "antecedent"));
  EXPECT_EQ((TInstances{&holds}), fan.References("T_Holds", ""));
  EXPECT_EQ(TInstances{}, fan.References("T_Holds", "Dependent"));  // declared to the superclass
  EXPECT_EQ((TInstances{&coolsA}), a.References("", ""));
  EXPECT_EQ((TInstances{&above, &holds}), attic.References("", ""));
  EXPECT_EQ(TInstances{}, fan.References("T_Unknown", ""));

  // The end of Holds is the fan by its value, whatever the declaration says.
  EXPECT_EQ((TInstances{&attic, &a, &b, &attic}), All(fan));
  EXPECT_EQ((TInstances{&attic, &attic}), fan.Associators("", "T_Room", "", ""));
  EXPECT_EQ((TInstances{&fan, &a, &b, &fan}),
            fan.Associators("", "", "", "Dependent"));  // the own end, too, when it is named
  EXPECT_EQ((TInstances{&a, &b}), fan.Associators("t_cools", "T_Element", "Antecedent", ""));
  EXPECT_EQ(TInstances{}, fan.Associators("", "T_Unknown", "", ""));
  EXPECT_EQ(TInstances{}, fan.Associators("T_Unknown", "", "", ""));
  EXPECT_EQ(TInstances{}, fan.Associators("", "", "", "Nothing"));
  EXPECT_EQ(TNames{}, LogLines());
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { fan.Associators("", "", "a-b", ""); }));
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { fan.Associators("", "", "", "a-b"); }));
}

TEST_F(AssociationsTest, LeadToAnInstanceAsOftenAsItIsReached) {
  TCIMInstance& fan = fSchema.AddInstance(fFan, "f");
  TCIMInstance& disk = fSchema.AddInstance(fDisk, "d");
  std::unique_ptr<TCIMInstance> link = Link(fCools, Path(fFan, "f"), Path(fDisk, "d"));
  TCIMInstance& first = AddLink(fCools, Path(fFan, "f"), Path(fDisk, "d"));
  TCIMInstance& second = HandOver(std::move(link));  // of the same path
  EXPECT_EQ((TInstances{&first, &second}), fan.References("", ""));
  EXPECT_EQ((TInstances{&disk, &disk}), All(fan));
}

TEST_F(AssociationsTest, OfAnInstanceWithItselfAreToldOnce) {
  TCIMInstance& fan = fSchema.AddInstance(fFan, "f");
  TCIMInstance& other = fSchema.AddInstance(fFan, "g");
  TCIMInstance& self = AddLink(fBeside, Path(fFan, "f"), Path(fFan, "f"));
  EXPECT_EQ(TInstances{&self}, fan.References("", ""));
  EXPECT_EQ(TInstances{&fan}, All(fan));
  TCIMInstance& beside = AddLink(fBeside, Path(fFan, "g"), Path(fFan, "f"));
  EXPECT_EQ((TInstances{&self, &beside}), fan.References("", ""));
  // sic: the first end is skipped, although the second one is the own.
  EXPECT_EQ((TInstances{&fan, &fan}), All(fan));
  EXPECT_EQ(TInstances{&fan}, All(other));
  EXPECT_EQ((TInstances{&fan, &other}), fan.Associators("", "", "Dependent", ""));
}

TEST_F(AssociationsTest, PassOverEndsThatAreNotThereUntilTheyArrive) {
  TCIMInstance& cools = AddLink(fCools, Path(fFan, "f"), Path(fDisk, "d"));
  TCIMInstance& fan = fSchema.AddInstance(fFan, "f");
  EXPECT_EQ(TInstances{&cools}, fan.References("", ""));
  EXPECT_EQ(TInstances{}, All(fan));
  TCIMInstance& disk = fSchema.AddInstance(fDisk, "d");
  EXPECT_EQ(TInstances{&disk}, All(fan));
  EXPECT_EQ(TInstances{&fan}, All(disk));
  EXPECT_EQ(TNames{}, LogLines());
}

TEST_F(AssociationsTest, PassOverReferencesToClasses) {
  TCIMInstance& fan = fSchema.AddInstance(fFan, "f");
  AddLink(fCools, fSchema.PathOf(fFan), fSchema.PathOf(fDisk));
  EXPECT_EQ(TInstances{}, fan.References("", ""));
  AddLink(fCools, Path(fFan, "f"), fSchema.PathOf(fDisk));
  EXPECT_EQ(1u, fan.References("", "").size());
  EXPECT_EQ(TInstances{}, All(fan));
}

TEST_F(AssociationsTest, BelongToTheFirstOfThosePathsThatAreAlike) {
  TCIMInstance& first = fSchema.AddInstance(fFan, "f");
  TCIMInstance& second = fSchema.AddInstance(fFan, "f");
  TCIMInstance& cools = AddLink(fCools, Path(fFan, "f"), Path(fDisk, "d"));
  EXPECT_EQ(TInstances{&cools}, first.References("", ""));
  EXPECT_EQ(TInstances{}, second.References("", ""));
}

TEST_F(AssociationsTest, FollowAChangedReference) {
  TCIMInstance& f = fSchema.AddInstance(fFan, "f");
  TCIMInstance& g = fSchema.AddInstance(fFan, "g");
  TCIMInstance& disk = fSchema.AddInstance(fDisk, "d");
  TCIMInstance& cools = AddLink(fCools, Path(fFan, "f"), Path(fDisk, "d"));
  EXPECT_EQ(TInstances{&disk}, All(f));
  for (int round = 0; round < 3; ++round) {
    cools.SetPropertyValue("Antecedent", TCIMValue(Path(fFan, "g")));
    EXPECT_EQ(TInstances{}, f.References("", ""));
    EXPECT_EQ(TInstances{&cools}, g.References("", ""));
    cools.SetProperty(TCIMProperty(*cools.GetProperty("Antecedent")->GetDeclaration(),
                                   TCIMValue(Path(fFan, "f"))));
    EXPECT_EQ(TInstances{&cools}, f.References("", ""));
    EXPECT_EQ(TInstances{}, g.References("", ""));
  }
  cools.SetPropertyValue("Antecedent", Schema::NullReference(&fFan));
  EXPECT_EQ(TInstances{}, f.References("", ""));
  EXPECT_EQ(TInstances{&cools}, disk.References("", ""));
}

TEST_F(AssociationsTest, FollowAChangedDefault) {
  TCIMInstance& fan = fSchema.AddInstance(fFan, "f");
  TCIMInstance& room = fSchema.AddInstance(fRoom, "attic");
  std::unique_ptr<TCIMClass> cls = fSchema.Class("T_InTheAttic");
  fSchema.Qualify(*cls, "ASSOCIATION");
  fSchema.AddProperty(*cls, "Name", Schema::NullString(), {"KEY"});
  fSchema.AddProperty(*cls, "Fan", Schema::NullReference(&fFan));
  TCIMPropertyDecl& where = fSchema.AddProperty(*cls, "Room", Schema::NullReference(&fRoom));
  TCIMInstance& in = fSchema.AddInstance(HandOver(std::move(cls)), "in");
  in.SetPropertyValue("Fan", TCIMValue(Path(fFan, "f")));
  EXPECT_EQ(TInstances{}, room.References("", ""));
  EXPECT_EQ(TInstances{}, All(fan));
  where.SetValue(TCIMValue(Path(fRoom, "attic")));
  EXPECT_EQ(TInstances{&in}, room.References("", ""));
  EXPECT_EQ(TInstances{&room}, All(fan));
  where.SetValue(Schema::NullReference(&fRoom));
  EXPECT_EQ(TInstances{}, room.References("", ""));
}

TEST_F(AssociationsTest, FollowAnAssignedPropertyThatBringsItsDeclaration) {
  TCIMInstance& fan = fSchema.AddInstance(fFan, "f");
  std::unique_ptr<TCIMClass> cls = fSchema.Class("T_Other");
  fSchema.Qualify(*cls, "ASSOCIATION");
  fSchema.AddProperty(*cls, "Name", Schema::NullString(), {"KEY"});
  const TCIMPropertyDecl& decl =
      fSchema.AddProperty(*cls, "Antecedent", TCIMValue(Path(fFan, "f")));
  HandOver(std::move(cls));
  TCIMInstance& cools = AddLink(fCools, Path(fFan, "g"), Path(fDisk, "d"));
  EXPECT_EQ(TInstances{}, fan.References("", ""));
  cools.SetProperty(TCIMProperty(decl));  // without a value: the default shows
  EXPECT_EQ(TInstances{&cools}, fan.References("", ""));
}

TEST_F(AssociationsTest, MayBeInstancesOfAClassWithoutReferences) {
  TCIMInstance& f = fSchema.AddInstance(fFan, "f");
  TCIMInstance& g = fSchema.AddInstance(fFan, "g");
  std::unique_ptr<TCIMClass> cls = fSchema.Class("T_Note");
  fSchema.AddProperty(*cls, "Name", Schema::NullString(), {"KEY"});
  fSchema.AddProperty(*cls, "Text", Schema::NullString());
  std::unique_ptr<TCIMInstance> note = fSchema.Instance(HandOver(std::move(cls)));
  note->SetPropertyValue("Name", TCIMValue("n"));
  fCools.AddInstance(*note);
  TCIMProperty& text = *note->GetProperty("Text");
  TCIMInstance* const taken = note.release();
  EXPECT_EQ(TInstances{}, f.References("", ""));
  const TCIMPropertyDecl& decl = *fCools.GetPropertyDecl("Antecedent");
  text = TCIMProperty(decl, TCIMValue(Path(fFan, "f")));
  EXPECT_EQ(TInstances{taken}, f.References("", ""));
  text.SetValue(TCIMValue(Path(fFan, "g")));
  EXPECT_EQ(TInstances{}, f.References("", ""));
  EXPECT_EQ(TInstances{taken}, g.References("", ""));
  TCIMInstance& cools = AddLink(fCools, Path(fFan, "g"), Path(fDisk, "d"));
  fCools.RemoveInstance(*taken);
  EXPECT_EQ(TInstances{&cools}, g.References("", ""));
}

TEST_F(AssociationsTest, AreLookedUpByThePathThatTheInstanceIsRegisteredUnder) {
  TCIMInstance& fan = fSchema.AddInstance(fFan, "f");
  TCIMInstance& cools = AddLink(fCools, Path(fFan, "f"), Path(fDisk, "d"));
  AddLink(fCools, Path(fFan, "g"), Path(fDisk, "d"));
  fan.SetPropertyValue("Name", TCIMValue("g"));
  EXPECT_EQ(TInstances{&cools}, fan.References("", ""));
}

TEST_F(AssociationsTest, KeepWhatAReferenceRemembers) {
  TCIMInstance& fan = fSchema.AddInstance(fFan, "f");
  TCIMReference path = Path(fFan, "f");
  path.GetCIMElement();
  path.AddKeyValue("name", TCIMValue("more"));  // another path by now, of no instance
  TCIMInstance& cools = AddLink(fCools, path, Path(fDisk, "d"));
  EXPECT_EQ(TInstances{&cools}, fan.References("", ""));
}

TEST_F(AssociationsTest, ForgetInstancesThatAreRemoved) {
  TCIMInstance& fan = fSchema.AddInstance(fFan, "f");
  TCIMInstance& disk = fSchema.AddInstance(fDisk, "d");
  TCIMInstance& first = AddLink(fCools, Path(fFan, "f"), Path(fDisk, "d"));
  EXPECT_EQ(TInstances{&disk}, All(fan));
  const TCIMInstance removed(first);  // outlives its registration
  fCools.RemoveInstance(first);
  EXPECT_EQ(TInstances{}, fan.References("", ""));
  TCIMInstance& second = AddLink(fCools, Path(fFan, "f"), Path(fDisk, "d"));
  removed.GetProperty("Antecedent")->SetValue(TCIMValue(Path(fFan, "g")));
  EXPECT_EQ(TInstances{&second}, fan.References("", ""));
  fDisk.RemoveInstance(disk);
  EXPECT_EQ(TInstances{}, All(fan));
}

TEST_F(AssociationsTest, OfAnInstanceThatNobodyHasAreNone) {
  const std::unique_ptr<TCIMInstance> fan = fSchema.Instance(fFan);
  fan->SetPropertyValue("Name", TCIMValue("f"));
  AddLink(fCools, Path(fFan, "f"), Path(fDisk, "d"));
  EXPECT_EQ(TInstances{}, fan->References("", ""));
}

// ---- Against the plain algorithm

// A random schema whose instances come, go and change.
class World {
 public:
  explicit World(unsigned int seed) : fRandom(seed) {
    for (int i = 0; i < 5; ++i) {
      TCIMClass* above = i == 0 || OneIn(4) ? nullptr : fOrdinary[Below(fOrdinary.size())];
      std::unique_ptr<TCIMClass> cls = fSchema.Class("C" + std::to_string(i), above);
      if (!above) {
        fSchema.AddProperty(*cls, "A", Schema::NullString(), {"KEY"});
        fSchema.AddProperty(*cls, "B", Schema::NullString(), {"KEY"});
      }
      fOrdinary.push_back(&HandOver(std::move(cls)));
    }
    for (int i = 0; i < 6; ++i)
      AddAssociation("X" + std::to_string(Below(100)) + "_" + std::to_string(i));
  }

  void Change() {
    switch (Below(40)) {
      case 0: return ChangeDefault();
      case 1: return ChangeKey();
      case 2:
      case 3:
      case 4: return Remove(fOrdinary);
      case 5:
      case 6:
      case 7: return Remove(fAssociations);
      default:
        if (OneIn(4)) return AddOrdinary();
        return OneIn(2) ? AddLink() : ChangeLink();
    }
  }

  void Compare() {
    std::vector<TCIMClass*> classes = fOrdinary;
    classes.insert(classes.end(), fAssociations.begin(), fAssociations.end());
    for (const TCIMClass* cls : classes) {
      CompareOne(*cls);
      for (const TCIMInstance* instance : cls->EnumerateInstances(false)) CompareOne(*instance);
    }
  }

  int Found() const { return fFound; }

 private:
  template <class TElement>
  void CompareOne(const TElement& element) {
    const std::string assocClass = Restriction(fAssociations), resultClass = Restriction(fOrdinary);
    const std::string role = Role(), resultRole = Role();
    SCOPED_TRACE("'" + assocClass + "' '" + resultClass + "' '" + role + "' '" + resultRole + "'");
    const auto expected = plain::References(element, assocClass, role);
    ASSERT_EQ(expected, element.References(assocClass, role));
    ASSERT_EQ(plain::Associators(element, assocClass, resultClass, role, resultRole),
              element.Associators(assocClass, resultClass, role, resultRole));
    fFound += static_cast<int>(expected.size());
  }

  unsigned int Below(std::size_t count) { return static_cast<unsigned int>(fRandom() % count); }
  bool OneIn(unsigned int count) { return Below(count) == 0; }

  // Few of them, so that they meet; with quotes, so that texts of different paths are alike.
  std::string Text() {
    static const char* const kTexts[] = {"x", "y", "z", "x\",B=\"y", "y\",B=\"z"};
    return kTexts[Below(5)];
  }
  std::string Role() {
    static const char* const kRoles[] = {"", "", "", "End0", "end1", "END2", "Name", "Nothing"};
    return kRoles[Below(8)];
  }
  std::string Restriction(const std::vector<TCIMClass*>& classes) {
    if (OneIn(20)) return "Unknown";
    return OneIn(3) ? classes[Below(classes.size())]->GetName() : "";
  }

  void AddAssociation(const std::string& name) {
    TCIMClass* above = fAssociations.empty() || !OneIn(3) ? nullptr : AnyClass(fAssociations);
    std::unique_ptr<TCIMClass> cls = fSchema.Class(name, above);
    if (!cls->IsAssociation()) fSchema.Qualify(*cls, "ASSOCIATION");
    if (!above) fSchema.AddProperty(*cls, "Name", Schema::NullString(), {"KEY"});
    for (unsigned int i = 0, count = 1 + Below(3); i < count; ++i) {
      const std::string end = "End" + std::to_string(i);
      if (cls->FindPropertyDecl(end)) continue;
      std::vector<TCIMClass*>& pool =
          OneIn(6) && !fAssociations.empty() ? fAssociations : fOrdinary;
      fSchema.AddProperty(*cls, end, Schema::NullReference(AnyClass(pool)));
    }
    fAssociations.push_back(&HandOver(std::move(cls)));
  }

  TCIMClass* AnyClass(const std::vector<TCIMClass*>& classes) {
    return classes[Below(classes.size())];
  }
  TCIMInstance* AnyOf(const std::vector<TCIMClass*>& classes) {
    const TInstances instances = AnyClass(classes)->EnumerateInstances(false);
    return instances.empty() ? nullptr : instances[Below(instances.size())];
  }

  void AddOrdinary() {
    std::unique_ptr<TCIMInstance> instance = fSchema.Instance(*AnyClass(fOrdinary));
    instance->SetPropertyValue("A", TCIMValue(Text()));
    instance->SetPropertyValue("B", TCIMValue(Text()));
    HandOver(std::move(instance));
  }

  void AddLink() {
    std::unique_ptr<TCIMInstance> link = fSchema.Instance(*AnyClass(fAssociations));
    link->SetPropertyValue("Name", TCIMValue(std::to_string(Below(8))));
    for (int i = 0; i < 3; ++i) SetEnd(*link);
    HandOver(std::move(link));
  }

  void ChangeLink() {
    if (TCIMInstance* link = AnyOf(fAssociations)) SetEnd(*link);
  }

  // The instance stays where it is registered.
  void ChangeKey() {
    TCIMInstance* const instance = AnyOf(fOrdinary);
    if (instance) instance->SetPropertyValue("A", TCIMValue(Text()));
  }

  // A path of the class or one below it: of an instance, of none, of the class, with a NULL key,
  // with a memory.
  TCIMReference PathBelow(TCIMClass& general) {
    std::vector<TCIMClass*> classes = general.EnumerateSubClasses(true);
    classes.push_back(&general);
    TCIMClass& cls = *AnyClass(classes);
    if (OneIn(10)) return fSchema.PathOf(cls);
    TCIMReference path = PathTo(cls);
    if (OneIn(6)) {
      StatusOf([&] { path.GetCIMElement(); });  // remembers
      if (OneIn(2)) path.AddKeyValue(cls.IsAssociation() ? "NAME" : "b", TCIMValue("x"));
    }
    return path;
  }

  TCIMReference PathTo(TCIMClass& cls) {
    TCIMReference path = fSchema.PathOf(cls);
    const TCIMValue null = Schema::NullString();
    if (cls.IsAssociation()) {
      path.AddKeyValue("Name", OneIn(20) ? null : TCIMValue(std::to_string(Below(8))));
    } else {
      path.AddKeyValue("A", OneIn(20) ? null : TCIMValue(Text()));
      path.AddKeyValue("B", TCIMValue(Text()));
    }
    return path;
  }

  void SetEnd(TCIMInstance& link) {
    const std::string end = "End" + std::to_string(Below(3));
    TCIMProperty* const property = link.FindProperty(end);
    if (!property) return;
    TCIMClass& general = *property->GetDeclaration()->GetValue().GetReferencedClass();
    const TCIMValue value =
        OneIn(10) ? Schema::NullReference(&general) : TCIMValue(PathBelow(general));
    if (OneIn(3)) {
      link.SetProperty(TCIMProperty(*property->GetDeclaration(), value));
    } else {
      property->SetValue(value);
    }
  }

  void Remove(const std::vector<TCIMClass*>& classes) {
    TCIMInstance* const instance = AnyOf(classes);
    if (instance) instance->GetClass()->RemoveInstance(*instance);
  }

  void ChangeDefault() {
    TCIMPropertyDecl* const decl = AnyClass(fAssociations)->FindPropertyDecl("End1");
    if (!decl) return;
    TCIMClass* const general = decl->GetValue().GetReferencedClass();
    decl->SetValue(OneIn(3) ? TCIMValue(PathTo(*general)) : Schema::NullReference(general));
  }

  std::mt19937 fRandom;
  Schema fSchema;
  std::vector<TCIMClass*> fOrdinary;
  std::vector<TCIMClass*> fAssociations;
  int fFound = 0;
};

TEST(Associations, AreThoseThatThePlainAlgorithmFinds) {
  int found = 0;
  for (unsigned int seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE(seed);
    World world(seed);
    for (int i = 0; i < 120; ++i) {
      world.Change();
      if (i % 3 == 0) world.Compare();
      if (HasFatalFailure()) return;
    }
    found += world.Found();
  }
  EXPECT_LT(5000, found);  // enough was compared
}

}  // namespace
