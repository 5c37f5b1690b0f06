#include "zelcore/TOSSpecific.h"

#include <time.h>
#include <unistd.h>

#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;

const std::string TOSSpecific::kPluginExtension = ".pi.so";
const std::string TOSSpecific::kSpecificationExtension = ".properties.xml";

TCIMDateTime TOSSpecific::GetLocalTime() {
  timespec now;
  tm local;
  if (clock_gettime(CLOCK_REALTIME, &now) != 0 || !localtime_r(&now.tv_sec, &local)) {
    Fail(zelStatusFail);
  }
  const auto milliseconds = static_cast<unsigned int>(now.tv_nsec / 1'000'000);
  return TCIMDateTime(
      static_cast<unsigned short>(local.tm_year + 1900),
      static_cast<unsigned short>(local.tm_mon + 1), static_cast<unsigned int>(local.tm_mday),
      static_cast<unsigned short>(local.tm_hour), static_cast<unsigned short>(local.tm_min),
      static_cast<unsigned short>(local.tm_sec), milliseconds * 1000,
      static_cast<short>(local.tm_gmtoff / 60));
}

std::string TOSSpecific::GetMachineName() {
  char name[64];
  if (gethostname(name, sizeof name) != 0) Fail(zelStatusFail);
  name[sizeof name - 1] = '\0';
  return name;
}

// sic: not the name of a product.
std::string TOSSpecific::GetOperatingSystemName() { return GetMachineName(); }

bool TOSSpecific::IsAdmin() { return getuid() == 0; }

// sic: without a log file, lines go nowhere on this platform.
void TOSSpecific::OutputLogString(const std::string&) {}

void TOSSpecific::USleep(unsigned int microseconds) { usleep(microseconds); }
