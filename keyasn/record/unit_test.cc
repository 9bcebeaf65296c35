#include "keyasn/record/unit.h"

#include <cstring>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/record/record_test_util.h"
#include "keyasn/record/tagged.h"
#include "keyasn/record/unit_tree.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::ExpectStatus;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::Octets;
using keyasn::testing::Peek;
using keyasn::testing::PutLength;
using keyasn::testing::Record;
using keyasn::testing::ToHex;

size_t LengthOctets(size_t length) {
  size_t n = 1;
  if (length >= 128) {
    for (size_t v = length; v; v >>= 8) ++n;
  }
  return n;
}

// `depth` SEQUENCEs in definite form, each holding the next; the innermost holds
// a NULL. Built in linear time.
Octets NestedDefinite(size_t depth) {
  std::vector<size_t> sizes(depth + 1);
  sizes[0] = 2;  // 05 00
  for (size_t k = 1; k <= depth; ++k) sizes[k] = 1 + LengthOctets(sizes[k - 1]) + sizes[k - 1];
  Octets out;
  out.reserve(sizes[depth]);
  for (size_t k = depth; k >= 1; --k) {
    out.push_back(0x30);
    PutLength(&out, sizes[k - 1]);
  }
  out.push_back(0x05);
  out.push_back(0x00);
  return out;
}

// `depth` SEQUENCEs in indefinite form: the 30 80 headers, then `pairs` 00 00.
Octets NestedIndefinite(size_t depth, size_t pairs) {
  Octets out;
  out.reserve(2 * (depth + pairs));
  for (size_t i = 0; i < depth; ++i) {
    out.push_back(0x30);
    out.push_back(0x80);
  }
  out.insert(out.end(), 2 * pairs, 0x00);
  return out;
}

// ---------------------------------------------------------------------------
// Reading.

TEST(UnitRead, Rows) {
  struct Row {
    const char* name;
    const char* hex;
    int code;
    unsigned int result;
    std::vector<std::string> items;  // each item's encoding
    const char* encoded;             // the unit's own buffer
  } rows[] = {
      {"empty sequence", "30 00", 0, 2, {}, ""},
      {"two items", "30 06 02 01 05 04 01 41", 0, 8, {"02 01 05", "04 01 41"}, ""},
      {"indefinite", "30 80 02 01 05 00 00", 0, 7, {"02 01 05"}, ""},
      {"indefinite, empty item then end", "30 80 00 00 00 00", 0, 6, {"00 00"}, ""},
      {"primitive", "02 01 05 FF", 0, 3, {}, "02 01 05"},
      {"context primitive holding an element", "80 03 02 01 05", 0, 5, {"02 01 05"}, ""},
      {"context primitive holding octets", "80 02 41 42", 0, 4, {}, "80 02 41 42"},
      {"context primitive, element shorter", "80 04 02 01 05 FF", 0, 6, {}, "80 04 02 01 05 FF"},
      {"context primitive, empty", "80 00 02 01 05", 0, 2, {}, "80 00"},
      {"context constructed", "A0 03 02 01 05", 0, 5, {"02 01 05"}, ""},
      {"application primitive", "41 01 00", keyasn::kErrMalformed, 2, {}, ""},
      {"private primitive", "C1 01 00", keyasn::kErrMalformed, 2, {}, ""},
      {"application constructed", "61 03 02 01 05", 0, 5, {"02 01 05"}, ""},
      {"header failure is 205", "04 89 00", keyasn::kErrBadIdentifier, 0, {}, ""},
      {"one octet", "30", keyasn::kErrBadIdentifier, 0, {}, ""},
      {"indefinite, no contents", "30 80", keyasn::kErrMalformed, 2, {}, ""},
      {"indefinite, no end", "30 80 02 01 05", keyasn::kErrMalformed, 5, {"02 01 05"}, ""},
      {"indefinite, empty item, no end", "30 80 00 00", keyasn::kErrMalformed, 4, {"00 00"}, ""},
      {"indefinite, one octet left", "30 80 02 01 05 00", keyasn::kErrBadIdentifier, 5,
       {"02 01 05"}, ""},
      {"child failure passes up", "30 05 02 01 05 41 00", keyasn::kErrMalformed, 7, {"02 01 05"},
       ""},
      {"children run out", "30 05 02 01 05", keyasn::kErrBadIdentifier, 5, {"02 01 05"}, ""},
      {"primitive beyond the data", "04 05 41", keyasn::kErrMalformed, 2, {}, ""},
      {"declared far beyond", "04 84 FF FF FF FF", keyasn::kErrMalformed, 6, {}, ""},
      {"context primitive beyond the data", "80 05 41", keyasn::kErrMalformed, 2, {}, ""},
      {"child beyond the data", "30 04 04 05 41 42", keyasn::kErrMalformed, 4, {}, ""},
      // The header parser ends a primitive indefinite element before its pair,
      // which then reads as the end of the enclosing element.
      {"primitive indefinite child", "30 80 04 80 41 00 00", 0, 7, {"04 80 41"}, ""},
      // A child may run past the declared end of its parent.
      {"child past the parent's end", "30 01 02 01 05", 0, 5, {"02 01 05"}, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const Octets bytes = HexBytes(row.hex);
    CASNTUnit unit;
    unit.Push_Back(Record("05 00"));  // destroyed by the read
    int error = -1;
    EXPECT_EQ(unit.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size()), &error),
              row.result);
    EXPECT_EQ(error, row.code);
    ASSERT_EQ(unit.GetEntryListSize(), row.items.size());
    for (size_t i = 0; i < row.items.size(); ++i) {
      const CASNTBaseRecord* item = unit.GetItem(static_cast<unsigned int>(i));
      ASSERT_NE(item, nullptr);
      EXPECT_EQ(ToHex(item->GetEncodedRecord(nullptr)), row.items[i]);
    }
    EXPECT_EQ(unit.GetItem(static_cast<unsigned int>(row.items.size())), nullptr);
    EXPECT_EQ(unit.IsUnit(), !row.items.empty());
    EXPECT_EQ(ToHex(Peek::Encoded(unit)), row.encoded);
    if (row.code != 0) {
      CASNTUnit again;
      ExpectStatus(
          [&] { again.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size()), nullptr); },
          row.code, "CASNTUnit::Read");
    }
  }
}

TEST(UnitRead, ItemsAreUnitsOrRecords) {
  const Octets bytes = HexBytes("30 0A 30 03 02 01 05 80 03 02 01 07");
  CASNTUnit unit;
  ASSERT_EQ(unit.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size()), nullptr), 12u);
  ASSERT_EQ(unit.GetEntryListSize(), 2u);
  const auto* inner = dynamic_cast<const CASNTUnit*>(unit.GetItem(0));
  ASSERT_NE(inner, nullptr);
  ASSERT_TRUE(inner->IsUnit());
  // A primitive child is a unit without items holding its encoding.
  const auto* leaf = dynamic_cast<const CASNTUnit*>(inner->GetItem(0));
  ASSERT_NE(leaf, nullptr);
  EXPECT_FALSE(leaf->IsUnit());
  EXPECT_EQ(ToHex(Peek::Encoded(*leaf)), "02 01 05");
  // The element inside a context-specific primitive is a plain record.
  const auto* context = dynamic_cast<const CASNTUnit*>(unit.GetItem(1));
  ASSERT_NE(context, nullptr);
  ASSERT_EQ(context->GetEntryListSize(), 1u);
  EXPECT_EQ(dynamic_cast<const CASNTUnit*>(context->GetItem(0)), nullptr);
  int error = -1;
  EXPECT_EQ(ToHex(context->GetItem(0)->GetRecord(&error)), "07");
  EXPECT_EQ(error, 0);
}

TEST(UnitRead, NullAndEmpty) {
  CASNTUnit unit;
  int error = 0;
  EXPECT_EQ(unit.ReadData(nullptr, 0, &error), 0u);
  EXPECT_EQ(error, keyasn::kErrBadIdentifier);
  ExpectStatus([&] { unit.ReadData(nullptr, 0, nullptr); }, keyasn::kErrBadIdentifier,
               "CASNTUnit::Read");
}

TEST(UnitRead, KeepsBuffersOfAConstructedElement) {
  // Reading does not clear the unit's own buffers.
  CASNTUnit unit;
  unit.SetEntry(Hex("AA"));
  const Octets bytes = HexBytes("30 03 02 01 05");
  ASSERT_EQ(unit.ReadData(bytes.data(), 5, nullptr), 5u);
  EXPECT_EQ(ToHex(Peek::Entry(unit)), "AA");
}

TEST(UnitRead, EveryPrefixFromExactHeapBuffer) {
  for (const char* hex : {"30 80 30 80 02 01 05 00 00 80 03 02 01 07 A1 80 04 02 41 42 00 00 00 00",
                          "30 11 30 03 02 01 05 80 03 02 01 07 A1 05 04 03 41 42 43"}) {
    const Octets whole = HexBytes(hex);
    for (size_t n = 0; n < whole.size(); ++n) {
      SCOPED_TRACE(n);
      Octets prefix(whole.begin(), whole.begin() + n);
      CASNTUnit unit;
      int error = 0;
      const unsigned int used = unit.ReadData(prefix.empty() ? nullptr : prefix.data(),
                                              static_cast<unsigned int>(n), &error);
      EXPECT_NE(error, 0);
      EXPECT_LE(used, n);
      // Whatever was read can be sized and written.
      const unsigned int size = unit.GetObjectSize();
      EXPECT_EQ(unit.WriteData(nullptr).Count(), size);
    }
    CASNTUnit unit;
    int error = -1;
    EXPECT_EQ(unit.ReadData(whole.data(), static_cast<unsigned int>(whole.size()), &error),
              whole.size());
    EXPECT_EQ(error, 0);
  }
}

// ---------------------------------------------------------------------------
// Round trips.

TEST(UnitRoundTrip, DefiniteComesBackTheSame) {
  for (const char* hex : {"30 06 02 01 05 04 01 41", "30 0A 30 03 02 01 05 80 03 02 01 07",
                          "A1 05 30 03 02 01 05", "02 01 05", "80 02 41 42",
                          "30 0A 06 03 2A 03 04 05 00 01 01 FF"}) {
    SCOPED_TRACE(hex);
    const Octets bytes = HexBytes(hex);
    CASNTUnit unit;
    int error = -1;
    ASSERT_EQ(unit.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size()), &error),
              bytes.size());
    ASSERT_EQ(error, 0);
    EXPECT_EQ(unit.GetObjectSize(), bytes.size());
    EXPECT_EQ(ToHex(unit.WriteData(&error)), hex);
    Octets out(bytes.size());
    EXPECT_EQ(unit.WriteData(out.data(), static_cast<unsigned int>(out.size()), nullptr),
              bytes.size());
    EXPECT_EQ(ToHex(out), hex);
  }
}

TEST(UnitRoundTrip, IndefiniteIsRewrittenDefinite) {
  struct Row {
    const char* in;
    const char* out;
  } rows[] = {
      {"30 80 02 01 05 00 00", "30 03 02 01 05"},
      {"30 80 30 80 02 01 05 00 00 04 01 41 00 00", "30 08 30 03 02 01 05 04 01 41"},
      {"A0 80 30 80 05 00 00 00 00 00", "A0 04 30 02 05 00"},
      {"30 80 00 00 00 00", "30 02 00 00"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.in);
    const Octets bytes = HexBytes(row.in);
    CASNTUnit unit;
    ASSERT_EQ(unit.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size()), nullptr),
              bytes.size());
    EXPECT_EQ(ToHex(unit.WriteData(nullptr)), row.out);
    EXPECT_EQ(ToHex(unit.GetEncodedRecord(nullptr)), row.out);
  }
}

// ---------------------------------------------------------------------------
// Writing and sizing.

TEST(UnitWrite, OneOctetShortWritesNothing) {
  const Octets bytes = HexBytes("30 06 02 01 05 04 01 41");
  CASNTUnit unit;
  ASSERT_EQ(unit.ReadData(bytes.data(), 8, nullptr), 8u);
  Octets out(7, 0xEE);
  int error = 12345;
  EXPECT_EQ(unit.WriteData(out.data(), 7, &error), 0u);
  EXPECT_EQ(error, 12345);  // never written
  EXPECT_EQ(ToHex(out), "EE EE EE EE EE EE EE");
  EXPECT_EQ(unit.WriteData(nullptr, 100, &error), 0u);
  EXPECT_NO_THROW(unit.WriteData(out.data(), 7, nullptr));
}

TEST(UnitWrite, WithoutItemsBehavesAsARecord) {
  CASNTUnit unit;
  unit.SetTag(4);
  unit.SetEntry(Hex("41"));
  EXPECT_EQ(unit.GetObjectSize(), 3u);
  unsigned char out[3];
  int error = 12345;
  EXPECT_EQ(unit.WriteData(out, 2, &error), 0u);
  EXPECT_EQ(unit.WriteData(out, 3, &error), 3u);
  EXPECT_EQ(error, 12345);
  EXPECT_EQ(ToHex(out, 3), "04 01 41");
  EXPECT_EQ(unit.WriteData(nullptr, 3, &error), 0u);
  // Nothing held at all: size 0, an empty buffer, no throw.
  CASNTUnit empty;
  EXPECT_EQ(empty.GetObjectSize(), 0u);
  EXPECT_EQ(empty.WriteData(nullptr).Count(), 0u);
  EXPECT_EQ(empty.WriteData(out, 3, nullptr), 0u);
  // Encoding held: its size, whatever the value.
  CASNTUnit held;
  ASSERT_EQ(held.SetEncodedEntry(Hex("02 01 05")), 0);
  EXPECT_EQ(held.GetObjectSize(), 3u);
}

TEST(UnitWrite, HeaderOfTheUnitIsUsed) {
  const Octets bytes = HexBytes("30 80 02 01 05 00 00");
  CASNTUnit unit;
  ASSERT_EQ(unit.ReadData(bytes.data(), 7, nullptr), 7u);
  unit.SetClass(0x80);
  unit.SetTag(200);
  EXPECT_EQ(ToHex(unit.WriteData(nullptr)), "BF 81 48 03 02 01 05");
}

TEST(UnitWrite, ItemThatDoesNotFitStopsItsParent) {
  // An empty unit of type NULL sizes as 0 but writes 05 00: the outer length
  // no longer covers the items, so the last one finds too little room.
  CASNTUnit null;
  null.SetTag(5);
  CASNTUnit parent;
  parent.SetTag(16);
  parent.SetIsConstraction(1);
  parent.Push_Back(null);
  parent.Push_Back(Record("02 01 05"));
  parent.Push_Back(Record("02 01 06"));
  EXPECT_EQ(parent.GetObjectSize(), 8u);
  Octets out(8, 0xEE);
  EXPECT_EQ(parent.WriteData(out.data(), 8, nullptr), 7u);
  EXPECT_EQ(ToHex(out), "30 06 05 00 02 01 05 EE");
}

TEST(UnitWrite, NestedUnitThatDoesNotFitWritesNothing) {
  CASNTUnit null;
  null.SetTag(5);
  const Octets inner = HexBytes("30 03 02 01 05");
  CASNTUnit innerUnit;
  ASSERT_EQ(innerUnit.ReadData(inner.data(), 5, nullptr), 5u);
  CASNTUnit parent;
  parent.SetTag(16);
  parent.SetIsConstraction(1);
  parent.Push_Back(null);
  parent.Push_Back(innerUnit);
  parent.Push_Back(Record("05 00"));
  EXPECT_EQ(parent.GetObjectSize(), 9u);
  // 30 07 | 05 00 | (30 03 02 01 05 needs 5, 5 left: fits) | 05 00 needs 2, 0 left.
  Octets out(9, 0xEE);
  EXPECT_EQ(parent.WriteData(out.data(), 9, nullptr), 9u);
  EXPECT_EQ(ToHex(out), "30 07 05 00 30 03 02 01 05");
  // Two such NULLs leave too little room for the nested unit: it writes
  // nothing, and its parent goes on with the next item.
  CASNTUnit second;
  second.SetTag(16);
  second.SetIsConstraction(1);
  second.Push_Back(null);
  second.Push_Back(null);
  second.Push_Back(innerUnit);
  second.Push_Back(Record("05 00"));
  EXPECT_EQ(second.GetObjectSize(), 9u);
  Octets out2(9, 0xEE);
  EXPECT_EQ(second.WriteData(out2.data(), 9, nullptr), 8u);
  EXPECT_EQ(ToHex(out2), "30 07 05 00 05 00 05 00 EE");
}

TEST(UnitWrite, EmptyConstructedSizesAsNothing) {
  // Read from 30 00: no items and no buffers, so its size is 0, while the
  // buffer writer encodes its header.
  const Octets bytes = HexBytes("30 00");
  CASNTUnit unit;
  ASSERT_EQ(unit.ReadData(bytes.data(), 2, nullptr), 2u);
  EXPECT_EQ(unit.GetObjectSize(), 0u);
  EXPECT_EQ(unit.WriteData(nullptr).Count(), 0u);
  unsigned char out[2];
  EXPECT_EQ(unit.WriteData(out, 2, nullptr), 2u);
  EXPECT_EQ(ToHex(out, 2), "30 00");
}

TEST(UnitWrite, NewBufferKeepsTheSizedLength) {
  CASNTUnit null;
  null.SetTag(5);
  CASNTUnit parent;
  parent.SetTag(16);
  parent.SetIsConstraction(1);
  parent.Push_Back(null);
  parent.Push_Back(Record("02 01 05"));
  // Sized 5, written 4 then a record that finds one octet: the tail stays zero.
  EXPECT_EQ(ToHex(parent.WriteData(nullptr)), "30 03 05 00 00");
}

TEST(UnitWrite, GetEncodedRecordCachesTheWrite) {
  const Octets bytes = HexBytes("30 80 02 01 05 00 00");
  CASNTUnit unit;
  ASSERT_EQ(unit.ReadData(bytes.data(), 7, nullptr), 7u);
  EXPECT_EQ(Peek::Encoded(unit).Count(), 0u);
  EXPECT_EQ(ToHex(unit.GetEncodedRecord(nullptr)), "30 03 02 01 05");
  EXPECT_EQ(ToHex(Peek::Encoded(unit)), "30 03 02 01 05");
  // The cache is returned as it is; the writer does not use it.
  unit.Push_Back(Record("05 00"));
  EXPECT_EQ(ToHex(unit.GetEncodedRecord(nullptr)), "30 03 02 01 05");
  EXPECT_EQ(ToHex(unit.WriteData(nullptr)), "30 05 02 01 05 05 00");
  // Without items the base encodes the value.
  CASNTUnit value;
  value.SetTag(2);
  value.SetEntry(Hex("05"));
  EXPECT_EQ(ToHex(value.GetEncodedRecord(nullptr)), "02 01 05");
}

// ---------------------------------------------------------------------------
// Items, copying, assignment.

TEST(UnitItems, PushAndGet) {
  CASNTUnit unit;
  EXPECT_FALSE(unit.IsUnit());
  EXPECT_EQ(unit.GetItem(0), nullptr);
  unit.Push_Back(Record("02 01 02"));
  unit.Push_Front(Record("02 01 01"));
  unit.Push_Back(Record("02 01 03"));
  EXPECT_TRUE(unit.IsUnit());
  ASSERT_EQ(unit.GetEntryListSize(), 3u);
  EXPECT_EQ(ToHex(unit.GetItem(0)->GetEncodedRecord(nullptr)), "02 01 01");
  EXPECT_EQ(ToHex(unit.GetItem(1)->GetEncodedRecord(nullptr)), "02 01 02");
  EXPECT_EQ(ToHex(unit.GetItem(2)->GetEncodedRecord(nullptr)), "02 01 03");
  EXPECT_EQ(unit.GetItem(3), nullptr);
  EXPECT_EQ(unit.GetItem(0xFFFFFFFFu), nullptr);
  // Items are copies.
  CASNTBaseRecord source = Record("05 00");
  unit.Push_Back(source);
  EXPECT_NE(unit.GetItem(3), &source);
}

TEST(UnitItems, PushUnitKeepsChildrenUnlessPassedAsRecord) {
  const Octets bytes = HexBytes("30 03 02 01 05");
  CASNTUnit child;
  ASSERT_EQ(child.ReadData(bytes.data(), 5, nullptr), 5u);
  CASNTUnit unit;
  unit.Push_Back(child);
  unit.Push_Front(static_cast<const CASNTBaseRecord&>(child));
  ASSERT_EQ(unit.GetEntryListSize(), 2u);
  EXPECT_FALSE(unit.GetItem(0)->IsUnit());
  EXPECT_EQ(dynamic_cast<CASNTUnit*>(unit.GetItem(0)), nullptr);
  EXPECT_TRUE(unit.GetItem(1)->IsUnit());
  // A unit pushed to itself is copied first.
  unit.Push_Back(unit);
  ASSERT_EQ(unit.GetEntryListSize(), 3u);
  EXPECT_EQ(static_cast<CASNTUnit*>(unit.GetItem(2))->GetEntryListSize(), 2u);
}

TEST(UnitCopy, EmptyChildUnitBecomesAPlainRecord) {
  CASNTUnit emptyChild;
  emptyChild.SetTag(5);
  CASNTUnit unit;
  unit.Push_Back(emptyChild);
  ASSERT_NE(dynamic_cast<CASNTUnit*>(unit.GetItem(0)), nullptr);
  CASNTUnit copy(unit);
  ASSERT_EQ(copy.GetEntryListSize(), 1u);
  EXPECT_EQ(dynamic_cast<CASNTUnit*>(copy.GetItem(0)), nullptr);
  EXPECT_EQ(copy.GetItem(0)->GetTag(), 5u);
}

TEST(UnitCopy, DeepCopyOfChildren) {
  const Octets bytes = HexBytes("30 0A 30 03 02 01 05 A1 03 04 01 41");
  CASNTUnit source;
  ASSERT_EQ(source.ReadData(bytes.data(), 12, nullptr), 12u);
  CASNTUnit copy;
  copy.Push_Back(Record("05 00"));
  copy = source;
  ASSERT_EQ(copy.GetEntryListSize(), 2u);
  EXPECT_NE(copy.GetItem(0), source.GetItem(0));
  // The header is copied field for field, the contents pointer included.
  EXPECT_EQ(Peek::Header(copy).Contents, Peek::Header(source).Contents);
  EXPECT_EQ(copy.GetTag(), 16u);
  const Octets written = [&] {
    const IdentObj w = copy.WriteData(nullptr);
    return Octets(w.GetData(), w.GetData() + w.Count());
  }();
  EXPECT_EQ(written, bytes);
  // Changing the source leaves the copy alone.
  source.ReadData(HexBytes("30 00").data(), 2, nullptr);
  EXPECT_EQ(copy.GetEntryListSize(), 2u);
  EXPECT_EQ(ToHex(copy.WriteData(nullptr)), ToHex(bytes));
}

TEST(UnitCopy, SelfAndFromOwnChild) {
  const Octets bytes = HexBytes("30 07 30 05 30 03 02 01 05");
  CASNTUnit unit;
  ASSERT_EQ(unit.ReadData(bytes.data(), 9, nullptr), 9u);
  CASNTUnit& same = unit;
  unit = same;
  EXPECT_EQ(ToHex(unit.WriteData(nullptr)), "30 07 30 05 30 03 02 01 05");
  // Assigning a unit its own child.
  unit = *static_cast<CASNTUnit*>(unit.GetItem(0));
  EXPECT_EQ(ToHex(unit.WriteData(nullptr)), "30 05 30 03 02 01 05");
}

TEST(UnitCopy, BaseAssignmentLeavesItems) {
  const Octets bytes = HexBytes("30 03 02 01 05");
  CASNTUnit unit;
  ASSERT_EQ(unit.ReadData(bytes.data(), 5, nullptr), 5u);
  CASNTBaseRecord& asRecord = unit;
  asRecord = Record("04 01 41");
  EXPECT_EQ(unit.GetEntryListSize(), 1u);
  EXPECT_EQ(unit.GetTag(), 4u);
  EXPECT_EQ(ToHex(Peek::Encoded(unit)), "04 01 41");
}

TEST(UnitCopy, TaggedRecordsAreStoredPlain) {
  Implicit tagged(Record("02 01 05"), 0, 0x80);
  CASNTUnit unit;
  unit.Push_Back(tagged);
  EXPECT_EQ(dynamic_cast<Implicit*>(unit.GetItem(0)), nullptr);
  EXPECT_EQ(ToHex(unit.GetItem(0)->GetEncodedRecord(nullptr)), "80 01 05");
}

// ---------------------------------------------------------------------------
// Deep trees: read, size, write, copy and destroy without recursion.

TEST(UnitDeep, MillionIndefiniteLevels) {
  const size_t levels = 1000000;
  {
    // Never closed.
    const Octets open = NestedIndefinite(levels, 0);
    CASNTUnit unit;
    int error = -1;
    EXPECT_EQ(unit.ReadData(open.data(), static_cast<unsigned int>(open.size()), &error),
              open.size());
    EXPECT_EQ(error, keyasn::kErrMalformed);
    EXPECT_EQ(unit.GetEntryListSize(), 0u);
  }
  {
    // One pair per level: the innermost takes its first pair as an item, so the
    // outermost finds no pair of its own.
    const Octets closed = NestedIndefinite(levels, levels);
    CASNTUnit unit;
    int error = -1;
    EXPECT_EQ(unit.ReadData(closed.data(), static_cast<unsigned int>(closed.size()), &error),
              closed.size());
    EXPECT_EQ(error, keyasn::kErrMalformed);
  }
  {
    const Octets closed = NestedIndefinite(levels, levels + 1);
    CASNTUnit unit;
    int error = -1;
    ASSERT_EQ(unit.ReadData(closed.data(), static_cast<unsigned int>(closed.size()), &error),
              closed.size());
    ASSERT_EQ(error, 0);
    // Rewritten in definite form: levels SEQUENCEs around one 00 00 item.
    std::vector<size_t> sizes(levels + 1);
    sizes[0] = 2;
    for (size_t k = 1; k <= levels; ++k) sizes[k] = 1 + LengthOctets(sizes[k - 1]) + sizes[k - 1];
    EXPECT_EQ(unit.GetObjectSize(), sizes[levels]);
    const IdentObj written = unit.WriteData(nullptr);
    ASSERT_EQ(written.Count(), sizes[levels]);
    EXPECT_EQ(ToHex(written.GetData(), 6), "30 83 4C 0A 6A 30");
    EXPECT_EQ(ToHex(written.GetData() + written.Count() - 4, 4), "30 02 00 00");
    // Reading the definite form back gives the same tree.
    CASNTUnit again;
    EXPECT_EQ(again.ReadData(written.GetData(), written.Count(), &error), written.Count());
    EXPECT_EQ(error, 0);
    EXPECT_EQ(again.GetObjectSize(), written.Count());
    // Copying it.
    CASNTUnit copy(again);
    EXPECT_EQ(copy.GetObjectSize(), written.Count());
  }
}

TEST(UnitDeep, DefiniteLevelsRoundTrip) {
  for (size_t depth : {1u, 100u, 10000u, 300000u}) {
    SCOPED_TRACE(depth);
    const Octets bytes = NestedDefinite(depth);
    CASNTUnit unit;
    int error = -1;
    ASSERT_EQ(unit.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size()), &error),
              bytes.size());
    ASSERT_EQ(error, 0);
    EXPECT_EQ(unit.GetObjectSize(), bytes.size());
    const IdentObj written = unit.WriteData(nullptr);
    EXPECT_TRUE(written.Count() == bytes.size() &&
                std::memcmp(written.GetData(), bytes.data(), bytes.size()) == 0);
    // Cut short anywhere in the headers, the read fails cleanly.
    Octets cut(bytes.begin(), bytes.begin() + bytes.size() / 2);
    CASNTUnit partial;
    partial.ReadData(cut.data(), static_cast<unsigned int>(cut.size()), &error);
    EXPECT_EQ(error, keyasn::kErrBadIdentifier);
  }
}

TEST(UnitDeep, BuiltByPushing) {
  // A chain built by hand (each push copies the whole chain), copied and written.
  CASNTUnit chain;
  ASSERT_EQ(chain.SetEncodedEntry(Hex("05 00")), 0);
  for (int i = 0; i < 1000; ++i) {
    CASNTUnit parent;
    parent.SetTag(16);
    parent.SetIsConstraction(1);
    parent.Push_Back(chain);
    chain = parent;
  }
  const Octets expected = NestedDefinite(1000);
  EXPECT_EQ(chain.GetObjectSize(), expected.size());
  const IdentObj written = chain.WriteData(nullptr);
  ASSERT_EQ(written.Count(), expected.size());
  EXPECT_EQ(std::memcmp(written.GetData(), expected.data(), expected.size()), 0);
}

// Sizing lays the tree out once: every record is visited once, at depth 100 as at
// depth 10,000 (so writing and sizing cost time linear in the tree).
TEST(UnitDeep, LayoutVisitsEachRecordOnce) {
  for (size_t depth : {100u, 10000u}) {
    SCOPED_TRACE(depth);
    const Octets bytes = NestedDefinite(depth);
    CASNTUnit unit;
    ASSERT_EQ(unit.ReadData(bytes.data(), static_cast<unsigned int>(bytes.size()), nullptr),
              bytes.size());
    std::vector<keyasn::detail::UnitNode> nodes;
    keyasn::detail::UnitTree::LayOut(unit, &nodes);
    ASSERT_EQ(nodes.size(), depth + 1);
    EXPECT_EQ(nodes[0].record, &unit);
    EXPECT_EQ(nodes[0].size, bytes.size());
    EXPECT_EQ(nodes[0].end, depth + 1);
    EXPECT_FALSE(nodes[depth].branch);
    EXPECT_EQ(nodes[depth].size, 2u);
    for (size_t i = 1; i <= depth; ++i) EXPECT_EQ(nodes[i].parent, i - 1);
  }
}

}  // namespace
