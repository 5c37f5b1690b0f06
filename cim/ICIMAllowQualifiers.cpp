#include "zelcore/ICIMAllowQualifiers.h"

ICIMAllowQualifiers::~ICIMAllowQualifiers() = default;
