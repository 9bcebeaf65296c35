/// @file
/// CASNEncryptedKey: an encrypted key and the octet string that travels with it.
#ifndef KEYASN_KEYS_ENCRYPTED_KEY_H_
#define KEYASN_KEYS_ENCRYPTED_KEY_H_

#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// CASNEncryptedKey is SEQUENCE { OCTET STRING encryptedKey, OCTET STRING
/// additionalData }, both items required, in that order. A plain value type.
class KEYASN_API CASNEncryptedKey {
 public:
  /// Copies `other` (a deep copy).
  CASNEncryptedKey(const CASNEncryptedKey& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  CASNEncryptedKey& operator=(const CASNEncryptedKey& other);
  ~CASNEncryptedKey();

  /// CASNEncryptedKey(key, keySize, extra, extraSize) copies the two octet runs into
  /// `encryptedKey` and `additionalData` (a null pointer with a size gives zeros; a
  /// size of 0 leaves the member without a buffer).
  CASNEncryptedKey(const unsigned char* key, unsigned int keySize,
                   const unsigned char* extra, unsigned int extraSize);

  /// ReadData reads the SEQUENCE at `data` and returns the octets consumed (header
  /// and both items); 0 with nothing changed for a null `data` or a `size` of 0.
  /// Throws XRUVStatus(code, "CASNEncryptedKey::ReadData", false): the header's
  /// code, or 206 for a tag other than SEQUENCE, a `size` below the contents length,
  /// an item that is not an OCTET STRING or a missing second item. Failures of the
  /// item reads are thrown by the record ("CASNTBaseRecord::ReadASNInfo").
  /// `encryptedKey` is replaced as soon as the first item is read (no rollback).
  unsigned int ReadData(const unsigned char* data, unsigned int size);

  /// WriteData returns the encoded SEQUENCE. Throws XRUVStatus(42,
  /// "CASNEncryptedKey::WriteData", false) when either member has no buffer.
  IdentObj WriteData() const;

  IdentObj encryptedKey;    ///< the encrypted key octets
  IdentObj additionalData;  ///< the octet string carried with them, unchanged
};

#endif  // KEYASN_KEYS_ENCRYPTED_KEY_H_
