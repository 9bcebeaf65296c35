/// @file
/// Implicit and explicit context-specific tagging of records.
#ifndef KEYASN_RECORD_TAGGED_H_
#define KEYASN_RECORD_TAGGED_H_

#include "keyasn/record/base_record.h"
#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// ITaggedType puts a tag on a record.
class KEYASN_API ITaggedType {
 public:
  /// TagIt makes this object the tagged form of `record`.
  virtual void TagIt(const CASNTBaseRecord& record) = 0;

 protected:
  ~ITaggedType();  ///< tagged objects are never deleted through this interface
};

/// Implicit replaces a member's identifier octets by its own (class, tag).
class KEYASN_API Implicit : public ITaggedType, public CASNTBaseRecord {
 public:
  /// Implicit() is context-specific, tag 0, with no origin tag.
  Implicit();
  /// Implicit(record, tag, tagClass): note the tag number comes before the class.
  Implicit(const CASNTBaseRecord& record, unsigned int tag, unsigned int tagClass);
  /// Copies `other` (a deep copy).
  Implicit(const Implicit& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  Implicit& operator=(const Implicit& other);
  /// ~Implicit releases the record and the origin tag.
  ~Implicit() override;

  /// TagIt takes this record's constructed flag from `record` and holds the
  /// record's encoding under this record's identifier octets. Throws
  /// XRUVStatus(code, "Implicit::TagIt", false) when they cannot be replaced. The
  /// origin tag is not recorded.
  void TagIt(const CASNTBaseRecord& record) override;
  /// SetOriginTag(tagOctets) keeps the member's own identifier octets.
  void SetOriginTag(const IdentObj& tagOctets);
  /// SetOriginTag(tagClass, tag) builds them with this record's constructed flag.
  void SetOriginTag(unsigned char tagClass, unsigned int tag);
  /// GetTaggedTypeRecord returns the member's value decoded under its origin tag;
  /// 205 without an origin tag.
  IdentObj GetTaggedTypeRecord(int* error) const;

 protected:
  bool hasOriginTag;   ///< true once the untagged identifier octets are known
  IdentObj originTag;  ///< those identifier octets
};

/// Explicit wraps a member's whole encoding in a constructed context-specific element.
class KEYASN_API Explicit : public ITaggedType, public CASNTBaseRecord {
 public:
  /// Explicit() is context-specific, tag 0.
  Explicit();
  /// Explicit(record, tag, tagClass): the tag number comes before the class.
  Explicit(const CASNTBaseRecord& record, unsigned int tag, unsigned int tagClass);
  /// Copies `other` (a deep copy).
  Explicit(const Explicit& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  Explicit& operator=(const Explicit& other);
  /// ~Explicit releases the record.
  ~Explicit() override;

  /// TagIt makes this record constructed with the whole encoding of `record` as
  /// its value (a unit gives its cached or value encoding, not a rebuilt one).
  void TagIt(const CASNTBaseRecord& record) override;
  /// GetTaggedTypeRecord returns the wrapped member's decoded value.
  IdentObj GetTaggedTypeRecord(int* error) const;
};

#endif  // KEYASN_RECORD_TAGGED_H_
