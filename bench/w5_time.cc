// W5_time: 1,000 UTCTime / GeneralizedTime values to a 64-bit file-time count.
#include <botan/asn1_obj.h>
#include <openssl/asn1.h>

#include <cstring>
#include <ctime>

#include "bench/bench_common.h"
#include "bench/datagen.h"

namespace bench {

namespace {

constexpr uint64_t kUnixToFileTimeSeconds = 11644473600ull;
constexpr uint64_t kTicksPerSecond = 10000000ull;

inline uint64_t FromUnix(int64_t s) {
  return (static_cast<uint64_t>(s) + kUnixToFileTimeSeconds) * kTicksPerSecond;
}

inline bool Digits2(const char* p, unsigned* v) {
  const unsigned a = static_cast<unsigned char>(p[0]) - '0';
  const unsigned b = static_cast<unsigned char>(p[1]) - '0';
  if (a > 9 || b > 9) return false;
  *v = a * 10 + b;
  return true;
}

// Days from 1970-01-01 (days-from-civil).
inline int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

uint64_t Limit() {
  static const unsigned char kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  uint64_t sum = 0;
  for (const TimeValue& v : In().times) {
    const char* p = v.text.data();
    const size_t n = v.text.size();
    unsigned year, yy, mo, d, h, mi, s;
    if (v.utc) {
      if (n != 13 || !Digits2(p, &yy)) return 0;
      year = yy < 50 ? 2000 + yy : 1900 + yy;
      p += 2;
    } else {
      unsigned hi;
      if (n != 15 || !Digits2(p, &hi) || !Digits2(p + 2, &yy)) return 0;
      year = hi * 100 + yy;
      p += 4;
    }
    if (!Digits2(p, &mo) || !Digits2(p + 2, &d) || !Digits2(p + 4, &h) || !Digits2(p + 6, &mi) ||
        !Digits2(p + 8, &s) || p[10] != 'Z')
      return 0;
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    if (mo < 1 || mo > 12 || d < 1 || d > kDays[mo - 1] + (mo == 2 && leap ? 1u : 0u) || h > 23 ||
        mi > 59 || s > 59)
      return 0;
    sum += FromUnix(DaysFromCivil(year, mo, d) * 86400 + h * 3600 + mi * 60 + s);
  }
  return sum;
}

uint64_t Openssl() {
  static ASN1_TIME* t = ASN1_TIME_new();  // reused across values and passes
  uint64_t sum = 0;
  for (const TimeValue& v : In().times) {
    if (!ASN1_TIME_set_string(t, v.text.c_str())) return 0;
    struct tm tm;
    if (!ASN1_TIME_to_tm(t, &tm)) return 0;
    sum += FromUnix(timegm(&tm));
  }
  return sum;
}

uint64_t OpensslD2i() {
  static ASN1_TIME* t = ASN1_TIME_new();  // reused across values and passes
  uint64_t sum = 0;
  for (const TimeValue& v : In().times) {
    const unsigned char* p = v.tlv.data();
    if (!d2i_ASN1_TIME(&t, &p, static_cast<long>(v.tlv.size()))) return 0;
    struct tm tm;
    if (!ASN1_TIME_to_tm(t, &tm)) return 0;
    sum += FromUnix(timegm(&tm));
  }
  return sum;
}

uint64_t Botan() {
  uint64_t sum = 0;
  for (const TimeValue& v : In().times) {
    const Botan::ASN1_Time t(v.text, v.utc ? Botan::UTC_TIME : Botan::GENERALIZED_TIME);
    sum += FromUnix(static_cast<int64_t>(t.time_since_epoch()));
  }
  return sum;
}

}  // namespace

void RegisterTimes() {
  const Inputs& in = In();
  AddOp("W5_time", "limit", Limit, &in.w5_sum, 1000, 0, false);
  AddOp("W5_time", "openssl", Openssl, &in.w5_sum, 1000, 0, false);
  AddOp("W5_time", "openssl_d2i", OpensslD2i, &in.w5_sum, 1000, 0, false);
  AddOp("W5_time", "botan", Botan, &in.w5_sum, 1000, 0, false);
}

}  // namespace bench
