#include "keyasn/record/unit_tree.h"

#include <cstdint>
#include <cstring>
#include <list>
#include <memory>
#include <utility>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/octets.h"
#include "keyasn/record/record_octets.h"

namespace keyasn {
namespace detail {

namespace {

constexpr unsigned int kIndefinite = 0xFFFFFFFFu;
constexpr unsigned char kUniversal = 0x00;
constexpr unsigned char kContextSpecific = 0x80;

using ItemList = std::list<CASNTBaseRecord*>;

// The octets first reserved for the walks' node lists and stacks.
constexpr size_t kFirstCapacity = 512;

}  // namespace

namespace {

// The constructed units being read, innermost on top, as a stack of fixed blocks:
// the first inside the reader's own stack frame, the others on the heap, kept until
// the read ends (a tree that goes up and down across a block edge allocates once).
// Each heap block stays a small request for glibc's allocator (at most 1000 octets
// on 64-bit, a chunk below 1024): a larger request first merges every small chunk
// freed so far, which for a read that follows the release of a deep tree is that
// whole tree, and the new tree's records then come from the merged chunk instead
// of the per-size lists. A contiguous vector grows past that size at about 100
// levels. A unit's own header says where its contents start and how long they
// are, so the stack holds the units alone.
class UnitStack {
 public:
  UnitStack() = default;
  UnitStack(const UnitStack&) = delete;
  UnitStack& operator=(const UnitStack&) = delete;
  ~UnitStack() {
    // Units left by an exception are owned here, all but the bottom one (the
    // caller's).
    while (!empty()) {
      if (block_ != &first_ || count_ > 1) delete back();
      pop();
    }
    Block* block = first_.above;
    while (block != nullptr) {
      Block* above = block->above;
      delete block;
      block = above;
    }
  }

  bool empty() const { return block_ == &first_ && count_ == 0; }
  CASNTUnit* back() const { return block_->units[count_ - 1]; }

  void push(CASNTUnit* unit) {
    if (count_ == kPerBlock) {
      if (block_->above == nullptr) {
        Block* fresh = new Block;
        fresh->below = block_;
        block_->above = fresh;
      }
      block_ = block_->above;
      count_ = 0;
    }
    block_->units[count_++] = unit;
  }

  // pop drops the top unit; it is the caller's to keep or delete.
  void pop() {
    if (--count_ == 0 && block_ != &first_) {
      block_ = block_->below;
      count_ = kPerBlock;
    }
  }

 private:
  static constexpr unsigned int kSmallRequest = 1000;
  static constexpr unsigned int kPerBlock =
      (kSmallRequest - 2 * sizeof(void*)) / sizeof(CASNTUnit*);
  struct Block {
    Block* below = nullptr;
    Block* above = nullptr;
    CASNTUnit* units[kPerBlock];
  };
  static_assert(sizeof(Block) <= kSmallRequest, "a block is a small request");

  Block first_;
  Block* block_ = &first_;
  unsigned int count_ = 0;  // units on the stack in block_
};

}  // namespace

// Reads `unit` up to its children. Returns true when the unit is finished (with
// `*code` and `*used`), false when its children are to be read next (`*used` is
// then its header's size).
bool UnitTree::StartUnit(CASNTUnit* unit, const unsigned char* data, unsigned int size,
                         int* code, unsigned int* used) {
  DestroyItems(unit);
  int local = kOk;
  const unsigned int h = unit->ReadASNInfo(data, size, &local);
  *used = h;
  if (local != kOk) {
    *code = kErrBadIdentifier;  // whatever the parser said
    return true;
  }
  const ASNT_ASN_STRUCT_INFO& header = Header(*unit);
  const unsigned int length = header.Length;
  const uint64_t total = static_cast<uint64_t>(h) + length;
  if (!header.Constructed) {
    if (header.Class == kUniversal) {
      if (total > size) {
        *code = kErrMalformed;  // the element runs beyond the data
        return true;
      }
      Entry(*unit).Empty();
      Encoded(*unit).Assign(data, static_cast<unsigned int>(total));
    } else if (header.Class == kContextSpecific) {
      // Contents that hold exactly one whole element become the single item.
      auto inner = std::make_unique<CASNTBaseRecord>();
      int innerCode = kOk;
      const unsigned int innerUsed = inner->ReadData(data + h, size - h, &innerCode);
      if (innerCode == kOk && innerUsed == length) {
        Items(*unit).push_back(inner.get());
        inner.release();
      } else {
        if (total > size) {
          *code = kErrMalformed;
          return true;
        }
        Encoded(*unit).Assign(data, static_cast<unsigned int>(total));
      }
    } else {
      *code = kErrMalformed;  // application or private primitive
      return true;
    }
    *code = kOk;
    *used = static_cast<unsigned int>(total);
    return true;
  }
  if (length != kIndefinite) {
    if (length == 0) {
      *code = kOk;
      return true;
    }
  } else if (size <= h) {
    *code = kErrMalformed;  // indefinite with no contents
    return true;
  }
  return false;
}

unsigned int UnitTree::Read(CASNTUnit* root, const unsigned char* data, unsigned int size,
                            int* code) {
  int rc = kOk;
  unsigned int used = 0;
  if (StartUnit(root, data, size, &rc, &used)) {
    *code = rc;
    return used;
  }
  UnitStack stack;
  stack.push(root);
  // The children follow each other in the data: `at` is where the next element
  // starts, `used` what the last one took.
  unsigned int at = used;
  for (;;) {
    auto child = std::make_unique<CASNTUnit>();
    if (!StartUnit(child.get(), data + at, size - at, &rc, &used)) {
      at += used;
      stack.push(child.get());
      child.release();
      continue;
    }
    at += used;
    // The finished child goes to its parent; a parent that finishes with it goes
    // on to its own parent in turn.
    for (;;) {
      CASNTUnit* parent = stack.back();
      bool done = true;
      if (rc == kOk) {
        // A failed child is released and its code passed up unchanged.
        Items(*parent).push_back(child.get());
        child.release();
        // The parent's header was read from this data: its contents start there.
        const ASNT_ASN_STRUCT_INFO& header = Header(*parent);
        if (header.Length != kIndefinite) {
          done = at - static_cast<unsigned int>(header.Contents - data) >= header.Length;
        } else if (at + 2 <= size && data[at] == 0 && data[at + 1] == 0) {
          at += 2;  // the end-of-contents octets are consumed
        } else if (at >= size) {
          rc = kErrMalformed;
        } else {
          done = false;
        }
      }
      if (!done) break;
      stack.pop();
      if (stack.empty()) {
        *code = rc;
        return at;
      }
      child.reset(parent);
    }
  }
}

void UnitTree::LayOut(const CASNTUnit& root, std::vector<UnitNode>* nodes) {
  nodes->clear();
  // A first capacity for small trees, instead of growing from one node; still a
  // small request for the allocator (see UnitStack).
  nodes->reserve(kFirstCapacity / sizeof(UnitNode));
  struct Cursor {
    ItemList::const_iterator it;
    ItemList::const_iterator end;
    unsigned int index;
  };
  const ItemList& rootItems = Items(root);
  nodes->push_back(UnitNode{&root, 0, 1, 0, 0, !rootItems.empty()});
  std::vector<Cursor> stack;
  stack.reserve(kFirstCapacity / sizeof(Cursor));
  stack.push_back(Cursor{rootItems.begin(), rootItems.end(), 0});
  while (!stack.empty()) {
    Cursor& cursor = stack.back();
    if (cursor.it == cursor.end) {
      (*nodes)[cursor.index].end = static_cast<unsigned int>(nodes->size());
      stack.pop_back();
      continue;
    }
    const CASNTBaseRecord* item = *cursor.it;
    ++cursor.it;
    const unsigned int parent = cursor.index;
    const unsigned int index = static_cast<unsigned int>(nodes->size());
    // Items are created by units only, so an item that is a unit with items is a
    // CASNTUnit.
    const bool branch = item->IsUnit();
    nodes->push_back(UnitNode{item, parent, index + 1, 0, 0, branch});
    if (branch) {
      const ItemList& sub = Items(static_cast<const CASNTUnit&>(*item));
      stack.push_back(Cursor{sub.begin(), sub.end(), index});
    }
  }
  // Children follow their parent in pre-order, so one backward pass sizes every
  // subtree before its parent needs it.
  for (size_t i = nodes->size(); i-- > 0;) {
    UnitNode& node = (*nodes)[i];
    if (node.branch) {
      node.size = IdentifierSize(node.record->GetTag()) + SizeOctetsSize(node.contents) +
                  node.contents;
    } else {
      node.size = node.record->GetObjectSize();
    }
    if (i != 0) (*nodes)[node.parent].contents += node.size;
  }
}

unsigned int UnitTree::WriteNodes(const std::vector<UnitNode>& nodes, unsigned char* buffer,
                                  unsigned int size) {
  if (!buffer) return 0;
  unsigned int offset = 0;
  size_t i = 0;
  while (i < nodes.size()) {
    const UnitNode& node = nodes[i];
    if (node.branch) {
      if (size - offset < node.size) {
        i = node.end;  // a unit that does not fit writes nothing
        continue;
      }
      const ASNT_ASN_STRUCT_INFO& header = Header(*node.record);
      offset += PutIdentifier(buffer + offset,
                              static_cast<unsigned char>(header.Class | header.Constructed),
                              header.Tag);
      offset += PutSizeOctets(buffer + offset, node.contents);
      ++i;
      continue;
    }
    int local = kOk;
    offset += node.record->WriteData(buffer + offset, size - offset, &local);
    if (local != kOk && i != 0) {
      // A failed item stops the rest of its parent. Every node reached below the
      // root has its parent written: a unit that does not fit is skipped whole.
      i = nodes[node.parent].end;
      continue;
    }
    ++i;
  }
  return offset;
}

void UnitTree::Copy(const CASNTUnit& from, CASNTUnit* to) {
  if (&from == to) return;
  // Built aside first, so `from` may even lie inside `to`'s own tree.
  CASNTUnit copy;
  struct Pair {
    const CASNTUnit* from;
    CASNTUnit* to;
  };
  auto copyFields = [](const CASNTUnit& source, CASNTUnit* target) {
    Header(*target) = Header(source);  // contents pointer included
    Entry(*target) = Entry(source);
    Encoded(*target) = Encoded(source);
  };
  copyFields(from, &copy);
  std::vector<Pair> work;
  work.push_back(Pair{&from, &copy});
  while (!work.empty()) {
    const Pair pair = work.back();
    work.pop_back();
    ItemList& target = Items(*pair.to);
    for (const CASNTBaseRecord* item : Items(*pair.from)) {
      if (item->IsUnit()) {
        const CASNTUnit& sourceUnit = static_cast<const CASNTUnit&>(*item);
        auto unit = std::make_unique<CASNTUnit>();
        copyFields(sourceUnit, unit.get());
        target.push_back(unit.get());
        work.push_back(Pair{&sourceUnit, unit.release()});
      } else {
        // An empty unit is copied as a plain record on purpose.
        auto record = std::make_unique<CASNTBaseRecord>(*item);
        target.push_back(record.get());
        record.release();
      }
    }
  }
  DestroyItems(to);
  Header(*to) = Header(copy);
  Entry(*to) = std::move(Entry(copy));
  Encoded(*to) = std::move(Encoded(copy));
  Items(*to).splice(Items(*to).end(), Items(copy));
}

void UnitTree::DestroyItems(CASNTUnit* unit) noexcept {
  // Grandchildren are moved up before their parent goes, so no destructor ever
  // recurses into a subtree.
  ItemList pending;
  pending.splice(pending.end(), Items(*unit));
  while (!pending.empty()) {
    CASNTBaseRecord* record = pending.front();
    pending.pop_front();
    if (record->IsUnit()) {
      pending.splice(pending.end(), Items(*static_cast<CASNTUnit*>(record)));
    }
    delete record;
  }
}

}  // namespace detail
}  // namespace keyasn
