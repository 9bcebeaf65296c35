#include "values.h"

#include <charconv>
#include <cstdio>

namespace keyasn {
namespace tool {

std::string HexText(const unsigned char* data, std::size_t size, bool full) {
  return HexTextUpTo(data, size, full ? 0 : kShortOctets);
}

std::string HexTextUpTo(const unsigned char* data, std::size_t size, std::size_t limit) {
  if (limit == 0 || size <= limit) return ToHex(data, size);
  return ToHex(data, limit) + "... (" + std::to_string(size) + " octets)";
}

std::size_t Decimal(uint64_t value, char* digits) {
  return static_cast<std::size_t>(std::to_chars(digits, digits + 20, value).ptr - digits);
}

std::string IntegerText(const unsigned char* data, std::size_t size, bool full) {
  return IntegerTextUpTo(data, size, full ? 0 : kShortOctets);
}

std::string IntegerTextUpTo(const unsigned char* data, std::size_t size, std::size_t limit) {
  if (size == 0) return "(no contents)";
  if (size > 8) return "0x" + HexTextUpTo(data, size, limit);
  uint64_t value = (data[0] & 0x80) ? ~uint64_t{0} : 0;
  for (std::size_t i = 0; i < size; ++i) value = (value << 8) | data[i];
  return std::to_string(static_cast<int64_t>(value));
}

namespace {

bool Digits(const unsigned char* p, std::size_t n, int* value) {
  int v = 0;
  for (std::size_t i = 0; i < n; ++i) {
    if (p[i] < '0' || p[i] > '9') return false;
    v = v * 10 + (p[i] - '0');
  }
  *value = v;
  return true;
}

int64_t DaysFromCivil(int64_t y, int m, int d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

void CivilFromDays(int64_t z, int64_t* y, int* m, int* d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  *d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  *m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  *y = yoe + era * 400 + (*m <= 2);
}

}  // namespace

bool DecodeOid(const unsigned char* data, std::size_t size, std::string* dotted) {
  if (size == 0) return false;
  std::string text;
  uint64_t value = 0;
  bool first = true;
  bool open = false;
  for (std::size_t i = 0; i < size; ++i) {
    if (value > (~uint64_t{0} >> 7)) return false;
    value = (value << 7) | (data[i] & 0x7F);
    open = (data[i] & 0x80) != 0;
    if (open) continue;
    if (first) {
      const uint64_t arc = value < 40 ? 0 : value < 80 ? 1 : 2;
      text = std::to_string(arc) + "." + std::to_string(value - 40 * arc);
      first = false;
    } else {
      text += "." + std::to_string(value);
    }
    value = 0;
  }
  if (open) return false;
  dotted->swap(text);
  return true;
}

int DaysInMonth(int64_t y, int m) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (m == 2 && ((y % 4 == 0 && y % 100 != 0) || y % 400 == 0)) return 29;
  return kDays[m - 1];
}

bool TimeText(const unsigned char* data, std::size_t size, bool generalized, std::string* iso) {
  const unsigned char* p = data;
  const unsigned char* end = data + size;
  int year, month, day, hour, minute = 0, second = 0;
  const std::size_t year_digits = generalized ? 4 : 2;
  if (size < year_digits + 6 || !Digits(p, year_digits, &year)) return false;
  p += year_digits;
  if (!generalized) year += year < 50 ? 2000 : 1900;
  if (!Digits(p, 2, &month) || !Digits(p + 2, 2, &day) || !Digits(p + 4, 2, &hour)) return false;
  p += 6;
  // Minutes are required in UTCTime, optional in GeneralizedTime; seconds optional.
  if (end - p >= 2 && Digits(p, 2, &minute)) {
    p += 2;
    if (end - p >= 2 && Digits(p, 2, &second)) p += 2;
  } else if (!generalized) {
    return false;
  }
  std::string fraction;
  if (generalized && p < end && (*p == '.' || *p == ',')) {
    ++p;
    while (p < end && *p >= '0' && *p <= '9') fraction += static_cast<char>(*p++);
    if (fraction.empty()) return false;
  }
  int offset_minutes = 0;
  bool zone = false;
  if (p < end && *p == 'Z') {
    zone = true;
    ++p;
  } else if (p < end && (*p == '+' || *p == '-')) {
    const int sign = *p == '+' ? 1 : -1;
    ++p;
    int oh = 0, om = 0;
    if (end - p < 2 || !Digits(p, 2, &oh)) return false;
    p += 2;
    if (end - p >= 2) {
      if (!Digits(p, 2, &om)) return false;
      p += 2;
    } else if (!generalized) {
      return false;
    }
    if (oh > 23 || om > 59) return false;
    offset_minutes = sign * (oh * 60 + om);
    zone = true;
  } else if (!generalized) {
    return false;
  }
  if (p != end) return false;
  if (month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month) || hour > 23 ||
      minute > 59 || second > 60) {
    return false;
  }
  int64_t total = (DaysFromCivil(year, month, day) * 24 + hour) * 60 + minute - offset_minutes;
  int64_t days = total >= 0 ? total / 1440 : (total - 1439) / 1440;
  const int64_t in_day = total - days * 1440;
  int64_t y;
  int m, d;
  CivilFromDays(days, &y, &m, &d);
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%04lld-%02d-%02dT%02d:%02d:%02d",
                static_cast<long long>(y), m, d, static_cast<int>(in_day / 60),
                static_cast<int>(in_day % 60), second);
  std::string text = buffer;
  if (!fraction.empty()) text += "." + fraction;
  if (zone) text += "Z";
  iso->swap(text);
  return true;
}

namespace {

}  // namespace

std::size_t Utf8Sequence(const unsigned char* p, std::size_t left) {
  if (left == 0) return 0;
  const unsigned char c = p[0];
  if (c < 0x80) return 1;
  std::size_t n;
  uint32_t cp;
  if (c >= 0xC2 && c <= 0xDF) {
    n = 2;
    cp = c & 0x1F;
  } else if (c >= 0xE0 && c <= 0xEF) {
    n = 3;
    cp = c & 0x0F;
  } else if (c >= 0xF0 && c <= 0xF4) {
    n = 4;
    cp = c & 0x07;
  } else {
    return 0;
  }
  if (left < n) return 0;
  for (std::size_t i = 1; i < n; ++i) {
    if ((p[i] & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (p[i] & 0x3F);
  }
  if ((n == 3 && cp < 0x800) || (n == 4 && (cp < 0x10000 || cp > 0x10FFFF)) ||
      (cp >= 0xD800 && cp <= 0xDFFF)) {
    return 0;
  }
  return n;
}

std::string ToUtf8(const unsigned char* data, std::size_t size) {
  std::string out;
  for (std::size_t i = 0; i < size;) {
    const std::size_t n = Utf8Sequence(data + i, size - i);
    if (n == 0) {
      out += "\xEF\xBF\xBD";
      ++i;
    } else {
      out.append(reinterpret_cast<const char*>(data + i), n);
      i += n;
    }
  }
  return out;
}

namespace {

void AppendUtf8(uint32_t cp, std::string* out) {
  if (cp < 0x80) {
    *out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    *out += static_cast<char>(0xC0 | (cp >> 6));
    *out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    *out += static_cast<char>(0xE0 | (cp >> 12));
    *out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    *out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    *out += static_cast<char>(0xF0 | (cp >> 18));
    *out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    *out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    *out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

}  // namespace

std::string QuoteString(const unsigned char* data, std::size_t size, bool utf8) {
  std::string out = "\"";
  for (std::size_t i = 0; i < size;) {
    const unsigned char c = data[i];
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\t') {
      out += "\\t";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c >= 0x20 && c < 0x7F) {
      out += static_cast<char>(c);
    } else if (utf8 && c >= 0x80) {
      const std::size_t n = Utf8Sequence(data + i, size - i);
      if (n > 0) {
        out.append(reinterpret_cast<const char*>(data + i), n);
        i += n;
        continue;
      }
      char buffer[8];
      std::snprintf(buffer, sizeof buffer, "\\x%02X", c);
      out += buffer;
    } else {
      char buffer[8];
      std::snprintf(buffer, sizeof buffer, "\\x%02X", c);
      out += buffer;
    }
    ++i;
  }
  out += '"';
  return out;
}

bool Utf16ToUtf8(const unsigned char* data, std::size_t size, std::string* out) {
  if (size % 2 != 0) return false;
  std::string text;
  for (std::size_t i = 0; i < size; i += 2) {
    uint32_t unit = static_cast<uint32_t>(data[i] << 8 | data[i + 1]);
    if (unit >= 0xD800 && unit <= 0xDBFF) {
      if (i + 4 > size) return false;
      const uint32_t low = static_cast<uint32_t>(data[i + 2] << 8 | data[i + 3]);
      if (low < 0xDC00 || low > 0xDFFF) return false;
      unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
      i += 2;
    } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
      return false;
    }
    AppendUtf8(unit, &text);
  }
  out->swap(text);
  return true;
}

bool Utf32ToUtf8(const unsigned char* data, std::size_t size, std::string* out) {
  if (size % 4 != 0) return false;
  std::string text;
  for (std::size_t i = 0; i < size; i += 4) {
    const uint32_t cp = static_cast<uint32_t>(data[i]) << 24 | static_cast<uint32_t>(data[i + 1]) << 16 |
                        static_cast<uint32_t>(data[i + 2]) << 8 | data[i + 3];
    if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    AppendUtf8(cp, &text);
  }
  out->swap(text);
  return true;
}

}  // namespace tool
}  // namespace keyasn
