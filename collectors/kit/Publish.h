#pragma once

#include "collectors/kit/Record.h"

// What publishers of several instances share.
namespace kit {

// Publishes one item after the other; the first refusal ends it.
template <class TItems, class TPublish>
zelStatusCode PublishEach(const TItems& items, TPublish&& publish) {
  for (const auto& item : items) {
    if (const zelStatusCode status = publish(item); status != zelStatusOK) return status;
  }
  return zelStatusOK;
}

// A part of the system, for the associations derived from CIM_SystemComponent.
inline zelStatusCode PublishPartOfSystem(zelIOHandle* out, const char* className,
                                         const TPath& part) {
  return TRecord(out, className)
      .Set("GroupComponent", SystemPath())
      .Set("PartComponent", part)
      .Status();
}

}  // namespace kit
