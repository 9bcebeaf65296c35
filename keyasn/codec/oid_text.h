// Object identifiers: dotted decimal text to contents octets and back.
#ifndef KEYASN_CODEC_OID_TEXT_H_
#define KEYASN_CODEC_OID_TEXT_H_

#include "keyasn/support/ident_obj.h"

namespace keyasn {
namespace detail {

// The most contents octets an object identifier text may encode to; a longer
// encoding is refused (the encoder then returns an empty result).
constexpr unsigned int kMaxOidContents = 4096;

// OidContentsSize returns the number of contents octets that PutOidContents
// writes for the `size` characters at `text` (which stop early at a NUL).
// The walk, component by component: one '.' is skipped when the walk stands on
// one (and the walk ends when that leaves nothing); the characters up to the next
// '.', NUL or end are read as "%u" reads them (leading white space, a sign,
// decimal digits; a value past 64 bits saturates, the result keeps its low 32
// bits; a component without digits is 0). The first component X counts as 40 * X;
// the second Y makes the first subidentifier 40 * X + Y, written as one octet
// holding its low eight bits (kept for compatibility with existing encodings);
// each further one is written in base 128. A single component gives no octets.
unsigned int OidContentsSize(const unsigned char* text, unsigned int size);

// WriteOidContents walks the text once: it returns OidContentsSize and writes the
// octets at `out` as long as they fit `capacity` (all of them when the result is
// at most `capacity`). A result above kMaxOidContents may stop counting early.
unsigned int WriteOidContents(const unsigned char* text, unsigned int size, unsigned char* out,
                              unsigned int capacity);

// PutOidContents writes the OidContentsSize octets for `text` at `out`.
void PutOidContents(const unsigned char* text, unsigned int size, unsigned char* out);

// OidContentsToText turns contents octets into dotted text with no terminating
// NUL. The first octet b gives b / 40 "." b % 40 "." (the dot written even when
// nothing follows); each further subidentifier is written with "%u" (accumulated
// in 32 bits, no overflow check), followed by "." only when more octets remain.
// Returns 0, with empty text for empty contents, or 206 (text emptied) when the
// last subidentifier does not end within the `length` octets.
int OidContentsToText(const unsigned char* contents, unsigned int length, IdentObj* text);

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_CODEC_OID_TEXT_H_
