#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/LogSpy.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TContainer.h"

namespace {

namespace fs = std::filesystem;
using Type = TCIMValue::TCIMType;

std::vector<std::string> Documents() {
  std::vector<std::string> documents;
  for (const auto& folder : fs::directory_iterator(ZEL_SOURCE_DIR "/collectors")) {
    const std::string name = folder.path().filename();
    const std::string document = folder.path().string() + "/" + name + ".properties.xml";
    if (fs::exists(document)) documents.push_back(document);
  }
  return documents;
}

// The base document with those of all plug-ins.
class Schema {
 public:
  Schema() {
    RestartLog();
    fContainer.PopulateContainerFromFile(ZEL_SOURCE_DIR "/schema/zelcore.base.xml");
    fBaseClasses = Names();
    for (const std::string& document : Documents()) fContainer.PopulateContainerFromFile(document);
  }

  bool IsOfBase(const TCIMClass& cls) const { return fBaseClasses.count(cls.GetName()) != 0; }
  std::vector<TCIMClass*> PluginClasses() const {
    std::vector<TCIMClass*> classes;
    for (TCIMClass* cls : fContainer.GetRootClass()->EnumerateSubClasses(true)) {
      if (!IsOfBase(*cls)) classes.push_back(cls);
    }
    return classes;
  }

 private:
  std::set<std::string> Names() const {
    std::set<std::string> names;
    for (const TCIMClass* cls : fContainer.GetRootClass()->EnumerateSubClasses(true)) {
      names.insert(cls->GetName());
    }
    return names;
  }

  TContainer fContainer;
  std::set<std::string> fBaseClasses;
};

template <class TDecl>
bool Has(const TDecl& decl, const char* qualifier) {
  return decl.FindQualifier(qualifier) != nullptr;
}

std::size_t ElementsOf(const TCIMPropertyDecl& decl, const char* qualifier) {
  const TCIMQualifier* found = decl.FindQualifier(qualifier);
  if (!found) return 0;
  const TCIMValue value = found->GetValue();
  const std::vector<TCIMValue>& elements = value;
  return elements.size();
}

bool IsUnsigned(const TCIMPropertyDecl& decl) {
  const unsigned type = decl.GetType() & ~unsigned{Type::TypeArray};
  return type == Type::TypeUint8 || type == Type::TypeUint16 || type == Type::TypeUint32 ||
         type == Type::TypeUint64;
}

// The declarations that the class makes itself.
std::vector<const TCIMPropertyDecl*> OwnDecls(const TCIMClass& cls) {
  std::vector<const TCIMPropertyDecl*> own;
  for (const TCIMPropertyDecl* decl : cls.EnumeratePropertyDecls()) {
    if (decl->GetClass() == &cls) own.push_back(decl);
  }
  return own;
}

}  // namespace

TEST(Documents, LoadIntoOneContainerWithoutComplaint) {
  const Schema schema;
  EXPECT_GE(Documents().size(), 5u);
  EXPECT_GE(schema.PluginClasses().size(), 20u);
  EXPECT_THAT(LogLines(), testing::IsEmpty());
}

TEST(Documents, DeclareConcreteLeavesOfTheBaseClasses) {
  const Schema schema;
  for (const TCIMClass* cls : schema.PluginClasses()) {
    SCOPED_TRACE(cls->GetName());
    EXPECT_EQ(0u, cls->GetName().find("KVRSG_"));
    EXPECT_TRUE(schema.IsOfBase(*cls->GetSuperClass()));
    EXPECT_FALSE(cls->IsAbstract());
    EXPECT_THAT(cls->EnumerateSubClasses(true), testing::IsEmpty());
    EXPECT_FALSE(cls->EnumerateKeyNames().empty());
    EXPECT_TRUE(Has(*cls, "DESCRIPTION"));
    EXPECT_TRUE(Has(*cls, "SECTION"));
    const TCIMPropertyDecl* collected = cls->FindPropertyDecl("DateTimeOfCollection");
    ASSERT_TRUE(collected);
    EXPECT_EQ(Type::TypeDateTime, collected->GetType());
    EXPECT_TRUE(Has(*collected, "VOLATILE"));
  }
}

TEST(Documents, DescribeEachProperty) {
  const Schema schema;
  for (const TCIMClass* cls : schema.PluginClasses()) {
    std::map<std::string, std::string> columns;
    for (const TCIMPropertyDecl* decl : OwnDecls(*cls)) {
      SCOPED_TRACE(cls->GetName() + "." + decl->GetName());
      EXPECT_TRUE(Has(*decl, "DESCRIPTION"));
      // What an overridden property was is lost unless it is said again.
      const TCIMPropertyDecl* former = cls->GetSuperClass()->FindPropertyDecl(decl->GetName());
      for (const char* qualifier : {"KEY", "SENSITIVE"}) {
        const bool isExpected = former && Has(*former, qualifier);
        EXPECT_TRUE(Has(*decl, qualifier) || !isExpected) << qualifier;
      }
      EXPECT_EQ(ElementsOf(*decl, "VALUEMAP"), ElementsOf(*decl, "VALUES"));
      const bool isShownByNumber = Has(*decl, "VALUES") || Has(*decl, "UNITS");
      EXPECT_TRUE(IsUnsigned(*decl) || !isShownByNumber);
      if (!Has(*decl, "COLUMN")) continue;
      const std::string column = decl->FindQualifier("COLUMN")->GetValue().ToString(10);
      EXPECT_TRUE(columns.emplace(column, decl->GetName()).second)
          << "the place of " << columns[column];
    }
  }
}

TEST(Documents, TellWhereEachFactComesFrom) {
  const Schema schema;
  for (const TCIMClass* cls : schema.PluginClasses()) {
    if (cls->IsAssociation()) continue;
    for (const TCIMPropertyDecl* decl : OwnDecls(*cls)) {
      if (Has(*decl, "KEY") || decl->GetName() == "DateTimeOfCollection") continue;
      SCOPED_TRACE(cls->GetName() + "." + decl->GetName());
      EXPECT_TRUE(Has(*decl, "MAPPINGSTRINGS"));
      EXPECT_TRUE(Has(*decl, "NULLDISPLAY"));
    }
  }
}

TEST(Documents, GiveEachAssociationTwoEnds) {
  const Schema schema;
  for (const TCIMClass* cls : schema.PluginClasses()) {
    if (!cls->IsAssociation()) continue;
    SCOPED_TRACE(cls->GetName());
    EXPECT_EQ(2u, cls->EnumerateKeyNames().size());
  }
}

TEST(Documents, GiveSizesAs64BitsOfBytes) {
  const Schema schema;
  for (const TCIMClass* cls : schema.PluginClasses()) {
    for (const TCIMPropertyDecl* decl : OwnDecls(*cls)) {
      const TCIMQualifier* units = decl->FindQualifier("UNITS");
      if (!units || units->GetValue().ToString(10) != "Bytes") continue;
      EXPECT_EQ(Type::TypeUint64, decl->GetType()) << cls->GetName() << "." << decl->GetName();
    }
  }
}

TEST(Documents, MarkWhatTellsWhoTheMachineIs) {
  static const std::set<std::string> kTelling = {
      "SerialNumber", "UUID", "MachineId", "AssetTag", "CSName", "SystemName", "BootArguments"};
  const Schema schema;
  for (const TCIMClass* cls : schema.PluginClasses()) {
    for (const TCIMPropertyDecl* decl : cls->EnumeratePropertyDecls()) {
      if (kTelling.count(decl->GetName()) == 0) continue;
      EXPECT_TRUE(Has(*decl, "SENSITIVE")) << cls->GetName() << "." << decl->GetName();
    }
  }
}
