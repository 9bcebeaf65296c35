/// @file
/// IdentObj: the owned, resizable octet buffer that crosses every interface of the
/// library (an encoded element, a decoded value, a key blob, a list item).
#ifndef KEYASN_SUPPORT_IDENT_OBJ_H_
#define KEYASN_SUPPORT_IDENT_OBJ_H_

#include "keyasn/support/export.h"

/// IdentObj owns `GetSize()` octets. Copies are deep. Layout (relied on by callers
/// that read the members directly): the pointer to the virtual table, then the
/// 32-bit count, then the pointer to the octets. Virtual slots, in order: GetSize,
/// Alloc, the destructor pair, Realloc, Empty.
///
/// Serial form (GetObjectSize/WriteData/ReadData): a 4-octet little-endian count
/// followed by that many octets.
class KEYASN_API IdentObj {
 public:
  /// IdentObj() is the empty buffer (count 0, no octets).
  IdentObj() noexcept;
  /// IdentObj(data, size) copies `size` octets from `data`; a null `data` gives
  /// `size` zero octets.
  IdentObj(const void* data, unsigned int size);
  /// Copies `other` (a deep copy).
  IdentObj(const IdentObj& other);
  /// Takes over the contents of `other`, which is left empty.
  IdentObj(IdentObj&& other) noexcept : m_size(other.m_size), m_data(other.m_data) {
    other.m_size = 0;
    other.m_data = nullptr;
  }
  /// Replaces the contents by a copy of `other`; returns this object.
  IdentObj& operator=(const IdentObj& other);
  /// Takes over the contents of `other`; returns this object.
  IdentObj& operator=(IdentObj&& other) noexcept {
    if (this != &other) {
      delete[] m_data;
      m_size = other.m_size;
      m_data = other.m_data;
      other.m_size = 0;
      other.m_data = nullptr;
    }
    return *this;
  }

  /// GetSize returns the number of octets held.
  virtual unsigned int GetSize() const;
  /// Alloc makes the buffer `size` octets long; the old octets are not kept and the
  /// new ones are not initialised: the caller overwrites every one of them.
  virtual void Alloc(unsigned int size);
  virtual ~IdentObj();
  /// Realloc changes the length, keeping the common prefix; new octets are zero.
  virtual void Realloc(unsigned int size);
  /// Empty releases the octets; the count becomes 0.
  virtual void Empty();

  /// Count returns the octet count without a virtual call.
  unsigned int Count() const noexcept { return m_size; }
  /// GetData returns the octets (null when the count is 0).
  unsigned char* GetData() noexcept { return m_data; }
  /// GetData returns the octets, read-only (null when the count is 0).
  const unsigned char* GetData() const noexcept { return m_data; }

  /// Assign replaces the contents by a copy of `size` octets at `data` (zeros when
  /// `data` is null). `data` may point into this buffer.
  void Assign(const void* data, unsigned int size);

  /// GetObjectSize is the size of the serial form: 4 + GetSize().
  unsigned int GetObjectSize() const;
  /// WriteData writes the serial form into `target`; returns the octets written, or
  /// 0 when `target` is null or `capacity` is below GetObjectSize().
  unsigned int WriteData(void* target, unsigned int capacity) const;
  /// ReadData reads the serial form from `source`; returns the octets used, or 0
  /// (and nothing changed) when the data is shorter than the count it declares.
  unsigned int ReadData(const void* source, unsigned int size);

  /// Equal when the counts and all octets are equal.
  bool operator==(const IdentObj& other) const;
  /// The negation of operator==.
  bool operator!=(const IdentObj& other) const;
  /// A strict weak ordering consistent with ==: octets compared lexicographically as
  /// unsigned values, a proper prefix before the longer buffer.
  bool operator<(const IdentObj& other) const;

 private:
  unsigned int m_size;
  unsigned char* m_data;
};

#endif  // KEYASN_SUPPORT_IDENT_OBJ_H_
