#include "keyasn/keys/cryptoki.h"

#include <gtest/gtest.h>

#include <list>
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

constexpr char kElemRead[] = "ASNCryptokiElemInfo::ReadData";
constexpr char kElemSplit[] = "ASNCryptokiElemInfo::ReadData ASNTGetSequence";
constexpr char kContRead[] = "ASNCryptokiContInfo::ReadData";
constexpr char kContSplit[] = "ASNCryptokiContInfo::ReadData ASNTGetSequence";
constexpr char kSplit[] = "ASNTGetSequence";
constexpr char kRecordRead[] = "CASNTBaseRecord::ReadASNInfo";

// ---- ASNCryptokiElemInfo ----

TEST(ASNCryptokiElemInfo, StartsEmpty) {
  ASNCryptokiElemInfo elem;
  EXPECT_EQ(elem.Type, 0u);
  EXPECT_EQ(elem.Value.Count(), 0u);
}

TEST(ASNCryptokiElemInfo, WritesAndReadsBack) {
  ASNCryptokiElemInfo elem;
  elem.Type = 1;
  elem.Value = Hex("AB CD");
  int code = -1;
  const IdentObj der = elem.WriteData(&code);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(ToHex(der), "30 07 02 01 01 04 02 AB CD");

  ASNCryptokiElemInfo back;
  const std::vector<unsigned char> bytes = Bytes(der);
  code = -1;
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes), &code), 9u);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(back.Type, 1u);
  EXPECT_EQ(ToHex(back.Value), "AB CD");
}

TEST(ASNCryptokiElemInfo, TypeValues) {
  struct Row {
    unsigned int type;
    const char* integer;  // the written INTEGER
    unsigned int readBack;
  };
  const Row rows[] = {
      {0, "02 01 00", 0},
      {0x7F, "02 01 7F", 0x7F},
      {0x80, "02 02 00 80", 0x80},
      {0xFF, "02 02 00 FF", 0xFF},
      {0x100, "02 02 01 00", 0x100},
      {0xFFFF, "02 03 00 FF FF", 0xFFFF},
      {0x10000, "02 03 01 00 00", 0x10000},
      {0x7FFFFFFF, "02 04 7F FF FF FF", 0x7FFFFFFF},
      // The four octets are written as they are, so a top bit set reads as negative
      // DER; the library reads it back to the same field value.
      {0x80000000, "02 04 80 00 00 00", 0x80000000},
      // The encoder drops redundant 0xFF octets: such a value reads back shortened.
      {0xFFFFFF80, "02 01 80", 0x80},
      {0xFFFFFFFF, "02 01 FF", 0xFF},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.integer);
    ASNCryptokiElemInfo elem;
    elem.Type = row.type;
    elem.Value = Hex("01");
    const IdentObj der = elem.WriteData(nullptr);
    const std::vector<unsigned char> integer = HexBytes(row.integer);
    ASSERT_GE(der.Count(), 2 + integer.size());
    EXPECT_EQ(ToHex(der.GetData() + 2, integer.size()), std::string(row.integer));
    ASNCryptokiElemInfo back;
    const std::vector<unsigned char> bytes = Bytes(der);
    EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes), nullptr), der.Count());
    EXPECT_EQ(back.Type, row.readBack);
  }
}

TEST(ASNCryptokiElemInfo, LenientReads) {
  struct Row {
    const char* name;
    const char* hex;
    unsigned int used;
    unsigned int type;
    const char* value;
  };
  const Row rows[] = {
      // An OCTET STRING as the number (octets taken least significant first) and an
      // INTEGER as the value (its decoded form, reversed).
      {"item tags are not checked", "30 08 04 02 01 02 02 02 03 04", 10, 0x0201u, "04 03"},
      {"further items are ignored", "30 09 02 01 05 04 01 41 02 01 07", 11, 5, "41"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    ASNCryptokiElemInfo elem;
    EXPECT_EQ(elem.ReadData(bytes.data(), Size(bytes), nullptr), row.used);
    EXPECT_EQ(elem.Type, row.type);
    EXPECT_EQ(ToHex(elem.Value), row.value);
  }
}

TEST(ASNCryptokiElemInfo, IntegerWiderThanTheFieldIsRefused) {
  // A leading zero octet is dropped by the decoder, so five octets with it fit.
  const std::vector<unsigned char> fits = HexBytes("30 0A 02 05 00 FF FF FF FF 04 01 41");
  ASNCryptokiElemInfo elem;
  EXPECT_EQ(elem.ReadData(fits.data(), Size(fits), nullptr), 12u);
  EXPECT_EQ(elem.Type, 0xFFFFFFFFu);

  const std::vector<unsigned char> wide = HexBytes("30 0A 02 05 01 00 00 00 00 04 01 41");
  elem.Type = 9;
  elem.Value = Hex("EE");
  int code = -1;
  EXPECT_EQ(elem.ReadData(wide.data(), Size(wide), &code), 0u);
  EXPECT_EQ(code, 206);
  EXPECT_EQ(elem.Type, 0u);              // set to 0 before the item was read
  EXPECT_EQ(ToHex(elem.Value), "EE");    // not reached
  ExpectStatus([&] { elem.ReadData(wide.data(), Size(wide), nullptr); }, 206, kElemRead);
}

TEST(ASNCryptokiElemInfo, ReadFailures) {
  struct Row {
    const char* name;
    const char* hex;
    int code;
    const char* where;
    unsigned int typeAfter;
  };
  const Row rows[] = {
      {"one item", "30 03 02 01 05", 206, kElemSplit, 9},
      {"no items", "30 00", 206, kElemSplit, 9},
      {"not constructed", "04 03 02 01 05", 205, kSplit, 9},
      {"one octet", "30", 206, kRecordRead, 9},
      {"indefinite item", "30 09 30 80 02 01 05 00 00 04 00", 37, kRecordRead, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ASNCryptokiElemInfo elem;
    elem.Type = 9;
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    int code = -1;
    EXPECT_EQ(elem.ReadData(bytes.data(), Size(bytes), &code), 0u);
    EXPECT_EQ(code, row.code);
    EXPECT_EQ(elem.Type, row.typeAfter);
    elem.Type = 9;
    ExpectStatus([&] { elem.ReadData(bytes.data(), Size(bytes), nullptr); }, row.code,
                 row.where);
  }
}

TEST(ASNCryptokiElemInfo, SuccessClearsTheErrorSlot) {
  const std::vector<unsigned char> bytes = HexBytes("30 06 02 01 05 04 01 41");
  ASNCryptokiElemInfo elem;
  int code = 77;
  elem.ReadData(bytes.data(), Size(bytes), &code);
  EXPECT_EQ(code, 0);
}

TEST(ASNCryptokiElemInfo, EveryProperPrefixIsRefused) {
  const std::vector<unsigned char> bytes = HexBytes("30 09 02 02 01 00 04 03 AB CD EF");
  EXPECT_TRUE(AcceptedPrefixes(bytes, [](const unsigned char* d, unsigned int n) {
                ASNCryptokiElemInfo elem;
                int code = 0;
                elem.ReadData(d, n, &code);
                return code == 0;
              }).empty());
}

// ---- ASNCryptokiContInfo ----

TEST(ASNCryptokiContInfo, StartsEmpty) {
  ASNCryptokiContInfo cont;
  EXPECT_EQ(cont.Name.Length(), 0u);
  EXPECT_EQ(cont.Number1, 0u);
  EXPECT_EQ(cont.Number2, 0u);
  EXPECT_TRUE(cont.Elements.empty());
}

TEST(ASNCryptokiContInfo, WritesAndReadsBackWithoutElements) {
  ASNCryptokiContInfo cont;
  cont.Name = CRUVString("A");
  cont.Number1 = 1;
  cont.Number2 = 2;
  int code = -1;
  const IdentObj der = cont.WriteData(&code);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(ToHex(der), "30 0B 04 01 41 02 01 01 02 01 02 30 00");

  ASNCryptokiContInfo back;
  back.Elements = {Hex("05 00")};
  const std::vector<unsigned char> bytes = Bytes(der);
  code = -1;
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes), &code), 0u);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(std::string(back.Name), "A");
  EXPECT_EQ(back.Number1, 1u);
  EXPECT_EQ(back.Number2, 2u);
  EXPECT_TRUE(back.Elements.empty());
}

TEST(ASNCryptokiContInfo, ElementsRoundTrip) {
  ASNCryptokiContInfo cont;
  cont.Name = CRUVString("container-01");
  cont.Number1 = 0x80;
  cont.Number2 = 0x12345678;
  ASNCryptokiElemInfo elem;
  elem.Type = 3;
  elem.Value = Hex("DE AD BE EF");
  cont.Elements = {elem.WriteData(nullptr), Hex("02 01 07"), Hex("30 03 01 01 FF")};
  const IdentObj der = cont.WriteData(nullptr);

  ASNCryptokiContInfo back;
  const std::vector<unsigned char> bytes = Bytes(der);
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes), nullptr), 0u);
  EXPECT_EQ(std::string(back.Name), "container-01");
  EXPECT_EQ(back.Number1, 0x80u);
  EXPECT_EQ(back.Number2, 0x12345678u);
  EXPECT_EQ(back.Elements, cont.Elements);
  EXPECT_EQ(back.WriteData(nullptr), der);
}

TEST(ASNCryptokiContInfo, AnEmptyElementEndsTheList) {
  ASNCryptokiContInfo cont;
  cont.Elements = {Hex("02 01 07"), Hex("04 00"), Hex("02 01 08")};
  const IdentObj der = cont.WriteData(nullptr);
  ASNCryptokiContInfo back;
  const std::vector<unsigned char> bytes = Bytes(der);
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes), nullptr), 0u);
  const std::list<IdentObj> kept = {Hex("02 01 07")};
  EXPECT_EQ(back.Elements, kept);
}

TEST(ASNCryptokiContInfo, TheInnerSplitCodeIsReturnedNotStored) {
  // The fourth item's contents 02 05 01 run past their end.
  const std::vector<unsigned char> bytes = HexBytes("30 0E 04 01 41 02 01 01 02 01 02 30 03 02 05 01");
  ASNCryptokiContInfo cont;
  cont.Elements = {Hex("05 00")};
  int code = -1;
  EXPECT_EQ(cont.ReadData(bytes.data(), Size(bytes), &code), 206u);
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(cont.Elements.empty());  // the split clears the list first
  EXPECT_EQ(std::string(cont.Name), "A");
  EXPECT_EQ(cont.ReadData(bytes.data(), Size(bytes), nullptr), 206u);  // not thrown
}

TEST(ASNCryptokiContInfo, TwoOrThreeItemsAreRefusedBeforeAnythingChanges) {
  struct Row {
    const char* name;
    const char* hex;
  };
  const Row rows[] = {
      {"one item", "30 03 04 01 41"},
      {"two items", "30 06 04 01 41 02 01 01"},
      {"three items", "30 09 04 01 41 02 01 01 02 01 02"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ASNCryptokiContInfo cont;
    cont.Name = CRUVString("old");
    cont.Number1 = 7;
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    int code = -1;
    EXPECT_EQ(cont.ReadData(bytes.data(), Size(bytes), &code), 0u);
    EXPECT_EQ(code, 206);
    EXPECT_EQ(std::string(cont.Name), "old");
    EXPECT_EQ(cont.Number1, 7u);
    ExpectStatus([&] { cont.ReadData(bytes.data(), Size(bytes), nullptr); }, 206, kContSplit);
  }
}

TEST(ASNCryptokiContInfo, NumbersWiderThanTheFieldAreRefused) {
  const std::vector<unsigned char> bytes =
      HexBytes("30 0F 04 01 41 02 01 01 02 05 01 00 00 00 00 30 00");
  ASNCryptokiContInfo cont;
  cont.Number2 = 7;
  int code = -1;
  EXPECT_EQ(cont.ReadData(bytes.data(), Size(bytes), &code), 0u);
  EXPECT_EQ(code, 206);
  EXPECT_EQ(std::string(cont.Name), "A");  // set before the failure, kept
  EXPECT_EQ(cont.Number1, 1u);
  EXPECT_EQ(cont.Number2, 0u);
  ExpectStatus([&] { cont.ReadData(bytes.data(), Size(bytes), nullptr); }, 206, kContRead);
}

TEST(ASNCryptokiContInfo, ReadFailures) {
  struct Row {
    const char* name;
    const char* hex;
    int code;
    const char* where;
  };
  const Row rows[] = {
      {"no items", "30 00", 206, kContSplit},
      {"not constructed", "04 01 41", 205, kSplit},
      {"one octet", "30", 206, kRecordRead},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ASNCryptokiContInfo cont;
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    int code = -1;
    EXPECT_EQ(cont.ReadData(bytes.data(), Size(bytes), &code), 0u);
    EXPECT_EQ(code, row.code);
    ExpectStatus([&] { cont.ReadData(bytes.data(), Size(bytes), nullptr); }, row.code,
                 row.where);
  }
}

TEST(ASNCryptokiContInfo, EveryProperPrefixIsRefused) {
  const std::vector<unsigned char> bytes =
      HexBytes("30 10 04 01 41 02 01 01 02 01 02 30 05 02 01 07 05 00");
  EXPECT_TRUE(AcceptedPrefixes(bytes, [](const unsigned char* d, unsigned int n) {
                ASNCryptokiContInfo cont;
                int code = 0;
                const unsigned int split = cont.ReadData(d, n, &code);
                return code == 0 && split == 0;
              }).empty());
}

}  // namespace
