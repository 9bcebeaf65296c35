// CRUVString: an owned character string.
#ifndef KEYASN_SUPPORT_CRUV_STRING_H_
#define KEYASN_SUPPORT_CRUV_STRING_H_

#include <string>

#include "keyasn/support/export.h"

// CRUVString holds characters (octets, NUL allowed inside) with a terminating NUL.
class KEYASN_API CRUVString {
 public:
  CRUVString();
  explicit CRUVString(const char* text);
  ~CRUVString();
  // Load replaces the contents by `size` octets at `data`.
  void Load(const unsigned char* data, unsigned int size);
  // Length returns the number of characters.
  unsigned int Length() const { return static_cast<unsigned int>(m_text.size()); }
  operator const char*() const { return m_text.c_str(); }  // NOLINT: by design

 private:
  std::string m_text;
};

#endif  // KEYASN_SUPPORT_CRUV_STRING_H_
