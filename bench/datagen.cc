#include "bench/datagen.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "bench/bench_common.h"

namespace bench {

namespace {

Inputs g_inputs;

constexpr uint64_t kTicksPerSecond = 10000000ull;

void PutLength(Bytes* out, size_t len) {
  if (len < 128) {
    out->push_back(static_cast<uint8_t>(len));
    return;
  }
  unsigned int n = 0;
  for (size_t v = len; v; v >>= 8) ++n;
  out->push_back(static_cast<uint8_t>(0x80 | n));
  for (unsigned int i = n; i-- > 0;) out->push_back(static_cast<uint8_t>(len >> (8 * i)));
}

Bytes Tlv(uint8_t identifier, const Bytes& contents) {
  Bytes out{identifier};
  PutLength(&out, contents.size());
  out.insert(out.end(), contents.begin(), contents.end());
  return out;
}

Bytes Cat(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

// W1: 100,000 primitive TLVs.
void MakeHeaders(Inputs* in) {
  static const uint8_t kIds[12] = {0x02, 0x03, 0x04, 0x06, 0x0C, 0x13,
                                   0x16, 0x17, 0x80, 0x81, 0x82, 0x83};
  Rng rng(0x57310001);
  in->w1.reserve(7300000);
  for (int i = 0; i < 100000; ++i) {
    const uint32_t c = rng.below(100);
    uint32_t len;
    if (c < 65)
      len = rng.below(32);
    else if (c < 80)
      len = 32 + rng.below(96);
    else if (c < 95)
      len = 128 + rng.below(128);
    else
      len = 256 + rng.below(256);
    const uint8_t id = kIds[rng.below(12)];
    in->w1.push_back(id);
    if (len < 128) {
      in->w1.push_back(static_cast<uint8_t>(len));
      ++in->w1_short;
    } else if (len < 256) {
      in->w1.push_back(0x81);
      in->w1.push_back(static_cast<uint8_t>(len));
      ++in->w1_long1;
    } else {
      in->w1.push_back(0x82);
      in->w1.push_back(static_cast<uint8_t>(len >> 8));
      in->w1.push_back(static_cast<uint8_t>(len));
      ++in->w1_long2;
    }
    for (uint32_t k = 0; k < len; ++k) in->w1.push_back(rng.byte());
    in->w1_sum += uint64_t{id} * 65537 + len + (uint64_t{1} << 40);
  }
}

// W2: a SEQUENCE of `count` INTEGER / OCTET STRING items.
SplitInput MakeSplit(unsigned int count) {
  Rng rng(0x57320001);
  Bytes contents;
  SplitInput s;
  for (unsigned int i = 0; i < count; ++i) {
    const uint8_t tag = rng.below(2) ? 0x04 : 0x02;
    const uint32_t len = 1 + rng.below(64);
    contents.push_back(tag);
    contents.push_back(static_cast<uint8_t>(len));
    const size_t first = contents.size();
    for (uint32_t k = 0; k < len; ++k) contents.push_back(rng.byte());
    if (tag == 0x02 && len > 1) contents[first] = static_cast<uint8_t>(1 + rng.below(254));
    s.sum += tag;
  }
  s.items = count;
  s.sum += uint64_t{count} << 32;
  s.contents_size = contents.size();
  s.element = Tlv(0x30, contents);
  s.header = static_cast<unsigned int>(s.element.size() - contents.size());
  return s;
}

const char* const kOids[50] = {"1.2.840.113549.1.1.1",
                               "1.2.840.113549.1.1.11",
                               "1.2.840.113549.1.1.10",
                               "1.2.840.113549.1.7.2",
                               "1.2.840.113549.1.9.1",
                               "1.2.840.113549.1.9.16.2.47",
                               "1.2.840.113549.1.12.10.1.2",
                               "1.2.840.113549.1.5.13",
                               "1.2.840.113549.2.9",
                               "1.2.840.10045.2.1",
                               "1.2.840.10045.3.1.7",
                               "1.2.840.10045.4.3.2",
                               "1.3.132.0.34",
                               "2.16.840.1.101.3.4.2.1",
                               "2.16.840.1.101.3.4.1.46",
                               "2.5.4.3",
                               "2.5.4.6",
                               "2.5.4.10",
                               "2.5.4.11",
                               "2.5.4.97",
                               "2.5.29.14",
                               "2.5.29.15",
                               "2.5.29.17",
                               "2.5.29.19",
                               "2.5.29.31",
                               "2.5.29.32.0",
                               "2.5.29.35",
                               "2.5.29.37",
                               "1.3.6.1.5.5.7.1.1",
                               "1.3.6.1.5.5.7.3.1",
                               "1.3.6.1.5.5.7.3.2",
                               "1.3.6.1.5.5.7.48.1",
                               "1.3.6.1.5.5.7.48.2",
                               "1.3.6.1.5.5.7.2.1",
                               "1.2.643.2.2.19",
                               "1.2.643.2.2.3",
                               "1.2.643.2.2.35.1",
                               "1.2.643.2.2.30.1",
                               "1.2.643.2.2.31.1",
                               "1.2.643.7.1.1.1.1",
                               "1.2.643.7.1.1.2.2",
                               "1.2.643.7.1.1.3.2",
                               "1.2.643.100.1",
                               "1.2.643.3.131.1.1",
                               "1.3.6.1.4.1.311.60.2.1.3",
                               "1.3.6.1.4.1.311.21.7",
                               "1.3.6.1.4.1.11129.2.4.2",
                               "2.16.840.1.113730.1.1",
                               "2.23.140.1.2.1",
                               "0.9.2342.19200300.100.1.25"};

// Reference OID encoder: strtoul per component, base 128.
Bytes OidContents(const std::string& text) {
  std::vector<unsigned long> arcs;
  const char* p = text.c_str();
  while (*p) {
    char* end = nullptr;
    arcs.push_back(std::strtoul(p, &end, 10));
    p = *end == '.' ? end + 1 : end;
  }
  Bytes out{static_cast<uint8_t>(arcs[0] * 40 + arcs[1])};
  for (size_t i = 2; i < arcs.size(); ++i) {
    uint8_t groups[10];
    int n = 0;
    unsigned long v = arcs[i];
    do {
      groups[n++] = v & 0x7F;
      v >>= 7;
    } while (v);
    while (n-- > 0) out.push_back(static_cast<uint8_t>(groups[n] | (n ? 0x80 : 0)));
  }
  return out;
}

void MakeOids(Inputs* in) {
  in->w4_enc = kFnvBasis;
  in->w4_dec = kFnvBasis;
  for (const char* text : kOids) {
    in->oids.emplace_back(text);
    const Bytes contents = OidContents(text);
    if (contents.size() < 3 || contents.size() > 11 || contents[0] >= 128)
      throw std::runtime_error("object identifier outside the workload's shape");
    in->oid_contents.push_back(contents);
    in->oid_tlv.push_back(Tlv(0x06, contents));
    in->oid_len_contents.push_back(Bytes(in->oid_tlv.back().begin() + 1, in->oid_tlv.back().end()));
    in->w4_enc = Fnv1a(in->w4_enc, contents.data(), contents.size());
    in->w4_dec = Fnv1a(in->w4_dec, text, std::string(text).size());
    in->w4_dec = Fnv1a(in->w4_dec, "\n", 1);
  }
}

bool IsLeap(unsigned y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

void MakeTimes(Inputs* in) {
  static const unsigned kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  Rng rng(0x57350001);
  for (int i = 0; i < 1000; ++i) {
    const bool utc = rng.below(2) == 0;
    const unsigned year = utc ? 1970 + rng.below(80) : 1970 + rng.below(280);
    const unsigned month = 1 + rng.below(12);
    const unsigned dim = month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
    const unsigned day = 1 + rng.below(dim);
    const unsigned hour = rng.below(24), minute = rng.below(60), second = rng.below(60);
    char text[32];
    if (utc)
      std::snprintf(text, sizeof text, "%02u%02u%02u%02u%02u%02uZ", year % 100, month, day, hour,
                    minute, second);
    else
      std::snprintf(text, sizeof text, "%04u%02u%02u%02u%02u%02uZ", year, month, day, hour, minute,
                    second);
    TimeValue v{utc, text, {}};
    v.tlv = Tlv(utc ? 0x17 : 0x18, Bytes(v.text.begin(), v.text.end()));
    in->times.push_back(v);
    const uint64_t seconds = static_cast<uint64_t>(DaysSince1601(year, month, day)) * 86400 +
                             hour * 3600 + minute * 60 + second;
    in->w5_sum += seconds * kTicksPerSecond;
  }
}

void MakeKeyInfo(Inputs* in) {
  Rng rng(0x57360001);
  auto draw = [&rng](size_t n) {
    Bytes b(n);
    for (auto& o : b) o = rng.byte();
    return b;
  };
  in->ki_o1 = draw(32);
  in->ki_o2 = draw(32);
  in->ki_o3 = draw(16);
  in->ki_bits = draw(64);
  in->ki_oid_contents = OidContents(in->ki_oid);
  in->ki_from_ticks = static_cast<uint64_t>(DaysSince1601(2025, 1, 1)) * 86400 * kTicksPerSecond;
  in->ki_to_ticks = static_cast<uint64_t>(DaysSince1601(2026, 1, 1)) * 86400 * kTicksPerSecond;
  auto text = [](const std::string& s) { return Bytes(s.begin(), s.end()); };
  Bytes bits{0x00};
  bits.insert(bits.end(), in->ki_bits.begin(), in->ki_bits.end());
  const Bytes body = Cat({
      Tlv(0x02, {0x11}),
      Tlv(0x02, {0x01, 0x23, 0x45}),
      Tlv(0xA0, Tlv(0x30, Cat({Tlv(0x06, in->ki_oid_contents), Tlv(0x05, {})}))),
      Tlv(0xA1, Tlv(0x04, in->ki_o1)),
      Tlv(0xA2, Tlv(0x04, in->ki_o2)),
      Tlv(0xA3, Tlv(0x04, in->ki_o3)),
      Tlv(0xA6, Tlv(0x30, Cat({Tlv(0x17, text(in->ki_from)), Tlv(0x17, text(in->ki_to))}))),
      Tlv(0xA7, Tlv(0x03, bits)),
  });
  in->w6_der = Tlv(0x30, body);
  if (in->w6_der.size() != 222) throw std::runtime_error("key info reference: wrong size");
  in->w6_enc = Fnv1a(kFnvBasis, in->w6_der.data(), in->w6_der.size());
  in->w6_dec = in->ki_flags + in->ki_number + 1 + 32 + 32 + 16 + 64 + in->ki_o1[0] + in->ki_o2[0] +
               in->ki_o3[0] + in->ki_bits[0] + 0;
}

void MakeIntegers(Inputs* in) {
  static const int32_t kFixed[15] = {0,       1,       127,      128,      255,
                                     256,     32767,   32768,    65535,    65536,
                                     8388607, 8388608, 16777215, 16777216, 2147483647};
  static const uint64_t kLo[4] = {0, 128, 32768, 8388608};
  static const uint64_t kHi[4] = {127, 32767, 8388607, 2147483647};
  in->ints.assign(kFixed, kFixed + 15);
  Rng rng(0x57370001);
  for (int i = 0; i < 985; ++i) {
    const uint32_t k = rng.below(4);
    in->ints.push_back(static_cast<int32_t>(kLo[k] + rng.next() % (kHi[k] - kLo[k] + 1)));
  }
  for (int32_t v : in->ints) {
    uint64_t contents = 1;
    while (contents < 4 && (static_cast<uint64_t>(v) >> (8 * contents - 1)) != 0) ++contents;
    in->w7_sum += static_cast<uint64_t>(v) + ((2 + contents) << 32);
  }
}

// SEQUENCE { INTEGER d-1, SEQUENCE { INTEGER d-2, ... SEQUENCE { INTEGER 0 } } },
// built from the inside out.
TreeInput MakeTree(unsigned int depth) {
  Bytes rev;  // the encoding, reversed
  for (unsigned int level = 0; level < depth; ++level) {
    rev.push_back(static_cast<uint8_t>(level & 0x7F));  // INTEGER contents
    rev.push_back(0x01);
    rev.push_back(0x02);
    const size_t len = rev.size();  // the INTEGER and everything inside
    Bytes lengthOctets;
    PutLength(&lengthOctets, len);
    rev.insert(rev.end(), lengthOctets.rbegin(), lengthOctets.rend());
    rev.push_back(0x30);
  }
  TreeInput t;
  t.element.assign(rev.rbegin(), rev.rend());
  t.depth = depth;
  t.sum = t.element.size();
  return t;
}

}  // namespace

int64_t DaysSince1601(int64_t y, unsigned m, unsigned d) {
  // Days from civil (proleptic Gregorian), shifted so that 1601-01-01 is day 0.
  auto fromCivil = [](int64_t yy, unsigned mm, unsigned dd) {
    yy -= mm <= 2;
    const int64_t era = (yy >= 0 ? yy : yy - 399) / 400;
    const int64_t yoe = yy - era * 400;
    const int64_t doy = (153 * (mm > 2 ? mm - 3 : mm + 9) + 2) / 5 + dd - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe;
  };
  return fromCivil(y, m, d) - fromCivil(1601, 1, 1);
}

void BuildInputs() {
  Inputs* in = &g_inputs;
  MakeHeaders(in);
  in->w2 = MakeSplit(10000);
  for (unsigned int n : {1000u, 10000u, 100000u}) in->w2_scaling.push_back(MakeSplit(n));
  MakeOids(in);
  MakeTimes(in);
  MakeKeyInfo(in);
  MakeIntegers(in);
  for (unsigned int d : {10u, 100u, 1000u, 10000u}) in->trees.push_back(MakeTree(d));
}

const Inputs& In() { return g_inputs; }
Inputs& MutableIn() { return g_inputs; }

}  // namespace bench
