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
  CRUVString(const CRUVString& other);
  CRUVString& operator=(const CRUVString& other);
  ~CRUVString();
  // Load replaces the contents by `size` octets at `data`.
  void Load(const unsigned char* data, unsigned int size);
  // Length returns the number of characters.
  unsigned int Length() const;
  // The characters, NUL-terminated.
  operator const char*() const;  // NOLINT: implicit by design

 private:
  std::string m_text;
};

#endif  // KEYASN_SUPPORT_CRUV_STRING_H_
