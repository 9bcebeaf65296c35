#include "keyasn/codec/sequence.h"

#include <list>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/record/record_test_util.h"
#include "keyasn/support/file.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::AsHex;
using keyasn::testing::ExpectStatus;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::Octets;
using keyasn::testing::TempFile;
using keyasn::testing::ToHex;


// ---------------------------------------------------------------------------
// Splitting contents.

TEST(GetSequenceContents, Rows) {
  struct Row {
    const char* name;
    const char* hex;
    int code;
    std::vector<std::string> items;
  } rows[] = {
      {"two items", "02 01 05 04 01 41", 0, {"02 01 05", "04 01 41"}},
      // An item with empty contents ends the split; what follows is left out.
      {"empty item ends the split", "02 01 05 04 00 02 01 07", 0, {"02 01 05"}},
      {"empty item first", "05 00 02 01 05", 0, {}},
      {"item beyond the data", "02 05 01", keyasn::kErrMalformed, {}},
      {"later item beyond the data", "02 01 05 02 05 01", keyasn::kErrMalformed, {}},
      {"bad identifier", "02 01 05 1F 81", keyasn::kErrBadIdentifier, {}},
      {"one octet left", "02 01 05 02", keyasn::kErrMalformed, {}},
      {"bad length", "02 01 05 04 89 00", keyasn::kErrMalformed, {}},
      {"indefinite item",
       "30 80 02 01 05 00 00 02 01 07",
       0,
       {"30 80 02 01 05 00 00", "02 01 07"}},
      {"indefinite items nested",
       "30 80 30 80 02 01 05 00 00 00 00 02 01 07",
       0,
       {"30 80 30 80 02 01 05 00 00 00 00", "02 01 07"}},
      {"definite item holding an indefinite one",
       "30 07 30 80 02 01 05 00 00 02 01 07",
       0,
       {"30 07 30 80 02 01 05 00 00", "02 01 07"}},
      {"indefinite item holding a definite one",
       "30 80 30 03 02 01 05 00 00",
       0,
       {"30 80 30 03 02 01 05 00 00"}},
      // Unclosed at the end of the data: the measurement stops there.
      {"indefinite item unclosed", "30 80 02 01 05", 0, {"30 80 02 01 05"}},
      {"indefinite item, half a pair", "30 80 02 01 05 00", keyasn::kErrMalformed, {}},
      {"indefinite item, bad inner identifier", "30 80 02 01 05 1F 81",
       keyasn::kErrBadIdentifier, {}},
      {"open indefinite item", "02 01 05 30 80", keyasn::kErrMalformed, {}},
      // The header parser measures a primitive in the indefinite form up to its
      // pair; the pair then reads as an empty item and ends the split.
      {"primitive indefinite item", "04 80 41 42 00 00 02 01 05", 0, {"04 80 41 42"}},
      // A declared length of 2^32-1 is the indefinite marker.
      {"length 2^32-1", "04 84 FF FF FF FF", 0, {"04 84 FF FF FF FF"}},
      {"length 2^31-1", "04 84 7F FF FF FF", keyasn::kErrMalformed, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const Octets bytes = HexBytes(row.hex);
    std::list<IdentObj> items{Hex("01 01 00")};  // cleared first
    EXPECT_EQ(ASNTGetSequence(items, bytes.data(), static_cast<unsigned int>(bytes.size())),
              row.code);
    EXPECT_EQ(AsHex(items), row.items);
  }
}

TEST(GetSequenceContents, EmptyAndNull) {
  std::list<IdentObj> items{Hex("01 01 00")};
  EXPECT_EQ(ASNTGetSequence(items, nullptr, 0), 0);
  EXPECT_TRUE(items.empty());
  const unsigned char one = 0x30;
  items.push_back(Hex("01 01 00"));
  EXPECT_EQ(ASNTGetSequence(items, &one, 0), 0);
  EXPECT_TRUE(items.empty());
  items.push_back(Hex("01 01 00"));
  EXPECT_EQ(ASNTGetSequence(items, nullptr, 5), keyasn::kErrMalformed);
  EXPECT_TRUE(items.empty());
}

TEST(GetSequenceContents, NeverThrows) {
  const Octets bytes = HexBytes("30 80 02 01 05 1F 81");
  std::list<IdentObj> items;
  EXPECT_NO_THROW(ASNTGetSequence(items, bytes.data(), static_cast<unsigned int>(bytes.size())));
}

TEST(GetSequenceContents, EveryPrefixFromExactHeapBuffer) {
  Octets data = HexBytes("02 01 05 30 80 30 80 04 02 41 42 00 00 00 00 04 81 80");
  data.insert(data.end(), 128, 0x41);
  for (size_t n = 0; n <= data.size(); ++n) {
    SCOPED_TRACE(n);
    Octets prefix(data.begin(), data.begin() + n);
    std::list<IdentObj> items;
    const int code =
        ASNTGetSequence(items, prefix.empty() ? nullptr : prefix.data(), static_cast<unsigned int>(n));
    if (code != 0) {
      EXPECT_TRUE(items.empty());
    }
  }
  std::list<IdentObj> items;
  ASSERT_EQ(ASNTGetSequence(items, data.data(), static_cast<unsigned int>(data.size())), 0);
  ASSERT_EQ(items.size(), 3u);
  EXPECT_EQ(ToHex(items.front()), "02 01 05");
  EXPECT_EQ(items.back().Count(), 131u);
}

// ---------------------------------------------------------------------------
// Splitting a whole element.

TEST(GetSequenceElement, Rows) {
  struct Row {
    const char* name;
    const char* hex;
    int code;
    unsigned int result;
    std::vector<std::string> items;
    const char* where;
  } rows[] = {
      {"definite", "30 06 02 01 05 04 01 41", 0, 8, {"02 01 05", "04 01 41"}, ""},
      {"trailing octets", "30 03 02 01 05 FF", 0, 5, {"02 01 05"}, ""},
      {"indefinite", "30 80 02 01 05 00 00", 0, 7, {"02 01 05"}, ""},
      {"empty definite", "30 00", 0, 2, {}, ""},
      {"empty indefinite", "30 80 00 00", 0, 4, {}, ""},
      {"set", "31 02 05 00 FF", 0, 4, {"05 00"}, ""},
      // The empty item does not end this split.
      {"empty item inside", "30 05 05 00 02 01 05", 0, 7, {"05 00", "02 01 05"}, ""},
      {"nested indefinite item",
       "30 80 30 80 02 01 05 00 00 02 01 07 00 00",
       0,
       14,
       {"30 80 02 01 05 00 00", "02 01 07"},
       ""},
      {"definite holding indefinite",
       "30 0A 30 80 02 01 05 00 00 02 01 07",
       0,
       12,
       {"30 80 02 01 05 00 00", "02 01 07"},
       ""},
      {"indefinite holding nested indefinite",
       "30 80 30 80 30 80 05 00 00 00 00 00 00 00",
       0,
       14,
       {"30 80 30 80 05 00 00 00 00 00"},
       ""},
      // An item may run past the outer end as long as the data holds it.
      {"item past the outer end", "30 03 02 05 01 02 03 04 05", 0, 9, {"02 05 01 02 03 04 05"}, ""},
      {"not constructed", "04 01 00", keyasn::kErrBadIdentifier, 2, {}, "ASNTGetSequence"},
      {"outer header bad", "30", keyasn::kErrMalformed, 0, {}, "CASNTBaseRecord::ReadASNInfo"},
      {"outer identifier bad", "3F 81 81", keyasn::kErrBadIdentifier, 0, {},
       "CASNTBaseRecord::ReadASNInfo"},
      {"open indefinite, nothing behind", "30 80", keyasn::kErrMalformed, 2, {},
       "CASNTBaseRecord::ReadASNInfo"},
      {"outer beyond the data", "30 05 02 01 05", keyasn::kErrMalformed, 5, {"02 01 05"},
       "CASNTBaseRecord::ReadASNInfo"},
      {"item beyond the data", "30 05 02 05 01", keyasn::kErrMalformed, 2, {}, "ASNTGetSequence"},
      {"item declared far beyond", "30 06 04 84 7F FF FF FF", keyasn::kErrMalformed, 2, {},
       "ASNTGetSequence"},
      {"missing end of contents", "30 80 02 01 05", keyasn::kErrMalformed, 5, {"02 01 05"},
       "ASNTGetSequence"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const Octets bytes = HexBytes(row.hex);
    std::list<IdentObj> items;
    int error = -1;
    EXPECT_EQ(ASNTGetSequence(items, bytes.data(), static_cast<unsigned int>(bytes.size()), &error),
              row.result);
    EXPECT_EQ(error, row.code);
    EXPECT_EQ(AsHex(items), row.items);
    if (row.code != 0) {
      std::list<IdentObj> again;
      ExpectStatus(
          [&] {
            ASNTGetSequence(again, bytes.data(), static_cast<unsigned int>(bytes.size()), nullptr);
          },
          row.code, row.where);
    }
  }
}

TEST(GetSequenceElement, WrongEndOfContents) {
  // 30 80 02 01 05 00 01: measured up to the 00 that looks like an end; the item
  // behind it (00 01 ...) is then cut by the data.
  const Octets bytes = HexBytes("30 80 02 01 05 00 01");
  std::list<IdentObj> items;
  int error = -1;
  const unsigned int result =
      ASNTGetSequence(items, bytes.data(), static_cast<unsigned int>(bytes.size()), &error);
  EXPECT_EQ(error, keyasn::kErrMalformed);
  EXPECT_EQ(result, 5u);
  EXPECT_EQ(AsHex(items), (std::vector<std::string>{"02 01 05"}));
}

TEST(GetSequenceElement, AppendsWithoutClearing) {
  const Octets bytes = HexBytes("30 03 02 01 05");
  std::list<IdentObj> items{Hex("01 01 00")};
  int error = -1;
  EXPECT_EQ(ASNTGetSequence(items, bytes.data(), 5, &error), 5u);
  EXPECT_EQ(AsHex(items), (std::vector<std::string>{"01 01 00", "02 01 05"}));
  // Failures keep what was appended before them.
  const Octets bad = HexBytes("30 06 02 01 05 02 05 01");
  EXPECT_EQ(ASNTGetSequence(items, bad.data(), static_cast<unsigned int>(bad.size()), &error), 5u);
  EXPECT_EQ(error, keyasn::kErrMalformed);
  EXPECT_EQ(items.size(), 3u);
}

TEST(GetSequenceElement, NullData) {
  std::list<IdentObj> items;
  int error = 0;
  EXPECT_EQ(ASNTGetSequence(items, nullptr, 0, &error), 0u);
  EXPECT_EQ(error, keyasn::kErrMalformed);
}

TEST(GetSequenceElement, ItemSizesAgreeWithTheContentsSplitter) {
  // The same items, split from the contents and from the whole element, in
  // definite and indefinite outer forms.
  const std::string inner =
      "30 80 31 80 02 01 05 00 00 04 01 41 00 00 30 80 30 80 30 80 05 00 00 00 00 00 00 00 02 01 07";
  std::list<IdentObj> fromContents;
  const Octets contents = HexBytes(inner);
  ASSERT_EQ(ASNTGetSequence(fromContents, contents.data(), static_cast<unsigned int>(contents.size())),
            0);
  ASSERT_EQ(fromContents.size(), 3u);
  Octets definite = HexBytes("30");
  definite.push_back(static_cast<unsigned char>(contents.size()));
  definite.insert(definite.end(), contents.begin(), contents.end());
  Octets indefinite = HexBytes("30 80");
  indefinite.insert(indefinite.end(), contents.begin(), contents.end());
  indefinite.push_back(0);
  indefinite.push_back(0);
  for (const Octets* element : {&definite, &indefinite}) {
    std::list<IdentObj> items;
    int error = -1;
    EXPECT_EQ(ASNTGetSequence(items, element->data(), static_cast<unsigned int>(element->size()),
                              &error),
              element->size());
    EXPECT_EQ(error, 0);
    EXPECT_EQ(AsHex(items), AsHex(fromContents));
  }
}

TEST(GetSequenceElement, EveryPrefixFromExactHeapBuffer) {
  for (const char* hex : {"30 80 30 80 02 01 05 00 00 04 02 41 42 00 00",
                          "30 0C 30 80 02 01 05 00 00 04 03 41 42 43"}) {
    const Octets whole = HexBytes(hex);
    for (size_t n = 0; n < whole.size(); ++n) {
      SCOPED_TRACE(n);
      Octets prefix(whole.begin(), whole.begin() + n);
      std::list<IdentObj> items;
      int error = 0;
      const unsigned int result = ASNTGetSequence(
          items, prefix.empty() ? nullptr : prefix.data(), static_cast<unsigned int>(n), &error);
      EXPECT_NE(error, 0);
      EXPECT_LE(result, n);
    }
    std::list<IdentObj> items;
    int error = -1;
    EXPECT_EQ(ASNTGetSequence(items, whole.data(), static_cast<unsigned int>(whole.size()), &error),
              whole.size());
    EXPECT_EQ(error, 0);
    EXPECT_EQ(items.size(), 2u);
  }
}

TEST(GetSequenceElement, DeepNestingFinishes) {
  const size_t levels = 1000000;
  Octets open;
  for (size_t i = 0; i < levels; ++i) {
    open.push_back(0x30);
    open.push_back(0x80);
  }
  std::list<IdentObj> items;
  int error = -1;
  ASNTGetSequence(items, open.data(), static_cast<unsigned int>(open.size()), &error);
  EXPECT_EQ(error, keyasn::kErrMalformed);
  // Closed, with a NULL innermost: one item, the whole second level.
  Octets closed(open);
  closed.push_back(0x05);
  closed.push_back(0x00);
  closed.insert(closed.end(), levels * 2, 0x00);
  items.clear();
  EXPECT_EQ(ASNTGetSequence(items, closed.data(), static_cast<unsigned int>(closed.size()), &error),
            closed.size());
  EXPECT_EQ(error, 0);
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items.front().Count(), closed.size() - 4);
}

// ---------------------------------------------------------------------------
// Splitting an element in a file.

TEST(GetSequenceFile, Rows) {
  struct Row {
    const char* name;
    const char* hex;
    unsigned int start;
    int code;
    unsigned int result;
    std::vector<std::string> items;
    const char* where;  // "" for the file's name
  } rows[] = {
      {"definite", "30 06 02 01 05 04 01 41", 0, 0, 8, {"02 01 05", "04 01 41"}, nullptr},
      {"later position", "FF 30 03 02 01 05 FF", 1, 0, 5, {"02 01 05"}, nullptr},
      {"indefinite", "30 80 02 01 05 00 00", 0, 0, 7, {"02 01 05"}, nullptr},
      {"empty", "30 00", 0, 0, 2, {}, nullptr},
      {"not constructed", "04 01 41", 0, keyasn::kErrBadIdentifier, 2, {"01 01 00"},
       "ASNTGetSequence"},
      {"empty file", "", 0, keyasn::kErrMalformed, 0, {"01 01 00"}, "ASNTGetSequence"},
      {"at end of file", "30 00", 2, keyasn::kErrMalformed, 0, {"01 01 00"}, "ASNTGetSequence"},
      {"contents short", "30 05 02 01 05", 0, keyasn::kErrShortRead, 5, {"01 01 00"},
       "ASNTGetSequence"},
      {"declared far beyond", "30 84 7F FF FF FF 02 01 05", 0, keyasn::kErrShortRead, 9,
       {"01 01 00"}, "ASNTGetSequence"},
      {"contents split fails", "30 03 02 05 01", 0, keyasn::kErrMalformed, 5, {},
       "ASNTGetSequence"},
      {"indefinite unclosed", "30 80 02 01 05", 0, keyasn::kErrMalformed, 2, {"01 01 00"}, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TempFile temp(HexBytes(row.hex));
    CRUVFile file(temp.path(), "rb");
    ASSERT_TRUE(file.Seek(row.start, 0));
    std::list<IdentObj> items{Hex("01 01 00")};
    int error = -1;
    EXPECT_EQ(ASNTGetSequence(items, file, &error), row.result);
    EXPECT_EQ(error, row.code);
    EXPECT_EQ(AsHex(items), row.items);
    if (row.code != 0) {
      ASSERT_TRUE(file.Seek(row.start, 0));
      const std::string where = row.where && *row.where ? row.where : temp.path();
      ExpectStatus([&] { ASNTGetSequence(items, file, nullptr); }, row.code, where);
    }
  }
}

// ---------------------------------------------------------------------------
// Joining.

TEST(PutSequence, Items) {
  const std::list<IdentObj> items{Hex("02 01 05"), Hex("05 00")};
  int error = -1;
  EXPECT_EQ(ToHex(ASNTPutSequence(items, 16, &error)), "30 05 02 01 05 05 00");
  EXPECT_EQ(error, 0);
  // SET items are not reordered.
  const std::list<IdentObj> set{Hex("05 00"), Hex("02 01 05")};
  EXPECT_EQ(ToHex(ASNTPutSequence(set, 17, &error)), "31 05 05 00 02 01 05");
  EXPECT_EQ(ToHex(ASNTPutSequence(std::list<IdentObj>{}, 16, &error)), "30 00");
  error = -1;
  EXPECT_EQ(ASNTPutSequence(items, 4, &error).Count(), 0u);
  EXPECT_EQ(error, keyasn::kErrNotSequenceTag);
  ExpectStatus([&] { ASNTPutSequence(items, 4, nullptr); }, keyasn::kErrNotSequenceTag,
               "ASNTPutSequence");
  EXPECT_NO_THROW(ASNTPutSequence(items, 16, nullptr));
}

TEST(PutSequence, LongItems) {
  Octets big = HexBytes("04 81 C8");
  big.insert(big.end(), 200, 0x41);
  const std::list<IdentObj> items{IdentObj(big.data(), static_cast<unsigned int>(big.size())),
                                  Hex("05 00")};
  const IdentObj joined = ASNTPutSequence(items, 16, nullptr);
  ASSERT_EQ(joined.Count(), 3u + 205u);
  EXPECT_EQ(ToHex(joined.GetData(), 7), "30 81 CD 04 81 C8 41");
  // Joined items split back into the same items.
  std::list<IdentObj> back;
  int error = -1;
  EXPECT_EQ(ASNTGetSequence(back, joined.GetData(), joined.Count(), &error), joined.Count());
  EXPECT_EQ(AsHex(back), AsHex(items));
}

TEST(PutSequence, Sizes) {
  int error = -1;
  EXPECT_EQ(ToHex(ASNTPutSequence(std::list<unsigned int>{100, 200}, 16, &error)), "30 82 01 2C");
  EXPECT_EQ(error, 0);
  EXPECT_EQ(ToHex(ASNTPutSequence(std::list<unsigned int>{3}, 17, &error)), "31 03");
  EXPECT_EQ(ToHex(ASNTPutSequence(std::list<unsigned int>{}, 16, &error)), "30 00");
  error = -1;
  EXPECT_EQ(ASNTPutSequence(std::list<unsigned int>{1}, 18, &error).Count(), 0u);
  EXPECT_EQ(error, keyasn::kErrNotSequenceTag);
  ExpectStatus([&] { ASNTPutSequence(std::list<unsigned int>{1}, 0, nullptr); },
               keyasn::kErrNotSequenceTag, "ASNTPutSequence");
  // Sizes whose sum does not fit the 32-bit length are refused.
  error = -1;
  EXPECT_EQ(ASNTPutSequence(std::list<unsigned int>{0xFFFFFFFFu, 2}, 16, &error).Count(), 0u);
  EXPECT_EQ(error, keyasn::kErrMalformed);
  ExpectStatus([&] { ASNTPutSequence(std::list<unsigned int>{0xFFFFFFFFu, 2}, 16, nullptr); },
               keyasn::kErrMalformed, "ASNTPutSequence");
}

}  // namespace
