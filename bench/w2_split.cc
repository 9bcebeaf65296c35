// W2_split: a SEQUENCE of 10,000 items into an owned list of copies (and the
// scaling sizes of 1k, 10k and 100k items).
#include <botan/asn1_obj.h>
#include <botan/ber_dec.h>
#include <mbedtls/asn1.h>
#include <openssl/asn1.h>
#include <openssl/asn1t.h>

#include <list>
#include <vector>

#include "bench/bench_common.h"
#include "bench/botan_source.h"
#include "bench/datagen.h"
#include "bench/libtasn1_peers.h"

namespace bench {

namespace {

template <class List>
uint64_t Sum(const List& items) {
  uint64_t sum = uint64_t{items.size()} << 32;
  for (const auto& item : items) sum += item[0] & 0x1F;
  return sum;
}

uint64_t Limit() {
  const SplitInput& in = In().w2;
  const std::vector<uint8_t> copy(in.contents(), in.contents() + in.size());
  return copy.size();
}

uint64_t Openssl() {
  const SplitInput& in = In().w2;
  const unsigned char* p = in.element.data();
  STACK_OF(ASN1_TYPE)* items =
      d2i_ASN1_SEQUENCE_ANY(nullptr, &p, static_cast<long>(in.element.size()));
  if (!items) return 0;
  const int n = sk_ASN1_TYPE_num(items);
  uint64_t sum = uint64_t(n) << 32;
  for (int i = 0; i < n; ++i)
    sum += static_cast<unsigned>(ASN1_TYPE_get(sk_ASN1_TYPE_value(items, i)));
  sk_ASN1_TYPE_pop_free(items, ASN1_TYPE_free);
  return sum;
}

template <class List>
uint64_t MbedtlsInto(const SplitInput& in) {
  List items;
  unsigned char* p = const_cast<unsigned char*>(in.contents());
  unsigned char* const end = p + in.size();
  while (p < end) {
    unsigned char* const start = p;
    size_t len = 0;
    if (mbedtls_asn1_get_tag(&p, end, &len, *p) != 0) return 0;
    p += len;
    items.emplace_back(start, p);
  }
  return Sum(items);
}

uint64_t Mbedtls() { return MbedtlsInto<std::vector<std::vector<uint8_t>>>(In().w2); }
uint64_t MbedtlsList() { return MbedtlsInto<std::list<std::vector<uint8_t>>>(In().w2); }

uint64_t Botan() {
  const SplitInput& in = In().w2;
  SpanSource source(in.element.data(), in.element.size());
  Botan::BER_Decoder decoder(source);
  Botan::BER_Decoder seq = decoder.start_cons(Botan::SEQUENCE);
  std::vector<Botan::BER_Object> items;
  while (seq.more_items()) items.push_back(seq.get_next_object());
  uint64_t sum = uint64_t{items.size()} << 32;
  for (const Botan::BER_Object& o : items) sum += static_cast<unsigned>(o.type());
  return sum;
}

template <int kIndex>
uint64_t MbedtlsListScaled() {
  return MbedtlsInto<std::list<std::vector<uint8_t>>>(In().w2_scaling[kIndex]);
}

}  // namespace

void RegisterSplit() {
  const Inputs& in = In();
  const double items = in.w2.items, bytes = in.w2.size();
  AddOp("W2_split", "limit", Limit, &in.w2.contents_size, items, bytes, false);
  AddOp("W2_split", "openssl", Openssl, &in.w2.sum, items, bytes, false);
  AddOp("W2_split", "mbedtls", Mbedtls, &in.w2.sum, items, bytes, false);
  AddOp("W2_split", "mbedtls_list", MbedtlsList, &in.w2.sum, items, bytes, false);
  AddOp("W2_split", "libtasn1", Libtasn1Split, &in.w2.sum, items, bytes, false);
  AddOp("W2_split", "botan", Botan, &in.w2.sum, items, bytes, false);
  static const char* const kNames[3] = {"W2_scaling_1k", "W2_scaling_10k", "W2_scaling_100k"};
  static uint64_t (*const kMbed[3])() = {MbedtlsListScaled<0>, MbedtlsListScaled<1>,
                                         MbedtlsListScaled<2>};
  for (int i = 0; i < 3; ++i) {
    const SplitInput& s = in.w2_scaling[i];
    AddOp(kNames[i], "mbedtls_list", kMbed[i], &s.sum, s.items, s.size(), false);
  }
}

}  // namespace bench
