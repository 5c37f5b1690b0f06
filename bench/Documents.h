#pragma once

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "zelcore/TContainer.h"

// The documents that the benchmarks read.
namespace bench {

// The path of a document that bench/run has made: "10.xml", "10-bad.xml".
inline std::string GetDocument(const std::string& name) {
  const char* const directory = std::getenv("ZEL_BENCH_DOCUMENTS");
  if (!directory) throw std::runtime_error("ZEL_BENCH_DOCUMENTS is not set; use bench/run");
  return std::string(directory) + "/" + name;
}

inline std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Reads the little schema of the benchmarks that make their instances themselves: class BENCH_Disk
// with the key DeviceID, and Text0... and Number0... to `properties`.
inline void LoadSchema(TContainer& container, int properties) {
  std::string document =
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP>"
      "<QUALIFIER.DECLARATION NAME=\"KEY\" TYPE=\"boolean\" TOSUBCLASS=\"false\">"
      "<SCOPE PROPERTY=\"true\"/><VALUE>false</VALUE></QUALIFIER.DECLARATION>"
      "<VALUE.OBJECT><CLASS NAME=\"BENCH_Disk\"><PROPERTY NAME=\"DeviceID\" TYPE=\"string\">"
      "<QUALIFIER NAME=\"KEY\" TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER></PROPERTY>";
  for (int i = 0; i < properties; ++i) {
    const std::string number = std::to_string(i);
    document += "<PROPERTY NAME=\"Text" + number + "\" TYPE=\"string\"></PROPERTY>";
    document += "<PROPERTY NAME=\"Number" + number + "\" TYPE=\"uint32\"></PROPERTY>";
  }
  document += "</CLASS></VALUE.OBJECT></DECLGROUP></DECLARATION></CIM>";

  char path[] = "/tmp/zel-bench-XXXXXX";
  const int descriptor = mkstemp(path);
  if (descriptor < 0) throw std::runtime_error("cannot make a file in /tmp");
  close(descriptor);
  std::ofstream(path) << document;
  container.PopulateContainerFromFile(path);
  unlink(path);
}

}  // namespace bench
