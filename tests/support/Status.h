#pragma once

#include <string>

#include "zelcore/TZELException.h"

// Calls `work` and tells how it ended: "zelStatusOK", or the name of the code that it threw. Other
// exceptions pass.
template <class TWork>
std::string StatusOf(TWork&& work) {
  try {
    work();
    return "zelStatusOK";
  } catch (const TZELException& failure) {
    return failure.what();
  }
}
