#include "keyasn/keys/export_key.h"

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
using keyasn::testing::ReadsWithoutStatus;
using keyasn::testing::Size;
using keyasn::testing::ToHex;

constexpr char kExportRead[] = "CASNExportKeyInfo::ReadData";
constexpr char kExchangeRead[] = "CASNExchangeKeyData::ReadData ASNTGetSequence";
constexpr char kProxyRead[] = "CASNProxyKeyExchangeData::ReadData ASNTGetSequence";
constexpr char kSplit[] = "ASNTGetSequence";
constexpr char kRecordRead[] = "CASNTBaseRecord::ReadASNInfo";

// ---- CASNExportKeyInfo ----

TEST(CASNExportKeyInfo, WithoutExtraElementWritesOneItem) {
  CASNExportKeyInfo info;
  info.keyElement = Hex("02 01 05");
  const IdentObj der = info.WriteData();
  EXPECT_EQ(ToHex(der), "30 03 02 01 05");

  CASNExportKeyInfo back;
  back.extraElement = Hex("04 01 FF");
  const std::vector<unsigned char> bytes = Bytes(der);
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes)), 2u);  // the header only
  EXPECT_EQ(ToHex(back.keyElement), "02 01 05");
  EXPECT_EQ(ToHex(back.extraElement), "04 01 FF");  // left as it was
}

TEST(CASNExportKeyInfo, BothElementsRoundTrip) {
  CASNExportKeyInfo info;
  info.keyElement = Hex("30 03 02 01 05");
  info.extraElement = Hex("04 02 AB CD");
  const IdentObj der = info.WriteData();
  EXPECT_EQ(ToHex(der), "30 09 30 03 02 01 05 04 02 AB CD");
  CASNExportKeyInfo back;
  const std::vector<unsigned char> bytes = Bytes(der);
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes)), 2u);
  EXPECT_EQ(back.keyElement, info.keyElement);
  EXPECT_EQ(back.extraElement, info.extraElement);
  EXPECT_EQ(back.WriteData(), der);
}

TEST(CASNExportKeyInfo, ReturnsTheHeaderSizeForEveryLengthForm) {
  struct Row {
    unsigned int keySize;
    unsigned int header;
  };
  for (const Row& row : {Row{1, 2}, Row{125, 2}, Row{126, 3}, Row{252, 3}, Row{253, 4},
                         Row{65531, 4}, Row{65532, 5}}) {
    SCOPED_TRACE(row.keySize);
    CASNExportKeyInfo info;
    std::vector<unsigned char> contents(row.keySize, 0x42);
    CASNExportKeyInfo holder;  // a key element of the wanted size: an OCTET STRING
    // 04 L ...: the element's own header grows with its size.
    std::vector<unsigned char> element = {0x04};
    const unsigned int n = row.keySize;
    if (n < 128) {
      element.push_back(static_cast<unsigned char>(n));
    } else if (n < 256) {
      element.insert(element.end(), {0x81, static_cast<unsigned char>(n)});
    } else {
      element.insert(element.end(), {0x82, static_cast<unsigned char>(n >> 8),
                                     static_cast<unsigned char>(n)});
    }
    element.insert(element.end(), contents.begin(), contents.end());
    info.keyElement = IdentObj(element.data(), Size(element));
    const IdentObj der = info.WriteData();
    const std::vector<unsigned char> bytes = Bytes(der);
    EXPECT_EQ(holder.ReadData(bytes.data(), Size(bytes)), row.header);
    EXPECT_EQ(holder.keyElement, info.keyElement);
  }
}

TEST(CASNExportKeyInfo, OnlyTheTagNumberIsTested) {
  // Context-specific primitive [16] (0x90) is taken like a SEQUENCE.
  const std::vector<unsigned char> bytes = HexBytes("90 03 02 01 05");
  CASNExportKeyInfo info;
  EXPECT_EQ(info.ReadData(bytes.data(), Size(bytes)), 2u);
  EXPECT_EQ(ToHex(info.keyElement), "02 01 05");
}

TEST(CASNExportKeyInfo, FurtherElementsAreIgnored) {
  const std::vector<unsigned char> bytes = HexBytes("30 09 02 01 05 04 01 41 02 01 07");
  CASNExportKeyInfo info;
  EXPECT_EQ(info.ReadData(bytes.data(), Size(bytes)), 2u);
  EXPECT_EQ(ToHex(info.keyElement), "02 01 05");
  EXPECT_EQ(ToHex(info.extraElement), "04 01 41");
}

TEST(CASNExportKeyInfo, AnEmptyItemEndsTheElements) {
  // The empty OCTET STRING ends the split: the INTEGER behind it is not seen.
  const std::vector<unsigned char> bytes = HexBytes("30 08 02 01 05 04 00 02 01 07");
  CASNExportKeyInfo info;
  info.extraElement = Hex("05 00");
  EXPECT_EQ(info.ReadData(bytes.data(), Size(bytes)), 2u);
  EXPECT_EQ(ToHex(info.keyElement), "02 01 05");
  EXPECT_EQ(ToHex(info.extraElement), "05 00");
}

TEST(CASNExportKeyInfo, NoInputChangesNothing) {
  CASNExportKeyInfo info;
  info.keyElement = Hex("05 00");
  const std::vector<unsigned char> bytes = HexBytes("30 03 02 01 05");
  EXPECT_EQ(info.ReadData(nullptr, 5), 0u);
  EXPECT_EQ(info.ReadData(bytes.data(), 0), 0u);
  EXPECT_EQ(ToHex(info.keyElement), "05 00");
}

TEST(CASNExportKeyInfo, ContentsPastTheInput) {
  // Only the contents length is compared with the input. Contents that run past
  // the input stand when an empty item ends them within it, and are refused when
  // the items would go on beyond it.
  const std::vector<unsigned char> ends = HexBytes("30 06 02 01 05 05 00");
  CASNExportKeyInfo info;
  EXPECT_EQ(info.ReadData(ends.data(), Size(ends)), 2u);
  EXPECT_EQ(ToHex(info.keyElement), "02 01 05");

  const std::vector<unsigned char> runs = HexBytes("30 05 02 01 05");
  ExpectStatus([&] { info.ReadData(runs.data(), Size(runs)); }, 206, kExportRead);
}

TEST(CASNExportKeyInfo, ReadFailures) {
  struct Row {
    const char* name;
    const char* hex;
    int code;
  };
  const Row rows[] = {
      {"one octet", "30", 206},
      {"bad length octets", "30 89", 206},
      {"high tag number not ending", "3F 81 82", 205},
      {"a SET", "31 03 02 01 05", 206},
      {"an INTEGER", "02 01 05", 206},
      {"input below the contents length", "30 04 02 01 05", 206},
      {"indefinite length", "30 80 02 01 05 00 00", 206},
      {"no elements", "30 00", 206},
      {"an empty first element", "30 02 05 00", 206},
      {"an item beyond the contents", "30 03 02 02 05 07", 206},
      {"an item's header cut", "30 04 02 01 05 02 00", 206},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNExportKeyInfo info;
    info.keyElement = Hex("05 00");
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    ExpectStatus([&] { info.ReadData(bytes.data(), Size(bytes)); }, row.code, kExportRead);
    EXPECT_EQ(ToHex(info.keyElement), "05 00");
  }
}

TEST(CASNExportKeyInfo, EveryProperPrefixIsRefused) {
  const std::vector<unsigned char> bytes = HexBytes("30 0A 30 03 02 01 05 04 03 AB CD EF");
  EXPECT_TRUE(AcceptedPrefixes(bytes, [](const unsigned char* d, unsigned int n) {
                CASNExportKeyInfo info;
                return info.ReadData(d, n) != 0;
              }).empty());
}

// ---- CASNExchangeKeyData ----

// A read that fails: the code and place thrown, and keyElement afterwards (it
// starts as 05 00).
struct FailedRead {
  const char* name;
  const char* hex;
  int code;
  const char* where;
  const char* keyAfter;
};

template <typename Record>
void ExpectFailedReads(const std::vector<FailedRead>& rows) {
  for (const FailedRead& row : rows) {
    SCOPED_TRACE(row.name);
    Record data;
    data.keyElement = Hex("05 00");
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    ExpectStatus([&] { data.ReadData(bytes.data(), Size(bytes)); }, row.code, row.where);
    EXPECT_EQ(ToHex(data.keyElement), row.keyAfter);
  }
}


TEST(CASNExchangeKeyData, WithoutItemsWritesOnlyTheExportKeyInfo) {
  CASNExchangeKeyData data;
  data.keyElement = Hex("02 01 05");
  EXPECT_EQ(ToHex(data.WriteData()), "30 05 30 03 02 01 05");
}

TEST(CASNExchangeKeyData, RoundTrip) {
  CASNExchangeKeyData data;
  data.keyElement = Hex("02 01 05");
  data.extraElement = Hex("04 01 41");
  data.exchangeItems = {Hex("02 01 07"), Hex("04 00"), Hex("30 03 01 01 FF")};
  const IdentObj der = data.WriteData();
  EXPECT_EQ(ToHex(der), "30 14 30 06 02 01 05 04 01 41 30 0A 02 01 07 04 00 30 03 01 01 FF");

  CASNExchangeKeyData back;
  const std::vector<unsigned char> bytes = Bytes(der);
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes)), der.Count());
  EXPECT_EQ(back.keyElement, data.keyElement);
  EXPECT_EQ(back.extraElement, data.extraElement);
  EXPECT_EQ(back.exchangeItems, data.exchangeItems);
  EXPECT_EQ(back.WriteData(), der);
}

TEST(CASNExchangeKeyData, ReadingAgainAppendsTheItems) {
  const std::vector<unsigned char> bytes = HexBytes("30 0A 30 03 02 01 05 30 03 02 01 07");
  CASNExchangeKeyData data;
  EXPECT_EQ(data.ReadData(bytes.data(), Size(bytes)), 12u);
  EXPECT_EQ(data.ReadData(bytes.data(), Size(bytes)), 12u);
  const std::list<IdentObj> twice = {Hex("02 01 07"), Hex("02 01 07")};
  EXPECT_EQ(data.exchangeItems, twice);
}

TEST(CASNExchangeKeyData, FurtherElementsAreIgnoredAndTrailingOctetsNotConsumed) {
  const std::vector<unsigned char> bytes =
      HexBytes("30 0D 30 03 02 01 05 30 03 02 01 07 02 01 09 FF FF");
  CASNExchangeKeyData data;
  EXPECT_EQ(data.ReadData(bytes.data(), Size(bytes)), 15u);
  ASSERT_EQ(data.exchangeItems.size(), 1u);
  EXPECT_EQ(ToHex(data.exchangeItems.front()), "02 01 07");
}

TEST(CASNExchangeKeyData, ReadFailures) {
  ExpectFailedReads<CASNExchangeKeyData>({
      {"no elements", "30 00", 206, kExchangeRead, "05 00"},
      {"not constructed", "04 01 00", 205, kSplit, "05 00"},
      {"one octet", "30", 206, kRecordRead, "05 00"},
      {"export key info not a SEQUENCE", "30 05 31 03 02 01 05", 206, kExportRead, "05 00"},
      {"item list not constructed", "30 08 30 03 02 01 05 02 01 07", 205, kSplit, "02 01 05"},
  });
}

TEST(CASNExchangeKeyData, EveryProperPrefixIsRefused) {
  const std::vector<unsigned char> bytes = HexBytes("30 0A 30 03 02 01 05 30 03 02 01 07");
  EXPECT_TRUE(AcceptedPrefixes(bytes, ReadsWithoutStatus<CASNExchangeKeyData>).empty());
}

// ---- CASNProxyKeyExchangeData ----

TEST(CASNProxyKeyExchangeData, RoundTrip) {
  CASNProxyKeyExchangeData data;
  data.keyElement = Hex("02 01 05");
  data.proxyData = Hex("AB CD");
  const IdentObj der = data.WriteData();
  EXPECT_EQ(ToHex(der), "30 09 30 03 02 01 05 04 02 AB CD");

  CASNProxyKeyExchangeData back;
  back.extraElement = Hex("05 00");
  const std::vector<unsigned char> bytes = Bytes(der);
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes)), 11u);
  EXPECT_EQ(ToHex(back.keyElement), "02 01 05");
  EXPECT_EQ(ToHex(back.extraElement), "05 00");
  EXPECT_EQ(ToHex(back.proxyData), "AB CD");
  EXPECT_EQ(back.WriteData(), IdentObj(Hex("30 0B 30 05 02 01 05 05 00 04 02 AB CD")));
}

TEST(CASNProxyKeyExchangeData, EmptyProxyDataIsAnEmptyOctetString) {
  CASNProxyKeyExchangeData data;
  data.keyElement = Hex("02 01 05");
  const IdentObj der = data.WriteData();
  EXPECT_EQ(ToHex(der), "30 07 30 03 02 01 05 04 00");
  CASNProxyKeyExchangeData back;
  back.proxyData = Hex("01");
  const std::vector<unsigned char> bytes = Bytes(der);
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes)), 9u);
  EXPECT_EQ(back.proxyData.Count(), 0u);
}

TEST(CASNProxyKeyExchangeData, TheTagOfTheSecondElementIsNotExamined) {
  // An INTEGER there gives its decoded value, least significant octet first.
  const std::vector<unsigned char> bytes = HexBytes("30 09 30 03 02 01 05 02 02 01 02");
  CASNProxyKeyExchangeData data;
  EXPECT_EQ(data.ReadData(bytes.data(), Size(bytes)), 11u);
  EXPECT_EQ(ToHex(data.proxyData), "02 01");
}

TEST(CASNProxyKeyExchangeData, ReadFailures) {
  ExpectFailedReads<CASNProxyKeyExchangeData>({
      {"three elements", "30 0B 30 03 02 01 05 04 01 41 04 01 42", 206, kProxyRead, "05 00"},
      {"one element", "30 05 30 03 02 01 05", 206, kProxyRead, "05 00"},
      {"no elements", "30 00", 206, kProxyRead, "05 00"},
      {"not constructed", "04 01 00", 205, kSplit, "05 00"},
      {"export key info not a SEQUENCE", "30 08 04 03 02 01 05 04 01 41", 206, kExportRead,
       "05 00"},
  });
}

TEST(CASNProxyKeyExchangeData, EveryProperPrefixIsRefused) {
  const std::vector<unsigned char> bytes = HexBytes("30 09 30 03 02 01 05 04 02 AB CD");
  EXPECT_TRUE(AcceptedPrefixes(bytes, ReadsWithoutStatus<CASNProxyKeyExchangeData>).empty());
}

TEST(ExportRecords, CopiesAreDeep) {
  CASNExchangeKeyData a;
  a.keyElement = Hex("02 01 05");
  a.exchangeItems = {Hex("02 01 07")};
  CASNExchangeKeyData b = a;
  b.keyElement.GetData()[2] = 0x06;
  b.exchangeItems.front().GetData()[2] = 0x08;
  EXPECT_EQ(ToHex(a.keyElement), "02 01 05");
  EXPECT_EQ(ToHex(a.exchangeItems.front()), "02 01 07");
  a = b;
  EXPECT_EQ(a.exchangeItems, b.exchangeItems);
  CASNProxyKeyExchangeData p;
  p.proxyData = Hex("01");
  CASNProxyKeyExchangeData q(p);
  q.proxyData.GetData()[0] = 2;
  EXPECT_EQ(ToHex(p.proxyData), "01");
}

}  // namespace
