#include "zelcore/TCIMReference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <utility>

#include "cim/TCIMReferenceImpl.h"
#include "tests/cim/Schema.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"

namespace {

using TCIMType = TCIMValue::TCIMType;
using TBindings = std::map<std::string, TCIMValue>;

class TCIMReferenceTest : public testing::Test {
 protected:
  TCIMReferenceTest() {
    fSchema.AddProperty(fFoo, "Id", TCIMValue(1u), {"KEY"});
    fSchema.AddProperty(fFoo, "Speed", TCIMValue(1u));
  }

  TCIMReference Path() { return fSchema.PathOf(fFoo); }
  TCIMReference Path(unsigned int id, const std::string& name) {
    TCIMReference path = fSchema.PathOf(fFoo, name);
    path.AddKeyValue("Id", TCIMValue(id));
    return path;
  }

  Schema fSchema;
  TCIMClass& fFoo = fSchema.AddClass("CIM_Foo");
};

void ExpectFailure(const char* status, const char* line, const std::function<void()>& work) {
  ClearLog();
  EXPECT_EQ(status, StatusOf(work)) << line;
  EXPECT_EQ(line, LastLogLine());
  EXPECT_EQ(*line ? zelLogError : -1, LastLogSeverity());
}

TEST_F(TCIMReferenceTest, PrintsItsClassAndItsBindingsByTheBytesOfTheirNames) {
  EXPECT_EQ("CIM_Foo", Path().GetPath());
  EXPECT_EQ("CIM_Foo.Id=\"7\",Name=\"abc\"", Path(7, "abc").GetPath());
  EXPECT_EQ("CIM_Foo.Id=\"7\",Name=\"a\"b,c=\"\"", Path(7, "a\"b,c=\"").GetPath());
  TCIMReference path = Path();
  path.AddKeyValue("id", TCIMValue(0x10u));
  path.AddKeyValue("Name", TCIMValue(""));
  EXPECT_EQ("CIM_Foo.Name=\"\",id=\"16\"", path.GetPath());
  EXPECT_EQ(&path, path.GetBody()->GetOwner());
}

TEST_F(TCIMReferenceTest, CannotPrintNULLKeys) {
  TCIMReference path = Path();
  path.AddKeyValue("Name", Schema::NullString());
  ExpectFailure("zelStatusValueIsNULL", "", [&] { path.GetPath(); });
}

TEST_F(TCIMReferenceTest, IsNeverReadFromText) {
  ExpectFailure("zelStatusNotImplemented", "",
                [&] { TCIMReference(&fSchema.Container(), "CIM_Foo"); });
  ExpectFailure("zelStatusNotImplemented", "", [&] { TCIMReference(&fSchema.Container(), ""); });
  ExpectFailure("zelStatusInvalidOpSequence", "SetPath() called before container set",
                [&] { TCIMReference(nullptr, "CIM_Foo"); });
  ExpectFailure("zelStatusNotImplemented", "", [&] { Path().SetPath("CIM_Foo.Id=\"7\""); });
}

TEST_F(TCIMReferenceTest, TakesItsClassByNameOrByObject) {
  TCIMReference path(&fSchema.Container());
  path.SetClassName("cim_FOO");
  EXPECT_EQ(&fFoo, path.GetClass());
  EXPECT_EQ("CIM_Foo", path.GetClassName());
  path.SetClassName("");
  EXPECT_EQ(fSchema.Container().GetRootClass(), path.GetClass());
  path.SetClass(fFoo);
  ExpectFailure("zelStatusNotFound", "", [&] { path.SetClassName("CIM_Bar"); });
  ExpectFailure("zelStatusInvalidCIMName", "CIM name 'a-b' is invalid",
                [&] { path.SetClassName("a-b"); });
  EXPECT_EQ(&fFoo, path.GetClass());

  TCIMReference loose(nullptr);
  ExpectFailure("zelStatusInvalidOpSequence", "SetClassName() called before container set",
                [&] { loose.SetClassName("CIM_Foo"); });
  loose.SetClass(fFoo);
  ExpectFailure("zelStatusInvalidOpSequence", "SetClassName() called before container set",
                [&] { loose.SetClassName("CIM_Foo"); });
  loose.SetContainer(&fSchema.Container());
  EXPECT_EQ("zelStatusOK", StatusOf([&] { loose.SetClassName("CIM_Foo"); }));
}

TEST_F(TCIMReferenceTest, HasNoClassAtFirst) {
  const TCIMReference path(&fSchema.Container());
  const char* line = "GetClass() called before container set";  // names the container all the same
  ExpectFailure("zelStatusInvalidReference", line, [&] { path.GetClass(); });
  ExpectFailure("zelStatusInvalidReference", line, [&] { path.GetClassName(); });
  ExpectFailure("zelStatusInvalidReference", line, [&] { path.GetPath(); });
  EXPECT_TRUE(path.EnumerateKeyBindings().empty());
}

TEST_F(TCIMReferenceTest, KeepsItsClassOnceThereAreBindings) {
  TCIMReference path = Path(7, "abc");
  ExpectFailure("zelStatusInvalidOpSequence", "SetClassName() called with keybindings filled in",
                [&] { path.SetClassName("CIM_Foo"); });
  ExpectFailure("zelStatusInvalidOpSequence", "SetClass() called with keybindings filled in",
                [&] { path.SetClass(fFoo); });
  path.SetContainer(nullptr);  // looked at before the bindings
  ExpectFailure("zelStatusInvalidOpSequence", "SetClassName() called before container set",
                [&] { path.SetClassName("CIM_Foo"); });
  EXPECT_EQ("CIM_Foo.Id=\"7\",Name=\"abc\"", path.GetPath());
}

TEST_F(TCIMReferenceTest, RefusesBindingsThatDoNotFit) {
  TCIMReference bare(&fSchema.Container());
  ExpectFailure("zelStatusInvalidOpSequence", "AddKeyValue() called before class set",
                [&] { bare.AddKeyValue("a-b", TCIMValue(1u)); });
  TCIMReference path = Path();
  const TCIMValue number(1u);
  ExpectFailure("zelStatusNotFound", "", [&] { path.AddKeyValue("Nam", number); });
  ExpectFailure("zelStatusInvalidCIMName", "CIM name 'a-b' is invalid",
                [&] { path.AddKeyValue("a-b", number); });
  ExpectFailure("zelStatusTypeMismatch", "Declaration type: string Value type: uint32",
                [&] { path.AddKeyValue("Name", number); });
  ExpectFailure("zelStatusTypeMismatch", "Declaration type: uint32 Value type: string",
                [&] { path.AddKeyValue("Speed", Schema::NullString()); });
  ExpectFailure("zelStatusInvalidOpSequence", "AddKeyValue() called with a non-key property sPeed",
                [&] { path.AddKeyValue("sPeed", number); });
  EXPECT_TRUE(path.EnumerateKeyBindings().empty());
}

TEST_F(TCIMReferenceTest, BindsTrueKeysOnly) {
  struct {
    TCIMValue key;
    bool isKey;
  } const rows[] = {
      {TCIMValue(true),                     true },
      {TCIMValue(false),                    false},
      {Schema::Null(TCIMType::TypeBoolean), false},
      {TCIMValue("true"),                   false}, // not a failure of its own here
      {TCIMValue(1u),                       false},
      {Schema::NullString(),                false},
  };
  for (const auto& row : rows) {
    const std::unique_ptr<TCIMClass> cls = fSchema.Class("CIM_Bar");
    fSchema.Qualify(fSchema.AddProperty(*cls, "Name", Schema::NullString()), "KEY", row.key);
    TCIMReference path = fSchema.PathOf(*cls);
    ExpectFailure(row.isKey ? "zelStatusOK" : "zelStatusInvalidOpSequence",
                  row.isKey ? "" : "AddKeyValue() called with a non-key property Name",
                  [&] { path.AddKeyValue("Name", TCIMValue("abc")); });
  }
}

TEST_F(TCIMReferenceTest, KeepsTheFirstValueOfEachSpelling) {
  TCIMReference path = Path();
  path.AddKeyValue("Name", TCIMValue("first"));
  path.AddKeyValue("Name", TCIMValue("second"));
  const TCIMValue third("third");
  path.AddKeyValue("NAME", third);
  EXPECT_EQ((TBindings{
                {"NAME", TCIMValue("third")},
                {"Name", TCIMValue("first")}
  }),
            path.EnumerateKeyBindings());
  EXPECT_EQ("CIM_Foo.NAME=\"third\",Name=\"first\"", path.GetPath());
}

TEST_F(TCIMReferenceTest, OrdersBindingsByTheBytesOfTheirNamesHoweverTheyCome) {
  std::vector<std::string> names = {"NAME", "NAMe", "NAmE", "NAme", "Name", "nAME", "name"};
  std::mt19937 random(5);
  for (int round = 0; round < 50; ++round) {
    std::shuffle(names.begin(), names.end(), random);
    TCIMReference path = Path();
    TBindings expected;
    for (const std::string& name : names) {
      const TCIMValue value(name + std::string(random() % 40, '.'));
      path.AddKeyValue(name, value);
      expected.emplace(name, value);
    }
    EXPECT_EQ(expected, path.EnumerateKeyBindings());
    EXPECT_EQ(path, TCIMReference(path));
  }
}

TEST_F(TCIMReferenceTest, NamesInstancesByPathsOfAnyLength) {
  TCIMClass& bar = fSchema.AddClass("CIM_Bar");
  for (const std::size_t size : {0, 1, 22, 23, 24, 400, 495, 496, 497, 498, 1200, 70000}) {
    const std::string name(size, 'n');
    const TCIMInstance& added = fSchema.AddInstance(bar, name);
    const TCIMReference path = fSchema.PathOf(bar, name);
    EXPECT_EQ("CIM_Bar.Name=\"" + name + "\"", path.GetPath());
    EXPECT_EQ(&added, bar.FindInstance(path));
  }
  EXPECT_EQ(12U, bar.EnumerateInstances(false).size());
}

TEST_F(TCIMReferenceTest, IsCopiedDeeplyAndMovedCheaply) {
  TCIMReference first = fSchema.PathOf(fFoo, "abc");
  TCIMReference copy(first);
  copy.AddKeyValue("Id", TCIMValue(7u));
  EXPECT_EQ("CIM_Foo.Name=\"abc\"", first.GetPath());
  EXPECT_EQ(&copy, copy.GetBody()->GetOwner());
  TCIMReference assigned(nullptr);
  assigned = copy;
  copy.Clear();
  EXPECT_EQ("CIM_Foo.Id=\"7\",Name=\"abc\"", assigned.GetPath());
  EXPECT_EQ(&assigned, assigned.GetBody()->GetOwner());
  const TCIMReference& itself = assigned;
  assigned = itself;
  EXPECT_EQ("CIM_Foo.Id=\"7\",Name=\"abc\"", assigned.GetPath());

  const TCIMReferenceImpl* body = assigned.GetBody().get();
  TCIMReference moved(std::move(assigned));
  EXPECT_EQ(body, moved.GetBody().get());
  EXPECT_EQ(&moved, moved.GetBody()->GetOwner());
  assigned = moved;  // may be assigned to again
  EXPECT_EQ(moved, assigned);
}

TEST_F(TCIMReferenceTest, IsNotToBeAskedAfterItWasMovedAway) {
  TCIMReference path = Path();
  const TCIMReference taken(std::move(path));
  EXPECT_DEATH(path.GetPath(), "px != 0");
  EXPECT_DEATH(path.Clear(), "px != 0");
  EXPECT_DEATH(TCIMReference{path}, "px != 0");
}

TEST_F(TCIMReferenceTest, ResolvesToTheClassOrTheInstance) {
  EXPECT_EQ(&fFoo, Path().GetCIMElement());
  ExpectFailure("zelStatusNotFound", "", [&] { Path(7, "abc").GetCIMElement(); });

  const auto add = [&] {
    std::unique_ptr<TCIMInstance> instance = fSchema.Instance(fFoo);
    instance->SetPropertyValue("Id", TCIMValue(7u));
    instance->SetPropertyValue("Name", TCIMValue("abc"));
    return &HandOver(std::move(instance));
  };
  TCIMReference path = Path(7, "abc");
  ExpectFailure("zelStatusNotFound", "", [&] { path.GetCIMElement(); });
  ICIMElement* first = add();
  EXPECT_EQ(first, path.GetCIMElement());  // a miss was not remembered
  add();
  EXPECT_EQ(first, Path(7, "abc").GetCIMElement());
}

TEST_F(TCIMReferenceTest, RemembersWhatItResolvedTo) {
  TCIMClass& bar = fSchema.AddClass("CIM_Bar");
  TCIMInstance& instance = fSchema.AddInstance(bar, "abc");
  TCIMReference path = fSchema.PathOf(bar, "abc");
  EXPECT_EQ(&instance, path.GetCIMElement());
  path.AddKeyValue("NAME", TCIMValue("xyz"));  // names nothing any more
  EXPECT_EQ(&instance, path.GetCIMElement());
  EXPECT_EQ(&instance, TCIMReference(path).GetCIMElement());
  path.Clear();
  path.SetClass(bar);
  path.AddKeyValue("Name", TCIMValue("xyz"));
  ExpectFailure("zelStatusNotFound", "", [&] { path.GetCIMElement(); });
}

TEST_F(TCIMReferenceTest, ForgetsEverythingWhenCleared) {
  TCIMReference path = Path(7, "abc");
  path.Clear();
  EXPECT_TRUE(path.EnumerateKeyBindings().empty());
  ExpectFailure("zelStatusInvalidReference", "GetClass() called before container set",
                [&] { path.GetClass(); });
  ExpectFailure("zelStatusInvalidOpSequence", "SetClassName() called before container set",
                [&] { path.SetClassName("CIM_Foo"); });
}

TEST_F(TCIMReferenceTest, ComparesClassThenBindings) {
  TCIMClass& bar = fSchema.AddClass("CIM_Bar");
  EXPECT_TRUE(Path(7, "abc") == Path(7, "abc"));
  EXPECT_FALSE(Path(7, "abc") < Path(7, "abc"));
  TCIMReference loose(nullptr);  // the container does not count
  loose.SetClass(fFoo);
  EXPECT_TRUE(Path() == loose);
  EXPECT_FALSE(Path() == fSchema.PathOf(bar));
  EXPECT_EQ(std::less<>()(&fFoo, &bar), Path(9, "z") < fSchema.PathOf(bar));
  EXPECT_EQ(std::less<>()(&bar, &fFoo), fSchema.PathOf(bar) < Path(9, "z"));
  // The class is the object, not its name.
  const std::unique_ptr<TCIMClass> twin = fSchema.Class("CIM_Foo");
  EXPECT_FALSE(Path() == fSchema.PathOf(*twin));

  EXPECT_FALSE(Path(7, "abc") == Path(8, "abc"));
  EXPECT_TRUE(Path(7, "abc") < Path(8, "abb"));  // by Id, numerically
  EXPECT_TRUE(Path(9, "abc") < Path(10, "abc"));
  EXPECT_TRUE(Path(7, "abb") < Path(7, "abc"));
  EXPECT_FALSE(Path(7, "abc") < Path(7, "abb"));
  EXPECT_TRUE(Path() < fSchema.PathOf(fFoo, "a"));
  EXPECT_FALSE(Path() == fSchema.PathOf(fFoo, "a"));
  TCIMReference upper = Path();
  upper.AddKeyValue("NAME", TCIMValue("z"));
  EXPECT_TRUE(upper < fSchema.PathOf(fFoo, "a"));
  EXPECT_FALSE(upper == fSchema.PathOf(fFoo, "z"));
}

TEST_F(TCIMReferenceTest, TakesManySpellings) {
  TCIMReference path = Path();
  constexpr int kLetters = 4;
  for (int bits = 0; bits < 1 << kLetters; ++bits) {
    std::string name = "name";
    for (int i = 0; i < kLetters; ++i) {
      if (bits & 1 << i) name[static_cast<std::size_t>(i)] -= 'a' - 'A';
    }
    path.AddKeyValue(name, TCIMValue(name));
  }
  const TBindings bindings = path.EnumerateKeyBindings();
  EXPECT_EQ(std::size_t{1} << kLetters, bindings.size());
  for (const auto& [name, value] : bindings) EXPECT_EQ(TCIMValue(name), value);
}

}  // namespace
