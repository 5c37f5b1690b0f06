#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/cim/Schema.h"
#include "tests/support/LogSpy.h"
#include "zelcore/TCIMProperty.h"

using TTexts = std::vector<std::string>;

inline TCIMValue Array(TCIMValue::TCIMType type, const std::vector<TCIMValue>& elements) {
  return TCIMValue(type, static_cast<unsigned int>(elements.size()), elements);
}

inline TCIMValue Strings(const TTexts& texts) {
  return Array(TCIMValue::TCIMType::TypeString, {texts.begin(), texts.end()});
}

inline TCIMValue NullArray(TCIMValue::TCIMType type) { return TCIMValue(type, 3); }

// One property declaration after the other, with the qualifiers that a test wants.
class DisplayTest : public testing::Test {
 protected:
  DisplayTest() {
    for (const char* name : {"NULLDISPLAY", "BASE", "UNITS", "DISPLAYCPUTIME", "DISPLAYFIXEDUNITS",
                             "ABBREVIATEUNITS", "Values", "ValueMap"}) {
      fSchema.Declare(name, TCIMQualifierDecl::FlavorOverridable);
    }
    SetLogThreshold(zelLogDebug);
  }

  using TQualifiers = std::vector<std::pair<std::string, TCIMValue>>;

  TCIMPropertyDecl& Declare(const TCIMValue& defaultValue, const TQualifiers& qualifiers = {}) {
    TCIMPropertyDecl& decl =
        fSchema.AddProperty(fFan, "Property" + std::to_string(fCount++), defaultValue);
    for (const auto& [name, value] : qualifiers) fSchema.Qualify(decl, name, value);
    return decl;
  }

  // What `value` shows as.
  std::string Show(const TCIMValue& value, const TQualifiers& qualifiers = {}) {
    return TCIMProperty(Declare(value, qualifiers)).ToString();
  }
  TTexts ShowEach(const TCIMValue& value, const TQualifiers& qualifiers = {}) {
    return TCIMProperty(Declare(value, qualifiers)).ToStringVector();
  }

  // What codes from 0 show as through a map.
  TTexts ShowCodes(const TTexts& values, const std::optional<TTexts>& codes, unsigned int count) {
    TQualifiers qualifiers = {
        {"Values", Strings(values)}
    };
    if (codes) qualifiers.emplace_back("ValueMap", Strings(*codes));
    TCIMProperty property(Declare(TCIMValue(0u), qualifiers));
    TTexts texts;
    for (unsigned int code = 0; code < count; ++code) {
      property.SetValue(TCIMValue(code));
      texts.push_back(property.ToString());
    }
    return texts;
  }

  Schema fSchema;
  TCIMClass& fFan = fSchema.AddClass("ACME_Fan");
  int fCount = 0;
};
