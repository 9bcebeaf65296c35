// How many buffers the key info and container readers allocate: no more than the
// members they fill own, plus two. This executable of its own replaces the global
// allocation functions with counting ones (malloc/free underneath, still checked by
// the sanitizers), so the other key tests keep the normal allocator.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>

#include "keyasn/keys/container_info.h"
#include "keyasn/keys/key_info.h"
#include "keyasn/support/test_util.h"

namespace {

long g_allocations = 0;

void* Allocate(std::size_t size) {
  ++g_allocations;
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

using keyasn::testing::Hex;
using keyasn::testing::ToHex;

// A key info with every member present, each owning one buffer once read: the
// identifier (NULL parameters: no parameters buffer), [1]..[5], the validity, the
// key bits, [8] and [9].
const char kKeyInfo[] =
    "30 3F 02 01 10 02 01 01 A0 07 30 05 06 01 2A 05 00 A1 04 04 02 11 22 A2 03 04 01 22"
    " A3 03 04 01 33 A4 03 04 01 44 A5 03 04 01 55 A6 02 30 00 A7 06 03 04 04 A0 B0 C0"
    " A8 03 04 01 88 A9 03 04 01 99";
constexpr long kKeyInfoBuffers = 10;

// The allocations `read(data, size, &err)` makes for `encoded`, which it must read
// without a failure.
template <class Read>
long AllocationsOf(const IdentObj& encoded, Read read) {
  int err = 0;
  const long before = g_allocations;
  read(encoded.GetData(), encoded.Count(), &err);
  const long used = g_allocations - before;
  EXPECT_EQ(err, 0);
  return used;
}

TEST(ReaderAllocations, KeyInfoAllocatesItsMembersPlusAtMostTwo) {
  ASNKeyInfo target;
  EXPECT_LE(AllocationsOf(Hex(kKeyInfo),
                          [&](const unsigned char* data, unsigned int size, int* err) {
                            target.ReadData(data, size, err);
                          }),
            kKeyInfoBuffers + 2);
  EXPECT_EQ(ToHex(target.WriteData(nullptr)), ToHex(Hex(kKeyInfo)));
}

TEST(ReaderAllocations, ContainerAllocatesItsMembersPlusAtMostTwo) {
  ASNContainerInfo source;
  source.KeyInfo = Hex(kKeyInfo);
  source.DefenceKeyInfo = Hex(kKeyInfo);
  source.Optional0 = Hex("30 03 02 01 07");
  source.Optional1 = Hex("11 22 33");
  ASNContainerInfo target;
  // KeyInfo, DefenceKeyInfo, Optional0 and Optional1.
  EXPECT_LE(AllocationsOf(source.WriteData(nullptr),
                          [&](const unsigned char* data, unsigned int size, int* err) {
                            target.ReadData(data, size, err);
                          }),
            4 + 2);
  EXPECT_TRUE(target == source);
}

}  // namespace
