// The key info written item by item through the record model. Internal to the
// library: ASNKeyInfo::WriteData writes the same octets directly and takes this
// way only for members too large for its direct writer.
#ifndef KEYASN_KEYS_KEY_INFO_RECORDS_H_
#define KEYASN_KEYS_KEY_INFO_RECORDS_H_

#include "keyasn/keys/key_info.h"
#include "keyasn/support/ident_obj.h"

namespace keyasn {
namespace detail {

// WriteKeyInfoByRecords encodes each member with a CASNTBaseRecord and joins the
// items with ASNTPutSequence(items, 16, err).
IdentObj WriteKeyInfoByRecords(const ASNKeyInfo& ki, int* err);

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_KEYS_KEY_INFO_RECORDS_H_
