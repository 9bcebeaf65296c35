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

// Every member of a key info present, each with its own buffer: the identifier
// (NULL parameters, so no parameters buffer), [1]..[5], the validity, the key
// bits, [8] and [9].
constexpr long kKeyInfoBuffers = 10;

ASNKeyInfo Full() {
  ASNKeyInfo ki;
  ki.Flags = 0x11;
  ki.Number = 0x012345;
  ki.AlgorithmId.SetObjID(Hex("2A 85 03 07 01 01 01 01"));
  ki.Octets1 = Hex("01 01 01 01");
  ki.Octets2 = Hex("02 02 02 02");
  ki.Octets3 = Hex("03 03");
  ki.Octets4 = Hex("04");
  ki.Octets5 = Hex("05 05 05");
  ki.Validity.SetEncoded(Hex("30 1E 17 0D 32 35 30 31 30 31 30 30 30 30 30 30 5A 17 0D 32 36 30 "
                             "31 30 31 30 30 30 30 30 30 5A"));
  ki.KeyBits = CRUVCryptBitBlob(Hex("A0 B0 C0").GetData(), 3, 4);
  ki.Octets8 = Hex("08");
  ki.Octets9 = Hex("09 09");
  return ki;
}

TEST(ReaderAllocations, KeyInfoAllocatesItsMembersPlusAtMostTwo) {
  const ASNKeyInfo source = Full();
  const IdentObj encoded = source.WriteData(nullptr);
  ASNKeyInfo target;
  int err = 0;
  const long before = g_allocations;
  target.ReadData(encoded.GetData(), encoded.Count(), &err);
  const long used = g_allocations - before;
  EXPECT_EQ(err, 0);
  EXPECT_TRUE(target == source);
  EXPECT_TRUE(target.AlgorithmId == source.AlgorithmId);
  EXPECT_LE(used, kKeyInfoBuffers + 2);
}

TEST(ReaderAllocations, ContainerAllocatesItsMembersPlusAtMostTwo) {
  ASNContainerInfo source;
  source.SetKeyInfo(Full());
  source.SetDefenceKeyInfo(Full());
  source.Optional0 = Hex("30 03 02 01 07");
  source.Optional1 = Hex("11 22 33");
  const IdentObj encoded = source.WriteData(nullptr);
  ASNContainerInfo target;
  int err = 0;
  const long before = g_allocations;
  target.ReadData(encoded.GetData(), encoded.Count(), &err);
  const long used = g_allocations - before;
  EXPECT_EQ(err, 0);
  EXPECT_TRUE(target == source);
  // KeyInfo, DefenceKeyInfo, Optional0 and Optional1.
  EXPECT_LE(used, 4 + 2);
}

}  // namespace
