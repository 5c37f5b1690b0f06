#pragma once

// Marks what libzelcore.so exports; everything else in the library is hidden.
#define ZEL_API __attribute__((visibility("default")))
