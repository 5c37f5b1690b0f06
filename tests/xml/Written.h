#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "tests/xml/Zoo.h"

// Documents as text, and what stands in them.

template <class TWrite>
inline std::string Written(TWrite&& write) {
  std::ostringstream out;
  TCIMXMLWriter writer(out);
  write(writer);
  return out.str();
}

inline std::string WrittenClasses(const std::vector<TCIMClass*>& classes) {
  return Written([&](TCIMXMLWriter& writer) { writer.WriteClasses(classes); });
}

inline std::string WrittenInstance(TCIMInstance& instance) {
  return Written([&](TCIMXMLWriter& writer) { writer.WriteInstances({&instance}); });
}

// The names that follow `begin` in the document, in order.
inline std::vector<std::string> NamesAfter(const std::string& document, const std::string& begin) {
  std::vector<std::string> names;
  for (std::size_t at = 0; (at = document.find(begin, at)) != std::string::npos;) {
    at += begin.size();
    names.push_back(document.substr(at, document.find('"', at) - at));
  }
  return names;
}

inline std::vector<std::string> ClassesIn(const std::string& document) {
  return NamesAfter(document, "<CLASS NAME=\"");
}
inline std::vector<std::string> InstancesIn(const std::string& document) {
  return NamesAfter(document, "<INSTANCE CLASSNAME=\"");
}
