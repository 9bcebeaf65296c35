// CRUVCryptBitBlob: a bit string (octets plus the unused bits of the last octet).
#ifndef KEYASN_SUPPORT_CRYPT_BIT_BLOB_H_
#define KEYASN_SUPPORT_CRYPT_BIT_BLOB_H_

#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

// CRUVCryptBitBlob is an IdentObj holding the octets of a bit string, followed by
// a 32-bit count of unused bits in the last octet.
class KEYASN_API CRUVCryptBitBlob : public IdentObj {
 public:
  CRUVCryptBitBlob() noexcept : m_unusedBits(0) {}
  CRUVCryptBitBlob(const void* data, unsigned int size, unsigned int unusedBits = 0)
      : IdentObj(data, size), m_unusedBits(unusedBits) {}
  CRUVCryptBitBlob(const CRUVCryptBitBlob&) = default;
  CRUVCryptBitBlob(CRUVCryptBitBlob&&) noexcept = default;
  CRUVCryptBitBlob& operator=(const CRUVCryptBitBlob&) = default;
  CRUVCryptBitBlob& operator=(CRUVCryptBitBlob&&) noexcept = default;
  ~CRUVCryptBitBlob() override;

  unsigned int GetUnusedBits() const noexcept { return m_unusedBits; }
  void SetUnusedBits(unsigned int unusedBits) noexcept { m_unusedBits = unusedBits; }

  // Equal when the octets and the unused-bit counts are equal.
  bool operator==(const CRUVCryptBitBlob& other) const;
  bool operator!=(const CRUVCryptBitBlob& other) const { return !(*this == other); }

 private:
  unsigned int m_unusedBits;
};

#endif  // KEYASN_SUPPORT_CRYPT_BIT_BLOB_H_
