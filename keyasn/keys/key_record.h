/// @file
/// CASNKeyRecord: one encoded element followed by a key blob.
#ifndef KEYASN_KEYS_KEY_RECORD_H_
#define KEYASN_KEYS_KEY_RECORD_H_

#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// CASNKeyRecord is not a single element: the octets of `descriptor` followed
/// directly by `key` in the octet buffer's own serial form (IdentObj::WriteData).
/// The key material is wiped (every octet set to 0) by ResetKey(), before it is
/// overwritten by assignment or by a read, and when the record is destroyed.
class KEYASN_API CASNKeyRecord {
 public:
  CASNKeyRecord();
  /// The copy holds copies of both members.
  CASNKeyRecord(const CASNKeyRecord& other);
  /// operator= wipes this record's key, then copies both members; self-assignment
  /// does nothing.
  CASNKeyRecord& operator=(const CASNKeyRecord& other);
  /// ~CASNKeyRecord wipes the key before its octets are released.
  ~CASNKeyRecord();

  /// ReadData reads one element into `descriptor`, then the key blob behind it, and
  /// returns the octets used (element plus blob; a blob that is missing or shorter
  /// than its count adds nothing and leaves the wiped key in place). The key is
  /// wiped before it is read. Failures: 28 for a null `data`, or the record's code
  /// (37 for an element longer than the data, or the header's code); with `error`
  /// the code is stored there and the octets read so far returned, otherwise
  /// XRUVStatus(code, "CASNKeyRecord::ReadData", false) is thrown.
  unsigned int ReadData(const void* data, unsigned int size, int* error);

  /// WriteData returns `descriptor` followed by the key's serial form; empty when
  /// the key cannot be written.
  IdentObj WriteData() const;

  /// ResetKey sets every octet of `key` to 0; its size is kept.
  void ResetKey();

  IdentObj descriptor;  ///< a complete encoded element
  IdentObj key;         ///< key material
};

#endif  // KEYASN_KEYS_KEY_RECORD_H_
