// Readable forms of primitive values: integers, object identifiers, times,
// character strings and octets.
#ifndef KEYASN_TOOLS_VALUES_H_
#define KEYASN_TOOLS_VALUES_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "common.h"

namespace keyasn {
namespace tool {

// Octet runs longer than this are shortened in text output unless --full.
constexpr std::size_t kShortOctets = 16;

// HexText writes octets as hex; past kShortOctets (unless `full`) it ends with
// "... (N octets)".
std::string HexText(const unsigned char* data, std::size_t size, bool full);
// HexTextUpTo is HexText shortened past `limit` octets (0: never).
std::string HexTextUpTo(const unsigned char* data, std::size_t size, std::size_t limit);

// Decimal writes `value` in decimal into `digits` (room for 20) and returns how
// many it wrote: the tool's hot paths format numbers without a string each.
std::size_t Decimal(uint64_t value, char* digits);

// IntegerText: two's complement contents as a decimal number when they fit in 64
// bits, otherwise "0x" and hex (shortened like HexText unless `full`).
std::string IntegerText(const unsigned char* data, std::size_t size, bool full);
std::string IntegerTextUpTo(const unsigned char* data, std::size_t size, std::size_t limit);

// DecodeOid writes the dotted form of any object identifier's contents (X.690
// 8.19, arcs up to 64 bits); false when they are empty or a subidentifier does not
// end or overflows. The dump shows every valid identifier this way, including
// those that the library's own text form (keyasn::OidText) does not carry.
bool DecodeOid(const unsigned char* data, std::size_t size, std::string* dotted);

// DaysInMonth is the number of days of `month` (1..12) in the Gregorian `year`.
int DaysInMonth(int64_t year, int month);

// TimeText turns UTCTime (`generalized` false) or GeneralizedTime text into ISO
// 8601 in UTC ("2024-01-01T00:00:00Z", a fraction kept); a GeneralizedTime
// without a zone is local time and ends without "Z". False when the text is not
// a time.
bool TimeText(const unsigned char* data, std::size_t size, bool generalized, std::string* iso);

// QuoteString puts the octets between double quotes with C escapes. `utf8`:
// valid UTF-8 sequences are kept as they are; otherwise every octet outside
// printable ASCII is written as \xNN.
std::string QuoteString(const unsigned char* data, std::size_t size, bool utf8);

// Utf8Sequence returns the length of the valid UTF-8 sequence at `data` (1 for
// ASCII), or 0 when the octets there are not valid UTF-8.
std::size_t Utf8Sequence(const unsigned char* data, std::size_t left);

// ToUtf8 copies the octets, each one that is not part of valid UTF-8 replaced by
// U+FFFD (JSON strings must be UTF-8).
std::string ToUtf8(const unsigned char* data, std::size_t size);

// Utf16ToUtf8 / Utf32ToUtf8 convert big-endian BMPString / UniversalString
// contents; false when the length or a code point is invalid.
bool Utf16ToUtf8(const unsigned char* data, std::size_t size, std::string* out);
bool Utf32ToUtf8(const unsigned char* data, std::size_t size, std::string* out);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_VALUES_H_
