#pragma once

#include "zelcore/detail/Export.h"

class TContainer;

// What can be validated and committed to a container: classes and instances.
class ZEL_API ICIMElement {
 public:
  virtual ~ICIMElement();
  virtual void Validate() const = 0;
  // Validates, then hands this object over; it must have been made with `new`.
  virtual void AddToContainer() const = 0;
  virtual TContainer* GetContainer() const = 0;
};
