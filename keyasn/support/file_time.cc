#include "keyasn/support/file_time.h"

namespace {

constexpr uint64_t kTicksPerMs = 10000;
constexpr uint64_t kTicksPerDay = 86400ull * 1000 * kTicksPerMs;
constexpr int kFirstYear = 1601;
constexpr int kLastYear = 30827;

// Days from 1970-01-01 to the given civil date (proleptic Gregorian).
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void CivilFromDays(int64_t z, int64_t* y, unsigned* m, unsigned* d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  *d = doy - (153 * mp + 2) / 5 + 1;
  *m = mp < 10 ? mp + 3 : mp - 9;
  *y = static_cast<int64_t>(yoe) + era * 400 + (*m <= 2);
}

bool IsLeap(unsigned y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

unsigned DaysInMonth(unsigned y, unsigned m) {
  static const unsigned char kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && IsLeap(y) ? 29 : kDays[m - 1];
}

const int64_t kEpochDays = DaysFromCivil(kFirstYear, 1, 1);  // 1601-01-01

}  // namespace

bool FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* systemTime) {
  if (!fileTime || !systemTime) return false;
  const uint64_t ticks =
      (static_cast<uint64_t>(fileTime->dwHighDateTime) << 32) | fileTime->dwLowDateTime;
  const uint64_t days = ticks / kTicksPerDay;
  uint64_t rest = ticks % kTicksPerDay;
  int64_t year;
  unsigned month, day;
  CivilFromDays(kEpochDays + static_cast<int64_t>(days), &year, &month, &day);
  if (year > kLastYear) return false;
  SYSTEMTIME st;
  st.wYear = static_cast<uint16_t>(year);
  st.wMonth = static_cast<uint16_t>(month);
  st.wDay = static_cast<uint16_t>(day);
  st.wDayOfWeek = static_cast<uint16_t>((days + 1) % 7);  // 1601-01-01 was a Monday
  st.wHour = static_cast<uint16_t>(rest / (3600000 * kTicksPerMs));
  rest %= 3600000 * kTicksPerMs;
  st.wMinute = static_cast<uint16_t>(rest / (60000 * kTicksPerMs));
  rest %= 60000 * kTicksPerMs;
  st.wSecond = static_cast<uint16_t>(rest / (1000 * kTicksPerMs));
  rest %= 1000 * kTicksPerMs;
  st.wMilliseconds = static_cast<uint16_t>(rest / kTicksPerMs);
  *systemTime = st;
  return true;
}

bool SystemTimeToFileTime(const SYSTEMTIME* systemTime, FILETIME* fileTime) {
  if (!systemTime || !fileTime) return false;
  const SYSTEMTIME& st = *systemTime;
  if (st.wYear < kFirstYear || st.wYear > kLastYear || st.wMonth < 1 || st.wMonth > 12 ||
      st.wDay < 1 || st.wDay > DaysInMonth(st.wYear, st.wMonth) || st.wHour > 23 ||
      st.wMinute > 59 || st.wSecond > 59 || st.wMilliseconds > 999)
    return false;
  const uint64_t days =
      static_cast<uint64_t>(DaysFromCivil(st.wYear, st.wMonth, st.wDay) - kEpochDays);
  const uint64_t ms = ((st.wHour * 60ull + st.wMinute) * 60 + st.wSecond) * 1000 +
                      st.wMilliseconds;
  const uint64_t ticks = days * kTicksPerDay + ms * kTicksPerMs;
  fileTime->dwLowDateTime = static_cast<uint32_t>(ticks);
  fileTime->dwHighDateTime = static_cast<uint32_t>(ticks >> 32);
  return true;
}

CRUVFileTime::CRUVFileTime() noexcept : m_time{0, 0} {}

CRUVFileTime::CRUVFileTime(const FILETIME& time) noexcept : m_time(time) {}

CRUVFileTime::CRUVFileTime(unsigned long ticks) noexcept
    : m_time{static_cast<uint32_t>(ticks), static_cast<uint32_t>(ticks >> 32)} {}

CRUVFileTime& CRUVFileTime::operator=(const FILETIME& time) noexcept {
  m_time = time;
  return *this;
}

const FILETIME& CRUVFileTime::GetFileTime() const noexcept { return m_time; }

bool CRUVFileTime::operator<(const CRUVFileTime& other) const noexcept {
  return GetTicks() < other.GetTicks();
}

CRUVFileTime CRUVFileTime::operator+(const FILETIME& duration) const noexcept {
  return CRUVFileTime(GetTicks() + CRUVFileTime(duration).GetTicks());
}

CRUVFileTime CRUVFileTime::operator-(const FILETIME& duration) const noexcept {
  return CRUVFileTime(GetTicks() - CRUVFileTime(duration).GetTicks());
}
