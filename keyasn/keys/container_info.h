/// @file
/// ASNContainerInfo: a key container with its key and defence key descriptions.
#ifndef KEYASN_KEYS_CONTAINER_INFO_H_
#define KEYASN_KEYS_CONTAINER_INFO_H_

#include "keyasn/keys/key_info.h"
#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// ASNContainerInfo is SEQUENCE { Version INTEGER, key info, defence key info,
/// [0] Optional0 (raw contents), [1] OCTET STRING Optional1 }. The two key
/// descriptions are kept encoded and decoded only on request.
class KEYASN_API ASNContainerInfo {
 public:
  /// ASNContainerInfo() has Version 3 and every buffer empty.
  ASNContainerInfo();
  /// Copies `other` (a deep copy).
  ASNContainerInfo(const ASNContainerInfo& other);
  ~ASNContainerInfo();
  /// operator= copies all five members; self-assignment does nothing.
  ASNContainerInfo& operator=(const ASNContainerInfo& other);
  /// operator== compares Version, KeyInfo, DefenceKeyInfo, Optional0, Optional1.
  bool operator==(const ASNContainerInfo& other) const;
  /// The negation of operator==.
  bool operator!=(const ASNContainerInfo& other) const;

  /// SetKeyInfo stores the encoding of `info`; an encoding failure propagates.
  void SetKeyInfo(const ASNKeyInfo& info);
  /// SetDefenceKeyInfo stores the encoding of the defence key's `info`.
  void SetDefenceKeyInfo(const ASNKeyInfo& info);
  /// GetKeyInfo decodes KeyInfo (a default ASNKeyInfo when it is empty); a decoding
  /// failure propagates as XRUVStatus.
  ASNKeyInfo GetKeyInfo() const;
  /// GetDefenceKeyInfo decodes DefenceKeyInfo the same way.
  ASNKeyInfo GetDefenceKeyInfo() const;

  /// WriteData(err) returns the encoded SEQUENCE. With a non-null `err` the code is
  /// always stored (0 on success; an empty result after a failure); with a null
  /// `err` a failure raises XRUVStatus(code, "ASNContainerInfo::WriteData").
  IdentObj WriteData(int* err) const;
  /// ReadData(data, size, err) fills the structure and returns the split's count
  /// plus the size of the first item (kept for compatibility). Optional1 keeps its
  /// previous value unless the input carries a [1]. With a non-null `err` the code
  /// is always stored; with a null `err` a failure raises XRUVStatus(code,
  /// "ASNContainerInfo::WriteData"), the writer's name kept on purpose. Members
  /// read before a failure keep their new values.
  unsigned int ReadData(const unsigned char* data, unsigned int size, int* err);

  unsigned int Version;     ///< the container's first INTEGER
  IdentObj KeyInfo;         ///< DER encoding of the container's ASNKeyInfo
  IdentObj DefenceKeyInfo;  ///< DER encoding of the defence key's ASNKeyInfo
  IdentObj Optional0;       ///< contents of the [0] element, raw
  IdentObj Optional1;       ///< value of the OCTET STRING inside the [1] element
};

#endif  // KEYASN_KEYS_CONTAINER_INFO_H_
