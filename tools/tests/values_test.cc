#include "values.h"

#include <string>

#include <gtest/gtest.h>

#include "hex_bytes.h"
#include "oid_config.h"
#include "oid_names.h"

namespace keyasn {
namespace tool {
namespace {

TEST(ValuesTest, Integers) {
  struct Row {
    const char* hex;
    const char* text;
  };
  const Row rows[] = {
      {"00", "0"}, {"7F", "127"}, {"0080", "128"}, {"80", "-128"}, {"FF", "-1"},
      {"0100", "256"}, {"7FFFFFFFFFFFFFFF", "9223372036854775807"},
      {"8000000000000000", "-9223372036854775808"},
      {"00FFFFFFFFFFFFFFFF", "0x00FFFFFFFFFFFFFFFF"},
      {"", "(no contents)"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.hex);
    const Bytes b = H(row.hex);
    EXPECT_EQ(IntegerText(b.data(), b.size(), false), row.text);
  }
  const Bytes big(40, 0x11);
  EXPECT_EQ(IntegerText(big.data(), big.size(), false),
            "0x11111111111111111111111111111111... (40 octets)");
  EXPECT_EQ(IntegerText(big.data(), big.size(), true), "0x" + std::string(80, '1'));
}

// Every valid identifier is shown, also those beyond the library's own text form.
TEST(ValuesTest, ObjectIdentifiers) {
  struct Row {
    const char* hex;
    const char* dotted;
  };
  const Row rows[] = {
      {"2A864886F70D", "1.2.840.113549"},
      {"2A8503020213", "1.2.643.2.2.19"},
      {"00", "0.0"}, {"27", "0.39"}, {"28", "1.0"}, {"4F", "1.39"}, {"50", "2.0"},
      {"8837", "2.999"},
      {"2B0601040182371402", "1.3.6.1.4.1.311.20.2"},
      {"2A81FFFFFFFFFFFFFFFF7F", "1.2.18446744073709551615"},
      {"2A8001", "1.2.1"},  // a leading zero group reads like the minimal form
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.dotted);
    const Bytes contents = H(row.hex);
    std::string dotted;
    ASSERT_TRUE(DecodeOid(contents.data(), contents.size(), &dotted));
    EXPECT_EQ(dotted, row.dotted);
  }
  for (const char* bad : {"", "2A86", "2A8182838485868788898A01"}) {
    SCOPED_TRACE(bad);
    const Bytes contents = H(bad);
    std::string dotted;
    EXPECT_FALSE(DecodeOid(contents.data(), contents.size(), &dotted));
  }
}

TEST(ValuesTest, Times) {
  struct Row {
    const char* text;
    bool generalized;
    const char* iso;  // null: refused
  };
  const Row rows[] = {
      {"240101000000Z", false, "2024-01-01T00:00:00Z"},
      {"491231235959Z", false, "2049-12-31T23:59:59Z"},
      {"500101000000Z", false, "1950-01-01T00:00:00Z"},
      {"1703050708Z", false, "2017-03-05T07:08:00Z"},
      {"170305070809+0300", false, "2017-03-05T04:08:09Z"},
      {"170305000000-0130", false, "2017-03-05T01:30:00Z"},
      {"000101003000+0100", false, "1999-12-31T23:30:00Z"},
      {"20550630235959Z", true, "2055-06-30T23:59:59Z"},
      {"20170305070809.5Z", true, "2017-03-05T07:08:09.5Z"},
      {"2017030507Z", true, "2017-03-05T07:00:00Z"},
      {"20170305070809", true, "2017-03-05T07:08:09"},
      {"20170305070809+03", true, "2017-03-05T04:08:09Z"},
      {"20240229120000Z", true, "2024-02-29T12:00:00Z"},
      {"17030507089Z", false, nullptr},
      {"170305070809", false, nullptr},
      {"171305070809Z", false, nullptr},
      {"20230229120000Z", true, nullptr},
      {"20170305070809.Z", true, nullptr},
      {"20170305070809Zx", true, nullptr},
      {"2017", true, nullptr},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const std::string text = row.text;
    std::string iso;
    const bool ok = TimeText(reinterpret_cast<const unsigned char*>(text.data()), text.size(),
                             row.generalized, &iso);
    if (row.iso == nullptr) {
      EXPECT_FALSE(ok) << iso;
    } else {
      ASSERT_TRUE(ok);
      EXPECT_EQ(iso, row.iso);
    }
  }
}

TEST(ValuesTest, Strings) {
  auto q = [](const std::string& s, bool utf8) {
    return QuoteString(reinterpret_cast<const unsigned char*>(s.data()), s.size(), utf8);
  };
  EXPECT_EQ(q("Test CA", false), "\"Test CA\"");
  EXPECT_EQ(q("a\"b\\c\n\t\r", false), "\"a\\\"b\\\\c\\n\\t\\r\"");
  EXPECT_EQ(q(std::string("\x00\x7F", 2), false), "\"\\x00\\x7F\"");
  EXPECT_EQ(q("\xD0\x9A\xD0\xA1", true), "\"\xD0\x9A\xD0\xA1\"");  // valid UTF-8 kept
  EXPECT_EQ(q("\xD0\x9A\xD0\xA1", false), "\"\\xD0\\x9A\\xD0\\xA1\"");
  EXPECT_EQ(q("\xC0\x80", true), "\"\\xC0\\x80\"");  // overlong form refused
  const std::string mixed = "A\xFF";
  EXPECT_EQ(ToUtf8(reinterpret_cast<const unsigned char*>(mixed.data()), mixed.size()),
            "A\xEF\xBF\xBD");
  std::string out;
  const Bytes bmp = H("0041 041A D83D DE00");
  ASSERT_TRUE(Utf16ToUtf8(bmp.data(), bmp.size(), &out));
  EXPECT_EQ(out, "A\xD0\x9A\xF0\x9F\x98\x80");
  const Bytes lone = H("DC00");
  EXPECT_FALSE(Utf16ToUtf8(lone.data(), lone.size(), &out));
  const Bytes odd = H("0041 00");
  EXPECT_FALSE(Utf16ToUtf8(odd.data(), odd.size(), &out));
  const Bytes utf32 = H("00000041 0001F600");
  ASSERT_TRUE(Utf32ToUtf8(utf32.data(), utf32.size(), &out));
  EXPECT_EQ(out, "A\xF0\x9F\x98\x80");
  const Bytes too_big = H("00110000");
  EXPECT_FALSE(Utf32ToUtf8(too_big.data(), too_big.size(), &out));
}

TEST(ValuesTest, HexShortening) {
  std::string ab, ones;
  for (int i = 0; i < 16; ++i) {
    ab += "AB";
    ones += "01";
  }
  const Bytes sixteen(16, 0xAB);
  EXPECT_EQ(HexText(sixteen.data(), 16, false), ab);
  const Bytes seventeen(17, 0x01);
  EXPECT_EQ(HexText(seventeen.data(), 17, false), ones + "... (17 octets)");
  EXPECT_EQ(HexText(seventeen.data(), 17, true), ones + "01");
}

TEST(OidNamesTest, TableIsSortedAndFound) {
  EXPECT_TRUE(OidTableSorted());
  EXPECT_STREQ(OidName("1.2.643.2.2.19"), "id-GostR3410-2001");
  EXPECT_STREQ(OidName("1.2.643.2.2.31.1"), "id-Gost28147-89-CryptoPro-A-ParamSet");
  EXPECT_STREQ(OidName("2.5.4.3"), "commonName");
  EXPECT_STREQ(OidName("1.2.840.113549.1.1.11"), "sha256WithRSAEncryption");
  EXPECT_STREQ(OidName("1.3.6.1.5.5.7.3.1"), "serverAuth");
  EXPECT_EQ(OidName("1.2.3.4"), nullptr);
  EXPECT_EQ(OidName(""), nullptr);
}

}  // namespace
}  // namespace tool
}  // namespace keyasn
