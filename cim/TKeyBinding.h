#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "cim/TShortText.h"
#include "zelcore/TCIMValue.h"

// One key of a path.
struct TKeyBinding {
  TKeyBinding(std::string_view n, TCIMValue&& v) : name(n), value(std::move(v)) {}
  TKeyBinding(const TKeyBinding&) = default;
  TKeyBinding(TKeyBinding&&) noexcept = default;
  TKeyBinding& operator=(const TKeyBinding&) = delete;
  TKeyBinding& operator=(TKeyBinding&& other) noexcept {
    name = std::move(other.name);
    value.Take(other.value);
    return *this;
  }
  ~TKeyBinding() = default;

  bool operator==(const TKeyBinding& other) const {
    return name == other.name && value == other.value;
  }
  bool operator<(const TKeyBinding& other) const {
    return name < other.name || (!(other.name < name) && value < other.value);
  }

  TShortText name;
  TCIMValue value;
};

// By the bytes of the names, each of which stands there once. Paths have few keys.
using TKeyBindings = std::vector<TKeyBinding>;
