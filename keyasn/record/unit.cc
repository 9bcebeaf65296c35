#include "keyasn/record/unit.h"

#include <cstring>
#include <iterator>
#include <memory>
#include <typeinfo>
#include <vector>

#include "keyasn/codec/error_codes.h"
#include "keyasn/record/unit_tree.h"
#include "keyasn/support/status.h"

namespace {

constexpr char kWhereRead[] = "CASNTUnit::Read";

}  // namespace

CASNTUnit::CASNTUnit() : CASNTBaseRecord(), items() {}

CASNTUnit::CASNTUnit(const CASNTUnit& other) : CASNTBaseRecord(), items() {
  keyasn::detail::UnitTree::Copy(other, this);
}

CASNTUnit::~CASNTUnit() { keyasn::detail::UnitTree::DestroyItems(this); }

CASNTUnit& CASNTUnit::operator=(const CASNTUnit& other) {
  if (this != &other) keyasn::detail::UnitTree::Copy(other, this);
  return *this;
}

unsigned int CASNTUnit::WriteData(void* buffer, unsigned int size, int* /*error*/) const {
  // Failures show as a result of 0; the error pointer is never written.
  if (items.empty()) {
    if (encoded.Count() == 0) {
      int code = keyasn::kOk;
      GetEncodedRecord(&code);
      if (code != keyasn::kOk) return 0;
    }
    const unsigned int n = encoded.Count();
    if (size < n || n == 0 || !buffer) return 0;
    std::memcpy(buffer, encoded.GetData(), n);
    return n;
  }
  std::vector<keyasn::detail::UnitNode> nodes;
  keyasn::detail::UnitTree::LayOut(*this, &nodes);
  if (size < nodes[0].size) return 0;
  return keyasn::detail::UnitTree::WriteNodes(nodes, static_cast<unsigned char*>(buffer), size);
}

IdentObj CASNTUnit::WriteData(int* error) const {
  // A unit with items is laid out once for both its size and its octets; a derived
  // class may size or write itself otherwise, so it takes the virtual calls.
  if (!items.empty() && typeid(*this) == typeid(CASNTUnit)) {
    std::vector<keyasn::detail::UnitNode> nodes;
    keyasn::detail::UnitTree::LayOut(*this, &nodes);
    IdentObj buffer(nullptr, nodes[0].size);
    keyasn::detail::UnitTree::WriteNodes(nodes, buffer.GetData(), buffer.Count());
    return buffer;
  }
  IdentObj buffer(nullptr, GetObjectSize());
  WriteData(buffer.GetData(), buffer.Count(), error);
  return buffer;
}

unsigned int CASNTUnit::ReadData(const void* data, unsigned int size, int* error) {
  int code = keyasn::kOk;
  const unsigned int used =
      keyasn::detail::UnitTree::Read(this, static_cast<const unsigned char*>(data), size, &code);
  if (error) {
    *error = code;
  } else if (code != keyasn::kOk) {
    throw XRUVStatus(code, kWhereRead, false);
  }
  return used;
}

unsigned int CASNTUnit::GetObjectSize() const {
  if (items.empty()) {
    if (encoded.Count() != 0) return encoded.Count();
    if (entry.Count() != 0) return GetEncodedRecord(nullptr).Count();
    return 0;
  }
  std::vector<keyasn::detail::UnitNode> nodes;
  keyasn::detail::UnitTree::LayOut(*this, &nodes);
  return nodes[0].size;
}

bool CASNTUnit::IsUnit() const { return !items.empty(); }

void CASNTUnit::Push_Back(const CASNTBaseRecord& record) {
  std::unique_ptr<CASNTBaseRecord> copy(new CASNTBaseRecord(record));
  items.push_back(copy.get());
  copy.release();
}

void CASNTUnit::Push_Front(const CASNTBaseRecord& record) {
  std::unique_ptr<CASNTBaseRecord> copy(new CASNTBaseRecord(record));
  items.push_front(copy.get());
  copy.release();
}

void CASNTUnit::Push_Back(const CASNTUnit& unit) {
  std::unique_ptr<CASNTBaseRecord> copy(new CASNTUnit(unit));
  items.push_back(copy.get());
  copy.release();
}

void CASNTUnit::Push_Front(const CASNTUnit& unit) {
  std::unique_ptr<CASNTBaseRecord> copy(new CASNTUnit(unit));
  items.push_front(copy.get());
  copy.release();
}

CASNTBaseRecord* CASNTUnit::GetItem(unsigned int index) const {
  if (index >= items.size()) return nullptr;
  return *std::next(items.begin(), index);
}

unsigned int CASNTUnit::GetEntryListSize() const {
  return static_cast<unsigned int>(items.size());
}

const IdentObj& CASNTUnit::GetEncodedRecord(int* error) const {
  if (encoded.Count() != 0) return encoded;
  if (!items.empty()) {
    encoded = WriteData(error);
    return encoded;
  }
  return CASNTBaseRecord::GetEncodedRecord(error);
}
