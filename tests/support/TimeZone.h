#pragma once

#include <stdlib.h>
#include <time.h>

#include <optional>
#include <string>

// The process's time zone for as long as this lives: TimeZone zone("Asia/Kolkata");
class TimeZone {
 public:
  explicit TimeZone(const std::string& name) {
    if (const char* former = getenv("TZ")) fFormer = former;
    setenv("TZ", name.c_str(), 1);
    tzset();
  }
  ~TimeZone() {
    if (fFormer) {
      setenv("TZ", fFormer->c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  std::optional<std::string> fFormer;
};
