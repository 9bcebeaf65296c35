// UTCTime and GeneralizedTime in their DER form (X.690 11.7, 11.8): UTC with
// "Z", seconds always present, a GeneralizedTime fraction only when it is not
// zero and without trailing zeros.
#include <cstdint>
#include <cstring>

#include "lint_rules.h"
#include "values.h"

namespace keyasn {
namespace tool {

namespace {

int TwoDigits(const unsigned char* p) { return (p[0] - '0') * 10 + (p[1] - '0'); }

std::string RangeFault(int64_t year, int month, int day, int hour, int minute, int second) {
  if (month < 1 || month > 12) return "month " + std::to_string(month) + " out of range";
  if (day < 1 || day > DaysInMonth(year, month)) return "day " + std::to_string(day) + " out of range";
  if (hour > 23) return "hour " + std::to_string(hour) + " out of range";
  if (minute > 59) return "minute " + std::to_string(minute) + " out of range";
  if (second > 59) return "second " + std::to_string(second) + " out of range";
  return std::string();
}

// ZoneFault looks at what follows the digits (and fraction) of a time.
std::string ZoneFault(const unsigned char* p, const unsigned char* end) {
  if (p == end) return "no time zone: DER ends in Z";
  if (*p == '+' || *p == '-') return "a time zone offset: DER is in UTC with Z";
  if (*p != 'Z') return "unexpected octet " + OctetsText(p, 1);
  if (p + 1 != end) return "characters after Z";
  return std::string();
}

}  // namespace

std::string TimeFault(const unsigned char* text, std::size_t size, bool generalized) {
  const unsigned char* end = text + size;
  const unsigned char* p = text;
  while (p < end && *p >= '0' && *p <= '9') ++p;
  const std::size_t digits = static_cast<std::size_t>(p - text);
  const std::size_t want = generalized ? 14 : 12;
  if (digits == want - 2 || (generalized && digits == want - 4)) {
    return digits == want - 2 ? "seconds missing" : "minutes and seconds missing";
  }
  if (size == 0) return "empty";
  if (digits < want && p < end && std::memchr("Z+-.,", *p, 5) == nullptr) {
    return "octet " + OctetsText(p, 1) + " at position " + std::to_string(digits) +
           " where a digit belongs";
  }
  if (digits != want) {
    return std::to_string(digits) + " digits where DER has " + std::to_string(want);
  }
  if (generalized && p < end && (*p == '.' || *p == ',')) {
    if (*p == ',') return "a comma before the fraction: DER uses a full stop";
    const unsigned char* fraction = ++p;
    while (p < end && *p >= '0' && *p <= '9') ++p;
    if (p == fraction) return "an empty fraction";
    if (p[-1] == '0') return "the fraction ends in zero";
  }
  const std::string zone = ZoneFault(p, end);
  if (!zone.empty()) return zone;
  int64_t year;
  const unsigned char* rest = text + (generalized ? 4 : 2);
  if (generalized) {
    year = TwoDigits(text) * 100 + TwoDigits(text + 2);
  } else {
    year = TwoDigits(text);
    year += year < 50 ? 2000 : 1900;
  }
  return RangeFault(year, TwoDigits(rest), TwoDigits(rest + 2), TwoDigits(rest + 4),
                    TwoDigits(rest + 6), TwoDigits(rest + 8));
}

void CheckTime(const Checked& c, Findings* findings) {
  const Element& e = c.element;
  if (e.tag_class != 0 || e.constructed || (e.tag != 23 && e.tag != 24)) return;
  const bool generalized = e.tag == 24;
  const std::string fault = TimeFault(c.contents(), e.length, generalized);
  if (fault.empty()) return;
  findings->Error(c, generalized ? "generalizedtime.format" : "utctime.format",
                  TypeName(0, e.tag) + " " + QuoteString(c.contents(), e.length, false) + ": " +
                      fault + " (DER: " + (generalized ? "YYYYMMDDHHMMSS[.f]Z" : "YYMMDDHHMMSSZ") +
                      ")");
}

}  // namespace tool
}  // namespace keyasn
