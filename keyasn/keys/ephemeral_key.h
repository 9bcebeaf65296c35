/// @file
/// CASNEphemeralKeyInfo: an ephemeral (one-time) key record.
#ifndef KEYASN_KEYS_EPHEMERAL_KEY_H_
#define KEYASN_KEYS_EPHEMERAL_KEY_H_

#include <string>

#include "keyasn/keys/id_data.h"
#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// CASNEphemeralKeyInfo is a constructed [0] (0xA0) holding, in order: the algorithm
/// OBJECT IDENTIFIER; only when there are key bits, a constructed [0] of the
/// CASNTIdData element and a BIT STRING of the key; an OCTET STRING. It is read and
/// written through the record tree (CASNTUnit).
class KEYASN_API CASNEphemeralKeyInfo {
 public:
  CASNEphemeralKeyInfo();
  /// Copies `other` (a deep copy).
  CASNEphemeralKeyInfo(const CASNEphemeralKeyInfo& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  CASNEphemeralKeyInfo& operator=(const CASNEphemeralKeyInfo& other);
  ~CASNEphemeralKeyInfo();

  /// ReadData reads the element at `data` and returns the octets used, as the tree
  /// reader reports them. The algorithm text read is inserted in front of what
  /// `algorithmOid` holds (callers read into fresh objects). In the key part, the
  /// unused bits that the BIT STRING declares are cleared in the last key octet, and
  /// key bits that start with an OCTET STRING header are resized to the size that
  /// header declares (zero octets added, or cut); a declared size larger than the
  /// whole input, or an indefinite one, is refused (206). Throws XRUVStatus(206,
  /// "CASNEphemeralKeyInfo::ReadData", false) for an outer element that is not a
  /// constructed tag 0 with at least two items, a first item that is not an OBJECT
  /// IDENTIFIER, a key part without exactly two items, or a last item that is
  /// missing or not an OCTET STRING; failures of the tree reader ("CASNTUnit::Read"),
  /// of CASNTIdData and of the key header are thrown as those parts throw them.
  /// Members already read keep their new values.
  unsigned int ReadData(const unsigned char* data, unsigned int size);

  /// WriteData returns the encoding; the key part is written only when `keyBits` is
  /// not empty. Every length is in definite form.
  IdentObj WriteData() const;

  std::string algorithmOid;  ///< dotted text of the algorithm identifier
  CASNTIdData idData;        ///< identifier data of the key
  IdentObj keyBits;          ///< the key octets without the unused-bits octet; empty: absent
  IdentObj trailerData;      ///< contents of the final OCTET STRING
};

#endif  // KEYASN_KEYS_EPHEMERAL_KEY_H_
