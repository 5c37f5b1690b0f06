#include "zelcore/detail/InPlace.h"

#include <utility>

#include "cim/TCIMInstanceImpl.h"
#include "cim/TCIMObjectValueImpl.h"
#include "cim/TCIMPropertyDeclImpl.h"
#include "cim/TCIMPropertyImpl.h"
#include "cim/TCIMReferenceImpl.h"
#include "cim/TPropertyLayout.h"
#include "zelcore/TCIMInstance.h"

namespace zelcore::detail {

static_assert(kNoSlot == TPropertyLayout::kNoSlot);

const TCIMValue& ValueOf(const TCIMProperty& property) { return property.GetShownBody().Value(); }
const TCIMValue& DefaultOf(const TCIMPropertyDecl& decl) { return decl.GetBody()->Value(); }
std::string_view TextOf(const TCIMValue& value) {
  return TCIMStringValueImpl::ValueOf(value).View();
}
const TCIMReference& ReferenceOf(const TCIMValue& value) {
  return TCIMReferenceValueImpl::ValueOf(value);
}
std::string DateTimeTextOf(const TCIMValue& value) {
  const TCIMDateTimeImpl& datetime = TCIMDateTimeValueImpl::ValueOf(value);
  return datetime.IsNull() ? "" : datetime.ToString();
}
std::size_t CountKeys(const TCIMReference& path) { return path.GetBody()->KeyBindings().size(); }
TKey KeyAt(const TCIMReference& path, std::size_t number) {
  const TKeyBinding& key = path.GetBody()->KeyBindings()[number];
  return {key.name.View(), key.value};
}

const boost::shared_ptr<const TPropertyLayout>& LayoutOf(const TCIMInstance& instance) {
  return instance.GetBody()->Layout();
}
std::size_t CountSlots(const TPropertyLayout& layout) { return layout.Size(); }
std::size_t FindSlot(const TPropertyLayout& layout, std::string_view name) {
  return layout.Find(name);
}
TCIMProperty* PropertiesOf(const TCIMInstance& instance) {
  return &instance.GetBody()->PropertyAt(0);
}
TCIMValue::TCIMType TypeAt(const TPropertyLayout& layout, std::size_t slot) {
  return layout.Type(slot);
}
void ReserveKeys(TCIMReference& path, std::size_t count) { path.GetBody()->Reserve(count); }
void BindKey(TCIMReference& path, const TCIMPropertyDecl& decl, TCIMValue&& value) {
  path.GetBody()->Bind(decl, std::move(value));
}
bool SetFromText(TCIMProperty& property, TCIMValue::TCIMType type, std::string_view text) {
  return property.GetBody()->SetFromText(type, text);
}

bool SetArray(TCIMProperty& property, TCIMValue::TCIMType elementType, unsigned int maxArraySize,
              std::vector<TCIMValue>&& elements) {
  return property.GetBody()->SetArray(elementType, maxArraySize, std::move(elements));
}

}  // namespace zelcore::detail
