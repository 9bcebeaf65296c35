#include "header_octets.h"

#include <cstdint>

namespace keyasn {
namespace tool {

std::size_t MinimalHeader(unsigned char tag_class, bool constructed, unsigned int tag,
                          bool indefinite, std::size_t length, unsigned char* out) {
  std::size_t size = 0;
  const unsigned char first = static_cast<unsigned char>((tag_class & 0xC0) | (constructed ? 0x20 : 0));
  if (tag < 31) {
    out[size++] = static_cast<unsigned char>(first | tag);
  } else {
    out[size++] = static_cast<unsigned char>(first | 0x1F);
    unsigned char groups[5];
    int n = 0;
    do {
      groups[n++] = static_cast<unsigned char>(tag & 0x7F);
      tag >>= 7;
    } while (tag != 0);
    while (n > 1) out[size++] = static_cast<unsigned char>(groups[--n] | 0x80);
    out[size++] = groups[0];
  }
  if (indefinite) {
    out[size++] = 0x80;
  } else if (length < 0x80) {
    out[size++] = static_cast<unsigned char>(length);
  } else {
    unsigned char octets[sizeof(std::size_t)];
    int n = 0;
    while (length != 0) {
      octets[n++] = static_cast<unsigned char>(length & 0xFF);
      length >>= 8;
    }
    out[size++] = static_cast<unsigned char>(0x80 | n);
    while (n > 0) out[size++] = octets[--n];
  }
  return size;
}

Bytes MinimalHeader(unsigned char tag_class, bool constructed, unsigned int tag, bool indefinite,
                    std::size_t length) {
  unsigned char octets[kMaxHeader];
  const std::size_t size = MinimalHeader(tag_class, constructed, tag, indefinite, length, octets);
  return Bytes(octets, octets + size);
}

bool ParseHeader(const Bytes& header, HeaderFields* fields) {
  if (header.size() < 2) return false;
  std::size_t i = 0;
  fields->tag_class = header[0] & 0xC0;
  fields->constructed = (header[0] & 0x20) != 0;
  fields->tag = header[0] & 0x1F;
  ++i;
  if (fields->tag == 0x1F) {
    uint64_t tag = 0;
    do {
      if (i >= header.size() || tag > (UINT32_MAX >> 7)) return false;
      tag = (tag << 7) | (header[i] & 0x7F);
    } while ((header[i++] & 0x80) != 0);
    fields->tag = static_cast<unsigned int>(tag);
  }
  if (i >= header.size()) return false;
  const unsigned char first = header[i++];
  fields->indefinite = first == 0x80;
  fields->length = 0;
  if (first < 0x80) {
    fields->length = first;
  } else if (first > 0x80) {
    const std::size_t count = first & 0x7F;
    if (header.size() - i != count) return false;
    for (; i < header.size(); ++i) {
      if (fields->length > (SIZE_MAX >> 8)) return false;
      fields->length = (fields->length << 8) | header[i];
    }
  }
  return i == header.size();
}

}  // namespace tool
}  // namespace keyasn
