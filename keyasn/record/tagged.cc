#include "keyasn/record/tagged.h"

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/header.h"
#include "keyasn/support/status.h"

namespace {

constexpr unsigned char kContextSpecific = 0x80;
constexpr char kWhereImplicitTagIt[] = "Implicit::TagIt";

}  // namespace

ITaggedType::~ITaggedType() = default;

Implicit::Implicit() : ITaggedType(), CASNTBaseRecord(), hasOriginTag(false), originTag() {
  SetClass(kContextSpecific);
}

Implicit::Implicit(const CASNTBaseRecord& record, unsigned int tag, unsigned int tagClass)
    : Implicit() {
  SetClass(static_cast<short>(tagClass));
  SetTag(tag);
  TagIt(record);
}

Implicit::Implicit(const Implicit& other) = default;

Implicit& Implicit::operator=(const Implicit& other) = default;

Implicit::~Implicit() = default;

void Implicit::TagIt(const CASNTBaseRecord& record) {
  SetIsConstraction(record.GetIsConstraction());
  // The base encoding: a unit contributes its cached or value encoding.
  IdentObj encoding = record.CASNTBaseRecord::GetEncodedRecord(nullptr);
  const int code = ModifyTagAtEncoded(&encoding, WriteTag());
  if (code != keyasn::kOk) throw XRUVStatus(code, kWhereImplicitTagIt, false);
  SetEncodedEntry(encoding);
}

void Implicit::SetOriginTag(const IdentObj& tagOctets) {
  originTag = tagOctets;
  hasOriginTag = true;
}

void Implicit::SetOriginTag(unsigned char tagClass, unsigned int tag) {
  SetOriginTag(BuildTag(tagClass, GetIsConstraction(), tag));
}

IdentObj Implicit::GetTaggedTypeRecord(int* error) const {
  int local = keyasn::kOk;
  int* code = error ? error : &local;
  if (!hasOriginTag) {
    *code = keyasn::kErrBadIdentifier;
    return IdentObj();
  }
  IdentObj encoding = GetEncodedRecord(nullptr);
  *code = ModifyTagAtEncoded(&encoding, originTag);
  if (*code != keyasn::kOk) return IdentObj();
  CASNTBaseRecord untagged;
  untagged.SetEncodedEntry(encoding);
  return untagged.GetRecord(error);
}

Explicit::Explicit() : ITaggedType(), CASNTBaseRecord() { SetClass(kContextSpecific); }

Explicit::Explicit(const CASNTBaseRecord& record, unsigned int tag, unsigned int tagClass)
    : Explicit() {
  SetClass(static_cast<short>(tagClass));
  SetTag(tag);
  TagIt(record);
}

Explicit::Explicit(const Explicit& other) = default;

Explicit& Explicit::operator=(const Explicit& other) = default;

Explicit::~Explicit() = default;

void Explicit::TagIt(const CASNTBaseRecord& record) {
  SetIsConstraction(1);  // an explicit tag is always constructed
  // Copied first: `record` may be this very record.
  const IdentObj inner = record.CASNTBaseRecord::GetEncodedRecord(nullptr);
  SetEntry(inner);
}

IdentObj Explicit::GetTaggedTypeRecord(int* error) const {
  const IdentObj inner = GetRecord(error);
  CASNTBaseRecord untagged;
  untagged.SetEncodedEntry(inner);
  return untagged.GetRecord(error);
}
