#include "cim/TCIMDateTimeImpl.h"

#include <boost/make_shared.hpp>
#include <cassert>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <string_view>

#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;

namespace {

constexpr long kMicro = 1000000;  // microseconds in a second
constexpr std::size_t kTextLength = 25;

// The fields as mktime() reads them in the process's time zone, without daylight saving.
std::time_t MakeTime(unsigned short year, unsigned short month, unsigned int day,
                     unsigned short hour, int minute, unsigned short second) {
  std::tm fields{};
  fields.tm_year = year - 1900;
  fields.tm_mon = month - 1;
  fields.tm_mday = static_cast<int>(day);
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  return std::mktime(&fields);
}

std::tm LocalTime(std::time_t seconds) {
  std::tm fields;
  if (!localtime_r(&seconds, &fields)) Fail(zelStatusInvalidDateTime);
  return fields;
}

// The point in time that lies |microSeconds| after the epoch.
TCIMDateTime PointInTime(long microSeconds, short utcOffset) {
  const long distance = std::labs(microSeconds);
  std::time_t seconds = distance / kMicro;
  std::tm fields = LocalTime(seconds);
  if (fields.tm_isdst > 0) fields = LocalTime(seconds -= 3600);
  return TCIMDateTime(
      static_cast<unsigned short>(fields.tm_year + 1900),
      static_cast<unsigned short>(fields.tm_mon + 1), static_cast<unsigned int>(fields.tm_mday),
      static_cast<unsigned short>(fields.tm_hour), static_cast<unsigned short>(fields.tm_min),
      static_cast<unsigned short>(fields.tm_sec), static_cast<unsigned int>(distance % kMicro),
      utcOffset);
}

// The interval of |microSeconds|.
TCIMDateTime Interval(long microSeconds) {
  const long distance = std::labs(microSeconds);
  const long seconds = distance / kMicro;
  return TCIMDateTime(static_cast<unsigned int>(seconds / 3600 / 24),
                      static_cast<unsigned short>(seconds / 3600 % 24),
                      static_cast<unsigned short>(seconds / 60 % 60),
                      static_cast<unsigned short>(seconds % 60),
                      static_cast<unsigned int>(distance % kMicro));
}

// Numbers at fixed places of a text.
class TDigits {
 public:
  explicit TDigits(std::string_view text) : fText(text) {}

  unsigned int Two(std::size_t at) { return 10 * Digit(at) + Digit(at + 1); }
  unsigned int Three(std::size_t at) { return 10 * Two(at) + Digit(at + 2); }
  unsigned int Four(std::size_t at) { return 100 * Two(at) + Two(at + 2); }
  unsigned int Six(std::size_t at) { return 100 * Four(at) + Two(at + 4); }
  unsigned int Eight(std::size_t at) { return 10000 * Four(at) + Four(at + 4); }

  // Whether all that has been read were digits.
  bool WereRead() const { return fAreDigits; }

 private:
  unsigned int Digit(std::size_t at) {
    const auto digit = static_cast<unsigned int>(static_cast<unsigned char>(fText[at])) - '0';
    fAreDigits &= digit <= 9;
    return digit;
  }

  std::string_view fText;
  bool fAreDigits = true;
};

// Puts texts together from parts and numbers, which are filled up with zeros to their widths.
class TPrinter {
 public:
  TPrinter& Add(std::string_view part) {
    assert(part.size() <= sizeof fText - fSize);
    part.copy(fText + fSize, part.size());
    fSize += part.size();
    return *this;
  }

  TPrinter& Add(unsigned long number, std::size_t width) {
    char digits[20];
    char* first = std::end(digits);
    for (; number != 0 || width != 0; number /= 10, width -= width != 0) {
      *--first = static_cast<char>('0' + number % 10);
    }
    return Add({first, static_cast<std::size_t>(std::end(digits) - first)});
  }

  // "1 day " or "5 days "; nothing for 0.
  TPrinter& AddCount(unsigned int count, std::string_view unit) {
    if (count == 0) return *this;
    return Add(count, 1).Add(" ").Add(unit).Add(count == 1 ? " " : "s ");
  }

  std::string Text() const { return {fText, fSize}; }

 private:
  char fText[128];  // the longest text, of a length of time in all its units, has 94 characters
  std::size_t fSize = 0;
};

}  // namespace

TCIMDateTimeImpl::TCIMDateTimeImpl(const TCIMDateTimeImpl& other)
    : fDay(other.fDay),
      fMicroSeconds(other.fMicroSeconds),
      fYear(other.fYear),
      fMonth(other.fMonth),
      fHour(other.fHour),
      fMinute(other.fMinute),
      fSecond(other.fSecond),
      fUTCOffset(other.fUTCOffset),
      fIsNull(other.fIsNull),
      fIsInterval(other.fIsInterval) {}

TCIMDateTimeImpl::operator TCIMDateTime() const {
  return TCIMDateTime(boost::make_shared<TCIMDateTimeImpl>(*this));
}

// mktime() refuses fields only by its -1, which is also its answer for the second before the epoch.
// It is slow, and asked only where that second can be: fields of two digits reach forward less than
// nine years (99 months, 99 days, 99 hours ...), back less than two months (a month 0 and a day 0),
// and offset and time zone together less than four weeks either way.
bool TCIMDateTimeImpl::IsValid(unsigned short year, unsigned short month, unsigned int day,
                               unsigned short hour, unsigned short minute, unsigned short second,
                               unsigned int, short utcOffset) {
  const bool isFar = year < 1960 || year > 1970;
  const bool isShort = month < 100 && day < 100 && hour < 100 && minute < 100 && second < 100;
  if (isFar && isShort) return true;
  return MakeTime(year, month, day, hour, minute - utcOffset, second) != -1;
}

bool TCIMDateTimeImpl::IsValid(unsigned int, unsigned short hours, unsigned short minutes,
                               unsigned short seconds, unsigned int microSeconds) {
  return hours <= 23 && minutes <= 59 && seconds <= 59 && microSeconds < kMicro;
}

bool TCIMDateTimeImpl::TrySet(unsigned short year, unsigned short month, unsigned int day,
                              unsigned short hour, unsigned short minute, unsigned short second,
                              unsigned int microSeconds, short utcOffset) {
  if (!IsValid(year, month, day, hour, minute, second, microSeconds, utcOffset)) return false;
  fYear = year;
  fMonth = month;
  fDay = day;
  fHour = hour;
  fMinute = minute;
  fSecond = second;
  fMicroSeconds = microSeconds;
  fUTCOffset = utcOffset;
  fIsNull = false;
  fIsInterval = false;
  return true;
}

bool TCIMDateTimeImpl::TrySet(unsigned int days, unsigned short hours, unsigned short minutes,
                              unsigned short seconds, unsigned int microSeconds) {
  if (!IsValid(days, hours, minutes, seconds, microSeconds)) return false;
  fDay = days;
  fHour = hours;
  fMinute = minutes;
  fSecond = seconds;
  fMicroSeconds = microSeconds;
  fIsNull = false;
  fIsInterval = true;
  return true;
}

bool TCIMDateTimeImpl::TrySet(std::string_view text) {
  if (text.size() != kTextLength || text[14] != '.') return false;
  TDigits digits(text);
  const unsigned int days = digits.Eight(0);
  const auto hour = static_cast<unsigned short>(digits.Two(8));
  const auto minute = static_cast<unsigned short>(digits.Two(10));
  const auto second = static_cast<unsigned short>(digits.Two(12));
  const unsigned int microSeconds = digits.Six(15);
  const auto suffix = static_cast<short>(digits.Three(22));
  if (!digits.WereRead()) return false;

  switch (text[21]) {
    case ':':
      // sic: days of a text are cut to 16 bits.
      return suffix == 0 &&
             TrySet(static_cast<unsigned short>(days), hour, minute, second, microSeconds);
    case '+':
    case '-':
      return TrySet(static_cast<unsigned short>(digits.Four(0)),
                    static_cast<unsigned short>(digits.Two(4)), digits.Two(6), hour, minute, second,
                    microSeconds, static_cast<short>(text[21] == '-' ? -suffix : suffix));
    default: return false;
  }
}

std::string TCIMDateTimeImpl::ToString() const {
  RequireValue();
  TPrinter out;
  if (fIsInterval) {
    out.Add(fDay, 8);
  } else {
    out.Add(fYear, 4).Add(fMonth, 2).Add(fDay, 2);
  }
  out.Add(fHour, 2).Add(fMinute, 2).Add(fSecond, 2).Add(".").Add(fMicroSeconds, 6);
  if (fIsInterval) return out.Add(":000").Text();
  out.Add(fUTCOffset < 0 ? "-" : "+");
  return out.Add(static_cast<unsigned long>(std::abs(fUTCOffset)), 3).Text();
}

std::string TCIMDateTimeImpl::ToUIString() const {
  RequireValue();
  TPrinter out;
  if (fIsInterval) {
    return out.AddCount(fDay, "day")
        .AddCount(fHour, "hour")
        .AddCount(fMinute, "minute")
        .AddCount(fSecond, "second")
        .AddCount(fMicroSeconds / 1000, "millisecond")
        .AddCount(fMicroSeconds % 1000, "microsecond")
        .Text();
  }
  out.Add(fMonth, 2).Add("/").Add(fDay, 2).Add("/").Add(fYear, 4).Add(" ");
  if (fPrecision) return out.Text();
  return out.Add(fHour, 2).Add(":").Add(fMinute, 2).Add(":").Add(fSecond, 2).Text();
}

std::string TCIMDateTimeImpl::ToAbbrUIString() const {
  RequireValue();
  if (!fIsInterval) return "";
  return TPrinter()
      .Add(fDay * 24ul + fHour, 2)
      .Add(":")
      .Add(fMinute, 2)
      .Add(":")
      .Add(fSecond, 2)
      .Add(".")
      .Add(fMicroSeconds / 1000, 3)
      .Text();
}

void TCIMDateTimeImpl::RequireValue() const {
  if (fIsNull) Fail(zelStatusInvalidDateTime);
}

// The moment of a point in time, its minutes moved back by `utcOffset`.
std::time_t TCIMDateTimeImpl::ToTime(int utcOffset) const {
  const std::time_t time = MakeTime(fYear, fMonth, fDay, fHour, fMinute - utcOffset, fSecond);
  if (time == -1) Fail(zelStatusInvalidDateTime);
  return time;
}

// Whole seconds, in microseconds. Days in their thousand millions would leave the range.
long TCIMDateTimeImpl::LocalMicroSeconds() const {
  constexpr std::time_t kFarthest = 4000000000000;
  const std::time_t time = ToTime(0);
  if (std::labs(time) > kFarthest) Fail(zelStatusInvalidDateTime);
  return time * kMicro;
}

long TCIMDateTimeImpl::UTCMicroSeconds() const {
  return LocalMicroSeconds() - fUTCOffset * 60L * kMicro + fMicroSeconds;
}

// sic: in 32 bits, so that lengths beyond 49710 days wrap.
unsigned int TCIMDateTimeImpl::TotalSeconds() const {
  return fDay * 86400 + fHour * 3600u + fMinute * 60u + fSecond;
}

long TCIMDateTimeImpl::TotalMicroSeconds() const { return TotalSeconds() * kMicro + fMicroSeconds; }

// Calls `decide` with the seconds of both sides where these differ, else with their microseconds.
template <class TDecide>
bool TCIMDateTimeImpl::Compare(const TCIMDateTimeImpl& other, TDecide decide) const {
  RequireValue();
  other.RequireValue();
  if (fIsInterval != other.fIsInterval) Fail(zelStatusInvalidDateTime);
  const long a = fIsInterval ? TotalSeconds() : ToTime(fUTCOffset);
  const long b = fIsInterval ? other.TotalSeconds() : other.ToTime(other.fUTCOffset);
  return a != b ? decide(a, b) : decide(fMicroSeconds, other.fMicroSeconds);
}

bool TCIMDateTimeImpl::operator==(const TCIMDateTimeImpl& other) const {
  return Compare(other, std::equal_to<>());
}

bool TCIMDateTimeImpl::operator<(const TCIMDateTimeImpl& other) const {
  return Compare(other, std::less<>());
}

TCIMDateTime TCIMDateTimeImpl::operator+(const TCIMDateTimeImpl& other) const {
  RequireValue();
  other.RequireValue();
  if (fIsInterval && other.fIsInterval) {
    return Interval(TotalMicroSeconds() + other.TotalMicroSeconds());
  }
  if (fIsInterval) return other + *this;
  if (!other.fIsInterval) Fail(zelStatusInvalidDateTime);
  // The offset from UTC is carried along, not applied.
  return PointInTime(LocalMicroSeconds() + fMicroSeconds + other.TotalMicroSeconds(), fUTCOffset);
}

TCIMDateTime TCIMDateTimeImpl::operator-(const TCIMDateTimeImpl& other) const {
  RequireValue();
  other.RequireValue();
  if (fIsInterval && other.fIsInterval) {
    return Interval(other.TotalMicroSeconds() - TotalMicroSeconds());
  }
  if (!fIsInterval && !other.fIsInterval) {
    return Interval(other.UTCMicroSeconds() - UTCMicroSeconds());
  }
  const TCIMDateTimeImpl& point = fIsInterval ? other : *this;
  const TCIMDateTimeImpl& interval = fIsInterval ? *this : other;
  // sic: the interval is taken off in either order, but the microseconds always go from left to
  // right.
  const long seconds = point.LocalMicroSeconds() - interval.TotalSeconds() * kMicro;
  return PointInTime(seconds + fMicroSeconds - other.fMicroSeconds, point.fUTCOffset);
}
