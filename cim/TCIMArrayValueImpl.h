#pragma once

#include <string>
#include <vector>

#include "cim/TCIMValueImpl.h"
#include "zelcore/detail/Export.h"

// The elements of an array.
class ZEL_API TCIMArrayValueImpl final : public TCIMValueImpl {
 public:
  explicit TCIMArrayValueImpl(std::vector<TCIMValue> elements);

  // NOLINTNEXTLINE(google-explicit-constructor): converts as the value does
  operator std::vector<TCIMValue>&() override { return fElements; }

  // "{ 1, 2 }"; "{  }" without elements.
  std::string ToString(unsigned char base) const override;

  bool operator==(const TCIMValue& other) const override;
  // Always throws zelStatusNotImplemented: arrays have no order.
  bool operator<(const TCIMValue& other) const override;

 private:
  std::vector<TCIMValue> fElements;
};
