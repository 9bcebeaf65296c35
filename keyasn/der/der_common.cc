#include "keyasn/der/der_common.h"

#include <string>

#include "keyasn/codec/decoder.h"
#include "keyasn/codec/encoder.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/record/base_record.h"
#include "keyasn/support/status.h"

namespace keyasn {
namespace detail {

void RaiseDer(int code, const char* place) { throw XRUVStatus(code, place, false); }

void RaiseDer(int code, const char* place, const char* phrase) {
  const std::string where = std::string(place) + ": " + phrase;
  throw XRUVStatus(code, where.c_str(), false);
}

ASNT_ASN_STRUCT_INFO ParseDerHeader(const unsigned char* data, unsigned int size,
                                    const char* place) {
  ASNT_ASN_STRUCT_INFO info{};
  const int code = ASNTGetAsnInfo(info, data, size);
  if (code != 0) RaiseDer(code, place);
  return info;
}

void RequireDerContents(const ASNT_ASN_STRUCT_INFO& info, const unsigned char* data,
                        unsigned int size, const char* place) {
  // The header parsed from these octets, so Contents lies in [data, data + size].
  const unsigned long header = static_cast<unsigned long>(info.Contents - data);
  if (info.Contents == nullptr || header > size || info.Length > size - header)
    RaiseDer(kErrMalformed, place);
}

void CheckDerTag(const ASNT_ASN_STRUCT_INFO& info, bool skip, const char* place,
                 unsigned int tag, unsigned int other) {
  if (skip || info.Tag == tag || info.Tag == other) return;
  RaiseDer(kErrWrongType, place, kDerWrongType);
}

IdentObj DecodeDerElement(const IdentObj& element, bool skip, const char* place,
                          unsigned int tag, unsigned int other,
                          ASNT_ASN_STRUCT_INFO* info) {
  const unsigned char* data = element.GetData();
  const unsigned int size = element.Count();
  *info = ParseDerHeader(data, size, place);
  CheckDerTag(*info, skip, place, tag, other);
  RequireDerContents(*info, data, size, place);
  return ASNTLowDecodeData(*info, info->Contents, info->Length, nullptr);
}

IdentObj EncodeDerElement(unsigned int tag, const void* data, unsigned int size) {
  // The record would hand the encoder a copy of the value and then copy the
  // encoding into a buffer of its size: encoding directly gives the same octets
  // with one allocation. A null value of non-zero size (which the record turns
  // into zeros) and an empty encoding (the writer's failure) take the record's way.
  if (data != nullptr || size == 0) {
    ASNT_ASN_STRUCT_INFO info{};
    info.Tag = tag;
    IdentObj encoded = ASNTLowEncodeData(
        info, size != 0 ? static_cast<const unsigned char*>(data) : nullptr, size, nullptr);
    if (encoded.Count() != 0) return encoded;
  }
  CASNTBaseRecord record;
  record.SetTag(tag);
  record.SetEntry(data, size);
  return record.WriteData(nullptr);
}

}  // namespace detail
}  // namespace keyasn
