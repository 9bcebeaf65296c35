/// @file
/// CRUVString: an owned character string.
#ifndef KEYASN_SUPPORT_CRUV_STRING_H_
#define KEYASN_SUPPORT_CRUV_STRING_H_

#include <string>

#include "keyasn/support/export.h"

/// CRUVString holds characters (octets, NUL allowed inside) with a terminating NUL.
class KEYASN_API CRUVString {
 public:
  /// CRUVString() is the empty string.
  CRUVString();
  /// CRUVString(text) copies the NUL-terminated `text` (empty when null).
  explicit CRUVString(const char* text);
  /// Copies `other` (a deep copy).
  CRUVString(const CRUVString& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  CRUVString& operator=(const CRUVString& other);
  ~CRUVString();
  /// Load replaces the contents by `size` octets at `data`.
  void Load(const unsigned char* data, unsigned int size);
  /// Length returns the number of characters.
  unsigned int Length() const;
  /// The characters, NUL-terminated.
  operator const char*() const;  ///< NOLINT: implicit by design

 private:
  std::string m_text;
};

#endif  // KEYASN_SUPPORT_CRUV_STRING_H_
