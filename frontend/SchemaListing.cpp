#include "frontend/SchemaListing.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "frontend/Style.h"
#include "frontend/Table.h"
#include "frontend/ValueText.h"
#include "zelcore/zel.h"

namespace zel {
namespace {

using nlohmann::ordered_json;

std::string Joined(const std::vector<std::string>& texts, const char* between = ", ") {
  return fmt::format("{}", fmt::join(texts, between));
}

std::string KindText(const TClassSheet& cls) {
  std::vector<std::string> words;
  if (cls.isAbstract) words.emplace_back("abstract");
  if (cls.isAssociation) words.emplace_back("association");
  return Joined(words, " ");
}

// "uint8", "string[]", "reference to CIM_System"
std::string TypeText(const TPropertySheet& property) {
  std::string text = property.type;
  if (!property.referencedClass.empty()) text += " to " + property.referencedClass;
  if (!property.isArray) return text;
  return text + (property.maxSize == 0 ? "[]" : fmt::format("[{}]", property.maxSize));
}

std::vector<std::string> FlagsOf(const TPropertySheet& property) {
  std::vector<std::string> flags;
  if (property.isKey) flags.emplace_back("key");
  if (property.isVolatile) flags.emplace_back("volatile");
  if (property.isSensitive) flags.emplace_back("sensitive");
  if (property.needsRoot) flags.emplace_back("needs root");
  return flags;
}

// A text of several lines, each behind the indent.
void PrintIndented(const std::string& text, const char* indent, std::ostream& out) {
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    out << indent << Printable(text.substr(begin, end - begin)) << "\n";
    begin = end + 1;
  }
}

// The labelled lines below a class or a property; nothing for an empty text.
class TFacts {
 public:
  TFacts(std::ostream& out, const char* indent) : fOut(out), fIndent(indent) {}

  void Add(const char* label, const std::string& text) const {
    if (!text.empty()) fOut << fmt::format("{}{:<16}{}\n", fIndent, label, Printable(text));
  }
  void Add(const char* label, const std::vector<std::string>& texts) const {
    for (const std::string& text : texts) {
      Add(label, text);
      label = "";
    }
  }

 private:
  std::ostream& fOut;
  const char* fIndent;
};

void PrintProperty(const TPropertySheet& property, const TTerminal& terminal, std::ostream& out) {
  const TLook look = property.isKey ? TLook::kKey : TLook::kPlain;
  out << fmt::format("\n  {}: {}\n", Styled(look, Printable(property.name), terminal),
                     TypeText(property));
  PrintIndented(property.description, "    ", out);
  const TFacts facts(out, "    ");
  facts.Add("Shown as", property.displayName);
  facts.Add("Flags", Joined(FlagsOf(property)));
  facts.Add("Units", property.units);
  std::vector<std::string> values;
  for (const auto& [code, meaning] : property.values) values.push_back(code + " = " + meaning);
  facts.Add("Values", values);
  facts.Add("Source", property.sources);
  facts.Add("Inherited from", property.inheritedFrom);
}

void PrintClass(const TClassSheet& cls, const TTerminal& terminal, std::ostream& out) {
  out << Styled(TLook::kHeading, Printable(cls.name), terminal) << "\n";
  PrintIndented(cls.description, "  ", out);
  const TFacts facts(out, "  ");
  facts.Add("Kind", KindText(cls));
  facts.Add("Section", cls.section);
  facts.Add("Plug-in", cls.plugin);
  facts.Add("Superclasses", Joined(cls.superclasses));
  facts.Add("Subclasses", Joined(cls.subclasses));
  facts.Add("Keys", Joined(cls.keys));
  for (const TPropertySheet& property : cls.properties) PrintProperty(property, terminal, out);
}

// `text` as plain words on one line of Markdown.
std::string Plain(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\n' || c == '\r' || c == '\t') {
      escaped += ' ';
      continue;
    }
    if (std::string_view("\\`*_[]<>|#&").find(c) != std::string_view::npos) escaped += '\\';
    escaped += c;
  }
  return Printable(escaped);
}

// Names of classes and properties hold nothing that Markdown minds in code.
std::string Code(const std::string& name) { return "`" + Printable(name) + "`"; }

std::string JoinedAs(std::string (*form)(const std::string&), std::vector<std::string> texts,
                     const char* between = ", ") {
  std::transform(texts.begin(), texts.end(), texts.begin(), form);
  return Joined(texts, between);
}

void MarkdownProperty(const TPropertySheet& property, std::ostream& out) {
  std::vector<std::string> about;
  const auto add = [&about](const char* label, const std::string& text) {
    if (!text.empty()) about.push_back(label + text);
  };
  add("", Plain(property.description));
  std::vector<std::string> values;
  for (const auto& [code, meaning] : property.values) values.push_back(code + " = " + meaning);
  add("Values: ", JoinedAs(Plain, values));
  add("Source: ", JoinedAs(Plain, property.sources, "; "));
  add("From ", property.inheritedFrom.empty() ? "" : Code(property.inheritedFrom));
  out << fmt::format("| {} | {} | {} | {} | {} |\n", Code(property.name), Plain(TypeText(property)),
                     Plain(property.units), Joined(FlagsOf(property)), Joined(about, "<br>"));
}

void MarkdownClass(const TClassSheet& cls, std::ostream& out) {
  out << fmt::format("\n### {}\n", Plain(cls.name));
  if (!cls.description.empty()) out << "\n" << Plain(cls.description) << "\n";
  std::vector<std::string> facts;
  const auto add = [&facts](const char* label, const std::string& text) {
    if (!text.empty()) facts.push_back(fmt::format("- {}: {}\n", label, text));
  };
  add("Kind", KindText(cls));
  add("Plug-in", Plain(cls.plugin));
  add("Superclasses", JoinedAs(Code, cls.superclasses));
  add("Subclasses", JoinedAs(Code, cls.subclasses));
  add("Keys", JoinedAs(Code, cls.keys));
  if (!facts.empty()) out << "\n" << Joined(facts, "");
  if (cls.properties.empty()) return;
  out << "\n| Property | Type | Units | Flags | About |\n|---|---|---|---|---|\n";
  for (const TPropertySheet& property : cls.properties) MarkdownProperty(property, out);
}

ordered_json TextJson(const std::string& text) {
  return text.empty() ? ordered_json() : ordered_json(text);
}

ordered_json PropertyJson(const TPropertySheet& property) {
  ordered_json values = ordered_json::array();
  for (const auto& [code, meaning] : property.values) {
    values.push_back({
        {"code", code   },
        {"text", meaning}
    });
  }
  return {
      {"name",            property.name                     },
      {"type",            property.type                     },
      {"array",           property.isArray                  },
      {"arraySize",       property.maxSize                  },
      {"referencedClass", TextJson(property.referencedClass)},
      {"key",             property.isKey                    },
      {"displayName",     TextJson(property.displayName)    },
      {"description",     TextJson(property.description)    },
      {"units",           TextJson(property.units)          },
      {"values",          std::move(values)                 },
      {"sources",         property.sources                  },
      {"volatile",        property.isVolatile               },
      {"sensitive",       property.isSensitive              },
      {"needsRoot",       property.needsRoot                },
      {"inheritedFrom",   TextJson(property.inheritedFrom)  }
  };
}

ordered_json ClassJson(const TClassSheet& cls) {
  ordered_json properties = ordered_json::array();
  for (const TPropertySheet& property : cls.properties) {
    properties.push_back(PropertyJson(property));
  }
  return {
      {"name",         cls.name                 },
      {"description",  TextJson(cls.description)},
      {"section",      cls.section              },
      {"plugin",       TextJson(cls.plugin)     },
      {"abstract",     cls.isAbstract           },
      {"association",  cls.isAssociation        },
      {"superclasses", cls.superclasses         },
      {"subclasses",   cls.subclasses           },
      {"keys",         cls.keys                 },
      {"properties",   std::move(properties)    }
  };
}

}  // namespace

void PrintSchemaTable(const std::vector<TSchemaSection>& sections, TStreams& streams) {
  const char* between = "";
  for (const TSchemaSection& section : sections) {
    streams.out << between << Styled(TLook::kHeading, Printable(section.name), streams.terminal)
                << "\n";
    between = "\n";
    TTable table({{"Class"}, {"Superclass"}, {"Kind"}, {"Plug-in"}, {"Description"}});
    for (const TClassSheet& cls : section.classes) {
      const std::string super = cls.superclasses.empty() ? "" : cls.superclasses.front();
      table.AddRow({{Printable(cls.name)},
                    {Printable(super)},
                    {KindText(cls)},
                    {Printable(cls.plugin)},
                    {Printable(FirstSentence(cls.description))}});
    }
    table.Print(streams.out, streams.terminal);
  }
}

void PrintSchemaText(const std::vector<TSchemaSection>& sections, TStreams& streams) {
  const char* between = "";
  for (const TSchemaSection& section : sections) {
    for (const TClassSheet& cls : section.classes) {
      streams.out << between;
      between = "\n";
      PrintClass(cls, streams.terminal, streams.out);
    }
  }
}

void PrintSchemaMarkdown(const std::vector<TSchemaSection>& sections, std::ostream& out) {
  out << "# Classes\n";
  for (const TSchemaSection& section : sections) {
    out << fmt::format("\n## {}\n", Plain(section.name));
    for (const TClassSheet& cls : section.classes) MarkdownClass(cls, out);
  }
}

void PrintSchemaJson(const std::vector<TSchemaSection>& sections, const std::string& title,
                     std::ostream& out) {
  ordered_json document = {
      {"format",  "zel-schema"},
      {"version", 1           },
      {"zel",     ZEL_VERSION },
      {"source",  title       }
  };
  document["classes"] = ordered_json::array();
  for (const TSchemaSection& section : sections) {
    for (const TClassSheet& cls : section.classes) document["classes"].push_back(ClassJson(cls));
  }
  out << document.dump(2, ' ', false, ordered_json::error_handler_t::replace) << "\n";
}

}  // namespace zel
