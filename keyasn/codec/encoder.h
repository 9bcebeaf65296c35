// The primitive encoder: one value in memory form to one complete DER element.
#ifndef KEYASN_CODEC_ENCODER_H_
#define KEYASN_CODEC_ENCODER_H_

#include "keyasn/codec/header.h"
#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

// ASNTLowEncodeData encodes the value (`data`, `size`) as the element that
// `info.Class`, `info.Constructed` and `info.Tag` describe. Failure is an empty
// result; `error` is never written.
KEYASN_API IdentObj ASNTLowEncodeData(const ASNT_ASN_STRUCT_INFO& info,
                                      const unsigned char* data, unsigned int size,
                                      int* error);

#endif  // KEYASN_CODEC_ENCODER_H_
