/* The W6 asn1c row (asn1c_keyinfo.c over code generated from keyinfo.asn1). */
#ifndef KEYASN_BENCH_ASN1C_KEYINFO_H_
#define KEYASN_BENCH_ASN1C_KEYINFO_H_

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct ki_asn1c_values {
  uint32_t flags, number;
  const unsigned char *oid, *o1, *o2, *o3, *bits;
  int oid_size, o1_size, o2_size, o3_size, bits_size;
  const char *from, *to;
};

/* ki_asn1c_fill builds the structure that ki_asn1c_encode writes. */
int ki_asn1c_fill(const struct ki_asn1c_values* values);
/* FNV-1a 64 of der_encode_to_buffer into a stack buffer. */
uint64_t ki_asn1c_encode(void);
/* The decode checksum of ber_decode into a new structure, then freed. */
uint64_t ki_asn1c_decode(const unsigned char* der, size_t size);

#ifdef __cplusplus
}
#endif

#endif /* KEYASN_BENCH_ASN1C_KEYINFO_H_ */
