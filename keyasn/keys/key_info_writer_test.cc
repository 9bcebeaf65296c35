// ASNKeyInfo::WriteData writes its items directly; the octets must be exactly
// those of the record model's item-by-item way, for every member combination.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "keyasn/codec/error_codes.h"
#include "keyasn/keys/key_info.h"
#include "keyasn/keys/key_info_records.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::Hex;
using keyasn::testing::ToHex;

IdentObj Filled(unsigned int size, unsigned char seed) {
  IdentObj value(nullptr, size);
  for (unsigned int i = 0; i < size; ++i) value.GetData()[i] = static_cast<unsigned char>(seed + i);
  return value;
}

void ExpectSameAsRecords(const ASNKeyInfo& ki) {
  int direct = -1;
  int records = -1;
  const IdentObj a = ki.WriteData(&direct);
  const IdentObj b = keyasn::detail::WriteKeyInfoByRecords(ki, &records);
  EXPECT_EQ(direct, keyasn::kOk);
  EXPECT_EQ(records, keyasn::kOk);
  ASSERT_EQ(a.Count(), b.Count());
  EXPECT_EQ(ToHex(a), ToHex(b));
  EXPECT_EQ(ToHex(ki.WriteData(nullptr)), ToHex(b));
}

TEST(ASNKeyInfoWriter, IntegersOfEveryWidthAsTheRecordsWriteThem) {
  const unsigned int values[] = {0,          1,          0x7F,       0x80,       0xFF,
                                 0x100,      0x7FFF,     0x8000,     0xFFFF,     0x10000,
                                 0x7FFFFF,   0x800000,   0xFFFFFF,   0x1000000,  0x7FFFFFFF,
                                 0x80000000, 0xFF7FFFFF, 0xFFFF8000, 0xFFFFFF80, 0xFFFFFFFF};
  for (unsigned int flags : values) {
    for (unsigned int number : {0u, 0x12345u, 0xFFFFFFFFu}) {
      SCOPED_TRACE(std::to_string(flags) + " " + std::to_string(number));
      ASNKeyInfo ki;
      ki.Flags = flags;
      ki.Number = number;
      ExpectSameAsRecords(ki);
    }
  }
}

TEST(ASNKeyInfoWriter, EveryMemberAloneAndTogether) {
  // Sizes around the one-, two- and three-octet length forms of the inner and
  // the outer element.
  const unsigned int sizes[] = {1, 16, 124, 125, 126, 127, 128, 252, 253, 255, 256, 65531, 65536};
  for (unsigned int size : sizes) {
    SCOPED_TRACE(size);
    for (int member = 0; member <= 11; ++member) {
      SCOPED_TRACE(member);
      ASNKeyInfo ki;
      ki.Flags = 0x11;
      ki.Number = 0x012345;
      const IdentObj value = Filled(size, static_cast<unsigned char>(member));
      switch (member) {
        case 0: ki.AlgorithmId.SetObjID(value); break;
        case 1: ki.Octets1 = value; break;
        case 2: ki.Octets2 = value; break;
        case 3: ki.Octets3 = value; break;
        case 4: ki.Octets4 = value; break;
        case 5: ki.Octets5 = value; break;
        case 6: ki.Validity.SetEncoded(value); break;
        case 7: ki.KeyBits = CRUVCryptBitBlob(value.GetData(), value.Count(), size % 8); break;
        case 8: ki.Octets8 = value; break;
        case 9: ki.Octets9 = value; break;
        case 10:
          ki.AlgorithmId.SetObjID(Hex("2A 85 03 07 01 01 01 01"));
          ki.AlgorithmId.SetAddInfo(value);
          break;
        default:  // everything at once
          ki.AlgorithmId.SetObjID(value);
          ki.AlgorithmId.SetAddInfo(Hex("04 01 07"));
          ki.Octets1 = ki.Octets2 = ki.Octets3 = ki.Octets4 = ki.Octets5 = value;
          ki.Octets8 = ki.Octets9 = value;
          ki.Validity.SetEncoded(value);
          ki.KeyBits = CRUVCryptBitBlob(value.GetData(), value.Count(), 3);
          break;
      }
      ExpectSameAsRecords(ki);
    }
  }
}

TEST(ASNKeyInfoWriter, KnownEncoding) {
  ASNKeyInfo ki;
  ki.Flags = 0x11;
  ki.Number = 0x80000000u;  // written from its four octets: a negative INTEGER
  ki.AlgorithmId.SetObjID(Hex("2A 03"));
  ki.Octets3 = Hex("AB");
  ki.KeyBits = CRUVCryptBitBlob(Hex("F0").GetData(), 1, 4);
  int err = -1;
  EXPECT_EQ(ToHex(ki.WriteData(&err)),
            "30 1E 02 01 11 02 04 80 00 00 00 A0 08 30 06 06 02 2A 03 05 00 A3 03 04 01 AB "
            "A7 04 03 02 04 F0");
  EXPECT_EQ(err, keyasn::kOk);
}

}  // namespace
