// Implicit and Explicit: a tag put on a record read from the input and taken off
// again gives the record's own value; tagged records read from the input.
#include "fuzz/fuzz_support.h"
#include "keyasn/codec/header.h"
#include "keyasn/record/base_record.h"
#include "keyasn/record/tagged.h"

namespace {

using keyasn_fuzz::Guard;
using keyasn_fuzz::Input;
using keyasn_fuzz::IsLibraryCode;

bool CodeOk(int code) { return code == 0 || IsLibraryCode(code); }

unsigned int ChooseTag(Input& in) {
  const uint8_t b = in.Byte();
  if (b & 0x80) return in.U32() >> (b & 0x1F);
  return b & 0x1F;
}

// The record at the front of `data`, tagged and untagged again.
void TagAndUntag(const uint8_t* data, size_t size, Input& in) {
  CASNTBaseRecord record;
  int code = -1;
  record.ReadData(data, keyasn_fuzz::Size32(size), &code);
  if (code != 0) return;
  const IdentObj encoding = record.GetEncodedRecord(nullptr);
  ASNT_ASN_STRUCT_INFO info;
  if (ASNTGetAsnInfo(info, encoding.GetData(), encoding.Count()) != 0) return;
  int decoded = -1;
  const IdentObj value = record.GetRecord(&decoded);
  IdentObj origin;
  KEYASN_FUZZ_CHECK(GetTagFromEncoded(encoding, &origin, nullptr, nullptr, nullptr) == 0);

  const unsigned int tag = ChooseTag(in);
  const unsigned int tagClass = in.Byte() & 0xC0;
  Implicit implicit(record, tag, tagClass);
  KEYASN_FUZZ_CHECK(implicit.GetIsConstraction() == record.GetIsConstraction());
  KEYASN_FUZZ_CHECK(implicit.GetTag() == tag && implicit.GetClass() == tagClass);
  int untagged = -1;
  KEYASN_FUZZ_CHECK(implicit.GetTaggedTypeRecord(&untagged).Count() == 0 && untagged == 205);
  implicit.SetOriginTag(origin);
  KEYASN_FUZZ_CHECK(implicit.GetTaggedTypeRecord(&untagged) == value && untagged == decoded);
  // Through its octets: written, read into a fresh Implicit, untagged.
  const IdentObj tagged = implicit.WriteData(nullptr);
  KEYASN_FUZZ_CHECK(tagged.Count() == encoding.Count() - origin.Count() + implicit.WriteTag().Count());
  Implicit read;
  int readCode = -1;
  KEYASN_FUZZ_CHECK(read.ReadData(tagged.GetData(), tagged.Count(), &readCode) == tagged.Count());
  KEYASN_FUZZ_CHECK(readCode == 0);
  read.SetOriginTag(origin);
  KEYASN_FUZZ_CHECK(read.GetTaggedTypeRecord(&untagged) == value && untagged == decoded);

  Explicit explicitTag(record, tag, 0x80);
  KEYASN_FUZZ_CHECK(explicitTag.GetIsConstraction() && explicitTag.GetClass() == 0x80);
  const IdentObj wrapped = explicitTag.WriteData(nullptr);
  KEYASN_FUZZ_CHECK(wrapped.Count() > encoding.Count());
  Explicit unwrapped;
  KEYASN_FUZZ_CHECK(unwrapped.ReadData(wrapped.GetData(), wrapped.Count(), &readCode) ==
                    wrapped.Count());
  KEYASN_FUZZ_CHECK(readCode == 0);
  KEYASN_FUZZ_CHECK(unwrapped.GetTaggedTypeRecord(&untagged) == value && untagged == decoded);
}

// The input itself as a tagged record.
void ReadTagged(const uint8_t* data, size_t size, Input& in) {
  const unsigned int n = keyasn_fuzz::Size32(size);
  Implicit implicit;
  int code = -1;
  implicit.ReadData(data, n, &code);
  KEYASN_FUZZ_CHECK(CodeOk(code));
  const unsigned char originClass = in.Byte() & 0xC0;
  implicit.SetOriginTag(originClass, ChooseTag(in));
  int untagged = -1;
  (void)implicit.GetTaggedTypeRecord(&untagged);
  KEYASN_FUZZ_CHECK(CodeOk(untagged));
  (void)Guard([&] { (void)implicit.GetTaggedTypeRecord(nullptr); });

  Explicit explicitTag;
  explicitTag.ReadData(data, n, &code);
  KEYASN_FUZZ_CHECK(CodeOk(code));
  (void)explicitTag.GetTaggedTypeRecord(&untagged);
  KEYASN_FUZZ_CHECK(CodeOk(untagged));
  (void)Guard([&] { (void)explicitTag.GetTaggedTypeRecord(nullptr); });
}

}  // namespace

KEYASN_FUZZ_TARGET(tagged) {
  // Control values come from the end of the input, the record from its front.
  const size_t control = size < 8 ? size : 8;
  Input in(data ? data + size - control : nullptr, control);
  TagAndUntag(data, size, in);
  ReadTagged(data, size, in);
}
