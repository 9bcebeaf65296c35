#include "keyasn/keys/encrypted_key.h"

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
using keyasn::testing::ToHex;

constexpr char kRead[] = "CASNEncryptedKey::ReadData";
constexpr char kWrite[] = "CASNEncryptedKey::WriteData";
constexpr char kRecordRead[] = "CASNTBaseRecord::ReadASNInfo";

CASNEncryptedKey Fresh() { return CASNEncryptedKey(nullptr, 0, nullptr, 0); }

TEST(CASNEncryptedKey, ConstructorCopiesBothRuns) {
  const unsigned char k[] = {0x01, 0x02};
  const unsigned char t[] = {0x03};
  CASNEncryptedKey key(k, 2, t, 1);
  EXPECT_EQ(ToHex(key.encryptedKey), "01 02");
  EXPECT_EQ(ToHex(key.additionalData), "03");
  EXPECT_NE(key.encryptedKey.GetData(), k);  // owned copies
}

TEST(CASNEncryptedKey, WritesTwoOctetStringsAndReadsThemBack) {
  const unsigned char k[] = {0x01, 0x02};
  const unsigned char t[] = {0x03};
  const IdentObj der = CASNEncryptedKey(k, 2, t, 1).WriteData();
  EXPECT_EQ(ToHex(der), "30 07 04 02 01 02 04 01 03");

  const std::vector<unsigned char> bytes = Bytes(der);
  CASNEncryptedKey back = Fresh();
  EXPECT_EQ(back.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size())), 9u);
  EXPECT_EQ(ToHex(back.encryptedKey), "01 02");
  EXPECT_EQ(ToHex(back.additionalData), "03");
  EXPECT_EQ(back.WriteData(), der);
}

TEST(CASNEncryptedKey, RoundTripsLongFormLengths) {
  for (unsigned int n : {0u, 1u, 127u, 128u, 255u, 256u, 300u, 65535u, 65536u}) {
    SCOPED_TRACE(n);
    std::vector<unsigned char> k(n);
    for (unsigned int i = 0; i < n; ++i) k[i] = static_cast<unsigned char>(i * 7 + 1);
    const unsigned char t[] = {0xAA, 0xBB};
    // A key of 0 octets has no buffer and cannot be written; use a zero octet instead.
    CASNEncryptedKey key(n ? k.data() : nullptr, n ? n : 1, t, 2);
    const IdentObj der = key.WriteData();
    ASSERT_GT(der.Count(), 0u);
    const std::vector<unsigned char> bytes = Bytes(der);
    CASNEncryptedKey back = Fresh();
    EXPECT_EQ(back.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size())),
              der.Count());
    EXPECT_EQ(back.encryptedKey, key.encryptedKey);
    EXPECT_EQ(back.additionalData, key.additionalData);
    EXPECT_EQ(back.WriteData(), der);
  }
}

TEST(CASNEncryptedKey, LengthOctetsFollowTheContentsSize) {
  std::vector<unsigned char> k(200, 0x5A);
  const unsigned char t[] = {0x03};
  const IdentObj der = CASNEncryptedKey(k.data(), 200, t, 1).WriteData();
  // 04 81 C8 + 200 octets, 04 01 03: 206 octets of contents.
  EXPECT_EQ(ToHex(der.GetData(), 6), "30 81 CE 04 81 C8");
  EXPECT_EQ(der.Count(), 209u);
}

TEST(CASNEncryptedKey, NoInputReturnsZeroAndChangesNothing) {
  const unsigned char k[] = {0x11};
  CASNEncryptedKey key(k, 1, k, 1);
  const std::vector<unsigned char> bytes = HexBytes("30 03 04 01 05");
  EXPECT_EQ(key.ReadData(nullptr, 5), 0u);
  EXPECT_EQ(key.ReadData(bytes.data(), 0), 0u);
  EXPECT_EQ(ToHex(key.encryptedKey), "11");
  EXPECT_EQ(ToHex(key.additionalData), "11");
}

struct ReadFailure {
  const char* name;
  const char* hex;
  int code;
  const char* where;
  const char* keyAfter;  // encryptedKey after the failure (starts as "EE")
};

TEST(CASNEncryptedKey, ReadFailures) {
  const ReadFailure rows[] = {
      {"one octet", "30", 206, kRead, "EE"},
      {"bad length octets", "30 89 00", 206, kRead, "EE"},
      {"high tag number not ending", "3F 81 82", 205, kRead, "EE"},
      {"a SET", "31 00", 206, kRead, "EE"},
      {"an OCTET STRING outside", "04 03 04 01 05", 206, kRead, "EE"},
      {"input below the contents length", "30 09 04 01 05 04 01 03", 206, kRead, "EE"},
      {"indefinite length", "30 80 04 01 05 04 01 03 00 00", 206, kRead, "EE"},
      {"one item only", "30 04 04 02 01 02", 206, kRead, "01 02"},
      {"first item an INTEGER", "30 06 02 01 05 04 01 03", 206, kRead, "EE"},
      {"second item an INTEGER", "30 06 04 01 05 02 01 03", 206, kRead, "05"},
      {"empty SEQUENCE", "30 00", 206, kRecordRead, "EE"},
      {"first item beyond the contents", "30 02 04 01 AA 04 01 BB", 37, kRecordRead, "EE"},
      {"second item beyond the data", "30 07 04 01 AA 04 02 BB", 37, kRecordRead, "AA"},
      {"second item cut at the data's end", "30 05 04 01 AA", 206, kRecordRead, "AA"},
  };
  for (const ReadFailure& row : rows) {
    SCOPED_TRACE(row.name);
    const unsigned char e[] = {0xEE};
    CASNEncryptedKey key(e, 1, e, 1);
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    ExpectStatus([&] { key.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size())); },
                 row.code, row.where);
    EXPECT_EQ(ToHex(key.encryptedKey), row.keyAfter);
    EXPECT_EQ(ToHex(key.additionalData), "EE");
  }
}

TEST(CASNEncryptedKey, LenientReads) {
  struct Row {
    const char* name;
    const char* hex;
  };
  const Row rows[] = {
      // The SEQUENCE claims 7 contents octets and the input holds 6 behind the
      // header: the input is not below the contents length, and both items lie
      // within it.
      {"only the contents length is compared with the input", "30 07 04 01 AA 04 01 BB"},
      {"only tag numbers of items are tested", "30 06 84 01 AA 84 01 BB"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    CASNEncryptedKey key = Fresh();
    EXPECT_EQ(key.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size())), 8u);
    EXPECT_EQ(ToHex(key.encryptedKey), "AA");
    EXPECT_EQ(ToHex(key.additionalData), "BB");
  }
}

TEST(CASNEncryptedKey, TrailingOctetsAreNotConsumed) {
  const std::vector<unsigned char> bytes = HexBytes("30 07 04 02 01 02 04 01 03 FF FF");
  CASNEncryptedKey key = Fresh();
  EXPECT_EQ(key.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size())), 9u);
}

TEST(CASNEncryptedKey, EmptyOctetStringsRead) {
  const std::vector<unsigned char> bytes = HexBytes("30 04 04 00 04 00");
  const unsigned char e[] = {0xEE};
  CASNEncryptedKey key(e, 1, e, 1);
  EXPECT_EQ(key.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size())), 6u);
  EXPECT_EQ(key.encryptedKey.Count(), 0u);
  EXPECT_EQ(key.additionalData.Count(), 0u);
  // Read back empty, the members have no buffer and cannot be written.
  ExpectStatus([&] { key.WriteData(); }, 42, kWrite);
}

TEST(CASNEncryptedKey, MembersWithoutBufferCannotBeWritten) {
  const unsigned char k[] = {0x01};
  ExpectStatus([&] { CASNEncryptedKey(k, 1, nullptr, 0).WriteData(); }, 42, kWrite);
  ExpectStatus([&] { CASNEncryptedKey(nullptr, 0, k, 1).WriteData(); }, 42, kWrite);
  ExpectStatus([&] { CASNEncryptedKey(k, 0, k, 1).WriteData(); }, 42, kWrite);
  // A null pointer with a size gives zero octets, which do have a buffer.
  EXPECT_EQ(ToHex(CASNEncryptedKey(nullptr, 2, k, 1).WriteData()),
            "30 07 04 02 00 00 04 01 01");
}

TEST(CASNEncryptedKey, EveryProperPrefixIsRefused) {
  const std::vector<unsigned char> bytes = HexBytes("30 0A 04 03 01 02 03 04 03 0A 0B 0C");
  const std::vector<size_t> accepted = AcceptedPrefixes(
      bytes, [](const unsigned char* data, unsigned int size) {
        CASNEncryptedKey key = Fresh();
        return key.ReadData(data, size) != 0;
      });
  EXPECT_TRUE(accepted.empty()) << accepted.size() << " prefixes accepted";
}

TEST(CASNEncryptedKey, CopiesAreDeep) {
  const unsigned char k[] = {0x01, 0x02};
  CASNEncryptedKey a(k, 2, k, 1);
  CASNEncryptedKey b = a;
  b.encryptedKey.GetData()[0] = 0x7F;
  EXPECT_EQ(ToHex(a.encryptedKey), "01 02");
  a = b;
  EXPECT_EQ(ToHex(a.encryptedKey), "7F 02");
}

}  // namespace
