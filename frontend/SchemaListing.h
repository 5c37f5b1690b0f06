#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "frontend/Schema.h"
#include "frontend/Streams.h"

namespace zel {

// One line for each class.
void PrintSchemaTable(const std::vector<TSchemaSection>& sections, TStreams& streams);

// All there is to tell of each class, for people.
void PrintSchemaText(const std::vector<TSchemaSection>& sections, TStreams& streams);

// The same as one page of Markdown.
void PrintSchemaMarkdown(const std::vector<TSchemaSection>& sections, std::ostream& out);

// The same as one JSON document about `title`.
void PrintSchemaJson(const std::vector<TSchemaSection>& sections, const std::string& title,
                     std::ostream& out);

}  // namespace zel
