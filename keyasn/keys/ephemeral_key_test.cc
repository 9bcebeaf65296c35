#include "keyasn/keys/ephemeral_key.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::AcceptedPrefixes;
using keyasn::testing::Bytes;
using keyasn::testing::Cat;
using keyasn::testing::ExpectStatus;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::Octets;
using keyasn::testing::ReadsWithoutStatus;
using keyasn::testing::Size;
using keyasn::testing::Tlv;
using keyasn::testing::ToHex;

constexpr char kRead[] = "CASNEphemeralKeyInfo::ReadData";
constexpr char kUnitRead[] = "CASNTUnit::Read";
constexpr char kRecordRead[] = "CASNTBaseRecord::ReadASNInfo";
constexpr char kIdRead[] = "CASNTIdData::ReadData";

constexpr char kGostOid[] = "1.2.643.2.2.19";  // 06 06 2A 85 03 02 02 13
const Octets kGostOidDer = HexBytes("06 06 2A 85 03 02 02 13");
// Identifier data as written: the identifier with NULL parameters.
const Octets kIdDer = HexBytes("30 0A 06 06 2A 85 03 02 02 13 05 00");

CASNTIdData IdFrom(const Octets& der) {
  CASNTIdData id;
  id.ReadData(der.data(), Size(der), nullptr);
  return id;
}

// Encoding builds the element from its parts; `bitString` empty leaves the key
// part out.
Octets Encoding(const Octets& oid, const Octets& idDer, const Octets& bitString,
                const Octets& trailer) {
  const Octets keyPart = bitString.empty() ? Octets() : Tlv(0xA0, Cat({idDer, bitString}));
  return Tlv(0xA0, Cat({oid, keyPart, trailer}));
}

// KeyBitsRead reads an element whose key part holds `bitString` (hex), expects the
// whole element to be used and returns the key bits read, in hex.
std::string KeyBitsRead(const char* bitString) {
  const Octets bytes = Encoding(HexBytes("06 01 2A"), HexBytes("30 03 06 01 2A"),
                                HexBytes(bitString), HexBytes("04 00"));
  CASNEphemeralKeyInfo info;
  EXPECT_EQ(info.ReadData(bytes.data(), Size(bytes)), bytes.size());
  return ToHex(info.keyBits);
}

TEST(CASNEphemeralKeyInfo, WritesAndReadsBack) {
  CASNEphemeralKeyInfo info;
  info.algorithmOid = kGostOid;
  info.idData = IdFrom(kIdDer);
  info.keyBits = Hex("04 04 11 22 33 44");
  info.trailerData = Hex("AA BB");
  const IdentObj der = info.WriteData();
  const Octets expected = Encoding(kGostOidDer, kIdDer, HexBytes("03 07 00 04 04 11 22 33 44"),
                                   HexBytes("04 02 AA BB"));
  EXPECT_EQ(ToHex(der), ToHex(expected));
  EXPECT_EQ(ToHex(der.GetData(), 2), "A0 23");

  CASNEphemeralKeyInfo back;
  const Octets bytes = Bytes(der);
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes)), 37u);
  EXPECT_EQ(back.algorithmOid, kGostOid);
  EXPECT_EQ(back.idData, info.idData);
  EXPECT_EQ(back.keyBits, info.keyBits);
  EXPECT_EQ(back.trailerData, info.trailerData);
  EXPECT_EQ(back.WriteData(), der);
}

TEST(CASNEphemeralKeyInfo, LongFormLengthsRoundTrip) {
  for (unsigned int n : {60u, 124u, 125u, 200u, 300u, 70000u}) {
    SCOPED_TRACE(n);
    CASNEphemeralKeyInfo info;
    info.algorithmOid = kGostOid;
    info.idData = IdFrom(kIdDer);
    Octets key(n, 0x5C);
    info.keyBits = IdentObj(key.data(), n);  // 5C: no OCTET STRING header, no repair
    Octets trailer(n / 2, 0x71);
    info.trailerData = IdentObj(trailer.data(), Size(trailer));
    const IdentObj der = info.WriteData();
    CASNEphemeralKeyInfo back;
    const Octets bytes = Bytes(der);
    EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes)), der.Count());
    EXPECT_EQ(back.keyBits, info.keyBits);
    EXPECT_EQ(back.trailerData, info.trailerData);
    EXPECT_EQ(back.WriteData(), der);
  }
}

TEST(CASNEphemeralKeyInfo, WithoutKeyBitsThereIsNoKeyPart) {
  CASNEphemeralKeyInfo info;
  info.algorithmOid = kGostOid;
  info.idData = IdFrom(kIdDer);  // not written without key bits
  info.trailerData = Hex("AA BB");
  const IdentObj der = info.WriteData();
  EXPECT_EQ(ToHex(der), "A0 0C 06 06 2A 85 03 02 02 13 04 02 AA BB");

  CASNEphemeralKeyInfo back;
  back.idData = IdFrom(HexBytes("30 03 06 01 2A"));
  back.keyBits = Hex("01 02");
  const Octets bytes = Bytes(der);
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes)), 14u);
  EXPECT_EQ(back.algorithmOid, kGostOid);
  EXPECT_EQ(back.idData, IdFrom(HexBytes("30 03 06 01 2A")));  // untouched
  EXPECT_EQ(ToHex(back.keyBits), "01 02");                     // untouched
  EXPECT_EQ(ToHex(back.trailerData), "AA BB");
}

TEST(CASNEphemeralKeyInfo, EmptyMembersWrite) {
  CASNEphemeralKeyInfo info;
  EXPECT_EQ(ToHex(info.WriteData()), "A0 04 06 00 04 00");
}

TEST(CASNEphemeralKeyInfo, UnusedBitsAreClearedInTheLastKeyOctet) {
  struct Row {
    const char* bitString;
    const char* keyBits;
  };
  const Row rows[] = {
      {"03 04 00 02 01 FF", "02 01 FF"}, {"03 04 01 02 01 FF", "02 01 FE"},
      {"03 04 03 02 01 FF", "02 01 F8"}, {"03 04 07 02 01 FF", "02 01 80"},
      {"03 04 08 02 01 FF", "02 01 00"}, {"03 04 23 02 01 FF", "02 01 F8"},  // 35 AND 31 = 3
      {"03 04 FF 02 01 FF", "02 01 00"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.bitString);
    EXPECT_EQ(KeyBitsRead(row.bitString), row.keyBits);
  }
}

TEST(CASNEphemeralKeyInfo, KeyBitsAreResizedToTheirOctetStringHeader) {
  struct Row {
    const char* name;
    const char* bitString;
    const char* keyBits;
  };
  const Row rows[] = {
      {"one trailing zero lost", "03 07 00 04 05 01 02 03 04", "04 05 01 02 03 04 00"},
      {"three trailing zeros lost", "03 05 00 04 05 01 02", "04 05 01 02 00 00 00"},
      {"no contents left", "03 03 00 04 02", "04 02 00 00"},
      {"declared smaller: cut", "03 07 00 04 02 01 02 03 04", "04 02 01 02"},
      {"exact", "03 05 00 04 02 01 02", "04 02 01 02"},
      {"other tag: kept", "03 07 00 02 05 01 02 03 04", "02 05 01 02 03 04"},
      {"context tag 4: resized", "03 05 00 84 03 01 02", "84 03 01 02 00"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(KeyBitsRead(row.bitString), row.keyBits);
  }
}

TEST(CASNEphemeralKeyInfo, KeyBitsRefusedByTheirHeader) {
  struct Row {
    const char* name;
    const char* bitString;
    int code;
    const char* where;
  };
  const Row rows[] = {
      {"declared beyond the input", "03 05 00 04 7F 01 02", 206, kRead},
      {"indefinite constructed", "03 08 00 24 80 04 01 05 00 00", 206, kRead},
      {"length octets bad", "03 04 00 04 89 01", 206, kRecordRead},
      {"one octet", "03 02 00 04", 206, kRecordRead},
      {"no key octets", "03 01 00", 206, kRecordRead},
      {"no contents at all", "03 00", 206, kRecordRead},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const Octets bytes = Encoding(HexBytes("06 01 2A"), HexBytes("30 03 06 01 2A"),
                                  HexBytes(row.bitString), HexBytes("04 00"));
    CASNEphemeralKeyInfo info;
    ExpectStatus([&] { info.ReadData(bytes.data(), Size(bytes)); }, row.code, row.where);
    EXPECT_EQ(info.algorithmOid, "1.2.");  // read before the failure, kept
    EXPECT_EQ(info.trailerData.Count(), 0u);
  }
}

TEST(CASNEphemeralKeyInfo, AlgorithmTextIsInsertedInFront) {
  const Octets bytes = Encoding(kGostOidDer, {}, {}, HexBytes("04 00"));
  CASNEphemeralKeyInfo info;
  info.algorithmOid = "old";
  EXPECT_EQ(info.ReadData(bytes.data(), Size(bytes)), bytes.size());
  EXPECT_EQ(info.algorithmOid, std::string(kGostOid) + "old");
  info.ReadData(bytes.data(), Size(bytes));
  EXPECT_EQ(info.algorithmOid, std::string(kGostOid) + kGostOid + "old");
}

TEST(CASNEphemeralKeyInfo, OuterClassIsNotLookedAt) {
  for (unsigned char tag : {0xA0, 0x20, 0x60, 0xE0}) {
    SCOPED_TRACE(static_cast<int>(tag));
    const Octets bytes = Tlv(tag, HexBytes("06 01 2A 04 02 AA BB"));
    CASNEphemeralKeyInfo info;
    EXPECT_EQ(info.ReadData(bytes.data(), Size(bytes)), 9u);
    EXPECT_EQ(ToHex(info.trailerData), "AA BB");
  }
}

TEST(CASNEphemeralKeyInfo, ReadFailures) {
  struct Row {
    const char* name;
    Octets bytes;
    int code;
    const char* where;
  };
  const Octets oid = HexBytes("06 01 2A");
  const Octets id = HexBytes("30 03 06 01 2A");
  const Octets bits = HexBytes("03 03 00 02 00");
  const Octets trailer = HexBytes("04 00");
  const Row rows[] = {
      {"outer primitive", Tlv(0x80, Cat({oid, trailer})), 206, kRead},
      {"outer tag 1", Tlv(0xA1, Cat({oid, trailer})), 206, kRead},
      {"outer a SEQUENCE", Tlv(0x30, Cat({oid, trailer})), 206, kRead},
      {"one item", Tlv(0xA0, oid), 206, kRead},
      {"no items", HexBytes("A0 00"), 206, kRead},
      {"first item not an OBJECT IDENTIFIER", Tlv(0xA0, Cat({HexBytes("04 01 2A"), trailer})),
       206, kRead},
      {"key part of one item", Tlv(0xA0, Cat({oid, Tlv(0xA0, id), trailer})), 206, kRead},
      {"key part of three items", Tlv(0xA0, Cat({oid, Tlv(0xA0, Cat({id, bits, bits})), trailer})),
       206, kRead},
      {"key part empty", Tlv(0xA0, Cat({oid, HexBytes("A0 00"), trailer})), 206, kRead},
      {"no trailer after the key part", Tlv(0xA0, Cat({oid, Tlv(0xA0, Cat({id, bits}))})), 206,
       kRead},
      {"trailer an INTEGER", Tlv(0xA0, Cat({oid, HexBytes("02 01 05")})), 206, kRead},
      {"trailer an INTEGER after the key part",
       Tlv(0xA0, Cat({oid, Tlv(0xA0, Cat({id, bits})), HexBytes("02 01 05")})), 206, kRead},
      {"identifier data not a SEQUENCE",
       Tlv(0xA0, Cat({oid, Tlv(0xA0, Cat({HexBytes("31 03 06 01 2A"), bits})), trailer})), 206,
       kIdRead},
      {"outer cut short", HexBytes("A0 05 06 01 2A"), 205, kUnitRead},
      {"one octet", HexBytes("A0"), 205, kUnitRead},
      {"application primitive inside", Tlv(0xA0, Cat({oid, HexBytes("41 01 00"), trailer})), 206,
       kUnitRead},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNEphemeralKeyInfo info;
    ExpectStatus([&] { info.ReadData(row.bytes.data(), Size(row.bytes)); }, row.code, row.where);
  }
}

TEST(CASNEphemeralKeyInfo, AFailedReadKeepsWhatItHadRead) {
  // The key part is read, then the missing trailer fails the read.
  const Octets bytes =
      Tlv(0xA0, Cat({kGostOidDer, Tlv(0xA0, Cat({kIdDer, HexBytes("03 03 00 02 00")}))}));
  CASNEphemeralKeyInfo info;
  info.trailerData = Hex("EE");
  ExpectStatus([&] { info.ReadData(bytes.data(), Size(bytes)); }, 206, kRead);
  EXPECT_EQ(info.algorithmOid, kGostOid);
  EXPECT_EQ(info.idData, IdFrom(kIdDer));
  EXPECT_EQ(ToHex(info.keyBits), "02 00");
  EXPECT_EQ(ToHex(info.trailerData), "EE");
}

TEST(CASNEphemeralKeyInfo, EveryProperPrefixIsRefused) {
  CASNEphemeralKeyInfo info;
  info.algorithmOid = kGostOid;
  info.idData = IdFrom(kIdDer);
  info.keyBits = Hex("04 04 11 22 33 44");
  info.trailerData = Hex("AA BB");
  const Octets whole = Bytes(info.WriteData());
  EXPECT_TRUE(AcceptedPrefixes(whole, ReadsWithoutStatus<CASNEphemeralKeyInfo>).empty());
}

}  // namespace
