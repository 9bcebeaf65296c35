/// @file
/// CASNValid: the validity period of a key, kept as its DER encoding.
#ifndef KEYASN_KEYS_VALID_H_
#define KEYASN_KEYS_VALID_H_

#include "keyasn/support/export.h"
#include "keyasn/support/file_time.h"
#include "keyasn/support/ident_obj.h"

namespace keyasn {
namespace detail {
class KeyInfoReader;
}  // namespace detail
}  // namespace keyasn

/// CASNValid holds SEQUENCE { notBefore Time, notAfter Time } as its finished
/// encoding (empty when no period is set). A time strictly before 2050-01-01
/// 00:00:01 UTC is written as UTCTime, any later one as GeneralizedTime.
class KEYASN_API CASNValid {
 public:
  /// CASNValid() holds no period.
  CASNValid();
  /// CASNValid(from, to) holds the period from `from` to `to` (see SetTime).
  CASNValid(const CRUVFileTime& from, const CRUVFileTime& to);
  /// Copies `other` (a deep copy).
  CASNValid(const CASNValid& other);
  ~CASNValid();
  /// operator= copies the encoding; self-assignment does nothing.
  CASNValid& operator=(const CASNValid& other);

  /// SetTime replaces the encoding with the SEQUENCE of the two times. An
  /// XRUVStatus from the encoder propagates and leaves the encoding as it was.
  void SetTime(const CRUVFileTime& from, const CRUVFileTime& to);
  /// GetTime returns the start (`from` true) or the end (`from` false); the default
  /// CRUVFileTime ("no time") when the period is empty, malformed, lacks that item
  /// or its value does not decode to a time. Items tagged [0] and [1] (implicit,
  /// read as GeneralizedTime) are found by tag number, others by position.
  CRUVFileTime GetTime(bool from) const;

  /// GetEncoded returns the encoding held (empty when no period is set).
  const IdentObj& GetEncoded() const;
  /// SetEncoded replaces the encoding as it stands; it is not checked.
  void SetEncoded(const IdentObj& encoding);

 private:
  /// The key info reader copies the encoding it reads straight into the member.
  friend class keyasn::detail::KeyInfoReader;

  IdentObj encoded;
};

#endif  // KEYASN_KEYS_VALID_H_
