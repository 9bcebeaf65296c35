/// @file
/// keyasn::ErrorText: one English sentence for each code the library reports.
#ifndef KEYASN_CODEC_ERROR_TEXT_H_
#define KEYASN_CODEC_ERROR_TEXT_H_

#include "keyasn/support/export.h"

namespace keyasn {

/// Returns one short English sentence describing `code`.
///
/// @param code a code returned, stored through an `int* error` or carried by
///             XRUVStatus::Status(): one of keyasn/codec/error_codes.h, or the
///             errno value of a file that could not be opened or read or of a
///             text conversion that failed.
/// @return a static, NUL-terminated sentence; "Unknown error code." for a code the
///         library never reports. Never null; safe from any thread.
KEYASN_API const char* ErrorText(int code) noexcept;

}  // namespace keyasn

#endif  // KEYASN_CODEC_ERROR_TEXT_H_
