/* The W6 openssl row: an ASN.1 template compiled as C (openssl_keyinfo.c). */
#ifndef KEYASN_BENCH_OPENSSL_KEYINFO_H_
#define KEYASN_BENCH_OPENSSL_KEYINFO_H_

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct ki_values {
  uint32_t flags, number;
  const char* oid;
  const unsigned char *o1, *o2, *o3, *bits;
  int o1_size, o2_size, o3_size, bits_size;
  const char *from, *to;
};

/* ki_openssl_fill builds the structure that ki_openssl_encode writes. */
int ki_openssl_fill(const struct ki_values* values);
/* FNV-1a 64 of the encoding (i2d into a buffer it allocates). */
uint64_t ki_openssl_encode(void);
/* The decode checksum of a d2i into a new structure, then freed. */
uint64_t ki_openssl_decode(const unsigned char* der, long size);

#ifdef __cplusplus
}
#endif

#endif /* KEYASN_BENCH_OPENSSL_KEYINFO_H_ */
