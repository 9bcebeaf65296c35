// CRUVCryptBitBlob: a bit string (octets plus the unused bits of the last octet).
#ifndef KEYASN_SUPPORT_CRYPT_BIT_BLOB_H_
#define KEYASN_SUPPORT_CRYPT_BIT_BLOB_H_

#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

// CRUVCryptBitBlob is an IdentObj holding the octets of a bit string, followed by
// a 32-bit count of unused bits in the last octet.
class KEYASN_API CRUVCryptBitBlob : public IdentObj {
 public:
  CRUVCryptBitBlob() noexcept;
  CRUVCryptBitBlob(const void* data, unsigned int size, unsigned int unusedBits = 0)
      : IdentObj(data, size), m_unusedBits(unusedBits) {}
  CRUVCryptBitBlob(const CRUVCryptBitBlob& other);
  CRUVCryptBitBlob(CRUVCryptBitBlob&&) noexcept = default;
  // Deep copy of the octets and the unused-bit count.
  CRUVCryptBitBlob& operator=(const CRUVCryptBitBlob& other);
  CRUVCryptBitBlob& operator=(CRUVCryptBitBlob&&) noexcept = default;
  ~CRUVCryptBitBlob() override;

  unsigned int GetUnusedBits() const;
  void SetUnusedBits(unsigned int unusedBits);

  // True when the octets or the unused-bit counts differ.
  bool operator!=(const CRUVCryptBitBlob& other) const;
  bool operator==(const CRUVCryptBitBlob& other) const { return !(*this != other); }

 private:
  unsigned int m_unusedBits;
};

#endif  // KEYASN_SUPPORT_CRYPT_BIT_BLOB_H_
