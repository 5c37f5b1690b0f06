#pragma once

#include <string_view>

#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Export.h"

namespace zelcore::detail {

// The name of the (element) type for messages: as TCIMType::ToString(), but "" for a code that has
// none, so that building a message never fails itself.
ZEL_API std::string_view TypeText(TCIMValue::TCIMType type);

// As TCIMType's constructor from a name.
TCIMValue::TCIMType::ECIMType TypeNamed(std::string_view name);

}  // namespace zelcore::detail
