// Proves that key material is zero when its octets are released. Octet buffers are
// allocated with the array form of operator new; this executable of its own replaces
// the array forms of new and delete with malloc/free (still checked by the
// sanitizers) and looks at one watched buffer just before it is freed. Kept apart
// from the other key tests so that they run with the normal allocator.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <vector>

#include "keyasn/keys/key_record.h"
#include "keyasn/support/test_util.h"

namespace {

struct Watch {
  const void* buffer = nullptr;
  size_t size = 0;
  int releases = 0;
  bool allZero = false;
};

Watch g_watch;

void Inspect(void* p) {
  if (p == nullptr || p != g_watch.buffer) return;
  const unsigned char* octets = static_cast<const unsigned char*>(p);
  bool zero = true;
  for (size_t i = 0; i < g_watch.size; ++i) zero = zero && octets[i] == 0;
  g_watch.allZero = zero;
  ++g_watch.releases;
  g_watch.buffer = nullptr;
}

void WatchBuffer(const IdentObj& obj) {
  g_watch = Watch{obj.GetData(), obj.Count(), 0, false};
}

}  // namespace

void* operator new[](std::size_t size) {
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}
void operator delete[](void* p) noexcept {
  Inspect(p);
  std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
  Inspect(p);
  std::free(p);
}

namespace {

using keyasn::testing::Hex;
using keyasn::testing::ToHex;

TEST(KeyMaterialWiping, TheWatchSeesOrdinaryBuffersReleasedUnwiped) {
  // The control: a buffer that nobody wipes is seen with its octets.
  {
    IdentObj plain = Hex("AA BB CC");
    WatchBuffer(plain);
  }
  EXPECT_EQ(g_watch.releases, 1);
  EXPECT_FALSE(g_watch.allZero);
}

TEST(KeyMaterialWiping, DestructionZeroesTheKeyBeforeRelease) {
  {
    CASNKeyRecord record;
    record.key = Hex("AA BB CC DD");
    WatchBuffer(record.key);
  }
  EXPECT_EQ(g_watch.releases, 1);
  EXPECT_TRUE(g_watch.allZero);
}

TEST(KeyMaterialWiping, AssignmentZeroesTheOldKeyBeforeRelease) {
  CASNKeyRecord source;
  source.key = Hex("01 02 03");
  CASNKeyRecord record;
  record.key = Hex("AA BB CC DD");
  WatchBuffer(record.key);
  record = source;
  EXPECT_EQ(g_watch.releases, 1);
  EXPECT_TRUE(g_watch.allZero);
  EXPECT_EQ(ToHex(record.key), "01 02 03");
  EXPECT_EQ(ToHex(source.key), "01 02 03");
}

TEST(KeyMaterialWiping, ReadingZeroesTheOldKeyBeforeRelease) {
  const std::vector<unsigned char> bytes = keyasn::testing::HexBytes("05 00 01 00 00 00 7F");
  CASNKeyRecord record;
  record.key = Hex("AA BB CC DD");
  WatchBuffer(record.key);
  EXPECT_EQ(record.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size()), nullptr), 7u);
  EXPECT_EQ(g_watch.releases, 1);
  EXPECT_TRUE(g_watch.allZero);
  EXPECT_EQ(ToHex(record.key), "7F");
}

}  // namespace
