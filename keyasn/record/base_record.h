/// @file
/// CASNTBaseRecord: one BER/DER element as an object.
#ifndef KEYASN_RECORD_BASE_RECORD_H_
#define KEYASN_RECORD_BASE_RECORD_H_

#include "keyasn/codec/header.h"
#include "keyasn/support/export.h"
#include "keyasn/support/file.h"
#include "keyasn/support/ident_obj.h"

namespace keyasn {
namespace detail {
class UnitTree;
}  // namespace detail
}  // namespace keyasn

/// CASNTBaseRecord holds an element's parsed header, its value in decoded form
/// (`entry`) and its complete encoding (`encoded`), converting lazily between the
/// two. States: empty; value-held (`entry` set, `encoded` empty); bytes-held
/// (`encoded` set, `entry` empty until first decoded). Setting one side empties the
/// other.
///
/// Operations taking `int* error` store their code there (0 on success) when it is
/// not null, and throw XRUVStatus(code, place, false) on failure when it is null.
///
/// Virtual slots, in order: destructor pair, WriteData(buffer), WriteData(),
/// ReadData(buffer), WriteData(file), ReadData(file), GetObjectSize, operator=,
/// IsUnit.
class KEYASN_API CASNTBaseRecord {
 public:
  /// CASNTBaseRecord() is the empty record: universal, primitive, tag 0.
  CASNTBaseRecord();
  /// Copy construction is default construction followed by assignment.
  CASNTBaseRecord(const CASNTBaseRecord& other);
  /// ~CASNTBaseRecord releases both buffers.
  virtual ~CASNTBaseRecord();

  /// WriteData(buffer, size, error) copies the encoding into `buffer` and returns
  /// its size; 37 when `buffer` is null or smaller than the encoding, or the code
  /// of the encoder. Place text "CASNTBaseRecord::WriteData".
  virtual unsigned int WriteData(void* buffer, unsigned int size, int* error) const;
  /// WriteData(error) returns the encoding as a new buffer of GetObjectSize()
  /// octets filled by the buffer writer.
  virtual IdentObj WriteData(int* error) const;
  /// ReadData(data, size, error) reads one whole element of definite length and
  /// returns its size; 37 when the data is shorter than the header says (also for
  /// an indefinite length). Returns the header size on failure. Place text
  /// "CASNTBaseRecord::ReadASNInfo" (kept: callers match on it).
  virtual unsigned int ReadData(const void* data, unsigned int size, int* error);
  /// WriteData(file, position, error) writes the encoding at `position` (0xFFFFFFFF:
  /// the current position); 37 for a position beyond the end, 6 for a short write.
  /// Place text "CASNTBaseRecord::WriteData".
  virtual unsigned int WriteData(CRUVFile& file, unsigned int position, int* error) const;
  /// ReadData(file, position, error) reads one whole element at the file's current
  /// position (`position` only bounds the header read); 5 for a short read (the
  /// buffers are then left as they were), 37 for an indefinite length. An element
  /// with empty contents returns the header size and leaves the buffers alone.
  /// Place text "CASNTBaseRecord::ReadData".
  virtual unsigned int ReadData(const CRUVFile& file, unsigned int position, int* error);
  /// GetObjectSize returns the size of the encoding (encoding it if needed; 0 when
  /// that fails).
  virtual unsigned int GetObjectSize() const;
  /// operator= copies both buffers, and re-parses the header from the copied
  /// encoding when there is one (so Contents points into this record's buffer).
  virtual CASNTBaseRecord& operator=(const CASNTBaseRecord& other);
  /// IsUnit is false for a plain record.
  virtual bool IsUnit() const;

  /// GetTag returns the header's tag number.
  unsigned int GetTag() const;
  /// SetTag sets the tag number; neither buffer is touched (nor by the other setters).
  void SetTag(unsigned int tag);
  /// GetIsConstraction is true for a constructed element.
  bool GetIsConstraction() const;
  /// SetIsConstraction stores 0x20 for any non-zero argument, else 0.
  void SetIsConstraction(unsigned char constructed);
  /// GetClass returns the class octet (0x00, 0x40, 0x80 or 0xC0).
  unsigned char GetClass() const;
  /// SetClass stores the low eight bits as the class octet (0x80: context-specific).
  void SetClass(short tagClass);
  /// GetEntrySize returns the header's contents length (0xFFFFFFFF: indefinite).
  unsigned int GetEntrySize() const;

  /// SetEntry sets the value (a copy); `encoded` becomes empty.
  void SetEntry(const void* data, unsigned int size);
  void SetEntry(const IdentObj& value);  ///< SetEntry from a buffer.
  /// SetEncodedEntry parses the header of `encoding`; on success keeps a copy of it
  /// as `encoded`, empties `entry` and returns 0; otherwise returns the parser's
  /// code with both buffers untouched.
  int SetEncodedEntry(const IdentObj& encoding);
  /// GetRecord returns the decoded value, decoding `encoded` on first use (the
  /// decoder's code goes to `error`, which may be null: failures are then silent).
  const IdentObj& GetRecord(int* error) const;
  /// GetEncodedRecord returns the encoding, encoding `entry` on first use.
  const IdentObj& GetEncodedRecord(int* error) const;

  /// WriteTag returns the identifier octets of the header.
  IdentObj WriteTag() const;
  /// EncodeSize returns the definite-form DER length octets for `length`.
  IdentObj EncodeSize(unsigned int length) const;

  /// ReadASNInfo(data, size, error) parses only the header; returns its size, or 0
  /// on failure (place text "CASNTBaseRecord::ReadASNInfo").
  unsigned int ReadASNInfo(const void* data, unsigned int size, int* error) const;
  /// ReadASNInfo(file, position, error) parses only the header at the file's
  /// current position, one octet per read; `position` bounds the read (0xFFFFFFFF:
  /// count from 0) and must lie below the file's length (else 37). Returns the
  /// octets read.
  unsigned int ReadASNInfo(const CRUVFile& file, unsigned int position, int* error) const;

  /// GetContecstSpecSize(data, size, constructed, error) measures the contents of
  /// an indefinite-length element starting at its first contents octet, up to and
  /// including the closing 00 00. Primitive: up to the first zero octet plus two
  /// (its partner is assumed), or `size`. Constructed: walks the nested elements
  /// and stops at the closing pair, or where the data ends; nothing past `size` is
  /// read. A header that cannot be parsed stores its code (or throws, place
  /// "CASNTBaseRecord::ReadASNInfo") with the offset reached.
  static unsigned int GetContecstSpecSize(const unsigned char* data, unsigned int size,
                                          unsigned char constructed, int* error);
  /// GetContecstSpecSize(file, constructed, error) measures the same from the file's
  /// current position, which is restored before returning. Primitive contents are
  /// read into a 16-bit accumulator doubled per octet (kept for compatibility: a
  /// leading 00 gives 1). A cut-short end-of-contents pair gives 206 with the
  /// file's name as the place.
  static unsigned int GetContecstSpecSize(const CRUVFile& file, unsigned char constructed,
                                          int* error);

 protected:
  /// The unit-tree walks read and fill records directly.
  friend class keyasn::detail::UnitTree;

  mutable ASNT_ASN_STRUCT_INFO header;  ///< the parsed header
  mutable IdentObj entry;              ///< the value in decoded form, or empty
  mutable IdentObj encoded;            ///< the complete encoding, or empty
};

#endif  // KEYASN_RECORD_BASE_RECORD_H_
