#pragma once

class TContainer;

// The body of what can be validated and committed to a container.
class TCIMElementImpl {
 public:
  virtual ~TCIMElementImpl() = default;
  virtual void Validate() const = 0;
  virtual TContainer* GetContainer() const = 0;
};
