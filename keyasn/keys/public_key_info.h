/// @file
/// CASNPublicKeyInfo: a public key with the identifier data that describes it.
#ifndef KEYASN_KEYS_PUBLIC_KEY_INFO_H_
#define KEYASN_KEYS_PUBLIC_KEY_INFO_H_

#include "keyasn/keys/id_data.h"
#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// CASNPublicKeyInfo is SEQUENCE { CASNTIdData, BIT STRING }, in the manner of a
/// subject public key info. A plain value type.
class KEYASN_API CASNPublicKeyInfo {
 public:
  CASNPublicKeyInfo();
  /// Copies `other` (a deep copy).
  CASNPublicKeyInfo(const CASNPublicKeyInfo& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  CASNPublicKeyInfo& operator=(const CASNPublicKeyInfo& other);
  ~CASNPublicKeyInfo();

  /// ReadData reads the SEQUENCE at `data` and returns the length the sequence
  /// splitter reported. The BIT STRING's unused-bits octet is dropped without being
  /// checked. Throws XRUVStatus(206, "CASNPublicKeyInfo::ReadData ASNTGetSequence",
  /// false) unless there are exactly two items, XRUVStatus(206,
  /// "CASNPublicKeyInfo::ReadData", false) when the second is not a BIT STRING, and
  /// the XRUVStatus of the splitter, the record or CASNTIdData as they throw it.
  /// Members already read keep their new values.
  int ReadData(const unsigned char* data, unsigned int size);

  /// WriteData returns the SEQUENCE of `idData` and a BIT STRING with no unused bits
  /// holding `publicKey`.
  IdentObj WriteData() const;

  CASNTIdData idData;  ///< description of the key
  IdentObj publicKey;  ///< the key octets, without the unused-bits octet
};

#endif  // KEYASN_KEYS_PUBLIC_KEY_INFO_H_
