// Any bytes at all as a CIM-XML document: an exception or classes, and a container whose contents
// can be walked, printed and destroyed.

#include <cstdint>
#include <string>

#include "xml/TCIMXMLParser.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TContainer.h"
#include "zelcore/TLogger.h"
#include "zelcore/TZELException.h"

namespace {

// NULL values and types without a text throw.
void Print(const TCIMValue& value) {
  try {
    value.ToString(10);
  } catch (const TZELException&) {
  }
}

void Walk(const TContainer& container) {
  for (const TCIMClass* cls : container.GetRootClass()->EnumerateSubClasses(true)) {
    for (const TCIMInstance* instance : cls->EnumerateInstances(false)) {
      instance->BuildPath().GetPath();
      for (const TCIMProperty* property : instance->EnumerateProperties()) {
        Print(property->GetValue());
      }
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  TLogger::Initialize();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string document(reinterpret_cast<const char*>(data), size);
  TContainer container;
  try {
    TCIMXMLParser parser(container);
    parser.Parse(document.data());
  } catch (const TZELException&) {
  }
  Walk(container);
  TLogger::GetInstance()->ClearLog();
  return 0;
}
