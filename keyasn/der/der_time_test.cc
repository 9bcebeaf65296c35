#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "keyasn/der/der_helper.h"
#include "keyasn/der/der_test_util.h"
#include "keyasn/support/status.h"

namespace {

using keyasn::testing::Bytes;
using keyasn::testing::Exact;
using keyasn::testing::ExpectStatus;
using keyasn::testing::Hex;
using keyasn::testing::Place;

const char kPlace[] = "DerHelper::DecodeGeneralizedTime";

// Days from 1970-01-01 to the given civil date (proleptic Gregorian), computed here
// independently of the library's calendar.
long long DaysFromCivil(long long y, unsigned m, unsigned d) {
  y -= m <= 2;
  const long long era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<long long>(doe) - 719468;
}

unsigned long Ticks(int y, unsigned mo, unsigned d, unsigned h = 0, unsigned mi = 0,
                    unsigned s = 0, unsigned ms = 0) {
  const long long days = DaysFromCivil(y, mo, d) - DaysFromCivil(1601, 1, 1);
  const unsigned long seconds = static_cast<unsigned long>(days) * 86400UL + h * 3600UL +
                                mi * 60UL + s;
  return seconds * 10000000UL + ms * 10000UL;
}

// Element(tag, text): the tag, a short length and the characters.
IdentObj Element(unsigned char tag, const std::string& text) {
  std::string der(1, static_cast<char>(tag));
  der += static_cast<char>(text.size());
  der += text;
  return IdentObj(der.data(), static_cast<unsigned int>(der.size()));
}

std::string Text(const IdentObj& obj) {
  return std::string(reinterpret_cast<const char*>(obj.GetData()), obj.Count());
}

TEST(DerTime, EncodeGeneralizedTime) {
  struct Row {
    const char* name;
    unsigned long ticks;
    const char* text;
  };
  const Row rows[] = {
      {"milliseconds dropped", Ticks(2017, 3, 5, 7, 8, 9, 500), "20170305070809Z"},
      {"zero time", 0, "16010101000000Z"},
      {"last tick of a second", Ticks(2017, 3, 5, 7, 8, 9) + 9999999, "20170305070809Z"},
      {"1949 keeps four digits", Ticks(1949, 12, 31, 23, 59, 59), "19491231235959Z"},
      {"1950", Ticks(1950, 1, 1), "19500101000000Z"},
      {"2049", Ticks(2049, 12, 31, 23, 59, 59), "20491231235959Z"},
      {"2050 keeps four digits", Ticks(2050, 1, 1, 0, 0, 1), "20500101000001Z"},
      {"leap day", Ticks(2000, 2, 29, 12), "20000229120000Z"},
      {"9999", Ticks(9999, 12, 31, 23, 59, 59), "99991231235959Z"},
      {"year 10000 printed modulo 10000", Ticks(10000, 1, 1), "00000101000000Z"},
      {"year 30827", Ticks(30827, 12, 31, 23, 59, 59), "08271231235959Z"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(Text(DerHelper::EncodeGeneralizedTime(CRUVFileTime(row.ticks))),
              std::string("\x18\x0F") + row.text);
  }
  // The global constant of the library's validity checks.
  EXPECT_EQ(Ticks(2050, 1, 1, 0, 0, 1), 141690816010000000UL);
}

// A time past the calendar's end gives no encoding, which the record's writer
// reports.
TEST(DerTime, EncodeGeneralizedTimeBeyondTheCalendar) {
  for (unsigned long ticks : {~0UL, Ticks(30828, 1, 1), Ticks(30827, 12, 31, 23, 59, 59) + 10000000UL}) {
    SCOPED_TRACE(ticks);
    ExpectStatus([&] { DerHelper::EncodeGeneralizedTime(CRUVFileTime(ticks)); }, 37,
                 "CASNTBaseRecord::WriteData");
  }
}

TEST(DerTime, DecodeGeneralizedTime) {
  struct Row {
    const char* name;
    IdentObj element;
    bool skip;
    unsigned long ticks;
  };
  const Row rows[] = {
      {"seconds", Element(0x18, "20170305070809Z"), false, Ticks(2017, 3, 5, 7, 8, 9)},
      {"hour only", Element(0x18, "2017030507Z"), false, Ticks(2017, 3, 5, 7)},
      {"minutes", Element(0x18, "201703050708Z"), false, Ticks(2017, 3, 5, 7, 8)},
      {"half a second", Element(0x18, "20170305070809.5Z"), false,
       Ticks(2017, 3, 5, 7, 8, 9, 500)},
      {"comma fraction", Element(0x18, "20170305070809,25Z"), false,
       Ticks(2017, 3, 5, 7, 8, 9, 250)},
      {"quarter of a minute", Element(0x18, "201703050708.25Z"), false,
       Ticks(2017, 3, 5, 7, 8, 15)},
      {"half an hour", Element(0x18, "2017030507.5Z"), false, Ticks(2017, 3, 5, 7, 30)},
      {"twelve fraction digits read by eight", Element(0x18, "20170305070809.123456789012Z"),
       false, Ticks(2017, 3, 5, 7, 8, 9, 123)},
      {"+03 is added", Element(0x18, "20170305070809+03"), false, Ticks(2017, 3, 5, 10, 8, 9)},
      {"-03 is added as well", Element(0x18, "20170305070809-03"), false,
       Ticks(2017, 3, 5, 10, 8, 9)},
      {"+0330 is added", Element(0x18, "20170305070809+0330"), false,
       Ticks(2017, 3, 5, 10, 38, 9)},
      {"1601", Element(0x18, "16010101000000Z"), false, 0},
      {"9999", Element(0x18, "99991231235959Z"), false, Ticks(9999, 12, 31, 23, 59, 59)},
      {"1949 is not folded", Element(0x18, "19491231235959Z"), false,
       Ticks(1949, 12, 31, 23, 59, 59)},
      {"context class [24]: the contents as they stand",
       Element(0x98, std::string("\x01\x02\x03\x04\x05\x06\x07\x08", 8)), false,
       0x0807060504030201UL},
      // Malformed texts pass as whatever the decoder left: the zero time.
      {"shorter than any time", Hex("18 03 41 42 43"), false, 0},
      {"no zone", Element(0x18, "20170305070809"), false, 0},
      {"month 13", Element(0x18, "20171305070809Z"), false, 0},
      {"letters", Element(0x18, "2017O305070809Z"), false, 0},
      {"empty", Hex("18 00"), false, 0},
      {"1000 milliseconds", Element(0x18, "20170305070809.9999Z"), false, 0},
      // A UTCTime let through: decoded by its own rules.
      {"utc time skipped", Element(0x17, "170305070809Z"), true, Ticks(2017, 3, 5, 7, 8, 9)},
      {"utc time 49 is 2049", Element(0x17, "491231235959Z"), true,
       Ticks(2049, 12, 31, 23, 59, 59)},
      {"utc time 50 is 1950", Element(0x17, "500101000000Z"), true, Ticks(1950, 1, 1)},
      {"utc time offset subtracted", Element(0x17, "170305070809+0300"), true,
       Ticks(2017, 3, 5, 4, 8, 9)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(DerHelper::DecodeGeneralizedTime(row.element, row.skip).GetTicks(), row.ticks);
  }
}

TEST(DerTime, DecodeGeneralizedTimeFailures) {
  struct Row {
    const char* name;
    IdentObj element;
    bool skip;
    int code;
    std::string where;
  };
  const Row rows[] = {
      {"octet string skipped", Hex("04 01 00"), true, 131, Place(kPlace, "Неверный размер данных")},
      {"integer skipped", Hex("02 01 05"), true, 131, Place(kPlace, "Неверный размер данных")},
      {"nine octets skipped", Hex("04 09 01 02 03 04 05 06 07 08 09"), true, 131,
       Place(kPlace, "Неверный размер данных")},
      {"context class, seven octets", Hex("98 07 01 02 03 04 05 06 07"), false, 131,
       Place(kPlace, "Неверный размер данных")},
      {"utc time", Element(0x17, "170305070809Z"), false, 131, Place(kPlace, "Неверный тип")},
      {"octet string", Hex("04 08 00 00 00 00 00 00 00 00"), false, 131,
       Place(kPlace, "Неверный тип")},
      {"one octet", Hex("18"), false, 206, kPlace},
      {"high tag number never ends", Hex("1F 98 98"), false, 205, kPlace},
      {"contents beyond the element", Hex("18 0F 32 30"), false, 206, kPlace},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ExpectStatus([&] { DerHelper::DecodeGeneralizedTime(row.element, row.skip); }, row.code,
                 row.where);
  }
}

TEST(DerTime, RoundTrips) {
  const unsigned long times[] = {
      0,
      Ticks(1601, 1, 1, 0, 0, 1),
      Ticks(1899, 12, 31, 23, 59, 59),
      Ticks(1900, 2, 28, 12, 0, 0),
      Ticks(1949, 12, 31, 23, 59, 59),
      Ticks(1950, 1, 1),
      Ticks(1970, 1, 1),
      Ticks(1999, 12, 31, 23, 59, 59),
      Ticks(2000, 1, 1),
      Ticks(2000, 2, 29, 1, 2, 3),
      Ticks(2017, 3, 5, 7, 8, 9),
      Ticks(2038, 1, 19, 3, 14, 8),
      Ticks(2049, 12, 31, 23, 59, 59),
      Ticks(2050, 1, 1),
      Ticks(2050, 1, 1, 0, 0, 1),
      Ticks(2100, 2, 28, 23, 59, 59),
      Ticks(2400, 2, 29),
      Ticks(9999, 12, 31, 23, 59, 59),
  };
  for (unsigned long ticks : times) {
    SCOPED_TRACE(ticks);
    const IdentObj element = DerHelper::EncodeGeneralizedTime(CRUVFileTime(ticks));
    EXPECT_EQ(DerHelper::DecodeGeneralizedTime(element, false).GetTicks(), ticks);
    // Below a second is dropped on the way out.
    EXPECT_EQ(DerHelper::DecodeGeneralizedTime(
                  DerHelper::EncodeGeneralizedTime(CRUVFileTime(ticks + 9999999)), false)
                  .GetTicks(),
              ticks);
  }
}

TEST(DerTime, PrefixesNeverReadBeyondTheBuffer) {
  const IdentObj whole = Element(0x18, "20170305070809.5+0330");
  const std::vector<unsigned char> bytes = Bytes(whole);
  for (std::size_t n = 0; n < bytes.size(); ++n) {
    SCOPED_TRACE(n);
    const IdentObj prefix = Exact(bytes, n);
    try {
      DerHelper::DecodeGeneralizedTime(prefix);
      ADD_FAILURE() << "a cut element was accepted";
    } catch (const XRUVStatus& e) {
      EXPECT_TRUE(e.Status() == 205 || e.Status() == 206) << e.Status();
      EXPECT_EQ(std::string(e.Where()), kPlace);
    }
  }
  EXPECT_EQ(DerHelper::DecodeGeneralizedTime(Exact(bytes, bytes.size())).GetTicks(),
            Ticks(2017, 3, 5, 10, 38, 9, 500));
}

}  // namespace
