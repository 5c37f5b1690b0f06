#pragma once

#include "cim/TBlockPool.h"
#include "cim/TReferenceWatch.h"

class TCIMProperty;

// Stands in front of the properties of an instance.
struct TPropertyHead {
  // That in front of these properties.
  static TPropertyHead* Before(TCIMProperty* properties) {
    return reinterpret_cast<TPropertyHead*>(properties) - 1;
  }

  TBlockPool* memory;  // of their bodies
  TReferenceWatch watch;
};
