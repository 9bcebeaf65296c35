// CASNTUnit: a record that owns the tree of its child records.
#ifndef KEYASN_RECORD_UNIT_H_
#define KEYASN_RECORD_UNIT_H_

#include <list>

#include "keyasn/record/base_record.h"
#include "keyasn/support/export.h"

// CASNTUnit reads a whole element tree (each child itself a CASNTUnit) and writes
// it back in definite-length form. It owns its items.
class KEYASN_API CASNTUnit : public CASNTBaseRecord {
 public:
  CASNTUnit();
  CASNTUnit(const CASNTUnit& other);
  ~CASNTUnit() override;
  CASNTUnit& operator=(const CASNTUnit& other);
  using CASNTBaseRecord::operator=;

  unsigned int WriteData(void* buffer, unsigned int size, int* error) const override;
  IdentObj WriteData(int* error) const override;
  unsigned int ReadData(const void* data, unsigned int size, int* error) override;
  using CASNTBaseRecord::ReadData;
  using CASNTBaseRecord::WriteData;
  unsigned int GetObjectSize() const override;
  // IsUnit is true exactly when the unit has at least one item.
  bool IsUnit() const override;

  void Push_Back(const CASNTBaseRecord& record);
  void Push_Front(const CASNTBaseRecord& record);
  void Push_Back(const CASNTUnit& unit);
  void Push_Front(const CASNTUnit& unit);
  // GetItem returns the item at `index`, or null; the unit keeps ownership.
  CASNTBaseRecord* GetItem(unsigned int index) const;
  unsigned int GetEntryListSize() const;
  const IdentObj& GetEncodedRecord(int* error) const;

 protected:
  std::list<CASNTBaseRecord*> items;
};

#endif  // KEYASN_RECORD_UNIT_H_
