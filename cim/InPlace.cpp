#include "zelcore/detail/InPlace.h"

#include "cim/TCIMInstanceImpl.h"
#include "cim/TCIMObjectValueImpl.h"
#include "cim/TCIMPropertyDeclImpl.h"
#include "cim/TCIMPropertyImpl.h"
#include "cim/TCIMReferenceImpl.h"
#include "cim/TPropertyLayout.h"
#include "zelcore/TCIMInstance.h"

namespace zelcore::detail {

static_assert(kNoSlot == TPropertyLayout::kNoSlot);

const TCIMValue& ValueOf(const TCIMProperty& property) { return property.GetBody()->Value(); }
const TCIMValue& DefaultOf(const TCIMPropertyDecl& decl) { return decl.GetBody()->Value(); }
std::string_view TextOf(const TCIMValue& value) {
  return TCIMStringValueImpl::ValueOf(value).View();
}
const TCIMReference& ReferenceOf(const TCIMValue& value) {
  return TCIMReferenceValueImpl::ValueOf(value);
}
const std::map<std::string, TCIMValue>& KeysOf(const TCIMReference& reference) {
  return reference.GetBody()->EnumerateKeyBindings();
}

const boost::shared_ptr<const TPropertyLayout>& LayoutOf(const TCIMInstance& instance) {
  return instance.GetBody()->Layout();
}
std::size_t CountSlots(const TPropertyLayout& layout) { return layout.Size(); }
std::size_t FindSlot(const TPropertyLayout& layout, std::string_view name) {
  return layout.Find(name);
}
TSlot SlotOf(const TCIMInstance& instance, std::size_t slot) {
  const TCIMInstanceImpl& body = *instance.GetBody();
  return {&body.PropertyAt(slot), body.Layout()->Type(slot)};
}
bool SetFromText(TCIMProperty& property, TCIMValue::TCIMType type, std::string_view text) {
  return property.GetBody()->SetFromText(type, text);
}

}  // namespace zelcore::detail
