#include "zelcore/ILogger.h"

ILogger::~ILogger() = default;
