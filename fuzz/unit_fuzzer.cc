// CASNTUnit: a whole element tree read from a buffer (and, as a single record,
// from a file), walked by index, copied and written back.
#include <cstring>

#include "fuzz/fuzz_support.h"
#include "keyasn/record/unit.h"
#include "keyasn/support/file.h"

namespace {

using keyasn_fuzz::Guard;
using keyasn_fuzz::IsLibraryCode;
using keyasn_fuzz::Same;

// Counts the records of a tree, walking it by index without recursion.
size_t CountRecords(const CASNTUnit& root) {
  size_t count = 0;
  std::vector<const CASNTBaseRecord*> pending = {&root};
  while (!pending.empty()) {
    const CASNTBaseRecord* record = pending.back();
    pending.pop_back();
    ++count;
    if (!record->IsUnit()) continue;
    const CASNTUnit* unit = static_cast<const CASNTUnit*>(record);
    const unsigned int items = unit->GetEntryListSize();
    KEYASN_FUZZ_CHECK(unit->GetItem(items) == nullptr);
    for (unsigned int i = 0; i < items; ++i) {
      const CASNTBaseRecord* item = unit->GetItem(i);
      KEYASN_FUZZ_CHECK(item != nullptr);
      pending.push_back(item);
    }
  }
  return count;
}

}  // namespace

KEYASN_FUZZ_TARGET(unit) {
  const unsigned int n = keyasn_fuzz::Size32(size);
  CASNTUnit unit;
  int code = -1;
  const unsigned int used = unit.ReadData(data, n, &code);
  KEYASN_FUZZ_CHECK(code == 0 || IsLibraryCode(code));
  const int raised = Guard([&] {
    CASNTUnit other;
    other.ReadData(data, n, nullptr);
  });
  KEYASN_FUZZ_CHECK(raised == code);
  if (code == 0) KEYASN_FUZZ_CHECK(used <= n);
  (void)CountRecords(unit);  // a failed read keeps what it read so far

  // Writing never raises and never reports through the error pointer.
  const unsigned int objectSize = unit.GetObjectSize();
  int written = -12345;
  IdentObj encoding = unit.WriteData(&written);
  KEYASN_FUZZ_CHECK(written == -12345 && encoding.Count() == objectSize);
  if (objectSize > 0) {
    std::vector<uint8_t> small(objectSize - 1, 0xEE);
    (void)unit.WriteData(small.data(), objectSize - 1, &written);
    KEYASN_FUZZ_CHECK(written == -12345);
  }

  if (code != 0) return;
  // Copies walk the same tree. They write the same octets when no child is an
  // empty constructed element: such a child sizes itself as nothing until it
  // has been written once, and a copy turns it into a plain record.
  const bool der = keyasn_fuzz::IsDer(data, used);
  CASNTUnit copy(unit);
  KEYASN_FUZZ_CHECK(copy.GetEntryListSize() == unit.GetEntryListSize());
  const IdentObj copied = copy.WriteData(nullptr);
  CASNTUnit assigned;
  assigned = copy;
  const IdentObj reassigned = assigned.WriteData(nullptr);
  KEYASN_FUZZ_CHECK(CountRecords(assigned) <= CountRecords(unit));
  if (der) {
    KEYASN_FUZZ_CHECK(copied == encoding && reassigned == encoding);
    // A tree read from distinguished (definite-length, shortest-form) octets
    // writes back the same octets.
    KEYASN_FUZZ_CHECK(Same(encoding, data, used));
  }
  // What was written reads back and is written the same way again.
  if (encoding.Count() > 0) {
    CASNTUnit again;
    int againCode = -1;
    const unsigned int againUsed = again.ReadData(encoding.GetData(), encoding.Count(), &againCode);
    if (againCode == 0 && againUsed == encoding.Count() &&
        keyasn_fuzz::IsDer(encoding.GetData(), encoding.Count()))
      KEYASN_FUZZ_CHECK(again.WriteData(nullptr) == encoding);
  }

  // From a file a unit reads as a single record, without children.
  keyasn_fuzz::ScratchFile::Write(data, keyasn_fuzz::FileFormSize(size));
  CRUVFile file(keyasn_fuzz::ScratchFile::Path(), "rb");
  CASNTUnit fromFile;
  int fileCode = -1;
  (void)fromFile.ReadData(file, 0xFFFFFFFFu, &fileCode);
  KEYASN_FUZZ_CHECK(fileCode == 0 || IsLibraryCode(fileCode));
  KEYASN_FUZZ_CHECK(fromFile.GetEntryListSize() == 0);
}
