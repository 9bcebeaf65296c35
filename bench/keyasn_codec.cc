// The keyasn rows of W1, W2 (and its scaling sizes), W4 and W5. They use the
// library alone, so the instruction-count gate (bench/gate) runs them too.
#include <cstring>
#include <list>

#include "bench/bench_common.h"
#include "bench/datagen.h"
#include "bench/workloads.h"
#include "keyasn/codec/decoder.h"
#include "keyasn/codec/encoder.h"
#include "keyasn/codec/header.h"
#include "keyasn/codec/sequence.h"

namespace bench {

namespace {

uint64_t Headers() {
  const Bytes& in = In().w1;
  const unsigned char* p = in.data();
  const unsigned char* const end = p + in.size();
  uint64_t sum = 0;
  ASNT_ASN_STRUCT_INFO info;
  while (p < end) {
    if (ASNTGetAsnInfo(info, p, static_cast<unsigned int>(end - p)) != 0) return 0;
    // The parser does not check the contents against the data: the caller does.
    if (info.Length > static_cast<size_t>(end - info.Contents)) return 0;
    sum += HeaderTerm(info.Class | info.Constructed | info.Tag, info.Length);
    p = info.Contents + info.Length;
  }
  return sum;
}

uint64_t SplitOn(const SplitInput& in) {
  std::list<IdentObj> items;
  if (ASNTGetSequence(items, in.contents(), in.size()) != 0) return 0;
  uint64_t sum = uint64_t{items.size()} << 32;
  for (const IdentObj& item : items) sum += item.GetData()[0] & 0x1F;
  return sum;
}

uint64_t Split() { return SplitOn(In().w2); }

uint64_t SplitWhole() {
  const SplitInput& in = In().w2;
  std::list<IdentObj> items;
  int error = 0;
  ASNTGetSequence(items, in.element.data(), static_cast<unsigned int>(in.element.size()), &error);
  if (error != 0) return 0;
  uint64_t sum = uint64_t{items.size()} << 32;
  for (const IdentObj& item : items) sum += item.GetData()[0] & 0x1F;
  return sum;
}

template <int kIndex>
uint64_t SplitScaled() {
  return SplitOn(In().w2_scaling[kIndex]);
}

uint64_t OidEnc() {
  uint64_t h = kFnvBasis;
  ASNT_ASN_STRUCT_INFO info{};
  info.Tag = 6;
  for (const std::string& s : In().oids) {
    const IdentObj tlv = ASNTLowEncodeData(info, reinterpret_cast<const unsigned char*>(s.data()),
                                           static_cast<unsigned int>(s.size()), nullptr);
    if (tlv.Count() < 3) return 0;
    h = Fnv1a(h, tlv.GetData() + 2, tlv.Count() - 2);
  }
  return h;
}

uint64_t OidDec() {
  uint64_t h = kFnvBasis;
  ASNT_ASN_STRUCT_INFO info{};
  info.Tag = 6;
  for (const Bytes& c : In().oid_contents) {
    info.Contents = c.data();
    info.Length = static_cast<unsigned int>(c.size());
    int error = 0;
    const IdentObj text = ASNTLowDecodeData(info, nullptr, 0, &error);
    if (error != 0) return 0;
    h = HashText(h, text.GetData(), text.Count());
  }
  return h;
}

uint64_t Times() {
  uint64_t sum = 0;
  ASNT_ASN_STRUCT_INFO info{};
  for (const TimeValue& v : In().times) {
    info.Tag = v.utc ? 23 : 24;
    info.Contents = reinterpret_cast<const unsigned char*>(v.text.data());
    info.Length = static_cast<unsigned int>(v.text.size());
    int error = 0;
    const IdentObj ft = ASNTLowDecodeData(info, nullptr, 0, &error);
    if (error != 0 || ft.Count() != 8) return 0;
    uint64_t ticks;
    std::memcpy(&ticks, ft.GetData(), 8);  // low word first, each least significant first
    sum += ticks;
  }
  return sum;
}

}  // namespace

void RegisterKeyasnCodec() {
  const Inputs& in = In();
  const double headers = 100000, header_bytes = static_cast<double>(in.w1.size());
  AddOp("W1_header", "keyasn", Headers, &in.w1_sum, headers, header_bytes, true);
  const double items = in.w2.items, bytes = in.w2.size();
  AddOp("W2_split", "keyasn", Split, &in.w2.sum, items, bytes, true);
  AddOp("W2_split", "keyasn_whole", SplitWhole, &in.w2.sum, items, bytes, true);
  static const char* const kNames[3] = {"W2_scaling_1k", "W2_scaling_10k", "W2_scaling_100k"};
  static uint64_t (*const kSplit[3])() = {SplitScaled<0>, SplitScaled<1>, SplitScaled<2>};
  for (int i = 0; i < 3; ++i) {
    const SplitInput& s = in.w2_scaling[i];
    AddOp(kNames[i], "keyasn", kSplit[i], &s.sum, s.items, s.size(), true);
  }
  AddOp("W4_oid_enc", "keyasn", OidEnc, &in.w4_enc, 50, 0, true);
  AddOp("W4_oid_dec", "keyasn", OidDec, &in.w4_dec, 50, 0, true);
  AddOp("W5_time", "keyasn", Times, &in.w5_sum, 1000, 0, true);
}

}  // namespace bench
