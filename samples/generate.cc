// Writes the sample files of this directory, each made by the library's own
// writers from realistic values. Usage: keyasn_make_samples OUTDIR PARAMSETS
// where PARAMSETS is the list of GOST 28147-89 parameter sets (gost28147-paramsets.txt).
// The samples test runs it and compares every file with the one checked in.
#include <cctype>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "keyasn/keyasn.h"

namespace {

using Octets = std::vector<unsigned char>;

Octets FromHex(const std::string& hex) {
  Octets out;
  int high = -1;
  for (char c : hex) {
    int v = c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10
          : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
    if (v < 0) continue;
    if (high < 0) {
      high = v;
    } else {
      out.push_back(static_cast<unsigned char>(high << 4 | v));
      high = -1;
    }
  }
  return out;
}

IdentObj Ident(const Octets& octets) {
  return IdentObj(octets.data(), static_cast<unsigned int>(octets.size()));
}
IdentObj Ident(const std::string& hex) { return Ident(FromHex(hex)); }

// Pattern: `size` octets first, first + step, first + 2 * step, ...
IdentObj Pattern(unsigned int size, unsigned char first, unsigned char step) {
  IdentObj out(nullptr, size);
  for (unsigned int i = 0; i < size; ++i) out.GetData()[i] = static_cast<unsigned char>(first + i * step);
  return out;
}

CRUVFileTime At(unsigned short year, unsigned short month, unsigned short day, unsigned short hour,
                unsigned short minute, unsigned short second) {
  SYSTEMTIME st = {year, month, 0, day, hour, minute, second, 0};
  FILETIME ft = {0, 0};
  SystemTimeToFileTime(&st, &ft);
  return CRUVFileTime(ft);
}

std::string g_dir;
bool g_ok = true;

void Write(const std::string& name, const unsigned char* data, std::size_t size) {
  const std::string path = g_dir + "/" + name;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  if (!out || size == 0) {
    std::cerr << "cannot write " << path << '\n';
    g_ok = false;
  }
}
void Write(const std::string& name, const IdentObj& bytes) { Write(name, bytes.GetData(), bytes.Count()); }

// GOST R 34.10-2001 with the CryptoPro-A parameter set and GOST R 34.11-94.
const char kGostSignOid[] = "2A8503020213";
const char kGostSignParams[] = "301206072A85030202230106072A850302021E01";
// GOST 28147-89 with its CryptoPro-A parameter set.
const char kGostCipherOid[] = "2A8503020215";
const char kGostCipherParams[] = "06072A850302021F01";

// The signature key and the defence key of the sample container.
ASNKeyInfo SignatureKey() {
  ASNKeyInfo key;
  key.Flags = 0x1A;
  key.Number = 0x0102;
  key.AlgorithmId.SetObjID(Ident(kGostSignOid));
  key.AlgorithmId.SetAddInfo(Ident(kGostSignParams));
  key.Octets1 = Pattern(16, 0x10, 1);
  key.Octets2 = Pattern(20, 0x20, 1);
  key.Octets3 = Pattern(8, 0x30, 3);
  key.Octets4 = Pattern(4, 0x40, 5);
  key.Octets5 = Pattern(32, 0x50, 7);
  key.Validity.SetTime(At(2024, 1, 1, 0, 0, 0), At(2049, 12, 31, 23, 59, 59));
  IdentObj bits = Pattern(64, 0x81, 11);
  bits.GetData()[63] = 0xF8;  // the three unused bits are zero
  key.KeyBits = CRUVCryptBitBlob(bits.GetData(), bits.Count(), 3);
  key.Octets8 = Ident("0808");
  key.Octets9 = Ident("090909");
  return key;
}

ASNKeyInfo DefenceKey() {
  ASNKeyInfo key;
  key.Flags = 0x02;
  key.Number = 2;
  key.AlgorithmId.SetObjID(Ident(kGostCipherOid));
  key.AlgorithmId.SetAddInfo(Ident(kGostCipherParams));
  key.Octets1 = Pattern(16, 0xA0, 1);
  key.Octets3 = Pattern(4, 0xB0, 1);
  key.Validity.SetTime(At(2024, 1, 1, 0, 0, 0), At(2055, 6, 30, 23, 59, 59));
  IdentObj bits = Pattern(32, 0x11, 13);
  bits.GetData()[31] = 0xFE;  // one unused bit, zero
  key.KeyBits = CRUVCryptBitBlob(bits.GetData(), bits.Count(), 1);
  return key;
}

// A public key as GOST R 34.10-2001 carries it: an OCTET STRING of 64 octets.
IdentObj PublicKeyOctets() {
  IdentObj key(nullptr, 66);
  key.GetData()[0] = 0x04;
  key.GetData()[1] = 0x40;
  for (unsigned int i = 0; i < 64; ++i) key.GetData()[2 + i] = static_cast<unsigned char>(0xC3 + 29 * i);
  return key;
}

void KeyDescriptionSamples() {
  ASNContainerInfo container;
  container.Version = 3;
  container.SetKeyInfo(SignatureKey());
  container.SetDefenceKeyInfo(DefenceKey());
  container.Optional0 = Ident("0404DEADBEEF");
  container.Optional1 = Ident("CAFEBABE");
  Write("container.der", container.WriteData(nullptr));
  Write("key_info.der", container.KeyInfo);
  Write("defence_key_info.der", container.DefenceKeyInfo);
  Write("algorithm_identifier.der", SignatureKey().AlgorithmId.WriteData(nullptr));
  Write("validity.der", DefenceKey().Validity.GetEncoded());
}

IdentObj EncryptedKey() {
  const IdentObj key = Pattern(32, 0x3C, 17);
  const IdentObj mac = Ident("8D1E4C70");
  return CASNEncryptedKey(key.GetData(), key.Count(), mac.GetData(), mac.Count()).WriteData();
}

CASNExportKeyInfo ExportKey() {
  CASNExportKeyInfo info;
  info.keyElement = EncryptedKey();
  info.extraElement = Ident(kGostCipherParams);
  return info;
}

void TransportSamples() {
  Write("encrypted_key.der", EncryptedKey());

  CASNPublicKeyInfo public_key;
  ASNAlgorithmIdentifier id;
  id.SetObjID(Ident(kGostSignOid));
  id.SetAddInfo(Ident(kGostSignParams));
  public_key.idData = id;
  public_key.publicKey = PublicKeyOctets();
  Write("public_key_info.der", public_key.WriteData());

  Write("export_key.der", ExportKey().WriteData());

  CASNExchangeKeyData exchange;
  static_cast<CASNExportKeyInfo&>(exchange) = ExportKey();
  exchange.exchangeItems.push_back(public_key.WriteData());
  exchange.exchangeItems.push_back(Ident("0408A1B2C3D4E5F60718"));  // the UKM
  Write("exchange_key.der", exchange.WriteData());

  CASNProxyKeyExchangeData proxy;
  static_cast<CASNExportKeyInfo&>(proxy) = ExportKey();
  proxy.proxyData = Pattern(16, 0x71, 9);
  Write("proxy_exchange.der", proxy.WriteData());

  CASNKeyRecord record;
  ASNAlgorithmIdentifier cipher;
  cipher.SetObjID(Ident(kGostCipherOid));
  cipher.SetAddInfo(Ident(kGostCipherParams));
  record.descriptor = cipher.WriteData(nullptr);
  record.key = Pattern(32, 0x5B, 23);
  Write("key_record.bin", record.WriteData());
}

void TokenSamples() {
  ASNCryptokiElemInfo label;
  label.Type = 3;  // the label attribute
  const std::string text = "keyasn sample key";
  label.Value = IdentObj(text.data(), static_cast<unsigned int>(text.size()));
  Write("cryptoki_element.der", label.WriteData(nullptr));

  ASNCryptokiElemInfo id_element;
  id_element.Type = 0x102;  // the identifier attribute
  id_element.Value = Ident("4B41");

  ASNCryptokiContInfo token;
  const std::string name = "keyasn sample token";
  token.Name.Load(reinterpret_cast<const unsigned char*>(name.data()),
                  static_cast<unsigned int>(name.size()));
  token.Number1 = 1;
  token.Number2 = 0x8000;
  token.Elements.push_back(label.WriteData(nullptr));
  token.Elements.push_back(id_element.WriteData(nullptr));
  Write("cryptoki_container.der", token.WriteData(nullptr));

  CASNEphemeralKeyInfo ephemeral;
  ephemeral.algorithmOid = "1.2.643.2.2.98";
  ASNAlgorithmIdentifier id;
  id.SetObjID(Ident(kGostSignOid));
  id.SetAddInfo(Ident(kGostSignParams));
  ephemeral.idData = id;
  ephemeral.keyBits = PublicKeyOctets();
  ephemeral.trailerData = Ident("A1B2C3D4E5F60718");  // the UKM
  Write("ephemeral_key.der", ephemeral.WriteData());

  const CASNAlgAddInfo triple("1.2.643.2.2.3", "1.2.643.2.2.9", "1.2.643.2.2.21");
  Write("alg_add_info.der", triple);
}

// One encryption parameter sample per RFC 4357 set, and the binary form of set A.
bool EncryptionParameterSamples(const std::string& paramsets) {
  std::ifstream in(paramsets);
  if (!in) {
    std::cerr << "cannot read " << paramsets << '\n';
    return false;
  }
  std::string line;
  int sets = 0;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    std::string name, oid, meshing, box;
    int mode = 0, shift = 0;
    if (!(fields >> name >> oid >> mode >> shift >> meshing >> box)) {
      std::cerr << "bad line in " << paramsets << ": " << line << '\n';
      return false;
    }
    CASNEncrParams params;
    params.paramSetOid = oid;
    params.keyMeshingOid = meshing;
    params.mode = mode;
    params.shiftBits = shift;
    params.substitutionBox = FromHex(box);
    std::string lower;
    for (char c : name) lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const std::vector<unsigned char> der = params.WriteData();
    Write("encr_params_" + lower + ".der", der.data(), der.size());
    ++sets;
    if (name == "A") {
      // The binary form has no writer in the library: it is built here and
      // checked by reading it back.
      Octets binary = {0x40, 0x01, 0x00, 0x00, 0x01, 0x00};
      for (unsigned char octet : params.substitutionBox) {
        binary.push_back(static_cast<unsigned char>(octet << 4 | octet >> 4));
      }
      CASNEncrParams back;
      if (back.GetFromDsdr(binary.data(), static_cast<unsigned int>(binary.size())) != 0 ||
          back.substitutionBox != params.substitutionBox) {
        std::cerr << "the binary form does not read back\n";
        return false;
      }
      Write("encr_params_binary.bin", binary.data(), binary.size());
    }
  }
  return sets == 5;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: keyasn_make_samples OUTDIR PARAMSETS\n";
    return 1;
  }
  g_dir = argv[1];
  try {
    KeyDescriptionSamples();
    TransportSamples();
    TokenSamples();
    if (!EncryptionParameterSamples(argv[2])) return 1;
  } catch (const XRUVStatus& status) {
    std::cerr << "library failure " << status.Status() << " at " << status.Where() << '\n';
    return 1;
  }
  return g_ok ? 0 : 1;
}
