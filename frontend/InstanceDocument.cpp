#include "frontend/InstanceDocument.h"

#include <fmt/format.h>

#include "zelcore/zelcore.h"

namespace zel {
namespace {

using TType = TCIMValue::TCIMType;

TType ElementType(const TCIMValue& value) {
  return static_cast<TType::ECIMType>(value.GetType() & ~TType::TypeArray);
}

class TInstanceWriter {
 public:
  std::string Write(const std::vector<TCIMInstance*>& instances) {
    fText =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP>\n";
    for (const TCIMInstance* instance : instances) WriteInstance(*instance);
    fText += "</DECLGROUP></DECLARATION></CIM>\n";
    return std::move(fText);
  }

 private:
  void WriteInstance(const TCIMInstance& instance) {
    fText += "<VALUE.OBJECT><INSTANCE CLASSNAME=\"" + instance.GetClass()->GetName() + "\">\n";
    for (const TCIMProperty* property : instance.EnumerateProperties()) {
      if (!property->GetPropagated()) WriteProperty(property->GetName(), property->GetValue());
    }
    fText += "</INSTANCE></VALUE.OBJECT>\n";
  }

  void WriteProperty(const std::string& name, const TCIMValue& value) {
    if (value.IsNull()) return;
    if (value.IsReference()) {
      fText += "<PROPERTY.REFERENCE NAME=\"" + name + "\">";
      WriteReference(value);
      fText += "</PROPERTY.REFERENCE>\n";
    } else if (value.IsArray()) {
      fText += "<PROPERTY.ARRAY NAME=\"" + name + "\" TYPE=\"" + value.GetType().ToString() +
               "\"><VALUE.ARRAY>";
      const std::vector<TCIMValue>& elements = value;
      for (const TCIMValue& element : elements) WriteValue("VALUE", element);
      fText += "</VALUE.ARRAY></PROPERTY.ARRAY>\n";
    } else {
      fText += "<PROPERTY NAME=\"" + name + "\" TYPE=\"" + value.GetType().ToString() + "\">";
      WriteValue("VALUE", value);
      fText += "</PROPERTY>\n";
    }
  }

  void WriteReference(const TCIMReference& path) {
    fText += "<VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"" + path.GetClassName() + "\">";
    for (const auto& [name, value] : path.EnumerateKeyBindings()) {
      fText += "<KEYBINDING NAME=\"" + name + "\">";
      if (value.IsReference()) {
        WriteReference(value);
      } else {
        WriteValue("KEYVALUE", value);
      }
      fText += "</KEYBINDING>";
    }
    fText += "</INSTANCENAME></VALUE.REFERENCE>";
  }

  void WriteValue(const char* element, const TCIMValue& value) {
    fText += fmt::format("<{}>", element);
    if (!value.IsNull()) AppendEscaped(Printed(value));
    fText += fmt::format("</{}>", element);
  }

  // Reals with as many digits as come back equal.
  static std::string Printed(const TCIMValue& value) {
    if (ElementType(value) == TType::TypeReal32) return fmt::format("{}", float(value));
    if (ElementType(value) == TType::TypeReal64) return fmt::format("{}", double(value));
    return value.ToString(10);
  }

  void AppendEscaped(const std::string& text) {
    for (const char c : text) {
      switch (c) {
        case '&': fText += "&amp;"; break;
        case '<': fText += "&lt;"; break;
        case '>': fText += "&gt;"; break;
        default: fText += c;
      }
    }
  }

  std::string fText;
};

}  // namespace

std::string WriteInstanceDocument(const std::vector<TCIMInstance*>& instances) {
  return TInstanceWriter().Write(instances);
}

}  // namespace zel
