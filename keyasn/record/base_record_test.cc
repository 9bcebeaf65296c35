#include "keyasn/record/base_record.h"

#include <cstring>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/record/record_test_util.h"
#include "keyasn/support/file.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::ExpectStatus;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::Octets;
using keyasn::testing::Peek;
using keyasn::testing::TempFile;
using keyasn::testing::ToHex;


constexpr unsigned int kNoPosition = 0xFFFFFFFFu;

// ---------------------------------------------------------------------------
// Identifier and length octets.

TEST(BaseRecordWriteTag, IdentifierOctets) {
  struct Row {
    const char* name;
    short tagClass;
    unsigned char constructed;
    unsigned int tag;
    const char* octets;
  } rows[] = {
      {"tag 0", 0x00, 0, 0, "00"},
      {"tag 30 is one octet", 0x00, 0, 30, "1E"},
      {"tag 31 takes the high form", 0x00, 0, 31, "1F 1F"},
      {"tag 127", 0x80, 0, 127, "9F 7F"},
      {"tag 128", 0x00, 1, 128, "3F 81 00"},
      {"tag 16383", 0x40, 0, 16383, "5F FF 7F"},
      {"tag 16384", 0xC0, 1, 16384, "FF 81 80 00"},
      {"largest tag", 0x00, 0, 0xFFFFFFFFu, "1F 8F FF FF FF 7F"},
      {"context constructed 1", 0x80, 1, 1, "A1"},
      {"sequence", 0x00, 0x20, 16, "30"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNTBaseRecord record;
    record.SetClass(row.tagClass);
    record.SetIsConstraction(row.constructed);
    record.SetTag(row.tag);
    EXPECT_EQ(ToHex(record.WriteTag()), row.octets);
  }
}

TEST(BaseRecordEncodeSize, LengthOctets) {
  struct Row {
    unsigned int length;
    const char* octets;
  } rows[] = {
      {0, "00"},
      {127, "7F"},
      {128, "81 80"},
      {255, "81 FF"},
      {256, "82 01 00"},
      {0xFFFF, "82 FF FF"},
      {0x10000, "83 01 00 00"},
      {0xFFFFFF, "83 FF FF FF"},
      {0x1000000, "84 01 00 00 00"},
      {0xFFFFFFFFu, "84 FF FF FF FF"},
  };
  CASNTBaseRecord record;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.length);
    EXPECT_EQ(ToHex(record.EncodeSize(row.length)), row.octets);
  }
}

// ---------------------------------------------------------------------------
// Construction, accessors, states.

TEST(BaseRecordState, DefaultIsEmpty) {
  CASNTBaseRecord record;
  EXPECT_TRUE(Peek::HeaderIsZero(record));
  EXPECT_EQ(Peek::Entry(record).Count(), 0u);
  EXPECT_EQ(Peek::Encoded(record).Count(), 0u);
  EXPECT_EQ(record.GetTag(), 0u);
  EXPECT_EQ(record.GetClass(), 0);
  EXPECT_FALSE(record.GetIsConstraction());
  EXPECT_EQ(record.GetEntrySize(), 0u);
  EXPECT_FALSE(record.IsUnit());
  // Tag 0 in the universal class has no encoding.
  EXPECT_EQ(record.GetObjectSize(), 0u);
}

TEST(BaseRecordState, Accessors) {
  CASNTBaseRecord record;
  record.SetIsConstraction(5);
  EXPECT_TRUE(record.GetIsConstraction());
  EXPECT_EQ(Peek::Header(record).Constructed, 0x20);
  record.SetIsConstraction(0);
  EXPECT_FALSE(record.GetIsConstraction());
  EXPECT_EQ(Peek::Header(record).Constructed, 0);
  record.SetClass(0x180);  // only the low eight bits are kept
  EXPECT_EQ(record.GetClass(), 0x80);
  record.SetTag(77);
  EXPECT_EQ(record.GetTag(), 77u);
  // Setters leave both buffers alone.
  record.SetEntry(Hex("01 02"));
  record.SetTag(4);
  EXPECT_EQ(ToHex(Peek::Entry(record)), "01 02");
}

TEST(BaseRecordState, SetEntryThenSizeEncodes) {
  CASNTBaseRecord record;
  record.SetTag(2);
  const unsigned char value[] = {0x80, 0x00};  // 128, least significant first
  record.SetEntry(value, sizeof value);
  EXPECT_EQ(Peek::Encoded(record).Count(), 0u);
  EXPECT_EQ(record.GetObjectSize(), 4u);
  EXPECT_EQ(ToHex(Peek::Encoded(record)), "02 02 00 80");
  EXPECT_EQ(ToHex(record.GetEncodedRecord(nullptr)), "02 02 00 80");
  // GetEntrySize reports the header's length, not the value's size.
  EXPECT_EQ(record.GetEntrySize(), 0u);
}

TEST(BaseRecordState, SetEncodedEntryThenRecordDecodes) {
  CASNTBaseRecord record;
  ASSERT_EQ(record.SetEncodedEntry(Hex("02 02 00 80")), 0);
  EXPECT_EQ(record.GetTag(), 2u);
  EXPECT_EQ(record.GetEntrySize(), 2u);
  EXPECT_EQ(Peek::Entry(record).Count(), 0u);
  int error = -1;
  EXPECT_EQ(ToHex(record.GetRecord(&error)), "80");
  EXPECT_EQ(error, 0);
  EXPECT_EQ(ToHex(Peek::Entry(record)), "80");
}

TEST(BaseRecordState, SettingOneSideEmptiesTheOther) {
  CASNTBaseRecord record;
  ASSERT_EQ(record.SetEncodedEntry(Hex("04 01 41")), 0);
  record.GetRecord(nullptr);
  EXPECT_EQ(Peek::Entry(record).Count(), 1u);
  record.SetEntry(Hex("42 43"));
  EXPECT_EQ(Peek::Encoded(record).Count(), 0u);
  EXPECT_EQ(ToHex(record.GetEncodedRecord(nullptr)), "04 02 42 43");
  ASSERT_EQ(record.SetEncodedEntry(Hex("04 01 44")), 0);
  EXPECT_EQ(Peek::Entry(record).Count(), 0u);
  const unsigned char raw[] = {0x45};
  record.SetEntry(raw, 1);
  EXPECT_EQ(Peek::Encoded(record).Count(), 0u);
  EXPECT_EQ(ToHex(Peek::Entry(record)), "45");
}

TEST(BaseRecordState, SetEntryFromItsOwnEncoding) {
  CASNTBaseRecord record;
  ASSERT_EQ(record.SetEncodedEntry(Hex("04 01 41")), 0);
  record.SetEntry(record.GetEncodedRecord(nullptr));
  EXPECT_EQ(ToHex(Peek::Entry(record)), "04 01 41");
  ASSERT_EQ(record.SetEncodedEntry(Hex("04 01 41")), 0);
  const IdentObj& own = Peek::Encoded(record);
  record.SetEntry(own.GetData(), own.Count());
  EXPECT_EQ(ToHex(Peek::Entry(record)), "04 01 41");
}

TEST(BaseRecordState, SetEncodedEntryFailureLeavesBuffers) {
  CASNTBaseRecord record;
  record.SetEntry(Hex("01"));
  EXPECT_EQ(record.SetEncodedEntry(Hex("04 89 00")), keyasn::kErrMalformed);
  EXPECT_EQ(ToHex(Peek::Entry(record)), "01");
  EXPECT_EQ(record.SetEncodedEntry(Hex("1F 81")), keyasn::kErrBadIdentifier);
  EXPECT_EQ(record.SetEncodedEntry(IdentObj()), keyasn::kErrMalformed);
  EXPECT_EQ(ToHex(Peek::Entry(record)), "01");
  EXPECT_EQ(Peek::Encoded(record).Count(), 0u);
}

TEST(BaseRecordState, SetEncodedEntryPointsIntoOwnCopy) {
  CASNTBaseRecord record;
  ASSERT_EQ(record.SetEncodedEntry(Hex("04 02 41 42")), 0);
  EXPECT_EQ(Peek::Header(record).Contents, Peek::Encoded(record).GetData() + 2);
}

TEST(BaseRecordGetRecord, DecoderCodeGoesToError) {
  CASNTBaseRecord record;
  ASSERT_EQ(record.SetEncodedEntry(Hex("06 03 2A 86 86")), 0);
  int error = 0;
  record.GetRecord(&error);
  EXPECT_EQ(error, keyasn::kErrMalformed);
  // Without an error pointer the failure is silent.
  EXPECT_NO_THROW(record.GetRecord(nullptr));
  EXPECT_EQ(record.GetRecord(nullptr).Count(), 0u);
}

TEST(BaseRecordGetRecord, EncodingShorterThanItsLength) {
  // An encoding set from outside may declare more than it holds: nothing past
  // its end is read.
  for (const char* hex : {"04 05 41", "04 84 FF FF FF FF", "30 80 02 01 05"}) {
    SCOPED_TRACE(hex);
    CASNTBaseRecord record;
    const Octets bytes = HexBytes(hex);
    ASSERT_EQ(record.SetEncodedEntry(IdentObj(bytes.data(), bytes.size())), 0);
    int error = 0;
    EXPECT_EQ(record.GetRecord(&error).Count(), 0u);
    EXPECT_EQ(error, keyasn::kErrMalformed);
    EXPECT_NO_THROW(record.GetRecord(nullptr));
  }
}

TEST(BaseRecordGetRecord, NothingToDecode) {
  // A value-held record with an empty value decodes its type over no contents.
  CASNTBaseRecord boolean;
  boolean.SetTag(1);
  int error = -1;
  EXPECT_EQ(ToHex(boolean.GetRecord(&error)), "00 00 00 00");
  EXPECT_EQ(error, 0);
  CASNTBaseRecord empty;
  empty.GetRecord(&error);
  EXPECT_EQ(error, keyasn::kErrUnsupported);
  // A header parsed from a caller's buffer is not followed once that is gone.
  CASNTBaseRecord headerOnly;
  {
    const Octets bytes = HexBytes("04 02 41 42");
    ASSERT_EQ(headerOnly.ReadASNInfo(bytes.data(), bytes.size(), nullptr), 2u);
  }
  EXPECT_EQ(headerOnly.GetRecord(&error).Count(), 0u);
  EXPECT_EQ(error, 0);
}

TEST(BaseRecordGetRecord, PrimitiveIndefiniteEncoding) {
  CASNTBaseRecord record;
  ASSERT_EQ(record.SetEncodedEntry(Hex("04 80 41 42 00 00")), 0);
  EXPECT_EQ(record.GetEntrySize(), 2u);
  EXPECT_EQ(ToHex(record.GetRecord(nullptr)), "41 42");
}

TEST(BaseRecordGetEncodedRecord, UnencodableGivesEmpty) {
  CASNTBaseRecord record;
  record.SetTag(27);  // no universal type above 26 in the encoder
  record.SetEntry(Hex("01"));
  int error = 12345;
  EXPECT_EQ(record.GetEncodedRecord(&error).Count(), 0u);
  EXPECT_EQ(error, 12345);  // the encoder never writes it
  EXPECT_EQ(record.GetObjectSize(), 0u);
}

// ---------------------------------------------------------------------------
// Copying.

TEST(BaseRecordCopy, BytesHeldReparsesIntoOwnBuffer) {
  CASNTBaseRecord source;
  ASSERT_EQ(source.SetEncodedEntry(Hex("04 02 41 42")), 0);
  source.GetRecord(nullptr);
  CASNTBaseRecord copy(source);
  EXPECT_EQ(ToHex(Peek::Encoded(copy)), "04 02 41 42");
  EXPECT_EQ(ToHex(Peek::Entry(copy)), "41 42");
  EXPECT_EQ(Peek::Header(copy).Contents, Peek::Encoded(copy).GetData() + 2);
  EXPECT_EQ(copy.GetTag(), 4u);
  EXPECT_EQ(copy.GetEntrySize(), 2u);

  Peek assigned;
  assigned.SetTag(9);
  static_cast<CASNTBaseRecord&>(assigned) = source;
  EXPECT_EQ(Peek::Header(assigned).Contents, Peek::Encoded(assigned).GetData() + 2);
  EXPECT_EQ(assigned.GetTag(), 4u);
}

TEST(BaseRecordCopy, ValueHeldCopiesHeaderFieldForField) {
  CASNTBaseRecord source;
  source.SetClass(0x80);
  source.SetIsConstraction(1);
  source.SetTag(3);
  source.SetEntry(Hex("05 00"));
  CASNTBaseRecord copy;
  copy = source;
  EXPECT_EQ(copy.GetClass(), 0x80);
  EXPECT_TRUE(copy.GetIsConstraction());
  EXPECT_EQ(copy.GetTag(), 3u);
  EXPECT_EQ(ToHex(Peek::Entry(copy)), "05 00");
  EXPECT_EQ(Peek::Encoded(copy).Count(), 0u);
  EXPECT_EQ(ToHex(copy.GetEncodedRecord(nullptr)), "A3 02 05 00");
}

TEST(BaseRecordCopy, SelfAssignment) {
  CASNTBaseRecord record;
  ASSERT_EQ(record.SetEncodedEntry(Hex("02 01 05")), 0);
  CASNTBaseRecord& same = record;
  record = same;
  EXPECT_EQ(ToHex(Peek::Encoded(record)), "02 01 05");
  EXPECT_EQ(Peek::Header(record).Contents, Peek::Encoded(record).GetData() + 2);
}

// ---------------------------------------------------------------------------
// Header and element from a buffer.

TEST(BaseRecordReadAsnInfo, Buffer) {
  struct Row {
    const char* name;
    const char* hex;
    int code;
    unsigned int result;
    unsigned int tag;
    unsigned int length;
  } rows[] = {
      {"short form", "02 01 05", 0, 2, 2, 1},
      {"contents not checked", "02 01", 0, 2, 2, 1},
      {"long form", "04 82 01 00", 0, 4, 4, 256},
      {"indefinite", "30 80", 0, 2, 16, 0xFFFFFFFFu},
      {"high tag", "1F 81 00 00", 0, 4, 128, 0},
      {"one octet", "02", keyasn::kErrMalformed, 0, 0, 0},
      // The parser has set the identifier by then and leaves it.
      {"nine length octets", "04 89 00", keyasn::kErrMalformed, 0, 4, 0},
      {"high tag runs out", "1F 81 81", keyasn::kErrBadIdentifier, 0, 0, 0},
      {"declared far beyond", "04 84 FF FF FF FF", 0, 6, 4, 0xFFFFFFFFu},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const Octets bytes = HexBytes(row.hex);
    CASNTBaseRecord record;
    record.SetTag(99);
    int error = -1;
    EXPECT_EQ(record.ReadASNInfo(bytes.data(), bytes.size(), &error), row.result);
    EXPECT_EQ(error, row.code);
    EXPECT_EQ(record.GetTag(), row.tag);
    EXPECT_EQ(record.GetEntrySize(), row.length);
    if (row.code != 0) {
      EXPECT_EQ(Peek::HeaderIsZero(record), row.tag == 0);
      ExpectStatus([&] { record.ReadASNInfo(bytes.data(), bytes.size(), nullptr); }, row.code,
                   "CASNTBaseRecord::ReadASNInfo");
    } else {
      EXPECT_EQ(Peek::Header(record).Contents, bytes.data() + row.result);
    }
  }
}

TEST(BaseRecordReadAsnInfo, NullBuffer) {
  CASNTBaseRecord record;
  record.SetTag(5);
  int error = 0;
  EXPECT_EQ(record.ReadASNInfo(nullptr, 0, &error), 0u);
  EXPECT_EQ(error, keyasn::kErrMalformed);
  EXPECT_TRUE(Peek::HeaderIsZero(record));
}

TEST(BaseRecordReadData, Buffer) {
  struct Row {
    const char* name;
    const char* hex;
    int code;
    unsigned int result;
    const char* encoded;
  } rows[] = {
      {"integer", "02 01 05", 0, 3, "02 01 05"},
      {"trailing octets stay out", "02 01 05 FF FF", 0, 3, "02 01 05"},
      {"empty contents", "05 00", 0, 2, "05 00"},
      {"one octet short", "04 03 41 42", keyasn::kErrTooShort, 2, ""},
      {"indefinite never fits", "30 80 02 01 05 00 00", keyasn::kErrTooShort, 2, ""},
      {"declared far beyond", "04 84 FF FF FF FF", keyasn::kErrTooShort, 6, ""},
      {"declared 2^31", "04 84 80 00 00 00 41", keyasn::kErrTooShort, 6, ""},
      {"parser code passes", "04 89 00", keyasn::kErrMalformed, 0, ""},
      {"bad identifier", "3F 81", keyasn::kErrBadIdentifier, 0, ""},
      {"primitive indefinite", "04 80 41 00 00", 0, 3, "04 80 41"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const Octets bytes = HexBytes(row.hex);
    CASNTBaseRecord record;
    ASSERT_EQ(record.SetEncodedEntry(Hex("01 01 FF")), 0);
    record.GetRecord(nullptr);
    int error = -1;
    EXPECT_EQ(record.ReadData(bytes.data(), bytes.size(), &error), row.result);
    EXPECT_EQ(error, row.code);
    if (row.code == 0) {
      EXPECT_EQ(ToHex(Peek::Encoded(record)), row.encoded);
      EXPECT_EQ(Peek::Entry(record).Count(), 0u);
      EXPECT_EQ(Peek::Header(record).Contents, Peek::Encoded(record).GetData() + 2);
    } else {
      // The header is zero; both buffers keep what they held.
      EXPECT_TRUE(Peek::HeaderIsZero(record));
      EXPECT_EQ(ToHex(Peek::Encoded(record)), "01 01 FF");
      EXPECT_EQ(Peek::Entry(record).Count(), 4u);
      unsigned int thrownResult = 0;
      ExpectStatus([&] { thrownResult = record.ReadData(bytes.data(), bytes.size(), nullptr); },
                   row.code, "CASNTBaseRecord::ReadASNInfo");
    }
  }
}

TEST(BaseRecordReadData, NullBuffer) {
  CASNTBaseRecord record;
  int error = 0;
  EXPECT_EQ(record.ReadData(nullptr, 0, &error), 0u);
  EXPECT_EQ(error, keyasn::kErrMalformed);
}

TEST(BaseRecordReadData, EveryPrefixFromExactHeapBuffer) {
  // A 136-octet element: 30 81 85, then 04 81 80 and 128 octets of 0x41, then 05 00.
  Octets element = HexBytes("30 81 85 04 81 80");
  element.insert(element.end(), 128, 0x41);
  element.push_back(0x05);
  element.push_back(0x00);
  for (size_t n = 0; n < element.size(); ++n) {
    SCOPED_TRACE(n);
    Octets prefix(element.begin(), element.begin() + n);
    CASNTBaseRecord record;
    int error = 0;
    const unsigned int result =
        record.ReadData(prefix.empty() ? nullptr : prefix.data(), n, &error);
    EXPECT_NE(error, 0);
    EXPECT_EQ(result, n < 3 ? 0u : 3u);
    EXPECT_EQ(error, n < 3 ? keyasn::kErrMalformed : keyasn::kErrTooShort);
  }
  Octets exact(element);
  CASNTBaseRecord record;
  int error = -1;
  EXPECT_EQ(record.ReadData(exact.data(), exact.size(), &error), element.size());
  EXPECT_EQ(error, 0);
  // Read then write gives the same octets.
  EXPECT_EQ(ToHex(record.WriteData(nullptr)), ToHex(element));
}

// ---------------------------------------------------------------------------
// Writing.

TEST(BaseRecordWriteData, Buffer) {
  CASNTBaseRecord record;
  record.SetTag(4);
  record.SetEntry(Hex("41 42"));
  unsigned char out[8];
  std::memset(out, 0xEE, sizeof out);
  int error = -1;
  EXPECT_EQ(record.WriteData(out, 4, &error), 4u);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(ToHex(out, 4), "04 02 41 42");
  EXPECT_EQ(out[4], 0xEE);

  std::memset(out, 0xEE, sizeof out);
  EXPECT_EQ(record.WriteData(out, 3, &error), 0u);
  EXPECT_EQ(error, keyasn::kErrTooShort);
  EXPECT_EQ(ToHex(out, 4), "EE EE EE EE");  // nothing copied
  EXPECT_EQ(record.WriteData(nullptr, 100, &error), 0u);
  EXPECT_EQ(error, keyasn::kErrTooShort);
  ExpectStatus([&] { record.WriteData(out, 3, nullptr); }, keyasn::kErrTooShort,
               "CASNTBaseRecord::WriteData");
  ExpectStatus([&] { record.WriteData(static_cast<void*>(nullptr), 4, nullptr); },
               keyasn::kErrTooShort, "CASNTBaseRecord::WriteData");
}

TEST(BaseRecordWriteData, NewBuffer) {
  CASNTBaseRecord record;
  record.SetTag(2);
  record.SetEntry(Hex("05"));
  int error = -1;
  EXPECT_EQ(ToHex(record.WriteData(&error)), "02 01 05");
  EXPECT_EQ(error, 0);
  // Nothing to encode: an empty buffer, which the buffer writer refuses.
  CASNTBaseRecord empty;
  EXPECT_EQ(empty.WriteData(&error).Count(), 0u);
  EXPECT_EQ(error, keyasn::kErrTooShort);
  ExpectStatus([&] { empty.WriteData(nullptr); }, keyasn::kErrTooShort,
               "CASNTBaseRecord::WriteData");
}

TEST(BaseRecordWriteData, UnencodableIntoBufferWritesNothing) {
  CASNTBaseRecord record;
  record.SetTag(27);
  unsigned char out[4];
  int error = -1;
  EXPECT_EQ(record.WriteData(out, sizeof out, &error), 0u);
  EXPECT_EQ(error, 0);
}

std::vector<unsigned char> FileOctets(const char* path) {
  CRUVFile file(path, "rb");
  std::vector<unsigned char> out(file.Length());
  if (!out.empty()) file.Read(out.data(), out.size());
  return out;
}

TEST(BaseRecordWriteData, File) {
  TempFile temp(HexBytes("AA BB CC DD"));
  CASNTBaseRecord record;
  record.SetTag(2);
  record.SetEntry(Hex("05"));
  {
    CRUVFile file(temp.path(), "r+b");
    int error = -1;
    EXPECT_EQ(record.WriteData(file, 1, &error), 3u);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(file.CurPos(), 4u);
  }
  EXPECT_EQ(ToHex(FileOctets(temp.path())), "AA 02 01 05");
  {
    CRUVFile file(temp.path(), "r+b");
    int error = -1;
    // At the end of the file is allowed; beyond it is not.
    EXPECT_EQ(record.WriteData(file, 4, &error), 3u);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(record.WriteData(file, 8, &error), 0u);
    EXPECT_EQ(error, keyasn::kErrTooShort);
    ExpectStatus([&] { record.WriteData(file, 8, nullptr); }, keyasn::kErrTooShort,
                 "CASNTBaseRecord::WriteData");
    // No position: written where the file stands.
    ASSERT_TRUE(file.Seek(0, 0));
    EXPECT_EQ(record.WriteData(file, kNoPosition, &error), 3u);
    EXPECT_EQ(error, 0);
  }
  EXPECT_EQ(ToHex(FileOctets(temp.path())), "02 01 05 05 02 01 05");
}

TEST(BaseRecordWriteData, FileShortWriteAndEncodingFailure) {
  TempFile temp(HexBytes("AA"));
  CASNTBaseRecord record;
  record.SetTag(2);
  record.SetEntry(Hex("05"));
  CRUVFile readOnly(temp.path(), "rb");
  int error = -1;
  EXPECT_EQ(record.WriteData(readOnly, 0, &error), 0u);
  EXPECT_EQ(error, keyasn::kErrShortWrite);
  ExpectStatus([&] { record.WriteData(readOnly, 0, nullptr); }, keyasn::kErrShortWrite,
               "CASNTBaseRecord::WriteData");
  CRUVFile file(temp.path(), "r+b");
  CASNTBaseRecord empty;
  EXPECT_EQ(empty.WriteData(file, 0, &error), 0u);
  EXPECT_EQ(error, keyasn::kErrTooShort);
  ExpectStatus([&] { empty.WriteData(file, 0, nullptr); }, keyasn::kErrTooShort,
               "CASNTBaseRecord::WriteData");
}

// ---------------------------------------------------------------------------
// Header and element from a file.

TEST(BaseRecordReadAsnInfo, File) {
  struct Row {
    const char* name;
    const char* hex;
    unsigned int start;
    unsigned int position;
    int code;
    unsigned int result;
    unsigned int tag;
    unsigned int length;
  } rows[] = {
      {"short form", "02 01 05", 0, kNoPosition, 0, 2, 2, 1},
      {"at a later position", "FF 04 01 41", 1, kNoPosition, 0, 2, 4, 1},
      {"position bounds only", "FF 04 01 41", 1, 0, 0, 2, 4, 1},
      {"long form", "04 82 01 00", 0, kNoPosition, 0, 4, 4, 256},
      {"four length octets", "04 84 00 00 01 00", 0, kNoPosition, 0, 6, 4, 256},
      {"indefinite constructed", "30 80", 0, kNoPosition, 0, 2, 16, 0xFFFFFFFFu},
      {"indefinite primitive", "04 80 41 00 00", 0, kNoPosition, 0, 2, 4, 0xFFFFFFFFu},
      {"high tag", "3F 81 00 00", 0, kNoPosition, 0, 4, 128, 0},
      {"high tag, three octets", "9F 81 80 01 00", 0, kNoPosition, 0, 5, 16385, 0},
      {"length field 0x85", "04 85 00 00 00 00 01", 0, kNoPosition, keyasn::kErrMalformed, 2, 0,
       0},
      {"empty file", "", 0, kNoPosition, keyasn::kErrMalformed, 0, 0, 0},
      {"at end of file", "02 01 05", 3, kNoPosition, keyasn::kErrMalformed, 0, 0, 0},
      {"no length octet", "02", 0, kNoPosition, keyasn::kErrMalformed, 1, 0, 0},
      {"tag runs past the end", "1F 81 81", 0, kNoPosition, keyasn::kErrBadIdentifier, 3, 0, 0},
      {"tag bounded by position", "1F 81 81 01 00", 0, 4, keyasn::kErrBadIdentifier, 2, 0, 0},
      {"length runs past the end", "04 82 01", 0, kNoPosition, keyasn::kErrMalformed, 3, 0, 0},
      {"length bounded by position", "04 82 01 00", 0, 2, keyasn::kErrMalformed, 2, 0, 0},
      {"position at the length", "02 01 05", 0, 3, keyasn::kErrTooShort, 0, 0, 0},
      {"position beyond the end", "02 01 05", 0, 9, keyasn::kErrTooShort, 0, 0, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TempFile temp(HexBytes(row.hex));
    CRUVFile file(temp.path(), "rb");
    ASSERT_TRUE(file.Seek(row.start, 0));
    CASNTBaseRecord record;
    record.SetTag(99);
    int error = -1;
    EXPECT_EQ(record.ReadASNInfo(file, row.position, &error), row.result);
    EXPECT_EQ(error, row.code);
    EXPECT_EQ(record.GetTag(), row.tag);
    EXPECT_EQ(record.GetEntrySize(), row.length);
    EXPECT_EQ(Peek::Header(record).Contents, nullptr);
    // The file is read forward, never repositioned.
    EXPECT_EQ(file.CurPos(), std::min<unsigned int>(row.start + row.result, file.Length()));
    if (row.code != 0) {
      EXPECT_TRUE(Peek::HeaderIsZero(record));
      ASSERT_TRUE(file.Seek(row.start, 0));
      ExpectStatus([&] { record.ReadASNInfo(file, row.position, nullptr); }, row.code,
                   "CASNTBaseRecord::ReadASNInfo");
    }
  }
}

TEST(BaseRecordReadData, File) {
  struct Row {
    const char* name;
    const char* hex;
    unsigned int start;
    unsigned int position;
    int code;
    unsigned int result;
    unsigned int endPos;
    const char* encoded;
  } rows[] = {
      {"element", "02 01 05 FF", 0, kNoPosition, 0, 3, 3, "02 01 05"},
      {"later element", "FF 04 02 41 42", 1, kNoPosition, 0, 4, 5, "04 02 41 42"},
      {"long form", "04 81 01 41", 0, 0, 0, 4, 4, "04 81 01 41"},
      {"empty element keeps buffers", "05 00 02 01 05", 0, kNoPosition, 0, 2, 2, "01 01 FF"},
      {"short read", "04 05 41 42", 0, kNoPosition, keyasn::kErrShortRead, 4, 4, "01 01 FF"},
      {"declared far beyond", "04 84 7F FF FF FF 41", 0, kNoPosition, keyasn::kErrShortRead, 7, 7,
       "01 01 FF"},
      {"indefinite refused", "30 80 02 01 05 00 00", 0, kNoPosition, keyasn::kErrTooShort, 2, 2,
       "01 01 FF"},
      {"header code passes", "04 85 00", 0, kNoPosition, keyasn::kErrMalformed, 2, 2, "01 01 FF"},
      {"at end of file", "02 01 05", 3, kNoPosition, keyasn::kErrMalformed, 0, 3, "01 01 FF"},
      {"position beyond the end", "02 01 05", 0, 3, keyasn::kErrTooShort, 0, 0, "01 01 FF"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TempFile temp(HexBytes(row.hex));
    CRUVFile file(temp.path(), "rb");
    ASSERT_TRUE(file.Seek(row.start, 0));
    CASNTBaseRecord record;
    ASSERT_EQ(record.SetEncodedEntry(Hex("01 01 FF")), 0);
    int error = -1;
    EXPECT_EQ(record.ReadData(file, row.position, &error), row.result);
    EXPECT_EQ(error, row.code);
    EXPECT_EQ(file.CurPos(), row.endPos);
    EXPECT_EQ(ToHex(Peek::Encoded(record)), row.encoded);
    if (row.code == 0 && std::string(row.encoded) != "01 01 FF") {
      EXPECT_EQ(Peek::Entry(record).Count(), 0u);
      EXPECT_EQ(Peek::Header(record).Contents,
                Peek::Encoded(record).GetData() + row.result - record.GetEntrySize());
      EXPECT_EQ(ToHex(record.WriteData(nullptr)), row.encoded);
    }
    if (row.code != 0) {
      EXPECT_TRUE(Peek::HeaderIsZero(record));
      ASSERT_TRUE(file.Seek(row.start, 0));
      ExpectStatus([&] { record.ReadData(file, row.position, nullptr); }, row.code,
                   "CASNTBaseRecord::ReadData");
    }
  }
}

TEST(BaseRecordReadData, FileEmptyElementStopsAfterHeader) {
  TempFile temp(HexBytes("05 00 02 01 05"));
  CRUVFile file(temp.path(), "rb");
  CASNTBaseRecord record;
  int error = -1;
  EXPECT_EQ(record.ReadData(file, kNoPosition, &error), 2u);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(record.GetTag(), 5u);
  EXPECT_EQ(Peek::Encoded(record).Count(), 0u);
  EXPECT_EQ(record.ReadData(file, kNoPosition, &error), 3u);
  EXPECT_EQ(ToHex(Peek::Encoded(record)), "02 01 05");
}

// ---------------------------------------------------------------------------
// Measuring indefinite-length contents in a buffer.

TEST(BaseRecordContentsSize, Buffer) {
  struct Row {
    const char* name;
    const char* hex;
    unsigned char constructed;
    int code;
    unsigned int result;
  } rows[] = {
      {"primitive", "41 42 00 00", 0, 0, 4},
      {"primitive, pair only", "00 00", 0, 0, 2},
      {"primitive, no zero", "41 42 43", 0, 0, 3},
      {"primitive, partner assumed", "41 00", 0, 0, 3},
      {"primitive, empty", "", 0, 0, 0},
      {"one item", "04 01 41 00 00", 0x20, 0, 5},
      {"nested", "30 80 04 01 41 00 00 00 00", 0x20, 0, 9},
      {"two items", "02 01 05 02 01 06 00 00 FF", 0x20, 0, 8},
      {"trailing octets not counted", "04 01 41 00 00 02 01 05", 0x20, 0, 5},
      {"no end of contents", "04 01 41", 0x20, 0, 3},
      {"half an end of contents", "04 01 41 00", 0x20, 0, 5},
      {"ends on an open level", "30 80", 0x20, 0, 2},
      {"empty inner level", "30 80 00 00 00 00", 0x20, 0, 6},
      {"definite length beyond the data", "04 05 41", 0x20, 0, 7},
      {"primitive indefinite item", "04 80 41 42 00 00 00 00", 0x20, 0, 8},
      // Its contents end at the first single zero octet, as in a file.
      {"primitive indefinite, zero inside", "04 80 41 00 42 00 00 00 00", 0x20, 0, 7},
      // The first pair after an open level is read as an empty element, not as
      // its end: what follows the outer end is then counted too.
      {"empty inner level, data behind", "30 80 00 00 00 00 05 00", 0x20, 0, 8},
      {"primitive long form 2^32-1", "04 84 FF FF FF FF 41 00 00", 0x20, 0, 9},
      {"constructed long form 2^32-1", "30 84 FF FF FF FF 02 01 05 00 00 00 00", 0x20, 0, 13},
      {"parse failure", "04 01 41 1F", 0x20, keyasn::kErrMalformed, 3},
      {"bad identifier", "02 01 05 3F 81 81", 0x20, keyasn::kErrBadIdentifier, 3},
      {"empty", "", 0x20, keyasn::kErrMalformed, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const Octets bytes = HexBytes(row.hex);
    const unsigned char* data = bytes.empty() ? nullptr : bytes.data();
    int error = -1;
    EXPECT_EQ(CASNTBaseRecord::GetContecstSpecSize(data, bytes.size(), row.constructed, &error),
              row.result);
    EXPECT_EQ(error, row.code);
    if (row.code != 0) {
      ExpectStatus(
          [&] { CASNTBaseRecord::GetContecstSpecSize(data, bytes.size(), row.constructed, nullptr); },
          row.code, "CASNTBaseRecord::ReadASNInfo");
    }
  }
}

TEST(BaseRecordContentsSize, BufferPrefixesStayInside) {
  // Every prefix from an exactly-sized heap buffer: each read stays inside it.
  const Octets whole = HexBytes("30 80 24 80 04 02 41 42 04 80 43 00 00 00 00 00 00 02 01 05 00 00");
  for (size_t n = 0; n <= whole.size(); ++n) {
    SCOPED_TRACE(n);
    Octets prefix(whole.begin(), whole.begin() + n);
    int error = 0;
    const unsigned int result = CASNTBaseRecord::GetContecstSpecSize(
        prefix.empty() ? nullptr : prefix.data(), n, 0x20, &error);
    if (error == 0) {
      EXPECT_LE(result, n + 2);
    }
    CASNTBaseRecord::GetContecstSpecSize(prefix.empty() ? nullptr : prefix.data(), n, 0, &error);
  }
  int error = -1;
  EXPECT_EQ(CASNTBaseRecord::GetContecstSpecSize(whole.data(), whole.size(), 0x20, &error),
            whole.size());
  EXPECT_EQ(error, 0);
}

TEST(BaseRecordContentsSize, DeepNestingIsIterative) {
  const size_t levels = 1000000;
  Octets open;
  open.reserve(levels * 4);
  for (size_t i = 0; i < levels; ++i) {
    open.push_back(0x30);
    open.push_back(0x80);
  }
  int error = -1;
  // Never closed: the walk reaches the end of the data.
  EXPECT_EQ(CASNTBaseRecord::GetContecstSpecSize(open.data(), open.size(), 0x20, &error),
            open.size());
  EXPECT_EQ(error, 0);
  // Closed: the contents of an outer element holding levels-1 nested ones, the
  // innermost holding a NULL; the octets behind are not counted.
  Octets closed(open.begin(), open.end() - 2);
  closed.push_back(0x05);
  closed.push_back(0x00);
  closed.insert(closed.end(), levels * 2, 0x00);
  closed.push_back(0xFF);
  closed.push_back(0xFF);
  EXPECT_EQ(CASNTBaseRecord::GetContecstSpecSize(closed.data(), closed.size(), 0x20, &error),
            closed.size() - 2);
  EXPECT_EQ(error, 0);
  // Deeply nested definite lengths.
  Octets definite;
  for (size_t i = 0; i < 1000; ++i) {
    definite.insert(definite.begin(), {0x30, 0x84, 0, 0, 0, 0});
    const unsigned int len = static_cast<unsigned int>(definite.size() - 6);
    definite[2] = len >> 24;
    definite[3] = len >> 16;
    definite[4] = len >> 8;
    definite[5] = len;
  }
  definite.push_back(0x00);
  definite.push_back(0x00);
  EXPECT_EQ(CASNTBaseRecord::GetContecstSpecSize(definite.data(), definite.size(), 0x20, &error),
            definite.size());
  EXPECT_EQ(error, 0);
}

// ---------------------------------------------------------------------------
// Measuring indefinite-length contents in a file.

TEST(BaseRecordContentsSize, File) {
  struct Row {
    const char* name;
    const char* hex;
    unsigned int start;
    unsigned char constructed;
    int code;
    unsigned int result;
    const char* where;  // "" for the file's name
  } rows[] = {
      // The 16-bit accumulator doubles: a leading 00 stops at once.
      {"primitive 00 00 gives 1", "00 00", 0, 0, 0, 1, nullptr},
      {"primitive 41 42 00 00 runs to the end", "41 42 00 00", 0, 0, 0, 4, nullptr},
      {"primitive 41 then 16 zeros", "41 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 FF", 0, 0,
       0, 17, nullptr},
      {"primitive 80 then 9 zeros", "80 00 00 00 00 00 00 00 00 00 FF", 0, 0, 0, 10, nullptr},
      {"primitive at a later start", "FF 00 00", 1, 0, 0, 1, nullptr},
      {"primitive at the end", "41", 1, 0, 0, 0, nullptr},
      {"constructed at the end", "41", 1, 0x20, 0, 0, nullptr},
      {"one item", "04 01 41 00 00", 0, 0x20, 0, 5, nullptr},
      {"nested", "30 80 04 01 41 00 00 00 00", 0, 0x20, 0, 9, nullptr},
      {"two items", "02 01 05 02 01 06 00 00 FF", 0, 0x20, 0, 8, nullptr},
      {"later start", "AA 04 01 41 00 00", 1, 0x20, 0, 5, nullptr},
      {"open level at the end", "30 80", 0, 0x20, 0, 2, nullptr},
      {"primitive indefinite item", "04 80 00 00 00", 0, 0x20, 0, 5, nullptr},
      // 41 leaves the accumulator non-zero for 16 more zero octets.
      {"primitive indefinite item runs on", "04 80 41 00 00", 0, 0x20, keyasn::kErrMalformed, 5,
       ""},
      {"end of contents cut short", "04 01 41 00", 0, 0x20, keyasn::kErrMalformed, 3, ""},
      {"no end of contents", "04 01 41", 0, 0x20, keyasn::kErrMalformed, 3, ""},
      {"inner closed, outer cut", "30 80 02 01 05 00 00", 0, 0x20, keyasn::kErrMalformed, 7, ""},
      {"contents beyond the end", "04 05 41", 0, 0x20, keyasn::kErrMalformed, 7, ""},
      {"contents 2^32-2", "04 84 FF FF FF FE 00 00", 0, 0x20, keyasn::kErrMalformed, 0xFFFFFFFFu,
       ""},
      {"header failure", "04 01 41 1F 81", 0, 0x20, keyasn::kErrBadIdentifier, 3,
       "CASNTBaseRecord::ReadASNInfo"},
      {"length field 0x85", "04 85 00 00 00 00 00", 0, 0x20, keyasn::kErrMalformed, 0,
       "CASNTBaseRecord::ReadASNInfo"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TempFile temp(HexBytes(row.hex));
    CRUVFile file(temp.path(), "rb");
    ASSERT_TRUE(file.Seek(row.start, 0));
    int error = -1;
    EXPECT_EQ(CASNTBaseRecord::GetContecstSpecSize(file, row.constructed, &error), row.result);
    EXPECT_EQ(error, row.code);
    EXPECT_EQ(file.CurPos(), row.start);  // always moved back
    if (row.code != 0) {
      const std::string where = *row.where ? row.where : temp.path();
      ExpectStatus([&] { CASNTBaseRecord::GetContecstSpecSize(file, row.constructed, nullptr); },
                   row.code, where);
      EXPECT_EQ(file.CurPos(), row.start);
    }
  }
}

TEST(BaseRecordContentsSize, FileDeepNesting) {
  const size_t levels = 200000;
  Octets open;
  for (size_t i = 0; i < levels; ++i) {
    open.push_back(0x30);
    open.push_back(0x80);
  }
  Octets closed(open.begin(), open.end() - 2);
  closed.push_back(0x05);
  closed.push_back(0x00);
  closed.insert(closed.end(), levels * 2, 0x00);
  closed.push_back(0xFF);
  closed.push_back(0xFF);
  {
    TempFile temp(open);
    CRUVFile file(temp.path(), "rb");
    int error = -1;
    EXPECT_EQ(CASNTBaseRecord::GetContecstSpecSize(file, 0x20, &error), open.size());
    EXPECT_EQ(error, 0);
    EXPECT_EQ(file.CurPos(), 0u);
  }
  {
    TempFile temp(closed);
    CRUVFile file(temp.path(), "rb");
    int error = -1;
    const unsigned int result = CASNTBaseRecord::GetContecstSpecSize(file, 0x20, &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(result, closed.size() - 2);
  }
}

}  // namespace
