/// @file
/// CASNAlgAddInfo: the signature, hash and encryption algorithms that go with a key.
#ifndef KEYASN_KEYS_ALG_ADD_INFO_H_
#define KEYASN_KEYS_ALG_ADD_INFO_H_

#include <string>

#include "keyasn/support/crypt_bit_blob.h"
#include "keyasn/support/export.h"

/// CASNAlgAddInfo is an octet buffer that always holds its own encoding:
///   SEQUENCE { sign OBJECT IDENTIFIER or NULL, hash OBJECT IDENTIFIER or NULL,
///              [0] (primitive, 0x80) holding the whole encrypt OBJECT IDENTIFIER
///              element, only when there is an encrypt text }
/// The primitive form of the [0] wrapper is kept for compatibility with existing
/// encodings. The setters re-encode the whole structure; the getters decode it each
/// time. No data members beyond the buffer's.
class KEYASN_API CASNAlgAddInfo : public CRUVCryptBitBlob {
 public:
  /// CASNAlgAddInfo(sign, hash, encrypt) encodes the three texts (each may be null).
  CASNAlgAddInfo(const char* signOid, const char* hashOid, const char* encryptOid);
  /// Copies `other` (a deep copy).
  CASNAlgAddInfo(const CASNAlgAddInfo& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  CASNAlgAddInfo& operator=(const CASNAlgAddInfo& other);
  ~CASNAlgAddInfo() override;

  /// EncodeObject replaces the octets with the encoding of the three dotted texts; a
  /// null or empty sign or hash text is written as NULL, a null or empty encrypt
  /// text is left out. Failures of the record writer are thrown as it throws them,
  /// with the octets unchanged.
  void EncodeObject(const char* signOid, const char* hashOid, const char* encryptOid);

  /// DecodeObject decodes the octets into each string given (null skips that part);
  /// true on success. A NULL part decodes to an empty text; `encryptOid` is left
  /// untouched when there is no third item or its tag number is not 0. Once any
  /// decode has failed the failure stays recorded: that and later texts are
  /// emptied and the result is false. Nothing is touched when the octets do not
  /// split.
  bool DecodeObject(std::string* signOid, std::string* hashOid,
                    std::string* encryptOid) const;

  /// GetSignOID, GetHashOID, GetEncryptOID return one decoded text, or the empty
  /// string when the decode fails.
  std::string GetSignOID() const;
  std::string GetHashOID() const;     ///< See GetSignOID.
  std::string GetEncryptOID() const;  ///< See GetSignOID.

  /// SetSignOID, SetHashOID, SetEncryptOID replace one part and re-encode, keeping
  /// the other two when they decode and dropping them (NULL, NULL, no third item)
  /// when they do not. A null `oid` throws std::logic_error.
  void SetSignOID(const char* oid);
  void SetHashOID(const char* oid);     ///< See SetSignOID.
  void SetEncryptOID(const char* oid);  ///< See SetSignOID.

  /// ReadObject empties the octets and takes one element from the front of `data` as
  /// the new octets; returns their count, or 0 (object empty) when the header does
  /// not parse or `size` is smaller than the element. The element is taken as
  /// contents length + 2 octets, as if its length were in the one-octet form: kept
  /// deliberately, so an element with a long-form length is cut short.
  unsigned int ReadObject(const unsigned char* data, unsigned int size);
};

#endif  // KEYASN_KEYS_ALG_ADD_INFO_H_
