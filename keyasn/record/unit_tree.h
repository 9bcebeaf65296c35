// The walks over a unit tree: reading, sizing, writing, copying and destroying.
// All of them iterate with an explicit stack, so the nesting depth of a tree costs
// heap, never call stack.
#ifndef KEYASN_RECORD_UNIT_TREE_H_
#define KEYASN_RECORD_UNIT_TREE_H_

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

// LayOutUnit lists `root` and every record below it in pre-order and sizes them
// in one bottom-up pass (each leaf's GetObjectSize is asked once). The sizes live
// only in `*nodes`, never in the records.
void LayOutUnit(const CASNTUnit& root, std::vector<UnitNode>* nodes);

// WriteUnitNodes writes the laid-out tree into `buffer` the way nested unit
// writers would: a unit that does not fit what remains writes nothing, and a leaf
// record that fails stops the rest of its parent's items. Returns the octets
// written.
unsigned int WriteUnitNodes(const std::vector<UnitNode>& nodes, unsigned char* buffer,
                            unsigned int size);

// ReadUnitTree reads the element at `data` into `unit` (children as units) and
// returns the octets used; `*code` receives 0, 205 or 206.
unsigned int ReadUnitTree(CASNTUnit* unit, const unsigned char* data, unsigned int size,
                          int* code);

// CopyUnitTree makes `*to` a copy of `from`: header field for field, both
// buffers, and a copy of every item (a unit with items as a unit, anything else
// as a plain record).
void CopyUnitTree(const CASNTUnit& from, CASNTUnit* to);

// DestroyUnitItems destroys every item below `unit` and empties its list.
void DestroyUnitItems(CASNTUnit* unit) noexcept;

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_RECORD_UNIT_TREE_H_
