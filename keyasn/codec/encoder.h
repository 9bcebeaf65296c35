/// @file
/// The primitive encoder: one value in memory form to one complete DER element.
#ifndef KEYASN_CODEC_ENCODER_H_
#define KEYASN_CODEC_ENCODER_H_

#include "keyasn/codec/header.h"
#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// ASNTLowEncodeData encodes the value (`data`, `size`) as the element that
/// `info.Class`, `info.Constructed` and `info.Tag` describe. Failure is an empty
/// result; `error` is never written. Failures: a Tag above 26 outside the
/// context-specific class, a universal type without an encoding, an object
/// identifier of more than 4096 contents octets, a time value shorter than eight
/// octets or beyond the calendar. A null `data` gives empty contents whose length
/// octets still say `size` (strings, SEQUENCE, SET, context-specific; 13 or 15 for
/// the times); a null INTEGER value reads as zeros.
KEYASN_API IdentObj ASNTLowEncodeData(const ASNT_ASN_STRUCT_INFO& info,
                                      const unsigned char* data, unsigned int size,
                                      int* error);

#endif  // KEYASN_CODEC_ENCODER_H_
