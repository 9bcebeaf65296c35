// W1_header: identifier and length of 100,000 primitive TLVs.
#include <botan/asn1_obj.h>
#include <botan/ber_dec.h>
#include <mbedtls/asn1.h>
#include <openssl/asn1.h>

#include "bench/bench_common.h"
#include "bench/botan_source.h"
#include "bench/datagen.h"
#include "bench/libtasn1_peers.h"

namespace bench {

namespace {

uint64_t Limit() {
  const Bytes& in = In().w1;
  const uint8_t* p = in.data();
  const uint8_t* const end = p + in.size();
  uint64_t sum = 0;
  while (p < end) {
    const size_t rest = static_cast<size_t>(end - p);
    if (rest < 2) return 0;
    const unsigned int first = p[0];
    unsigned int tag = first & 0x1F;
    size_t i = 1;
    if (tag == 0x1F) {
      tag = 0;
      unsigned int octet;
      do {
        if (i >= rest) return 0;
        octet = p[i++];
        tag = (tag << 7) | (octet & 0x7F);
      } while (octet & 0x80);
      if (i >= rest) return 0;
    }
    size_t len = p[i++];
    if (len & 0x80) {
      const size_t n = len & 0x7F;
      if (n == 0 || n > 4 || n > rest - i) return 0;
      len = 0;
      for (size_t k = 0; k < n; ++k) len = (len << 8) | p[i++];
    }
    if (len > rest - i) return 0;
    sum += HeaderTerm((first & 0xE0) | tag, len);
    p += i + len;
  }
  return sum;
}

uint64_t Mbedtls() {
  const Bytes& in = In().w1;
  unsigned char* p = const_cast<unsigned char*>(in.data());
  unsigned char* const end = p + in.size();
  uint64_t sum = 0;
  while (p < end) {
    const unsigned char id = *p;
    size_t len = 0;
    if (mbedtls_asn1_get_tag(&p, end, &len, id) != 0) return 0;
    sum += HeaderTerm(id, len);
    p += len;
  }
  return sum;
}

uint64_t Openssl() {
  const Bytes& in = In().w1;
  const unsigned char* p = in.data();
  const unsigned char* const end = p + in.size();
  uint64_t sum = 0;
  while (p < end) {
    long len = 0;
    int tag = 0, xclass = 0;
    const int ret = ASN1_get_object(&p, &len, &tag, &xclass, end - p);
    if (ret & 0x80) return 0;
    sum += HeaderTerm(static_cast<unsigned int>(xclass | (ret & 0x20) | tag), static_cast<uint64_t>(len));
    p += len;
  }
  return sum;
}

uint64_t Botan() {
  const Bytes& in = In().w1;
  SpanSource source(in.data(), in.size());
  Botan::BER_Decoder decoder(source);
  uint64_t sum = 0;
  while (decoder.more_items()) {
    const Botan::BER_Object obj = decoder.get_next_object();
    sum += HeaderTerm(static_cast<unsigned int>(obj.get_class() | obj.type()), obj.length());
  }
  return sum;
}

}  // namespace

void RegisterHeaders() {
  const Inputs& in = In();
  const double items = 100000, bytes = static_cast<double>(in.w1.size());
  AddOp("W1_header", "limit", Limit, &in.w1_sum, items, bytes, false);
  AddOp("W1_header", "mbedtls", Mbedtls, &in.w1_sum, items, bytes, false);
  AddOp("W1_header", "openssl", Openssl, &in.w1_sum, items, bytes, false);
  AddOp("W1_header", "libtasn1", Libtasn1Headers, &in.w1_sum, items, bytes, false);
  AddOp("W1_header", "botan", Botan, &in.w1_sum, items, bytes, false);
}

}  // namespace bench
