#include "keyasn/keys/key_info.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "keyasn/codec/error_codes.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::Bytes;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::Raised;
using keyasn::testing::ReadHex;
using keyasn::testing::ToHex;

constexpr int kUntouched = -12345;

// A key info with every member set, and its encoding.
ASNKeyInfo Full() {
  ASNKeyInfo info;
  info.Flags = 0x10;
  info.Number = 1;
  info.AlgorithmId.SetObjID(Hex("2A"));
  info.Octets1 = Hex("11 22");
  info.Octets2 = Hex("22");
  info.Octets3 = Hex("33");
  info.Octets4 = Hex("44");
  info.Octets5 = Hex("55");
  info.Validity.SetEncoded(Hex("30 00"));
  info.KeyBits = CRUVCryptBitBlob(Hex("A0 B0 C0").GetData(), 3, 4);
  info.Octets8 = Hex("88");
  info.Octets9 = Hex("99");
  return info;
}
const char kFull[] =
    "30 3F 02 01 10 02 01 01 A0 07 30 05 06 01 2A 05 00 A1 04 04 02 11 22 A2 03 04 01 22"
    " A3 03 04 01 33 A4 03 04 01 44 A5 03 04 01 55 A6 02 30 00 A7 06 03 04 04 A0 B0 C0"
    " A8 03 04 01 88 A9 03 04 01 99";

void ExpectSame(const ASNKeyInfo& a, const ASNKeyInfo& b) {
  EXPECT_EQ(a.Flags, b.Flags);
  EXPECT_EQ(a.Number, b.Number);
  EXPECT_TRUE(a.AlgorithmId == b.AlgorithmId);
  EXPECT_EQ(ToHex(a.Octets1), ToHex(b.Octets1));
  EXPECT_EQ(ToHex(a.Octets2), ToHex(b.Octets2));
  EXPECT_EQ(ToHex(a.Octets3), ToHex(b.Octets3));
  EXPECT_EQ(ToHex(a.Octets4), ToHex(b.Octets4));
  EXPECT_EQ(ToHex(a.Octets5), ToHex(b.Octets5));
  EXPECT_EQ(ToHex(a.Validity.GetEncoded()), ToHex(b.Validity.GetEncoded()));
  EXPECT_EQ(ToHex(a.KeyBits), ToHex(b.KeyBits));
  EXPECT_EQ(a.KeyBits.GetUnusedBits(), b.KeyBits.GetUnusedBits());
  EXPECT_EQ(ToHex(a.Octets8), ToHex(b.Octets8));
  EXPECT_EQ(ToHex(a.Octets9), ToHex(b.Octets9));
}

TEST(ASNKeyInfo, DefaultWritesTwoIntegersAndReadsBack) {
  const ASNKeyInfo info;
  EXPECT_EQ(info.Flags, 0u);
  EXPECT_EQ(info.Number, 0u);
  EXPECT_EQ(info.KeyBits.GetUnusedBits(), 0u);
  int err = kUntouched;
  const IdentObj encoding = info.WriteData(&err);
  EXPECT_EQ(err, 0);  // the join stores its code
  EXPECT_EQ(ToHex(encoding), "30 06 02 01 00 02 01 00");
  ASNKeyInfo back = Full();
  back.Octets8.Empty();
  back.Octets9.Empty();
  err = kUntouched;
  EXPECT_EQ(ReadHex(back, ToHex(encoding), &err), 8u);
  EXPECT_EQ(err, kUntouched);
  ExpectSame(back, info);
}

TEST(ASNKeyInfo, WritesEveryMemberInAscendingTagOrder) {
  const ASNKeyInfo info = Full();
  EXPECT_EQ(ToHex(info.WriteData(nullptr)), ToHex(Hex(kFull)));
  ASNKeyInfo back;
  EXPECT_EQ(ReadHex(back, kFull, nullptr), 65u);
  ExpectSame(back, info);
  EXPECT_EQ(ToHex(back.WriteData(nullptr)), ToHex(Hex(kFull)));
}

TEST(ASNKeyInfo, WriterSkipsEmptyMembers) {
  struct Row {
    const char* name;
    ASNKeyInfo info;
    const char* encoding;
  };
  std::vector<Row> rows;
  {
    ASNKeyInfo info;
    info.AlgorithmId.SetAddInfo(Hex("05 00"));  // parameters without an identifier
    rows.push_back({"algorithm without identifier", info, "30 06 02 01 00 02 01 00"});
  }
  {
    ASNKeyInfo info;
    info.KeyBits.SetUnusedBits(3);  // unused bits without octets
    rows.push_back({"empty key bits", info, "30 06 02 01 00 02 01 00"});
  }
  {
    ASNKeyInfo info;
    info.Octets5 = Hex("55");
    info.Octets2 = Hex("22");
    rows.push_back({"only some octets", info,
                    "30 10 02 01 00 02 01 00 A2 03 04 01 22 A5 03 04 01 55"});
  }
  {
    ASNKeyInfo info;
    info.KeyBits = CRUVCryptBitBlob(Hex("FF").GetData(), 1, 0x107);  // low octet of the count
    rows.push_back({"unused bit count written as its low octet", info,
                    "30 0C 02 01 00 02 01 00 A7 04 03 02 07 FF"});
  }
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ToHex(row.info.WriteData(nullptr)), ToHex(Hex(row.encoding)));
  }
}

TEST(ASNKeyInfo, IntegersAreWrittenFromTheirFourOctets) {
  struct Row {
    unsigned int value;
    const char* integer;
    unsigned int readBack;
  } rows[] = {
      {0, "02 01 00", 0},
      {0x7F, "02 01 7F", 0x7F},
      {0x80, "02 02 00 80", 0x80},
      {0x12345678, "02 04 12 34 56 78", 0x12345678},
      {0x80000000, "02 04 80 00 00 00", 0x80000000},
      // The encoder never widens: an all-ones word shrinks to one octet and reads
      // back as 0xFF (kept for compatibility).
      {0xFFFFFFFF, "02 01 FF", 0xFF},
      {0xFFFFFF80, "02 01 80", 0x80},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.integer);
    ASNKeyInfo info;
    info.Flags = row.value;
    info.Number = row.value;
    const std::string integer = row.integer;
    const std::vector<unsigned char> encoding = Bytes(info.WriteData(nullptr));
    const std::string expected = ToHex(Hex(integer + integer));
    EXPECT_EQ(ToHex(std::vector<unsigned char>(encoding.begin() + 2, encoding.end())), expected);
    ASNKeyInfo back;
    back.ReadData(encoding.data(), static_cast<unsigned int>(encoding.size()), nullptr);
    EXPECT_EQ(back.Flags, row.readBack);
    EXPECT_EQ(back.Number, row.readBack);
  }
}

TEST(ASNKeyInfo, ReadsMembers) {
  struct Row {
    const char* name;
    const char* input;
    unsigned int result;
    const char* member;  // which member to look at
    const char* value;
  } rows[] = {
      {"[1] INTEGER widened to 16 octets", "30 0B 02 01 00 02 01 00 A1 03 02 01 05", 13, "1",
       "05 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
      {"[1] INTEGER with the 0x10 flag still 16 octets", "30 0B 02 01 10 02 01 00 A1 03 02 01 05",
       13, "1", "05 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
      {"[2] INTEGER 16 octets without the flag", "30 0B 02 01 00 02 01 00 A2 03 02 01 05", 13,
       "2", "05 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
      {"[2] INTEGER 20 octets with the flag", "30 0B 02 01 10 02 01 00 A2 03 02 01 05", 13, "2",
       "05 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
      {"[2] INTEGER with the flag among others", "30 0B 02 01 F1 02 01 00 A2 03 02 01 05", 13, "2",
       "05 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
      {"[1] INTEGER decoded least significant octet first",
       "30 0C 02 01 00 02 01 00 A1 04 02 02 01 02", 14, "1",
       "02 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
      {"[1] INTEGER of 15 octets widened",
       "30 19 02 01 00 02 01 00 A1 11 02 0F 0F 0E 0D 0C 0B 0A 09 08 07 06 05 04 03 02 01", 27, "1",
       "01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 00"},
      {"[1] INTEGER of 16 octets taken as it stands",
       "30 1A 02 01 00 02 01 00 A1 12 02 10 10 0F 0E 0D 0C 0B 0A 09 08 07 06 05 04 03 02 01", 28,
       "1", "01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10"},
      {"[2] INTEGER of 17 octets taken as it stands with the flag",
       "30 1B 02 01 10 02 01 00 A2 13 02 11 11 10 0F 0E 0D 0C 0B 0A 09 08 07 06 05 04 03 02 01",
       29, "2", "01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11"},
      {"[1] OCTET STRING as it stands", "30 0B 02 01 10 02 01 00 A1 03 04 01 05", 13, "1", "05"},
      {"[2] any other type gives its value", "30 0C 02 01 10 02 01 00 A2 04 03 02 00 05", 14, "2",
       "00 05"},
      {"[3] type not checked", "30 0B 02 01 00 02 01 00 A3 03 02 01 05", 13, "3", "05"},
      {"[4]", "30 0C 02 01 00 02 01 00 A4 04 04 02 44 45", 14, "4", "44 45"},
      {"[5]", "30 0B 02 01 00 02 01 00 A5 03 04 01 55", 13, "5", "55"},
      {"[8]", "30 0B 02 01 00 02 01 00 A8 03 04 01 88", 13, "8", "88"},
      {"[9]", "30 0B 02 01 00 02 01 00 A9 03 04 01 99", 13, "9", "99"},
      {"[6] contents kept as they stand", "30 0C 02 01 00 02 01 00 A6 04 01 02 03 04", 14, "6",
       "01 02 03 04"},
      {"[7] unused bits and blob", "30 0D 02 01 00 02 01 00 A7 05 03 03 05 E0 F0", 15, "7",
       "E0 F0"},
      {"[7] empty bit string value reads as an empty blob", "30 0A 02 01 00 02 01 00 A7 02 03 00",
       12, "7", ""},
      {"[7] OCTET STRING: its first octet counts the unused bits",
       "30 0C 02 01 00 02 01 00 A7 04 04 02 07 FF", 14, "7", "FF"},
      {"[7] context-specific BIT STRING", "30 0C 02 01 00 02 01 00 A7 04 83 02 07 FF", 14, "7",
       "FF"},
      {"[7] INTEGER: its decoded value", "30 0C 02 01 00 02 01 00 A7 04 02 02 01 02", 14, "7",
       "01"},
      {"a tag met twice leaves the later value",
       "30 10 02 01 00 02 01 00 A3 03 04 01 01 A3 03 04 01 02", 18, "3", "02"},
      {"primitive context tag accepted", "30 0B 02 01 00 02 01 00 83 03 04 01 05", 13, "3", "05"},
      {"tags above 9 are skipped", "30 10 02 01 00 02 01 00 AA 03 04 01 FF A3 03 04 01 01", 18,
       "3", "01"},
      {"high tag numbers are skipped", "30 11 02 01 00 02 01 00 BF 1F 03 04 01 FF A3 03 04 01 01",
       19, "3", "01"},
      {"outer length counts, not the data behind", "30 06 02 01 00 02 01 00 A3 03 04 01 01", 8,
       "3", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ASNKeyInfo info;
    int err = kUntouched;
    EXPECT_EQ(ReadHex(info, row.input, &err), row.result);
    EXPECT_EQ(err, kUntouched);
    const std::string member = row.member;
    const IdentObj* got = member == "1"   ? &info.Octets1
                          : member == "2" ? &info.Octets2
                          : member == "3" ? &info.Octets3
                          : member == "4" ? &info.Octets4
                          : member == "5" ? &info.Octets5
                          : member == "6" ? &info.Validity.GetEncoded()
                          : member == "7" ? static_cast<const IdentObj*>(&info.KeyBits)
                          : member == "8" ? &info.Octets8
                                          : &info.Octets9;
    EXPECT_EQ(ToHex(*got), ToHex(Hex(row.value)));
  }
}

TEST(ASNKeyInfo, ReadsBitStringUnusedCount) {
  ASNKeyInfo info;
  ReadHex(info, "30 0D 02 01 00 02 01 00 A7 05 03 03 05 E0 F0", nullptr);
  EXPECT_EQ(info.KeyBits.GetUnusedBits(), 5u);
  ReadHex(info, "30 0A 02 01 00 02 01 00 A7 02 03 00", nullptr);
  EXPECT_EQ(info.KeyBits.Count(), 0u);
  EXPECT_EQ(info.KeyBits.GetUnusedBits(), 0u);
}

TEST(ASNKeyInfo, ReadsAnyOrder) {
  ASNKeyInfo info;
  EXPECT_EQ(ReadHex(info,
                 "30 1B 02 01 07 02 01 09 A5 03 04 01 55 A1 03 04 01 11"
                 " A0 09 30 07 06 01 2A 04 02 AB CD",
                 nullptr),
            29u);
  EXPECT_EQ(info.Flags, 7u);
  EXPECT_EQ(info.Number, 9u);
  EXPECT_EQ(ToHex(info.Octets5), "55");
  EXPECT_EQ(ToHex(info.Octets1), "11");
  EXPECT_EQ(ToHex(info.AlgorithmId.GetObjID()), "2A");
  EXPECT_EQ(ToHex(info.AlgorithmId.GetAddInfo()), "04 02 AB CD");
}

TEST(ASNKeyInfo, ReadResetsAllButTheLastTwoOctets) {
  ASNKeyInfo info = Full();
  EXPECT_EQ(ReadHex(info, "30 06 02 01 03 02 01 04", nullptr), 8u);
  EXPECT_EQ(info.Flags, 3u);
  EXPECT_EQ(info.Number, 4u);
  EXPECT_EQ(info.AlgorithmId.GetObjID().Count(), 0u);
  EXPECT_EQ(info.Octets1.Count() + info.Octets2.Count() + info.Octets3.Count() +
                info.Octets4.Count() + info.Octets5.Count(),
            0u);
  EXPECT_EQ(info.Validity.GetEncoded().Count(), 0u);
  EXPECT_EQ(info.KeyBits.Count(), 0u);
  EXPECT_EQ(info.KeyBits.GetUnusedBits(), 0u);
  // Octets8 and Octets9 keep their values unless the input carries them (kept).
  EXPECT_EQ(ToHex(info.Octets8), "88");
  EXPECT_EQ(ToHex(info.Octets9), "99");
  ReadHex(info, "30 0B 02 01 03 02 01 04 A9 03 04 01 01", nullptr);
  EXPECT_EQ(ToHex(info.Octets8), "88");
  EXPECT_EQ(ToHex(info.Octets9), "01");
}

TEST(ASNKeyInfo, LongIntegersKeepTheirLowFourOctets) {
  ASNKeyInfo info;
  EXPECT_EQ(ReadHex(info, "30 0A 02 05 01 02 03 04 05 02 01 00", nullptr), 12u);
  EXPECT_EQ(info.Flags, 0x02030405u);
  EXPECT_EQ(ReadHex(info, "30 05 02 00 02 01 01", nullptr), 7u);
  EXPECT_EQ(info.Flags, 0u);  // an empty INTEGER reads as zero
  EXPECT_EQ(info.Number, 1u);
}

TEST(ASNKeyInfo, ReadFailures) {
  struct Row {
    const char* name;
    const char* input;
    int code;
    const char* where;
    unsigned int result;
  } rows[] = {
      {"one INTEGER only", "30 03 02 01 05", keyasn::kErrMalformed,
       "ASNKeyInfo::ReadData ASNTGetSequence", 5},
      {"no items", "30 00", keyasn::kErrMalformed, "ASNKeyInfo::ReadData ASNTGetSequence", 2},
      {"first item not an INTEGER", "30 06 04 01 00 02 01 00", keyasn::kErrMalformed,
       "ASNKeyInfo::ReadData", 8},
      {"second item not an INTEGER", "30 06 02 01 05 01 01 00", keyasn::kErrMalformed,
       "ASNKeyInfo::ReadData", 8},
      {"universal item after the integers", "30 09 02 01 00 02 01 00 04 01 FF",
       keyasn::kErrMalformed, "ASNKeyInfo::ReadData", 11},
      {"application item after the integers", "30 09 02 01 00 02 01 00 41 01 FF",
       keyasn::kErrMalformed, "ASNKeyInfo::ReadData", 11},
      {"not constructed", "04 03 02 01 05", keyasn::kErrBadIdentifier, "ASNTGetSequence", 0},
      {"empty input", "", keyasn::kErrMalformed, "CASNTBaseRecord::ReadASNInfo", 0},
      {"[0] not an identifier", "30 0B 02 01 00 02 01 00 A0 03 02 01 05", keyasn::kErrMalformed,
       "CASNTIdData::ReadData", 13},
      {"[3] empty", "30 08 02 01 00 02 01 00 A3 00", keyasn::kErrMalformed,
       "CASNTBaseRecord::ReadASNInfo", 10},
      {"[3] inner element cut short", "30 0A 02 01 00 02 01 00 A3 02 04 05", keyasn::kErrTooShort,
       "CASNTBaseRecord::ReadASNInfo", 12},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ASNKeyInfo info;
    int err = kUntouched;
    EXPECT_EQ(ReadHex(info, row.input, &err), row.result);
    EXPECT_EQ(err, row.code);
    ASNKeyInfo thrown;
    const auto failure = Raised([&] { ReadHex(thrown, row.input, nullptr); });
    EXPECT_EQ(failure.code, row.code);
    EXPECT_EQ(failure.where, row.where);
  }
}

TEST(ASNKeyInfo, HeaderFailureOfAnItemKeepsItsCode) {
  // A primitive item in the indefinite form is cut before its end-of-contents
  // octets by the split; its header no longer parses on its own.
  ASNKeyInfo info;
  int err = 0;
  ReadHex(info, "30 0B 02 01 00 02 01 00 83 80 41 00 00", &err);
  EXPECT_EQ(err, keyasn::kErrMalformed);
  const auto failure =
      Raised([&] { ReadHex(info, "30 0B 02 01 00 02 01 00 83 80 41 00 00", nullptr); });
  EXPECT_EQ(failure.code, keyasn::kErrMalformed);
  EXPECT_EQ(failure.where, "ASNKeyInfo::ReadData ASNTGetAsnInfo");
}

TEST(ASNKeyInfo, FailedReadKeepsWhatItRead) {
  ASNKeyInfo info;
  int err = 0;
  EXPECT_EQ(ReadHex(info,
                 "30 13 02 01 07 02 01 09 A3 03 04 01 33 A8 03 04 01 88 04 01 FF", &err),
            21u);
  EXPECT_EQ(err, keyasn::kErrMalformed);
  EXPECT_EQ(info.Flags, 7u);
  EXPECT_EQ(info.Number, 9u);
  EXPECT_EQ(ToHex(info.Octets3), "33");
  EXPECT_EQ(ToHex(info.Octets8), "88");

  // Flags is set before the second item fails.
  ASNKeyInfo second;
  second.Number = 77;
  ReadHex(second, "30 06 02 01 05 04 01 00", &err);
  EXPECT_EQ(err, keyasn::kErrMalformed);
  EXPECT_EQ(second.Flags, 5u);
  EXPECT_EQ(second.Number, 77u);
}

TEST(ASNKeyInfo, EveryPrefixReadsSafely) {
  const std::vector<unsigned char> whole = HexBytes(kFull);
  for (size_t n = 0; n <= whole.size(); ++n) {
    SCOPED_TRACE(n);
    const std::vector<unsigned char> prefix(whole.begin(), whole.begin() + n);
    ASNKeyInfo info;
    int err = 0;
    const unsigned int used = info.ReadData(prefix.data(), static_cast<unsigned int>(n), &err);
    EXPECT_LE(used, n);
    if (n < whole.size()) {
      EXPECT_NE(err, 0);
    }
  }
}

TEST(ASNKeyInfo, EqualityIgnoresAlgorithmAndTheLastTwoOctets) {
  const ASNKeyInfo base = Full();
  ASNKeyInfo other = base;
  EXPECT_TRUE(other == base);
  other.Octets9 = Hex("01 02");
  other.Octets8.Empty();
  other.AlgorithmId.SetObjID(Hex("2B"));
  EXPECT_TRUE(other == base);
  EXPECT_FALSE(other != base);

  struct Row {
    const char* name;
    void (*change)(ASNKeyInfo&);
  } rows[] = {
      {"Flags", [](ASNKeyInfo& i) { i.Flags ^= 1; }},
      {"Number", [](ASNKeyInfo& i) { i.Number ^= 1; }},
      {"Octets1", [](ASNKeyInfo& i) { i.Octets1 = Hex("00"); }},
      {"Octets2", [](ASNKeyInfo& i) { i.Octets2 = Hex("00"); }},
      {"Octets3", [](ASNKeyInfo& i) { i.Octets3 = Hex("00"); }},
      {"Octets4", [](ASNKeyInfo& i) { i.Octets4 = Hex("00"); }},
      {"Octets5", [](ASNKeyInfo& i) { i.Octets5.Empty(); }},
      {"Validity", [](ASNKeyInfo& i) { i.Validity = CASNValid(); }},
      {"KeyBits octets", [](ASNKeyInfo& i) { i.KeyBits.Empty(); }},
      {"KeyBits unused bits", [](ASNKeyInfo& i) { i.KeyBits.SetUnusedBits(0); }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ASNKeyInfo changed = base;
    row.change(changed);
    EXPECT_FALSE(changed == base);
    EXPECT_TRUE(changed != base);
  }
}

TEST(ASNKeyInfo, CopyAndAssign) {
  const ASNKeyInfo source = Full();
  ASNKeyInfo copy(source);
  ExpectSame(copy, source);
  ASNKeyInfo assigned;
  assigned = source;
  ExpectSame(assigned, source);
  const ASNKeyInfo& self = assigned;
  assigned = self;
  ExpectSame(assigned, source);
}

}  // namespace
