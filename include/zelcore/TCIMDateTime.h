#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "zelcore/detail/Export.h"

class TCIMDateTimeImpl;

// A CIM datetime: a point in time with its offset from UTC, or a length of time (an interval). NULL
// until it is set.
//
// Copies are independent, and have the precision flag off. All failures but that of GetDifference()
// are zelStatusInvalidDateTime, and a failed Set changes nothing. Arithmetic and comparison of
// points in time read their fields in the process's time zone.
class ZEL_API TCIMDateTime {
 public:
  TCIMDateTime();
  TCIMDateTime(unsigned short year, unsigned short month, unsigned int day, unsigned short hour,
               unsigned short minute, unsigned short second, unsigned int microSeconds,
               short utcOffset);
  TCIMDateTime(unsigned int days, unsigned short hours, unsigned short minutes,
               unsigned short seconds, unsigned int microSeconds);
  TCIMDateTime(const std::string& text);  // NOLINT(google-explicit-constructor): by design
  TCIMDateTime(const TCIMDateTime& other);
  TCIMDateTime& operator=(const TCIMDateTime& other);
  ~TCIMDateTime();

  // A point in time; `utcOffset` in minutes east of UTC. The check is loose: fields that mktime()
  // can normalise (a month 13, a day 40) pass, microseconds are not looked at.
  void Set(unsigned short year, unsigned short month, unsigned int day, unsigned short hour,
           unsigned short minute, unsigned short second, unsigned int microSeconds,
           short utcOffset);

  // An interval. Hours to 23, minutes and seconds to 59, microseconds to 999999; any days.
  void Set(unsigned int days, unsigned short hours, unsigned short minutes, unsigned short seconds,
           unsigned int microSeconds);

  // From the 25-character form, "20040315142530.000000-300" or "00000001020304.500000:000". At most
  // 65535 days of an interval survive: the number is cut to 16 bits.
  void Set(const std::string& text);

  // The fields as stored, whatever the kind; GetDay() is the number of days of an interval.
  unsigned short GetYear() const;
  unsigned short GetMonth() const;
  unsigned int GetDay() const;
  unsigned short GetHour() const;
  unsigned short GetMinute() const;
  unsigned short GetSecond() const;
  unsigned int GetMicroSeconds() const;
  short GetUTCOffset() const;

  bool IsNull() const;
  bool IsInterval() const;
  // Back to NULL.
  void Clear();

  // Whether ToUIString() of a point in time shows the date only.
  bool GetPrecision() const;
  void SetPrecision(bool precision);

  // The 25-character form.
  std::string ToString() const;
  // "03/15/2004 14:25:30", or the parts of an interval that are not zero, "1 day 2 hours ".
  std::string ToUIString() const;
  // Hours, minutes, seconds and milliseconds of an interval, "26:03:04.005"; "" for a point in
  // time.
  std::string ToAbbrUIString() const;

  // Throw when either side is NULL or the two are not of one kind.
  bool operator==(const TCIMDateTime& other) const;
  bool operator<(const TCIMDateTime& other) const;

  // Two points in time cannot be added. The difference of two of a kind is always positive.
  TCIMDateTime operator+(const TCIMDateTime& other) const;
  TCIMDateTime operator-(const TCIMDateTime& other) const;

  // Always throws zelStatusNotImplemented.
  static TCIMDateTime GetDifference(TCIMDateTime& a, TCIMDateTime& b);

  // The body itself, shared with the caller.
  const boost::shared_ptr<TCIMDateTimeImpl>& GetBody() const;

 private:
  friend class TCIMDateTimeImpl;
  explicit TCIMDateTime(const boost::shared_ptr<TCIMDateTimeImpl>& body);

  boost::shared_ptr<TCIMDateTimeImpl> fBody;
};
