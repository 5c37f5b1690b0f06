#pragma once

#include <ctime>
#include <string>
#include <string_view>

#include "zelcore/TCIMDateTime.h"
#include "zelcore/detail/Export.h"

// The fields of a TCIMDateTime and all that is done with them; see there.
class ZEL_API TCIMDateTimeImpl {
 public:
  TCIMDateTimeImpl() = default;
  // All fields but the precision flag.
  TCIMDateTimeImpl(const TCIMDateTimeImpl& other);
  TCIMDateTimeImpl& operator=(const TCIMDateTimeImpl&) = delete;

  // A handle of a copy.
  explicit operator TCIMDateTime() const;

  // Whether mktime() accepts the fields of a point in time, and nothing more: it normalises most.
  static bool IsValid(unsigned short year, unsigned short month, unsigned int day,
                      unsigned short hour, unsigned short minute, unsigned short second,
                      unsigned int microSeconds, short utcOffset);
  // Whether all fields of an interval but the days are within their ranges.
  static bool IsValid(unsigned int days, unsigned short hours, unsigned short minutes,
                      unsigned short seconds, unsigned int microSeconds);

  // Each returns false, with nothing changed, where the handle's Set() throws.
  bool TrySet(unsigned short year, unsigned short month, unsigned int day, unsigned short hour,
              unsigned short minute, unsigned short second, unsigned int microSeconds,
              short utcOffset);
  bool TrySet(unsigned int days, unsigned short hours, unsigned short minutes,
              unsigned short seconds, unsigned int microSeconds);
  bool TrySet(std::string_view text);

  unsigned short GetYear() const { return fYear; }
  unsigned short GetMonth() const { return fMonth; }
  unsigned int GetDay() const { return fDay; }
  unsigned short GetHour() const { return fHour; }
  unsigned short GetMinute() const { return fMinute; }
  unsigned short GetSecond() const { return fSecond; }
  unsigned int GetMicroSeconds() const { return fMicroSeconds; }
  short GetUTCOffset() const { return fUTCOffset; }

  bool IsNull() const { return fIsNull; }
  bool IsInterval() const { return fIsInterval; }
  void Clear() { fIsNull = true; }

  bool GetPrecision() const { return fPrecision; }
  void SetPrecision(bool precision) { fPrecision = precision; }

  std::string ToString() const;
  std::string ToUIString() const;
  std::string ToAbbrUIString() const;

  bool operator==(const TCIMDateTimeImpl& other) const;
  bool operator<(const TCIMDateTimeImpl& other) const;
  TCIMDateTime operator+(const TCIMDateTimeImpl& other) const;
  TCIMDateTime operator-(const TCIMDateTimeImpl& other) const;

 private:
  void RequireValue() const;
  std::time_t ToTime(int utcOffset) const;
  long LocalMicroSeconds() const;
  long UTCMicroSeconds() const;
  unsigned int TotalSeconds() const;
  long TotalMicroSeconds() const;
  template <class TDecide>
  bool Compare(const TCIMDateTimeImpl& other, TDecide decide) const;

  // Values hold millions of them: without gaps.
  unsigned int fDay = 0;
  unsigned int fMicroSeconds = 0;
  unsigned short fYear = 0;
  unsigned short fMonth = 0;
  unsigned short fHour = 0;
  unsigned short fMinute = 0;
  unsigned short fSecond = 0;
  short fUTCOffset = 0;
  bool fIsNull = true;
  bool fIsInterval = false;
  bool fPrecision = false;
};
