#include "keyasn/keys/encr_params.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::AcceptedPrefixes;
using keyasn::testing::Cat;
using keyasn::testing::HexBytes;
using keyasn::testing::Octets;
using keyasn::testing::Size;
using keyasn::testing::Tlv;
using keyasn::testing::ToHex;

constexpr char kErrorLine[] = "CASNEncrParams- Error write data \n";

Octets Box(unsigned char first) {
  Octets box(64);
  for (unsigned int i = 0; i < 64; ++i) box[i] = static_cast<unsigned char>(first + i * 3);
  return box;
}

// Dsdr builds the 70-octet binary form: magic, number octets, swapped box.
Octets Dsdr(unsigned char low, unsigned char high, const Octets& box) {
  Octets out = {0x40, 0x01, 0x00, 0x00, low, high};
  for (unsigned char b : box) out.push_back(static_cast<unsigned char>(b << 4 | b >> 4));
  return out;
}

// Element builds the DER form from its parts.
Octets Element(const Octets& setOid, const Octets& box, const Octets& mode, const Octets& shift,
               const Octets& meshing, const Octets& extra = {}) {
  return Tlv(0x30, Cat({setOid, Tlv(0x30, Cat({Tlv(0x04, box), mode, shift, meshing, extra}))}));
}

const Octets kSetA = HexBytes("06 07 2A 85 03 02 02 1F 01");       // 1.2.643.2.2.31.1
const Octets kMeshing = HexBytes("30 09 06 07 2A 85 03 02 02 0E 01");  // 1.2.643.2.2.14.1

TEST(CASNEncrParams, Defaults) {
  CASNEncrParams params;
  EXPECT_EQ(params.paramSetOid, "1.2.643.2.9.7.5.1.");
  EXPECT_EQ(params.keyMeshingOid, "1.2.643.2.2.14.1");
  EXPECT_EQ(params.mode, 1);
  EXPECT_EQ(params.shiftBits, 64);
  EXPECT_TRUE(params.substitutionBox.empty());
}

TEST(CASNEncrParams, DsdrNumberCompletesTheDefaultPrefix) {
  struct Row {
    unsigned char low, high;
    const char* oid;
  };
  const Row rows[] = {
      {0x01, 0x00, "1.2.643.2.9.7.5.1.1"},
      {0x00, 0x01, "1.2.643.2.9.7.5.1.16"},  // the high octet counts sixteen
      {0x0F, 0x01, "1.2.643.2.9.7.5.1.31"},
      {0x07, 0x00, "1.2.643.2.9.7.5.1.7"},
      {0x00, 0x00, "1.2.643.2.9.7.5.1.0"},
      {0xFF, 0xFF, "1.2.643.2.9.7.5.1.4335"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.oid);
    CASNEncrParams params;
    const Octets input = Dsdr(row.low, row.high, Box(0x10));
    EXPECT_EQ(params.GetFromDsdr(input.data(), Size(input)), 0);
    EXPECT_EQ(params.paramSetOid, row.oid);
    const Octets der = params.WriteData();
    CASNEncrParams back;
    EXPECT_EQ(back.ReadData(der.data(), Size(der)), 0);
    EXPECT_EQ(back.paramSetOid, row.oid);
  }
}

TEST(CASNEncrParams, DsdrBoxHasItsHalfOctetsExchanged) {
  Octets input = {0x40, 0x01, 0x00, 0x00, 0x01, 0x00};
  for (unsigned int i = 0; i < 64; ++i) input.push_back(static_cast<unsigned char>(i == 0 ? 0x1F : i));
  input.push_back(0xEE);  // beyond the 70th octet: ignored
  CASNEncrParams params;
  params.substitutionBox.assign(100, 0x77);
  params.mode = 2;
  params.shiftBits = 32;
  params.keyMeshingOid = "1.2.3";
  EXPECT_EQ(params.GetFromDsdr(input.data(), Size(input)), 0);
  ASSERT_EQ(params.substitutionBox.size(), 64u);
  EXPECT_EQ(params.substitutionBox[0], 0xF1);
  EXPECT_EQ(params.substitutionBox[1], 0x10);
  EXPECT_EQ(params.substitutionBox[0x2B], 0xB2);
  EXPECT_EQ(params.mode, 2);  // untouched
  EXPECT_EQ(params.shiftBits, 32);
  EXPECT_EQ(params.keyMeshingOid, "1.2.3");
}

TEST(CASNEncrParams, DsdrAppendsToWhatTheIdentifierHolds) {
  CASNEncrParams params;
  const Octets input = Dsdr(0x02, 0x00, Box(0));
  EXPECT_EQ(params.GetFromDsdr(input.data(), Size(input)), 0);
  EXPECT_EQ(params.GetFromDsdr(input.data(), Size(input)), 0);
  EXPECT_EQ(params.paramSetOid, "1.2.643.2.9.7.5.1.22");
}

TEST(CASNEncrParams, DsdrRefusals) {
  const Octets good = Dsdr(0x01, 0x00, Box(0));
  struct Row {
    const char* name;
    Octets input;
  };
  Octets badMagic = good;
  badMagic[3] = 0x01;
  Octets badFirst = good;
  badFirst[0] = 0x41;
  const Row rows[] = {
      {"69 octets", Octets(good.begin(), good.end() - 1)},
      {"no octets", Octets()},
      {"magic 40 01 00 01", badMagic},
      {"magic 41 01 00 00", badFirst},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNEncrParams params;
    params.substitutionBox = {1, 2, 3};
    EXPECT_EQ(params.GetFromDsdr(row.input.empty() ? nullptr : row.input.data(),
                                 Size(row.input)),
              134);
    EXPECT_EQ(params.paramSetOid, "1.2.643.2.9.7.5.1.");
    EXPECT_EQ(params.substitutionBox, (Octets{1, 2, 3}));
  }
  CASNEncrParams params;
  EXPECT_EQ(params.GetFromDsdr(nullptr, 70), 134);
}

TEST(CASNEncrParams, WritesTheLayout) {
  CASNEncrParams params;
  params.paramSetOid = "1.2.643.2.2.31.1";
  params.substitutionBox = {0xAA, 0xBB};
  const Octets der = params.WriteData();
  const Octets expected = Element(kSetA, {0xAA, 0xBB}, HexBytes("02 01 01"),
                                  HexBytes("02 01 40"), kMeshing);
  EXPECT_EQ(ToHex(der), ToHex(expected));
}

TEST(CASNEncrParams, EverySubstitutionBoxLengthIsWrittenAsItIs) {
  for (size_t n : {0u, 1u, 63u, 64u, 65u, 127u, 128u, 300u, 70000u}) {
    SCOPED_TRACE(n);
    CASNEncrParams params;
    params.substitutionBox.assign(n, 0x5A);
    params.paramSetOid = "1.2.643.2.2.31.1";
    const Octets der = params.WriteData();
    ASSERT_FALSE(der.empty());
    CASNEncrParams back;
    back.substitutionBox = {9};
    EXPECT_EQ(back.ReadData(der.data(), Size(der)), 0);
    EXPECT_EQ(back.substitutionBox, params.substitutionBox);
  }
}

TEST(CASNEncrParams, MembersSurviveWritingAndReading) {
  CASNEncrParams params;
  params.paramSetOid = "1.2.643.2.2.31.4";
  params.keyMeshingOid = "1.2.643.2.2.14.0";
  params.mode = 0;
  params.shiftBits = 0x7FFFFFFF;
  params.substitutionBox = Box(0x21);
  const Octets der = params.WriteData();
  CASNEncrParams back;
  EXPECT_EQ(back.ReadData(der.data(), Size(der)), 0);
  EXPECT_EQ(back.paramSetOid, params.paramSetOid);
  EXPECT_EQ(back.keyMeshingOid, params.keyMeshingOid);
  EXPECT_EQ(back.mode, 0);
  EXPECT_EQ(back.shiftBits, 0x7FFFFFFF);
  EXPECT_EQ(back.substitutionBox, params.substitutionBox);
  EXPECT_EQ(back.WriteData(), der);
}

TEST(CASNEncrParams, AFifthInnerItemIsIgnored) {
  const Octets der = Element(kSetA, Box(0), HexBytes("02 01 02"), HexBytes("02 01 20"), kMeshing,
                             HexBytes("05 00"));
  CASNEncrParams params;
  EXPECT_EQ(params.ReadData(der.data(), Size(der)), 0);
  EXPECT_EQ(params.mode, 2);
  EXPECT_EQ(params.shiftBits, 32);
  EXPECT_EQ(params.paramSetOid, "1.2.643.2.2.31.1");
}

// What a failed read leaves: the members replaced before the failure.
struct After {
  bool setOid, box, mode, shift;
};

TEST(CASNEncrParams, ReadFailures) {
  const Octets box = Box(0);
  const Octets mode = HexBytes("02 01 02");
  const Octets shift = HexBytes("02 01 20");
  const Octets inner = Tlv(0x30, Cat({Tlv(0x04, box), mode, shift, kMeshing}));
  struct Row {
    const char* name;
    Octets der;
    int code;
    After after;
  };
  const Row rows[] = {
      {"outer of three items", Tlv(0x30, Cat({kSetA, inner, HexBytes("05 00")})), 206, {}},
      {"outer of one item", Tlv(0x30, kSetA), 206, {}},
      {"first item an OCTET STRING", Tlv(0x30, Cat({HexBytes("04 01 2A"), inner})), 131, {}},
      {"inner of three items", Tlv(0x30, Cat({kSetA, Tlv(0x30, Cat({Tlv(0x04, box), mode, shift}))})),
       206, {true, false, false, false}},
      {"inner not constructed", Tlv(0x30, Cat({kSetA, HexBytes("04 01 00")})), 205,
       {true, false, false, false}},
      {"mode wider than four octets",
       Element(kSetA, box, HexBytes("02 05 01 00 00 00 00"), shift, kMeshing), 131,
       {true, true, false, false}},
      {"shift an OCTET STRING", Element(kSetA, box, mode, HexBytes("04 01 20"), kMeshing), 131,
       {true, true, true, false}},
      {"key meshing not constructed", Element(kSetA, box, mode, shift, HexBytes("06 01 2A")),
       205, {true, true, true, true}},
      {"key meshing empty", Element(kSetA, box, mode, shift, HexBytes("30 00")), 206,
       {true, true, true, true}},
      {"key meshing not an OBJECT IDENTIFIER",
       Element(kSetA, box, mode, shift, HexBytes("30 03 04 01 2A")), 131, {true, true, true, true}},
      {"not constructed", HexBytes("04 01 00"), 205, {}},
      {"one octet", HexBytes("30"), 206, {}},
      {"nothing", Octets(), 206, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNEncrParams params;
    EXPECT_EQ(params.ReadData(row.der.empty() ? nullptr : row.der.data(), Size(row.der)),
              row.code);
    const CASNEncrParams fresh;
    EXPECT_EQ(params.paramSetOid != fresh.paramSetOid, row.after.setOid);
    EXPECT_EQ(params.substitutionBox != fresh.substitutionBox, row.after.box);
    EXPECT_EQ(params.mode != fresh.mode, row.after.mode);
    EXPECT_EQ(params.shiftBits != fresh.shiftBits, row.after.shift);
    EXPECT_EQ(params.keyMeshingOid, fresh.keyMeshingOid);
  }
}

TEST(CASNEncrParams, TheBoxMustBeAnOctetString) {
  // The octet-string decoder checks the tag: an INTEGER there is a wrong type.
  const Octets der = Tlv(0x30, Cat({kSetA, Tlv(0x30, Cat({HexBytes("02 01 05"), HexBytes("02 01 02"),
                                                         HexBytes("02 01 20"), kMeshing}))}));
  CASNEncrParams params;
  EXPECT_EQ(params.ReadData(der.data(), Size(der)), 131);
  EXPECT_EQ(params.paramSetOid, "1.2.643.2.2.31.1");
  EXPECT_TRUE(params.substitutionBox.empty());
}

TEST(CASNEncrParams, WriteFailureGivesAnEmptyResultAndOneLine) {
  struct Row {
    const char* name;
    int mode, shift;
  };
  for (const Row& row : {Row{"negative mode", -1, 64}, Row{"negative shift", 1, -64}}) {
    SCOPED_TRACE(row.name);
    CASNEncrParams params;
    params.mode = row.mode;
    params.shiftBits = row.shift;
    ::testing::internal::CaptureStderr();
    const Octets der = params.WriteData();
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_TRUE(der.empty());
    EXPECT_EQ(err, kErrorLine);
  }
  CASNEncrParams good;
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(good.WriteData().empty());
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(CASNEncrParams, EveryProperPrefixIsRefused) {
  CASNEncrParams params;
  params.paramSetOid = "1.2.643.2.2.31.1";
  params.substitutionBox = Box(3);
  const Octets der = params.WriteData();
  EXPECT_TRUE(AcceptedPrefixes(der, [](const unsigned char* d, unsigned int n) {
                CASNEncrParams read;
                return read.ReadData(d, n) == 0;
              }).empty());
}

// ---- The parameter sets published for GOST 28147-89 ----

struct ParamSet {
  std::string name, oid, meshing;
  int mode = 0, shift = 0;
  Octets box;
};

std::vector<ParamSet> PublishedSets() {
  std::ifstream in(std::string(KEYASN_SHARED_DIR) + "/data/gost28147-paramsets.txt");
  std::vector<ParamSet> sets;
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    ParamSet set;
    std::string box;
    fields >> set.name >> set.oid >> set.mode >> set.shift >> set.meshing >> box;
    if (!fields) continue;
    set.box = HexBytes(box);
    sets.push_back(set);
  }
  return sets;
}

std::string RunCommand(const std::string& command, int* status) {
  std::string out;
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return out;
  char buffer[4096];
  size_t n;
  while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) out.append(buffer, n);
  *status = pclose(pipe);
  return out;
}

TEST(CASNEncrParams, PublishedParameterSetsRoundTripAndParseWithOpenSsl) {
  const std::vector<ParamSet> sets = PublishedSets();
  ASSERT_EQ(sets.size(), 5u);
  for (const ParamSet& set : sets) {
    SCOPED_TRACE(set.name + " " + set.oid);
    ASSERT_EQ(set.box.size(), 64u);
    CASNEncrParams params;
    params.paramSetOid = set.oid;
    params.keyMeshingOid = set.meshing;
    params.mode = set.mode;
    params.shiftBits = set.shift;
    params.substitutionBox = set.box;
    const Octets der = params.WriteData();
    ASSERT_FALSE(der.empty());

    CASNEncrParams back;
    EXPECT_EQ(back.ReadData(der.data(), Size(der)), 0);
    EXPECT_EQ(back.paramSetOid, set.oid);
    EXPECT_EQ(back.keyMeshingOid, set.meshing);
    EXPECT_EQ(back.mode, set.mode);
    EXPECT_EQ(back.shiftBits, set.shift);
    EXPECT_EQ(back.substitutionBox, set.box);
    EXPECT_EQ(back.WriteData(), der);

    // The binary form carries the same box with its half-octets exchanged.
    CASNEncrParams fromDsdr;
    const Octets dsdr = Dsdr(0x01, 0x00, set.box);
    EXPECT_EQ(fromDsdr.GetFromDsdr(dsdr.data(), Size(dsdr)), 0);
    EXPECT_EQ(fromDsdr.substitutionBox, set.box);

    // OpenSSL's generic parser accepts the DER and sees the whole layout.
    char path[] = "/tmp/keyasn_params_XXXXXX";
    const int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(write(fd, der.data(), der.size()), static_cast<ssize_t>(der.size()));
    close(fd);
    int status = -1;
    const std::string parsed =
        RunCommand(std::string("openssl asn1parse -inform DER -in '") + path + "' 2>&1", &status);
    std::remove(path);
    EXPECT_EQ(status, 0) << parsed;
    EXPECT_NE(parsed.find("d=2  hl=2 l=  64 prim: OCTET STRING"), std::string::npos) << parsed;
    EXPECT_NE(parsed.find("d=2  hl=2 l=   1 prim: INTEGER           :0" +
                          std::to_string(set.mode)),
              std::string::npos)
        << parsed;
    EXPECT_NE(parsed.find("INTEGER           :40"), std::string::npos) << parsed;
    EXPECT_NE(parsed.find("d=3  hl=2 l=   7 prim: OBJECT"), std::string::npos) << parsed;
    EXPECT_EQ(parsed.find("Error"), std::string::npos) << parsed;
  }
}

}  // namespace
