// FILETIME, SYSTEMTIME, their conversions, and CRUVFileTime.
#ifndef KEYASN_SUPPORT_FILE_TIME_H_
#define KEYASN_SUPPORT_FILE_TIME_H_

#include <cstdint>

#include "keyasn/support/export.h"

// FILETIME is a 64-bit count of 100-nanosecond intervals since 1601-01-01 00:00
// UTC, as two 32-bit words, low word first.
struct FILETIME {
  uint32_t dwLowDateTime;
  uint32_t dwHighDateTime;
};

// SYSTEMTIME is a calendar time in UTC; wDayOfWeek counts from Sunday = 0.
struct SYSTEMTIME {
  uint16_t wYear;
  uint16_t wMonth;
  uint16_t wDayOfWeek;
  uint16_t wDay;
  uint16_t wHour;
  uint16_t wMinute;
  uint16_t wSecond;
  uint16_t wMilliseconds;
};

// FileTimeToSystemTime converts a count to the calendar (proleptic Gregorian,
// UTC), day of week included; false (nothing written) when the count lies past
// the year 30827 or either pointer is null.
KEYASN_API bool FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* systemTime);
// SystemTimeToFileTime converts a calendar time to a count; the day of week is
// ignored. False (nothing written) when a field is out of range: year 1601..30827,
// month 1..12, day within the month, hour < 24, minute < 60, second < 60,
// milliseconds < 1000.
KEYASN_API bool SystemTimeToFileTime(const SYSTEMTIME* systemTime, FILETIME* fileTime);

// CRUVFileTime is a point in time held as a FILETIME, its only data member (so its
// first eight octets are the FILETIME). The default value, 0, means "no time".
class KEYASN_API CRUVFileTime {
 public:
  CRUVFileTime() noexcept;
  CRUVFileTime(const FILETIME& time) noexcept;  // NOLINT: implicit by design
  // CRUVFileTime(ticks) takes a count of 100-nanosecond intervals.
  CRUVFileTime(unsigned long ticks) noexcept;  // NOLINT: implicit by design
  CRUVFileTime& operator=(const FILETIME& time) noexcept;
  // Copies stay trivial (implicitly declared): the time is passed and returned in
  // registers, as existing callers expect of an eight-octet value.

  // operator+ and operator- move the time later or earlier by a duration given as
  // a count of 100-nanosecond intervals (wrapping modulo 2^64).
  CRUVFileTime operator+(const FILETIME& duration) const noexcept;
  CRUVFileTime operator-(const FILETIME& duration) const noexcept;
  // Earlier than.
  bool operator<(const CRUVFileTime& other) const noexcept;
  bool operator==(const CRUVFileTime& other) const noexcept {
    return GetTicks() == other.GetTicks();
  }
  bool operator!=(const CRUVFileTime& other) const noexcept { return !(*this == other); }

  const FILETIME& GetFileTime() const noexcept;
  // GetTicks returns the 64-bit count.
  unsigned long GetTicks() const noexcept {
    return (static_cast<unsigned long>(m_time.dwHighDateTime) << 32) | m_time.dwLowDateTime;
  }

 private:
  FILETIME m_time;
};

#endif  // KEYASN_SUPPORT_FILE_TIME_H_
