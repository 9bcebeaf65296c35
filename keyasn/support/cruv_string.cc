#include "keyasn/support/cruv_string.h"

CRUVString::CRUVString() = default;

CRUVString::CRUVString(const char* text) : m_text(text ? text : "") {}

CRUVString::~CRUVString() = default;

void CRUVString::Load(const unsigned char* data, unsigned int size) {
  if (!data || size == 0) {
    m_text.clear();
    return;
  }
  m_text.assign(reinterpret_cast<const char*>(data), size);
}
