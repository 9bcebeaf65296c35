// The walks over a unit tree: reading, sizing, writing, copying and destroying.
// All of them iterate with an explicit stack, so the nesting depth of a tree costs
// heap, never call stack.
#ifndef KEYASN_RECORD_UNIT_TREE_H_
#define KEYASN_RECORD_UNIT_TREE_H_

#include <list>
#include <vector>

#include "keyasn/record/base_record.h"
#include "keyasn/record/unit.h"

namespace keyasn {
namespace detail {

// One record of a unit tree, in pre-order.
struct UnitNode {
  const CASNTBaseRecord* record;
  // Index of the parent node (0 for the root itself).
  unsigned int parent;
  // Index just past this node's subtree.
  unsigned int end;
  // Encoded size: for a branch (a unit with items) its identifier and length
  // octets plus `contents`; for a leaf its GetObjectSize().
  unsigned int size;
  // Sum of the children's sizes (branches only).
  unsigned int contents;
  // A unit with at least one item.
  bool branch;
};

// UnitTree holds the walks over a unit tree. It is the one friend of
// CASNTBaseRecord and CASNTUnit: nothing else outside those classes touches
// their members.
class UnitTree {
 public:
  // LayOut lists `root` and every record below it in pre-order and sizes them in
  // one bottom-up pass (each leaf's GetObjectSize is asked once). The sizes live
  // only in `*nodes`, never in the records.
  static void LayOut(const CASNTUnit& root, std::vector<UnitNode>* nodes);

  // WriteNodes writes the laid-out tree into `buffer` the way nested unit writers
  // would: a unit that does not fit what remains writes nothing, and a leaf record
  // that fails stops the rest of its parent's items. Returns the octets written.
  static unsigned int WriteNodes(const std::vector<UnitNode>& nodes, unsigned char* buffer,
                                 unsigned int size);

  // Read reads the element at `data` into `unit` (children as units) and returns
  // the octets used; `*code` receives 0, 205 or 206.
  static unsigned int Read(CASNTUnit* unit, const unsigned char* data, unsigned int size,
                           int* code);

  // Copy makes `*to` a copy of `from`: header field for field, both buffers, and a
  // copy of every item (a unit with items as a unit, anything else as a plain
  // record).
  static void Copy(const CASNTUnit& from, CASNTUnit* to);

  // DestroyItems destroys every item below `unit` and empties its list.
  static void DestroyItems(CASNTUnit* unit) noexcept;

 private:
  static bool StartUnit(CASNTUnit* unit, const unsigned char* data, unsigned int size,
                        int* code, unsigned int* used);

  static std::list<CASNTBaseRecord*>& Items(CASNTUnit& u) { return u.items; }
  static const std::list<CASNTBaseRecord*>& Items(const CASNTUnit& u) { return u.items; }
  static ASNT_ASN_STRUCT_INFO& Header(CASNTBaseRecord& r) { return r.header; }
  static const ASNT_ASN_STRUCT_INFO& Header(const CASNTBaseRecord& r) { return r.header; }
  static IdentObj& Entry(CASNTBaseRecord& r) { return r.entry; }
  static const IdentObj& Entry(const CASNTBaseRecord& r) { return r.entry; }
  static IdentObj& Encoded(CASNTBaseRecord& r) { return r.encoded; }
  static const IdentObj& Encoded(const CASNTBaseRecord& r) { return r.encoded; }
};

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_RECORD_UNIT_TREE_H_
