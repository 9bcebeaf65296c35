// UTCTime and GeneralizedTime text: written from, and read into, a file time.
#ifndef KEYASN_CODEC_ASN_TIME_H_
#define KEYASN_CODEC_ASN_TIME_H_

#include "keyasn/support/file_time.h"

namespace keyasn {
namespace detail {

constexpr unsigned int kUtcTimeTextSize = 13;          // YYMMDDhhmmssZ
constexpr unsigned int kGeneralizedTimeTextSize = 15;  // YYYYMMDDhhmmssZ

// PutTimeText writes the UTCTime (13 characters) or GeneralizedTime (15
// characters) text of `time` at `out`; milliseconds are dropped. The year is
// taken modulo 10000. False (nothing written) when the time cannot be converted
// to a calendar time.
bool PutTimeText(const FILETIME& time, bool generalized, unsigned char* out);

// ParseUtcTime reads YYMMDDhhmm[ss] followed by Z, +hhmm or -hhmm (years below
// 50 are 20YY). Returns 0 or 206; `*time` is written only on success.
int ParseUtcTime(const unsigned char* text, unsigned int length, FILETIME* time);

// ParseGeneralizedTime reads YYYYMMDDhh[mm[ss]][(.|,)fraction] followed by Z,
// +hh[mm] or -hh[mm]. Returns 0, 115 (no zone: local time is not accepted) or
// 206; `*time` is written only on success. The offset is always added, whatever
// its sign: established behaviour, kept for compatibility with existing data.
int ParseGeneralizedTime(const unsigned char* text, unsigned int length, FILETIME* time);

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_CODEC_ASN_TIME_H_
