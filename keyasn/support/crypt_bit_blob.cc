#include "keyasn/support/crypt_bit_blob.h"

CRUVCryptBitBlob::CRUVCryptBitBlob() noexcept : m_unusedBits(0) {}

CRUVCryptBitBlob::CRUVCryptBitBlob(const CRUVCryptBitBlob& other) = default;

CRUVCryptBitBlob& CRUVCryptBitBlob::operator=(const CRUVCryptBitBlob& other) = default;

CRUVCryptBitBlob::~CRUVCryptBitBlob() = default;

unsigned int CRUVCryptBitBlob::GetUnusedBits() const { return m_unusedBits; }

void CRUVCryptBitBlob::SetUnusedBits(unsigned int unusedBits) { m_unusedBits = unusedBits; }

bool CRUVCryptBitBlob::operator!=(const CRUVCryptBitBlob& other) const {
  return m_unusedBits != other.m_unusedBits ||
         static_cast<const IdentObj&>(*this) != static_cast<const IdentObj&>(other);
}
