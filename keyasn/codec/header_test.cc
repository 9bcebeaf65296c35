#include "keyasn/codec/header.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/octets.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::ToHex;

constexpr long kNoContents = -1;

// A record filled with values no parse produces, to see what a call leaves behind.
ASNT_ASN_STRUCT_INFO Garbage() {
  static const unsigned char kElsewhere[1] = {0};
  ASNT_ASN_STRUCT_INFO info;
  info.Class = 0x11;
  info.Constructed = 0x22;
  info.Tag = 0x33333333u;
  info.Length = 0x44444444u;
  info.Contents = kElsewhere;
  return info;
}

bool SameRecord(const ASNT_ASN_STRUCT_INFO& a, const ASNT_ASN_STRUCT_INFO& b) {
  return a.Class == b.Class && a.Constructed == b.Constructed && a.Tag == b.Tag &&
         a.Length == b.Length && a.Contents == b.Contents;
}

struct HeaderRow {
  const char* name;
  const char* hex;
  int code;
  unsigned char cls;
  unsigned char constructed;
  unsigned int tag;
  unsigned int length;
  long contentsOffset;  // kNoContents: Contents null
};

const HeaderRow kHeaderRows[] = {
    // Short form, every class, constructed bit kept in place.
    {"integer without its contents octet", "02 01", 0, 0x00, 0x00, 2, 1, 2},
    {"sequence", "30 03 02 01 05", 0, 0x00, 0x20, 16, 3, 2},
    {"application primitive", "41 00", 0, 0x40, 0x00, 1, 0, 2},
    {"context constructed [0]", "A0 00", 0, 0x80, 0x20, 0, 0, 2},
    {"private constructed [30]", "FE 7F", 0, 0xC0, 0x20, 30, 127, 2},
    // High tag number form.
    {"high tag 128", "1F 81 00 00", 0, 0x00, 0x00, 128, 0, 4},
    {"high tag redundant leading 0x80", "1F 80 05 00", 0, 0x00, 0x00, 5, 0, 4},
    {"high tag 31 context constructed", "BF 1F 02 AA BB", 0, 0x80, 0x20, 31, 2, 3},
    {"high tag 0xFFFFFFFF", "1F 8F FF FF FF 7F 01 00", 0, 0x00, 0x00, 0xFFFFFFFFu, 1, 7},
    {"high tag wraps in 32 bits", "1F 90 80 80 80 00 00", 0, 0x00, 0x00, 0, 0, 7},
    {"high tag never ends", "1F 81 81 81", 205, 0, 0, 0, 0, kNoContents},
    {"high tag first octet missing", "5F 81", 205, 0, 0, 0, 0, kNoContents},
    {"high tag two octets missing end", "1F 81", 205, 0, 0, 0, 0, kNoContents},
    {"high tag fills the buffer", "1F 05", 206, 0x00, 0x00, 5, 0, kNoContents},
    {"long high tag fills the buffer", "DF 81 80 05", 206, 0xC0, 0x00, 0x4005, 0,
     kNoContents},
    // Indefinite form.
    {"constructed indefinite", "30 80", 0, 0x00, 0x20, 16, 0xFFFFFFFFu, 2},
    {"constructed indefinite with items", "A1 80 02 01 05 00 00", 0, 0x80, 0x20, 1,
     0xFFFFFFFFu, 2},
    {"primitive indefinite", "04 80 41 42 00 00", 0, 0x00, 0x00, 4, 2, 2},
    {"primitive indefinite empty", "04 80 00 00", 0, 0x00, 0x00, 4, 0, 2},
    {"primitive indefinite first pair only", "04 80 41 00 00 00", 0, 0x00, 0x00, 4, 1, 2},
    {"primitive indefinite zero inside", "04 80 00 41 00 00", 0, 0x00, 0x00, 4, 2, 2},
    {"primitive indefinite after high tag", "9F 81 00 80 41 00 00", 0, 0x80, 0x00, 128, 1,
     4},
    {"primitive indefinite without end", "04 80 41 42", 206, 0x00, 0x00, 4, 0, 2},
    {"primitive indefinite nothing behind", "04 80", 206, 0x00, 0x00, 4, 0, 2},
    {"primitive indefinite one zero behind", "04 80 00", 206, 0x00, 0x00, 4, 0, 2},
    {"primitive indefinite pair cut by the end", "04 80 41 00", 206, 0x00, 0x00, 4, 0, 2},
    // Long form, 1 to 8 length octets; no minimality check.
    {"long form 0x81", "04 81 C8", 0, 0x00, 0x00, 4, 200, 3},
    {"long form 0x81 not minimal", "04 81 05", 0, 0x00, 0x00, 4, 5, 3},
    {"long form 0x81 zero", "04 81 00", 0, 0x00, 0x00, 4, 0, 3},
    {"long form 0x82", "04 82 01 2C", 0, 0x00, 0x00, 4, 300, 4},
    {"long form 0x83", "04 83 01 00 00", 0, 0x00, 0x00, 4, 0x10000, 5},
    {"long form 0x84", "04 84 12 34 56 78", 0, 0x00, 0x00, 4, 0x12345678u, 6},
    {"long form 0x84 all ones", "04 84 FF FF FF FF", 0, 0x00, 0x00, 4, 0xFFFFFFFFu, 6},
    {"long form 0x85 first octet shifted out", "04 85 01 00 00 00 10", 0, 0x00, 0x00, 4,
     0x10, 7},
    {"long form 0x86", "04 86 AA BB 00 00 01 00", 0, 0x00, 0x00, 4, 0x100, 8},
    {"long form 0x87", "04 87 01 02 03 11 22 33 44", 0, 0x00, 0x00, 4, 0x11223344u, 9},
    {"long form 0x88", "04 88 11 22 33 44 55 66 77 88", 0, 0x00, 0x00, 4, 0x55667788u, 10},
    {"long form after high tag", "3F 81 00 81 80", 0, 0x00, 0x20, 128, 128, 5},
    {"long form 0x81 truncated", "04 81", 206, 0x00, 0x00, 4, 0, kNoContents},
    {"long form 0x82 truncated", "04 82 01", 206, 0x00, 0x00, 4, 0, kNoContents},
    {"long form 0x88 truncated", "04 88 01 02 03 04 05 06 07", 206, 0x00, 0x00, 4, 0,
     kNoContents},
    {"long form 0x89", "04 89 01 02 03 04 05 06 07 08 09", 206, 0x00, 0x00, 4, 0,
     kNoContents},
    {"long form 0xFF", "04 FF 01", 206, 0x00, 0x00, 4, 0, kNoContents},
};

TEST(ASNTGetAsnInfo, Table) {
  for (const HeaderRow& row : kHeaderRows) {
    SCOPED_TRACE(row.name);
    const std::vector<unsigned char> data = HexBytes(row.hex);
    ASNT_ASN_STRUCT_INFO info = Garbage();
    EXPECT_EQ(ASNTGetAsnInfo(info, data.data(), static_cast<unsigned int>(data.size())),
              row.code);
    EXPECT_EQ(info.Class, row.cls);
    EXPECT_EQ(info.Constructed, row.constructed);
    EXPECT_EQ(info.Tag, row.tag);
    EXPECT_EQ(info.Length, row.length);
    if (row.contentsOffset == kNoContents) {
      EXPECT_EQ(info.Contents, nullptr);
    } else {
      EXPECT_EQ(info.Contents, data.data() + row.contentsOffset);
    }
  }
}

TEST(ASNTGetAsnInfo, TooShortLeavesTheRecordAlone) {
  const unsigned char one[] = {0x02, 0x01};
  const struct {
    const char* name;
    const unsigned char* data;
    unsigned int size;
  } rows[] = {
      {"null pointer", nullptr, 10},
      {"null pointer size 0", nullptr, 0},
      {"one octet", one, 1},
      {"no octet", one, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    ASNT_ASN_STRUCT_INFO info = Garbage();
    EXPECT_EQ(ASNTGetAsnInfo(info, row.data, row.size), keyasn::kErrMalformed);
    EXPECT_TRUE(SameRecord(info, Garbage()));
  }
}

TEST(ASNTGetAsnInfo, SearchStopsAtSizeNotAtTheBufferEnd) {
  // The zero pair lies behind `size`: it is not seen.
  const std::vector<unsigned char> data = HexBytes("04 80 41 42 00 00");
  ASNT_ASN_STRUCT_INFO info = Garbage();
  EXPECT_EQ(ASNTGetAsnInfo(info, data.data(), 5), keyasn::kErrMalformed);
  EXPECT_EQ(info.Length, 0u);
  EXPECT_EQ(ASNTGetAsnInfo(info, data.data(), 6), keyasn::kOk);
  EXPECT_EQ(info.Length, 2u);
}

TEST(ASNTGetAsnInfo, ContentsAreNotCheckedAgainstSize) {
  const std::vector<unsigned char> data = HexBytes("04 84 7F FF FF FF");
  ASNT_ASN_STRUCT_INFO info;
  EXPECT_EQ(ASNTGetAsnInfo(info, data.data(), 6), keyasn::kOk);
  EXPECT_EQ(info.Length, 0x7FFFFFFFu);
  EXPECT_EQ(info.Contents, data.data() + 6);
}

// Every prefix of a valid encoding, each in a heap buffer of exactly that size:
// nothing is read outside it, and once the header is complete the result is that
// of the whole encoding.
TEST(ASNTGetAsnInfo, TruncationSweep) {
  const struct {
    const char* hex;
    unsigned int headerSize;  // through the last octet the parse needs
  } rows[] = {
      {"30 03 02 01 05", 2},
      {"1F 81 00 00", 4},
      {"BF 8F FF FF FF 7F 81 01 AA", 8},
      {"04 82 01 2C", 4},
      {"04 88 11 22 33 44 55 66 77 88", 10},
      {"04 80 41 42 00 00", 6},
      {"24 80 04 01 41 00 00", 2},
      {"9F 81 00 80 41 00 00", 7},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.hex);
    const std::vector<unsigned char> whole = HexBytes(row.hex);
    ASNT_ASN_STRUCT_INFO full;
    ASSERT_EQ(ASNTGetAsnInfo(full, whole.data(), static_cast<unsigned int>(whole.size())),
              keyasn::kOk);
    for (size_t k = 0; k <= whole.size(); ++k) {
      SCOPED_TRACE(k);
      std::vector<unsigned char> prefix(whole.begin(), whole.begin() + k);
      ASNT_ASN_STRUCT_INFO info = Garbage();
      const int code = ASNTGetAsnInfo(info, prefix.data(), static_cast<unsigned int>(k));
      if (k >= row.headerSize) {
        ASSERT_EQ(code, keyasn::kOk);
        EXPECT_EQ(info.Tag, full.Tag);
        EXPECT_EQ(info.Length, full.Length);
        EXPECT_EQ(info.Contents - prefix.data(), full.Contents - whole.data());
      } else {
        EXPECT_NE(code, keyasn::kOk);
        if (k >= 2) {
          EXPECT_EQ(info.Length, 0u);
        }
      }
    }
  }
}

struct BuildRow {
  const char* name;
  unsigned char cls;
  bool constructed;
  unsigned int tag;
  const char* hex;
};

const BuildRow kBuildRows[] = {
    {"context constructed [0]", 0x80, true, 0, "A0"},
    {"sequence number without the constructed bit", 0x00, false, 16, "10"},
    {"universal constructed sequence", 0x00, true, 16, "30"},
    {"application [30]", 0x40, false, 30, "5E"},
    {"class taken unmasked", 0x05, false, 2, "07"},
    {"high tag 31", 0xC0, true, 31, "FF 1F"},
    {"high tag 127", 0x80, false, 127, "9F 7F"},
    {"high tag 128", 0x80, false, 128, "9F 81 00"},
    {"high tag 16383", 0x00, false, 16383, "1F FF 7F"},
    {"high tag 16384", 0x00, true, 16384, "3F 81 80 00"},
    {"high tag 0xFFFFFFFF", 0x80, true, 0xFFFFFFFFu, "BF 8F FF FF FF 7F"},
};

TEST(BuildTag, Table) {
  for (const BuildRow& row : kBuildRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ToHex(BuildTag(row.cls, row.constructed, row.tag)), row.hex);
  }
}

TEST(BuildTag, ParsesBackToTheSameTag) {
  const unsigned int tags[] = {0,     1,       30,        31,         100,        127,
                               128,   200,     16383,     16384,      2097151,    2097152,
                               0x0FFFFFFFu, 0x10000000u, 0x7FFFFFFFu, 0xFFFFFFFFu};
  for (unsigned int tag : tags) {
    SCOPED_TRACE(tag);
    IdentObj id = BuildTag(0x80, true, tag);
    EXPECT_EQ(id.Count(), keyasn::detail::IdentifierSize(tag));
    std::vector<unsigned char> element(id.GetData(), id.GetData() + id.Count());
    element.push_back(0x00);
    ASNT_ASN_STRUCT_INFO info;
    ASSERT_EQ(ASNTGetAsnInfo(info, element.data(), static_cast<unsigned int>(element.size())),
              keyasn::kOk);
    EXPECT_EQ(info.Tag, tag);
    EXPECT_EQ(info.Class, 0x80);
    EXPECT_EQ(info.Constructed, 0x20);
    EXPECT_EQ(info.Length, 0u);
    unsigned int back = 0;
    EXPECT_EQ(GetTagFromEncoded(IdentObj(element.data(), static_cast<unsigned int>(element.size())),
                                nullptr, nullptr, nullptr, &back),
              keyasn::kOk);
    EXPECT_EQ(back, tag);
  }
}

struct GetTagRow {
  const char* name;
  const char* hex;
  int code;
  const char* tagOctets;
  short cls;
  short constructed;
  unsigned int tag;
};

const GetTagRow kGetTagRows[] = {
    {"octet string", "04 02 41 42", 0, "04", 0x00, 0x00, 4},
    {"context constructed", "A3 00", 0, "A3", 0x80, 0x20, 3},
    {"private", "C1 00", 0, "C1", 0xC0, 0x00, 1},
    {"high tag", "BF 81 00 00", 0, "BF 81 00", 0x80, 0x20, 128},
    {"length octets not examined", "1F 81 00", 0, "1F 81 00", 0x00, 0x00, 128},
    {"bad length octets not examined", "04 89", 0, "04", 0x00, 0x00, 4},
    {"high tag never ends", "1F 81 81", 205, nullptr, 0, 0, 0},
    {"high tag cut", "7F 81", 205, nullptr, 0, 0, 0},
    {"one octet", "04", 206, nullptr, 0, 0, 0},
    {"empty", "", 206, nullptr, 0, 0, 0},
};

TEST(GetTagFromEncoded, Table) {
  for (const GetTagRow& row : kGetTagRows) {
    SCOPED_TRACE(row.name);
    const IdentObj encoded = Hex(row.hex);
    IdentObj octets = Hex("EE EE");
    short cls = 0x5555;
    short constructed = 0x5555;
    unsigned int tag = 0x55555555u;
    EXPECT_EQ(GetTagFromEncoded(encoded, &octets, &cls, &constructed, &tag), row.code);
    if (row.code == 0) {
      EXPECT_EQ(ToHex(octets), row.tagOctets);
      EXPECT_EQ(cls, row.cls);
      EXPECT_EQ(constructed, row.constructed);
      EXPECT_EQ(tag, row.tag);
    } else {
      EXPECT_EQ(ToHex(octets), "EE EE");
      EXPECT_EQ(cls, 0x5555);
      EXPECT_EQ(constructed, 0x5555);
      EXPECT_EQ(tag, 0x55555555u);
    }
    // Every output may be left out.
    EXPECT_EQ(GetTagFromEncoded(encoded, nullptr, nullptr, nullptr, nullptr), row.code);
  }
}

TEST(GetTagFromEncoded, TruncationSweep) {
  const std::vector<unsigned char> whole = HexBytes("BF 8F FF FF FF 7F 01 AA");
  for (size_t k = 0; k <= whole.size(); ++k) {
    SCOPED_TRACE(k);
    const IdentObj prefix(whole.data(), static_cast<unsigned int>(k));
    unsigned int tag = 0;
    const int code = GetTagFromEncoded(prefix, nullptr, nullptr, nullptr, &tag);
    if (k < 2) {
      EXPECT_EQ(code, keyasn::kErrMalformed);
    } else if (k < 6) {
      EXPECT_EQ(code, keyasn::kErrBadIdentifier);
    } else {
      EXPECT_EQ(code, keyasn::kOk);
      EXPECT_EQ(tag, 0xFFFFFFFFu);
    }
  }
}

struct ModifyRow {
  const char* name;
  const char* encoded;
  const char* newTag;
  int code;
  const char* result;
};

const ModifyRow kModifyRows[] = {
    {"implicit [0]", "04 02 41 42", "80", 0, "80 02 41 42"},
    {"constructed bit not carried over", "30 03 02 01 05", "A1", 0, "A1 03 02 01 05"},
    {"constructed bit not added", "30 03 02 01 05", "81", 0, "81 03 02 01 05"},
    {"to a high tag", "04 02 41 42", "9F 81 00", 0, "9F 81 00 02 41 42"},
    {"from a high tag", "BF 81 00 02 41 42", "A0", 0, "A0 02 41 42"},
    {"new tag taken as it stands", "04 02 41 42", "", 0, "02 41 42"},
    {"identifier alone", "1F 81 00", "04", 0, "04"},
    {"one octet", "04", "80", 206, "04"},
    {"high tag never ends", "1F 81 81", "80", 205, "1F 81 81"},
};

TEST(ModifyTagAtEncoded, Table) {
  for (const ModifyRow& row : kModifyRows) {
    SCOPED_TRACE(row.name);
    IdentObj encoded = Hex(row.encoded);
    EXPECT_EQ(ModifyTagAtEncoded(&encoded, Hex(row.newTag)), row.code);
    EXPECT_EQ(ToHex(encoded), row.result);
  }
}

TEST(ModifyTagAtEncoded, NullElementIsRefused) {
  EXPECT_EQ(ModifyTagAtEncoded(nullptr, Hex("80")), keyasn::kErrMalformed);
}

TEST(ModifyTagAtEncoded, WithBuildTag) {
  IdentObj encoded = Hex("02 01 05");
  ASSERT_EQ(ModifyTagAtEncoded(&encoded, BuildTag(0x80, false, 200)), 0);
  EXPECT_EQ(ToHex(encoded), "9F 81 48 01 05");
  ASSERT_EQ(ModifyTagAtEncoded(&encoded, BuildTag(0x00, false, 2)), 0);
  EXPECT_EQ(ToHex(encoded), "02 01 05");
}

struct LengthRow {
  unsigned int length;
  const char* hex;
};

TEST(PutLength, ShortAndLongForms) {
  const LengthRow rows[] = {
      {0, "00"},
      {127, "7F"},
      {128, "81 80"},
      {255, "81 FF"},
      {256, "82 01 00"},
      {300, "82 01 2C"},
      {0xFFFF, "82 FF FF"},
      {0x10000, "83 01 00 00"},
      {0xFFFFFF, "83 FF FF FF"},
      {0x1000000, "84 01 00 00 00"},
      {0x7FFFFFFF, "84 7F FF FF FF"},
      // Negative as a signed 32-bit number: one octet, kept for compatibility.
      {0x80000000u, "00"},
      {0x80000081u, "81"},
      {0xFFFFFFFFu, "FF"},
  };
  for (const LengthRow& row : rows) {
    SCOPED_TRACE(row.length);
    unsigned char out[keyasn::detail::kMaxLengthOctets];
    const unsigned int n = keyasn::detail::PutLength(out, row.length);
    EXPECT_EQ(n, keyasn::detail::LengthSize(row.length));
    EXPECT_EQ(ToHex(out, n), row.hex);
  }
}

}  // namespace
