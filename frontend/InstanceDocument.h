#pragma once

#include <string>
#include <vector>

class TCIMInstance;

namespace zel {

// A CIM-XML declaration document that holds `instances` with their own values: what
// TContainer::PopulateContainerFromFile() takes back once their classes are declared.
std::string WriteInstanceDocument(const std::vector<TCIMInstance*>& instances);

}  // namespace zel
