/// @file
/// The primitive decoder and its three small helpers.
#ifndef KEYASN_CODEC_DECODER_H_
#define KEYASN_CODEC_DECODER_H_

#include "keyasn/codec/header.h"
#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// ASNTLowDecodeData decodes the element that `info` describes (its Class, Tag,
/// Contents and Length; `data` and `size` are not used) into its memory form.
/// `*error`, when given, receives 0, 115 or 206 on every path. On failure the
/// result may still hold octets (eight zero octets for a time), so test the code.
/// The caller guarantees that the Length octets at Contents are readable (check
/// that the element fits the data first, and measure an indefinite-length element
/// before decoding it); a null Contents reads as no contents. No octet past
/// Length is read: a BOOLEAN of length 0 is false, an object identifier whose
/// last subidentifier is still open at the end gives 206.
KEYASN_API IdentObj ASNTLowDecodeData(const ASNT_ASN_STRUCT_INFO& info,
                                      const unsigned char* data, unsigned int size,
                                      int* error);

/// IsDigits is true when `count` < 1 or all `count` characters are '0'..'9'
/// (false for a null `text` with a positive `count`).
KEYASN_API bool IsDigits(const unsigned char* text, int count);

/// FractionToTime spreads the fractional part of `fraction` over the given smaller
/// units (each may be null); returns what is left over.
KEYASN_API double FractionToTime(double fraction, unsigned short* minutes,
                                 unsigned short* seconds, unsigned short* milliseconds);

/// MemCpyDwordToByte writes `count` words as 4 * `count` octets, each least
/// significant octet first.
KEYASN_API void MemCpyDwordToByte(unsigned char* target, const unsigned int* words,
                                  unsigned int count);

#endif  // KEYASN_CODEC_DECODER_H_
