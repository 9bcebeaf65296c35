/// @file
/// Key export and exchange records: an exported key, and the two records that carry
/// one between components together with further data.
#ifndef KEYASN_KEYS_EXPORT_KEY_H_
#define KEYASN_KEYS_EXPORT_KEY_H_

#include <list>

#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// CASNExportKeyInfo is SEQUENCE { keyElement, extraElement OPTIONAL }, both
/// complete elements copied verbatim. A plain value type.
class KEYASN_API CASNExportKeyInfo {
 public:
  CASNExportKeyInfo();
  /// Copies `other` (a deep copy).
  CASNExportKeyInfo(const CASNExportKeyInfo& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  CASNExportKeyInfo& operator=(const CASNExportKeyInfo& other);
  ~CASNExportKeyInfo();

  /// ReadData reads the SEQUENCE at `data`. Returns the size of its header
  /// (identifier and length octets) only, not of the whole element: callers rely on
  /// that value, kept on purpose. A null `data` or a `size` of 0 returns 0 and
  /// changes nothing. `keyElement` becomes the first item; `extraElement` the second
  /// when there is one (otherwise it keeps its value); further items are ignored.
  /// Only the tag number is tested (class and constructed flag are not). Throws
  /// XRUVStatus(code, "CASNExportKeyInfo::ReadData", false): the header's or the
  /// splitter's code, or 206 for a tag other than 16, a `size` below the contents
  /// length, or no items.
  unsigned int ReadData(const unsigned char* data, unsigned int size);

  /// WriteData returns the SEQUENCE of `keyElement`, followed by `extraElement`
  /// when it is not empty, both as they stand.
  IdentObj WriteData() const;

  IdentObj keyElement;    ///< a complete encoded element; mandatory
  IdentObj extraElement;  ///< a complete encoded element; empty when absent
};

/// CASNExchangeKeyData is SEQUENCE { CASNExportKeyInfo, SEQUENCE OF element
/// OPTIONAL }. Its first two members are those of CASNExportKeyInfo, read and written
/// with that structure's operations.
class KEYASN_API CASNExchangeKeyData : public CASNExportKeyInfo {
 public:
  CASNExchangeKeyData();
  /// Copies `other` (a deep copy).
  CASNExchangeKeyData(const CASNExchangeKeyData& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  CASNExchangeKeyData& operator=(const CASNExchangeKeyData& other);
  ~CASNExchangeKeyData();

  /// ReadData splits the SEQUENCE at `data` and returns the octets the splitter
  /// consumed. The first item is read as CASNExportKeyInfo; a second one is split
  /// into `exchangeItems`, whose items are appended to what the list held (callers
  /// read into fresh objects). Further items are ignored. Throws the splitter's
  /// XRUVStatus, or XRUVStatus(206, "CASNExchangeKeyData::ReadData ASNTGetSequence",
  /// false) when the SEQUENCE is empty; nothing is rolled back.
  unsigned int ReadData(const void* data, unsigned int size);

  /// WriteData returns the SEQUENCE of the export key info, followed by the
  /// SEQUENCE of `exchangeItems` when the list is not empty.
  IdentObj WriteData() const;

  std::list<IdentObj> exchangeItems;  ///< complete encoded elements; empty when absent
};

/// CASNProxyKeyExchangeData is SEQUENCE { CASNExportKeyInfo, OCTET STRING proxyData }.
/// Its first two members are those of CASNExportKeyInfo.
class KEYASN_API CASNProxyKeyExchangeData : public CASNExportKeyInfo {
 public:
  CASNProxyKeyExchangeData();
  /// Copies `other` (a deep copy).
  CASNProxyKeyExchangeData(const CASNProxyKeyExchangeData& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  CASNProxyKeyExchangeData& operator=(const CASNProxyKeyExchangeData& other);
  ~CASNProxyKeyExchangeData();

  /// ReadData splits the SEQUENCE at `data` and returns the octets the splitter
  /// consumed. The first item is read as CASNExportKeyInfo, the second one's decoded
  /// value becomes `proxyData` (its tag is not examined). Throws the XRUVStatus of
  /// the layer that failed, or XRUVStatus(206,
  /// "CASNProxyKeyExchangeData::ReadData ASNTGetSequence", false) unless there are
  /// exactly two items; nothing is rolled back.
  unsigned int ReadData(const void* data, unsigned int size);

  /// WriteData returns the SEQUENCE of the export key info and an OCTET STRING of
  /// `proxyData`.
  IdentObj WriteData() const;

  IdentObj proxyData;  ///< the contents octets of the OCTET STRING
};

#endif  // KEYASN_KEYS_EXPORT_KEY_H_
