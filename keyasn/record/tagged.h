// Implicit and explicit context-specific tagging of records.
#ifndef KEYASN_RECORD_TAGGED_H_
#define KEYASN_RECORD_TAGGED_H_

#include "keyasn/record/base_record.h"
#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

// ITaggedType puts a tag on a record.
class KEYASN_API ITaggedType {
 public:
  virtual void TagIt(const CASNTBaseRecord& record) = 0;

 protected:
  ~ITaggedType() = default;  // tagged objects are never deleted through this interface
};

// Implicit replaces a member's identifier octets by its own (class, tag).
class KEYASN_API Implicit : public ITaggedType, public CASNTBaseRecord {
 public:
  // Implicit() is context-specific, tag 0, with no origin tag.
  Implicit();
  // Implicit(record, tag, tagClass): note the tag number comes before the class.
  Implicit(const CASNTBaseRecord& record, unsigned int tag, unsigned int tagClass);
  ~Implicit() override;

  void TagIt(const CASNTBaseRecord& record) override;
  void SetOriginTag(const IdentObj& tagOctets);
  void SetOriginTag(unsigned char tagClass, unsigned int tag);
  // GetTaggedTypeRecord returns the member's value decoded under its origin tag;
  // 205 without an origin tag.
  IdentObj GetTaggedTypeRecord(int* error) const;

 protected:
  bool hasOriginTag;
  IdentObj originTag;
};

// Explicit wraps a member's whole encoding in a constructed context-specific element.
class KEYASN_API Explicit : public ITaggedType, public CASNTBaseRecord {
 public:
  Explicit();
  Explicit(const CASNTBaseRecord& record, unsigned int tag, unsigned int tagClass);
  ~Explicit() override;

  void TagIt(const CASNTBaseRecord& record) override;
  IdentObj GetTaggedTypeRecord(int* error) const;
};

#endif  // KEYASN_RECORD_TAGGED_H_
