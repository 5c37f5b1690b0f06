#include "zelcore/detail/InPlace.h"

#include <algorithm>
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

namespace {

void Fetch(const void* from, std::size_t size) {
  constexpr std::size_t kLine = 64;
  const auto* const bytes = static_cast<const char*>(from);
  for (std::size_t at = 0; at < size; at += kLine) __builtin_prefetch(bytes + at);
  __builtin_prefetch(bytes + size - 1);
}

// What a value keeps elsewhere.
void FetchDataOf(const TCIMValue& value) {
  constexpr std::size_t kMost = 256;
  if (value.IsNull()) return;
  if (value.IsArray()) {
    const std::vector<TCIMValue>& elements = value;
    Fetch(elements.data(), std::min(elements.size() * sizeof(TCIMValue) + 1, kMost));
  } else if (value.IsReference()) {
    Fetch(ReferenceOf(value).GetBody().get(), sizeof(TCIMReferenceImpl));
  } else if (value.GetType() == TCIMValue::TCIMType::TypeString) {
    const std::string_view text = TextOf(value);
    Fetch(text.data(), std::min(text.size() + 1, kMost));
  }
}

}  // namespace

// Each step looks at what the one before it, some instances earlier, has asked for.
void FetchAhead(const std::vector<TCIMInstance*>& instances, std::size_t place) {
  constexpr std::size_t kDistance = 2;
  const auto visit = [&](std::size_t step, auto&& look) {
    const std::size_t at = place + step * kDistance;
    if (at < instances.size()) look(*instances[at]);
  };
  const auto visitBodies = [](const TCIMInstance& instance, auto&& look) {
    const TCIMInstanceImpl& body = *instance.GetBody();
    for (std::size_t slot = 0; slot < body.Layout()->Size(); ++slot) {
      look(body.PropertyAt(slot).GetShownBody());
    }
  };
  visit(5, [](const TCIMInstance& instance) { Fetch(&instance, sizeof instance); });
  visit(4, [](const TCIMInstance& instance) {
    Fetch(instance.GetBody().get(), sizeof(TCIMInstanceImpl));
  });
  visit(3, [](const TCIMInstance& instance) {
    const TCIMInstanceImpl& body = *instance.GetBody();
    Fetch(&body.PropertyAt(0), body.Layout()->Size() * sizeof(TCIMProperty) + 1);
  });
  visit(2, [&](const TCIMInstance& instance) {
    visitBodies(instance, [](const TCIMPropertyImpl& body) { Fetch(&body, sizeof body); });
  });
  visit(1, [&](const TCIMInstance& instance) {
    visitBodies(instance, [](const TCIMPropertyImpl& body) {
      if (body.HasValue()) FetchDataOf(body.Value());
    });
  });
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
