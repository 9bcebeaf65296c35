#include "keyasn/codec/decoder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "keyasn/codec/error_codes.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::HexBytes;
using keyasn::testing::ToHex;

constexpr int kUnset = 0x5A5A;

std::string HexOfText(const std::string& s) {
  return ToHex(reinterpret_cast<const unsigned char*>(s.data()), s.size());
}

std::string TicksHex(uint64_t ticks) {
  unsigned char v[8];
  for (int i = 0; i < 8; ++i) v[i] = static_cast<unsigned char>(ticks >> (8 * i));
  return ToHex(v, 8);
}

const std::string kZeroTime = "00 00 00 00 00 00 00 00";

// Parses the element from a heap buffer of exactly its size and decodes it; the
// element must fit the buffer (as the record model checks before decoding).
IdentObj DecodeElement(const std::vector<unsigned char>& element, int* code) {
  std::vector<unsigned char> exact(element);
  ASNT_ASN_STRUCT_INFO info;
  EXPECT_EQ(ASNTGetAsnInfo(info, exact.data(), static_cast<unsigned int>(exact.size())),
            keyasn::kOk);
  EXPECT_LE(info.Contents + info.Length, exact.data() + exact.size());
  *code = kUnset;
  return ASNTLowDecodeData(info, nullptr, 0, code);
}

// A primitive universal element whose contents are `text`.
std::vector<unsigned char> Element(unsigned char identifier, const std::string& text) {
  std::vector<unsigned char> v;
  v.push_back(identifier);
  v.push_back(static_cast<unsigned char>(text.size()));
  v.insert(v.end(), text.begin(), text.end());
  return v;
}

struct DecodeRow {
  const char* name;
  const char* element;
  int code;
  std::string expected;
};

std::vector<DecodeRow> Rows() {
  return {
      // Context-specific: the contents octets, whatever the tag number.
      {"context [0]", "80 02 41 42", 0, "41 42"},
      {"context [1] constructed", "A1 03 02 01 05", 0, "02 01 05"},
      {"context [30] empty", "9E 00", 0, ""},
      {"context [128]", "BF 81 00 02 41 42", 0, "41 42"},
      // Tag numbers above 30 outside the context-specific class.
      {"universal 31", "1F 1F 01 41", 115, ""},
      {"application 128", "5F 81 00 01 41", 115, ""},
      // BOOLEAN: 32-bit number, first contents octet only.
      {"boolean true", "01 01 01", 0, "01 00 00 00"},
      {"boolean 0xFF", "01 01 FF", 0, "01 00 00 00"},
      {"boolean false", "01 01 00", 0, "00 00 00 00"},
      {"boolean first octet decides", "01 02 00 01", 0, "00 00 00 00"},
      {"boolean first octet of two", "01 02 01 00", 0, "01 00 00 00"},
      // With no contents octet nothing is read: false.
      {"boolean of no octets", "01 00", 0, "00 00 00 00"},
      // INTEGER: reversed, one leading zero dropped, no sign extension.
      {"integer 00 80", "02 02 00 80", 0, "80"},
      {"integer 00 00 01", "02 03 00 00 01", 0, "01 00"},
      {"integer FF 7F", "02 02 FF 7F", 0, "7F FF"},
      {"integer 00 alone", "02 01 00", 0, "00"},
      {"integer 00 00", "02 02 00 00", 0, "00"},
      {"integer negative as it stands", "02 01 80", 0, "80"},
      {"integer empty", "02 00", 0, ""},
      {"application integer", "42 01 05", 0, "05"},
      // Strings, SEQUENCE and SET: a copy of the contents.
      {"bit string with its unused-bits octet", "03 03 06 6E C0", 0, "06 6E C0"},
      {"octet string", "04 02 41 42", 0, "41 42"},
      {"octet string long form", "04 81 02 41 42", 0, "41 42"},
      {"octet string indefinite", "04 80 41 42 00 00", 0, "41 42"},
      {"utf8 string", "0C 01 61", 0, "61"},
      {"printable string", "13 01 61", 0, "61"},
      {"t61 string", "14 01 61", 0, "61"},
      {"ia5 string", "16 01 61", 0, "61"},
      {"visible string", "1A 01 61", 0, "61"},
      {"bmp string", "1E 02 00 61", 0, "00 61"},
      {"private octet string", "C4 01 41", 0, "41"},
      {"sequence", "30 03 02 01 05", 0, "02 01 05"},
      {"set", "31 03 02 01 05", 0, "02 01 05"},
      // NULL: empty, its length not checked.
      {"null", "05 00", 0, ""},
      {"null with contents", "05 02 41 42", 0, ""},
      // OBJECT IDENTIFIER.
      {"oid rsa", "06 06 2A 86 48 86 F7 0D", 0, HexOfText("1.2.840.113549")},
      {"oid one octet keeps its trailing dot", "06 01 2A", 0, HexOfText("1.2.")},
      {"oid first octet not capped at 2", "06 02 B4 03", 0, HexOfText("4.20.3")},
      {"oid first octet 0", "06 01 00", 0, HexOfText("0.0.")},
      {"oid first octet 255", "06 01 FF", 0, HexOfText("6.15.")},
      {"oid zero subidentifier", "06 02 2A 00", 0, HexOfText("1.2.0")},
      {"oid redundant leading 0x80", "06 03 2A 80 05", 0, HexOfText("1.2.5")},
      {"oid 32-bit maximum", "06 06 2A 8F FF FF FF 7F", 0, HexOfText("1.2.4294967295")},
      {"oid wraps in 32 bits", "06 07 2A 90 80 80 80 80 00", 0, HexOfText("1.2.0")},
      {"oid several", "06 05 2A 05 86 48 01", 0, HexOfText("1.2.5.840.1")},
      {"oid empty", "06 00", 0, ""},
      {"oid open at its last octet", "06 03 2A 86 86", 206, ""},
      {"oid single open octet at the end", "06 02 2A 86", 206, ""},
      {"oid open after a closed one", "06 04 2A 05 86 86", 206, ""},
      {"oid open first octet at the end", "06 03 2A 05 86", 206, ""},
      // Universal types without a row.
      {"universal 0", "00 01 41", 115, ""},
      {"universal 7", "07 01 41", 115, ""},
      {"universal 8", "28 00", 115, ""},
      {"universal 9", "09 01 41", 115, ""},
      {"universal 10", "0A 01 01", 115, ""},
      {"universal 11", "2B 00", 115, ""},
      {"universal 13", "0D 01 41", 115, ""},
      {"universal 14", "0E 01 41", 115, ""},
      {"universal 15", "0F 01 41", 115, ""},
      {"universal 18", "12 01 31", 115, ""},
      {"universal 21", "15 01 41", 115, ""},
      {"universal 25", "19 01 41", 115, ""},
      {"universal 27", "1B 01 41", 115, ""},
      {"universal 28", "1C 01 41", 115, ""},
      {"universal 29", "1D 01 41", 115, ""},
  };
}

TEST(ASNTLowDecodeData, Table) {
  for (const DecodeRow& row : Rows()) {
    SCOPED_TRACE(row.name);
    int code = kUnset;
    const IdentObj out = DecodeElement(HexBytes(row.element), &code);
    EXPECT_EQ(code, row.code);
    EXPECT_EQ(ToHex(out), row.expected);
  }
}

struct TimeRow {
  const char* text;
  int code;
  uint64_t ticks;  // only when code is 0
};

// Tick counts computed independently (100-ns intervals since 1601-01-01 UTC).
const TimeRow kUtcRows[] = {
    {"170305070809Z", 0, 131331712890000000ull},
    {"491231235959Z", 0, 141690815990000000ull},  // 2049-12-31 23:59:59
    {"500101000000Z", 0, 110133216000000000ull},  // 1950-01-01
    {"1703050708Z", 0, 131331712800000000ull},    // no seconds
    {"170305070809+0300", 0, 131331604890000000ull},  // 04:08:09 UTC
    {"170305070809-0300", 0, 131331820890000000ull},  // 10:08:09 UTC
    {"1703050708+0300", 0, 131331604800000000ull},
    {"1703050708-0130", 0, 131331766800000000ull},
    {"170305070809+0000", 0, 131331712890000000ull},
    {"17030507089Z", 206, 0},       // one seconds digit
    {"1703050708", 206, 0},         // length 10
    {"170305070809+03000", 206, 0},  // length 18
    {"17030507x8Z", 206, 0},        // not digits
    {"170305070809", 206, 0},       // seconds but no room for a zone
    {"1703050708a9Z", 206, 0},      // seconds not digits
    {"17030507080aZ", 206, 0},
    {"170305070809X", 206, 0},      // unknown zone
    {"1703050708Z0", 206, 0},       // 'Z' not last
    {"170305070809Z0", 206, 0},
    {"170305070809+030", 206, 0},   // three offset digits
    {"1703050708+030000", 206, 0},  // six offset digits
    {"170305070809+03a0", 206, 0},
    {"170305070809+2400", 206, 0},  // offset hour out of range
    {"170305070809+0060", 206, 0},  // offset minute out of range
    {"171305070809Z", 206, 0},      // month 13
    {"170229000000Z", 206, 0},      // not a leap year
    {"170305240000Z", 206, 0},
    {"170305076009Z", 206, 0},
    {"170305070860Z", 206, 0},
    {"170300070809Z", 206, 0},      // day 0
};

const TimeRow kGeneralizedRows[] = {
    {"20170305070809Z", 0, 131331712890000000ull},
    {"2017030507Z", 0, 131331708000000000ull},
    {"201703050708Z", 0, 131331712800000000ull},
    {"20170305070809.5Z", 0, 131331712895000000ull},   // 500 ms
    {"20170305070809,5Z", 0, 131331712895000000ull},
    {"201703050708.25Z", 0, 131331712950000000ull},    // 15 seconds
    {"2017030507.5Z", 0, 131331726000000000ull},       // 30 minutes
    {"2017030507.25Z", 0, 131331717000000000ull},      // 15 minutes
    {"2017030507.123456Z", 0, 131331712444420000ull},  // 07:07:24.442
    {"20170305070809.0005Z", 0, 131331712890010000ull},  // 0.5 ms rounds up
    {"20170305070809.0004Z", 0, 131331712890000000ull},  // 0.4 ms rounds down
    // Twelve digits: the first eight are read (all twelve would round to 7 ms).
    {"2017030507.000001809999Z", 0, 131331708000060000ull},
    {"20170305070809.123456789999Z", 0, 131331712891230000ull},
    {"20170305070809.99951Z", 206, 0},  // 1000 ms, no carry
    {"2017030507.9999999Z", 206, 0},    // 59:59.99964 gives 1000 ms
    // The offset is added for '+' and '-' alike (kept).
    {"20170305070809+03", 0, 131331820890000000ull},
    {"20170305070809-03", 0, 131331820890000000ull},
    {"20170305070809+0330", 0, 131331838890000000ull},
    {"20170305070809-0330", 0, 131331838890000000ull},
    {"2017030507+00", 0, 131331708000000000ull},
    {"20170305070809.5+01", 0, 131331748895000000ull},
    {"16010101000000Z", 0, 0},
    {"16010101000000-01", 0, 36000000000ull},
    {"99991231235959Z", 0, 2650467743990000000ull},
    {"20500101000001Z", 0, 141690816010000000ull},
    // No zone: local time is not accepted.
    {"20170305070809", 115, 0},
    {"2017030507", 115, 0},
    {"201703050708", 115, 0},
    {"20170305070809.5", 115, 0},
    // Malformed.
    {"201703050", 206, 0},           // length 9
    {"2017030x07Z", 206, 0},
    {"20170305071", 206, 0},         // one minutes digit
    {"2017030507a9Z", 206, 0},
    {"201703050708a", 206, 0},       // length 13: one seconds digit
    {"2017030507080", 206, 0},
    {"201703050708a9Z", 206, 0},
    {"20170305070809.Z", 206, 0},     // no fraction digit
    {"20170305070809.", 206, 0},
    {"20170305070809.5aZ", 206, 0},   // not only digits
    {"20170305070809X", 206, 0},
    {"20170305070809Z0", 206, 0},
    {"20170305070809+", 206, 0},
    {"20170305070809+3", 206, 0},
    {"20170305070809+3a", 206, 0},
    {"20170305070809+033", 206, 0},
    {"20170305070809+03a0", 206, 0},
    {"20170305070809+03300", 206, 0},
    {"20170305070809+24", 206, 0},
    {"20170305070809+0360", 206, 0},
    {"20171305070809Z", 206, 0},
    {"00000101000000Z", 206, 0},     // year 0
    {"16001231235959Z", 206, 0},     // before 1601
    {"20170305070860Z", 206, 0},
    // A calendar rejected before the zone is looked at.
    {"20171305070809", 206, 0},
};

void CheckTimes(unsigned char identifier, const TimeRow* rows, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const TimeRow& row = rows[i];
    SCOPED_TRACE(row.text);
    int code = kUnset;
    const IdentObj out = DecodeElement(Element(identifier, row.text), &code);
    EXPECT_EQ(code, row.code);
    // Eight octets on every path: zeros on failure.
    EXPECT_EQ(ToHex(out), row.code == 0 ? TicksHex(row.ticks) : kZeroTime);
  }
}

TEST(ASNTLowDecodeData, UtcTime) {
  CheckTimes(0x17, kUtcRows, sizeof kUtcRows / sizeof kUtcRows[0]);
}

TEST(ASNTLowDecodeData, GeneralizedTime) {
  CheckTimes(0x18, kGeneralizedRows, sizeof kGeneralizedRows / sizeof kGeneralizedRows[0]);
}

TEST(ASNTLowDecodeData, TimeIsFileTimeLowWordFirst) {
  int code = kUnset;
  const IdentObj out = DecodeElement(Element(0x18, "20170305070809.5Z"), &code);
  ASSERT_EQ(code, 0);
  // 131331712895000000 = 0x01D2957F3ED99DC0
  EXPECT_EQ(ToHex(out), "C0 9D D9 3E 7F 95 D2 01");
}

ASNT_ASN_STRUCT_INFO Record(unsigned char cls, unsigned int tag, const unsigned char* contents,
                            unsigned int length) {
  ASNT_ASN_STRUCT_INFO info{};
  info.Class = cls;
  info.Tag = tag;
  info.Length = length;
  info.Contents = contents;
  return info;
}

TEST(ASNTLowDecodeData, RecordWithoutContents) {
  const struct {
    const char* name;
    unsigned char cls;
    unsigned int tag;
    unsigned int length;
    int code;
    std::string expected;
  } rows[] = {
      {"oid", 0x00, 6, 3, 206, ""},
      {"oid of length 0", 0x00, 6, 0, 206, ""},
      {"boolean", 0x00, 1, 1, 0, "00 00 00 00"},
      {"integer", 0x00, 2, 2, 0, ""},
      {"octet string", 0x00, 4, 5, 0, ""},
      {"context [0]", 0x80, 0, 5, 0, ""},
      {"utc time", 0x00, 23, 13, 206, kZeroTime},
      {"generalized time", 0x00, 24, 15, 206, kZeroTime},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    int code = kUnset;
    const IdentObj out =
        ASNTLowDecodeData(Record(row.cls, row.tag, nullptr, row.length), nullptr, 0, &code);
    EXPECT_EQ(code, row.code);
    EXPECT_EQ(ToHex(out), row.expected);
  }
}

TEST(ASNTLowDecodeData, DataAndSizeAreNotUsed) {
  const std::vector<unsigned char> contents = HexBytes("41 42");
  const unsigned char junk[] = {0xFF};
  int code = kUnset;
  const IdentObj out =
      ASNTLowDecodeData(Record(0x00, 4, contents.data(), 2), junk, 0xFFFFFFFFu, &code);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(ToHex(out), "41 42");
  // A null error pointer is accepted on success and on failure.
  EXPECT_EQ(ToHex(ASNTLowDecodeData(Record(0x00, 4, contents.data(), 2), nullptr, 0, nullptr)),
            "41 42");
  EXPECT_EQ(ASNTLowDecodeData(Record(0x00, 31, contents.data(), 2), nullptr, 0, nullptr).Count(),
            0u);
}

// Object identifier contents and time texts cut at every length, each from a heap
// buffer of exactly that size: nothing is read past Length.
TEST(ASNTLowDecodeData, TruncationSweep) {
  const struct {
    unsigned int tag;
    std::vector<unsigned char> contents;
  } rows[] = {
      {6, HexBytes("2A 86 48 86 F7 0D 01 01 0B")},
      {6, HexBytes("2A 8F FF FF FF 7F 81 80 80 00")},
      {23, HexBytes(HexOfText("170305070809+0300"))},
      {23, HexBytes(HexOfText("1703050708Z"))},
      {24, HexBytes(HexOfText("20170305070809.123456789+0330"))},
      {24, HexBytes(HexOfText("2017030507,5-03"))},
      {1, HexBytes("01")},
      {2, HexBytes("00 80 01")},
  };
  for (const auto& row : rows) {
    for (size_t k = 0; k <= row.contents.size(); ++k) {
      SCOPED_TRACE(ToHex(row.contents.data(), k));
      std::vector<unsigned char> exact(row.contents.begin(), row.contents.begin() + k);
      // An empty vector may have no storage; keep a valid pointer to no octets.
      exact.reserve(1);
      int code = kUnset;
      const IdentObj out = ASNTLowDecodeData(
          Record(0x00, row.tag, exact.data(), static_cast<unsigned int>(k)), nullptr, 0, &code);
      EXPECT_NE(code, kUnset);
      if (row.tag == 23 || row.tag == 24) {
        EXPECT_EQ(out.Count(), 8u);
      }
    }
  }
}

TEST(IsDigits, Table) {
  const struct {
    const char* name;
    const char* text;
    int count;
    bool expected;
  } rows[] = {
      {"count 0", "", 0, true},
      {"null text count 0", nullptr, 0, true},
      {"negative count", nullptr, -5, true},
      {"digits", "0123456789", 10, true},
      {"letter after the counted ones", "12a", 2, true},
      {"letter counted", "12a", 3, false},
      {"below '0'", "/", 1, false},
      {"above '9'", ":", 1, false},
      {"blank", " 1", 2, false},
      {"null text with a count", nullptr, 1, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(IsDigits(reinterpret_cast<const unsigned char*>(row.text), row.count),
              row.expected);
  }
}

constexpr unsigned short kNotWritten = 0xBEEF;

struct FractionRow {
  const char* name;
  double fraction;
  bool minutes, seconds, milliseconds;  // which outputs are given
  unsigned short m, s, ms;             // expected (kNotWritten: untouched)
  double left;
};

const FractionRow kFractionRows[] = {
    {"hour: all three", 1.25, true, true, true, 15, 0, 0, 0.0},
    {"hour: 0.0625", 0.0625, true, true, true, 3, 45, 0, 0.0},
    {"minutes and milliseconds only: returns at once", 0.25, true, false, true, kNotWritten,
     kNotWritten, kNotWritten, 0.25},
    {"integer part dropped first", 7.75, true, false, true, kNotWritten, kNotWritten,
     kNotWritten, 0.75},
    {"minutes only", 0.5, true, false, false, 30, kNotWritten, kNotWritten, 0.0},
    {"minutes never rounded", 0.9921875, true, false, false, 59, kNotWritten, kNotWritten,
     0.53125},
    {"minutes and seconds: seconds rounded up", 0.0078125, true, true, false, 0, 28,
     kNotWritten, 0.125},
    {"minute: seconds rounded up", 0.0125, false, true, false, kNotWritten, 1, kNotWritten,
     0.75},
    {"minute: seconds not rounded", 0.00390625, false, true, false, kNotWritten, 0,
     kNotWritten, 0.234375},
    {"minute: seconds and milliseconds", 0.25, false, true, true, kNotWritten, 15, 0, 0.0},
    {"minute: milliseconds rounded", 0.0078125, false, true, true, kNotWritten, 0, 469,
     0.75},
    {"second: milliseconds rounded up", 0.00390625, false, false, true, kNotWritten,
     kNotWritten, 4, 0.90625},
    {"second: milliseconds not rounded", 0.00341796875, false, false, true, kNotWritten,
     kNotWritten, 3, 0.41796875},
    {"second: no carry past 999", 0.99951171875, false, false, true, kNotWritten, kNotWritten,
     1000, 0.51171875},
    {"nothing given", 2.75, false, false, false, kNotWritten, kNotWritten, kNotWritten, 0.75},
    {"negative fraction wraps in 16 bits", -0.25, true, false, false, 65521, kNotWritten,
     kNotWritten, 0.0},
};

TEST(FractionToTime, Table) {
  for (const FractionRow& row : kFractionRows) {
    SCOPED_TRACE(row.name);
    unsigned short m = kNotWritten, s = kNotWritten, ms = kNotWritten;
    const double left = FractionToTime(row.fraction, row.minutes ? &m : nullptr,
                                       row.seconds ? &s : nullptr,
                                       row.milliseconds ? &ms : nullptr);
    EXPECT_EQ(m, row.m);
    EXPECT_EQ(s, row.s);
    EXPECT_EQ(ms, row.ms);
    EXPECT_DOUBLE_EQ(left, row.left);
  }
}

TEST(FractionToTime, NotANumberWritesZeros) {
  unsigned short m = kNotWritten, s = kNotWritten, ms = kNotWritten;
  EXPECT_TRUE(std::isnan(FractionToTime(std::nan(""), &m, &s, &ms)));
  EXPECT_EQ(m, 0);
  EXPECT_EQ(s, 0);
  EXPECT_EQ(ms, 0);
  EXPECT_TRUE(std::isnan(FractionToTime(HUGE_VAL, nullptr, nullptr, &ms)));
}

TEST(MemCpyDwordToByte, LeastSignificantOctetFirst) {
  const unsigned int words[] = {0x11223344u, 0xA0B0C0D0u};
  unsigned char out[10];
  std::memset(out, 0xEE, sizeof out);
  MemCpyDwordToByte(out, words, 1);
  EXPECT_EQ(ToHex(out, 10), "44 33 22 11 EE EE EE EE EE EE");
  MemCpyDwordToByte(out, words, 2);
  EXPECT_EQ(ToHex(out, 10), "44 33 22 11 D0 C0 B0 A0 EE EE");
  std::memset(out, 0xEE, sizeof out);
  MemCpyDwordToByte(out, words, 0);
  EXPECT_EQ(ToHex(out, 10), "EE EE EE EE EE EE EE EE EE EE");
}

}  // namespace
