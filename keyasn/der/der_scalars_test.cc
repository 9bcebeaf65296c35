#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "keyasn/codec/error_codes.h"
#include "keyasn/der/der_helper.h"
#include "keyasn/der/der_test_util.h"
#include "keyasn/support/status.h"

namespace {

using keyasn::testing::Exact;
using keyasn::testing::ExpectStatus;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::Place;
using keyasn::testing::ToHex;

const char kWrongType[] = "Неверный тип";
const char kTooLarge[] = "Значение слишком велико";
const char kWrongSize[] = "Значение имеет неверный размер";
const char kBitsTooLong[] = "Длина битовой строки слишком велика";
const char kWriter[] = "CASNTBaseRecord::WriteData";

IdentObj Octets(const std::string& hex) { return Hex(hex); }

// ---------------------------------------------------------------------------
// Encoders

TEST(DerScalars, EncodeIntegerNonNegativeIsMinimal) {
  struct Row {
    int value;
    const char* der;
  };
  const Row rows[] = {
      {0, "02 01 00"},
      {1, "02 01 01"},
      {5, "02 01 05"},
      {127, "02 01 7F"},
      {128, "02 02 00 80"},
      {255, "02 02 00 FF"},
      {256, "02 02 01 00"},
      {32767, "02 02 7F FF"},
      {32768, "02 03 00 80 00"},
      {65535, "02 03 00 FF FF"},
      {65536, "02 03 01 00 00"},
      {8388607, "02 03 7F FF FF"},
      {8388608, "02 04 00 80 00 00"},
      {16777215, "02 04 00 FF FF FF"},
      {16777216, "02 04 01 00 00 00"},
      {0x12345678, "02 04 12 34 56 78"},
      {INT_MAX, "02 04 7F FF FF FF"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.value);
    EXPECT_EQ(ToHex(DerHelper::EncodeInteger(row.value)), row.der);
  }
}

// A negative int is given the negative mark (tag 258), for which the primitive
// encoder has no rule; the record then has an empty encoding, and its writer,
// handed a null buffer of size 0, fails with 37. No INTEGER comes out.
TEST(DerScalars, EncodeIntegerNegativeEndsInWriterFailure) {
  for (int value : {-1, -5, -128, -129, -65536, INT_MIN + 1, INT_MIN}) {
    SCOPED_TRACE(value);
    ExpectStatus([&] { DerHelper::EncodeInteger(value); }, keyasn::kErrTooShort, kWriter);
  }
}

TEST(DerScalars, EncodeIntegerFromOctets) {
  struct Row {
    const char* name;
    const char* value;  // least significant first
    const char* der;
  };
  const Row rows[] = {
      {"empty", "", "02 00"},
      {"128 with sign octet", "80 00", "02 02 00 80"},
      {"-1 in two octets", "FF FF", "02 01 FF"},
      {"5 in four octets", "05 00 00 00", "02 01 05"},
      {"top bit set: negative", "80", "02 01 80"},
      {"-129", "7F FF", "02 02 FF 7F"},
      {"nine octets",
       "01 02 03 04 05 06 07 08 09", "02 09 09 08 07 06 05 04 03 02 01"},
      {"redundant zeros", "01 00 00 00 00 00", "02 01 01"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ToHex(DerHelper::EncodeInteger(Octets(row.value))), row.der);
  }
}

TEST(DerScalars, EncodeBool) {
  EXPECT_EQ(ToHex(DerHelper::EncodeBool(true)), "01 01 FF");
  EXPECT_EQ(ToHex(DerHelper::EncodeBool(false)), "01 01 00");
}

TEST(DerScalars, EncodeOid) {
  struct Row {
    const char* oid;
    const char* der;
  };
  const Row rows[] = {
      {"1.2.840.113549", "06 06 2A 86 48 86 F7 0D"},
      {"1.2.643.2.2.3", "06 06 2A 85 03 02 02 03"},
      {"2.100.3", "06 02 B4 03"},
      {"2.300", "06 01 7C"},
      {"1.2.0", "06 02 2A 00"},
      {"1.2.127.128", "06 04 2A 7F 81 00"},
      {"1.2.4294967295", "06 06 2A 8F FF FF FF 7F"},
      {"0.0", "06 01 00"},
      {"1.2", "06 01 2A"},
      {"1", "06 00"},
      {"", "06 00"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.oid);
    EXPECT_EQ(ToHex(DerHelper::EncodeOid(row.oid)), row.der);
  }
}

// Subidentifiers beyond the encoder's work buffer give no encoding, which the
// record's writer reports.
TEST(DerScalars, EncodeOidTooLongFailsInWriter) {
  std::string oid = "1.2";
  for (int i = 0; i < 1000; ++i) oid += ".4294967295";  // 5000 octets
  ExpectStatus([&] { DerHelper::EncodeOid(oid); }, keyasn::kErrTooShort, kWriter);
}

TEST(DerScalars, EncodeOctetString) {
  const std::vector<unsigned char> two = HexBytes("41 42");
  EXPECT_EQ(ToHex(DerHelper::EncodeOctetString(two.data(), 2)), "04 02 41 42");
  EXPECT_EQ(ToHex(DerHelper::EncodeOctetString(Hex("41 42"))), "04 02 41 42");
  EXPECT_EQ(ToHex(DerHelper::EncodeOctetString(nullptr, 0)), "04 00");
  EXPECT_EQ(ToHex(DerHelper::EncodeOctetString(IdentObj())), "04 00");
  EXPECT_EQ(ToHex(DerHelper::EncodeOctetString(nullptr, 3)), "04 03 00 00 00");

  const std::vector<unsigned char> long200(200, 0x5A);
  const IdentObj e200 = DerHelper::EncodeOctetString(long200.data(), 200);
  ASSERT_EQ(e200.Count(), 203u);
  EXPECT_EQ(ToHex(e200.GetData(), 3), "04 81 C8");
  EXPECT_EQ(std::vector<unsigned char>(e200.GetData() + 3, e200.GetData() + 203), long200);

  const IdentObj v300(std::vector<unsigned char>(300, 0xA5).data(), 300);
  const IdentObj e300 = DerHelper::EncodeOctetString(v300);
  ASSERT_EQ(e300.Count(), 304u);
  EXPECT_EQ(ToHex(e300.GetData(), 4), "04 82 01 2C");
}

TEST(DerScalars, EncodeBitString) {
  const unsigned char a5[] = {0xA5, 0x01};
  EXPECT_EQ(ToHex(DerHelper::EncodeBitString(a5, 0)), "03 01 00");
  EXPECT_EQ(ToHex(DerHelper::EncodeBitString(nullptr, 0)), "03 01 00");
  EXPECT_EQ(ToHex(DerHelper::EncodeBitString(a5, 1)), "03 02 00 A5");
  EXPECT_EQ(ToHex(DerHelper::EncodeBitString(a5, 2)), "03 03 00 A5 01");
  // A negative size counts as no octets; a null pointer as zero octets.
  EXPECT_EQ(ToHex(DerHelper::EncodeBitString(a5, -1)), "03 01 00");
  EXPECT_EQ(ToHex(DerHelper::EncodeBitString(a5, INT_MIN)), "03 01 00");
  EXPECT_EQ(ToHex(DerHelper::EncodeBitString(nullptr, 2)), "03 03 00 00 00");
}

// ---------------------------------------------------------------------------
// Decoders

TEST(DerScalars, DecodeInteger) {
  struct Row {
    const char* name;
    const char* der;
    bool skip;
    int value;
  };
  const Row rows[] = {
      {"FF is 255, no sign extension", "02 01 FF", false, 255},
      {"00 80 is 128", "02 02 00 80", false, 128},
      {"INT_MAX", "02 04 7F FF FF FF", false, INT_MAX},
      {"leading zero dropped, four octets fill the value", "02 05 00 80 00 00 00", false,
       INT_MIN},
      {"empty contents", "02 00", false, 0},
      {"80 is 128", "02 01 80", false, 128},
      {"FF FF is 65535", "02 02 FF FF", false, 65535},
      {"only one zero octet dropped", "02 03 00 00 01", false, 1},
      {"negative mark, context class", "9F 82 02 01 05", false, -5},
      {"negative mark, four octets", "9F 82 02 04 00 00 00 80", false, INT_MIN},
      {"negative mark, two octets first lowest", "9F 82 02 02 34 12", false, -0x1234},
      {"negative mark with the tag check skipped", "9F 82 02 01 05", true, -5},
      // Universal class: the primitive decoder has no rule above tag 30, so the
      // value is empty and its negation 0.
      {"negative mark, universal class", "1F 82 02 01 05", false, 0},
      {"class is not checked", "82 01 07", false, 7},
      // Context class: the contents are taken as they stand, first octet lowest;
      // the other classes decode as a universal INTEGER, most significant first.
      {"context class, two octets first lowest", "82 02 12 34", false, 0x3412},
      {"application class, most significant first", "42 02 12 34", false, 0x1234},
      {"private class, leading zero dropped", "C2 03 00 12 34", false, 0x1234},
      {"octet string with the tag check skipped", "04 02 12 34", true, 0x3412},
      {"boolean with the tag check skipped", "01 01 05", true, 1},
      {"long form length", "02 81 01 2A", false, 42},
      {"indefinite primitive", "02 80 01 00 00 00", false, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(DerHelper::DecodeInteger(Hex(row.der), row.skip), row.value);
  }
  EXPECT_EQ(DerHelper::DecodeInteger(Hex("02 01 05")), 5);  // default: tag checked
}

TEST(DerScalars, DecodeIntegerFailures) {
  const std::string op = "DerHelper::DecodeInteger";
  struct Row {
    const char* name;
    const char* der;
    bool skip;
    int code;
    std::string where;
  };
  const Row rows[] = {
      {"five octets", "02 05 01 00 00 00 00", false, 131, Place(op, kTooLarge)},
      {"five octets after the zero", "02 06 00 80 00 00 00 00", false, 131, Place(op, kTooLarge)},
      {"negative mark too large", "9F 82 02 05 01 02 03 04 05", false, 131, Place(op, kTooLarge)},
      {"octet string", "04 01 05", false, 131, Place(op, kWrongType)},
      {"boolean", "01 01 01", false, 131, Place(op, kWrongType)},
      {"tag 257", "9F 82 01 01 05", false, 131, Place(op, kWrongType)},
      {"wrong tag before the contents are looked at", "04 05 01", false, 131,
       Place(op, kWrongType)},
      {"octet string too large when skipped", "04 05 01 02 03 04 05", true, 131,
       Place(op, kTooLarge)},
      {"one octet", "02", false, 206, op},
      {"empty", "", false, 206, op},
      {"long length cut short", "02 82 01", false, 206, op},
      {"nine length octets", "02 89 00 00 00 00 00 00 00 00 01", false, 206, op},
      {"high tag number never ends", "1F FF FF", false, 205, op},
      {"contents beyond the element", "02 05 01", false, 206, op},
      {"contents one octet short", "02 02 01", false, 206, op},
      {"indefinite constructed", "30 80 02 01 01 00 00", true, 206, op},
      {"indefinite primitive without end", "02 80 01 02", false, 206, op},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const IdentObj element = Hex(row.der);
    ExpectStatus([&] { DerHelper::DecodeInteger(element, row.skip); }, row.code, row.where);
  }
}

TEST(DerScalars, DecodeLargeInteger) {
  struct Row {
    const char* name;
    const char* der;
    bool skip;
    const char* value;
  };
  const Row rows[] = {
      {"one octet", "02 01 05", false, "05"},
      {"least significant first", "02 03 01 00 00", false, "00 00 01"},
      {"leading zero dropped", "02 03 00 80 00", false, "00 80"},
      {"negative as it stands", "02 01 FF", false, "FF"},
      {"empty", "02 00", false, ""},
      {"nine octets",
       "02 09 01 02 03 04 05 06 07 08 09", false, "09 08 07 06 05 04 03 02 01"},
      {"negative mark, not negated", "9F 82 02 01 05", false, "05"},
      {"octet string skipped", "04 02 12 34", true, "12 34"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ToHex(DerHelper::DecodeLargeInteger(Hex(row.der), row.skip)), row.value);
  }
  const std::string op = "DerHelper::DecodeLargeInteger";
  ExpectStatus([] { DerHelper::DecodeLargeInteger(Hex("04 01 05"), false); }, 131,
               Place(op, kWrongType));
  ExpectStatus([] { DerHelper::DecodeLargeInteger(Hex("02"), false); }, 206, op);
  ExpectStatus([] { DerHelper::DecodeLargeInteger(Hex("1F 80 80"), false); }, 205, op);
  ExpectStatus([] { DerHelper::DecodeLargeInteger(Hex("02 03 01"), false); }, 206, op);
}

TEST(DerScalars, DecodeBool) {
  struct Row {
    const char* name;
    const char* der;
    bool skip;
    bool value;
  };
  const Row rows[] = {
      {"00 false", "01 01 00", false, false},
      {"01 true", "01 01 01", false, true},
      {"FF true", "01 01 FF", false, true},
      {"80 true", "01 01 80", false, true},
      {"only the first octet counts", "01 02 00 01", false, false},
      {"first octet set", "01 02 01 00", false, true},
      {"no contents octet: nothing read, false", "01 00", false, false},
      {"boolean with the tag check skipped", "01 01 01", true, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(DerHelper::DecodeBool(Hex(row.der), row.skip), row.value);
  }
}

TEST(DerScalars, DecodeBoolFailures) {
  const std::string op = "DerHelper::DecodeBool";
  struct Row {
    const char* name;
    const char* der;
    bool skip;
    int code;
    std::string where;
  };
  const Row rows[] = {
      {"octet string of one octet skipped", "04 01 01", true, 131, Place(op, kWrongSize)},
      {"integer of four octets skipped", "02 04 01 00 00 00", true, 0, ""},
      {"integer of two octets skipped", "02 02 01 01", true, 131, Place(op, kWrongSize)},
      {"context class [1] copies the contents", "81 01 FF", false, 131, Place(op, kWrongSize)},
      {"octet string", "04 01 01", false, 131, Place(op, kWrongType)},
      {"integer", "02 01 01", false, 131, Place(op, kWrongType)},
      {"one octet", "01", false, 206, op},
      {"high tag number never ends", "1F 81 81", false, 205, op},
      {"contents beyond the element", "01 02 01", false, 206, op},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const IdentObj element = Hex(row.der);
    if (row.code == 0) {
      // Four decoded octets pass the size check: 01 00 00 00 is non-zero.
      EXPECT_TRUE(DerHelper::DecodeBool(element, row.skip));
      continue;
    }
    ExpectStatus([&] { DerHelper::DecodeBool(element, row.skip); }, row.code, row.where);
  }
}

TEST(DerScalars, DecodeOid) {
  struct Row {
    const char* name;
    const char* der;
    bool skip;
    const char* text;
  };
  const Row rows[] = {
      {"rsadsi", "06 06 2A 86 48 86 F7 0D", false, "1.2.840.113549"},
      {"two arcs keep the trailing dot", "06 01 2A", false, "1.2."},
      {"first octet not capped at arc 2", "06 02 B4 03", false, "4.20.3"},
      {"gost", "06 06 2A 85 03 02 02 03", false, "1.2.643.2.2.3"},
      {"zero subidentifier", "06 02 2A 00", false, "1.2.0"},
      {"largest subidentifier", "06 06 2A 8F FF FF FF 7F", false, "1.2.4294967295"},
      {"empty", "06 00", false, ""},
      // The decoder rejects these (206) without an error slot: empty text.
      {"subidentifier does not end", "06 03 2A 86 86", false, ""},
      {"last octet continues", "06 02 2A 86", false, ""},
      {"context class [6]: contents as they stand", "86 01 2A", false, "*"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(DerHelper::DecodeOid(Hex(row.der), row.skip), row.text);
  }
  const std::string op = "DerHelper::DecodeOid";
  ExpectStatus([] { DerHelper::DecodeOid(Hex("04 01 2A"), false); }, 131, Place(op, kWrongType));
  ExpectStatus([] { DerHelper::DecodeOid(Hex("06"), false); }, 206, op);
  ExpectStatus([] { DerHelper::DecodeOid(Hex("1F FF"), false); }, 205, op);
  ExpectStatus([] { DerHelper::DecodeOid(Hex("06 03 2A 86"), false); }, 206, op);
  // An octet string skipped through: its contents come back as text.
  EXPECT_EQ(DerHelper::DecodeOid(Hex("04 02 41 42"), true), "AB");
}

TEST(DerScalars, DecodeOctetStringObject) {
  struct Row {
    const char* name;
    const char* der;
    bool skip;
    const char* value;
  };
  const Row rows[] = {
      {"two octets", "04 02 41 42", false, "41 42"},
      {"empty", "04 00", false, ""},
      {"indefinite primitive", "04 80 41 42 00 00", false, "41 42"},
      {"long form", "04 81 01 7E", false, "7E"},
      {"context class [4]", "84 01 33", false, "33"},
      {"integer skipped: decoded form", "02 02 00 80", true, "80"},
      {"bit string skipped", "03 02 00 A5", true, "00 A5"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ToHex(DerHelper::DecodeOctetString(Hex(row.der), row.skip)), row.value);
  }
  const std::string op = "DerHelper::DecodeOctetString";
  ExpectStatus([] { DerHelper::DecodeOctetString(Hex("04"), false); }, 206, op);
  ExpectStatus([] { DerHelper::DecodeOctetString(Hex("02 01 01"), false); }, 131,
               Place(op, kWrongType));
  ExpectStatus([] { DerHelper::DecodeOctetString(Hex("1F 82 82"), false); }, 205, op);
  ExpectStatus([] { DerHelper::DecodeOctetString(Hex("04 03 41 42"), false); }, 206, op);
  ExpectStatus([] { DerHelper::DecodeOctetString(Hex("04 80 41 42"), false); }, 206, op);
}

TEST(DerScalars, DecodeOctetStringPointer) {
  struct Row {
    const char* name;
    const char* der;
    bool skip;
    const char* value;
  };
  const Row rows[] = {
      {"two octets", "04 02 41 42", false, "41 42"},
      {"empty", "04 00", false, ""},
      {"trailing octets ignored", "04 01 41 FF FF", false, "41"},
      {"indefinite primitive", "04 80 41 42 00 00", false, "41 42"},
      // No primitive decoder: the octets are copied as they stand.
      {"integer skipped: raw contents", "02 02 00 80", true, "00 80"},
      {"context class [4]", "84 01 33", false, "33"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::vector<unsigned char> bytes = HexBytes(row.der);
    const IdentObj exact = Exact(bytes, bytes.size());
    EXPECT_EQ(ToHex(DerHelper::DecodeOctetString(exact.GetData(), exact.Count(), row.skip)),
              row.value);
  }
  const std::string op = "DerHelper::DecodeOctetString";
  const unsigned char one[] = {0x04};
  ExpectStatus([&] { DerHelper::DecodeOctetString(one, 1, false); }, 206, op);
  ExpectStatus([] { DerHelper::DecodeOctetString(nullptr, 10, false); }, 206, op);
  const unsigned char integer[] = {0x02, 0x01, 0x01};
  ExpectStatus([&] { DerHelper::DecodeOctetString(integer, 3, false); }, 131,
               Place(op, kWrongType));
  const unsigned char cut[] = {0x04, 0x03, 0x41};
  ExpectStatus([&] { DerHelper::DecodeOctetString(cut, 3, false); }, 206, op);
  const unsigned char high[] = {0x1F, 0x81, 0x81};
  ExpectStatus([&] { DerHelper::DecodeOctetString(high, 3, false); }, 205, op);
}

TEST(DerScalars, DecodeBitStringAsInt) {
  struct Row {
    const char* name;
    const char* der;
    bool skip;
    unsigned int value;
  };
  const Row rows[] = {
      {"count octet kept lowest", "03 02 00 A5", false, 0xA500u},
      {"four octets", "03 04 00 01 02 03", false, 0x03020100u},
      {"unused bits counted", "03 02 04 F0", false, 0xF004u},
      {"count only", "03 01 00", false, 0u},
      {"empty", "03 00", false, 0u},
      {"all ones", "03 04 FF FF FF FF", false, 0xFFFFFFFFu},
      {"octet string skipped", "04 02 12 34", true, 0x3412u},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(DerHelper::DecodeBitStringAsInt(Hex(row.der), row.skip), row.value);
  }
  const std::string op = "DerHelper::DecodeBitStringAsInt";
  ExpectStatus([] { DerHelper::DecodeBitStringAsInt(Hex("03 05 00 01 02 03 04"), false); }, 131,
               Place(op, kBitsTooLong));
  ExpectStatus([] { DerHelper::DecodeBitStringAsInt(Hex("04 01 00"), false); }, 131,
               Place(op, kWrongType));
  ExpectStatus([] { DerHelper::DecodeBitStringAsInt(Hex("03"), false); }, 206, op);
  ExpectStatus([] { DerHelper::DecodeBitStringAsInt(Hex("1F 80 80"), false); }, 205, op);
  ExpectStatus([] { DerHelper::DecodeBitStringAsInt(Hex("03 04 00 01"), false); }, 206, op);
}

TEST(DerScalars, GetTagAndIsUniversalTag) {
  struct Row {
    const char* der;
    unsigned int tag;
    bool universal;
  };
  const Row rows[] = {
      {"A0 00", 0, false},          {"9F 1F 00", 31, false},
      {"30 00", 16, true},          {"02 01 05", 2, true},
      {"1F 82 02 00", 258, true},   {"5F 21 00", 33, false},
      {"C1 00", 1, false},          {"1F 81 00 00", 128, true},
      {"1F 80 05 00", 5, true},     {"02 05", 2, true},  // contents are not looked at
      {"30 80", 16, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.der);
    EXPECT_EQ(DerHelper::GetTag(Hex(row.der)), row.tag);
    EXPECT_EQ(DerHelper::IsUniversalTag(Hex(row.der)), row.universal);
  }
  // Both queries report a header failure under GetTag's name.
  for (const char* bad : {"", "02", "02 89 01"}) {
    SCOPED_TRACE(bad);
    ExpectStatus([&] { DerHelper::GetTag(Hex(bad)); }, 206, "DerHelper::GetTag");
    ExpectStatus([&] { DerHelper::IsUniversalTag(Hex(bad)); }, 206, "DerHelper::GetTag");
  }
  ExpectStatus([] { DerHelper::GetTag(Hex("1F FF FF")); }, 205, "DerHelper::GetTag");
  ExpectStatus([] { DerHelper::IsUniversalTag(Hex("1F FF FF")); }, 205, "DerHelper::GetTag");
}

// ---------------------------------------------------------------------------
// Round trips

std::vector<int> NonNegativeBoundaries() {
  std::vector<int> values;
  for (int bit = 0; bit < 31; ++bit) {
    const long long p = 1LL << bit;
    for (long long v : {p - 1, p, p + 1}) values.push_back(static_cast<int>(v));
  }
  for (int v : {0x7F, 0x80, 0xFF, 0x100, 0x7FFF, 0x8000, 0xFFFF, 0x10000, 0x7FFFFF, 0x800000,
                0xFFFFFF, 0x1000000, 0x7FFFFFFE, INT_MAX})
    values.push_back(v);
  return values;
}

TEST(DerScalars, IntegerRoundTripsOverNonNegativeBoundaries) {
  for (int value : NonNegativeBoundaries()) {
    SCOPED_TRACE(value);
    const IdentObj element = DerHelper::EncodeInteger(value);
    EXPECT_EQ(DerHelper::DecodeInteger(element, false), value);
    // The large form gives the value octets without the sign octet.
    const IdentObj large = DerHelper::DecodeLargeInteger(element, false);
    ASSERT_LE(large.Count(), 4u);
    unsigned int word = 0;
    for (unsigned int i = 0; i < large.Count(); ++i)
      word |= static_cast<unsigned int>(large.GetData()[i]) << (8 * i);
    EXPECT_EQ(word, static_cast<unsigned int>(value));
  }
}

TEST(DerScalars, LargeIntegerRoundTrips) {
  struct Row {
    const char* value;
    const char* decoded;
  };
  const Row rows[] = {
      {"01", "01"},
      {"7F", "7F"},
      {"FF", "FF"},  // -1 comes back as it stands
      {"80 00", "80"},  // the sign octet is dropped by the decoder
      {"FF 7F", "FF 7F"},
      {"01 02 03 04 05 06 07 08 09 0A", "01 02 03 04 05 06 07 08 09 0A"},
      {"00 00 00 00 00 00 00 01", "00 00 00 00 00 00 00 01"},
      {"FF FF FF FF FF FF FF 7F", "FF FF FF FF FF FF FF 7F"},
      {"00 00 00 00 00 00 00 80 00", "00 00 00 00 00 00 00 80"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.value);
    EXPECT_EQ(
        ToHex(DerHelper::DecodeLargeInteger(DerHelper::EncodeInteger(Hex(row.value)), false)),
        row.decoded);
  }
}

TEST(DerScalars, OidRoundTrips) {
  for (const char* oid :
       {"1.2.840.113549", "1.2.840.113549.1.1.11", "1.2.643.2.2.3", "1.2.643.7.1.1.2.2",
        "2.5.4.3", "0.9.2342.19200300.100.1.1", "1.3.6.1.4.1.311.21.20", "2.39.1",
        "1.39.0.127.128.16383.16384.2097151.2097152.268435455.268435456.4294967295"}) {
    SCOPED_TRACE(oid);
    EXPECT_EQ(DerHelper::DecodeOid(DerHelper::EncodeOid(oid), false), oid);
  }
  // Two arcs come back with the decoder's trailing dot.
  EXPECT_EQ(DerHelper::DecodeOid(DerHelper::EncodeOid("1.2"), false), "1.2.");
}

TEST(DerScalars, BoolOctetAndBitStringRoundTrips) {
  EXPECT_TRUE(DerHelper::DecodeBool(DerHelper::EncodeBool(true), false));
  EXPECT_FALSE(DerHelper::DecodeBool(DerHelper::EncodeBool(false), false));
  for (const char* value : {"", "00", "41 42 43", "FF 00 FF 00 FF"}) {
    SCOPED_TRACE(value);
    EXPECT_EQ(ToHex(DerHelper::DecodeOctetString(DerHelper::EncodeOctetString(Hex(value)),
                                                 false)),
              value);
    const IdentObj element = DerHelper::EncodeOctetString(Hex(value));
    EXPECT_EQ(ToHex(DerHelper::DecodeOctetString(element.GetData(), element.Count(), false)),
              value);
  }
  const unsigned char bits[] = {0x12, 0x34, 0x56};
  EXPECT_EQ(DerHelper::DecodeBitStringAsInt(DerHelper::EncodeBitString(bits, 3), false),
            0x56341200u);
}

// ---------------------------------------------------------------------------
// Every prefix of a valid element, from a buffer of exactly that size, is
// rejected without reading beyond it.

TEST(DerScalars, PrefixesNeverReadBeyondTheBuffer) {
  using Decode = std::function<void(const IdentObj&)>;
  struct Row {
    const char* name;
    const char* der;
    Decode decode;
    std::string place;
  };
  const Row rows[] = {
      {"integer", "02 04 7F FF FF FF", [](const IdentObj& e) { DerHelper::DecodeInteger(e); },
       "DerHelper::DecodeInteger"},
      {"negative mark", "9F 82 02 01 05", [](const IdentObj& e) { DerHelper::DecodeInteger(e); },
       "DerHelper::DecodeInteger"},
      {"large integer", "02 81 05 01 02 03 04 05",
       [](const IdentObj& e) { DerHelper::DecodeLargeInteger(e); }, "DerHelper::DecodeLargeInteger"},
      {"boolean", "01 01 FF", [](const IdentObj& e) { DerHelper::DecodeBool(e); },
       "DerHelper::DecodeBool"},
      {"oid", "06 06 2A 86 48 86 F7 0D", [](const IdentObj& e) { DerHelper::DecodeOid(e); },
       "DerHelper::DecodeOid"},
      {"octet string", "04 82 00 03 41 42 43",
       [](const IdentObj& e) { DerHelper::DecodeOctetString(e); }, "DerHelper::DecodeOctetString"},
      {"octet string, pointer form", "04 03 41 42 43",
       [](const IdentObj& e) { DerHelper::DecodeOctetString(e.GetData(), e.Count()); },
       "DerHelper::DecodeOctetString"},
      {"indefinite octet string", "04 80 41 42 00 00",
       [](const IdentObj& e) { DerHelper::DecodeOctetString(e); }, "DerHelper::DecodeOctetString"},
      {"bit string", "03 04 00 01 02 03",
       [](const IdentObj& e) { DerHelper::DecodeBitStringAsInt(e); },
       "DerHelper::DecodeBitStringAsInt"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::vector<unsigned char> bytes = HexBytes(row.der);
    for (std::size_t n = 0; n < bytes.size(); ++n) {
      SCOPED_TRACE(n);
      const IdentObj prefix = Exact(bytes, n);
      try {
        row.decode(prefix);
        ADD_FAILURE() << "a cut element was accepted";
      } catch (const XRUVStatus& e) {
        EXPECT_TRUE(e.Status() == 205 || e.Status() == 206) << e.Status();
        EXPECT_EQ(std::string(e.Where()), row.place);
      }
    }
    EXPECT_NO_THROW(row.decode(Exact(bytes, bytes.size())));
  }
  // The tag queries need only the header.
  const std::vector<unsigned char> high = HexBytes("9F 82 02 01 05");
  for (std::size_t n = 0; n < high.size(); ++n) {
    SCOPED_TRACE(n);
    const IdentObj prefix = Exact(high, n);
    if (n < 4) {
      EXPECT_THROW(DerHelper::GetTag(prefix), XRUVStatus);
      EXPECT_THROW(DerHelper::IsUniversalTag(prefix), XRUVStatus);
    } else {
      EXPECT_EQ(DerHelper::GetTag(prefix), 258u);
      EXPECT_FALSE(DerHelper::IsUniversalTag(prefix));
    }
  }
}

}  // namespace
