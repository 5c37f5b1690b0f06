#pragma once

#include "frontend/Streams.h"

namespace zel {

// The whole command. Returns the exit code.
int Main(int argc, const char* const* argv, TStreams streams);

}  // namespace zel
