// W7_integer: int32 to DER INTEGER and back, 1,000 values.
#include <botan/ber_dec.h>
#include <botan/der_enc.h>
#include <mbedtls/asn1.h>
#include <mbedtls/asn1write.h>
#include <openssl/asn1.h>

#include <vector>

#include "bench/bench_common.h"
#include "bench/datagen.h"

namespace bench {

namespace {

uint64_t Limit() {
  uint64_t sum = 0;
  for (const int32_t v : In().ints) {
    // Encode: the minimal two's-complement contents of a non-negative value.
    unsigned char buf[8];
    const uint32_t u = static_cast<uint32_t>(v);
    unsigned int n = 1;
    while (n < 5 && (u >> (8 * n - 1)) != 0) ++n;
    buf[0] = 0x02;
    buf[1] = static_cast<unsigned char>(n);
    for (unsigned int i = 0; i < n; ++i)
      buf[2 + i] = static_cast<unsigned char>(static_cast<uint64_t>(u) >> (8 * (n - 1 - i)));
    // Decode, strictly: tag, length 1..4, minimal form, non-negative.
    const size_t tlv = 2 + n;
    if (buf[0] != 0x02 || buf[1] == 0 || buf[1] > 4 || tlv != 2u + buf[1]) return 0;
    const unsigned char* c = buf + 2;
    if (c[0] & 0x80) return 0;
    if (buf[1] > 1 && c[0] == 0 && !(c[1] & 0x80)) return 0;
    uint32_t value = 0;
    for (unsigned int i = 0; i < buf[1]; ++i) value = (value << 8) | c[i];
    sum += IntegerTerm(static_cast<int32_t>(value), tlv);
  }
  return sum;
}

uint64_t Openssl() {
  static ASN1_INTEGER* enc = ASN1_INTEGER_new();  // both reused across values
  static ASN1_INTEGER* dec = ASN1_INTEGER_new();
  uint64_t sum = 0;
  for (const int32_t v : In().ints) {
    if (!ASN1_INTEGER_set(enc, v)) return 0;
    unsigned char buf[16];
    unsigned char* p = buf;
    const int n = i2d_ASN1_INTEGER(enc, &p);
    if (n <= 0) return 0;
    const unsigned char* q = buf;
    if (!d2i_ASN1_INTEGER(&dec, &q, n)) return 0;
    sum += IntegerTerm(ASN1_INTEGER_get(dec), static_cast<size_t>(n));
  }
  return sum;
}

uint64_t Mbedtls() {
  uint64_t sum = 0;
  for (const int32_t v : In().ints) {
    unsigned char buf[16];
    unsigned char* p = buf + sizeof buf;
    const int n = mbedtls_asn1_write_int(&p, buf, v);
    if (n <= 0) return 0;
    int value = 0;
    unsigned char* q = p;
    if (mbedtls_asn1_get_int(&q, p + n, &value) != 0) return 0;
    sum += IntegerTerm(value, static_cast<size_t>(n));
  }
  return sum;
}

uint64_t Botan() {
  uint64_t sum = 0;
  for (const int32_t v : In().ints) {
    std::vector<uint8_t> out;
    Botan::DER_Encoder(out).encode(static_cast<size_t>(v));
    size_t value = 0;
    Botan::BER_Decoder(out).decode(value);
    sum += IntegerTerm(static_cast<int64_t>(value), out.size());
  }
  return sum;
}

}  // namespace

void RegisterIntegers() {
  const Inputs& in = In();
  const double items = static_cast<double>(in.ints.size());
  AddOp("W7_integer", "limit", Limit, &in.w7_sum, items, 0, false);
  AddOp("W7_integer", "openssl", Openssl, &in.w7_sum, items, 0, false);
  AddOp("W7_integer", "mbedtls", Mbedtls, &in.w7_sum, items, 0, false);
  AddOp("W7_integer", "botan", Botan, &in.w7_sum, items, 0, false);
}

}  // namespace bench
