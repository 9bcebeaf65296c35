/* The key-info layout as an OpenSSL ASN.1 template (W6 openssl row). */
#include "bench/openssl_keyinfo.h"

#include <openssl/asn1t.h>
#include <openssl/objects.h>
#include <openssl/x509.h>

typedef struct {
  ASN1_TIME* from;
  ASN1_TIME* to;
} KI_VALIDITY;

ASN1_SEQUENCE(KI_VALIDITY) = {
    ASN1_SIMPLE(KI_VALIDITY, from, ASN1_TIME),
    ASN1_SIMPLE(KI_VALIDITY, to, ASN1_TIME),
} ASN1_SEQUENCE_END(KI_VALIDITY)

typedef struct {
  uint32_t flags;
  uint32_t number;
  X509_ALGOR* alg;
  ASN1_OCTET_STRING* o1;
  ASN1_OCTET_STRING* o2;
  ASN1_OCTET_STRING* o3;
  ASN1_OCTET_STRING* o4;
  ASN1_OCTET_STRING* o5;
  KI_VALIDITY* validity;
  ASN1_BIT_STRING* bits;
  ASN1_OCTET_STRING* o8;
  ASN1_OCTET_STRING* o9;
} KI_KEYINFO;

ASN1_SEQUENCE(KI_KEYINFO) = {
    ASN1_EMBED(KI_KEYINFO, flags, UINT32),
    ASN1_EMBED(KI_KEYINFO, number, UINT32),
    ASN1_EXP_OPT(KI_KEYINFO, alg, X509_ALGOR, 0),
    ASN1_EXP_OPT(KI_KEYINFO, o1, ASN1_OCTET_STRING, 1),
    ASN1_EXP_OPT(KI_KEYINFO, o2, ASN1_OCTET_STRING, 2),
    ASN1_EXP_OPT(KI_KEYINFO, o3, ASN1_OCTET_STRING, 3),
    ASN1_EXP_OPT(KI_KEYINFO, o4, ASN1_OCTET_STRING, 4),
    ASN1_EXP_OPT(KI_KEYINFO, o5, ASN1_OCTET_STRING, 5),
    ASN1_EXP_OPT(KI_KEYINFO, validity, KI_VALIDITY, 6),
    ASN1_EXP_OPT(KI_KEYINFO, bits, ASN1_BIT_STRING, 7),
    ASN1_EXP_OPT(KI_KEYINFO, o8, ASN1_OCTET_STRING, 8),
    ASN1_EXP_OPT(KI_KEYINFO, o9, ASN1_OCTET_STRING, 9),
} ASN1_SEQUENCE_END(KI_KEYINFO)

DECLARE_ASN1_FUNCTIONS(KI_KEYINFO)
IMPLEMENT_ASN1_FUNCTIONS(KI_KEYINFO)
IMPLEMENT_ASN1_FUNCTIONS(KI_VALIDITY)

static KI_KEYINFO* g_filled;

static ASN1_OCTET_STRING* Octets(const unsigned char* data, int size) {
  ASN1_OCTET_STRING* s = ASN1_OCTET_STRING_new();
  ASN1_OCTET_STRING_set(s, data, size);
  return s;
}

static uint64_t Fnv(const unsigned char* p, size_t n) {
  uint64_t h = 0xCBF29CE484222325ull;
  for (size_t i = 0; i < n; ++i) {
    h ^= p[i];
    h *= 0x100000001B3ull;
  }
  return h;
}

int ki_openssl_fill(const struct ki_values* v) {
  KI_KEYINFO* ki = KI_KEYINFO_new();
  if (!ki) return 0;
  ki->flags = v->flags;
  ki->number = v->number;
  ki->alg = X509_ALGOR_new();
  X509_ALGOR_set0(ki->alg, OBJ_txt2obj(v->oid, 1), V_ASN1_NULL, NULL);
  ki->o1 = Octets(v->o1, v->o1_size);
  ki->o2 = Octets(v->o2, v->o2_size);
  ki->o3 = Octets(v->o3, v->o3_size);
  ki->validity = KI_VALIDITY_new();
  ASN1_TIME_set_string(ki->validity->from, v->from);
  ASN1_TIME_set_string(ki->validity->to, v->to);
  ki->bits = ASN1_BIT_STRING_new();
  ASN1_BIT_STRING_set(ki->bits, (unsigned char*)v->bits, v->bits_size);
  /* The unused-bit count is given (0), not derived from trailing zero bits. */
  ki->bits->flags &= ~0x07L;
  ki->bits->flags |= ASN1_STRING_FLAG_BITS_LEFT;
  g_filled = ki;
  return 1;
}

uint64_t ki_openssl_encode(void) {
  unsigned char* out = NULL;
  const int n = i2d_KI_KEYINFO(g_filled, &out);
  if (n <= 0) return 0;
  const uint64_t h = Fnv(out, (size_t)n);
  OPENSSL_free(out);
  return h;
}

static uint64_t First(const ASN1_STRING* s) {
  return s && s->length > 0 ? s->data[0] : 0;
}
static uint64_t Length(const ASN1_STRING* s) { return s ? (uint64_t)s->length : 0; }

uint64_t ki_openssl_decode(const unsigned char* der, long size) {
  const unsigned char* p = der;
  KI_KEYINFO* ki = d2i_KI_KEYINFO(NULL, &p, size);
  if (!ki) return 0;
  uint64_t sum = (uint64_t)ki->flags + ki->number;
  sum += ki->alg && ki->alg->algorithm && OBJ_length(ki->alg->algorithm) > 0;
  sum += Length(ki->o1) + Length(ki->o2) + Length(ki->o3) + Length(ki->bits);
  sum += First(ki->o1) + First(ki->o2) + First(ki->o3) + First(ki->bits);
  if (ki->bits && (ki->bits->flags & ASN1_STRING_FLAG_BITS_LEFT)) sum += ki->bits->flags & 0x07;
  KI_KEYINFO_free(ki);
  return sum;
}
