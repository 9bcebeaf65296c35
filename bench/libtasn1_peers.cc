// The libtasn1 rows of every workload. libtasn1 and OpenSSL declare the same
// type name (asn1_node), so their rows live in separate files.
#include "bench/libtasn1_peers.h"

#include <libtasn1.h>

#include <cstring>

#include "bench/bench_common.h"
#include "bench/datagen.h"

namespace bench {

uint64_t Libtasn1Headers() {
  const Bytes& in = In().w1;
  const unsigned char* p = in.data();
  const unsigned char* const end = p + in.size();
  uint64_t sum = 0;
  while (p < end) {
    unsigned char cls = 0;
    int taglen = 0;
    unsigned long tag = 0;
    if (asn1_get_tag_der(p, static_cast<int>(end - p), &cls, &taglen, &tag) != ASN1_SUCCESS)
      return 0;
    int lenlen = 0;
    const long len = asn1_get_length_der(p + taglen, static_cast<int>(end - p - taglen), &lenlen);
    if (len < 0) return 0;
    sum += HeaderTerm(static_cast<unsigned int>(cls | tag), static_cast<uint64_t>(len));
    p += taglen + lenlen + len;
  }
  return sum;
}

uint64_t Libtasn1OidEnc() {
  uint64_t h = kFnvBasis;
  for (const std::string& s : In().oids) {
    unsigned char buf[64];
    int n = sizeof buf;
    if (asn1_object_id_der(s.c_str(), buf, &n, 0) != ASN1_SUCCESS || n < 3) return 0;
    h = Fnv1a(h, buf + 2, static_cast<size_t>(n - 2));
  }
  return h;
}

uint64_t Libtasn1OidDec() {
  uint64_t h = kFnvBasis;
  for (const Bytes& lc : In().oid_len_contents) {
    char text[160];
    int used = 0;
    if (asn1_get_object_id_der(lc.data(), static_cast<int>(lc.size()), &used, text, sizeof text) !=
        ASN1_SUCCESS)
      return 0;
    h = Fnv1a(Fnv1a(h, text, std::strlen(text)), "\n", 1);
  }
  return h;
}

uint64_t Libtasn1Split() {
  const SplitInput& in = In().w2;
  std::vector<std::vector<uint8_t>> items;
  const unsigned char* p = in.contents();
  const unsigned char* const end = p + in.size();
  while (p < end) {
    unsigned char cls = 0;
    int taglen = 0;
    unsigned long tag = 0;
    if (asn1_get_tag_der(p, static_cast<int>(end - p), &cls, &taglen, &tag) != ASN1_SUCCESS)
      return 0;
    int lenlen = 0;
    const long len = asn1_get_length_der(p + taglen, static_cast<int>(end - p - taglen), &lenlen);
    if (len < 0) return 0;
    const unsigned char* next = p + taglen + lenlen + len;
    items.emplace_back(p, next);
    p = next;
  }
  uint64_t sum = uint64_t{items.size()} << 32;
  for (const auto& item : items) sum += item[0] & 0x1F;
  return sum;
}

namespace {
// Counts the elements in [p, end), entering constructed ones; -1 on error.
int64_t Walk(const unsigned char* p, const unsigned char* end) {
  int64_t count = 0;
  while (p < end) {
    unsigned char cls = 0;
    int taglen = 0;
    unsigned long tag = 0;
    if (asn1_get_tag_der(p, static_cast<int>(end - p), &cls, &taglen, &tag) != ASN1_SUCCESS)
      return -1;
    int lenlen = 0;
    const long len = asn1_get_length_der(p + taglen, static_cast<int>(end - p - taglen), &lenlen);
    if (len < 0) return -1;
    const unsigned char* contents = p + taglen + lenlen;
    ++count;
    if (cls & ASN1_CLASS_STRUCTURED) {
      const int64_t inner = Walk(contents, contents + len);
      if (inner < 0) return -1;
      count += inner;
    }
    p = contents + len;
  }
  return count;
}
}  // namespace

uint64_t Libtasn1Walk() {
  uint64_t count = 0;
  for (const Bytes& c : In().certs) {
    const int64_t n = Walk(c.data(), c.data() + c.size());
    if (n < 0) return 0;
    count += static_cast<uint64_t>(n);
  }
  return count;
}

}  // namespace bench
