#include "keyasn/keys/public_key_info.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <list>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "keyasn/codec/decoder.h"
#include "keyasn/codec/header.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::AcceptedPrefixes;
using keyasn::testing::Base64;
using keyasn::testing::Bytes;
using keyasn::testing::ExpectStatus;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::ReadsWithoutStatus;
using keyasn::testing::Size;
using keyasn::testing::ToHex;

constexpr char kRead[] = "CASNPublicKeyInfo::ReadData";
constexpr char kSplitRead[] = "CASNPublicKeyInfo::ReadData ASNTGetSequence";
constexpr char kIdRead[] = "CASNTIdData::ReadData";
constexpr char kSplit[] = "ASNTGetSequence";
constexpr char kRecordRead[] = "CASNTBaseRecord::ReadASNInfo";

// rsaEncryption with NULL parameters, as certificates carry it.
constexpr char kRsaAlg[] = "30 0D 06 09 2A 86 48 86 F7 0D 01 01 01 05 00";

CASNTIdData IdFrom(const std::string& hex) {
  const std::vector<unsigned char> bytes = HexBytes(hex);
  CASNTIdData id;
  id.ReadData(bytes.data(), Size(bytes), nullptr);
  return id;
}

TEST(CASNPublicKeyInfo, WritesTheKeyAsABitStringWithoutUnusedBits) {
  CASNPublicKeyInfo info;
  info.idData = IdFrom(kRsaAlg);
  info.publicKey = Hex("AA BB CC");
  const IdentObj der = info.WriteData();
  EXPECT_EQ(ToHex(der), std::string("30 15 ") + kRsaAlg + " 03 04 00 AA BB CC");

  CASNPublicKeyInfo back;
  const std::vector<unsigned char> bytes = Bytes(der);
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes)), 23);
  EXPECT_EQ(back.idData, info.idData);
  EXPECT_EQ(ToHex(back.publicKey), "AA BB CC");
  EXPECT_EQ(back.WriteData(), der);
}

TEST(CASNPublicKeyInfo, EmptyKeyIsABitStringOfOneOctet) {
  CASNPublicKeyInfo info;
  info.idData = IdFrom(kRsaAlg);
  const IdentObj der = info.WriteData();
  EXPECT_EQ(ToHex(der), std::string("30 12 ") + kRsaAlg + " 03 01 00");
  CASNPublicKeyInfo back;
  back.publicKey = Hex("01");
  const std::vector<unsigned char> bytes = Bytes(der);
  EXPECT_EQ(back.ReadData(bytes.data(), Size(bytes)), 20);
  EXPECT_EQ(back.publicKey.Count(), 0u);
}

TEST(CASNPublicKeyInfo, TheUnusedBitCountIsDroppedUnchecked) {
  for (const char* bits : {"03 02 07 80", "03 02 00 80", "03 02 FF 80"}) {
    SCOPED_TRACE(bits);
    const std::vector<unsigned char> bytes =
        HexBytes(std::string("30 13 ") + kRsaAlg + " " + bits);
    CASNPublicKeyInfo info;
    EXPECT_EQ(info.ReadData(bytes.data(), Size(bytes)), 21);
    EXPECT_EQ(ToHex(info.publicKey), "80");
  }
}

TEST(CASNPublicKeyInfo, ABitStringWithoutContentsGivesAnEmptyKey) {
  const std::vector<unsigned char> bytes = HexBytes(std::string("30 11 ") + kRsaAlg + " 03 00");
  CASNPublicKeyInfo info;
  info.publicKey = Hex("01");
  EXPECT_EQ(info.ReadData(bytes.data(), Size(bytes)), 19);
  EXPECT_EQ(info.publicKey.Count(), 0u);
}

TEST(CASNPublicKeyInfo, ReturnsTheSplitterLength) {
  // Octets behind the element are not counted.
  const std::vector<unsigned char> bytes =
      HexBytes(std::string("30 13 ") + kRsaAlg + " 03 02 00 80 FF FF");
  CASNPublicKeyInfo info;
  EXPECT_EQ(info.ReadData(bytes.data(), Size(bytes)), 21);
}

TEST(CASNPublicKeyInfo, ReadFailures) {
  struct Row {
    const char* name;
    std::string hex;
    int code;
    const char* where;
    bool idDataRead;  // the identifier data was replaced before the failure
  };
  const Row rows[] = {
      {"one item", std::string("30 0F ") + kRsaAlg, 206, kSplitRead, false},
      {"three items", std::string("30 15 ") + kRsaAlg + " 03 02 00 80 05 00", 206, kSplitRead,
       false},
      {"no items", "30 00", 206, kSplitRead, false},
      {"key an OCTET STRING", std::string("30 13 ") + kRsaAlg + " 04 02 00 80", 206, kRead, true},
      {"not constructed", "04 02 00 80", 205, kSplit, false},
      {"one octet", "30", 206, kRecordRead, false},
      {"description not a SEQUENCE", "30 08 31 02 06 00 03 02 00 80", 206, kIdRead, false},
      {"key indefinite", std::string("30 17 ") + kRsaAlg + " 23 80 03 02 00 80 00 00", 37,
       kRecordRead, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNPublicKeyInfo info;
    info.publicKey = Hex("EE");
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    ExpectStatus([&] { info.ReadData(bytes.data(), Size(bytes)); }, row.code, row.where);
    EXPECT_EQ(info.idData == IdFrom(kRsaAlg), row.idDataRead);
    EXPECT_EQ(ToHex(info.publicKey), "EE");
  }
}

TEST(CASNPublicKeyInfo, EveryProperPrefixIsRefused) {
  const std::vector<unsigned char> bytes =
      HexBytes(std::string("30 15 ") + kRsaAlg + " 03 04 00 AA BB CC");
  EXPECT_TRUE(AcceptedPrefixes(bytes, ReadsWithoutStatus<CASNPublicKeyInfo>).empty());
}

// ---- The system's CA certificates, with OpenSSL as the oracle ----

std::vector<std::vector<unsigned char>> PemCertificates(const std::string& path) {
  std::ifstream in(path);
  std::vector<std::vector<unsigned char>> certs;
  std::string line, body;
  bool inside = false;
  while (std::getline(in, line)) {
    if (line.find("-----BEGIN CERTIFICATE-----") == 0) {
      inside = true;
      body.clear();
    } else if (line.find("-----END CERTIFICATE-----") == 0) {
      inside = false;
      certs.push_back(Base64(body));
    } else if (inside) {
      body += line;
    }
  }
  return certs;
}

std::string Run(const std::string& command) {
  std::string out;
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return out;
  char buffer[4096];
  size_t n;
  while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) out.append(buffer, n);
  const int status = pclose(pipe);
  if (status != 0) out.clear();
  return out;
}

// One line of `openssl asn1parse`: "  19:d=1  hl=4 l= 527 prim: BIT STRING".
struct ParsedLine {
  size_t offset = 0, depth = 0, header = 0, length = 0;
  std::string type, value;
};

bool ParseLine(const std::string& line, ParsedLine* out) {
  unsigned long off, d, hl, l;
  char kind[8];
  int used = 0;
  if (std::sscanf(line.c_str(), " %lu:d=%lu hl=%lu l=%lu %7[a-z]: %n", &off, &d, &hl, &l, kind,
                  &used) != 5)
    return false;
  out->offset = off;
  out->depth = d;
  out->header = hl;
  out->length = l;
  std::string rest = line.substr(static_cast<size_t>(used));
  const size_t colon = rest.find(':');
  out->value = colon == std::string::npos ? "" : rest.substr(colon + 1);
  rest = rest.substr(0, colon);
  while (!rest.empty() && rest.back() == ' ') rest.pop_back();
  out->type = rest;
  return true;
}

// What OpenSSL reports for the public key of one certificate.
struct OracleKey {
  std::vector<unsigned char> certificate;  // the certificate's DER, as OpenSSL holds it
  std::string algorithm;                   // OpenSSL's name of the algorithm
  std::vector<unsigned char> oid;          // contents octets of the algorithm identifier
  std::vector<unsigned char> key;          // BIT STRING contents after the unused-bits octet
};

// OracleKeys collects every certificate of the bundle into one PKCS#7 structure with
// OpenSSL and walks OpenSSL's own parse of it: certificates are the SEQUENCEs at
// depth 4, their fields at depth 6, the key's algorithm at depth 8 and its BIT
// STRING at depth 7.
std::vector<OracleKey> OracleKeys(const std::string& bundle) {
  std::vector<OracleKey> keys;
  char path[] = "/tmp/keyasn_bundle_XXXXXX";
  const int fd = mkstemp(path);
  if (fd < 0) return keys;
  close(fd);
  const std::string der = path;
  if (Run("openssl crl2pkcs7 -nocrl -certfile '" + bundle + "' -outform DER -out '" + der +
          "' && echo ok") != "ok\n") {
    std::remove(path);
    return keys;
  }
  std::ifstream in(der, std::ios::binary);
  const std::vector<unsigned char> pkcs7((std::istreambuf_iterator<char>(in)),
                                         std::istreambuf_iterator<char>());
  std::istringstream parse(Run("openssl asn1parse -inform DER -in '" + der + "'"));
  std::remove(path);

  std::string line;
  int field = -1;          // index of the current field of the certificate body
  int keyField = -1;       // index of the public key info among those fields
  bool inBody = false, inKey = false;
  while (std::getline(parse, line)) {
    ParsedLine p;
    if (!ParseLine(line, &p)) continue;
    if (p.offset + p.header + p.length > pkcs7.size()) continue;
    const unsigned char* at = pkcs7.data() + p.offset;
    if (p.depth == 4 && p.type == "SEQUENCE") {
      keys.push_back(OracleKey());
      keys.back().certificate.assign(at, at + p.header + p.length);
      field = -1;
      inBody = false;
      inKey = false;
    } else if (keys.empty()) {
      continue;
    } else if (p.depth == 5) {
      inBody = field == -1;
      field = 0;
    } else if (p.depth == 6 && inBody) {
      if (field == 0) keyField = p.type == "cont [ 0 ]" ? 6 : 5;
      inKey = field == keyField;
      ++field;
    } else if (inKey && p.depth == 8 && p.type == "OBJECT" && keys.back().oid.empty()) {
      keys.back().algorithm = p.value;
      keys.back().oid.assign(at + p.header, at + p.header + p.length);
    } else if (inKey && p.depth == 7 && p.type == "BIT STRING" && p.length >= 1) {
      keys.back().key.assign(at + p.header + 1, at + p.header + p.length);
    }
  }
  return keys;
}

// SubjectPublicKeyInfo returns the public key element of a certificate, found with
// the library's own splitter.
IdentObj SubjectPublicKeyInfo(const std::vector<unsigned char>& certificate) {
  std::list<IdentObj> outer, body;
  ASNTGetSequence(outer, certificate.data(), Size(certificate), nullptr);
  if (outer.empty()) return IdentObj();
  ASNTGetSequence(body, outer.front().GetData(), outer.front().Count(), nullptr);
  auto it = body.begin();
  if (it != body.end() && it->Count() && it->GetData()[0] == 0xA0) ++it;  // version
  for (int i = 0; i < 5 && it != body.end(); ++i) ++it;
  return it == body.end() ? IdentObj() : *it;
}

// OidOf returns the contents octets and dotted text of the identifier that the
// identifier data writes.
void OidOf(const CASNTIdData& id, std::vector<unsigned char>* octets, std::string* text) {
  const IdentObj der = id.WriteData(nullptr);
  std::list<IdentObj> items;
  ASNTGetSequence(items, der.GetData(), der.Count(), nullptr);
  ASSERT_FALSE(items.empty());
  ASNT_ASN_STRUCT_INFO info{};
  ASSERT_EQ(ASNTGetAsnInfo(info, items.front().GetData(), items.front().Count()), 0);
  octets->assign(info.Contents, info.Contents + info.Length);
  int code = -1;
  const IdentObj dotted = ASNTLowDecodeData(info, nullptr, 0, &code);
  ASSERT_EQ(code, 0);
  text->assign(reinterpret_cast<const char*>(dotted.GetData()), dotted.Count());
}

TEST(CASNPublicKeyInfo, ReadsEveryCertificateOfTheSystemBundleAsOpenSslDoes) {
  const std::string bundle = "/etc/ssl/certs/ca-certificates.crt";
  const std::vector<std::vector<unsigned char>> certificates = PemCertificates(bundle);
  ASSERT_GT(certificates.size(), 50u) << "the ca-certificates bundle is needed: " << bundle;
  const std::vector<OracleKey> oracle = OracleKeys(bundle);
  ASSERT_EQ(oracle.size(), certificates.size()) << "openssl is needed as the oracle";

  const std::map<std::string, std::string> names = {
      {"rsaEncryption", "1.2.840.113549.1.1.1"}, {"id-ecPublicKey", "1.2.840.10045.2.1"},
      {"rsassaPss", "1.2.840.113549.1.1.10"},    {"ED25519", "1.3.101.112"},
      {"ED448", "1.3.101.113"}};
  size_t named = 0, withParameters = 0;
  for (size_t i = 0; i < certificates.size(); ++i) {
    SCOPED_TRACE("certificate " + std::to_string(i + 1) + " (" + oracle[i].algorithm + ")");
    ASSERT_EQ(certificates[i], oracle[i].certificate);
    ASSERT_FALSE(oracle[i].oid.empty());
    ASSERT_FALSE(oracle[i].key.empty());

    const IdentObj spki = SubjectPublicKeyInfo(certificates[i]);
    const std::vector<unsigned char> bytes = Bytes(spki);  // exactly sized
    CASNPublicKeyInfo info;
    EXPECT_EQ(info.ReadData(bytes.data(), Size(bytes)), static_cast<int>(bytes.size()));
    EXPECT_EQ(Bytes(info.publicKey), oracle[i].key);

    std::vector<unsigned char> oid;
    std::string dotted;
    OidOf(info.idData, &oid, &dotted);
    EXPECT_EQ(oid, oracle[i].oid);
    const auto name = names.find(oracle[i].algorithm);
    if (name != names.end()) {
      EXPECT_EQ(dotted, name->second);
      ++named;
    }
    // With parameters present (NULL or a curve), the written element is the read
    // one; absent parameters are written as NULL.
    std::list<IdentObj> items, algorithm;
    ASNTGetSequence(items, spki.GetData(), spki.Count(), nullptr);
    ASNTGetSequence(algorithm, items.front().GetData(), items.front().Count(), nullptr);
    if (algorithm.size() == 2) {
      EXPECT_EQ(info.WriteData(), spki);
      ++withParameters;
    }
  }
  // The bundle holds RSA and EC keys, all of whose algorithms carry parameters.
  EXPECT_GT(named, certificates.size() / 2);
  EXPECT_GT(withParameters, certificates.size() / 2);
}

}  // namespace
