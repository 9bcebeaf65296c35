/// @file
/// FILETIME, SYSTEMTIME, their conversions, and CRUVFileTime.
#ifndef KEYASN_SUPPORT_FILE_TIME_H_
#define KEYASN_SUPPORT_FILE_TIME_H_

#include <cstdint>

#include "keyasn/support/export.h"

/// FILETIME is a 64-bit count of 100-nanosecond intervals since 1601-01-01 00:00
/// UTC, as two 32-bit words, low word first.
struct FILETIME {
  uint32_t dwLowDateTime;   ///< low 32 bits of the count
  uint32_t dwHighDateTime;  ///< high 32 bits of the count
};

/// SYSTEMTIME is a calendar time in UTC; wDayOfWeek counts from Sunday = 0.
struct SYSTEMTIME {
  uint16_t wYear;  ///< year, 1601 to 30827
  uint16_t wMonth;  ///< month, 1 to 12
  uint16_t wDayOfWeek;  ///< day of the week, Sunday = 0
  uint16_t wDay;  ///< day of the month, 1 to 31
  uint16_t wHour;  ///< hour, 0 to 23
  uint16_t wMinute;  ///< minute, 0 to 59
  uint16_t wSecond;  ///< second, 0 to 59
  uint16_t wMilliseconds;  ///< millisecond, 0 to 999
};

/// FileTimeToSystemTime converts a count to the calendar (proleptic Gregorian,
/// UTC), day of week included; false (nothing written) when the count lies past
/// the year 30827 or either pointer is null.
KEYASN_API bool FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* systemTime);
/// SystemTimeToFileTime converts a calendar time to a count; the day of week is
/// ignored. False (nothing written) when a field is out of range: year 1601..30827,
/// month 1..12, day within the month, hour < 24, minute < 60, second < 60,
/// milliseconds < 1000.
KEYASN_API bool SystemTimeToFileTime(const SYSTEMTIME* systemTime, FILETIME* fileTime);

/// CRUVFileTime is a point in time held as a FILETIME, its only data member (so its
/// first eight octets are the FILETIME). The default value, 0, means "no time".
class KEYASN_API CRUVFileTime {
 public:
  CRUVFileTime() noexcept;
  CRUVFileTime(const FILETIME& time) noexcept;  ///< NOLINT: implicit by design
  /// CRUVFileTime(ticks) takes a count of 100-nanosecond intervals.
  CRUVFileTime(unsigned long ticks) noexcept;  ///< NOLINT: implicit by design
  /// Replaces the contents by a copy of `other`; returns this object.
  CRUVFileTime& operator=(const FILETIME& time) noexcept;
  // Copies stay trivial (implicitly declared): the time is passed and returned in
  // registers, as existing callers expect of an eight-octet value.

  /// operator+ and operator- move the time later or earlier by a duration given as
  /// a count of 100-nanosecond intervals (wrapping modulo 2^64).
  CRUVFileTime operator+(const FILETIME& duration) const noexcept;
  CRUVFileTime operator-(const FILETIME& duration) const noexcept;  ///< See operator+.
  /// Earlier than.
  bool operator<(const CRUVFileTime& other) const noexcept;
  /// Equal when every member is equal.
  bool operator==(const CRUVFileTime& other) const noexcept {
    return GetTicks() == other.GetTicks();
  }
  /// The negation of operator==.
  bool operator!=(const CRUVFileTime& other) const noexcept { return !(*this == other); }

  /// GetFileTime returns the time as its two 32-bit words.
  const FILETIME& GetFileTime() const noexcept;
  /// GetTicks returns the 64-bit count.
  unsigned long GetTicks() const noexcept {
    return (static_cast<unsigned long>(m_time.dwHighDateTime) << 32) | m_time.dwLowDateTime;
  }

 private:
  FILETIME m_time;
};

#endif  // KEYASN_SUPPORT_FILE_TIME_H_
