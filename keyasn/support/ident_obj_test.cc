#include "keyasn/support/ident_obj.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <vector>

#include "keyasn/support/crypt_bit_blob.h"

namespace {

IdentObj Bytes(std::vector<unsigned char> v) {
  return IdentObj(v.data(), static_cast<unsigned int>(v.size()));
}

// The members are reachable where callers expect them: after the virtual table
// pointer, the 32-bit count, then the pointer to the octets.
static_assert(sizeof(IdentObj) == 24, "vptr, count, data pointer");
static_assert(sizeof(CRUVCryptBitBlob) == 32, "IdentObj then the unused-bit count");

TEST(IdentObj, LayoutCountBeforePointer) {
  IdentObj obj = Bytes({1, 2, 3});
  unsigned int count;
  unsigned char* data;
  std::memcpy(&count, reinterpret_cast<const char*>(&obj) + 8, sizeof count);
  std::memcpy(&data, reinterpret_cast<const char*>(&obj) + 16, sizeof data);
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(data, obj.GetData());
}

TEST(IdentObj, VirtualSlotOrder) {
  // The slots hold GetSize, Alloc, the destructor pair, Realloc, Empty in that order.
  struct Probe : IdentObj {
    unsigned int GetSize() const override { return 1; }
    void Alloc(unsigned int) override {}
    ~Probe() override = default;
    void Realloc(unsigned int) override {}
    void Empty() override {}
  };
  Probe a;
  IdentObj b;
  void* const* va = *reinterpret_cast<void* const* const*>(&a);
  void* const* vb = *reinterpret_cast<void* const* const*>(&b);
  // Slot 0 differs (GetSize overridden); calling through slot 0 of the base table
  // yields the base count.
  using GetSizeFn = unsigned int (*)(const IdentObj*);
  EXPECT_EQ(reinterpret_cast<GetSizeFn>(va[0])(&a), 1u);
  EXPECT_EQ(reinterpret_cast<GetSizeFn>(vb[0])(&b), 0u);
  // Slot 4 is Realloc, slot 5 Empty: call the base ones through the table.
  IdentObj c = Bytes({9, 9});
  using ReallocFn = void (*)(IdentObj*, unsigned int);
  using EmptyFn = void (*)(IdentObj*);
  reinterpret_cast<ReallocFn>(vb[4])(&c, 3);
  EXPECT_EQ(c, Bytes({9, 9, 0}));
  reinterpret_cast<EmptyFn>(vb[5])(&c);
  EXPECT_EQ(c.GetSize(), 0u);
  using AllocFn = void (*)(IdentObj*, unsigned int);
  reinterpret_cast<AllocFn>(vb[1])(&c, 7);
  EXPECT_EQ(c.GetSize(), 7u);
}

TEST(IdentObj, ConstructionAndCopies) {
  IdentObj empty;
  EXPECT_EQ(empty.GetSize(), 0u);
  EXPECT_EQ(empty.GetData(), nullptr);

  IdentObj zeros(nullptr, 4);
  EXPECT_EQ(zeros, Bytes({0, 0, 0, 0}));

  IdentObj a = Bytes({0xDE, 0xAD});
  IdentObj b(a);
  EXPECT_EQ(a, b);
  EXPECT_NE(a.GetData(), b.GetData());  // deep
  b.GetData()[0] = 0;
  EXPECT_NE(a, b);
  b = a;
  EXPECT_EQ(a, b);
  const IdentObj& same = b;
  b = same;  // self-assignment keeps the octets
  EXPECT_EQ(b, Bytes({0xDE, 0xAD}));

  IdentObj moved(std::move(b));
  EXPECT_EQ(moved, a);
  EXPECT_EQ(b.GetSize(), 0u);  // NOLINT: checking the moved-from state
}

TEST(IdentObj, AssignAllocReallocEmpty) {
  IdentObj a = Bytes({1, 2, 3, 4});
  a.Assign(a.GetData() + 1, 2);  // from inside its own buffer
  EXPECT_EQ(a, Bytes({2, 3}));
  a.Assign(nullptr, 3);
  EXPECT_EQ(a, Bytes({0, 0, 0}));
  a.Alloc(5);
  EXPECT_EQ(a.GetSize(), 5u);
  std::memset(a.GetData(), 7, 5);
  a.Realloc(2);
  EXPECT_EQ(a, Bytes({7, 7}));
  a.Realloc(3);
  EXPECT_EQ(a, Bytes({7, 7, 0}));
  a.Empty();
  EXPECT_EQ(a.GetSize(), 0u);
  EXPECT_EQ(a.GetData(), nullptr);
  a.Alloc(0);
  EXPECT_EQ(a.GetSize(), 0u);
}

TEST(IdentObj, Ordering) {
  struct Row {
    const char* name;
    std::vector<unsigned char> a, b;
    bool less, equal;
  };
  const Row rows[] = {
      {"both empty", {}, {}, false, true},
      {"empty first", {}, {0}, true, false},
      {"prefix first", {1, 2}, {1, 2, 0}, true, false},
      {"octet decides", {1, 3}, {1, 2, 9}, false, false},
      {"unsigned octets", {0x01}, {0x80}, true, false},
      {"equal", {5, 6}, {5, 6}, false, true},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.name);
    const IdentObj a = Bytes(r.a), b = Bytes(r.b);
    EXPECT_EQ(a < b, r.less);
    EXPECT_EQ(a == b, r.equal);
    EXPECT_EQ(a != b, !r.equal);
    if (r.equal) { EXPECT_FALSE(b < a); }
    if (r.less) { EXPECT_FALSE(b < a); }
  }
}

TEST(IdentObj, SerialForm) {
  const IdentObj a = Bytes({0xAA, 0xBB, 0xCC});
  EXPECT_EQ(a.GetObjectSize(), 7u);
  unsigned char buf[16] = {};
  EXPECT_EQ(a.WriteData(buf, 6), 0u);  // too small
  EXPECT_EQ(a.WriteData(nullptr, 16), 0u);
  ASSERT_EQ(a.WriteData(buf, sizeof buf), 7u);
  const unsigned char expect[] = {3, 0, 0, 0, 0xAA, 0xBB, 0xCC};
  EXPECT_EQ(std::memcmp(buf, expect, 7), 0);

  IdentObj b = Bytes({1});
  EXPECT_EQ(b.ReadData(buf, 6), 0u);  // count larger than the data
  EXPECT_EQ(b, Bytes({1}));           // nothing read
  EXPECT_EQ(b.ReadData(buf, 3), 0u);
  EXPECT_EQ(b.ReadData(nullptr, 10), 0u);
  EXPECT_EQ(b.ReadData(buf, sizeof buf), 7u);
  EXPECT_EQ(b, a);

  const unsigned char huge[] = {0xFF, 0xFF, 0xFF, 0xFF, 0};
  EXPECT_EQ(b.ReadData(huge, sizeof huge), 0u);
  IdentObj empty;
  ASSERT_EQ(empty.WriteData(buf, 4), 4u);
  EXPECT_EQ(b.ReadData(buf, 4), 4u);
  EXPECT_EQ(b.GetSize(), 0u);
}

TEST(CRUVCryptBitBlob, UnusedBitsAndComparison) {
  const unsigned char bits[] = {0xA0};
  CRUVCryptBitBlob a(bits, 1, 5);
  CRUVCryptBitBlob b;
  EXPECT_EQ(b.GetUnusedBits(), 0u);
  EXPECT_TRUE(a != b);
  b = a;
  EXPECT_FALSE(a != b);
  EXPECT_EQ(b.GetUnusedBits(), 5u);
  b.SetUnusedBits(4);
  EXPECT_TRUE(a != b);
  b.SetUnusedBits(5);
  b.GetData()[0] = 0xA1;
  EXPECT_TRUE(a != b);
}

}  // namespace
