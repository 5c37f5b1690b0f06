#include "zelcore/TContainer.h"

#include <gtest/gtest.h>

#include <cctype>
#include <memory>

#include "cim/TContainerImpl.h"
#include "tests/cim/Schema.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"

namespace {

// A class or declaration that tells when it is destroyed.
template <class T>
class Mortal : public T {
 public:
  template <class... TArgs>
  explicit Mortal(bool& gone, TArgs&&... args) : T(std::forward<TArgs>(args)...), fGone(gone) {}
  ~Mortal() override { fGone = true; }

 private:
  bool& fGone;
};
using MortalClass = Mortal<TCIMClass>;
using MortalDecl = Mortal<TCIMQualifierDecl>;

MortalDecl* MakeDecl(bool& gone, TContainer& container, const std::string& name) {
  return new MortalDecl(gone, container, name, TCIMValue(true), TCIMQualifierDecl::ScopeNone,
                        TCIMQualifierDecl::FlavorNone);
}

TEST(NormalizeName, LowersValidNamesAndRefusesTheRest) {
  struct {
    std::string name;
    const char* normalized;  // null: invalid
  } const rows[] = {
      {"",                 ""       },
      {"_x",               "_x"     },
      {"a1_",              "a1_"    },
      {"CIM_Foo",          "cim_foo"},
      {"Z",                "z"      },
      {"_",                "_"      },
      {"1a",               nullptr  },
      {"a-b",              nullptr  },
      {"a.b",              nullptr  },
      {"a b",              nullptr  },
      {" a",               nullptr  },
      {"<root>",           nullptr  },
      {"caf\xe9",          nullptr  },
      {"\xc3\x84",         nullptr  },
      {std::string("a\0b", 3),        nullptr},
      {"a[",                  nullptr                       },
      {"a`",                  nullptr},
      {"a{",                  nullptr                       },
      {"a@",                  nullptr},
      {"a:",                  nullptr                       },
      {"a/",                  nullptr},
  };
  for (const auto& row : rows) {
    std::string normalized;
    const std::string status =
        StatusOf([&] { normalized = TContainerImpl::NormalizeName(row.name); });
    if (row.normalized) {
      EXPECT_EQ("zelStatusOK", status) << row.name;
      EXPECT_EQ(row.normalized, normalized);
    } else {
      EXPECT_EQ("zelStatusInvalidCIMName", status) << row.name;
      EXPECT_EQ("CIM name '" + row.name + "' is invalid", LastLogLine());
      EXPECT_EQ(zelLogError, LastLogSeverity());
    }
  }
}

TEST(TContainer, StartsWithItsRootClassAlone) {
  const TContainer container;
  TCIMClass* root = container.GetRootClass();
  ASSERT_NE(nullptr, root);
  EXPECT_EQ("<root>", root->GetName());
  EXPECT_TRUE(root->IsRootClass());
  EXPECT_EQ(nullptr, root->GetSuperClass());
  EXPECT_EQ(root, container.GetClass(""));
  EXPECT_EQ(root, container.FindClass(""));
  EXPECT_TRUE(container.EnumerateQualifiers().empty());
  EXPECT_TRUE(root->EnumerateSubClasses(true).empty());
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { container.GetClass("<root>"); }));
  EXPECT_EQ("CIM name '<root>' is invalid", LastLogLine());
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { container.FindClass("<root>"); }));
}

TEST(TContainer, MakesObjectsWithoutRegisteringThem) {
  Schema schema;
  TContainer& container = schema.Container();
  const std::unique_ptr<TCIMClass> cls(container.AllocateClass("ACME_Fan", nullptr));
  EXPECT_EQ(container.GetRootClass(), cls->GetSuperClass());
  EXPECT_EQ(&container, cls->GetContainer());
  EXPECT_EQ(nullptr, container.FindClass("ACME_Fan"));
  const std::unique_ptr<TCIMQualifierDecl> decl(
      container.AllocateQualifierDecl("Units", TCIMValue("Bytes"), TCIMQualifierDecl::ScopeClass,
                                      TCIMQualifierDecl::FlavorToSubclass));
  EXPECT_EQ("Units", decl->GetName());
  EXPECT_EQ(TCIMValue("Bytes"), decl->GetValue());
  EXPECT_EQ(TCIMQualifierDecl::ScopeClass, decl->GetScope());
  EXPECT_EQ(TCIMQualifierDecl::FlavorToSubclass, decl->GetFlavor());
  EXPECT_EQ(&container, decl->GetContainer());
  EXPECT_EQ(nullptr, container.FindQualifierDecl("Units"));
  const std::unique_ptr<TCIMInstance> instance(container.AllocateInstance(cls.get()));
  EXPECT_EQ(cls.get(), instance->GetClass());
  EXPECT_TRUE(cls->EnumerateInstances(false).empty());
}

TEST(TContainer, FindsClassesInAnyCase) {
  Schema schema;
  TCIMClass& fan = schema.AddClass("CIM_Foo");
  EXPECT_EQ(&fan, schema.Container().GetClass("CIM_FOO"));
  EXPECT_EQ(&fan, schema.Container().FindClass("cim_foo"));
  EXPECT_EQ("CIM_Foo", fan.GetName());
  EXPECT_EQ(nullptr, schema.Container().FindClass("CIM_Fo"));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { schema.Container().GetClass("CIM_Fo"); }));
  EXPECT_TRUE(LogLines().empty());
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { schema.Container().FindClass("a-b"); }));
}

// Names are told apart from one another and found whatever their length: no part of one is left
// out.
TEST(TContainer, FindsClassesOfNamesOfEveryLength) {
  Schema schema;
  TContainer& container = schema.Container();
  std::vector<std::string> names;
  for (std::size_t size = 1; size <= 140; ++size) {
    names.push_back(std::string(size - 1, 'n') + "B");
    names.push_back("c_" + std::string(size, '9'));
  }
  for (const std::string& name : names) schema.AddClass(name);
  for (const std::string& name : names) {
    std::string swapped = name;
    for (char& c : swapped) c = static_cast<char>(std::isalpha(c) ? c ^ ' ' : c);
    EXPECT_EQ(name, container.GetClass(name)->GetName());
    ASSERT_NE(nullptr, container.FindClass(swapped)) << swapped;
    EXPECT_EQ(name, container.FindClass(swapped)->GetName());
  }
}

TEST(TContainer, LeavesADuplicateClassWithItsMaker) {
  SetLogThreshold(zelLogDebug);
  Schema schema;
  TCIMClass& first = schema.AddClass("CIM_Foo");
  bool gone = false;
  auto second = std::make_unique<MortalClass>(gone, schema.Container(), "cim_foo", &first);
  EXPECT_EQ("zelStatusAlreadyExists", StatusOf([&] { second->AddToContainer(); }));
  EXPECT_EQ("TContainer: class cim_foo already defined", LastLogLine());
  EXPECT_EQ(zelLogDebug, LastLogSeverity());
  EXPECT_FALSE(gone);
  EXPECT_EQ(&first, schema.Container().GetClass("cim_foo"));
  EXPECT_TRUE(first.EnumerateSubClasses(false).empty());
  EXPECT_EQ("zelStatusAlreadyExists", StatusOf([&] { schema.Container().AddClass(*second); }));
  EXPECT_EQ("zelStatusAlreadyExists", StatusOf([&] { first.AddToContainer(); }));
}

TEST(TContainer, SaysNothingOfDuplicatesByDefault) {
  Schema schema;
  TCIMClass& first = schema.AddClass("CIM_Foo");
  EXPECT_EQ("zelStatusAlreadyExists", StatusOf([&] { first.AddToContainer(); }));
  EXPECT_TRUE(LogLines().empty());
}

TEST(TContainer, DestroysADuplicateQualifierDeclaration) {
  SetLogThreshold(zelLogDebug);
  TContainer container;
  bool firstGone = false;
  bool secondGone = false;
  {
    TCIMQualifierDecl* first = MakeDecl(firstGone, container, "Units");
    first->AddToContainer();
    TCIMQualifierDecl* second = MakeDecl(secondGone, container, "UNITS");
    EXPECT_EQ("zelStatusAlreadyExists", StatusOf([&] { second->AddToContainer(); }));
    EXPECT_EQ("TContainer: qualifier UNITS already defined", LastLogLine());
    EXPECT_EQ(zelLogDebug, LastLogSeverity());
    EXPECT_TRUE(secondGone);
    EXPECT_EQ(first, container.GetQualifierDecl("uNITS"));
    // The same object once more: refused, and it stays.
    EXPECT_EQ("zelStatusAlreadyExists", StatusOf([&] { first->AddToContainer(); }));
    EXPECT_EQ(first, container.FindQualifierDecl("Units"));
    EXPECT_FALSE(firstGone);
  }
}

TEST(TContainer, DestroysAQualifierDeclarationWithAnInvalidName) {
  TContainer container;
  bool gone = false;
  TCIMQualifierDecl* decl = MakeDecl(gone, container, "a-b");
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { decl->AddToContainer(); }));
  EXPECT_TRUE(gone);
  EXPECT_TRUE(container.EnumerateQualifiers().empty());
}

TEST(TContainer, LeavesAClassWithAnInvalidNameWithItsMaker) {
  Schema schema;
  const std::unique_ptr<TCIMClass> cls = schema.Class("a-b");
  schema.AddProperty(*cls, "Name", Schema::NullString(), {"KEY"});
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { cls->AddToContainer(); }));
  EXPECT_EQ("CIM name 'a-b' is invalid", LastLogLine());
  EXPECT_TRUE(schema.Container().GetRootClass()->EnumerateSubClasses(false).empty());
}

TEST(TContainer, TakesEmptyNames) {
  Schema schema;
  schema.AddClass("");
  EXPECT_EQ(schema.Container().GetRootClass(), schema.Container().FindClass(""));
  EXPECT_EQ(schema.Container().GetRootClass(), schema.Container().GetClass(""));
  EXPECT_EQ(nullptr, schema.Container().FindQualifierDecl(""));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { schema.Container().GetQualifierDecl(""); }));
  TCIMQualifierDecl& nameless = schema.Declare("", TCIMQualifierDecl::FlavorNone);
  EXPECT_EQ(&nameless, schema.Container().GetQualifierDecl(""));
}

TEST(TContainer, ListsQualifierDeclarationsInOrder) {
  TContainer container;
  bool gone[4];
  for (const char* name : {"b", "A", "_z", "a1"}) {
    MakeDecl(gone[0], container, name)->AddToContainer();
  }
  EXPECT_EQ((std::vector<std::string>{"_z", "A", "a1", "b"}),
            NamesOf(container.EnumerateQualifiers()));
}

TEST(TContainer, RemovesClassesAndDeclarationsByName) {
  Schema schema;
  TContainer& container = schema.Container();
  bool classGone = false;
  bool declGone = false;
  TCIMClass* cls = new MortalClass(classGone, container, "CIM_Foo", nullptr);
  schema.Qualify(*cls, "ABSTRACT");
  cls->AddToContainer();
  MakeDecl(declGone, container, "Units")->AddToContainer();

  const std::unique_ptr<TCIMClass> namesake = schema.Class("CIM_FOO");
  const TCIMQualifierDecl units(container, "UNITS", TCIMValue(1u), TCIMQualifierDecl::ScopeNone,
                                TCIMQualifierDecl::FlavorNone);
  container.RemoveClass(*namesake);
  EXPECT_TRUE(classGone);
  EXPECT_EQ(nullptr, container.FindClass("CIM_Foo"));
  EXPECT_TRUE(container.GetRootClass()->EnumerateSubClasses(false).empty());
  container.RemoveQualifierDecl(const_cast<TCIMQualifierDecl&>(units));
  EXPECT_TRUE(declGone);
  EXPECT_EQ(nullptr, container.FindQualifierDecl("Units"));

  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { container.RemoveClass(*namesake); }));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] {
              container.RemoveQualifierDecl(const_cast<TCIMQualifierDecl&>(units));
            }));
  EXPECT_TRUE(LogLines().empty());
  const std::unique_ptr<TCIMClass> odd = schema.Class("a-b");
  EXPECT_EQ("zelStatusInvalidCIMName", StatusOf([&] { container.RemoveClass(*odd); }));
}

TEST(TContainer, FindsARenamedDeclarationUnderItsFormerName) {
  Schema schema;
  TCIMQualifierDecl& decl = schema.Declare("Before", TCIMQualifierDecl::FlavorNone);
  decl.SetName("After");
  EXPECT_EQ(&decl, schema.Container().FindQualifierDecl("Before"));
  EXPECT_EQ(nullptr, schema.Container().FindQualifierDecl("After"));
  EXPECT_EQ("zelStatusNotFound", StatusOf([&] { schema.Container().RemoveQualifierDecl(decl); }));
}

TEST(TContainer, DestroysClassesBeforeDeclarations) {
  struct Watcher : TCIMClass {
    Watcher(TContainer& container, const bool& gone, bool& outlived)
        : TCIMClass(container, "CIM_Foo", nullptr), fGone(gone), fOutlived(outlived) {}
    ~Watcher() override { fOutlived = fGone; }
    const bool& fGone;
    bool& fOutlived;
  };
  bool declGone = false;
  bool declWentFirst = true;
  {
    TContainer container;
    TCIMQualifierDecl* decl = MakeDecl(declGone, container, "ABSTRACT");
    decl->AddToContainer();
    auto* cls = new Watcher(container, declGone, declWentFirst);
    cls->AddQualifier(*new TCIMQualifier(*decl, TCIMValue(true)));
    cls->AddToContainer();
  }
  EXPECT_TRUE(declGone);
  EXPECT_FALSE(declWentFirst);
}

TEST(TContainer, IsSharedByItsCopies) {
  Schema schema;
  const TContainer copy(schema.Container());
  schema.AddClass("CIM_Foo");
  EXPECT_NE(nullptr, copy.FindClass("CIM_Foo"));
  EXPECT_EQ(schema.Container().GetBody(), copy.GetBody());
  EXPECT_EQ(schema.Container().GetRootClass(), copy.GetRootClass());
}

TEST(TContainer, KeepsAListOfDifferencesOnceItIsADiffContainer) {
  const std::string refusal =
      "TContainer: Cannot access DiffInstances if the containter is not a Diff Container";
  Schema schema;
  TContainer& container = schema.Container();
  EXPECT_FALSE(container.isDiffContainer());
  const std::function<void()> operations[] = {
      [&] { container.setDiffInstances({}); },
      [&] { container.getDiffInstances(); },
      [&] { container.hasDifferences(); },
  };
  for (const auto& operation : operations) {
    ClearLog();
    EXPECT_EQ("zelStatusNotSupported", StatusOf(operation));
    EXPECT_EQ(std::vector<std::string>{refusal}, LogLines());
    EXPECT_EQ(zelLogError, LastLogSeverity());
  }

  container.hackhack_TurnIntoADiffContainer();
  EXPECT_TRUE(container.isDiffContainer());
  EXPECT_FALSE(container.hasDifferences());
  TCIMClass& fan = schema.AddClass("ACME_Fan");
  const std::unique_ptr<TCIMInstance> one = schema.Instance(fan);
  const std::unique_ptr<TCIMInstance> two = schema.Instance(fan);
  const std::vector<TCIMInstance*> list{two.get(), one.get(), two.get()};
  container.setDiffInstances(list);
  EXPECT_EQ(list, container.getDiffInstances());
  EXPECT_TRUE(container.hasDifferences());
  container.setDiffInstances({});
  EXPECT_FALSE(container.hasDifferences());
}

}  // namespace
