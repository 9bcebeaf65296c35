#include "keyasn/codec/oid.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "keyasn/codec/decoder.h"
#include "keyasn/codec/encoder.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::ToHex;

constexpr unsigned int kObjectIdTag = 6;

ASNT_ASN_STRUCT_INFO OidInfo(const IdentObj& contents) {
  ASNT_ASN_STRUCT_INFO info{};
  info.Tag = kObjectIdTag;
  info.Length = contents.Count();
  info.Contents = contents.GetData();
  return info;
}

struct OidRow {
  const char* hex;     // contents octets
  const char* dotted;  // their text
};

// Identifiers that go both ways, octet for octet.
const OidRow kRoundTrips[] = {
    {"2A 85 03 02 02 13", "1.2.643.2.2.19"},
    {"2A 85 03 02 02 23 01", "1.2.643.2.2.35.1"},
    {"2A 86 48 86 F7 0D 01 01 01", "1.2.840.113549.1.1.1"},
    {"55 04 03", "2.5.4.3"},
    {"60 86 48 01 65 03 04 02 01", "2.16.840.1.101.3.4.2.1"},
    {"00 00", "0.0.0"},
    {"27 7F", "0.39.127"},
    {"77 81 00 01", "2.39.128.1"},
    {"2A 8F FF FF FF 7F", "1.2.4294967295"},
    {"2A", "1.2."},  // one octet: the decoder's trailing dot is kept
    {"00", "0.0."},
};

TEST(OidTest, ContentsToTextAndBack) {
  for (const OidRow& row : kRoundTrips) {
    const IdentObj contents = Hex(row.hex);
    EXPECT_EQ(keyasn::OidText(contents), row.dotted) << row.hex;
    EXPECT_EQ(ToHex(keyasn::OidContents(row.dotted)), ToHex(contents)) << row.dotted;
  }
}

// The same text as the decoder gives for the whole element, and the same octets as
// the encoder writes for it.
TEST(OidTest, AgreesWithTheEncoderAndDecoder) {
  for (const OidRow& row : kRoundTrips) {
    const IdentObj contents = Hex(row.hex);
    int error = -1;
    const IdentObj decoded = ASNTLowDecodeData(OidInfo(contents), nullptr, 0, &error);
    ASSERT_EQ(error, 0) << row.hex;
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(decoded.GetData()), decoded.Count()),
              keyasn::OidText(contents));
    const std::string text = row.dotted;
    const IdentObj encoded = ASNTLowEncodeData(
        OidInfo(IdentObj()), reinterpret_cast<const unsigned char*>(text.data()),
        static_cast<unsigned int>(text.size()), nullptr);
    ASSERT_GE(encoded.Count(), 2u) << row.dotted;
    EXPECT_EQ(ToHex(IdentObj(encoded.GetData() + 2, encoded.Count() - 2)),
              ToHex(keyasn::OidContents(row.dotted)));
  }
}

// Two texts the encoder reads as one of the round trips: still accepted.
TEST(OidTest, TwoComponentTextWithoutTheDot) {
  EXPECT_EQ(ToHex(keyasn::OidContents("1.2")), ToHex(Hex("2A")));
  EXPECT_EQ(ToHex(keyasn::OidContents("2.39")), ToHex(Hex("77")));
}

TEST(OidTest, ContentsRefused) {
  const char* const rows[] = {
      "",                    // empty
      "78 01",               // first octet 120: a first arc above 2
      "FF",                  // first octet with the high bit
      "2A 85",               // last subidentifier open
      "2A 85 03 82",         // last subidentifier open
      "2A 80 01",            // leading zero group
      "2A 90 80 80 80 00",   // 2^32: past 32 bits
      "2A 81 80 80 80 80 00",  // six octets
  };
  for (const char* hex : rows) EXPECT_EQ(keyasn::OidText(Hex(hex)), "") << hex;
  EXPECT_EQ(keyasn::OidText(IdentObj(nullptr, 4097)), "");  // more than 4096 octets
  std::vector<unsigned char> longest(4096, 0x01);
  longest[0] = 0x2A;
  EXPECT_NE(keyasn::OidText(IdentObj(longest.data(), 4096)), "");
}

TEST(OidTest, TextRefused) {
  const char* const rows[] = {
      "",         "1",          "1.",        ".1.2",       "1..2",      "1.2.3.",
      "3.1",      "1.40",       "0.40",      "2.40",       "01.2",      "1.02",
      "1.2.03",   " 1.2",       "1.2 ",      "+1.2",       "1.-2",      "1.2.x",
      "1.2.4294967296",         "1.2.99999999999",         "1,2",       "1.2..",
  };
  for (const char* text : rows)
    EXPECT_EQ(keyasn::OidContents(text).Count(), 0u) << '"' << text << '"';
  EXPECT_EQ(keyasn::OidContents(nullptr).Count(), 0u);
  std::string tooLong = "1.2";
  for (int i = 0; i < 4096; ++i) tooLong += ".1";  // 4097 octets
  EXPECT_EQ(keyasn::OidContents(tooLong.c_str()).Count(), 0u);
  tooLong.resize(tooLong.size() - 2);  // 4096 octets
  EXPECT_EQ(keyasn::OidContents(tooLong.c_str()).Count(), 4096u);
}

// Every one- and two-octet contents: either refused, or given back octet for octet.
TEST(OidTest, ShortContentsRoundTrip) {
  for (unsigned int v = 0; v < 0x10100; ++v) {
    const unsigned char octets[2] = {static_cast<unsigned char>(v), static_cast<unsigned char>(v >> 8)};
    const IdentObj contents(octets, v < 0x100 ? 1 : 2);
    const std::string text = keyasn::OidText(contents);
    if (text.empty()) continue;
    EXPECT_EQ(ToHex(keyasn::OidContents(text.c_str())), ToHex(contents)) << text;
  }
}

}  // namespace
