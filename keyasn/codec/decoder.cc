#include "keyasn/codec/decoder.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "keyasn/codec/asn_time.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/oid_text.h"
#include "keyasn/support/file_time.h"

namespace {

constexpr unsigned char kContextSpecific = 0x80;
constexpr unsigned int kLastDecodableTag = 30;

// The contents octets described by `info`: the caller guarantees that Length
// octets at Contents are readable (a null Contents reads as no contents).
IdentObj CopyContents(const ASNT_ASN_STRUCT_INFO& info) {
  if (!info.Contents) return IdentObj();
  return IdentObj(info.Contents, info.Length);
}

// The integer part of a value of moderate size, truncated toward zero as a
// conversion to int does; NaN gives 0.
int IntegerPart(double value) { return std::isnan(value) ? 0 : static_cast<int>(value); }

IdentObj DecodeTime(const ASNT_ASN_STRUCT_INFO& info, int* code) {
  unsigned char octets[8] = {};
  FILETIME time;
  *code = info.Tag == 23 ? keyasn::detail::ParseUtcTime(info.Contents, info.Length, &time)
                         : keyasn::detail::ParseGeneralizedTime(info.Contents, info.Length, &time);
  if (*code == keyasn::kOk) {
    const unsigned int words[2] = {time.dwLowDateTime, time.dwHighDateTime};
    MemCpyDwordToByte(octets, words, 2);
  }
  return IdentObj(octets, sizeof octets);  // eight zero octets on failure
}

}  // namespace

IdentObj ASNTLowDecodeData(const ASNT_ASN_STRUCT_INFO& info, const unsigned char* /*data*/,
                           unsigned int /*size*/, int* error) {
  int code = keyasn::kOk;
  IdentObj result;
  if (info.Class == kContextSpecific) {
    result = CopyContents(info);
  } else if (info.Tag > kLastDecodableTag) {
    code = keyasn::kErrUnsupported;
  } else {
    switch (info.Tag) {
      case 1: {  // BOOLEAN: the first contents octet decides, whatever Length says
        // With no contents octet at all nothing is read and the value is false.
        const uint32_t value =
            info.Contents && info.Length > 0 && info.Contents[0] != 0 ? 1 : 0;
        result = IdentObj(&value, sizeof value);
        break;
      }
      case 2: {  // INTEGER: least significant octet first, one leading 0x00 dropped
        if (!info.Contents) break;
        unsigned int n = info.Length;
        const unsigned char* p = info.Contents;
        if (n >= 2 && p[0] == 0x00) {
          ++p;
          --n;
        }
        result.Alloc(n);
        for (unsigned int i = 0; i < n; ++i) result.GetData()[i] = p[n - 1 - i];
        break;
      }
      case 3: case 4: case 12: case 19: case 20: case 22: case 26: case 30:  // strings
      case 16: case 17:  // SEQUENCE, SET
        result = CopyContents(info);
        break;
      case 5:  // NULL: the length is not checked
        break;
      case 6:  // OBJECT IDENTIFIER
        code = info.Contents
                   ? keyasn::detail::OidContentsToText(info.Contents, info.Length, &result)
                   : keyasn::kErrMalformed;
        break;
      case 23:  // UTCTime
      case 24:  // GeneralizedTime
        result = DecodeTime(info, &code);
        break;
      default:
        code = keyasn::kErrUnsupported;
        break;
    }
  }
  if (error) *error = code;
  return result;
}

bool IsDigits(const unsigned char* text, int count) {
  if (count < 1) return true;
  if (!text) return false;
  for (int i = 0; i < count; ++i)
    if (text[i] < '0' || text[i] > '9') return false;
  return true;
}

double FractionToTime(double fraction, unsigned short* minutes, unsigned short* seconds,
                      unsigned short* milliseconds) {
  double f = fraction - std::trunc(fraction);
  if (minutes && !seconds && milliseconds) return f;
  if (minutes) {
    const int whole = IntegerPart(f * 60);
    *minutes = static_cast<unsigned short>(whole);  // never rounded
    f = f * 60 - whole;
  }
  if (seconds) {
    f *= 60;
    int whole = IntegerPart(f);
    f -= whole;
    if (!milliseconds) {
      if (f >= 0.5) ++whole;
      *seconds = static_cast<unsigned short>(whole);
      return f;
    }
    *seconds = static_cast<unsigned short>(whole);
  }
  if (!milliseconds) return f;
  f *= 1000;
  int whole = IntegerPart(f);
  f -= whole;
  if (f >= 0.5) ++whole;  // no carry into seconds: 1000 is left to the calendar check
  *milliseconds = static_cast<unsigned short>(whole);
  return f;
}

void MemCpyDwordToByte(unsigned char* target, const unsigned int* words, unsigned int count) {
  for (unsigned int i = 0; i < count; ++i) {
    const unsigned int w = words[i];
    target[4 * i] = static_cast<unsigned char>(w);
    target[4 * i + 1] = static_cast<unsigned char>(w >> 8);
    target[4 * i + 2] = static_cast<unsigned char>(w >> 16);
    target[4 * i + 3] = static_cast<unsigned char>(w >> 24);
  }
}
