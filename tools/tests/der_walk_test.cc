#include "der_walk.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common.h"
#include "hex_bytes.h"

namespace keyasn {
namespace tool {
namespace {

Tree WalkHex(const std::string& hex, bool encap = true) {
  const Bytes bytes = H(hex);
  // An exactly sized heap copy, so that any over-read is seen by the sanitizer.
  std::vector<unsigned char> copy(bytes);
  WalkOptions options;
  options.open_encapsulated = encap;
  return Walk(copy.data(), copy.size(), options);
}

struct GoodRow {
  const char* name;
  std::string hex;
  // "offset:depth:hl:length:tag" per element, in order.
  std::vector<std::string> elements;
};

std::string Describe(const Element& e) {
  return std::to_string(e.offset) + ":" + std::to_string(e.depth) + ":" +
         std::to_string(e.header_length) + ":" + (e.indefinite ? "i" : "") + std::to_string(e.length) +
         ":" + std::to_string(e.tag_class) + "/" + std::to_string(e.tag) + (e.constructed ? "c" : "p") +
         (e.encapsulated ? "e" : "") + (e.end_of_contents ? "eoc" : "");
}

TEST(WalkTest, WellFormedInputs) {
  const GoodRow rows[] = {
      {"integer", "020105", {"0:0:2:1:0/2p"}},
      {"empty sequence", "3000", {"0:0:2:0:0/16c"}},
      {"nested", "3003020105", {"0:0:2:3:0/16c", "2:1:2:1:0/2p"}},
      {"two top-level elements", "05000500", {"0:0:2:0:0/5p", "2:0:2:0:0/5p"}},
      {"context constructed", "A003020101", {"0:0:2:3:128/0c", "2:1:2:1:0/2p"}},
      {"high tag number 31", "9F1F0141", {"0:0:3:1:128/31p"}},
      {"high tag number 128", "1F8100 00 0000", {"0:0:4:0:0/128p", "4:0:2:0:0/0p"}},
      {"indefinite sequence", "3080020105 0000",
       {"0:0:2:i3:0/16c", "2:1:2:1:0/2p", "5:1:2:0:0/0peoc"}},
      {"nested indefinite", "3080 3080 0000 0000",
       {"0:0:2:i4:0/16c", "2:1:2:i0:0/16c", "4:2:2:0:0/0peoc", "6:1:2:0:0/0peoc"}},
      {"octet string holding DER", "0405 3003020105",
       {"0:0:2:5:0/4p", "2:1:2:3:0/16ce", "4:2:2:1:0/2p"}},
      {"bit string holding DER", "0306 00 3003020105",
       {"0:0:2:6:0/3p", "3:1:2:3:0/16ce", "5:2:2:1:0/2p"}},
      {"bit string with unused bits stays closed", "0306 01 3003020105", {"0:0:2:6:0/3p"}},
      {"octet string of random octets stays closed", "0404 DEADBEEF", {"0:0:2:4:0/4p"}},
      {"octet string holding a lone NULL stays closed", "0402 0500", {"0:0:2:2:0/4p"}},
      {"octet string holding an octet string", "0404 0402ABCD",
       {"0:0:2:4:0/4p", "2:1:2:2:0/4pe"}},
      {"length with leading zero octets", "04850000000001AA", {"0:0:7:1:0/4p"}},
  };
  for (const GoodRow& row : rows) {
    SCOPED_TRACE(row.name);
    if (row.elements.empty()) continue;
    const Tree tree = WalkHex(row.hex);
    ASSERT_FALSE(tree.failed) << tree.error.meaning;
    std::vector<std::string> got;
    for (const Element& e : tree.elements) got.push_back(Describe(e));
    EXPECT_EQ(got, row.elements);
  }
}

TEST(WalkTest, LongFormLengths) {
  for (std::size_t length : {127u, 128u, 255u, 256u, 65535u, 65536u}) {
    SCOPED_TRACE(length);
    Bytes bytes = {0x04};
    if (length < 128) {
      bytes.push_back(static_cast<unsigned char>(length));
    } else if (length < 256) {
      bytes.insert(bytes.end(), {0x81, static_cast<unsigned char>(length)});
    } else if (length < 65536) {
      bytes.insert(bytes.end(), {0x82, static_cast<unsigned char>(length >> 8),
                                 static_cast<unsigned char>(length)});
    } else {
      bytes.insert(bytes.end(), {0x83, static_cast<unsigned char>(length >> 16),
                                 static_cast<unsigned char>(length >> 8),
                                 static_cast<unsigned char>(length)});
    }
    const unsigned int header = static_cast<unsigned int>(bytes.size());
    bytes.resize(bytes.size() + length, 0x5A);
    const Tree tree = Walk(bytes.data(), bytes.size(), WalkOptions());
    ASSERT_FALSE(tree.failed);
    ASSERT_EQ(tree.elements.size(), 1u);
    EXPECT_EQ(tree.elements[0].length, length);
    EXPECT_EQ(tree.elements[0].header_length, header);
  }
}

struct BadRow {
  const char* name;
  std::string hex;
  std::size_t offset;
  int code;
  const char* meaning;  // a part of the meaning
  std::size_t elements_before;
};

TEST(WalkTest, MalformedInputs) {
  const BadRow rows[] = {
      {"one octet", "30", 0, 206, "header truncated (1 octet left)", 0},
      {"contents past the end", "3005020105", 0, 206, "length 5 runs past the end of the data", 2},
      {"truncated inside a truncated element", "3009 3007 020105 0403", 0, 206,
       "length 9 runs past the end of the data (7 octets left)", 3},
      {"primitive past the end", "0405 0102", 0, 206, "length 5 runs past the end of the data", 0},
      {"child past its parent", "3003020205 0000", 2, 206,
       "length 2 runs past the end of the enclosing element (1 octet left)", 1},
      {"truncated long length", "0482 01", 0, 206, "length octets truncated", 0},
      {"nine length octets", "0489 000000000000000001", 0, 206, "bad length octet 0x89", 0},
      {"reserved length octet", "04FF", 0, 206, "bad length octet 0xFF", 0},
      {"length beyond 32 bits", "0485 0100000001 AA", 0, 206, "length does not fit in 32 bits", 0},
      {"high tag number not ending", "1F8181", 0, 205, "high tag number does not end", 0},
      {"tag number beyond 32 bits", "1F9080808000 00", 0, 205, "tag number does not fit in 32 bits", 0},
      {"high tag number without length", "1F81 01", 0, 206, "no length octets", 0},
      {"indefinite without end", "3080 020105", 0, 206, "without end-of-contents octets", 2},
      {"primitive indefinite without end", "0480 4142", 0, 206,
       "primitive element of indefinite length", 0},
      {"second element truncated", "020105 02", 3, 206, "header truncated", 1},
  };
  for (const BadRow& row : rows) {
    SCOPED_TRACE(row.name);
    const Tree tree = WalkHex(row.hex);
    ASSERT_TRUE(tree.failed);
    EXPECT_EQ(tree.error.offset, row.offset);
    EXPECT_EQ(tree.error.code, row.code);
    EXPECT_NE(tree.error.meaning.find(row.meaning), std::string::npos) << tree.error.meaning;
    EXPECT_EQ(tree.elements.size(), row.elements_before);
  }
}

// Nested SEQUENCEs `levels` deep, innermost empty.
Bytes Nested(int levels, bool indefinite) {
  Bytes bytes;
  if (indefinite) {
    for (int i = 0; i < levels; ++i) bytes.insert(bytes.end(), {0x30, 0x80});
    for (int i = 0; i < levels; ++i) bytes.insert(bytes.end(), {0x00, 0x00});
    return bytes;
  }
  bytes = {0x30, 0x00};
  for (int i = 1; i < levels; ++i) {
    // Short-form lengths only while they fit; deeper levels use two length octets.
    Bytes outer = {0x30, 0x82, static_cast<unsigned char>(bytes.size() >> 8),
                   static_cast<unsigned char>(bytes.size())};
    outer.insert(outer.end(), bytes.begin(), bytes.end());
    bytes.swap(outer);
  }
  return bytes;
}

TEST(WalkTest, DepthBound) {
  for (bool indefinite : {false, true}) {
    SCOPED_TRACE(indefinite ? "indefinite" : "definite");
    const Bytes at_bound = Nested(kMaxDepth, indefinite);
    Tree tree = Walk(at_bound.data(), at_bound.size(), WalkOptions());
    EXPECT_FALSE(tree.failed) << tree.error.meaning;
    const Bytes past = Nested(kMaxDepth + 1, indefinite);
    tree = Walk(past.data(), past.size(), WalkOptions());
    ASSERT_TRUE(tree.failed);
    EXPECT_EQ(tree.error.code, 206);
    EXPECT_EQ(tree.error.meaning, "nesting deeper than 100 levels");
    EXPECT_EQ(tree.elements.size(), static_cast<std::size_t>(kMaxDepth));
  }
}

TEST(WalkTest, VeryDeepInputDoesNotExhaustTheStack) {
  const Bytes deep = Nested(200000, true);
  const Tree tree = Walk(deep.data(), deep.size(), WalkOptions());
  EXPECT_TRUE(tree.failed);
}

TEST(WalkTest, EveryPrefixOfAValidEncodingIsSafe) {
  const Bytes full = H(
      "3080 3016 0609 2A864886F70D01010B 0500 0407 3005 0403 0A0B0C"
      " A003 020102 1F8101 00 2480 0402 4142 0000 0000");
  ASSERT_TRUE(IsCompleteEncoding(full.data(), full.size()));
  for (std::size_t size = 0; size < full.size(); ++size) {
    SCOPED_TRACE(size);
    std::vector<unsigned char> prefix(full.begin(), full.begin() + static_cast<long>(size));
    const Tree tree = Walk(prefix.data(), prefix.size(), WalkOptions());
    EXPECT_TRUE(tree.failed || size == 0);
    EXPECT_FALSE(IsCompleteEncoding(prefix.data(), prefix.size()));
  }
}

TEST(WalkTest, CompleteEncoding) {
  EXPECT_TRUE(IsCompleteEncoding(H("3003020105").data(), 5));
  EXPECT_FALSE(IsCompleteEncoding(H("30030201").data(), 4));
  EXPECT_FALSE(IsCompleteEncoding(nullptr, 0));
}

TEST(WalkTest, CodeMeanings) {
  EXPECT_EQ(CodeMeaning(205), "the identifier octets are malformed");
  EXPECT_EQ(CodeMeaning(206), "the data is malformed or truncated");
  EXPECT_EQ(CodeMeaning(134),
            "the data is not the 70-octet binary form of the encryption parameters");
  EXPECT_EQ(CodeMeaning(1000), "unknown error code");
}

}  // namespace
}  // namespace tool
}  // namespace keyasn
