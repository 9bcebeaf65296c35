#include "keyasn/codec/encoder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "keyasn/codec/decoder.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/oid_text.h"
#include "keyasn/support/file_time.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::HexBytes;
using keyasn::testing::ToHex;

// Tick counts computed independently (100-ns intervals since 1601-01-01 UTC).
constexpr uint64_t kTicks20170305_070809_5 = 131331712895000000ull;
constexpr uint64_t kTicks16010101 = 0;
constexpr uint64_t kTicks99991231_235959 = 2650467743990000000ull;
constexpr uint64_t kTicks100000101 = 2650467744000000000ull;
constexpr uint64_t kTicks20500101_000001 = 141690816010000000ull;

ASNT_ASN_STRUCT_INFO Info(unsigned char cls, unsigned char constructed, unsigned int tag) {
  ASNT_ASN_STRUCT_INFO info{};
  info.Class = cls;
  info.Constructed = constructed;
  info.Tag = tag;
  // Ignored by the encoder.
  info.Length = 0x12345678u;
  info.Contents = reinterpret_cast<const unsigned char*>("ignored");
  return info;
}

// Encodes from a heap buffer of exactly the value's size, so that any read past
// it is seen by the address sanitizer.
IdentObj Encode(const ASNT_ASN_STRUCT_INFO& info, const std::vector<unsigned char>& value) {
  std::vector<unsigned char> exact(value);
  int error = 0x5A5A;
  IdentObj out = ASNTLowEncodeData(info, exact.empty() ? nullptr : exact.data(),
                                   static_cast<unsigned int>(exact.size()), &error);
  EXPECT_EQ(error, 0x5A5A) << "the error out-parameter is never written";
  return out;
}

std::vector<unsigned char> Text(const std::string& s) {
  return std::vector<unsigned char>(s.begin(), s.end());
}

std::vector<unsigned char> Ticks(uint64_t ticks) {
  std::vector<unsigned char> v(8);
  for (int i = 0; i < 8; ++i) v[i] = static_cast<unsigned char>(ticks >> (8 * i));
  return v;
}

std::string HexOfText(const std::string& s) {
  return ToHex(reinterpret_cast<const unsigned char*>(s.data()), s.size());
}

struct EncodeRow {
  const char* name;
  unsigned char cls;
  unsigned char constructed;
  unsigned int tag;
  std::vector<unsigned char> value;
  std::string expected;  // hex; "" for an empty result
};

std::vector<EncodeRow> Rows() {
  return {
      // INTEGER, least significant octet first.
      {"integer 128", 0x00, 0, 2, HexBytes("80 00"), "02 02 00 80"},
      {"integer -1", 0x00, 0, 2, HexBytes("FF FF"), "02 01 FF"},
      {"integer 5 in four octets", 0x00, 0, 2, HexBytes("05 00 00 00"), "02 01 05"},
      {"integer of no octets", 0x00, 0, 2, {}, "02 00"},
      {"integer zero", 0x00, 0, 2, HexBytes("00 00 00"), "02 01 00"},
      {"integer -256 kept", 0x00, 0, 2, HexBytes("00 FF"), "02 02 FF 00"},
      {"integer 127 shortened", 0x00, 0, 2, HexBytes("7F 00"), "02 01 7F"},
      {"integer -128 shortened", 0x00, 0, 2, HexBytes("80 FF"), "02 01 80"},
      {"integer 0x80 never widened", 0x00, 0, 2, HexBytes("80"), "02 01 80"},
      {"integer max int32", 0x00, 0, 2, HexBytes("FF FF FF 7F"), "02 04 7F FF FF FF"},
      {"integer 0x8000", 0x00, 0, 2, HexBytes("00 80 00 00"), "02 03 00 80 00"},
      // BOOLEAN.
      {"boolean 00 00", 0x00, 0, 1, HexBytes("00 00"), "01 01 00"},
      {"boolean 00 01", 0x00, 0, 1, HexBytes("00 01"), "01 01 FF"},
      {"boolean 32-bit one", 0x00, 0, 1, HexBytes("01 00 00 00"), "01 01 FF"},
      {"boolean of no octets", 0x00, 0, 1, {}, "01 01 00"},
      // NULL.
      {"null with a value", 0x00, 0, 5, HexBytes("41 42"), "05 00"},
      {"null without a value", 0x00, 0, 5, {}, "05 00"},
      // Strings copied as they are.
      {"bit string", 0x00, 0, 3, HexBytes("06 6E 5D C0"), "03 04 06 6E 5D C0"},
      {"octet string", 0x00, 0, 4, HexBytes("41 42"), "04 02 41 42"},
      {"octet string empty", 0x00, 0, 4, {}, "04 00"},
      {"utf8 string", 0x00, 0, 12, Text("ab"), "0C 02 61 62"},
      {"printable string", 0x00, 0, 19, Text("ab"), "13 02 61 62"},
      {"t61 string", 0x00, 0, 20, Text("ab"), "14 02 61 62"},
      {"ia5 string", 0x00, 0, 22, Text("ab"), "16 02 61 62"},
      {"visible string", 0x00, 0, 26, Text("ab"), "1A 02 61 62"},
      {"sequence", 0x00, 0x20, 16, HexBytes("02 01 05"), "30 03 02 01 05"},
      {"set", 0x00, 0x20, 17, HexBytes("02 01 05"), "31 03 02 01 05"},
      {"sequence without the constructed bit", 0x00, 0, 16, HexBytes("05 00"), "10 02 05 00"},
      // The constructed bit and the class are taken as given.
      {"constructed integer", 0x00, 0x20, 2, HexBytes("05"), "22 01 05"},
      {"application integer", 0x40, 0, 2, HexBytes("05"), "42 01 05"},
      {"private octet string", 0xC0, 0, 4, HexBytes("41"), "C4 01 41"},
      {"application tag 27", 0x40, 0, 27, HexBytes("41"), ""},
      // Context-specific: the octets as they are, any tag number.
      {"context [0] primitive", 0x80, 0, 0, HexBytes("41 42"), "80 02 41 42"},
      {"context [1] constructed", 0x80, 0x20, 1, HexBytes("02 01 05"), "A1 03 02 01 05"},
      {"context [27]", 0x80, 0, 27, HexBytes("41"), "9B 01 41"},
      {"context [30]", 0x80, 0, 30, {}, "9E 00"},
      {"context [31]", 0x80, 0x20, 31, HexBytes("41"), "BF 1F 01 41"},
      {"context [200]", 0x80, 0, 200, HexBytes("41"), "9F 81 48 01 41"},
      // Universal types without an entry, and tag numbers above 26.
      {"universal 0", 0x00, 0, 0, HexBytes("41"), ""},
      {"universal 7", 0x00, 0, 7, HexBytes("41"), ""},
      {"universal 8", 0x00, 0, 8, HexBytes("41"), ""},
      {"universal 9", 0x00, 0, 9, HexBytes("41"), ""},
      {"universal 10", 0x00, 0, 10, HexBytes("41"), ""},
      {"universal 11", 0x00, 0, 11, HexBytes("41"), ""},
      {"universal 13", 0x00, 0, 13, HexBytes("41"), ""},
      {"universal 14", 0x00, 0, 14, HexBytes("41"), ""},
      {"universal 15", 0x00, 0, 15, HexBytes("41"), ""},
      {"universal 18", 0x00, 0, 18, HexBytes("41"), ""},
      {"universal 21", 0x00, 0, 21, HexBytes("41"), ""},
      {"universal 25", 0x00, 0, 25, HexBytes("41"), ""},
      {"universal 27", 0x00, 0, 27, HexBytes("41"), ""},
      {"bmp string 30 is not encoded", 0x00, 0, 30, HexBytes("00 41"), ""},
      {"universal 31", 0x00, 0, 31, HexBytes("41"), ""},
      {"universal 0xFFFFFFFF", 0x00, 0, 0xFFFFFFFFu, HexBytes("41"), ""},
      // Times.
      {"utc time", 0x00, 0, 23, Ticks(kTicks20170305_070809_5),
       "17 0D " + HexOfText("170305070809Z")},
      {"generalized time", 0x00, 0, 24, Ticks(kTicks20170305_070809_5),
       "18 0F " + HexOfText("20170305070809Z")},
      {"utc time 1601", 0x00, 0, 23, Ticks(kTicks16010101), "17 0D " + HexOfText("010101000000Z")},
      {"generalized time 1601", 0x00, 0, 24, Ticks(kTicks16010101),
       "18 0F " + HexOfText("16010101000000Z")},
      {"generalized time 9999", 0x00, 0, 24, Ticks(kTicks99991231_235959),
       "18 0F " + HexOfText("99991231235959Z")},
      {"generalized time 2050", 0x00, 0, 24, Ticks(kTicks20500101_000001),
       "18 0F " + HexOfText("20500101000001Z")},
      {"generalized time year 10000 modulo 10000", 0x00, 0, 24, Ticks(kTicks100000101),
       "18 0F " + HexOfText("00000101000000Z")},
      {"utc time year 10000", 0x00, 0, 23, Ticks(kTicks100000101),
       "17 0D " + HexOfText("000101000000Z")},
      {"utc time beyond the calendar", 0x00, 0, 23, Ticks(0xFFFFFFFFFFFFFFFFull), ""},
      {"generalized time beyond the calendar", 0x00, 0, 24, Ticks(0xFFFFFFFFFFFFFFFFull), ""},
      {"utc time from more than eight octets", 0x00, 0, 23,
       [] {
         std::vector<unsigned char> v = Ticks(kTicks20500101_000001);
         v.push_back(0x99);
         return v;
       }(),
       "17 0D " + HexOfText("500101000001Z")},
      // A value shorter than a file time is refused rather than read past.
      {"utc time from seven octets", 0x00, 0, 23, HexBytes("00 00 00 00 00 00 00"), ""},
      {"generalized time from one octet", 0x00, 0, 24, HexBytes("00"), ""},
  };
}

TEST(ASNTLowEncodeData, Table) {
  for (const EncodeRow& row : Rows()) {
    SCOPED_TRACE(row.name);
    const IdentObj out = Encode(Info(row.cls, row.constructed, row.tag), row.value);
    EXPECT_EQ(ToHex(out), row.expected);
  }
}

TEST(ASNTLowEncodeData, NullValue) {
  const struct {
    const char* name;
    unsigned char cls;
    unsigned char constructed;
    unsigned int tag;
    unsigned int size;
    const char* expected;
  } rows[] = {
      {"context [0] says its size", 0x80, 0, 0, 5, "80 05"},
      {"context [3] constructed", 0x80, 0x20, 3, 300, "A3 82 01 2C"},
      {"octet string says its size", 0x00, 0, 4, 5, "04 05"},
      {"sequence header alone", 0x00, 0x20, 16, 300, "30 82 01 2C"},
      {"set header alone", 0x00, 0x20, 17, 0x10000, "31 83 01 00 00"},
      {"boolean", 0x00, 0, 1, 4, "01 01 00"},
      {"integer reads as zero", 0x00, 0, 2, 3, "02 01 00"},
      {"integer of no octets", 0x00, 0, 2, 0, "02 00"},
      {"null", 0x00, 0, 5, 9, "05 00"},
      {"object identifier", 0x00, 0, 6, 14, "06 00"},
      {"utc time", 0x00, 0, 23, 8, "17 0D"},
      {"generalized time", 0x00, 0, 24, 8, "18 0F"},
      {"utc time of any size", 0x00, 0, 23, 0, "17 0D"},
      // Above 127 as a signed 32-bit number only: kept for compatibility.
      {"length 2^31 + 1 in one octet", 0x80, 0, 0, 0x80000001u, "80 01"},
      {"length 0xFFFFFFFF in one octet", 0x00, 0, 4, 0xFFFFFFFFu, "04 FF"},
      {"length 0x7FFFFFFF long form", 0x00, 0, 4, 0x7FFFFFFFu, "04 84 7F FF FF FF"},
      {"universal 27", 0x00, 0, 27, 0, ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    int error = 77;
    const IdentObj out =
        ASNTLowEncodeData(Info(row.cls, row.constructed, row.tag), nullptr, row.size, &error);
    EXPECT_EQ(ToHex(out), row.expected);
    EXPECT_EQ(error, 77);
  }
  // A null error pointer is fine too.
  EXPECT_EQ(ToHex(ASNTLowEncodeData(Info(0, 0, 5), nullptr, 0, nullptr)), "05 00");
}

TEST(ASNTLowEncodeData, LengthForms) {
  const struct {
    unsigned int size;
    const char* header;
  } rows[] = {
      {0, "04 00"},          {127, "04 7F"},          {128, "04 81 80"},
      {200, "04 81 C8"},     {255, "04 81 FF"},       {256, "04 82 01 00"},
      {300, "04 82 01 2C"},  {65535, "04 82 FF FF"},  {65536, "04 83 01 00 00"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.size);
    std::vector<unsigned char> value(row.size);
    for (unsigned int i = 0; i < row.size; ++i) value[i] = static_cast<unsigned char>(i * 7);
    const IdentObj out = Encode(Info(0, 0, 4), value);
    const std::string header = row.header;
    const unsigned int headerSize = static_cast<unsigned int>((header.size() + 1) / 3);
    ASSERT_EQ(out.Count(), headerSize + row.size);
    EXPECT_EQ(ToHex(out.GetData(), headerSize), header);
    if (row.size) {
      EXPECT_EQ(std::memcmp(out.GetData() + headerSize, value.data(), row.size), 0);
    }
  }
}

TEST(ASNTLowEncodeData, SizeThatCannotBeEncodedIsRefusedUnread) {
  const unsigned char one = 0x41;
  EXPECT_EQ(ASNTLowEncodeData(Info(0, 0, 4), &one, 0xFFFFFFFFu, nullptr).Count(), 0u);
  EXPECT_EQ(ASNTLowEncodeData(Info(0x80, 0, 0), &one, 0xFFFFFFFEu, nullptr).Count(), 0u);
}

struct OidRow {
  const char* name;
  std::string text;
  const char* expected;
};

const OidRow kOidRows[] = {
    {"rsa", "1.2.840.113549", "06 06 2A 86 48 86 F7 0D"},
    {"first subidentifier 180 in one octet", "2.100.3", "06 02 B4 03"},
    {"first subidentifier 380 truncated", "2.300", "06 01 7C"},
    {"two components", "1.2", "06 01 2A"},
    {"trailing dot ends the walk", "1.2.", "06 01 2A"},
    {"zero subidentifier", "1.2.0", "06 02 2A 00"},
    {"127 one octet", "1.2.127", "06 02 2A 7F"},
    {"128 two octets", "1.2.128", "06 03 2A 81 00"},
    {"32-bit maximum in five octets", "1.2.4294967295", "06 06 2A 8F FF FF FF 7F"},
    {"first component times 40 wraps", "107374183.0", "06 01 18"},
    {"one component", "1", "06 00"},
    {"empty text", "", "06 00"},
    {"leading dot skipped", ".1.2", "06 01 2A"},
    {"empty component reads as 0", "1..2", "06 02 28 02"},
    {"stops at NUL", std::string("1.2\0.3", 6), "06 01 2A"},
    {"stops at NUL after a dot", std::string("1.2.\0" "3", 6), "06 01 2A"},
    // Each component read the way "%u" reads it.
    {"digits then junk", "1.2.840x", "06 03 2A 86 48"},
    {"no digits", "1.2.abc", "06 02 2A 00"},
    {"leading blanks", "1.2. \t5", "06 02 2A 05"},
    {"plus sign", "1.2.+5", "06 02 2A 05"},
    {"minus sign wraps", "1.2.-1", "06 06 2A 8F FF FF FF 7F"},
    {"above 32 bits keeps the low bits", "1.2.4294967296", "06 02 2A 00"},
    {"above 64 bits saturates", "1.2.99999999999999999999999", "06 06 2A 8F FF FF FF 7F"},
    {"minus and above 64 bits saturates", "1.2.-99999999999999999999999",
     "06 06 2A 8F FF FF FF 7F"},
};

TEST(ASNTLowEncodeData, ObjectIdentifierText) {
  for (const OidRow& row : kOidRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ToHex(Encode(Info(0, 0, 6), Text(row.text))), row.expected);
  }
}

TEST(ASNTLowEncodeData, ObjectIdentifierTextEndsAtSize) {
  const std::string text = "1.2.840.113549";
  int error = 0;
  EXPECT_EQ(ToHex(ASNTLowEncodeData(Info(0, 0, 6),
                                    reinterpret_cast<const unsigned char*>(text.data()), 5,
                                    &error)),
            "06 02 2A 08");
}

// Subidentifiers of five octets each: 819 of them and the first octet fill 4096
// octets exactly; one more is refused with an empty result.
TEST(ASNTLowEncodeData, ObjectIdentifierOfMoreThan4096OctetsIsRefused) {
  std::string text = "1.2";
  for (int i = 0; i < 819; ++i) text += ".4294967295";
  IdentObj out = Encode(Info(0, 0, 6), Text(text));
  ASSERT_EQ(out.Count(), 4u + 4096u);
  EXPECT_EQ(ToHex(out.GetData(), 9), "06 82 10 00 2A 8F FF FF FF");
  EXPECT_EQ(keyasn::detail::OidContentsSize(reinterpret_cast<const unsigned char*>(text.data()),
                                            static_cast<unsigned int>(text.size())),
            4096u);
  text += ".4294967295";
  EXPECT_EQ(Encode(Info(0, 0, 6), Text(text)).Count(), 0u);
  // A huge text is refused without being walked to its end by the measuring pass.
  std::string huge = "1.2";
  for (int i = 0; i < 5000; ++i) huge += ".1";
  EXPECT_EQ(Encode(Info(0, 0, 6), Text(huge)).Count(), 0u);
  huge.resize(3 + 2 * 4094);
  EXPECT_EQ(Encode(Info(0, 0, 6), Text(huge)).Count(), 4u + 4095u);
}

// Short identifiers are built on the stack in one walk, longer ones in a second
// walk into the result: the octets must not depend on which way was taken.
TEST(ASNTLowEncodeData, ObjectIdentifierAroundTheStackBufferSize) {
  struct Row {
    const char* name;
    int sevenBitArcs;      // ".127" components after "1.2"
    const char* lastArc;   // appended last (may be empty)
    unsigned int contents;
  };
  const Row rows[] = {
      {"63 octets", 62, "", 63},
      {"64 octets", 63, "", 64},
      {"65 octets", 64, "", 65},
      {"two-octet arc across the boundary", 62, ".16383", 65},
      {"five-octet arc ending at the boundary", 58, ".4294967295", 64},
      {"five-octet arc across the boundary", 59, ".4294967295", 65},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    std::string text = "1.2";
    std::vector<unsigned char> expected = {0x2A};
    for (int i = 0; i < row.sevenBitArcs; ++i) {
      text += ".127";
      expected.push_back(0x7F);
    }
    text += row.lastArc;
    if (std::string(row.lastArc) == ".16383") {
      expected.insert(expected.end(), {0xFF, 0x7F});
    } else if (std::string(row.lastArc) == ".4294967295") {
      expected.insert(expected.end(), {0x8F, 0xFF, 0xFF, 0xFF, 0x7F});
    }
    ASSERT_EQ(expected.size(), row.contents);
    const IdentObj out = Encode(Info(0, 0, 6), Text(text));
    ASSERT_EQ(out.Count(), 2u + row.contents);
    EXPECT_EQ(out.GetData()[0], 0x06);
    EXPECT_EQ(out.GetData()[1], row.contents);
    EXPECT_EQ(std::vector<unsigned char>(out.GetData() + 2, out.GetData() + out.Count()),
              expected);
  }
}

IdentObj Decode(const IdentObj& element, int* code) {
  ASNT_ASN_STRUCT_INFO info;
  EXPECT_EQ(ASNTGetAsnInfo(info, element.GetData(), element.Count()), keyasn::kOk);
  return ASNTLowDecodeData(info, element.GetData(), element.Count(), code);
}

TEST(RoundTrip, Integer) {
  const int64_t values[] = {0,     1,      -1,     127,        128,         -128,
                            -129,  255,    256,    32767,      32768,       -32768,
                            -32769, 65535, 8388608, 2147483647, -2147483648LL,
                            INT64_MAX, INT64_MIN, 0x123456789ALL};
  for (int64_t v : values) {
    SCOPED_TRACE(v);
    const IdentObj element = Encode(Info(0, 0, 2), Ticks(static_cast<uint64_t>(v)));
    int code = -1;
    const IdentObj back = Decode(element, &code);
    ASSERT_EQ(code, 0);
    ASSERT_GE(back.Count(), 1u);
    ASSERT_LE(back.Count(), 8u);
    // The decoded octets, least significant first, sign-extended for negatives
    // (positives lose their 0x00 sign octet in the decoder).
    uint64_t u = v < 0 ? ~0ull : 0;
    for (unsigned int i = 0; i < back.Count(); ++i) {
      u &= ~(0xFFull << (8 * i));
      u |= static_cast<uint64_t>(back.GetData()[i]) << (8 * i);
    }
    EXPECT_EQ(static_cast<int64_t>(u), v);
  }
}

TEST(RoundTrip, ObjectIdentifier) {
  // First arcs 0..2 with a second arc below 40: the one-octet rule loses nothing.
  const char* texts[] = {"1.2.840.113549", "1.2.840.113549.1.1.11", "2.5.4.3", "0.0.0",
                         "1.3.6.1.4.1.311.21.20", "2.39.4294967295", "0.39.127.128.16383.16384",
                         "1.2.643.2.2.19"};
  for (const char* text : texts) {
    SCOPED_TRACE(text);
    const IdentObj element = Encode(Info(0, 0, 6), Text(text));
    ASSERT_GT(element.Count(), 2u);
    int code = -1;
    const IdentObj back = Decode(element, &code);
    ASSERT_EQ(code, 0);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(back.GetData()), back.Count()), text);
  }
  // Two arcs come back with their trailing dot, which encodes to the same octets.
  const IdentObj element = Encode(Info(0, 0, 6), Text("1.2"));
  int code = -1;
  const IdentObj back = Decode(element, &code);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(back.GetData()), back.Count()), "1.2.");
  EXPECT_EQ(ToHex(Encode(Info(0, 0, 6), std::vector<unsigned char>(
                                             back.GetData(), back.GetData() + back.Count()))),
            ToHex(element));
}

TEST(RoundTrip, Times) {
  const struct {
    unsigned int tag;
    uint64_t ticks;
  } rows[] = {
      {23, 131331712890000000ull},   // 2017-03-05 07:08:09
      {23, 141690815990000000ull},   // 2049-12-31 23:59:59
      {23, 110133216000000000ull},   // 1950-01-01
      {24, 131331712890000000ull},
      {24, kTicks16010101},
      {24, kTicks99991231_235959},
      {24, kTicks20500101_000001},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.ticks);
    const IdentObj element = Encode(Info(0, 0, row.tag), Ticks(row.ticks));
    ASSERT_GT(element.Count(), 2u);
    int code = -1;
    const IdentObj back = Decode(element, &code);
    ASSERT_EQ(code, 0);
    EXPECT_EQ(ToHex(back), ToHex(Ticks(row.ticks)));
  }
  // Milliseconds are dropped.
  const IdentObj element = Encode(Info(0, 0, 24), Ticks(kTicks20170305_070809_5));
  int code = -1;
  EXPECT_EQ(ToHex(Decode(element, &code)), ToHex(Ticks(131331712890000000ull)));
}

}  // namespace
