#include "dump.h"

#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "common.h"
#include "dump_stream.h"
#include "hex_bytes.h"

namespace keyasn {
namespace tool {
namespace {

std::string Text(const std::string& hex, bool encap = true, bool full = false) {
  const Bytes der = H(hex);
  WalkOptions options;
  options.open_encapsulated = encap;
  const Tree tree = Walk(der.data(), der.size(), options);
  std::ostringstream out;
  DumpText(tree, der.data(), full, out);
  return out.str();
}

TEST(DumpTest, TypeNames) {
  EXPECT_EQ(TypeName(0x00, 16), "SEQUENCE");
  EXPECT_EQ(TypeName(0x00, 6), "OBJECT IDENTIFIER");
  EXPECT_EQ(TypeName(0x00, 30), "BMPString");
  EXPECT_EQ(TypeName(0x00, 15), "[UNIVERSAL 15]");
  EXPECT_EQ(TypeName(0x00, 31), "[UNIVERSAL 31]");
  EXPECT_EQ(TypeName(0x80, 3), "[3]");
  EXPECT_EQ(TypeName(0x40, 1), "[APPLICATION 1]");
  EXPECT_EQ(TypeName(0xC0, 200), "[PRIVATE 200]");
  EXPECT_STREQ(ClassName(0x00), "universal");
  EXPECT_STREQ(ClassName(0x40), "application");
  EXPECT_STREQ(ClassName(0x80), "context");
  EXPECT_STREQ(ClassName(0xC0), "private");
}

TEST(DumpTest, TextLines) {
  EXPECT_EQ(Text("3012 06062A8503020213 0101FF 1303414243 0500"),
            "     0  2     18 cons SEQUENCE\n"
            "     2  2      6 prim   OBJECT IDENTIFIER 1.2.643.2.2.19 (id-GostR3410-2001)\n"
            "    10  2      1 prim   BOOLEAN TRUE\n"
            "    13  2      3 prim   PrintableString \"ABC\"\n"
            "    18  2      0 prim   NULL\n");
  EXPECT_EQ(Text("3080 0201FF 0000"),
            "     0  2    inf cons SEQUENCE  ! length.indefinite\n"
            "     2  2      1 prim   INTEGER -1\n"
            "     5  2      0 prim   EOC\n");
  EXPECT_EQ(Text("0405 3003020105"),
            "     0  2      5 prim OCTET STRING encapsulates\n"
            "     2  2      3 cons   SEQUENCE\n"
            "     4  2      1 prim     INTEGER 5\n");
  EXPECT_EQ(Text("0405 3003020105", false), "     0  2      5 prim OCTET STRING 3003020105\n");
  EXPECT_EQ(Text("0303 06A040"), "     0  2      3 prim BIT STRING (6 unused bits) A040\n");
  EXPECT_EQ(Text("8603 616263 8702 0102"),
            "     0  2      3 prim [6] \"abc\"\n"
            "     5  2      2 prim [7] 0102\n");
  EXPECT_EQ(Text("170D3234303130313030303030305A"),
            "     0  2     13 prim UTCTime 240101000000Z = 2024-01-01T00:00:00Z\n");
  EXPECT_EQ(Text("0603 2A8686"), "     0  2      3 prim OBJECT IDENTIFIER 2A8686 (malformed OBJECT IDENTIFIER)  ! oid.truncated\n");
  EXPECT_EQ(Text("0102 0000"), "     0  2      2 prim BOOLEAN 0000 (bad BOOLEAN length)  ! boolean.length\n");
}

TEST(DumpTest, FindingsMarkTheirElements) {
  // A non-DER time keeps its own text beside the UTC value.
  EXPECT_EQ(Text("170B 323430313031313230305A"),
            "     0  2     11 prim UTCTime 2401011200Z = 2024-01-01T12:00:00Z  ! utctime.format\n");
  EXPECT_EQ(Text("06042A808648"),
            "     0  2      4 prim OBJECT IDENTIFIER 1.2.840, encoded 2A808648"
            "  ! oid.non-minimal\n");
  EXPECT_EQ(Text("3106 020102 020101"),
            "     0  2      6 cons SET\n"
            "     2  2      1 prim   INTEGER 2\n"
            "     5  2      1 prim   INTEGER 1  ! set.order\n");
  EXPECT_EQ(Text("3080 02810105 0000"),
            "     0  2    inf cons SEQUENCE  ! length.indefinite\n"
            "     2  3      1 prim   INTEGER 5  ! length.non-minimal\n"
            "     6  2      0 prim   EOC\n");
  const Bytes der = H("3106 0201FF 020102");
  const Json json = DumpJson(der.data(), der.size());
  EXPECT_FALSE(json[0].contains("findings"));
  EXPECT_FALSE(json[0]["children"][0].contains("findings"));
  const Json& findings = json[0]["children"][1]["findings"];
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0]["rule"], "set.order");
  EXPECT_EQ(findings[0]["severity"], "error");
  EXPECT_TRUE(findings[0]["message"].is_string());
}

TEST(DumpTest, LongOctetsAreShortenedUnlessFull) {
  const std::string hex = "0411 " + std::string(34, 'A');
  EXPECT_EQ(Text(hex), "     0  2     17 prim OCTET STRING " + std::string(32, 'A') + "... (17 octets)\n");
  EXPECT_EQ(Text(hex, true, true), "     0  2     17 prim OCTET STRING " + std::string(34, 'A') + "\n");
}

TEST(DumpTest, Json) {
  const Bytes der = H("3080 0405 3003020105 0303 00FFFF 0000");
  const Tree tree = Walk(der.data(), der.size(), WalkOptions());
  ASSERT_FALSE(tree.failed);
  const Json j = DumpJson(der.data(), der.size());
  ASSERT_TRUE(j.is_array());
  ASSERT_EQ(j.size(), 1u);
  const Json& seq = j[0];
  EXPECT_EQ(seq["offset"], 0);
  EXPECT_EQ(seq["header_length"], 2);
  EXPECT_TRUE(seq["length"].is_null());
  EXPECT_EQ(seq["class"], "universal");
  EXPECT_EQ(seq["constructed"], true);
  EXPECT_EQ(seq["tag"], 16);
  EXPECT_EQ(seq["type"], "SEQUENCE");
  EXPECT_TRUE(seq["value"].is_null());
  ASSERT_EQ(seq["children"].size(), 3u);
  const Json& octets = seq["children"][0];
  EXPECT_EQ(octets["type"], "OCTET STRING");
  EXPECT_EQ(octets["value"], "3003020105");
  EXPECT_EQ(octets["hex"], "3003020105");
  ASSERT_EQ(octets["children"].size(), 1u);
  EXPECT_EQ(octets["children"][0]["encapsulated"], true);
  EXPECT_EQ(octets["children"][0]["children"][0]["value"], "5");
  EXPECT_FALSE(octets["children"][0]["children"][0].contains("encapsulated"));
  const Json& bits = seq["children"][1];
  EXPECT_EQ(bits["unused_bits"], 0);
  EXPECT_EQ(bits["value"], "FFFF");
  EXPECT_EQ(seq["children"][2]["type"], "EOC");
  // Key order is part of the documented form.
  std::vector<std::string> keys;
  for (auto it = octets.begin(); it != octets.end(); ++it) keys.push_back(it.key());
  EXPECT_EQ(keys, (std::vector<std::string>{"offset", "header_length", "length", "class",
                                            "constructed", "tag", "type", "value", "hex",
                                            "children"}));
}

TEST(DumpTest, JsonNamesKnownIdentifiers) {
  const Bytes der = H("06062A8503020213");
  const Json j = DumpJson(der.data(), der.size());
  EXPECT_EQ(j[0]["value"], "1.2.643.2.2.19");
  EXPECT_EQ(j[0]["name"], "id-GostR3410-2001");
}

TEST(DumpTest, DumpLinesIndentsAndReportsDamage) {
  const Bytes der = H("3003 020105");
  EXPECT_EQ(DumpLines(der.data(), der.size(), "> ", false),
            ">      0  2      3 cons SEQUENCE\n>      2  2      1 prim   INTEGER 5\n");
  const Bytes bad = H("3005 0201");
  EXPECT_EQ(DumpLines(bad.data(), bad.size(), "", false),
            "     0  2      5 cons SEQUENCE\n"
            "(error at offset 0: length 5 runs past the end of the data (2 octets left))\n");
}

}  // namespace
}  // namespace tool
}  // namespace keyasn
