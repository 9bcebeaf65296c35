/// @file
/// keyasn::OidText and keyasn::OidContents: the contents octets of an OBJECT
/// IDENTIFIER (as CASNTIdData and ASNAlgorithmIdentifier hold them) to dotted
/// text and back, exactly as the library's encoder and decoder turn them.
#ifndef KEYASN_CODEC_OID_H_
#define KEYASN_CODEC_OID_H_

#include <string>

#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

namespace keyasn {

/// Returns the dotted text of OBJECT IDENTIFIER contents octets.
///
/// The text is the one ASNTLowDecodeData gives for the whole element: the first
/// octet b reads as b / 40 "." b % 40, each further subidentifier in decimal. A
/// one-octet identifier keeps the decoder's trailing dot ("1.2."), kept for
/// compatibility with existing containers.
///
/// @param contents the contents octets, without identifier and length octets.
/// @return the dotted text, or an empty string when `contents` is empty or is not
///         an identifier that OidContents gives back octet for octet: a first
///         octet of 120 or more, a subidentifier that does not end within the
///         contents, starts with 0x80 or exceeds 32 bits, or more than 4096 octets.
KEYASN_API std::string OidText(const IdentObj& contents);

/// Returns the contents octets of a dotted OBJECT IDENTIFIER text.
///
/// The octets are the ones ASNTLowEncodeData writes for the whole element: the
/// first two components make one octet 40 * X + Y, each further component is
/// written in base 128.
///
/// @param dotted NUL-terminated text: two or more decimal components separated by
///               single dots, without signs, blanks or leading zeros, each below
///               2^32; the first 0, 1 or 2, the second below 40. A two-component
///               text may end with one dot (the form OidText gives for it).
/// @return the contents octets, or an empty buffer when `dotted` is null, empty or
///         not of that form, or would encode to more than 4096 octets.
KEYASN_API IdentObj OidContents(const char* dotted);

}  // namespace keyasn

#endif  // KEYASN_CODEC_OID_H_
