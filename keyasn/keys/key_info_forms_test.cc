// ASNKeyInfo::ReadData decodes plain items (one-octet identifier, definite
// length) straight from the input and leaves every other form to the record
// model; both must give what the record model gives.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "keyasn/codec/error_codes.h"
#include "keyasn/keys/key_info.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::HexBytes;
using keyasn::testing::ToHex;

struct Read {
  ASNKeyInfo info;
  int err = -12345;
  unsigned int result = 0;
};

Read ReadHex(const std::string& hex) {
  Read r;
  const std::vector<unsigned char> input = HexBytes(hex);  // exactly sized
  r.result = r.info.ReadData(input.data(), static_cast<unsigned int>(input.size()), &r.err);
  return r;
}

TEST(ASNKeyInfoForms, IntegersInEveryClassAndForm) {
  struct Row {
    const char* name;
    const char* flags;  // the first item
    unsigned int value;
  };
  const Row rows[] = {
      {"universal", "02 01 05", 5},
      {"universal, leading zero dropped", "02 02 00 80", 0x80},
      {"universal, two octets", "02 02 12 34", 0x1234},
      {"universal, empty", "02 00", 0},
      {"universal, five octets keep the low four", "02 05 01 02 03 04 05", 0x02030405},
      {"universal, long form length", "02 81 01 07", 7},
      {"application class decodes as an INTEGER", "42 02 12 34", 0x1234},
      {"private class decodes as an INTEGER", "C2 02 12 34", 0x1234},
      {"context class copies the contents, first octet lowest", "82 02 12 34", 0x3412},
      {"high tag number form", "1F 02 02 12 34", 0x1234},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::vector<unsigned char> item = HexBytes(row.flags);
    std::string hex = "30 " + ToHex(std::vector<unsigned char>{
                                  static_cast<unsigned char>(item.size() + 3)}) +
                      " " + row.flags + " 02 01 09";
    const Read r = ReadHex(hex);
    EXPECT_EQ(r.err, -12345);
    EXPECT_EQ(r.info.Flags, row.value);
    EXPECT_EQ(r.info.Number, 9u);
  }
}

TEST(ASNKeyInfoForms, InnerElementsInEveryForm) {
  struct Row {
    const char* name;
    const char* item;  // the third item
    const char* octets3;
  };
  const Row rows[] = {
      {"octet string", "A3 03 04 01 41", "41"},
      {"octet string, long form length", "A3 04 04 81 01 41", "41"},
      {"octet string, empty", "A3 02 04 00", ""},
      {"integer, reversed", "A3 04 02 02 12 34", "34 12"},
      {"context-specific inner, copied", "A3 04 80 02 12 34", "12 34"},
      {"high tag number inner", "A3 04 1F 04 01 41", "41"},
      {"inner shorter than it claims", "A3 03 04 05 41", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::vector<unsigned char> item = HexBytes(row.item);
    std::string hex = "30 " + ToHex(std::vector<unsigned char>{
                                  static_cast<unsigned char>(item.size() + 6)}) +
                      " 02 01 00 02 01 00 " + row.item;
    const Read r = ReadHex(hex);
    if (std::string(row.name) == "inner shorter than it claims") {
      // The record model refuses the inner element (37, its header reader).
      EXPECT_EQ(r.err, keyasn::kErrTooShort);
      continue;
    }
    EXPECT_EQ(r.err, -12345);
    EXPECT_EQ(ToHex(r.info.Octets3), row.octets3);
  }
}

TEST(ASNKeyInfoForms, LegacyIntegerWidthsInBothForms) {
  // [1] and [2] in their legacy INTEGER form, read plainly and through the
  // record model (high tag number form of the same INTEGER).
  for (const char* inner : {"02 01 05", "1F 02 01 05"}) {
    SCOPED_TRACE(inner);
    const std::vector<unsigned char> in = HexBytes(inner);
    const std::string n = ToHex(std::vector<unsigned char>{static_cast<unsigned char>(in.size())});
    const std::string hex = "30 " +
                            ToHex(std::vector<unsigned char>{
                                static_cast<unsigned char>(6 + 2 * (2 + in.size()))}) +
                            " 02 01 10 02 01 00 A1 " + n + " " + inner + " A2 " + n + " " + inner;
    const Read r = ReadHex(hex);
    EXPECT_EQ(r.err, -12345);
    ASSERT_EQ(r.info.Octets1.Count(), 16u);
    ASSERT_EQ(r.info.Octets2.Count(), 20u);
    EXPECT_EQ(r.info.Octets1.GetData()[0], 0x05);
    EXPECT_EQ(r.info.Octets2.GetData()[0], 0x05);
  }
}

}  // namespace
