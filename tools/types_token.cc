// TYPEs of the token and algorithm records: cryptoki-elem, cryptoki-cont,
// ephemeral-key, alg-add-info, encr-params, encr-params-binary.
#include "keyasn/keyasn.h"

#include "types.h"
#include "types_common.h"
#include "values.h"

namespace keyasn {
namespace tool {

namespace {

// cryptoki-elem

void ShowCryptokiElem(const Bytes& der, View* view) {
  ASNCryptokiElemInfo info;
  ReadWithCode("cannot read the Cryptoki element", "ASNCryptokiElemInfo::ReadData",
               [&](int* code) { return info.ReadData(der.data(), Size(der), code); });
  view->Num("Type", info.Type);
  view->Octets("Value", info.Value.GetData(), info.Value.Count());
}

Bytes EncodeCryptokiElem(const JsonIn& in) {
  ASNCryptokiElemInfo info;
  info.Type = in.U32("Type");
  info.Value = ToIdent(in.Hex("Value"));
  int code = 0;
  const IdentObj out = info.WriteData(&code);
  CheckCode(code, "cannot write the Cryptoki element", "ASNCryptokiElemInfo::WriteData");
  return ToBytes(out);
}

// cryptoki-cont

// The name is text when its octets are UTF-8 without NUL, else {"hex": ...}.
void ShowName(View* view, const std::string& name, const CRUVString& text) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(static_cast<const char*>(text));
  const std::size_t n = text.Length();
  bool plain = true;
  for (std::size_t i = 0; i < n && plain;) {
    const std::size_t len = p[i] == 0 ? 0 : Utf8Sequence(p + i, n - i);
    plain = len > 0;
    i += len;
  }
  if (plain) {
    view->Str(name, std::string(reinterpret_cast<const char*>(p), n));
  } else {
    Json hex = Json::object();
    hex["hex"] = ToHex(p, n);
    view->Raw(name, hex, QuoteString(p, n, false));
  }
}

Bytes ReadName(const JsonIn& in, const std::string& name) {
  if (in.Has(name) && in.value().at(name).is_object()) return in.Get(name).Hex("hex");
  const std::string text = in.Str(name);
  return Bytes(text.begin(), text.end());
}

void ShowCryptokiCont(const Bytes& der, View* view) {
  ASNCryptokiContInfo info;
  const unsigned int split =
      ReadWithCode("cannot read the Cryptoki container", "ASNCryptokiContInfo::ReadData",
                   [&](int* code) { return info.ReadData(der.data(), Size(der), code); });
  CheckCode(static_cast<int>(split), "cannot split the Cryptoki container's elements",
            "ASNCryptokiContInfo::ReadData");
  ShowName(view, "Name", info.Name);
  view->Num("Number1", info.Number1);
  view->Num("Number2", info.Number2);
  ShowElementList(view, "Elements", info.Elements);
}

Bytes EncodeCryptokiCont(const JsonIn& in) {
  ASNCryptokiContInfo info;
  const Bytes name = ReadName(in, "Name");
  info.Name.Load(name.data(), Size(name));
  info.Number1 = in.U32("Number1");
  info.Number2 = in.U32("Number2");
  info.Elements = ReadElementList(in, "Elements");
  int code = 0;
  const IdentObj out = info.WriteData(&code);
  CheckCode(code, "cannot write the Cryptoki container", "ASNCryptokiContInfo::WriteData");
  return ToBytes(out);
}

// ephemeral-key

void ShowEphemeralKey(const Bytes& der, View* view) {
  CASNEphemeralKeyInfo info;
  Library("cannot read the ephemeral key info", [&] { info.ReadData(der.data(), Size(der)); });
  view->Oid("algorithmOid", info.algorithmOid);
  if (info.keyBits.Count() == 0) {
    view->Null("idData");
    view->Null("keyBits");
  } else {
    ShowIdData(&view->Object("idData"), info.idData);
    ShowKeyOctets(view, "keyBits", info.keyBits);
  }
  view->Octets("trailerData", info.trailerData.GetData(), info.trailerData.Count());
}

Bytes EncodeEphemeralKey(const JsonIn& in) {
  CASNEphemeralKeyInfo info;
  info.algorithmOid = in.Str("algorithmOid");
  if (!in.IsNull("idData")) info.idData = ReadIdData(in.Get("idData"));
  info.keyBits = ReadOptionalOctets(in, "keyBits");
  info.trailerData = ToIdent(in.Hex("trailerData"));
  IdentObj out;
  Library("cannot write the ephemeral key info", [&] { out = info.WriteData(); });
  return ToBytes(out);
}

// alg-add-info

void ShowOidText(View* view, const std::string& name, const std::string& text) {
  if (text.empty()) {
    view->Null(name);
  } else {
    view->Oid(name, text);
  }
}

void ShowAlgAddInfo(const Bytes& der, View* view) {
  CASNAlgAddInfo info(nullptr, nullptr, nullptr);
  unsigned int used = 0;
  Library("cannot read the algorithm triple", [&] { used = info.ReadObject(der.data(), Size(der)); });
  if (used == 0) {
    throw ToolError(kExitMalformed, "cannot read the algorithm triple: CASNAlgAddInfo::ReadObject took nothing");
  }
  std::string sign, hash, encrypt;
  bool decoded = false;
  Library("cannot decode the algorithm triple", [&] { decoded = info.DecodeObject(&sign, &hash, &encrypt); });
  if (!decoded) {
    throw ToolError(kExitMalformed, "cannot decode the algorithm triple: CASNAlgAddInfo::DecodeObject failed");
  }
  ShowOidText(view, "SignOID", sign);
  ShowOidText(view, "HashOID", hash);
  ShowOidText(view, "EncryptOID", encrypt);
}

Bytes EncodeAlgAddInfo(const JsonIn& in) {
  const auto text = [&](const std::string& name) {
    return in.IsNull(name) ? std::string() : in.Str(name);
  };
  for (const char* name : {"SignOID", "HashOID", "EncryptOID"}) {
    if (!in.Has(name)) in.Fail(name, "missing");
  }
  const std::string sign = text("SignOID"), hash = text("HashOID"), encrypt = text("EncryptOID");
  CASNAlgAddInfo info(nullptr, nullptr, nullptr);
  Library("cannot write the algorithm triple",
          [&] { info.EncodeObject(sign.c_str(), hash.c_str(), encrypt.c_str()); });
  return Bytes(info.GetData(), info.GetData() + info.Count());
}

// encr-params

void ShowEncrParamsMembers(View* view, const CASNEncrParams& params) {
  view->Oid("paramSetOid", params.paramSetOid);
  view->Oid("keyMeshingOid", params.keyMeshingOid);
  view->Int("mode", params.mode);
  view->Int("shiftBits", params.shiftBits);
  view->Octets("substitutionBox", params.substitutionBox);
}

void ShowEncrParams(const Bytes& der, View* view) {
  CASNEncrParams params;
  int code = 0;
  Library("cannot read the encryption parameters", [&] { code = params.ReadData(der.data(), Size(der)); });
  CheckCode(code, "cannot read the encryption parameters", "CASNEncrParams::ReadData");
  ShowEncrParamsMembers(view, params);
}

Bytes EncodeEncrParams(const JsonIn& in) {
  CASNEncrParams params;
  params.paramSetOid = in.Str("paramSetOid");
  params.keyMeshingOid = in.Str("keyMeshingOid");
  params.mode = in.I32("mode");
  params.shiftBits = in.I32("shiftBits");
  params.substitutionBox = in.Hex("substitutionBox");
  Bytes out;
  Library("cannot write the encryption parameters", [&] { out = params.WriteData(); });
  if (out.empty()) throw ToolError(kExitMalformed, "cannot write the encryption parameters: CASNEncrParams::WriteData gave nothing");
  return out;
}

// encr-params-binary: the 70-octet form that GetFromDsdr reads: the magic
// 40 01 00 00, the set number's low and high octets, and the substitution box
// with the two halves of every octet exchanged. The library reads it only; the
// tool writes it and checks it by reading it back with the library.

constexpr std::size_t kBinaryFormSize = 70;

void ShowEncrParamsBinary(const Bytes& input, View* view) {
  CASNEncrParams params;
  int code = 0;
  Library("cannot read the binary encryption parameters",
          [&] { code = params.GetFromDsdr(input.data(), Size(input)); });
  CheckCode(code, "cannot read the binary encryption parameters", "CASNEncrParams::GetFromDsdr");
  view->Num("NumberLow", input[4]);
  view->Num("NumberHigh", input[5]);
  view->Note("the set number is NumberHigh * 16 + NumberLow, appended to the default identifier");
  ShowEncrParamsMembers(view, params);
  if (input.size() > kBinaryFormSize) {
    view->Note("octets after the 70th are not read by the library");
    view->Octets("Trailing", input.data() + kBinaryFormSize, input.size() - kBinaryFormSize);
  } else {
    view->Null("Trailing");
  }
}

Bytes EncodeEncrParamsBinary(const JsonIn& in) {
  const unsigned int low = in.U32("NumberLow");
  const unsigned int high = in.U32("NumberHigh");
  if (low > 255) in.Fail("NumberLow", "expected an octet (0 to 255)");
  if (high > 255) in.Fail("NumberHigh", "expected an octet (0 to 255)");
  const Bytes box = in.Hex("substitutionBox");
  if (box.size() != 64) in.Fail("substitutionBox", "the binary form carries exactly 64 octets");
  Bytes out = {0x40, 0x01, 0x00, 0x00, static_cast<unsigned char>(low), static_cast<unsigned char>(high)};
  for (unsigned char octet : box) out.push_back(static_cast<unsigned char>(octet << 4 | octet >> 4));
  if (!in.IsNull("Trailing")) {
    const Bytes trailing = in.Hex("Trailing");
    out.insert(out.end(), trailing.begin(), trailing.end());
  }
  // What the library reads back must be what the JSON says.
  CASNEncrParams params;
  CheckCode(params.GetFromDsdr(out.data(), Size(out)), "cannot check the binary encryption parameters",
            "CASNEncrParams::GetFromDsdr");
  const auto expect = [&](const char* name, const Json& value) {
    if (in.Has(name) && in.value().at(name) != value) {
      in.Fail(name, "the binary form cannot carry this value (the library reads " + value.dump() + ")");
    }
  };
  expect("paramSetOid", params.paramSetOid);
  expect("keyMeshingOid", params.keyMeshingOid);
  expect("mode", params.mode);
  expect("shiftBits", params.shiftBits);
  return out;
}

}  // namespace

void AddTokenTypes(std::vector<TypeInfo>* types) {
  types->push_back({"cryptoki-elem", "ASNCryptokiElemInfo", "a PKCS#11 element: a number and octets",
                    true, ShowCryptokiElem, EncodeCryptokiElem});
  types->push_back({"cryptoki-cont", "ASNCryptokiContInfo",
                    "a PKCS#11 container: name, two numbers, elements", true, ShowCryptokiCont,
                    EncodeCryptokiCont});
  types->push_back({"ephemeral-key", "CASNEphemeralKeyInfo",
                    "an ephemeral key: algorithm, identifier data and key, trailer", true,
                    ShowEphemeralKey, EncodeEphemeralKey});
  types->push_back({"alg-add-info", "CASNAlgAddInfo", "signature, hash and encryption algorithms",
                    true, ShowAlgAddInfo, EncodeAlgAddInfo});
  types->push_back({"encr-params", "CASNEncrParams",
                    "a GOST 28147-89 parameter set: identifier, S-box, mode, shift, key meshing",
                    true, ShowEncrParams, EncodeEncrParams});
  types->push_back({"encr-params-binary", "CASNEncrParams",
                    "the same read from its 70-octet binary form", false, ShowEncrParamsBinary,
                    EncodeEncrParamsBinary});
}

}  // namespace tool
}  // namespace keyasn
