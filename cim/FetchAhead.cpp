#include "zelcore/detail/FetchAhead.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "cim/TCIMInstanceImpl.h"
#include "cim/TCIMObjectValueImpl.h"
#include "cim/TCIMPropertyImpl.h"
#include "cim/TCIMReferenceImpl.h"
#include "zelcore/TCIMInstance.h"

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
    Fetch(TCIMReferenceValueImpl::ValueOf(value).GetBody().get(), sizeof(TCIMReferenceImpl));
  } else if (value.GetType() == TCIMValue::TCIMType::TypeString) {
    const std::string_view text = TCIMStringValueImpl::ValueOf(value).View();
    Fetch(text.data(), std::min(text.size() + 1, kMost));
  }
}

template <class TLook>
void VisitBodies(const TCIMInstance& instance, TLook&& look) {
  const TCIMInstanceImpl& body = *instance.GetBody();
  for (std::size_t slot = 0; slot < body.Layout()->Size(); ++slot) {
    look(body.PropertyAt(slot).GetShownBody());
  }
}

using TStep = void (*)(const TCIMInstance& instance);

// Each looks at what the one before it, some time ago, has asked for.
constexpr TStep kSteps[] = {
    [](const TCIMInstance& instance) { Fetch(&instance, sizeof instance); },
    [](const TCIMInstance& instance) { Fetch(instance.GetBody().get(), sizeof(TCIMInstanceImpl)); },
    [](const TCIMInstance& instance) {
      const TCIMInstanceImpl& body = *instance.GetBody();
      Fetch(&body.PropertyAt(0), body.Layout()->Size() * sizeof(TCIMProperty) + 1);
    },
    [](const TCIMInstance& instance) {
      VisitBodies(instance, [](const TCIMPropertyImpl& body) { Fetch(&body, sizeof body); });
    },
    [](const TCIMInstance& instance) {
      VisitBodies(instance, [](const TCIMPropertyImpl& body) {
        if (body.HasValue()) FetchDataOf(body.Value());
      });
    },
};

}  // namespace

namespace zelcore::detail {

void FetchAhead(const std::vector<TCIMInstance*>& instances, std::size_t place) {
  constexpr std::size_t kDistance = 2;
  std::size_t ahead = std::size(kSteps) * kDistance;
  for (const TStep step : kSteps) {
    if (place + ahead < instances.size()) step(*instances[place + ahead]);
    ahead -= kDistance;
  }
}

}  // namespace zelcore::detail
