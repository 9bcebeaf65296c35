/// @file
/// CASNTIdData and ASNAlgorithmIdentifier: an object identifier with optional
/// parameters, the building block of the key structures.
#ifndef KEYASN_KEYS_ID_DATA_H_
#define KEYASN_KEYS_ID_DATA_H_

#include "keyasn/support/export.h"
#include "keyasn/support/file.h"
#include "keyasn/support/ident_obj.h"

namespace keyasn {
namespace detail {
class KeyInfoWriter;
}  // namespace detail
}  // namespace keyasn

/// CASNTIdData is a SEQUENCE { OBJECT IDENTIFIER, parameters } held as two buffers:
/// the identifier's contents octets (no tag, no length) and the whole encoded
/// parameters element (empty for absent or NULL parameters).
///
/// Readers and writers catch every XRUVStatus raised below them: with a non-null
/// `err` the code is stored there and the operation returns (a reader the octets
/// consumed before the failure, a writer an empty result); with a null `err` the
/// exception propagates. On success `err` is not written. Nothing is rolled back
/// after a failed read.
class KEYASN_API CASNTIdData {
 public:
  /// CASNTIdData() holds an empty identifier and no parameters.
  CASNTIdData();
  /// Copies `other` (a deep copy).
  CASNTIdData(const CASNTIdData& other);
  virtual ~CASNTIdData();
  /// operator= copies both buffers; self-assignment does nothing.
  CASNTIdData& operator=(const CASNTIdData& other);

  /// Clear empties both buffers.
  void Clear();

  /// operator== compares the identifiers, then (only when they are equal) the
  /// parameters.
  bool operator==(const CASNTIdData& other) const;
  /// operator!= is true when the identifiers differ, else when the parameters differ.
  bool operator!=(const CASNTIdData& other) const;
  /// operator< is true only when both the identifier and the parameters are less
  /// (IdentObj ordering). Not a lexicographic order: kept for compatibility.
  bool operator<(const CASNTIdData& other) const;
  /// operator> is the plain negation of operator< (so equal values compare
  /// greater): kept for compatibility.
  bool operator>(const CASNTIdData& other) const;

  /// ReadData(data, size, err) reads the SEQUENCE at `data` and returns the octets
  /// consumed. A NULL parameters element is not counted, and a sequence that ends
  /// after the identifier reads as "no parameters". Code 206 ("CASNTIdData::ReadData")
  /// for an outer tag other than SEQUENCE, an identifier tag other than OBJECT
  /// IDENTIFIER, or a parameters element running past `size`.
  unsigned int ReadData(const void* data, unsigned int size, int* err);
  /// ReadData(file, err) reads the SEQUENCE at the file's current position and
  /// returns the octets taken from the file. Code 37 ("CASNTIdData::ReadData") when
  /// the contents claimed run past the end of the file.
  unsigned int ReadData(const CRUVFile& file, int* err);
  /// WriteData(err) returns the encoded SEQUENCE; NULL (05 00) stands in for empty
  /// parameters.
  IdentObj WriteData(int* err) const;
  /// WriteData(file, err) writes the encoding at the file's current position and
  /// returns what CRUVFile::Write returned (0 when nothing was encoded).
  unsigned int WriteData(CRUVFile& file, int* err) const;
  /// GetObjectSize returns the size of the encoding, or 0 when encoding fails.
  unsigned int GetObjectSize() const;

 protected:
  /// The key info writer puts both members straight into its output.
  friend class keyasn::detail::KeyInfoWriter;

  IdentObj objId;    ///< contents octets of the OBJECT IDENTIFIER
  IdentObj addInfo;  ///< the whole parameters element, or empty for absent/NULL
};

/// ASNAlgorithmIdentifier is CASNTIdData under its algorithm-identifier name, with
/// named accessors for its two parts.
class KEYASN_API ASNAlgorithmIdentifier : public CASNTIdData {
 public:
  ASNAlgorithmIdentifier();
  /// Copies `other` (a deep copy).
  ASNAlgorithmIdentifier(const ASNAlgorithmIdentifier& other);
  ~ASNAlgorithmIdentifier() override;
  /// Replaces the contents by a copy of `other`; returns this object.
  ASNAlgorithmIdentifier& operator=(const ASNAlgorithmIdentifier& other);

  /// GetObjID returns a copy of the identifier's contents octets.
  IdentObj GetObjID() const;
  /// SetObjID sets the identifier's contents octets (no tag, no length).
  void SetObjID(const IdentObj& value);
  /// GetAddInfo returns a copy of the parameters element (empty: NULL parameters).
  IdentObj GetAddInfo() const;
  /// SetAddInfo sets the parameters as a whole encoded element; leave it empty for
  /// NULL parameters.
  void SetAddInfo(const IdentObj& value);
};

#endif  // KEYASN_KEYS_ID_DATA_H_
