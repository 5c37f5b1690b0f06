#pragma once

#include <initializer_list>
#include <sstream>
#include <string>

// Small CIM-XML documents, put together from their parts.

namespace document {

// Elements of arrays are divided by '|'.
inline std::string ValueXml(const std::string& type, const std::string& value) {
  if (type.find("[]") == std::string::npos) return "<VALUE>" + value + "</VALUE>";
  std::string xml = "<VALUE.ARRAY>";
  std::istringstream elements(value);
  for (std::string element; std::getline(elements, element, '|');) {
    xml += "<VALUE>" + element + "</VALUE>";
  }
  return xml + "</VALUE.ARRAY>";
}

inline std::string PropertyXml(const std::string& name, const std::string& type,
                               const std::string& content) {
  const bool isArray = type.find("[]") != std::string::npos;
  const std::string element = isArray ? "PROPERTY.ARRAY" : "PROPERTY";
  return "<" + element + " NAME=\"" + name + "\" TYPE=\"" + type.substr(0, type.find("[]")) +
         "\">" + content + "</" + element + ">\n";
}

inline std::string Qualifier(const std::string& name, const std::string& type = "boolean",
                             const std::string& value = "true") {
  return "<QUALIFIER NAME=\"" + name + "\" TYPE=\"" + type.substr(0, type.find("[]")) + "\">" +
         ValueXml(type, value) + "</QUALIFIER>";
}

// In a class: a property of "string", "uint16[]" ..., or a reference to a class.
inline std::string Declare(const std::string& name, const std::string& type,
                           const std::string& qualifiers = "") {
  return PropertyXml(name, type, qualifiers);
}
inline std::string Key(const std::string& name, const std::string& type = "string",
                       const std::string& qualifiers = "") {
  return Declare(name, type, Qualifier("KEY") + qualifiers);
}
inline std::string KeyReference(const std::string& name, const std::string& cls) {
  return "<PROPERTY.REFERENCE NAME=\"" + name + "\" REFERENCECLASS=\"" + cls + "\">" +
         Qualifier("KEY") + "</PROPERTY.REFERENCE>\n";
}

inline std::string Class(const std::string& name, const std::string& content,
                         const std::string& superClass = "") {
  return "<VALUE.OBJECT><CLASS NAME=\"" + name + "\"" +
         (superClass.empty() ? "" : " SUPERCLASS=\"" + superClass + "\"") + ">\n" + content +
         "</CLASS></VALUE.OBJECT>\n";
}

inline std::string Association(const std::string& name, const std::string& whole,
                               const std::string& wholeClass, const std::string& part,
                               const std::string& partClass) {
  return Class(name, Qualifier("ASSOCIATION") + KeyReference(whole, wholeClass) +
                         KeyReference(part, partClass));
}

// In an instance.
inline std::string Set(const std::string& name, const std::string& type, const std::string& value) {
  return PropertyXml(name, type, ValueXml(type, value));
}
inline std::string Set(const std::string& name, const std::string& value) {
  return Set(name, "string", value);
}
// To the instance of `cls` with this key.
inline std::string SetReference(const std::string& name, const std::string& cls,
                                const std::string& key, const std::string& value) {
  return "<PROPERTY.REFERENCE NAME=\"" + name + "\"><VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"" +
         cls + "\"><KEYBINDING NAME=\"" + key + "\"><KEYVALUE VALUETYPE=\"string\">" + value +
         "</KEYVALUE></KEYBINDING></INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>\n";
}

inline std::string Instance(const std::string& cls, const std::string& properties) {
  return "<VALUE.OBJECT><INSTANCE CLASSNAME=\"" + cls + "\">\n" + properties +
         "</INSTANCE></VALUE.OBJECT>\n";
}

// What tells about a collection, as zel saves it.
inline std::string RunClasses() {
  return Class("KVRSG_CollectionRun",
               Qualifier("VOLATILE") + Qualifier("SECTION", "string", "Collection") +
                   Key("InstanceID") + Declare("SchemaVersion", "string") +
                   Declare("StartTime", "datetime") + Declare("IsPartial", "boolean") +
                   Declare("IsRedacted", "boolean")) +
         Class("KVRSG_CollectionStatus",
               Qualifier("VOLATILE") + Qualifier("SECTION", "string", "Collection") +
                   Key("InstanceID") + Declare("PluginName", "string") +
                   Declare("Status", "uint16") + Declare("Message", "string") +
                   Declare("Classes", "string[]"));
}
inline std::string RunOf(const std::string& properties) {
  return Instance("KVRSG_CollectionRun", Set("InstanceID", "run") + properties);
}
// Of a plug-in that was asked for `classes`; it failed when there is a message.
inline std::string PluginStatus(const std::string& plugin, const std::string& classes,
                                const std::string& message = "") {
  return Instance("KVRSG_CollectionStatus",
                  Set("InstanceID", plugin) + Set("PluginName", plugin) +
                      Set("Status", "uint16", message.empty() ? "0" : "1") +
                      (message.empty() ? "" : Set("Message", message)) +
                      Set("Classes", "string[]", classes));
}

// The whole: declarations of qualifiers, then `parts`.
inline std::string Document(const std::string& parts) {
  std::string declarations;
  const auto declare = [&](const char* name, const char* type, const char* isArray) {
    declarations += std::string("<QUALIFIER.DECLARATION NAME=\"") + name + "\" TYPE=\"" + type +
                    "\" ISARRAY=\"" + isArray +
                    "\"><SCOPE CLASS=\"true\" ASSOCIATION=\"true\" PROPERTY=\"true\" "
                    "REFERENCE=\"true\"/></QUALIFIER.DECLARATION>\n";
  };
  for (const char* name : {"KEY", "ASSOCIATION", "VOLATILE", "SENSITIVE", "NEEDSROOT"}) {
    declare(name, "boolean", "false");
  }
  for (const char* name : {"SECTION", "UNITS", "DISPLAYNAME", "DESCRIPTION"}) {
    declare(name, "string", "false");
  }
  declare("COLUMN", "uint32", "false");
  declare("VALUES", "string", "true");
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
         "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<DECLARATION><DECLGROUP>\n" +
         declarations + parts + "</DECLGROUP></DECLARATION>\n</CIM>\n";
}

}  // namespace document
