#pragma once

#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Export.h"

namespace zelcore::detail {

// The name of the (element) type for messages: as TCIMType::ToString(), but "" for a code that has
// none, so that building a message never fails itself.
ZEL_API const char* TypeText(TCIMValue::TCIMType type);

}  // namespace zelcore::detail
