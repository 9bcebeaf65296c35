/// @file
/// The element header record and the identifier-octet functions.
#ifndef KEYASN_CODEC_HEADER_H_
#define KEYASN_CODEC_HEADER_H_

#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// ASNT_ASN_STRUCT_INFO is the parsed header of one element.
struct ASNT_ASN_STRUCT_INFO {
  unsigned char Class;        ///< first octet AND 0xC0: 0x00, 0x40, 0x80 or 0xC0
  unsigned char Constructed;  ///< first octet AND 0x20: 0x20 or 0 (never 1)
  unsigned int Tag;           ///< the tag number
  unsigned int Length;        ///< contents octets; 0xFFFFFFFF: indefinite, constructed
  const unsigned char* Contents;  ///< first contents octet inside the parsed buffer
};

/// ASNTGetAsnInfo parses the identifier and length octets at `data` into `info`
/// (cleared first). Returns 0; 206 when `data` is null or `size` below 2 (record
/// untouched), for bad, truncated or missing length octets (Length 0), or an
/// indefinite primitive element without a 00 00 pair within `size` (Length 0);
/// 205 (record cleared) when a high tag number does not end within `size`. No
/// octet at or past `size` is read. The contents are not checked against `size`,
/// and non-minimal lengths are accepted. A primitive element in the indefinite
/// form gets the Length up to its first 00 00 pair; a constructed one 0xFFFFFFFF.
KEYASN_API int ASNTGetAsnInfo(ASNT_ASN_STRUCT_INFO& info, const unsigned char* data,
                              unsigned int size);

/// BuildTag returns identifier octets: `tagClass` (unmasked) OR 0x20 when
/// `constructed` OR the tag number; above 30, 0x1F then the number in base 128.
KEYASN_API IdentObj BuildTag(unsigned char tagClass, bool constructed, unsigned int tag);

/// GetTagFromEncoded reads the identifier octets of `encoded`; each output may be
/// null. Returns 0, 206 (fewer than 2 octets) or 205 (high tag number form not
/// ending); nothing is written on failure.
KEYASN_API int GetTagFromEncoded(const IdentObj& encoded, IdentObj* tagOctets,
                                 short* tagClass, short* constructed, unsigned int* tag);

/// ModifyTagAtEncoded replaces the identifier octets of `*encoded` by `newTag`
/// (taken as it stands). Returns 0, or the code of GetTagFromEncoded with
/// `*encoded` unchanged.
KEYASN_API int ModifyTagAtEncoded(IdentObj* encoded, const IdentObj& newTag);

#endif  // KEYASN_CODEC_HEADER_H_
