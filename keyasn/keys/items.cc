#include "keyasn/keys/items.h"

#include <cstring>

#include "keyasn/codec/header.h"
#include "keyasn/record/base_record.h"
#include "keyasn/support/status.h"

namespace keyasn {
namespace detail {

void RaiseStatus(int code, const char* where) { throw XRUVStatus(code, where, false); }

IdentObj EncodeUniversalItem(unsigned int tag, const void* data, unsigned int size) {
  CASNTBaseRecord record;
  record.SetTag(tag);
  record.SetEntry(data, size);
  return record.WriteData(nullptr);
}

IdentObj EncodeWordItem(unsigned int value) {
  const unsigned char octets[4] = {
      static_cast<unsigned char>(value), static_cast<unsigned char>(value >> 8),
      static_cast<unsigned char>(value >> 16), static_cast<unsigned char>(value >> 24)};
  return EncodeUniversalItem(2, octets, sizeof octets);
}

IdentObj BitStringContents(const IdentObj& octets) {
  IdentObj contents(nullptr, octets.Count() + 1);
  if (octets.Count() != 0) std::memcpy(contents.GetData() + 1, octets.GetData(), octets.Count());
  return contents;
}

bool ElementFits(const unsigned char* data, unsigned int size) {
  ASNT_ASN_STRUCT_INFO info{};
  if (ASNTGetAsnInfo(info, data, size) != 0 || info.Length == 0xFFFFFFFFu) return false;
  const unsigned long long header = static_cast<unsigned long long>(info.Contents - data);
  return header + info.Length <= size;
}

bool WordFromOctets(const IdentObj& value, unsigned int* word) {
  const unsigned int n = value.Count();
  if (n > 4) return false;
  unsigned int w = 0;
  for (unsigned int i = 0; i < n; ++i) w |= static_cast<unsigned int>(value.GetData()[i]) << (8 * i);
  *word = w;
  return true;
}

void SecureZero(void* data, unsigned int size) {
  volatile unsigned char* p = static_cast<volatile unsigned char*>(data);
  for (unsigned int i = 0; i < size; ++i) p[i] = 0;
}

}  // namespace detail
}  // namespace keyasn
