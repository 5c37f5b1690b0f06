#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "zelcore/zelcore.h"

// Everything that a container holds, a line for each fact: two containers are equal when their
// descriptions are.

inline std::string DescribeValue(const TCIMValue& value) {
  std::ostringstream out;
  out << static_cast<unsigned int>(value.GetType()) << "[" << value.GetMaxArraySize() << "]";
  if (value.GetReferencedClass()) out << value.GetReferencedClass()->GetName();
  if (value.IsNull()) {
    out << " NULL";
  } else if (value.GetType() == TCIMValue::TCIMType::TypeReal32) {
    out << " " << std::hexfloat << static_cast<float>(value);
  } else if (value.GetType() == TCIMValue::TCIMType::TypeReal64) {
    out << " " << std::hexfloat << static_cast<double>(value);
  } else if (value.IsArray()) {
    const std::vector<TCIMValue>& elements = value;
    for (const TCIMValue& element : elements) out << " {" << DescribeValue(element) << "}";
  } else {
    out << " " << value.ToString(10);
  }
  return out.str();
}

class Description {
 public:
  explicit Description(const TContainer& container) {
    for (const TCIMQualifierDecl* decl : container.EnumerateQualifiers()) {
      Add("declares ", decl->GetName(), " ", DescribeValue(decl->GetValue()), " scope ",
          decl->GetScope(), " flavor ", decl->GetFlavor());
    }
    for (const TCIMClass* cls : container.GetRootClass()->EnumerateSubClasses(true)) {
      AddClass(*cls);
      for (const TCIMInstance* instance : cls->EnumerateInstances(false)) AddInstance(*instance);
    }
  }

  std::vector<std::string> fLines;

 private:
  template <class... TParts>
  void Add(const TParts&... parts) {
    std::ostringstream line;
    (line << ... << parts);
    fLines.push_back(line.str());
  }

  void AddQualifiers(const ICIMAllowQualifiers& element) {
    for (const TCIMQualifier* qualifier : element.EnumerateQualifiers()) {
      Add("  qualifier ", qualifier->GetName(), " ", DescribeValue(qualifier->GetValue()),
          " flavor ", qualifier->GetFlavor(), qualifier->GetPropagated() ? " propagated" : "");
    }
  }

  void AddClass(const TCIMClass& cls) {
    Add("class ", cls.GetName(), " of ", cls.GetSuperClass()->GetName());
    AddQualifiers(cls);
    for (const TCIMPropertyDecl* decl : cls.EnumeratePropertyDecls()) {
      Add(" property ", decl->GetName(), " of ", decl->GetClass()->GetName());
      if (decl->GetClass() != &cls) continue;
      Add("  default ", DescribeValue(decl->GetValue()));
      AddQualifiers(*decl);
    }
  }

  void AddInstance(const TCIMInstance& instance) {
    Add("instance ", instance.BuildPath().GetPath());
    for (const TCIMProperty* property : instance.EnumerateProperties()) {
      Add("  ", property->GetName(), property->GetPropagated() ? " default " : " own ",
          DescribeValue(property->GetValue()));
    }
  }
};
