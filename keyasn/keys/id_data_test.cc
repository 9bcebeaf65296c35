#include "keyasn/keys/id_data.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "keyasn/codec/error_codes.h"
#include "keyasn/support/file.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::Bytes;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::Raised;
using keyasn::testing::TempFile;
using keyasn::testing::ToHex;

constexpr int kUntouched = -12345;

// GOST R 34.10-2001 signature key, with its parameter set and digest parameters.
const char kGostOid[] = "2A 85 03 02 02 13";
const char kGostParams[] =
    "30 12 06 07 2A 85 03 02 02 23 01 06 07 2A 85 03 02 02 1E 01";

ASNAlgorithmIdentifier Make(const std::string& oid, const std::string& params) {
  ASNAlgorithmIdentifier id;
  id.SetObjID(Hex(oid));
  id.SetAddInfo(Hex(params));
  return id;
}

struct ReadRow {
  const char* name;
  const char* input;
  unsigned int result;
  const char* oid;
  const char* params;
};

TEST(CASNTIdData, ReadsFromBuffer) {
  const ReadRow rows[] = {
      {"identifier only", "30 03 06 01 2A", 5, "2A", ""},
      {"NULL parameters not counted", "30 05 06 01 2A 05 00", 5, "2A", ""},
      {"parameters kept whole", "30 06 06 01 2A 04 01 FF", 8, "2A", "04 01 FF"},
      {"GOST identifier with parameter set",
       "30 1C 06 06 2A 85 03 02 02 13 30 12 06 07 2A 85 03 02 02 23 01 06 07 2A 85 03 02 02 1E 01",
       30, kGostOid, kGostParams},
      {"indefinite parameters measured",
       "30 80 06 01 2A 30 80 04 01 41 00 00 00 00", 12, "2A", "30 80 04 01 41 00 00"},
      {"only the tag number of the parameters is tested", "30 06 06 01 2A 85 01 00", 5, "2A", ""},
      {"context-specific parameters kept", "30 07 06 01 2A A0 02 05 00", 9, "2A", "A0 02 05 00"},
      {"only the tag number of the identifier is tested", "30 03 86 01 2A", 5, "2A", ""},
      {"outer length not used to bound the items", "30 03 06 01 2A 04 01 FF", 8, "2A", "04 01 FF"},
      {"outer class not tested", "B0 03 06 01 2A", 5, "2A", ""},
      {"empty identifier", "30 02 06 00", 4, "", ""},
  };
  for (const ReadRow& row : rows) {
    SCOPED_TRACE(row.name);
    const std::vector<unsigned char> input = HexBytes(row.input);
    ASNAlgorithmIdentifier id = Make("01 02", "04 00");
    int err = kUntouched;
    EXPECT_EQ(id.ReadData(input.data(), static_cast<unsigned int>(input.size()), &err), row.result);
    EXPECT_EQ(err, kUntouched);  // success leaves the code alone
    EXPECT_EQ(ToHex(id.GetObjID()), ToHex(Hex(row.oid)));
    EXPECT_EQ(ToHex(id.GetAddInfo()), ToHex(Hex(row.params)));
    // Without an error pointer the same input reads the same way.
    ASNAlgorithmIdentifier again;
    EXPECT_EQ(again.ReadData(input.data(), static_cast<unsigned int>(input.size()), nullptr),
              row.result);
    EXPECT_TRUE(again == id);
  }
}

struct FailRow {
  const char* name;
  const char* input;
  int code;
  const char* where;
  unsigned int result;  // octets consumed before the failure
  const char* oid;      // identifier left behind (nothing is rolled back)
};

TEST(CASNTIdData, BufferReadFailures) {
  const FailRow rows[] = {
      {"empty input", "", keyasn::kErrMalformed, "CASNTBaseRecord::ReadASNInfo", 0, "01 02"},
      {"one octet", "30", keyasn::kErrMalformed, "CASNTBaseRecord::ReadASNInfo", 0, "01 02"},
      {"outer SET", "31 03 06 01 2A", keyasn::kErrMalformed, "CASNTIdData::ReadData", 2, "01 02"},
      // The identifier element's octets are counted before its tag is tested.
      {"first item INTEGER", "30 03 02 01 05", keyasn::kErrMalformed, "CASNTIdData::ReadData", 5,
       "01 02"},
      {"no items", "30 00", keyasn::kErrMalformed, "CASNTBaseRecord::ReadASNInfo", 2, "01 02"},
      {"identifier cut short", "30 03 06 05 2A", keyasn::kErrTooShort,
       "CASNTBaseRecord::ReadASNInfo", 2, "01 02"},
      {"parameters header cut short", "30 04 06 01 2A 04", keyasn::kErrMalformed,
       "CASNTBaseRecord::ReadASNInfo", 5, "2A"},
      {"parameters run past the data", "30 06 06 01 2A 04 05 FF", keyasn::kErrMalformed,
       "CASNTIdData::ReadData", 5, "2A"},
      {"identifier in high tag form that never ends", "30 03 1F 86 86", keyasn::kErrBadIdentifier,
       "CASNTBaseRecord::ReadASNInfo", 2, "01 02"},
  };
  for (const FailRow& row : rows) {
    SCOPED_TRACE(row.name);
    const std::vector<unsigned char> input = HexBytes(row.input);
    const unsigned int size = static_cast<unsigned int>(input.size());
    ASNAlgorithmIdentifier id = Make("01 02", "04 00");
    int err = kUntouched;
    EXPECT_EQ(id.ReadData(input.data(), size, &err), row.result);
    EXPECT_EQ(err, row.code);
    EXPECT_EQ(ToHex(id.GetObjID()), ToHex(Hex(row.oid)));

    ASNAlgorithmIdentifier thrown = Make("01 02", "04 00");
    const auto failure = Raised([&] { thrown.ReadData(input.data(), size, nullptr); });
    EXPECT_EQ(failure.code, row.code);
    EXPECT_EQ(failure.where, row.where);
  }
}

TEST(CASNTIdData, FailedReadKeepsTheIdentifierAlreadyRead) {
  // The parameters fail after the identifier was taken: it stays, the old
  // parameters stay too.
  const std::vector<unsigned char> input = HexBytes("30 06 06 02 2A 03 04 09");
  ASNAlgorithmIdentifier id = Make("01 02", "04 01 77");
  int err = 0;
  EXPECT_EQ(id.ReadData(input.data(), static_cast<unsigned int>(input.size()), &err), 6u);
  EXPECT_EQ(err, keyasn::kErrMalformed);
  EXPECT_EQ(ToHex(id.GetObjID()), "2A 03");
  EXPECT_EQ(ToHex(id.GetAddInfo()), "04 01 77");
}

TEST(CASNTIdData, EveryPrefixReadsSafely) {
  const char* inputs[] = {
      "30 1C 06 06 2A 85 03 02 02 13 30 12 06 07 2A 85 03 02 02 23 01 06 07 2A 85 03 02 02 1E 01",
      "30 80 06 01 2A 30 80 04 01 41 00 00 00 00",
      "30 06 06 01 2A 04 01 FF",
      "30 80 06 01 2A 04 80 41 00 00 00 00",
  };
  for (const char* hex : inputs) {
    const std::vector<unsigned char> whole = HexBytes(hex);
    for (size_t n = 0; n <= whole.size(); ++n) {
      SCOPED_TRACE(std::string(hex) + " prefix " + std::to_string(n));
      const std::vector<unsigned char> prefix(whole.begin(), whole.begin() + n);
      CASNTIdData id;
      int err = 0;
      const unsigned int used = id.ReadData(prefix.data(), static_cast<unsigned int>(n), &err);
      EXPECT_LE(used, n);
    }
  }
}

TEST(CASNTIdData, WritesSequence) {
  struct Row {
    const char* name;
    const char* oid;
    const char* params;
    const char* encoding;
  } rows[] = {
      {"NULL stands in for empty parameters", "2A", "", "30 05 06 01 2A 05 00"},
      {"parameters as they stand", "2A", "04 01 FF", "30 06 06 01 2A 04 01 FF"},
      {"empty identifier", "", "", "30 04 06 00 05 00"},
      {"GOST identifier with parameter set", kGostOid, kGostParams,
       "30 1C 06 06 2A 85 03 02 02 13 30 12 06 07 2A 85 03 02 02 23 01 06 07 2A 85 03 02 02 1E 01"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const ASNAlgorithmIdentifier id = Make(row.oid, row.params);
    int err = kUntouched;
    const IdentObj encoding = id.WriteData(&err);
    EXPECT_EQ(err, kUntouched);
    EXPECT_EQ(ToHex(encoding), ToHex(Hex(row.encoding)));
    EXPECT_EQ(id.GetObjectSize(), encoding.Count());
    EXPECT_EQ(ToHex(id.WriteData(nullptr)), ToHex(encoding));
  }
}

TEST(CASNTIdData, WriteReadWriteGivesTheSameOctets) {
  const ASNAlgorithmIdentifier ids[] = {Make("2A", ""), Make(kGostOid, kGostParams),
                                        Make("2A 86 48 86 F7 0D 01 01 01", "05 00")};
  for (const ASNAlgorithmIdentifier& id : ids) {
    const std::vector<unsigned char> first = Bytes(id.WriteData(nullptr));
    ASNAlgorithmIdentifier back;
    back.ReadData(first.data(), static_cast<unsigned int>(first.size()), nullptr);
    EXPECT_EQ(ToHex(back.WriteData(nullptr)), ToHex(first));
  }
  // An explicit NULL element given as parameters is written as it stands and
  // reads back as "no parameters".
  const std::vector<unsigned char> withNull = Bytes(Make("2A", "05 00").WriteData(nullptr));
  EXPECT_EQ(ToHex(withNull), "30 05 06 01 2A 05 00");
}

TEST(CASNTIdData, LongIdentifierUsesLongLengthForm) {
  std::vector<unsigned char> oid(200, 0x01);
  oid[0] = 0x2A;
  ASNAlgorithmIdentifier id;
  id.SetObjID(IdentObj(oid.data(), static_cast<unsigned int>(oid.size())));
  const std::vector<unsigned char> encoding = Bytes(id.WriteData(nullptr));
  ASSERT_EQ(encoding.size(), 3u + 3u + 200u + 2u);
  EXPECT_EQ(ToHex(std::vector<unsigned char>(encoding.begin(), encoding.begin() + 6)),
            "30 81 CD 06 81 C8");
  ASNAlgorithmIdentifier back;
  EXPECT_EQ(back.ReadData(encoding.data(), static_cast<unsigned int>(encoding.size()), nullptr),
            206u);  // the NULL is not counted
  EXPECT_TRUE(back == id);
}

TEST(CASNTIdData, Comparisons) {
  const ASNAlgorithmIdentifier a = Make("2A", "04 01 01");
  const ASNAlgorithmIdentifier sameOidOtherParams = Make("2A", "04 01 02");
  const ASNAlgorithmIdentifier bothGreater = Make("2B", "04 01 02");
  const ASNAlgorithmIdentifier oidGreaterOnly = Make("2B", "04 01 01");
  const ASNAlgorithmIdentifier paramsLessOidGreater = Make("2B", "04 01 00");

  EXPECT_TRUE(a == Make("2A", "04 01 01"));
  EXPECT_FALSE(a != Make("2A", "04 01 01"));
  EXPECT_FALSE(a == sameOidOtherParams);
  EXPECT_TRUE(a != sameOidOtherParams);
  EXPECT_FALSE(a == oidGreaterOnly);
  EXPECT_TRUE(a != oidGreaterOnly);

  // < only when both members are less.
  EXPECT_TRUE(a < bothGreater);
  EXPECT_FALSE(a < sameOidOtherParams);  // identifier not less
  EXPECT_FALSE(a < oidGreaterOnly);      // parameters not less
  EXPECT_FALSE(a < paramsLessOidGreater);
  EXPECT_FALSE(a < a);

  // > is the plain complement of <: equal values compare greater.
  EXPECT_TRUE(a > a);
  EXPECT_FALSE(a > bothGreater);
  EXPECT_TRUE(a > sameOidOtherParams);
  EXPECT_TRUE(a > oidGreaterOnly);
  EXPECT_TRUE(bothGreater > a);
}

TEST(CASNTIdData, CopyAssignClear) {
  const ASNAlgorithmIdentifier source = Make(kGostOid, kGostParams);
  ASNAlgorithmIdentifier copy(source);
  EXPECT_TRUE(copy == source);
  CASNTIdData base;
  base = source;
  EXPECT_TRUE(base == source);
  const CASNTIdData& self = base;
  base = self;
  EXPECT_TRUE(base == source);
  base.Clear();
  EXPECT_TRUE(base == CASNTIdData());
  EXPECT_EQ(ToHex(base.WriteData(nullptr)), "30 04 06 00 05 00");
  copy = ASNAlgorithmIdentifier();
  EXPECT_EQ(copy.GetObjID().Count(), 0u);
  EXPECT_EQ(copy.GetAddInfo().Count(), 0u);
}

TEST(CASNTIdData, FileRoundTrip) {
  TempFile file;
  const ASNAlgorithmIdentifier id = Make(kGostOid, kGostParams);
  {
    CRUVFile out(file.path(), "w+b");
    int err = kUntouched;
    EXPECT_EQ(id.WriteData(out, &err), 30u);
    EXPECT_EQ(err, kUntouched);
  }
  EXPECT_EQ(ToHex(file.Contents()), ToHex(id.WriteData(nullptr)));
  CRUVFile in(file.path(), "rb");
  ASNAlgorithmIdentifier back;
  int err = kUntouched;
  EXPECT_EQ(back.ReadData(in, &err), 30u);
  EXPECT_EQ(err, kUntouched);
  EXPECT_TRUE(back == id);
  EXPECT_EQ(in.CurPos(), 30u);
}

TEST(CASNTIdData, FileWriteReturnsWhatTheFileTook) {
  TempFile file(HexBytes("00"));
  CRUVFile readOnly(file.path(), "rb");
  int err = kUntouched;
  EXPECT_EQ(Make("2A", "").WriteData(readOnly, &err), 0u);
  EXPECT_EQ(err, kUntouched);
  EXPECT_EQ(ToHex(file.Contents()), "00");
}

TEST(CASNTIdData, FileReads) {
  struct Row {
    const char* name;
    const char* file;
    unsigned int skip;  // octets before the element
    unsigned int result;
    const char* oid;
    const char* params;
  } rows[] = {
      // Unlike the buffer reader, the file reader counts the NULL it read.
      {"NULL parameters", "30 05 06 01 2A 05 00", 0, 7, "2A", ""},
      {"parameters kept whole", "30 06 06 01 2A 04 01 FF", 0, 8, "2A", "04 01 FF"},
      {"indefinite outer length", "30 80 06 01 2A 05 00 00 00", 0, 9, "2A", ""},
      {"at the current position", "FF FF 30 06 06 01 2A 04 01 FF 77", 2, 8, "2A", "04 01 FF"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TempFile file(HexBytes(row.file));
    CRUVFile in(file.path(), "rb");
    in.Seek(row.skip, 0);
    ASNAlgorithmIdentifier id = Make("01", "04 00");
    int err = kUntouched;
    EXPECT_EQ(id.ReadData(in, &err), row.result);
    EXPECT_EQ(err, kUntouched);
    EXPECT_EQ(ToHex(id.GetObjID()), ToHex(Hex(row.oid)));
    EXPECT_EQ(ToHex(id.GetAddInfo()), ToHex(Hex(row.params)));
  }
}

TEST(CASNTIdData, FileReadFailures) {
  struct Row {
    const char* name;
    const char* file;
    int code;
    const char* where;
    unsigned int result;
    const char* oid;
  } rows[] = {
      {"outer SET", "31 03 06 01 2A", keyasn::kErrMalformed, "CASNTIdData::ReadData", 2, "01"},
      {"first item INTEGER", "30 03 02 01 05", keyasn::kErrMalformed, "CASNTIdData::ReadData", 5,
       "01"},
      // The parameters header is parsed in no octets at all: the record model
      // reports that as malformed.
      {"identifier only", "30 03 06 01 2A", keyasn::kErrMalformed, "CASNTBaseRecord::ReadASNInfo",
       5, "2A"},
      {"contents run past the end of the file", "30 10 06 01 2A", keyasn::kErrTooShort,
       "CASNTIdData::ReadData", 2, "01"},
      {"huge claimed length", "30 84 FF FF FF F0 06 01 2A", keyasn::kErrTooShort,
       "CASNTIdData::ReadData", 6, "01"},
      {"parameters run past the contents", "30 06 06 01 2A 04 05 FF", keyasn::kErrMalformed,
       "CASNTIdData::ReadData", 8, "2A"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TempFile file(HexBytes(row.file));
    {
      CRUVFile in(file.path(), "rb");
      ASNAlgorithmIdentifier id = Make("01", "04 00");
      int err = kUntouched;
      EXPECT_EQ(id.ReadData(in, &err), row.result);
      EXPECT_EQ(err, row.code);
      EXPECT_EQ(ToHex(id.GetObjID()), ToHex(Hex(row.oid)));
    }
    CRUVFile in(file.path(), "rb");
    ASNAlgorithmIdentifier id;
    const auto failure = Raised([&] { id.ReadData(in, nullptr); });
    EXPECT_EQ(failure.code, row.code);
    EXPECT_EQ(failure.where, row.where);
  }
}

TEST(CASNTIdData, EmptyFileFailsInTheHeader) {
  TempFile file;
  CRUVFile in(file.path(), "rb");
  CASNTIdData id;
  int err = 0;
  EXPECT_EQ(id.ReadData(in, &err), 0u);
  EXPECT_NE(err, 0);
}

TEST(ASNAlgorithmIdentifier, Accessors) {
  ASNAlgorithmIdentifier id;
  EXPECT_EQ(id.GetObjID().Count(), 0u);
  EXPECT_EQ(id.GetAddInfo().Count(), 0u);
  id.SetObjID(Hex(kGostOid));
  id.SetAddInfo(Hex(kGostParams));
  EXPECT_EQ(ToHex(id.GetObjID()), ToHex(Hex(kGostOid)));
  EXPECT_EQ(ToHex(id.GetAddInfo()), ToHex(Hex(kGostParams)));
  // The accessors hand out copies.
  IdentObj oid = id.GetObjID();
  oid.Empty();
  EXPECT_EQ(ToHex(id.GetObjID()), ToHex(Hex(kGostOid)));
}

}  // namespace
