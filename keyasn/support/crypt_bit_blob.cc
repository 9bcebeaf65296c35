#include "keyasn/support/crypt_bit_blob.h"

CRUVCryptBitBlob::~CRUVCryptBitBlob() = default;

bool CRUVCryptBitBlob::operator==(const CRUVCryptBitBlob& other) const {
  return m_unusedBits == other.m_unusedBits &&
         static_cast<const IdentObj&>(*this) == static_cast<const IdentObj&>(other);
}
