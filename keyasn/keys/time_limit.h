// The time limit of validity periods (internal to the library and its tests).
#ifndef KEYASN_KEYS_TIME_LIMIT_H_
#define KEYASN_KEYS_TIME_LIMIT_H_

#include "keyasn/support/file_time.h"

namespace keyasn {
namespace detail {

// The first instant written as GeneralizedTime: 2050-01-01 00:00:01 UTC, built
// once when the library loads. It lies one second past the turn of 2050, so
// 2050-01-01 00:00:00 itself still goes out as UTCTime (kept for compatibility).
extern const CRUVFileTime kValidityTimeLimit;

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_KEYS_TIME_LIMIT_H_
