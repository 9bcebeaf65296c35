// W3_tree: every element of every CA certificate (walks and full decodes), and
// the unit tree read and written back at nesting depths 10 to 10,000.
#include <botan/x509cert.h>
#include <mbedtls/asn1.h>
#include <mbedtls/x509_crt.h>
#include <openssl/asn1.h>
#include <openssl/x509.h>

#include "bench/bench_common.h"
#include "bench/datagen.h"
#include "bench/libtasn1_peers.h"
#include "keyasn/codec/header.h"
#include "keyasn/record/unit.h"

namespace bench {

namespace {

constexpr uint64_t kFailed = ~uint64_t{0};

template <uint64_t (*kWalk)(const uint8_t*, const uint8_t*)>
uint64_t OverCerts() {
  uint64_t count = 0;
  for (const Bytes& c : In().certs) {
    const uint64_t n = kWalk(c.data(), c.data() + c.size());
    if (n == kFailed) return 0;
    count += n;
  }
  return count;
}

uint64_t LimitWalk(const uint8_t* p, const uint8_t* end) {
  uint64_t count = 0;
  while (p < end) {
    const size_t rest = static_cast<size_t>(end - p);
    if (rest < 2) return kFailed;
    const uint8_t id = p[0];
    size_t i = 1;
    if ((id & 0x1F) == 0x1F) {
      while (i < rest && (p[i] & 0x80)) ++i;
      if (++i >= rest) return kFailed;
    }
    size_t len = p[i++];
    if (len & 0x80) {
      const size_t n = len & 0x7F;
      if (n == 0 || n > 4 || n > rest - i) return kFailed;
      len = 0;
      for (size_t k = 0; k < n; ++k) len = (len << 8) | p[i++];
    }
    if (len > rest - i) return kFailed;
    ++count;
    if (id & 0x20) {
      const uint64_t inner = LimitWalk(p + i, p + i + len);
      if (inner == kFailed) return kFailed;
      count += inner;
    }
    p += i + len;
  }
  return count;
}

uint64_t MbedtlsWalk(const uint8_t* start, const uint8_t* end) {
  unsigned char* p = const_cast<unsigned char*>(start);
  uint64_t count = 0;
  while (p < end) {
    const unsigned char id = *p;
    size_t len = 0;
    if (mbedtls_asn1_get_tag(&p, const_cast<unsigned char*>(end), &len, id) != 0) return kFailed;
    ++count;
    if (id & MBEDTLS_ASN1_CONSTRUCTED) {
      const uint64_t inner = MbedtlsWalk(p, p + len);
      if (inner == kFailed) return kFailed;
      count += inner;
    }
    p += len;
  }
  return count;
}

uint64_t OpensslWalk(const uint8_t* p, const uint8_t* end) {
  uint64_t count = 0;
  while (p < end) {
    long len = 0;
    int tag = 0, xclass = 0;
    const int ret = ASN1_get_object(&p, &len, &tag, &xclass, end - p);
    if (ret & 0x80) return kFailed;
    ++count;
    if (ret & V_ASN1_CONSTRUCTED) {
      const uint64_t inner = OpensslWalk(p, p + len);
      if (inner == kFailed) return kFailed;
      count += inner;
    }
    p += len;
  }
  return count;
}

uint64_t KeyasnWalk(const uint8_t* p, const uint8_t* end) {
  uint64_t count = 0;
  ASNT_ASN_STRUCT_INFO info;
  while (p < end) {
    if (ASNTGetAsnInfo(info, p, static_cast<unsigned int>(end - p)) != 0) return kFailed;
    if (info.Length > static_cast<size_t>(end - info.Contents)) return kFailed;
    ++count;
    if (info.Constructed) {
      const uint64_t inner = KeyasnWalk(info.Contents, info.Contents + info.Length);
      if (inner == kFailed) return kFailed;
      count += inner;
    }
    p = info.Contents + info.Length;
  }
  return count;
}

uint64_t OpensslD2i() {
  uint64_t count = 0;
  for (const Bytes& c : In().certs) {
    const unsigned char* p = c.data();
    X509* x = d2i_X509(nullptr, &p, static_cast<long>(c.size()));
    if (!x) return 0;
    X509_free(x);
    ++count;
  }
  return count;
}

uint64_t MbedtlsX509() {
  uint64_t count = 0;
  for (const Bytes& c : In().certs) {
    mbedtls_x509_crt crt;
    mbedtls_x509_crt_init(&crt);
    const int rc = mbedtls_x509_crt_parse_der(&crt, c.data(), c.size());
    mbedtls_x509_crt_free(&crt);
    if (rc != 0) return 0;
    ++count;
  }
  return count;
}

uint64_t BotanX509() {
  uint64_t count = 0;
  for (const Bytes& c : In().certs) {
    const Botan::X509_Certificate cert(c.data(), c.size());
    Keep(cert);
    ++count;
  }
  return count;
}

uint64_t KeyasnUnit() {
  uint64_t count = 0;
  for (const Bytes& c : In().certs) {
    CASNTUnit unit;
    int error = 0;
    unit.ReadData(c.data(), static_cast<unsigned int>(c.size()), &error);
    if (error != 0) return 0;
    ++count;
  }
  return count;
}

}  // namespace

void RegisterTree() {
  const Inputs& in = In();
  const double certs = static_cast<double>(in.w3_certs), bytes = static_cast<double>(in.w3_bytes);
  AddOp("W3_tree_walk", "limit", OverCerts<LimitWalk>, &in.w3_elements, certs, bytes, false);
  AddOp("W3_tree_walk", "mbedtls", OverCerts<MbedtlsWalk>, &in.w3_elements, certs, bytes, false);
  AddOp("W3_tree_walk", "openssl_walk", OverCerts<OpensslWalk>, &in.w3_elements, certs, bytes,
        false);
  AddOp("W3_tree_walk", "libtasn1_walk", Libtasn1Walk, &in.w3_elements, certs, bytes, false);
  AddOp("W3_tree_walk", "keyasn_walk", OverCerts<KeyasnWalk>, &in.w3_elements, certs, bytes, true);
  AddOp("W3_tree_decode", "openssl_d2i", OpensslD2i, &in.w3_certs, certs, bytes, false);
  AddOp("W3_tree_decode", "mbedtls_x509", MbedtlsX509, &in.w3_certs, certs, bytes, false);
  AddOp("W3_tree_decode", "botan_x509", BotanX509, &in.w3_certs, certs, bytes, false);
  AddOp("W3_tree_decode", "keyasn_unit", KeyasnUnit, &in.w3_certs, certs, bytes, true);
}

}  // namespace bench
