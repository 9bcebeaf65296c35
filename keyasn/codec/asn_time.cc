#include "keyasn/codec/asn_time.h"

#include "keyasn/codec/decoder.h"
#include "keyasn/codec/error_codes.h"

namespace keyasn {
namespace detail {

namespace {

constexpr unsigned int kMaxFractionDigits = 8;

// Two and Four read digits already checked, as "%2hu" and "%4hu" do.
unsigned short Two(const unsigned char* p) {
  return static_cast<unsigned short>((p[0] - '0') * 10 + (p[1] - '0'));
}
unsigned short Four(const unsigned char* p) {
  return static_cast<unsigned short>(Two(p) * 100 + Two(p + 2));
}

void PutTwo(unsigned char* out, unsigned int value) {
  out[0] = static_cast<unsigned char>('0' + value / 10 % 10);
  out[1] = static_cast<unsigned char>('0' + value % 10);
}

// Offset turns hh:mm into a duration: the file time of 1601-01-01 hh:mm:00.
bool Offset(unsigned short hours, unsigned short minutes, FILETIME* duration) {
  SYSTEMTIME st{};
  st.wYear = 1601;
  st.wMonth = 1;
  st.wDay = 1;
  st.wHour = hours;
  st.wMinute = minutes;
  return SystemTimeToFileTime(&st, duration);
}

bool IsZoneOrFractionMark(unsigned char c) {
  return c == '+' || c == ',' || c == '-' || c == '.' || c == 'Z';
}

}  // namespace

bool PutTimeText(const FILETIME& time, bool generalized, unsigned char* out) {
  SYSTEMTIME st;
  if (!FileTimeToSystemTime(&time, &st)) return false;
  const unsigned int year = st.wYear % 10000u;  // printed with four digits
  if (generalized) {
    PutTwo(out, year / 100);
    out += 2;
  }
  PutTwo(out, year % 100);
  PutTwo(out + 2, st.wMonth);
  PutTwo(out + 4, st.wDay);
  PutTwo(out + 6, st.wHour);
  PutTwo(out + 8, st.wMinute);
  PutTwo(out + 10, st.wSecond);
  out[12] = 'Z';
  return true;
}

int ParseUtcTime(const unsigned char* text, unsigned int length, FILETIME* time) {
  if (!text || length < 11 || length > 17 || !IsDigits(text, 10)) return kErrMalformed;
  SYSTEMTIME st{};
  const unsigned short year = Two(text);
  st.wYear = static_cast<unsigned short>(year < 50 ? 2000 + year : 1900 + year);
  st.wMonth = Two(text + 2);
  st.wDay = Two(text + 4);
  st.wHour = Two(text + 6);
  st.wMinute = Two(text + 8);
  unsigned int zone = 10;
  if (text[10] != '+' && text[10] != '-' && text[10] != 'Z') {
    if (length < 13 || !IsDigits(text + 10, 2)) return kErrMalformed;
    st.wSecond = Two(text + 10);
    zone = 12;
  }
  FILETIME local;
  if (!SystemTimeToFileTime(&st, &local)) return kErrMalformed;
  const unsigned char mark = text[zone];
  if (mark == 'Z') {
    if (zone != length - 1) return kErrMalformed;
    *time = local;
    return kOk;
  }
  if (mark != '+' && mark != '-') return kErrMalformed;
  if (length - zone - 1 != 4 || !IsDigits(text + zone + 1, 4)) return kErrMalformed;
  FILETIME duration;
  if (!Offset(Two(text + zone + 1), Two(text + zone + 3), &duration)) return kErrMalformed;
  const CRUVFileTime t(local);
  *time = (mark == '+' ? t - duration : t + duration).GetFileTime();
  return kOk;
}

int ParseGeneralizedTime(const unsigned char* text, unsigned int length, FILETIME* time) {
  if (!text || length < 10 || !IsDigits(text, 10)) return kErrMalformed;
  SYSTEMTIME st{};
  st.wYear = Four(text);
  st.wMonth = Two(text + 4);
  st.wDay = Two(text + 6);
  st.wHour = Two(text + 8);
  unsigned int pos = 10;
  if (length > 10 && !IsZoneOrFractionMark(text[10])) {
    if (length == 11 || !IsDigits(text + 10, 2)) return kErrMalformed;
    st.wMinute = Two(text + 10);
    pos = 12;
    if (length > 12 && !IsZoneOrFractionMark(text[12])) {
      if (length == 13 || !IsDigits(text + 12, 2)) return kErrMalformed;
      st.wSecond = Two(text + 12);
      pos = 14;
    }
  }
  if (pos < length && (text[pos] == ',' || text[pos] == '.')) {
    const unsigned int start = pos + 1;
    unsigned int end = start;
    while (end < length && text[end] != '+' && text[end] != '-' && text[end] != 'Z') ++end;
    const unsigned int count = end - start;
    if (count == 0 || !IsDigits(text + start, static_cast<int>(count))) return kErrMalformed;
    const unsigned int used = count < kMaxFractionDigits ? count : kMaxFractionDigits;
    int value = 0;
    int scale = 1;
    for (unsigned int i = 0; i < used; ++i) {
      value = value * 10 + (text[start + i] - '0');
      scale *= 10;
    }
    const double fraction = static_cast<double>(value) / scale;
    switch (start) {
      case 11:  // of an hour
        FractionToTime(fraction, &st.wMinute, &st.wSecond, &st.wMilliseconds);
        break;
      case 13:  // of a minute
        FractionToTime(fraction, nullptr, &st.wSecond, &st.wMilliseconds);
        break;
      case 15:  // of a second
        FractionToTime(fraction, nullptr, nullptr, &st.wMilliseconds);
        break;
      default:  // read and dropped
        break;
    }
    pos = end;
  }
  FILETIME local;
  if (!SystemTimeToFileTime(&st, &local)) return kErrMalformed;
  if (pos == length) return kErrUnsupported;  // local time is not accepted
  const unsigned char mark = text[pos];
  if (mark == 'Z') {
    if (pos != length - 1) return kErrMalformed;
    *time = local;
    return kOk;
  }
  if (mark != '+' && mark != '-') return kErrMalformed;
  const unsigned int rest = length - pos - 1;
  if (rest < 2 || !IsDigits(text + pos + 1, 2)) return kErrMalformed;
  unsigned short minutes = 0;
  if (rest > 2) {
    if (rest != 4 || !IsDigits(text + pos + 3, 2)) return kErrMalformed;
    minutes = Two(text + pos + 3);
  }
  FILETIME duration;
  if (!Offset(Two(text + pos + 1), minutes, &duration)) return kErrMalformed;
  // Added for '+' and '-' alike: established behaviour, kept for compatibility.
  *time = (CRUVFileTime(local) + duration).GetFileTime();
  return kOk;
}

}  // namespace detail
}  // namespace keyasn
