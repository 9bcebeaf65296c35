#include "keyasn/record/tagged.h"

#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/record/record_test_util.h"
#include "keyasn/record/unit.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::ExpectStatus;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::Octets;
using keyasn::testing::Peek;
using keyasn::testing::Record;
using keyasn::testing::ToHex;


TEST(TaggedLayout, BasesAndFields) {
  // Callers depend on these layouts: the interface first, then the record.
  EXPECT_EQ(sizeof(CASNTBaseRecord), 80u);  // table, header, entry, encoded
  EXPECT_EQ(sizeof(CASNTUnit), 104u);  // + items
  EXPECT_EQ(sizeof(Explicit), 88u);
  EXPECT_EQ(sizeof(Implicit), 120u);  // + flag, origin tag
  Implicit implicit;
  EXPECT_EQ(static_cast<void*>(static_cast<ITaggedType*>(&implicit)),
            static_cast<void*>(&implicit));
  EXPECT_EQ(reinterpret_cast<char*>(static_cast<CASNTBaseRecord*>(&implicit)),
            reinterpret_cast<char*>(&implicit) + 8);
  Explicit explicitTag;
  EXPECT_EQ(static_cast<void*>(static_cast<ITaggedType*>(&explicitTag)),
            static_cast<void*>(&explicitTag));
}

TEST(TaggedConstruction, Defaults) {
  Implicit implicit;
  EXPECT_EQ(implicit.GetClass(), 0x80);
  EXPECT_EQ(implicit.GetTag(), 0u);
  EXPECT_FALSE(implicit.GetIsConstraction());
  int error = 0;
  EXPECT_EQ(implicit.GetTaggedTypeRecord(&error).Count(), 0u);
  EXPECT_EQ(error, keyasn::kErrBadIdentifier);
  Explicit explicitTag;
  EXPECT_EQ(explicitTag.GetClass(), 0x80);
  EXPECT_EQ(explicitTag.GetTag(), 0u);
}

TEST(TaggedConstruction, TagNumberComesBeforeClass) {
  const Implicit implicit(Record("02 01 05"), 3, 0x40);
  EXPECT_EQ(implicit.GetClass(), 0x40);
  EXPECT_EQ(implicit.GetTag(), 3u);
  EXPECT_EQ(ToHex(implicit.GetEncodedRecord(nullptr)), "43 01 05");
  const Explicit explicitTag(Record("02 01 05"), 3, 0xC0);
  EXPECT_EQ(explicitTag.GetClass(), 0xC0);
  EXPECT_EQ(ToHex(explicitTag.WriteData(nullptr)), "E3 03 02 01 05");
}

// ---------------------------------------------------------------------------
// Implicit.

TEST(ImplicitTag, IntegerRoundTrip) {
  Implicit implicit(Record("02 01 05"), 0, 0x80);
  EXPECT_EQ(ToHex(Peek::Encoded(implicit)), "80 01 05");
  EXPECT_EQ(Peek::Entry(implicit).Count(), 0u);
  EXPECT_EQ(implicit.GetEntrySize(), 1u);
  EXPECT_EQ(ToHex(implicit.WriteData(nullptr)), "80 01 05");
  // The tag is not recorded by TagIt.
  int error = 0;
  EXPECT_EQ(implicit.GetTaggedTypeRecord(&error).Count(), 0u);
  EXPECT_EQ(error, keyasn::kErrBadIdentifier);
  EXPECT_NO_THROW(implicit.GetTaggedTypeRecord(nullptr));
  EXPECT_EQ(implicit.GetTaggedTypeRecord(nullptr).Count(), 0u);
  implicit.SetOriginTag(0, 2);
  error = -1;
  EXPECT_EQ(ToHex(implicit.GetTaggedTypeRecord(&error)), "05");
  EXPECT_EQ(error, 0);
  EXPECT_EQ(ToHex(implicit.GetTaggedTypeRecord(nullptr)), "05");
}

TEST(ImplicitTag, ConstructedKeepsItsFlag) {
  Implicit implicit(Record("30 03 02 01 05"), 1, 0x80);
  EXPECT_TRUE(implicit.GetIsConstraction());
  EXPECT_EQ(ToHex(implicit.GetEncodedRecord(nullptr)), "A1 03 02 01 05");
  // The origin tag takes the constructed flag of this record.
  implicit.SetOriginTag(0, 16);
  int error = -1;
  EXPECT_EQ(ToHex(implicit.GetTaggedTypeRecord(&error)), "02 01 05");
  EXPECT_EQ(error, 0);
}

TEST(ImplicitTag, ValueHeldRecordIsEncodedFirst) {
  CASNTBaseRecord value;
  value.SetTag(4);
  value.SetEntry(Hex("41 42"));
  Implicit implicit(value, 31, 0x80);
  EXPECT_EQ(ToHex(implicit.GetEncodedRecord(nullptr)), "9F 1F 02 41 42");
  implicit.SetOriginTag(Hex("04"));
  EXPECT_EQ(ToHex(implicit.GetTaggedTypeRecord(nullptr)), "41 42");
}

TEST(ImplicitTag, HighTagOfTheMember) {
  Implicit implicit(Record("1F 81 00 01 05"), 2, 0x80);
  EXPECT_EQ(ToHex(implicit.GetEncodedRecord(nullptr)), "82 01 05");
}

TEST(ImplicitTag, TagItFailureThrows) {
  // A record with no encoding at all: there are no identifier octets to replace.
  CASNTBaseRecord nothing;
  ExpectStatus([&] { Implicit implicit(nothing, 0, 0x80); }, keyasn::kErrMalformed,
               "Implicit::TagIt");
  Implicit implicit;
  ExpectStatus([&] { implicit.TagIt(nothing); }, keyasn::kErrMalformed, "Implicit::TagIt");
}

TEST(ImplicitTag, ThroughTheInterfaceAndOnItself) {
  Implicit implicit;
  implicit.SetTag(5);
  ITaggedType& tagger = implicit;
  tagger.TagIt(Record("04 01 41"));
  EXPECT_EQ(ToHex(implicit.GetEncodedRecord(nullptr)), "85 01 41");
  implicit.SetTag(6);
  implicit.TagIt(implicit);
  EXPECT_EQ(ToHex(implicit.GetEncodedRecord(nullptr)), "86 01 41");
}

TEST(ImplicitTag, ReadFromData) {
  const Octets bytes = HexBytes("80 01 05");
  Implicit implicit;
  int error = -1;
  EXPECT_EQ(implicit.ReadData(bytes.data(), 3, &error), 3u);
  EXPECT_EQ(error, 0);
  implicit.SetOriginTag(0, 2);
  EXPECT_EQ(ToHex(implicit.GetTaggedTypeRecord(&error)), "05");
  EXPECT_EQ(error, 0);
}

TEST(ImplicitTag, CodesPassedOn) {
  // The decoder's code under the restored tag.
  const Octets bytes = HexBytes("80 03 2A 86 86");
  Implicit implicit;
  ASSERT_EQ(implicit.ReadData(bytes.data(), 5, nullptr), 5u);
  implicit.SetOriginTag(0, 6);
  int error = 0;
  implicit.GetTaggedTypeRecord(&error);
  EXPECT_EQ(error, keyasn::kErrMalformed);
  // The origin tag cannot go back on an encoding that is not there.
  Implicit unencodable;
  unencodable.SetClass(0);
  unencodable.SetTag(27);
  unencodable.SetOriginTag(Hex("02"));
  error = 0;
  EXPECT_EQ(unencodable.GetTaggedTypeRecord(&error).Count(), 0u);
  EXPECT_EQ(error, keyasn::kErrMalformed);
  EXPECT_NO_THROW(unencodable.GetTaggedTypeRecord(nullptr));
}

TEST(ImplicitTag, CopyKeepsTheOriginTag) {
  Implicit implicit(Record("02 01 05"), 0, 0x80);
  implicit.SetOriginTag(0, 2);
  const Implicit copy(implicit);
  EXPECT_EQ(ToHex(copy.GetTaggedTypeRecord(nullptr)), "05");
  EXPECT_EQ(Peek::Header(copy).Contents, Peek::Encoded(copy).GetData() + 2);
}

// ---------------------------------------------------------------------------
// Explicit.

TEST(ExplicitTag, WrapsTheWholeMember) {
  Explicit explicitTag(Record("02 01 05"), 0, 0x80);
  EXPECT_TRUE(explicitTag.GetIsConstraction());
  EXPECT_EQ(explicitTag.GetClass(), 0x80);
  EXPECT_EQ(explicitTag.GetTag(), 0u);
  EXPECT_EQ(ToHex(Peek::Entry(explicitTag)), "02 01 05");
  EXPECT_EQ(Peek::Encoded(explicitTag).Count(), 0u);
  EXPECT_EQ(ToHex(explicitTag.WriteData(nullptr)), "A0 03 02 01 05");
  int error = -1;
  EXPECT_EQ(ToHex(explicitTag.GetTaggedTypeRecord(&error)), "05");
  EXPECT_EQ(error, 0);
}

TEST(ExplicitTag, ReadFromData) {
  const Octets bytes = HexBytes("A0 03 02 01 05");
  Explicit explicitTag;
  int error = -1;
  ASSERT_EQ(explicitTag.ReadData(bytes.data(), 5, &error), 5u);
  EXPECT_EQ(ToHex(explicitTag.GetTaggedTypeRecord(&error)), "05");
  EXPECT_EQ(error, 0);
  // A wrapped element that does not decode reports the decoder's code.
  const Octets oid = HexBytes("A1 05 06 03 2A 86 86");
  Explicit bad;
  ASSERT_EQ(bad.ReadData(oid.data(), 7, nullptr), 7u);
  bad.GetTaggedTypeRecord(&error);
  EXPECT_EQ(error, keyasn::kErrMalformed);
}

TEST(ExplicitTag, ThroughTheInterfaceAndOnItself) {
  Explicit explicitTag;
  explicitTag.SetTag(2);
  ITaggedType& tagger = explicitTag;
  tagger.TagIt(Record("05 00"));
  EXPECT_EQ(ToHex(explicitTag.WriteData(nullptr)), "A2 02 05 00");
  explicitTag.TagIt(explicitTag);
  EXPECT_EQ(ToHex(explicitTag.WriteData(nullptr)), "A2 04 A2 02 05 00");
}

TEST(ExplicitTag, UnitContributesItsBaseEncoding) {
  // Not rebuilt from the items: the base encoding of a freshly read unit is its
  // header over an empty value.
  const Octets bytes = HexBytes("30 80 02 01 05 00 00");
  CASNTUnit unit;
  ASSERT_EQ(unit.ReadData(bytes.data(), 7, nullptr), 7u);
  const Explicit fresh(unit, 0, 0x80);
  EXPECT_EQ(ToHex(fresh.WriteData(nullptr)), "A0 02 30 00");
  // That encoding is now the unit's cache; its writer still rebuilds.
  EXPECT_EQ(ToHex(unit.GetEncodedRecord(nullptr)), "30 00");
  EXPECT_EQ(ToHex(unit.WriteData(nullptr)), "30 03 02 01 05");
  // A unit that cached its own rebuilt encoding contributes that.
  CASNTUnit built;
  ASSERT_EQ(built.ReadData(bytes.data(), 7, nullptr), 7u);
  EXPECT_EQ(ToHex(built.GetEncodedRecord(nullptr)), "30 03 02 01 05");
  const Explicit cached(built, 0, 0x80);
  EXPECT_EQ(ToHex(cached.WriteData(nullptr)), "A0 05 30 03 02 01 05");
  const Implicit implicit(built, 1, 0x80);
  EXPECT_EQ(ToHex(implicit.GetEncodedRecord(nullptr)), "A1 03 02 01 05");
}

}  // namespace
