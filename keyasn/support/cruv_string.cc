#include "keyasn/support/cruv_string.h"

CRUVString::CRUVString() = default;

CRUVString::CRUVString(const char* text) : m_text(text ? text : "") {}

CRUVString::CRUVString(const CRUVString& other) = default;

CRUVString& CRUVString::operator=(const CRUVString& other) = default;

CRUVString::~CRUVString() = default;

unsigned int CRUVString::Length() const { return static_cast<unsigned int>(m_text.size()); }

CRUVString::operator const char*() const { return m_text.c_str(); }

void CRUVString::Load(const unsigned char* data, unsigned int size) {
  if (!data || size == 0) {
    m_text.clear();
    return;
  }
  m_text.assign(reinterpret_cast<const char*>(data), size);
}
