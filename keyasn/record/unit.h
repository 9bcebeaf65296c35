/// @file
/// CASNTUnit: a record that owns the tree of its child records.
#ifndef KEYASN_RECORD_UNIT_H_
#define KEYASN_RECORD_UNIT_H_

#include <list>

#include "keyasn/record/base_record.h"
#include "keyasn/support/export.h"

/// CASNTUnit reads a whole element tree (each child itself a CASNTUnit) and writes
/// it back in definite-length form. It owns its items.
///
/// Trees of any depth are read, sized, written, copied and destroyed without
/// recursion.
class KEYASN_API CASNTUnit : public CASNTBaseRecord {
 public:
  /// CASNTUnit() is an empty record with no items.
  CASNTUnit();
  /// Copy construction is default construction followed by the unit assignment.
  CASNTUnit(const CASNTUnit& other);
  /// ~CASNTUnit destroys every item.
  ~CASNTUnit() override;
  /// operator= replaces the items by copies of the source's (a unit with items as
  /// a unit, anything else as a plain record, so an empty child unit becomes a
  /// record on purpose) and copies the header field for field and both buffers.
  CASNTUnit& operator=(const CASNTUnit& other);
  using CASNTBaseRecord::operator=;

  /// WriteData(buffer, size, error): with items, the identifier and length octets
  /// of the current header around the items' encodings (always definite length);
  /// without items, the record's encoding. Returns the octets written, 0 when
  /// `buffer` is too small; `error` is never written and nothing is thrown.
  unsigned int WriteData(void* buffer, unsigned int size, int* error) const override;
  /// WriteData(error) returns GetObjectSize() octets filled by the buffer writer.
  IdentObj WriteData(int* error) const override;
  /// ReadData(data, size, error) reads the element tree at `data`: constructed
  /// children become units, a primitive element keeps its encoding, and the
  /// contents of a context-specific primitive that hold exactly one element become
  /// its single item. Returns the octets used. Codes: 205 for any header that
  /// cannot be parsed; 206 for an application or private primitive, an element
  /// beyond the data, or an indefinite element without contents or end; a child's
  /// code is passed up. Place text "CASNTUnit::Read" when `error` is null.
  unsigned int ReadData(const void* data, unsigned int size, int* error) override;
  using CASNTBaseRecord::ReadData;
  using CASNTBaseRecord::WriteData;
  /// GetObjectSize: with items, their sizes plus identifier and length octets;
  /// without, the size of `encoded`, else of the value's encoding, else 0.
  unsigned int GetObjectSize() const override;
  /// IsUnit is true exactly when the unit has at least one item.
  bool IsUnit() const override;

  /// Push_Back / Push_Front(record) add a plain-record copy (a unit loses its items).
  void Push_Back(const CASNTBaseRecord& record);
  void Push_Front(const CASNTBaseRecord& record);  ///< See Push_Back.
  /// Push_Back / Push_Front(unit) add a unit copy, children included.
  void Push_Back(const CASNTUnit& unit);
  void Push_Front(const CASNTUnit& unit);  ///< See Push_Back.
  /// GetItem returns the item at `index`, or null; the unit keeps ownership.
  CASNTBaseRecord* GetItem(unsigned int index) const;
  /// GetEntryListSize returns the number of items.
  unsigned int GetEntryListSize() const;
  /// GetEncodedRecord returns `encoded` as it is when set; otherwise, with items,
  /// caches and returns WriteData(error); without, encodes the value.
  const IdentObj& GetEncodedRecord(int* error) const;

 protected:
  /// The unit-tree walks read and fill the item list directly.
  friend class keyasn::detail::UnitTree;

  std::list<CASNTBaseRecord*> items;  ///< the child records, owned
};

#endif  // KEYASN_RECORD_UNIT_H_
