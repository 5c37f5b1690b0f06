#pragma once

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "zelcore/TCIMValue.h"

class TCIMInstance;
class TCIMProperty;
class TCIMPropertyDecl;
class TCIMReference;
class TPropertyLayout;

// The model without copies, for the reader and the writer of documents. What is returned lives as
// long as the object that it is a part of and is not changed.
namespace zelcore::detail {

// Writing.

const TCIMValue& ValueOf(const TCIMProperty& property);
const TCIMValue& DefaultOf(const TCIMPropertyDecl& decl);
// Of a string, and of a reference, that is not NULL.
std::string_view TextOf(const TCIMValue& value);
const TCIMReference& ReferenceOf(const TCIMValue& value);
// As TCIMDateTime::ToString(), of a datetime that is not NULL; "" for one that is not set.
std::string DateTimeTextOf(const TCIMValue& value);

// The keys of a path, in their order.
struct TKey {
  std::string_view name;
  const TCIMValue& value;
};
std::size_t CountKeys(const TCIMReference& path);
TKey KeyAt(const TCIMReference& path, std::size_t number);

// Reading. A slot is the number of a property of an instance; the instances of a class share them
// for as long as they have one layout.

constexpr std::size_t kNoSlot = static_cast<std::size_t>(-1);

const boost::shared_ptr<const TPropertyLayout>& LayoutOf(const TCIMInstance& instance);
std::size_t CountSlots(const TPropertyLayout& layout);
// kNoSlot also for a name that is not valid.
std::size_t FindSlot(const TPropertyLayout& layout, std::string_view name);

// The properties, in the order of their slots.
TCIMProperty* PropertiesOf(const TCIMInstance& instance);
// The declared type.
TCIMValue::TCIMType TypeAt(const TPropertyLayout& layout, std::size_t slot);

// Sets the value that `text` has in `type`, the property's. False, with nothing changed, when there
// is a value already, and for references, arrays and datetimes that are bad.
bool SetFromText(TCIMProperty& property, TCIMValue::TCIMType type, std::string_view text);

// The same of an array of such values; nothing is checked.
bool SetArray(TCIMProperty& property, TCIMValue::TCIMType elementType, unsigned int maxArraySize,
              std::vector<TCIMValue>&& elements);

// Makes room for keys.
void ReserveKeys(TCIMReference& path, std::size_t count);
// Binds a key by the name of `decl`, which is that of the path's class. Throws as AddKeyValue()
// does.
void BindKey(TCIMReference& path, const TCIMPropertyDecl& decl, TCIMValue&& value);

}  // namespace zelcore::detail
