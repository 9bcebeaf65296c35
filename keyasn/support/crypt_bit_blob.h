/// @file
/// CRUVCryptBitBlob: a bit string (octets plus the unused bits of the last octet).
#ifndef KEYASN_SUPPORT_CRYPT_BIT_BLOB_H_
#define KEYASN_SUPPORT_CRYPT_BIT_BLOB_H_

#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// CRUVCryptBitBlob is an IdentObj holding the octets of a bit string, followed by
/// a 32-bit count of unused bits in the last octet.
class KEYASN_API CRUVCryptBitBlob : public IdentObj {
 public:
  /// CRUVCryptBitBlob() is empty, with no unused bits.
  CRUVCryptBitBlob() noexcept;
  /// Copies `size` octets from `data` (zeros when null) with `unusedBits`.
  CRUVCryptBitBlob(const void* data, unsigned int size, unsigned int unusedBits = 0)
      : IdentObj(data, size), m_unusedBits(unusedBits) {}
  /// Copies `other` (a deep copy).
  CRUVCryptBitBlob(const CRUVCryptBitBlob& other);
  /// Takes over the contents of `other`, which is left empty.
  CRUVCryptBitBlob(CRUVCryptBitBlob&&) noexcept = default;
  /// Deep copy of the octets and the unused-bit count.
  CRUVCryptBitBlob& operator=(const CRUVCryptBitBlob& other);
  /// Takes over the contents of `other`; returns this object.
  CRUVCryptBitBlob& operator=(CRUVCryptBitBlob&&) noexcept = default;
  ~CRUVCryptBitBlob() override;

  /// GetUnusedBits returns the count of unused bits in the last octet.

  unsigned int GetUnusedBits() const;
  /// SetUnusedBits sets the count of unused bits in the last octet.
  void SetUnusedBits(unsigned int unusedBits);

  /// True when the octets or the unused-bit counts differ.
  bool operator!=(const CRUVCryptBitBlob& other) const;
  /// Equal when every member is equal.
  bool operator==(const CRUVCryptBitBlob& other) const { return !(*this != other); }

 private:
  unsigned int m_unusedBits;
};

#endif  // KEYASN_SUPPORT_CRYPT_BIT_BLOB_H_
