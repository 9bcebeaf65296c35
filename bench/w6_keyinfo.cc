// W6_keyinfo: encode and decode one key-info record (222 octets).
#include <botan/alg_id.h>
#include <botan/asn1_obj.h>
#include <botan/ber_dec.h>
#include <botan/der_enc.h>
#include <mbedtls/asn1.h>
#include <mbedtls/asn1write.h>

#include <vector>

#include "bench/bench_common.h"
#include "bench/datagen.h"
#include "bench/openssl_keyinfo.h"
#ifdef BENCH_HAVE_ASN1C
#include "bench/asn1c_keyinfo.h"
#endif

namespace bench {

namespace {

// ---- mbedtls: hand-written over asn1write.h (backwards into a stack buffer) and
// asn1.h (pointers into the input).

int WriteExplicitOctets(unsigned char** p, unsigned char* start, int tag, const Bytes& value) {
  int len = mbedtls_asn1_write_octet_string(p, start, value.data(), value.size());
  if (len < 0) return len;
  const int hdr = mbedtls_asn1_write_len(p, start, static_cast<size_t>(len));
  if (hdr < 0) return hdr;
  len += hdr;
  const int t = mbedtls_asn1_write_tag(
      p, start,
      static_cast<unsigned char>(MBEDTLS_ASN1_CONTEXT_SPECIFIC | MBEDTLS_ASN1_CONSTRUCTED | tag));
  return t < 0 ? t : len + t;
}

int WrapExplicit(unsigned char** p, unsigned char* start, int tag, int len) {
  if (len < 0) return len;
  const int hdr = mbedtls_asn1_write_len(p, start, static_cast<size_t>(len));
  if (hdr < 0) return hdr;
  const int t = mbedtls_asn1_write_tag(
      p, start,
      static_cast<unsigned char>(MBEDTLS_ASN1_CONTEXT_SPECIFIC | MBEDTLS_ASN1_CONSTRUCTED | tag));
  return t < 0 ? t : len + hdr + t;
}

uint64_t MbedtlsEnc() {
  const Inputs& in = In();
  unsigned char buf[512];
  unsigned char* const end = buf + sizeof buf;
  unsigned char* p = end;
  int len = 0, n;
#define KI_TRY(expr)              \
  if ((n = (expr)) < 0) return 0; \
  len += n
  // [7] BIT STRING
  n = mbedtls_asn1_write_bitstring(&p, buf, in.ki_bits.data(), in.ki_bits.size() * 8);
  KI_TRY(WrapExplicit(&p, buf, 7, n));
  // [6] SEQUENCE { UTCTime, UTCTime }
  {
    int v = 0, m;
    if ((m = mbedtls_asn1_write_tagged_string(&p, buf, MBEDTLS_ASN1_UTC_TIME, in.ki_to.data(),
                                              in.ki_to.size())) < 0)
      return 0;
    v += m;
    if ((m = mbedtls_asn1_write_tagged_string(&p, buf, MBEDTLS_ASN1_UTC_TIME, in.ki_from.data(),
                                              in.ki_from.size())) < 0)
      return 0;
    v += m;
    if ((m = mbedtls_asn1_write_len(&p, buf, static_cast<size_t>(v))) < 0) return 0;
    v += m;
    if ((m = mbedtls_asn1_write_tag(&p, buf, MBEDTLS_ASN1_CONSTRUCTED | MBEDTLS_ASN1_SEQUENCE)) < 0)
      return 0;
    v += m;
    KI_TRY(WrapExplicit(&p, buf, 6, v));
  }
  KI_TRY(WriteExplicitOctets(&p, buf, 3, in.ki_o3));
  KI_TRY(WriteExplicitOctets(&p, buf, 2, in.ki_o2));
  KI_TRY(WriteExplicitOctets(&p, buf, 1, in.ki_o1));
  n = mbedtls_asn1_write_algorithm_identifier(
      &p, buf, reinterpret_cast<const char*>(in.ki_oid_contents.data()), in.ki_oid_contents.size(),
      0);
  KI_TRY(WrapExplicit(&p, buf, 0, n));
  KI_TRY(mbedtls_asn1_write_int(&p, buf, static_cast<int>(in.ki_number)));
  KI_TRY(mbedtls_asn1_write_int(&p, buf, static_cast<int>(in.ki_flags)));
  KI_TRY(mbedtls_asn1_write_len(&p, buf, static_cast<size_t>(len)));
  KI_TRY(mbedtls_asn1_write_tag(&p, buf, MBEDTLS_ASN1_CONSTRUCTED | MBEDTLS_ASN1_SEQUENCE));
#undef KI_TRY
  return Fnv1a(kFnvBasis, p, static_cast<size_t>(end - p));
}

struct MbedKeyInfo {
  int flags = 0, number = 0;
  mbedtls_asn1_buf alg{}, params{};
  mbedtls_asn1_buf octets[10]{};
  mbedtls_asn1_buf from{}, to{};
  mbedtls_asn1_bitstring bits{};
};

uint64_t MbedtlsDec() {
  const Bytes& der = In().w6_der;
  MbedKeyInfo ki;
  unsigned char* p = const_cast<unsigned char*>(der.data());
  unsigned char* end = p + der.size();
  size_t len = 0;
  if (mbedtls_asn1_get_tag(&p, end, &len, MBEDTLS_ASN1_CONSTRUCTED | MBEDTLS_ASN1_SEQUENCE))
    return 0;
  end = p + len;
  if (mbedtls_asn1_get_int(&p, end, &ki.flags) || mbedtls_asn1_get_int(&p, end, &ki.number))
    return 0;
  while (p < end) {
    const unsigned char id = *p;
    if ((id & 0xE0) != (MBEDTLS_ASN1_CONTEXT_SPECIFIC | MBEDTLS_ASN1_CONSTRUCTED)) return 0;
    if (mbedtls_asn1_get_tag(&p, end, &len, id)) return 0;
    unsigned char* q = p;
    unsigned char* const qend = p + len;
    p = qend;
    const int tag = id & 0x1F;
    size_t inner = 0;
    switch (tag) {
      case 0:
        if (mbedtls_asn1_get_alg(&q, qend, &ki.alg, &ki.params)) return 0;
        break;
      case 6:
        if (mbedtls_asn1_get_tag(&q, qend, &inner,
                                 MBEDTLS_ASN1_CONSTRUCTED | MBEDTLS_ASN1_SEQUENCE))
          return 0;
        if (mbedtls_asn1_get_tag(&q, qend, &ki.from.len, MBEDTLS_ASN1_UTC_TIME)) return 0;
        ki.from.p = q;
        q += ki.from.len;
        if (mbedtls_asn1_get_tag(&q, qend, &ki.to.len, MBEDTLS_ASN1_UTC_TIME)) return 0;
        ki.to.p = q;
        break;
      case 7:
        if (mbedtls_asn1_get_bitstring(&q, qend, &ki.bits)) return 0;
        break;
      default:
        if (tag > 9) break;
        if (mbedtls_asn1_get_tag(&q, qend, &ki.octets[tag].len, MBEDTLS_ASN1_OCTET_STRING))
          return 0;
        ki.octets[tag].p = q;
        break;
    }
  }
  uint64_t sum = static_cast<uint64_t>(ki.flags) + static_cast<uint64_t>(ki.number);
  sum += ki.alg.len > 0;
  for (int t : {1, 2, 3}) sum += ki.octets[t].len + (ki.octets[t].len ? ki.octets[t].p[0] : 0);
  sum += ki.bits.len + (ki.bits.len ? ki.bits.p[0] : 0) + ki.bits.unused_bits;
  return sum;
}

// ---- openssl: the template in openssl_keyinfo.c

uint64_t OpensslEnc() { return ki_openssl_encode(); }
uint64_t OpensslDec() {
  const Bytes& der = In().w6_der;
  return ki_openssl_decode(der.data(), static_cast<long>(der.size()));
}

// ---- botan

struct BotanKeyInfo {
  size_t flags = 0, number = 0;
  Botan::AlgorithmIdentifier alg;
  std::vector<uint8_t> octets[10];
  Botan::ASN1_Time from, to;
  std::vector<uint8_t> bits;
};

const BotanKeyInfo& BotanFilled() {
  static const BotanKeyInfo ki = [] {
    const Inputs& in = In();
    BotanKeyInfo k;
    k.flags = in.ki_flags;
    k.number = in.ki_number;
    k.alg = Botan::AlgorithmIdentifier(Botan::OID(in.ki_oid),
                                       Botan::AlgorithmIdentifier::USE_NULL_PARAM);
    k.octets[1] = in.ki_o1;
    k.octets[2] = in.ki_o2;
    k.octets[3] = in.ki_o3;
    k.from = Botan::ASN1_Time(in.ki_from, Botan::UTC_TIME);
    k.to = Botan::ASN1_Time(in.ki_to, Botan::UTC_TIME);
    k.bits = in.ki_bits;
    return k;
  }();
  return ki;
}

uint64_t BotanEnc() {
  const BotanKeyInfo& ki = BotanFilled();
  std::vector<uint8_t> out;
  Botan::DER_Encoder enc(out);
  enc.start_cons(Botan::SEQUENCE).encode(ki.flags).encode(ki.number);
  enc.start_explicit(0).encode(ki.alg).end_explicit();
  for (int t = 1; t <= 5; ++t)
    if (!ki.octets[t].empty())
      enc.start_explicit(static_cast<uint16_t>(t))
          .encode(ki.octets[t], Botan::OCTET_STRING)
          .end_explicit();
  enc.start_explicit(6)
      .start_cons(Botan::SEQUENCE)
      .encode(ki.from)
      .encode(ki.to)
      .end_cons()
      .end_explicit();
  enc.start_explicit(7).encode(ki.bits, Botan::BIT_STRING).end_explicit();
  for (int t = 8; t <= 9; ++t)
    if (!ki.octets[t].empty())
      enc.start_explicit(static_cast<uint16_t>(t))
          .encode(ki.octets[t], Botan::OCTET_STRING)
          .end_explicit();
  enc.end_cons();
  return Fnv1a(kFnvBasis, out.data(), out.size());
}

uint64_t BotanDec() {
  const Bytes& der = In().w6_der;
  BotanKeyInfo ki;
  Botan::BER_Decoder dec(der.data(), der.size());
  Botan::BER_Decoder seq = dec.start_cons(Botan::SEQUENCE);
  seq.decode(ki.flags).decode(ki.number);
  bool haveAlg = false;
  while (seq.more_items()) {
    Botan::BER_Object obj = seq.get_next_object();
    if (obj.get_class() != (Botan::CONTEXT_SPECIFIC | Botan::CONSTRUCTED)) return 0;
    const int tag = obj.type();
    Botan::BER_Decoder inner(std::move(obj));
    switch (tag) {
      case 0:
        inner.decode(ki.alg);
        haveAlg = true;
        break;
      case 6:
        inner.start_cons(Botan::SEQUENCE).decode(ki.from).decode(ki.to).end_cons();
        break;
      case 7:
        inner.decode(ki.bits, Botan::BIT_STRING);
        break;
      default:
        if (tag <= 9) inner.decode(ki.octets[tag], Botan::OCTET_STRING);
        break;
    }
  }
  uint64_t sum = ki.flags + ki.number + (haveAlg && ki.alg.get_oid().has_value() ? 1 : 0);
  for (int t : {1, 2, 3}) sum += ki.octets[t].size() + (ki.octets[t].empty() ? 0 : ki.octets[t][0]);
  sum += ki.bits.size() + (ki.bits.empty() ? 0 : ki.bits[0]);  // unused bits: 0 or a throw
  return sum;
}

}  // namespace

void RegisterKeyInfo() {
  const Inputs& in = In();
  ki_values v{};
  v.flags = in.ki_flags;
  v.number = in.ki_number;
  v.oid = in.ki_oid.c_str();
  v.o1 = in.ki_o1.data();
  v.o1_size = static_cast<int>(in.ki_o1.size());
  v.o2 = in.ki_o2.data();
  v.o2_size = static_cast<int>(in.ki_o2.size());
  v.o3 = in.ki_o3.data();
  v.o3_size = static_cast<int>(in.ki_o3.size());
  v.bits = in.ki_bits.data();
  v.bits_size = static_cast<int>(in.ki_bits.size());
  v.from = in.ki_from.c_str();
  v.to = in.ki_to.c_str();
  ki_openssl_fill(&v);
#ifdef BENCH_HAVE_ASN1C
  ki_asn1c_values a{};
  a.flags = in.ki_flags;
  a.number = in.ki_number;
  a.oid = in.ki_oid_contents.data();
  a.oid_size = static_cast<int>(in.ki_oid_contents.size());
  a.o1 = v.o1;
  a.o1_size = v.o1_size;
  a.o2 = v.o2;
  a.o2_size = v.o2_size;
  a.o3 = v.o3;
  a.o3_size = v.o3_size;
  a.bits = v.bits;
  a.bits_size = v.bits_size;
  a.from = v.from;
  a.to = v.to;
  ki_asn1c_fill(&a);
  AddOp(
      "W6_keyinfo_enc", "asn1c", [] { return ki_asn1c_encode(); }, &in.w6_enc, 1, 0, false);
  AddOp(
      "W6_keyinfo_dec", "asn1c",
      [] { return ki_asn1c_decode(In().w6_der.data(), In().w6_der.size()); }, &in.w6_dec, 1, 0,
      false);
#endif
  AddOp("W6_keyinfo_enc", "openssl", OpensslEnc, &in.w6_enc, 1, 0, false);
  AddOp("W6_keyinfo_enc", "mbedtls", MbedtlsEnc, &in.w6_enc, 1, 0, false);
  AddOp("W6_keyinfo_enc", "botan", BotanEnc, &in.w6_enc, 1, 0, false);
  AddOp("W6_keyinfo_dec", "openssl", OpensslDec, &in.w6_dec, 1, 0, false);
  AddOp("W6_keyinfo_dec", "mbedtls", MbedtlsDec, &in.w6_dec, 1, 0, false);
  AddOp("W6_keyinfo_dec", "botan", BotanDec, &in.w6_dec, 1, 0, false);
}

}  // namespace bench
