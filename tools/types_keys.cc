// TYPEs of the key description family: container, keyinfo, algid, validity.
#include "keyasn/keyasn.h"

#include "types.h"
#include "types_common.h"

namespace keyasn {
namespace tool {

namespace {

// algid

void ShowAlgid(const Bytes& der, View* view) {
  ASNAlgorithmIdentifier id;
  Library("cannot read the algorithm identifier",
          [&] { id.ReadData(der.data(), Size(der), nullptr); });
  ShowAlgorithmId(view, id);
}

Bytes EncodeAlgid(const JsonIn& in) {
  IdentObj out;
  Library("cannot write the algorithm identifier", [&] { out = ReadAlgorithmId(in).WriteData(nullptr); });
  return ToBytes(out);
}

// validity

// ShowValidity shows the two times; when the library would not write these
// octets for them (other time forms, context tags), the encoding is kept as it
// stands in "Encoded", which encode then takes over.
void ShowValidity(View* view, const CASNValid& validity) {
  const CRUVFileTime from = validity.GetTime(true);
  const CRUVFileTime to = validity.GetTime(false);
  ShowTime(view, "From", from);
  ShowTime(view, "To", to);
  bool same = false;
  try {
    same = SameOctets(CASNValid(from, to).GetEncoded(), validity.GetEncoded());
  } catch (const XRUVStatus&) {
  }
  if (!same) {
    view->Note("the library writes these times differently; the encoding is kept as it stands");
    view->Element("Encoded", validity.GetEncoded().GetData(), validity.GetEncoded().Count());
  }
}

CASNValid ReadValidity(const JsonIn& in) {
  CASNValid validity;
  if (in.Has("Encoded") && !in.IsNull("Encoded")) {
    validity.SetEncoded(ToIdent(in.Hex("Encoded")));
    return validity;
  }
  const CRUVFileTime from = ReadTime(in, "From");
  const CRUVFileTime to = ReadTime(in, "To");
  Library("cannot write the validity period", [&] { validity.SetTime(from, to); });
  return validity;
}

void ShowValid(const Bytes& der, View* view) {
  CASNValid validity;
  validity.SetEncoded(ToIdent(der));
  ShowValidity(view, validity);
}

Bytes EncodeValid(const JsonIn& in) { return ToBytes(ReadValidity(in).GetEncoded()); }

// keyinfo

void ShowKeyInfoMembers(View* view, const ASNKeyInfo& info) {
  view->Num("Flags", info.Flags);
  view->Num("Number", info.Number);
  if (info.AlgorithmId.GetObjID().Count() == 0) {
    view->Null("AlgorithmId");
  } else {
    ShowAlgorithmId(&view->Object("AlgorithmId"), info.AlgorithmId);
  }
  ShowOptionalOctets(view, "Octets1", info.Octets1);
  ShowOptionalOctets(view, "Octets2", info.Octets2);
  ShowOptionalOctets(view, "Octets3", info.Octets3);
  ShowOptionalOctets(view, "Octets4", info.Octets4);
  ShowOptionalOctets(view, "Octets5", info.Octets5);
  if (info.Validity.GetEncoded().Count() == 0) {
    view->Null("Validity");
  } else {
    ShowValidity(&view->Object("Validity"), info.Validity);
  }
  if (info.KeyBits.Count() == 0) {
    view->Null("KeyBits");
  } else {
    View& bits = view->Object("KeyBits");
    bits.Num("UnusedBits", info.KeyBits.GetUnusedBits());
    bits.Octets("Bits", info.KeyBits.GetData(), info.KeyBits.Count());
  }
  ShowOptionalOctets(view, "Octets8", info.Octets8);
  ShowOptionalOctets(view, "Octets9", info.Octets9);
}

ASNKeyInfo ReadKeyInfoMembers(const JsonIn& in) {
  ASNKeyInfo info;
  info.Flags = in.U32("Flags");
  info.Number = in.U32("Number");
  if (!in.IsNull("AlgorithmId")) info.AlgorithmId = ReadAlgorithmId(in.Get("AlgorithmId"));
  info.Octets1 = ReadOptionalOctets(in, "Octets1");
  info.Octets2 = ReadOptionalOctets(in, "Octets2");
  info.Octets3 = ReadOptionalOctets(in, "Octets3");
  info.Octets4 = ReadOptionalOctets(in, "Octets4");
  info.Octets5 = ReadOptionalOctets(in, "Octets5");
  if (!in.IsNull("Validity")) info.Validity = ReadValidity(in.Get("Validity"));
  if (!in.IsNull("KeyBits")) {
    const JsonIn bits = in.Get("KeyBits");
    const Bytes octets = bits.Hex("Bits");
    info.KeyBits = CRUVCryptBitBlob(octets.data(), Size(octets), bits.U32("UnusedBits"));
  }
  info.Octets8 = ReadOptionalOctets(in, "Octets8");
  info.Octets9 = ReadOptionalOctets(in, "Octets9");
  return info;
}

void ShowKeyInfo(const Bytes& der, View* view) {
  ASNKeyInfo info;
  Library("cannot read the key description", [&] { info.ReadData(der.data(), Size(der), nullptr); });
  ShowKeyInfoMembers(view, info);
}

Bytes EncodeKeyInfo(const JsonIn& in) {
  const ASNKeyInfo info = ReadKeyInfoMembers(in);
  IdentObj out;
  Library("cannot write the key description", [&] { out = info.WriteData(nullptr); });
  return ToBytes(out);
}

// container

// ShowHeldKeyInfo decodes one of the container's key descriptions; when it does
// not decode, or the library would write it differently, its encoding is kept
// in "Encoded" as well.
void ShowHeldKeyInfo(View* view, const std::string& name, const IdentObj& encoding,
                     ASNKeyInfo (ASNContainerInfo::*get)() const, const ASNContainerInfo& container) {
  if (encoding.Count() == 0) {
    view->Null(name);
    return;
  }
  View& member = view->Object(name);
  member.From(encoding.GetData(), encoding.Count());
  bool same = false;
  try {
    const ASNKeyInfo info = (container.*get)();
    ShowKeyInfoMembers(&member, info);
    same = SameOctets(info.WriteData(nullptr), encoding);
  } catch (const XRUVStatus& status) {
    member.Note("does not decode: " + StatusText(status));
  }
  if (!same) {
    member.Note("kept as it stands: the library writes this key description differently");
    member.Element("Encoded", encoding.GetData(), encoding.Count());
  }
}

IdentObj ReadHeldKeyInfo(const JsonIn& in, const std::string& name) {
  if (in.IsNull(name)) {
    if (!in.Has(name)) in.Fail(name, "missing");
    return IdentObj();
  }
  const JsonIn member = in.Get(name);
  if (member.Has("Encoded") && !member.IsNull("Encoded")) return ToIdent(member.Hex("Encoded"));
  const ASNKeyInfo info = ReadKeyInfoMembers(member);
  ASNContainerInfo holder;
  Library("cannot write the key description \"" + name + "\"", [&] { holder.SetKeyInfo(info); });
  return holder.KeyInfo;
}

void ShowContainer(const Bytes& der, View* view) {
  ASNContainerInfo container;
  ReadWithCode("cannot read the container", "ASNContainerInfo::ReadData",
               [&](int* code) { return container.ReadData(der.data(), Size(der), code); });
  view->Num("Version", container.Version);
  ShowHeldKeyInfo(view, "KeyInfo", container.KeyInfo, &ASNContainerInfo::GetKeyInfo, container);
  ShowHeldKeyInfo(view, "DefenceKeyInfo", container.DefenceKeyInfo,
                  &ASNContainerInfo::GetDefenceKeyInfo, container);
  if (container.Optional0.Count() == 0) {
    view->Null("Optional0");
  } else {
    view->Element("Optional0", container.Optional0.GetData(), container.Optional0.Count());
  }
  ShowOptionalOctets(view, "Optional1", container.Optional1);
}

Bytes EncodeContainer(const JsonIn& in) {
  ASNContainerInfo container;
  container.Version = in.U32("Version");
  container.KeyInfo = ReadHeldKeyInfo(in, "KeyInfo");
  container.DefenceKeyInfo = ReadHeldKeyInfo(in, "DefenceKeyInfo");
  container.Optional0 = ReadOptionalOctets(in, "Optional0");
  container.Optional1 = ReadOptionalOctets(in, "Optional1");
  int code = 0;
  const IdentObj out = container.WriteData(&code);
  CheckCode(code, "cannot write the container", "ASNContainerInfo::WriteData");
  return ToBytes(out);
}

}  // namespace

void AddKeyTypes(std::vector<TypeInfo>* types) {
  types->push_back({"container", "ASNContainerInfo",
                    "a key container: version, key and defence key descriptions, [0], [1]", true,
                    ShowContainer, EncodeContainer});
  types->push_back({"keyinfo", "ASNKeyInfo", "a key description", true, ShowKeyInfo, EncodeKeyInfo});
  types->push_back({"algid", "ASNAlgorithmIdentifier", "an object identifier with parameters",
                    true, ShowAlgid, EncodeAlgid});
  types->push_back({"validity", "CASNValid", "a validity period of two times", true, ShowValid,
                    EncodeValid});
}

}  // namespace tool
}  // namespace keyasn
