#include "tests/xml/RealDocuments.h"

#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::IsEmpty;
using TRow = std::map<std::string, std::string>;

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

// The rows of a table with a head line.
std::vector<TRow> ReadTable(const std::string& name) {
  std::vector<std::string> lines = Split(ReadText(kData / name), '\n');
  const std::vector<std::string> head = Split(lines.at(0), '\t');
  std::vector<TRow> rows;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const std::vector<std::string> cells = Split(lines[i], '\t');
    TRow row;
    for (std::size_t c = 0; c < head.size(); ++c) row[head[c]] = c < cells.size() ? cells[c] : "";
    rows.push_back(row);
  }
  return rows;
}

// The text that a value of a table has in the container.
std::string TextOf(const json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_array()) return value.dump();
  std::string text;
  for (const json& element : value) text += (text.empty() ? "" : ", ") + TextOf(element);
  return "{ " + text + " }";
}

const char* Bool(bool value) { return value ? "true" : "false"; }

class RealSchema : public RealDocuments {
 protected:
  void CheckClass(const TRow& row) {
    const TCIMClass* const cls = fContainer->FindClass(row.at("class"));
    ASSERT_NE(nullptr, cls) << row.at("class");
    EXPECT_EQ(row.at("class"), cls->GetName());
    const TCIMClass* const superClass = cls->GetSuperClass();
    EXPECT_EQ(row.at("superclass"), superClass->IsRootClass() ? "" : superClass->GetName());
    EXPECT_EQ(row.at("abstract"), Bool(cls->IsAbstract())) << cls->GetName();
    EXPECT_EQ(row.at("association"), Bool(cls->IsAssociation())) << cls->GetName();
    const auto decls = cls->EnumeratePropertyDecls();
    EXPECT_EQ(row.at("properties_total"), std::to_string(decls.size())) << cls->GetName();
    EXPECT_EQ(
        row.at("properties_own"),
        std::to_string(std::count_if(decls.begin(), decls.end(),
                                     [&](const auto* decl) { return decl->GetClass() == cls; })))
        << cls->GetName();
    const std::vector<std::string> keys = cls->EnumerateKeyNames();
    const std::vector<std::string> expected = Split(row.at("key_properties"), ',');
    EXPECT_EQ(std::set<std::string>(expected.begin(), expected.end()),
              std::set<std::string>(keys.begin(), keys.end()))
        << cls->GetName();
  }

  void CheckProperty(const TRow& row) {
    const std::string name = row.at("class") + "." + row.at("property");
    const TCIMClass* const cls = fContainer->FindClass(row.at("class"));
    const TCIMPropertyDecl* const decl = cls->FindPropertyDecl(row.at("property"));
    ASSERT_NE(nullptr, decl) << name;
    const TCIMValue value = decl->GetValue();
    EXPECT_EQ(row.at("type"), decl->GetType().ToString()) << name;
    EXPECT_EQ(row.at("array"), Bool(decl->IsArray())) << name;
    EXPECT_EQ(row.at("array_size").empty() ? "0" : row.at("array_size"),
              std::to_string(value.GetMaxArraySize()))
        << name;
    const TCIMClass* const referenced = value.GetReferencedClass();
    EXPECT_EQ(row.at("reference_class"), referenced ? referenced->GetName() : "") << name;
    const std::vector<std::string> keys = cls->EnumerateKeyNames();
    EXPECT_EQ(row.at("key"),
              Bool(std::find(keys.begin(), keys.end(), decl->GetName()) != keys.end()))
        << name;
    EXPECT_EQ(row.at("own"), Bool(decl->GetClass() == cls)) << name;
    const std::string& text = row.at("default_json");
    EXPECT_EQ(text.empty() ? "NULL" : TextOf(json::parse(text)),
              value.IsNull() ? "NULL" : value.ToString(10))
        << name;
  }

  TCIMReference PathOf(const json& path) {
    TCIMReference reference(fContainer.get());
    reference.SetClassName(path.at("class"));
    for (const auto& [name, value] : path.at("keys").items()) {
      const TCIMPropertyDecl& decl = *reference.GetClass()->GetPropertyDecl(name);
      if (value.is_object()) {
        reference.AddKeyValue(decl.GetName(), TCIMValue(PathOf(value)));
      } else {
        reference.AddKeyValue(decl.GetName(),
                              TCIMValue(decl.GetType(), TextOf(value), *fContainer));
      }
    }
    return reference;
  }

  // One instance of the host against its line in the table.
  void CheckInstance(const json& fact) {
    const TCIMReference path = PathOf(fact);
    const TCIMInstance* const instance = path.GetClass()->FindInstance(path);
    ASSERT_NE(nullptr, instance) << path.GetPath();
    for (const TCIMProperty* property : instance->EnumerateProperties()) {
      const std::string name = path.GetPath() + " " + property->GetName();
      const auto found = fact.at("properties").find(property->GetName());
      ASSERT_EQ(found == fact.at("properties").end(), property->GetPropagated()) << name;
      if (property->GetPropagated()) continue;
      const json& type = found->at(0);
      const json& value = found->at(2);
      EXPECT_EQ(type, property->GetType().ToString()) << name;
      EXPECT_EQ(found->at(1), property->IsArray()) << name;
      EXPECT_EQ(value.is_object() ? PathOf(value).GetPath() : TextOf(value),
                property->GetValue().ToString(10))
          << name;
    }
    // No property of the table is missing.
    for (const auto& [name, value] : fact.at("properties").items()) {
      EXPECT_NE(nullptr, instance->FindProperty(name)) << name;
    }
  }
};

TEST_F(RealSchema, TheWholeSchemaHasAllItsClasses) {
  ASSERT_EQ("zelStatusOK", Load("schema/dmtf-2.49.0-declarations.xml.gz"));
  EXPECT_THAT(LogLines(), IsEmpty());
  EXPECT_EQ(1612U, fCollected);
  EXPECT_EQ(70U, fContainer->EnumerateQualifiers().size());
  std::size_t classes = 0;
  for (const TRow& row : ReadTable("schema/dmtf-2.49.0-classes.tsv")) {
    if (row.at("in_declarations_file") == "true") {
      ++classes;
      CheckClass(row);
    } else {
      EXPECT_EQ(nullptr, fContainer->FindClass(row.at("class")));
    }
  }
  EXPECT_EQ(1612U, classes);
  EXPECT_EQ(1612U, fContainer->GetRootClass()->EnumerateSubClasses(true).size());
}

TEST_F(RealSchema, TheWholeSchemaHasAllItsProperties) {
  ASSERT_EQ("zelStatusOK", Load("schema/dmtf-2.49.0-declarations.xml.gz"));
  const std::vector<TRow> rows = ReadTable("schema/dmtf-2.49.0-properties.tsv.gz");
  EXPECT_EQ(28177U, rows.size());
  for (const TRow& row : rows) CheckProperty(row);
}

// The classes come from an abridged schema with the same properties.
TEST_F(RealSchema, TheInventoryClassesAreTheSameInEveryForm) {
  std::map<std::string, TRow> classes;
  for (const TRow& row : ReadTable("schema/dmtf-2.49.0-classes.tsv"))
    classes[row.at("class")] = row;
  const std::vector<TRow> properties = ReadTable("schema/dmtf-2.49.0-properties.tsv.gz");
  for (const char* form :
       {"declgroup.xml", "declgroup.xml.gz", "withname.xml.gz", "withpath.xml.gz"}) {
    fContainer = std::make_unique<TContainer>();
    ASSERT_EQ("zelStatusOK", Load(std::string("schema/inventory-classes-") + form)) << form;
    EXPECT_THAT(LogLines(), IsEmpty()) << form;
    EXPECT_EQ(75U, fCollected);
    EXPECT_EQ(70U, fContainer->EnumerateQualifiers().size());
    const auto all = fContainer->GetRootClass()->EnumerateSubClasses(true);
    EXPECT_EQ(75U, all.size());
    for (const TCIMClass* cls : all) CheckClass(classes.at(cls->GetName()));
    for (const TRow& row : properties) {
      if (fContainer->FindClass(row.at("class"))) CheckProperty(row);
    }
  }
}

TEST_F(RealSchema, TheHostIsTheSameInEveryForm) {
  const char* const kForms[][2] = {
      {"inventory-classes-declgroup.xml",   "value-object"},
      {"inventory-classes-withname.xml.gz", "withname"    },
      {"inventory-classes-withpath.xml.gz", "withpath"    },
      {"dmtf-2.49.0-declarations.xml.gz",   "value-object"},
  };
  std::vector<json> facts;
  for (const std::string& line :
       Split(ReadText(kData / "instances/centos77-host-properties.jsonl.gz"), '\n')) {
    facts.push_back(json::parse(line));
  }
  EXPECT_EQ(1162U, facts.size());
  for (const auto& [classes, instances] : kForms) {
    fContainer = std::make_unique<TContainer>();
    ASSERT_EQ("zelStatusOK", Load(std::string("schema/") + classes));
    ASSERT_EQ("zelStatusOK", Load(std::string("instances/centos77-host-") + instances + ".xml.gz"));
    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_EQ(0U, fCollected);
    std::size_t total = 0;
    for (const TCIMClass* cls : fContainer->GetRootClass()->EnumerateSubClasses(true)) {
      total += cls->EnumerateInstances(false).size();
    }
    EXPECT_EQ(1162U, total);
    for (const TRow& row : ReadTable("instances/centos77-host-counts.tsv")) {
      EXPECT_EQ(
          row.at("instances"),
          std::to_string(fContainer->GetClass(row.at("class"))->EnumerateInstances(false).size()))
          << row.at("class");
    }
    for (const json& fact : facts) CheckInstance(fact);
  }
}

TEST_F(RealSchema, ClassesWithoutKeysAreRefused) {
  ASSERT_EQ("zelStatusOK", Load("schema/dmtf-2.49.0-declarations.xml.gz"));
  std::size_t refused = 0;
  for (const std::string& file : FilesOf("schema/keyless")) {
    const std::string status = Load("schema/keyless/" + file);
    const std::string name = fs::path(file).stem();
    // Two of them derive from one that has been refused.
    if (name == "CIM_AlertInstIndication" || name == "CIM_ThresholdIndication") {
      EXPECT_EQ("zelStatusNotFound", status) << file;
    } else {
      EXPECT_EQ("zelStatusInvalidClass", status) << file;
      EXPECT_EQ("Class " + name + " has no keys", LogLines().at(0));
    }
    EXPECT_EQ("Previous error was while parsing file '" +
                  (kData / "schema/keyless" / file).string() + "'",
              LastLogLine());
    ++refused;
  }
  EXPECT_EQ(19U, refused);
}

// Booleans in capitals are false: the first class is not abstract then, and has no key.
TEST_F(RealSchema, BooleansInCapitalsAreFalse) {
  EXPECT_EQ("zelStatusInvalidClass", Load("schema/dmtf-2.49.0-tool-output.xml.gz"));
  EXPECT_EQ("Class CIM_ManagedElement has no keys", LogLines().at(0));
}

}  // namespace
