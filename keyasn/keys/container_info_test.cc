#include "keyasn/keys/container_info.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "keyasn/codec/error_codes.h"
#include "keyasn/support/file_time.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::Bytes;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::Raised;
using keyasn::testing::ReadHex;
using keyasn::testing::TempFile;
using keyasn::testing::ToHex;

constexpr int kUntouched = -12345;
constexpr unsigned int kAny = ~0u;  // a count the split decides

TEST(ASNContainerInfo, DefaultWritesTheVersionOnly) {
  const ASNContainerInfo info;
  EXPECT_EQ(info.Version, 3u);
  EXPECT_EQ(info.KeyInfo.Count() + info.DefenceKeyInfo.Count() + info.Optional0.Count() +
                info.Optional1.Count(),
            0u);
  int err = kUntouched;
  EXPECT_EQ(ToHex(info.WriteData(&err)), "30 03 02 01 03");
  EXPECT_EQ(err, 0);  // written on success too
  EXPECT_EQ(ToHex(info.WriteData(nullptr)), "30 03 02 01 03");
}

TEST(ASNContainerInfo, WritesOptionalParts) {
  struct Row {
    const char* name;
    unsigned int version;
    const char* keyInfo;
    const char* defence;
    const char* optional0;
    const char* optional1;
    const char* encoding;
  } rows[] = {
      {"key descriptions as they stand", 0x80, "30 06 02 01 00 02 01 00", "30 00", "", "",
       "30 0E 02 02 00 80 30 06 02 01 00 02 01 00 30 00"},
      {"[0] holds the raw octets", 3, "", "", "04 01 FF", "", "30 08 02 01 03 A0 03 04 01 FF"},
      {"[0] octets need not be an element", 3, "", "", "FF", "", "30 06 02 01 03 A0 01 FF"},
      {"[1] holds an OCTET STRING", 3, "", "", "", "CA FE", "30 09 02 01 03 A1 04 04 02 CA FE"},
      {"both, [0] first", 1, "30 00", "30 00", "05 00", "01",
       "30 10 02 01 01 30 00 30 00 A0 02 05 00 A1 03 04 01 01"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ASNContainerInfo info;
    info.Version = row.version;
    info.KeyInfo = Hex(row.keyInfo);
    info.DefenceKeyInfo = Hex(row.defence);
    info.Optional0 = Hex(row.optional0);
    info.Optional1 = Hex(row.optional1);
    const IdentObj encoding = info.WriteData(nullptr);
    EXPECT_EQ(ToHex(encoding), ToHex(Hex(row.encoding)));
    ASNContainerInfo back;
    int err = kUntouched;
    back.ReadData(encoding.GetData(), encoding.Count(), &err);
    EXPECT_EQ(err, 0);
    // A container without key descriptions reads its [0] and [1] as key
    // descriptions: items 2 and 3 are taken by position.
    if (info.KeyInfo.Count() != 0 && info.DefenceKeyInfo.Count() != 0) {
      EXPECT_TRUE(back == info);
    }
  }
}

TEST(ASNContainerInfo, ReadsByPosition) {
  struct Row {
    const char* name;
    const char* input;
    unsigned int result;  // the split's count plus the first item's size (kept)
    unsigned int version;
    const char* keyInfo;
    const char* defence;
    const char* optional0;
    const char* optional1;
  } rows[] = {
      {"a bare number", "30 03 02 01 07", 8, 7, "", "", "", ""},
      {"version of four octets", "30 06 02 04 12 34 56 78", 14, 0x12345678, "", "", "", ""},
      {"leading zero dropped first", "30 07 02 05 00 FF FF FF FF", 16, 0xFFFFFFFF, "", "", "",
       ""},
      {"empty INTEGER", "30 02 02 00", 6, 0, "", "", "", ""},
      {"key description only", "30 05 02 01 03 30 00", 10, 3, "30 00", "", "", ""},
      {"items 2 and 3 taken whatever their tags", "30 08 02 01 03 04 01 AA 05 00", 13, 3,
       "04 01 AA", "05 00", "", ""},
      {"[0] and [1]", "30 12 02 01 03 30 00 30 00 A0 03 04 01 FF A1 04 04 02 CA FE", 23, 3,
       "30 00", "30 00", "04 01 FF", "CA FE"},
      {"[2] skipped", "30 0C 02 01 03 30 00 30 00 A2 03 04 01 FF", 17, 3, "30 00", "30 00", "",
       ""},
      {"primitive [0] kept", "30 0A 02 01 03 30 00 30 00 80 01 FF", 15, 3, "30 00", "30 00", "FF",
       ""},
      {"[1] holding any element gives its value", "30 0C 02 01 03 30 00 30 00 A1 03 02 01 05", 17,
       3, "30 00", "30 00", "", "05"},
      {"the later [0] wins", "30 0F 02 01 03 30 00 30 00 A0 01 01 A0 01 02 A5 00", 20, 3,
       "30 00", "30 00", "02", ""},
      {"first item tested by tag number only", "30 03 82 01 07", 8, 7, "", "", "", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ASNContainerInfo info;
    int err = kUntouched;
    EXPECT_EQ(ReadHex(info, row.input, &err), row.result);
    EXPECT_EQ(err, 0);
    EXPECT_EQ(info.Version, row.version);
    EXPECT_EQ(ToHex(info.KeyInfo), ToHex(Hex(row.keyInfo)));
    EXPECT_EQ(ToHex(info.DefenceKeyInfo), ToHex(Hex(row.defence)));
    EXPECT_EQ(ToHex(info.Optional0), ToHex(Hex(row.optional0)));
    EXPECT_EQ(ToHex(info.Optional1), ToHex(Hex(row.optional1)));
  }
}

TEST(ASNContainerInfo, EmptyInputReadsAsNothing) {
  ASNContainerInfo info;
  info.KeyInfo = Hex("30 00");
  info.Optional0 = Hex("01");
  int err = kUntouched;
  EXPECT_EQ(info.ReadData(nullptr, 0, &err), 0u);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(info.Version, 0u);
  EXPECT_EQ(info.KeyInfo.Count(), 0u);
  EXPECT_EQ(info.Optional0.Count(), 0u);
  EXPECT_EQ(info.ReadData(nullptr, 0, nullptr), 0u);
}

TEST(ASNContainerInfo, Optional1KeptAcrossReads) {
  ASNContainerInfo info;
  ReadHex(info, "30 0D 02 01 03 30 00 30 00 A1 04 04 02 CA FE", nullptr);
  EXPECT_EQ(ToHex(info.Optional1), "CA FE");
  ReadHex(info, "30 07 02 01 04 30 00 30 00", nullptr);
  EXPECT_EQ(info.Version, 4u);
  EXPECT_EQ(ToHex(info.Optional1), "CA FE");  // kept: not reset by a read
  ReadHex(info, "30 0C 02 01 03 30 00 30 00 A1 03 04 01 01", nullptr);
  EXPECT_EQ(ToHex(info.Optional1), "01");
}

TEST(ASNContainerInfo, ReadFailures) {
  struct Row {
    const char* name;
    const char* input;
    int code;
    unsigned int result;
  } rows[] = {
      {"INTEGER of five octets", "30 07 02 05 01 02 03 04 05", keyasn::kErrMalformed, 16},
      {"first item not an INTEGER", "30 03 04 01 07", keyasn::kErrMalformed, 8},
      {"universal item in position 4", "30 0A 02 01 03 30 00 30 00 04 01 FF",
       keyasn::kErrMalformed, 15},
      {"application item in position 4", "30 0A 02 01 03 30 00 30 00 41 01 FF",
       keyasn::kErrMalformed, 15},
      {"not constructed", "04 03 02 01 05", keyasn::kErrBadIdentifier, kAny},
      {"one octet", "30", keyasn::kErrMalformed, 0},
      {"outer element longer than the data", "30 05 02 01 03", keyasn::kErrMalformed, kAny},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ASNContainerInfo info;
    int err = kUntouched;
    const unsigned int result = ReadHex(info, row.input, &err);
    EXPECT_EQ(err, row.code);
    if (row.result != kAny) {
      EXPECT_EQ(result, row.result);
    }
    // Without an error pointer the reader reports under the writer's name (kept).
    ASNContainerInfo thrown;
    const auto failure = Raised([&] { ReadHex(thrown, row.input, nullptr); });
    EXPECT_EQ(failure.code, row.code);
    EXPECT_EQ(failure.where, "ASNContainerInfo::WriteData");
  }
}

TEST(ASNContainerInfo, FailedReadKeepsWhatItRead) {
  ASNContainerInfo info;
  info.Optional1 = Hex("77");
  int err = 0;
  ReadHex(info, "30 12 02 01 05 30 00 30 00 A0 02 05 00 A1 03 04 01 01 04 00", &err);
  EXPECT_EQ(err, keyasn::kErrMalformed);
  EXPECT_EQ(info.Version, 5u);
  EXPECT_EQ(ToHex(info.KeyInfo), "30 00");
  EXPECT_EQ(ToHex(info.DefenceKeyInfo), "30 00");
  EXPECT_EQ(ToHex(info.Optional0), "05 00");
  EXPECT_EQ(ToHex(info.Optional1), "01");

  // A version that fails leaves the reset value.
  info.Version = 9;
  ReadHex(info, "30 07 02 05 01 02 03 04 05", &err);
  EXPECT_EQ(err, keyasn::kErrMalformed);
  EXPECT_EQ(info.Version, 0u);
}

TEST(ASNContainerInfo, InnerFailureOfTheSecondOptionalIsRaised) {
  // The contents of [1] are read with a raising record: a broken OCTET STRING
  // there propagates even when an error pointer is given.
  ASNContainerInfo info;
  int err = kUntouched;
  const auto failure =
      Raised([&] { ReadHex(info, "30 0B 02 01 03 30 00 30 00 A1 02 04 05", &err); });
  EXPECT_EQ(failure.code, keyasn::kErrTooShort);
  EXPECT_EQ(failure.where, "CASNTBaseRecord::ReadASNInfo");
  EXPECT_EQ(err, kUntouched);
  EXPECT_EQ(info.Version, 3u);
}

TEST(ASNContainerInfo, KeyInfoOnRequest) {
  ASNContainerInfo info;
  // An empty description gives a default key info without decoding.
  const ASNKeyInfo none = info.GetKeyInfo();
  EXPECT_TRUE(none == ASNKeyInfo());
  EXPECT_TRUE(info.GetDefenceKeyInfo() == ASNKeyInfo());

  ASNKeyInfo key;
  key.Flags = 0x10;
  key.Octets3 = Hex("33");
  info.SetKeyInfo(key);
  EXPECT_EQ(ToHex(info.KeyInfo), "30 0B 02 01 10 02 01 00 A3 03 04 01 33");
  EXPECT_EQ(info.DefenceKeyInfo.Count(), 0u);
  ASNKeyInfo defence;
  defence.Number = 2;
  info.SetDefenceKeyInfo(defence);
  EXPECT_EQ(ToHex(info.DefenceKeyInfo), "30 06 02 01 00 02 01 02");
  EXPECT_TRUE(info.GetKeyInfo() == key);
  EXPECT_TRUE(info.GetDefenceKeyInfo() == defence);

  // Decoding failures propagate.
  info.KeyInfo = Hex("30 03 02 01 05");
  const auto failure = Raised([&] { info.GetKeyInfo(); });
  EXPECT_EQ(failure.code, keyasn::kErrMalformed);
  EXPECT_EQ(failure.where, "ASNKeyInfo::ReadData ASNTGetSequence");
  info.DefenceKeyInfo = Hex("04 00");
  EXPECT_EQ(Raised([&] { info.GetDefenceKeyInfo(); }).code, keyasn::kErrBadIdentifier);
}

TEST(ASNContainerInfo, EqualityCopyAssign) {
  ASNContainerInfo a;
  a.KeyInfo = Hex("30 00");
  a.DefenceKeyInfo = Hex("30 01 00");
  a.Optional0 = Hex("01");
  a.Optional1 = Hex("02");
  ASNContainerInfo copy(a);
  EXPECT_TRUE(copy == a);
  EXPECT_FALSE(copy != a);
  ASNContainerInfo assigned;
  assigned = a;
  EXPECT_TRUE(assigned == a);
  const ASNContainerInfo& self = assigned;
  assigned = self;
  EXPECT_TRUE(assigned == a);

  struct Row {
    const char* name;
    void (*change)(ASNContainerInfo&);
  } rows[] = {
      {"Version", [](ASNContainerInfo& c) { c.Version = 4; }},
      {"KeyInfo", [](ASNContainerInfo& c) { c.KeyInfo.Empty(); }},
      {"DefenceKeyInfo", [](ASNContainerInfo& c) { c.DefenceKeyInfo = Hex("30 00"); }},
      {"Optional0", [](ASNContainerInfo& c) { c.Optional0 = Hex("02"); }},
      {"Optional1", [](ASNContainerInfo& c) { c.Optional1.Empty(); }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ASNContainerInfo changed = a;
    row.change(changed);
    EXPECT_FALSE(changed == a);
    EXPECT_TRUE(changed != a);
  }
}

// --- A realistic container ---------------------------------------------------

// GOST R 34.10-2001 signature key, its parameter set and digest parameters.
const char kGostSignOid[] = "2A 85 03 02 02 13";
const char kGostSignParams[] =
    "30 12 06 07 2A 85 03 02 02 23 01 06 07 2A 85 03 02 02 1E 01";
// GOST 28147-89 with its CryptoPro-A parameter set.
const char kGostCipherOid[] = "2A 85 03 02 02 15";
const char kGostCipherParams[] = "06 07 2A 85 03 02 02 1F 01";

CRUVFileTime At(unsigned short year, unsigned short month, unsigned short day,
                unsigned short hour, unsigned short minute, unsigned short second) {
  SYSTEMTIME st = {year, month, 0, day, hour, minute, second, 0};
  FILETIME ft = {0, 0};
  EXPECT_TRUE(SystemTimeToFileTime(&st, &ft));
  return CRUVFileTime(ft);
}

IdentObj Pattern(unsigned int size, unsigned char first, unsigned char step) {
  IdentObj out(nullptr, size);
  for (unsigned int i = 0; i < size; ++i) {
    out.GetData()[i] = static_cast<unsigned char>(first + i * step);
  }
  return out;
}

ASNKeyInfo SignatureKey() {
  ASNKeyInfo key;
  key.Flags = 0x1A;
  key.Number = 0x0102;
  key.AlgorithmId.SetObjID(Hex(kGostSignOid));
  key.AlgorithmId.SetAddInfo(Hex(kGostSignParams));
  key.Octets1 = Pattern(16, 0x10, 1);
  key.Octets2 = Pattern(20, 0x20, 1);
  key.Octets3 = Pattern(8, 0x30, 3);
  key.Octets4 = Pattern(4, 0x40, 5);
  key.Octets5 = Pattern(32, 0x50, 7);
  key.Validity.SetTime(At(2024, 1, 1, 0, 0, 0), At(2049, 12, 31, 23, 59, 59));
  IdentObj bits = Pattern(64, 0x81, 11);
  bits.GetData()[63] = 0xF8;  // the three unused bits are zero
  key.KeyBits = CRUVCryptBitBlob(bits.GetData(), bits.Count(), 3);
  key.Octets8 = Hex("08 08");
  key.Octets9 = Hex("09 09 09");
  return key;
}

ASNKeyInfo DefenceKey() {
  ASNKeyInfo key;
  key.Flags = 0x02;
  key.Number = 2;
  key.AlgorithmId.SetObjID(Hex(kGostCipherOid));
  key.AlgorithmId.SetAddInfo(Hex(kGostCipherParams));
  key.Octets1 = Pattern(16, 0xA0, 1);
  key.Octets3 = Pattern(4, 0xB0, 1);
  key.Validity.SetTime(At(2024, 1, 1, 0, 0, 0), At(2055, 6, 30, 23, 59, 59));
  IdentObj bits = Pattern(32, 0x11, 13);
  bits.GetData()[31] = 0xFE;  // one unused bit, zero
  key.KeyBits = CRUVCryptBitBlob(bits.GetData(), bits.Count(), 1);
  return key;
}

ASNContainerInfo Container() {
  ASNContainerInfo container;
  container.Version = 3;
  container.SetKeyInfo(SignatureKey());
  container.SetDefenceKeyInfo(DefenceKey());
  container.Optional0 = Hex("04 04 DE AD BE EF");
  container.Optional1 = Hex("CA FE BA BE");
  return container;
}

void ExpectSameKey(const ASNKeyInfo& a, const ASNKeyInfo& b) {
  EXPECT_TRUE(a == b);
  EXPECT_EQ(a.Flags, b.Flags);
  EXPECT_EQ(a.Number, b.Number);
  EXPECT_TRUE(a.AlgorithmId == b.AlgorithmId);
  EXPECT_EQ(ToHex(a.AlgorithmId.GetObjID()), ToHex(b.AlgorithmId.GetObjID()));
  EXPECT_EQ(ToHex(a.AlgorithmId.GetAddInfo()), ToHex(b.AlgorithmId.GetAddInfo()));
  EXPECT_EQ(ToHex(a.Octets1), ToHex(b.Octets1));
  EXPECT_EQ(ToHex(a.Octets2), ToHex(b.Octets2));
  EXPECT_EQ(ToHex(a.Octets3), ToHex(b.Octets3));
  EXPECT_EQ(ToHex(a.Octets4), ToHex(b.Octets4));
  EXPECT_EQ(ToHex(a.Octets5), ToHex(b.Octets5));
  EXPECT_EQ(ToHex(a.Validity.GetEncoded()), ToHex(b.Validity.GetEncoded()));
  EXPECT_EQ(a.Validity.GetTime(true).GetTicks(), b.Validity.GetTime(true).GetTicks());
  EXPECT_EQ(a.Validity.GetTime(false).GetTicks(), b.Validity.GetTime(false).GetTicks());
  EXPECT_EQ(ToHex(a.KeyBits), ToHex(b.KeyBits));
  EXPECT_EQ(a.KeyBits.GetUnusedBits(), b.KeyBits.GetUnusedBits());
  EXPECT_EQ(ToHex(a.Octets8), ToHex(b.Octets8));
  EXPECT_EQ(ToHex(a.Octets9), ToHex(b.Octets9));
}

std::vector<unsigned char> LoadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), {});
}

// Sample compares `bytes` with samples/<name>; with KEYASN_WRITE_SAMPLES set it
// writes the file instead.
void Sample(const std::string& name, const IdentObj& bytes) {
  const std::string path = std::string(KEYASN_SOURCE_DIR) + "/samples/" + name;
  if (std::getenv("KEYASN_WRITE_SAMPLES") != nullptr) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.GetData()), bytes.Count());
    ASSERT_TRUE(out.good()) << path;
    return;
  }
  EXPECT_EQ(ToHex(LoadFile(path)), ToHex(bytes)) << path;
}

// Asn1Parse runs openssl's DER parser over `bytes` and returns its output; the
// exit status goes to `status`.
std::string Asn1Parse(const IdentObj& bytes, int& status) {
  TempFile file(Bytes(bytes));
  const std::string command =
      std::string("openssl asn1parse -inform DER -in '") + file.path() + "' 2>&1";
  std::FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) {
    status = -1;
    return "";
  }
  std::string output;
  char line[512];
  while (std::fgets(line, sizeof line, pipe) != nullptr) output += line;
  status = pclose(pipe);
  return output;
}

TEST(ASNContainerInfo, RealisticContainerRoundTrip) {
  const ASNContainerInfo container = Container();
  int err = kUntouched;
  const IdentObj encoding = container.WriteData(&err);
  ASSERT_EQ(err, 0);
  ASSERT_GT(encoding.Count(), 300u);

  const std::vector<unsigned char> bytes = Bytes(encoding);  // exactly sized
  ASNContainerInfo back;
  back.Version = 0;
  err = kUntouched;
  // The count is the split's plus the first item's size (kept for compatibility).
  EXPECT_EQ(back.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size()), &err),
            bytes.size() + 3);
  EXPECT_EQ(err, 0);
  EXPECT_TRUE(back == container);
  EXPECT_EQ(back.Version, 3u);
  EXPECT_EQ(ToHex(back.Optional0), "04 04 DE AD BE EF");
  EXPECT_EQ(ToHex(back.Optional1), "CA FE BA BE");
  ExpectSameKey(back.GetKeyInfo(), SignatureKey());
  ExpectSameKey(back.GetDefenceKeyInfo(), DefenceKey());
  EXPECT_EQ(ToHex(back.WriteData(nullptr)), ToHex(encoding));

  // The validity periods: UTCTime up to 2049, GeneralizedTime after 2050.
  const ASNKeyInfo key = back.GetKeyInfo();
  const ASNKeyInfo defence = back.GetDefenceKeyInfo();
  EXPECT_EQ(key.Validity.GetTime(true).GetTicks(), At(2024, 1, 1, 0, 0, 0).GetTicks());
  EXPECT_EQ(key.Validity.GetTime(false).GetTicks(), At(2049, 12, 31, 23, 59, 59).GetTicks());
  EXPECT_EQ(defence.Validity.GetTime(false).GetTicks(), At(2055, 6, 30, 23, 59, 59).GetTicks());
  EXPECT_EQ(key.Validity.GetEncoded().GetData()[2], 0x17);
  EXPECT_EQ(defence.Validity.GetEncoded().GetData()[2 + 15], 0x18);

  int status = 0;
  const std::string parsed = Asn1Parse(encoding, status);
  EXPECT_EQ(status, 0) << parsed;
  EXPECT_EQ(parsed.find("rror"), std::string::npos) << parsed;
  EXPECT_NE(parsed.find(":240101000000Z"), std::string::npos) << parsed;
  EXPECT_NE(parsed.find(":491231235959Z"), std::string::npos) << parsed;
  EXPECT_NE(parsed.find("GENERALIZEDTIME"), std::string::npos) << parsed;
  EXPECT_NE(parsed.find(":20550630235959Z"), std::string::npos) << parsed;
  EXPECT_NE(parsed.find("BIT STRING"), std::string::npos) << parsed;

  Sample("container.der", encoding);
  Sample("key_info.der", container.KeyInfo);
  Sample("defence_key_info.der", container.DefenceKeyInfo);
  Sample("algorithm_identifier.der", SignatureKey().AlgorithmId.WriteData(nullptr));
  Sample("validity.der", DefenceKey().Validity.GetEncoded());
}

TEST(ASNContainerInfo, RealisticContainerEveryPrefixReadsSafely) {
  const std::vector<unsigned char> whole = Bytes(Container().WriteData(nullptr));
  for (size_t n = 0; n < whole.size(); ++n) {
    SCOPED_TRACE(n);
    const std::vector<unsigned char> prefix(whole.begin(), whole.begin() + n);
    ASNContainerInfo info;
    int err = 0;
    info.ReadData(prefix.data(), static_cast<unsigned int>(n), &err);
    if (n != 0) {
      EXPECT_NE(err, 0);
    }
  }
  // The key descriptions inside, too.
  const std::vector<unsigned char> key = Bytes(Container().KeyInfo);
  for (size_t n = 0; n < key.size(); ++n) {
    SCOPED_TRACE(n);
    const std::vector<unsigned char> prefix(key.begin(), key.begin() + n);
    ASNKeyInfo info;
    int err = 0;
    info.ReadData(prefix.data(), static_cast<unsigned int>(n), &err);
    EXPECT_NE(err, 0);
  }
}

}  // namespace
