#include "keyasn/keys/key_record.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::AcceptedPrefixes;
using keyasn::testing::Bytes;
using keyasn::testing::ExpectStatus;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::Size;
using keyasn::testing::ToHex;

constexpr char kRead[] = "CASNKeyRecord::ReadData";

TEST(CASNKeyRecord, WritesTheElementThenTheKeyBlob) {
  CASNKeyRecord record;
  record.descriptor = Hex("02 01 05");
  record.key = Hex("AA BB");
  const IdentObj out = record.WriteData();
  EXPECT_EQ(ToHex(out), "02 01 05 02 00 00 00 AA BB");

  CASNKeyRecord back;
  const std::vector<unsigned char> bytes = Bytes(out);
  int code = -1;
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes), &code), 9u);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(back.descriptor, record.descriptor);
  EXPECT_EQ(back.key, record.key);
  EXPECT_EQ(back.WriteData(), out);
}

TEST(CASNKeyRecord, RoundTripsLargeMembers) {
  for (unsigned int n : {0u, 1u, 127u, 128u, 256u, 65536u}) {
    SCOPED_TRACE(n);
    std::vector<unsigned char> element = {0x04, 0x83, static_cast<unsigned char>(n >> 16),
                                          static_cast<unsigned char>(n >> 8),
                                          static_cast<unsigned char>(n)};
    element.resize(5 + n, 0x33);
    std::vector<unsigned char> keyOctets(n, 0xC5);
    CASNKeyRecord record;
    record.descriptor = IdentObj(element.data(), Size(element));
    record.key = IdentObj(keyOctets.data(), n);
    const IdentObj out = record.WriteData();
    ASSERT_EQ(out.Count(), 5 + n + 4 + n);
    const std::vector<unsigned char> bytes = Bytes(out);
    CASNKeyRecord back;
    EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes), nullptr), out.Count());
    EXPECT_EQ(back.descriptor, record.descriptor);
    EXPECT_EQ(back.key, record.key);
  }
}

TEST(CASNKeyRecord, EmptyRecordWritesAnEmptyBlob) {
  EXPECT_EQ(ToHex(CASNKeyRecord().WriteData()), "00 00 00 00");
}

TEST(CASNKeyRecord, NoDataGivesCode28) {
  CASNKeyRecord record;
  int code = -1;
  EXPECT_EQ(record.ReadData(nullptr, 5, &code), 0u);
  EXPECT_EQ(code, 28);
  ExpectStatus([&] { record.ReadData(nullptr, 5, nullptr); }, 28, kRead);
}

TEST(CASNKeyRecord, ElementFailures) {
  struct Row {
    const char* name;
    const char* hex;
    int code;
    unsigned int result;
  };
  const Row rows[] = {
      {"one octet", "02", 206, 0},
      {"bad length octets", "02 89 01", 206, 0},
      {"element longer than the data", "02 05 01 02", 37, 2},
      {"indefinite length", "30 80 02 01 05 00 00", 37, 2},
      {"long form longer than the data", "04 82 01 00 01", 37, 4},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNKeyRecord record;
    record.descriptor = Hex("05 00");
    record.key = Hex("11 22");
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    int code = -1;
    EXPECT_EQ(record.ReadData(bytes.data(), Size(bytes), &code), row.result);
    EXPECT_EQ(code, row.code);
    ExpectStatus([&] { record.ReadData(bytes.data(), Size(bytes), nullptr); }, row.code, kRead);
    // Nothing was read: the members are as they were, the key not wiped.
    EXPECT_EQ(ToHex(record.descriptor), "05 00");
    EXPECT_EQ(ToHex(record.key), "11 22");
  }
}

TEST(CASNKeyRecord, AMissingOrShortBlobAddsNothingAndLeavesTheKeyWiped) {
  for (const char* hex : {"02 01 05", "02 01 05 02 00", "02 01 05 05 00 00 00 AA"}) {
    SCOPED_TRACE(hex);
    CASNKeyRecord record;
    record.key = Hex("11 22");
    const std::vector<unsigned char> bytes = HexBytes(hex);
    int code = -1;
    EXPECT_EQ(record.ReadData(bytes.data(), Size(bytes), &code), 3u);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(ToHex(record.descriptor), "02 01 05");
    EXPECT_EQ(ToHex(record.key), "00 00");
  }
}

TEST(CASNKeyRecord, OctetsBehindTheBlobAreNotConsumed) {
  const std::vector<unsigned char> bytes = HexBytes("05 00 01 00 00 00 7F EE EE");
  CASNKeyRecord record;
  EXPECT_EQ(record.ReadData(bytes.data(), Size(bytes), nullptr), 7u);
  EXPECT_EQ(ToHex(record.descriptor), "05 00");
  EXPECT_EQ(ToHex(record.key), "7F");
}

TEST(CASNKeyRecord, ResetKeyZeroesEveryOctetAndKeepsTheSize) {
  CASNKeyRecord record;
  record.key = Hex("01 02 03 04 05");
  record.ResetKey();
  EXPECT_EQ(ToHex(record.key), "00 00 00 00 00");
  CASNKeyRecord empty;
  empty.ResetKey();
  EXPECT_EQ(empty.key.Count(), 0u);
}

TEST(CASNKeyRecord, CopiesHoldTheirOwnKey) {
  CASNKeyRecord a;
  a.descriptor = Hex("02 01 05");
  a.key = Hex("AA BB");
  CASNKeyRecord b(a);
  EXPECT_EQ(b.descriptor, a.descriptor);
  EXPECT_EQ(b.key, a.key);
  EXPECT_NE(b.key.GetData(), a.key.GetData());
  b.ResetKey();
  EXPECT_EQ(ToHex(a.key), "AA BB");

  CASNKeyRecord c;
  c.key = Hex("01");
  c = a;
  EXPECT_EQ(ToHex(c.key), "AA BB");
  EXPECT_EQ(ToHex(c.descriptor), "02 01 05");
  CASNKeyRecord& self = c;
  c = self;  // self-assignment neither wipes nor changes anything
  EXPECT_EQ(ToHex(c.key), "AA BB");
}

TEST(CASNKeyRecord, PrefixesReadNoFurtherThanTheirSize) {
  // Every prefix that holds the whole element reads; the blob then counts only
  // when complete (the last prefix is the whole input, not swept).
  const std::vector<unsigned char> bytes = HexBytes("02 01 05 02 00 00 00 AA BB");
  const std::vector<size_t> accepted =
      AcceptedPrefixes(bytes, [](const unsigned char* d, unsigned int n) {
        CASNKeyRecord record;
        int code = 0;
        const unsigned int used = record.ReadData(d, n, &code);
        EXPECT_LE(used, n);
        return code == 0;
      });
  EXPECT_EQ(accepted, (std::vector<size_t>{3, 4, 5, 6, 7, 8}));
}

}  // namespace
