/// @file
/// PKCS#11 (Cryptoki) element and container descriptions.
#ifndef KEYASN_KEYS_CRYPTOKI_H_
#define KEYASN_KEYS_CRYPTOKI_H_

#include <list>

#include "keyasn/support/cruv_string.h"
#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// ASNCryptokiElemInfo is SEQUENCE { INTEGER Type, OCTET STRING Value }.
class KEYASN_API ASNCryptokiElemInfo {
 public:
  /// ASNCryptokiElemInfo() holds Type 0 and an empty Value.
  ASNCryptokiElemInfo();
  /// Copies `other` (a deep copy).
  ASNCryptokiElemInfo(const ASNCryptokiElemInfo& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  ASNCryptokiElemInfo& operator=(const ASNCryptokiElemInfo& other);
  ~ASNCryptokiElemInfo();

  /// ReadData reads the SEQUENCE at `data` and returns the octets it occupies, or 0
  /// after a failure reported through `error` (set to 0 first when given). The
  /// first two items are taken whatever their tags; further items are ignored.
  /// Failures: 206 with "ASNCryptokiElemInfo::ReadData ASNTGetSequence" for fewer
  /// than two items; 206 with "ASNCryptokiElemInfo::ReadData" when the first item's
  /// value is wider than the four octets of Type (Type is then 0); the codes of the
  /// splitter and the record. With `error` null the XRUVStatus is thrown. Members
  /// already set keep their new values.
  unsigned int ReadData(const unsigned char* data, unsigned int size, int* error);

  /// WriteData returns the encoded SEQUENCE. Type is written from its four octets,
  /// least significant first, shortened by the encoder: a Type whose shortened form
  /// has its top bit set reads back as that shorter value (0xFFFFFFFF writes 02 01 FF).
  IdentObj WriteData(int* error) const;

  unsigned int Type;  ///< the element's number
  IdentObj Value;     ///< the element's octets
};

/// ASNCryptokiContInfo is SEQUENCE { OCTET STRING Name, INTEGER Number1, INTEGER
/// Number2, SEQUENCE { Elements } }.
class KEYASN_API ASNCryptokiContInfo {
 public:
  /// ASNCryptokiContInfo() holds an empty name, zero numbers and no elements.
  ASNCryptokiContInfo();
  /// Copies `other` (a deep copy).
  ASNCryptokiContInfo(const ASNCryptokiContInfo& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  ASNCryptokiContInfo& operator=(const ASNCryptokiContInfo& other);
  ~ASNCryptokiContInfo();

  /// ReadData reads the SEQUENCE at `data`. Returns 0 on success, or the code of the
  /// split of the inner SEQUENCE's contents into Elements (such as 206), which is
  /// neither stored in `error` nor thrown; it does not return the octets consumed
  /// (kept so). An empty element inside the inner SEQUENCE ends the list there.
  /// Failures, stored in `error` (set to 0 first when given; 0 returned) or thrown
  /// when `error` is null: 206 with "ASNCryptokiContInfo::ReadData ASNTGetSequence"
  /// for fewer than four items; 206 with "ASNCryptokiContInfo::ReadData" for a
  /// number wider than four octets; the codes of the splitter and the record.
  /// Members already set keep their new values.
  unsigned int ReadData(const unsigned char* data, unsigned int size, int* error);

  /// WriteData returns the encoded SEQUENCE: Name's characters without a NUL, the
  /// numbers as in ASNCryptokiElemInfo::WriteData, the Elements joined as they are.
  IdentObj WriteData(int* error) const;

  CRUVString Name;               ///< the container's name
  unsigned int Number1;          ///< first number
  unsigned int Number2;          ///< second number
  std::list<IdentObj> Elements;  ///< complete encoded elements, kept as they are
};

#endif  // KEYASN_KEYS_CRYPTOKI_H_
