/// @file
/// keyasn: the whole public interface in one include.
#ifndef KEYASN_KEYASN_H_
#define KEYASN_KEYASN_H_

// Version.
#include "keyasn/version.h"

// Utility types.
#include "keyasn/support/crypt_bit_blob.h"
#include "keyasn/support/cruv_string.h"
#include "keyasn/support/export.h"
#include "keyasn/support/file.h"
#include "keyasn/support/file_time.h"
#include "keyasn/support/ident_obj.h"
#include "keyasn/support/status.h"

// Low-level codec.
#include "keyasn/codec/decoder.h"
#include "keyasn/codec/encoder.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/error_text.h"
#include "keyasn/codec/header.h"
#include "keyasn/codec/oid.h"
#include "keyasn/codec/sequence.h"

// Record model.
#include "keyasn/record/base_record.h"
#include "keyasn/record/tagged.h"
#include "keyasn/record/unit.h"

// Typed value helpers.
#include "keyasn/der/der_helper.h"

// Key structures.
#include "keyasn/keys/alg_add_info.h"
#include "keyasn/keys/container_info.h"
#include "keyasn/keys/cryptoki.h"
#include "keyasn/keys/encr_params.h"
#include "keyasn/keys/encrypted_key.h"
#include "keyasn/keys/ephemeral_key.h"
#include "keyasn/keys/export_key.h"
#include "keyasn/keys/id_data.h"
#include "keyasn/keys/key_info.h"
#include "keyasn/keys/key_record.h"
#include "keyasn/keys/public_key_info.h"
#include "keyasn/keys/valid.h"

#endif  // KEYASN_KEYASN_H_
