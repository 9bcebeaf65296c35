#include "keyasn/support/file_time.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

namespace {

static_assert(std::is_standard_layout<CRUVFileTime>::value, "CRUVFileTime is standard layout");
static_assert(sizeof(CRUVFileTime) == 8, "only a FILETIME");
static_assert(offsetof(FILETIME, dwLowDateTime) == 0 && offsetof(FILETIME, dwHighDateTime) == 4,
              "low word first");
static_assert(sizeof(SYSTEMTIME) == 16, "eight 16-bit fields");
static_assert(offsetof(SYSTEMTIME, wDayOfWeek) == 4 && offsetof(SYSTEMTIME, wMilliseconds) == 14,
              "field order");

FILETIME Ft(unsigned long long t) {
  return FILETIME{static_cast<uint32_t>(t), static_cast<uint32_t>(t >> 32)};
}

unsigned long long Ticks(const FILETIME& f) {
  return (static_cast<unsigned long long>(f.dwHighDateTime) << 32) | f.dwLowDateTime;
}

// Tick counts computed independently: (days since 1601-01-01 * 86400 + seconds) * 10^7.
// Days from 1601-01-01 to 1970-01-01: 134774.
struct Row {
  const char* name;
  SYSTEMTIME st;  // year, month, dow, day, hour, minute, second, ms
  unsigned long long ticks;
};
const Row kRows[] = {
    {"epoch 1601-01-01 (Monday)", {1601, 1, 1, 1, 0, 0, 0, 0}, 0ull},
    {"unix epoch (Thursday)", {1970, 1, 4, 1, 0, 0, 0, 0}, 134774ull * 864000000000ull},
    // 2017-03-05 is 17230 days after 1970-01-01; 07:08:09.5 is 25689.5 s.
    {"2017-03-05 07:08:09.5 (Sunday)",
     {2017, 3, 0, 5, 7, 8, 9, 500},
     (134774ull + 17230) * 864000000000ull + 256895000000ull},
    {"2050-01-01 00:00:01 (Saturday)", {2050, 1, 6, 1, 0, 0, 1, 0}, 141690816010000000ull},
    // 9999-12-31 is 2932896 days after 1970-01-01.
    {"9999-12-31 23:59:59.999 (Friday)",
     {9999, 12, 5, 31, 23, 59, 59, 999},
     (134774ull + 2932896) * 864000000000ull + 863999990000ull},
    {"leap day 2000-02-29 (Tuesday)", {2000, 2, 2, 29, 12, 0, 0, 0},
     (134774ull + 11016) * 864000000000ull + 432000000000ull},
};

TEST(TimeConversion, KnownInstants) {
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.name);
    FILETIME ft{};
    ASSERT_TRUE(SystemTimeToFileTime(&r.st, &ft));
    EXPECT_EQ(Ticks(ft), r.ticks);
    SYSTEMTIME back{};
    ASSERT_TRUE(FileTimeToSystemTime(&ft, &back));
    EXPECT_EQ(back.wYear, r.st.wYear);
    EXPECT_EQ(back.wMonth, r.st.wMonth);
    EXPECT_EQ(back.wDayOfWeek, r.st.wDayOfWeek);
    EXPECT_EQ(back.wDay, r.st.wDay);
    EXPECT_EQ(back.wHour, r.st.wHour);
    EXPECT_EQ(back.wMinute, r.st.wMinute);
    EXPECT_EQ(back.wSecond, r.st.wSecond);
    EXPECT_EQ(back.wMilliseconds, r.st.wMilliseconds);
  }
}

TEST(TimeConversion, DayOfWeekIsIgnoredOnInput) {
  SYSTEMTIME st{2017, 3, 6, 5, 0, 0, 0, 0};  // wrong weekday given
  FILETIME ft{};
  EXPECT_TRUE(SystemTimeToFileTime(&st, &ft));
}

TEST(TimeConversion, RejectsOutOfRangeFields) {
  const SYSTEMTIME bad[] = {
      {1600, 12, 0, 31, 0, 0, 0, 0}, {30828, 1, 0, 1, 0, 0, 0, 0}, {2017, 0, 0, 1, 0, 0, 0, 0},
      {2017, 13, 0, 1, 0, 0, 0, 0},  {2017, 1, 0, 0, 0, 0, 0, 0},  {2017, 2, 0, 29, 0, 0, 0, 0},
      {1900, 2, 0, 29, 0, 0, 0, 0},  {2017, 4, 0, 31, 0, 0, 0, 0}, {2017, 1, 0, 1, 24, 0, 0, 0},
      {2017, 1, 0, 1, 0, 60, 0, 0},  {2017, 1, 0, 1, 0, 0, 60, 0}, {2017, 1, 0, 1, 0, 0, 0, 1000},
  };
  for (const SYSTEMTIME& st : bad) {
    FILETIME ft{7, 7};
    EXPECT_FALSE(SystemTimeToFileTime(&st, &ft)) << st.wYear << "-" << st.wMonth << "-" << st.wDay;
    EXPECT_EQ(ft.dwLowDateTime, 7u);  // untouched
  }
  FILETIME ft{};
  EXPECT_FALSE(SystemTimeToFileTime(nullptr, &ft));
  const SYSTEMTIME ok{2000, 2, 0, 29, 0, 0, 0, 0};
  EXPECT_FALSE(SystemTimeToFileTime(&ok, nullptr));
}

TEST(TimeConversion, LastYearBounds) {
  const SYSTEMTIME last{30827, 12, 0, 31, 23, 59, 59, 999};
  FILETIME ft{};
  ASSERT_TRUE(SystemTimeToFileTime(&last, &ft));
  SYSTEMTIME st{};
  EXPECT_TRUE(FileTimeToSystemTime(&ft, &st));
  const FILETIME next = Ft(Ticks(ft) + 10000);  // one millisecond later: year 30828
  EXPECT_FALSE(FileTimeToSystemTime(&next, &st));
  const FILETIME max = Ft(~0ull);
  EXPECT_FALSE(FileTimeToSystemTime(&max, &st));
  EXPECT_FALSE(FileTimeToSystemTime(nullptr, &st));
  EXPECT_FALSE(FileTimeToSystemTime(&ft, nullptr));
}

TEST(CRUVFileTime, ValueAndArithmetic) {
  const CRUVFileTime zero;
  EXPECT_EQ(zero.GetTicks(), 0u);
  const CRUVFileTime limit(141690816010000000ul);
  EXPECT_EQ(Ticks(limit.GetFileTime()), 141690816010000000ull);
  EXPECT_EQ(limit.GetFileTime().dwLowDateTime, static_cast<uint32_t>(141690816010000000ull));
  const FILETIME hour = Ft(36000000000ull);
  EXPECT_EQ((limit + hour).GetTicks(), 141690816010000000ul + 36000000000ul);
  EXPECT_EQ((limit - hour).GetTicks(), 141690816010000000ul - 36000000000ul);
  EXPECT_TRUE(limit - hour < limit);
  EXPECT_FALSE(limit < limit);
  CRUVFileTime t;
  t = hour;
  EXPECT_EQ(t.GetTicks(), 36000000000ul);
  EXPECT_EQ(CRUVFileTime(hour), t);
  // The first eight octets are the FILETIME.
  const unsigned char* raw = reinterpret_cast<const unsigned char*>(&limit);
  unsigned long long v = 0;
  for (int i = 7; i >= 0; --i) v = (v << 8) | raw[i];
  EXPECT_EQ(v, 141690816010000000ull);
}

}  // namespace
