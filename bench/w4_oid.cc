// W4_oid: 50 object identifiers, dotted text to DER contents and back.
#include <botan/asn1_obj.h>
#include <botan/ber_dec.h>
#include <botan/der_enc.h>
#include <mbedtls/oid.h>
#include <openssl/asn1.h>
#include <openssl/objects.h>

#include <cstring>

#include "bench/bench_common.h"
#include "bench/datagen.h"
#include "bench/libtasn1_peers.h"

namespace bench {

namespace {

// ---- text -> contents

uint64_t LimitEnc() {
  uint64_t h = kFnvBasis;
  for (const std::string& s : In().oids) {
    unsigned char out[64];
    size_t n = 0;
    uint32_t arcs[2] = {0, 0};
    unsigned int index = 0;
    const char* p = s.data();
    const char* const end = p + s.size();
    while (p < end) {
      if (*p < '0' || *p > '9') return 0;
      uint64_t v = 0;
      while (p < end && *p >= '0' && *p <= '9') {
        v = v * 10 + static_cast<unsigned>(*p++ - '0');
        if (v > 0xFFFFFFFFu) return 0;
      }
      if (p < end && (*p++ != '.' || p == end)) return 0;
      if (index < 2) {
        arcs[index] = static_cast<uint32_t>(v);
        if (index == 1) {
          if (arcs[0] > 2 || (arcs[0] < 2 && arcs[1] > 39) || arcs[0] * 40 + arcs[1] > 127)
            return 0;
          out[n++] = static_cast<unsigned char>(arcs[0] * 40 + arcs[1]);
        }
      } else {
        if (n + 5 > sizeof out) return 0;
        uint32_t w = static_cast<uint32_t>(v);
        int groups = 1;
        while (w >> (7 * groups) && groups < 5) ++groups;
        for (int g = groups - 1; g >= 0; --g)
          out[n++] = static_cast<unsigned char>(((w >> (7 * g)) & 0x7F) | (g ? 0x80 : 0));
      }
      ++index;
    }
    if (index < 2) return 0;
    h = Fnv1a(h, out, n);
  }
  return h;
}

uint64_t OpensslEnc() {
  uint64_t h = kFnvBasis;
  for (const std::string& s : In().oids) {
    ASN1_OBJECT* o = OBJ_txt2obj(s.c_str(), 1);
    if (!o) return 0;
    unsigned char buf[64];
    unsigned char* p = buf;
    const int n = i2d_ASN1_OBJECT(o, &p);
    ASN1_OBJECT_free(o);
    if (n < 3) return 0;
    h = Fnv1a(h, buf + 2, static_cast<size_t>(n - 2));
  }
  return h;
}

uint64_t BotanEnc() {
  uint64_t h = kFnvBasis;
  for (const std::string& s : In().oids) {
    std::vector<uint8_t> out;
    Botan::DER_Encoder(out).encode(Botan::OID(s));
    h = Fnv1a(h, out.data() + 2, out.size() - 2);
  }
  return h;
}

// ---- contents -> text

uint64_t LimitDec() {
  uint64_t h = kFnvBasis;
  for (const Bytes& c : In().oid_contents) {
    char text[160];
    size_t n = 0;
    const size_t len = c.size();
    if (len == 0 || len > 32) return 0;
    const unsigned int first = c[0];
    if (first & 0x80) return 0;
    const unsigned int x = first < 80 ? first / 40 : 2;
    const unsigned int y = first - 40 * x;
    text[n++] = static_cast<char>('0' + x);
    text[n++] = '.';
    if (y >= 10) text[n++] = static_cast<char>('0' + y / 10);
    text[n++] = static_cast<char>('0' + y % 10);
    size_t i = 1;
    while (i < len) {
      uint32_t v = 0;
      if (c[i] == 0x80) return 0;  // not minimal
      unsigned char octet;
      int count = 0;
      do {
        if (i >= len || ++count > 5) return 0;
        octet = c[i++];
        v = (v << 7) | (octet & 0x7F);
      } while (octet & 0x80);
      char digits[10];
      int d = 0;
      do {
        digits[d++] = static_cast<char>('0' + v % 10);
        v /= 10;
      } while (v);
      text[n++] = '.';
      while (d) text[n++] = digits[--d];
    }
    h = HashText(h, text, n);
  }
  return h;
}

uint64_t OpensslDec() {
  uint64_t h = kFnvBasis;
  for (const Bytes& tlv : In().oid_tlv) {
    const unsigned char* p = tlv.data();
    ASN1_OBJECT* o = d2i_ASN1_OBJECT(nullptr, &p, static_cast<long>(tlv.size()));
    if (!o) return 0;
    char text[160];
    const int n = OBJ_obj2txt(text, sizeof text, o, 1);
    ASN1_OBJECT_free(o);
    if (n <= 0) return 0;
    h = HashText(h, text, static_cast<size_t>(n));
  }
  return h;
}

uint64_t MbedtlsDec() {
  uint64_t h = kFnvBasis;
  for (const Bytes& c : In().oid_contents) {
    mbedtls_asn1_buf oid;
    oid.tag = MBEDTLS_ASN1_OID;
    oid.len = c.size();
    oid.p = const_cast<unsigned char*>(c.data());
    char text[160];
    const int n = mbedtls_oid_get_numeric_string(text, sizeof text, &oid);
    if (n <= 0) return 0;
    h = HashText(h, text, static_cast<size_t>(n));
  }
  return h;
}

uint64_t BotanDec() {
  uint64_t h = kFnvBasis;
  for (const Bytes& tlv : In().oid_tlv) {
    Botan::OID oid;
    Botan::BER_Decoder(tlv.data(), tlv.size()).decode(oid);
    const std::string text = oid.to_string();
    h = HashText(h, text.data(), text.size());
  }
  return h;
}

}  // namespace

void RegisterOids() {
  const Inputs& in = In();
  AddOp("W4_oid_enc", "limit", LimitEnc, &in.w4_enc, 50, 0, false);
  AddOp("W4_oid_enc", "openssl", OpensslEnc, &in.w4_enc, 50, 0, false);
  AddOp("W4_oid_enc", "libtasn1", Libtasn1OidEnc, &in.w4_enc, 50, 0, false);
  AddOp("W4_oid_enc", "botan", BotanEnc, &in.w4_enc, 50, 0, false);
  AddOp("W4_oid_dec", "limit", LimitDec, &in.w4_dec, 50, 0, false);
  AddOp("W4_oid_dec", "openssl", OpensslDec, &in.w4_dec, 50, 0, false);
  AddOp("W4_oid_dec", "mbedtls", MbedtlsDec, &in.w4_dec, 50, 0, false);
  AddOp("W4_oid_dec", "libtasn1", Libtasn1OidDec, &in.w4_dec, 50, 0, false);
  AddOp("W4_oid_dec", "botan", BotanDec, &in.w4_dec, 50, 0, false);
}

}  // namespace bench
