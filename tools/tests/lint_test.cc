// Every lint rule on a minimal input that breaks it (exactly that finding, at
// the right offset) beside a DER input that differs as little as possible and
// gives no finding at all.
#include "lint.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "common.h"
#include "hex_bytes.h"
#include "lint_rules.h"

namespace keyasn {
namespace tool {
namespace {

LintResult LintHex(const std::string& hex) {
  const Bytes der = H(hex);
  return Lint(Walk(der.data(), der.size(), WalkOptions()), der.data());
}

struct Case {
  const char* rule;
  const char* bad;      // breaks `rule` once
  std::size_t offset;   // where
  const char* good;     // DER, as close to `bad` as possible
};

const Case kCases[] = {
    {"tag.long-form-low", "1F0201FF", 0, "0201FF"},
    {"tag.long-form-low", "BF1E00", 0, "BE00"},
    {"tag.non-minimal", "9F801F0100", 0, "9F1F0100"},
    {"length.indefinite", "3080 020105 0000", 0, "3003 020105"},
    {"length.indefinite", "3006 3080 0000 0500", 2, "3004 3000 0500"},
    {"length.non-minimal", "04810100", 0, "040100"},
    {"length.non-minimal", "0482000100", 0, "040100"},
    {"length.non-minimal", "3081 03 020105", 0, "3003 020105"},
    {"boolean.length", "0100", 0, "010100"},
    {"boolean.length", "01020000", 0, "010100"},
    {"boolean.value", "010101", 0, "0101FF"},
    {"integer.empty", "0200", 0, "020100"},
    {"integer.empty", "0A00", 0, "0A0100"},
    {"integer.non-minimal", "0202007F", 0, "02017F"},
    {"integer.non-minimal", "0202FF80", 0, "020180"},
    {"bitstring.empty", "0300", 0, "030100"},
    {"bitstring.unused-range", "03020880", 0, "03020780"},
    {"bitstring.unused-range", "030101", 0, "030100"},
    {"bitstring.unused-nonzero", "03020781", 0, "03020780"},
    {"bitstring.trailing-zero", "03020680", 0, "03020780"},
    {"bitstring.trailing-zero", "0303070600", 0, "03020106"},
    {"null.length", "050100", 0, "0500"},
    {"oid.empty", "0600", 0, "060100"},
    {"oid.non-minimal", "06042A808648", 0, "06032A8648"},
    {"oid.non-minimal", "0603802A06", 0, "06022A06"},
    {"oid.truncated", "06022A86", 0, "06022A06"},
    {"constructed.primitive-type", "2403 040100", 0, "0403 040100"},
    {"constructed.primitive-type", "2C03 0C0141", 0, "0C03 414141"},
    {"utctime.format", "170B 323430313031313230305A", 0, "170D 3234303130313132303030305A"},
    {"utctime.format", "1711 3234303130313132303030302B30313030", 0,
     "170D 3234303130313132303030305A"},
    {"utctime.format", "170D 3234313333313132303030305A", 0, "170D 3234313233313132303030305A"},
    {"generalizedtime.format", "180D 3230323430313031313230305A", 0,
     "180F 32303234303130313132303030305A"},
    {"generalizedtime.format", "1812 32303234303130313132303030302E35305A", 0,
     "1811 32303234303130313132303030302E355A"},
    {"generalizedtime.format", "180E 3230323430313031313230303030", 0,
     "180F 32303234303130313132303030305A"},
    {"generalizedtime.format", "180F 32303233303232393132303030305A", 0,
     "180F 32303234303232393132303030305A"},
    {"string.printable", "1303 412A43", 0, "1303 414243"},
    {"string.ia5", "1602 4180", 0, "1602 4141"},
    {"string.numeric", "1202 3141", 0, "1202 3132"},
    {"string.visible", "1A02 410A", 0, "1A02 4142"},
    {"string.utf8", "0C02 C0AF", 0, "0C02 C3A9"},
    {"string.utf8", "0C03 EDA080", 0, "0C03 E282AC"},
    {"string.utf8", "0C01 C3", 0, "0C01 43"},
    {"string.bmp", "1E03 004100", 0, "1E02 0041"},
    {"string.bmp", "1E02 D800", 0, "1E04 D800DC00"},
    {"string.universal", "1C03 000041", 0, "1C04 00000041"},
    {"string.universal", "1C04 00110000", 0, "1C04 0010FFFF"},
    {"set.order", "3106 020102 020101", 5, "3106 020101 020102"},
    {"set.order", "3104 8100 0500", 4, "3104 0500 8100"},
    {"eoc.misplaced", "3002 0000", 2, "3002 0500"},
    {"eoc.misplaced", "3003020105 0000", 5, "3003020105"},
    {"data.trailing", "3003020105 0A", 5, "3003020105"},
    {"data.trailing", "3003020105 3005", 5, "3003020105"},
    // Faults nested in a SET inside an encapsulated OCTET STRING are reported
    // at their own offset.
    {"set.order", "300B 0409 3107 02020080 0201FF", 10, "300B 0409 3107 0201FF 02020080"},
    {"integer.non-minimal", "300B 0409 3107 020101 02020005", 9, "300A 0408 3106 020101 020105"},
    {"length.non-minimal", "3008 0406 3104 02810101", 6, "3007 0405 3103 020101"},
};

TEST(LintTest, EveryRuleOnceAndItsDerNeighbour) {
  std::set<std::string> rules;
  for (const Case& c : kCases) {
    SCOPED_TRACE(std::string(c.rule) + " on " + c.bad);
    rules.insert(c.rule);
    const LintResult bad = LintHex(c.bad);
    EXPECT_FALSE(bad.malformed);
    ASSERT_EQ(bad.findings.size(), 1u) << bad.findings[0].rule << ": " << bad.findings[0].message;
    EXPECT_STREQ(bad.findings[0].rule, c.rule) << bad.findings[0].message;
    EXPECT_EQ(bad.findings[0].offset, c.offset) << bad.findings[0].message;
    const LintResult good = LintHex(c.good);
    EXPECT_FALSE(good.malformed) << c.good;
    for (const Finding& f : good.findings) ADD_FAILURE() << c.good << ": " << f.rule << " " << f.message;
  }
  const std::set<std::string> all = {
      "tag.long-form-low", "tag.non-minimal", "length.indefinite", "length.non-minimal",
      "boolean.length", "boolean.value", "integer.empty", "integer.non-minimal",
      "bitstring.empty", "bitstring.unused-range", "bitstring.unused-nonzero",
      "bitstring.trailing-zero", "null.length", "oid.empty", "oid.non-minimal", "oid.truncated",
      "constructed.primitive-type", "utctime.format", "generalizedtime.format",
      "string.printable", "string.ia5", "string.numeric", "string.visible", "string.utf8",
      "string.bmp", "string.universal", "set.order", "eoc.misplaced", "data.trailing"};
  EXPECT_EQ(rules, all);
}

TEST(LintTest, SeverityAndMessages) {
  const LintResult bits = LintHex("03020680");
  ASSERT_EQ(bits.findings.size(), 1u);
  EXPECT_EQ(bits.findings[0].severity, Severity::kNote);
  const LintResult length = LintHex("0482000100");
  ASSERT_EQ(length.findings.size(), 1u);
  EXPECT_EQ(length.findings[0].severity, Severity::kError);
  EXPECT_EQ(length.findings[0].message, "length 1 written as 82 00 01; DER writes 01");
  EXPECT_EQ(LintHex("3003020105 0A0B").findings[0].message,
            "2 octets after the last element do not form elements (0A 0B)");
  EXPECT_EQ(LintHex("1303 412A43").findings[0].message,
            "2A at contents octet 1 ('*') is not a PrintableString character");
  EXPECT_EQ(LintHex("170B 323430313031313230305A").findings[0].message,
            "UTCTime \"2401011200Z\": seconds missing (DER: YYMMDDHHMMSSZ)");
}

TEST(LintTest, FindingsInInputOrderAndSeveralPerElement) {
  // A non-minimal length and a non-minimal value on one INTEGER, then an
  // indefinite SEQUENCE around both.
  const LintResult result = LintHex("3080 028102007F 0101 01 0000");
  ASSERT_EQ(result.findings.size(), 4u);
  EXPECT_STREQ(result.findings[0].rule, "length.indefinite");
  EXPECT_STREQ(result.findings[1].rule, "length.non-minimal");
  EXPECT_STREQ(result.findings[2].rule, "integer.non-minimal");
  EXPECT_EQ(result.findings[2].offset, 2u);
  EXPECT_STREQ(result.findings[3].rule, "boolean.value");
  EXPECT_EQ(result.findings[3].offset, 7u);
}

TEST(LintTest, MalformedKeepsTheFindingsBeforeTheDamage) {
  const LintResult result = LintHex("3007 010101 02050000");
  EXPECT_TRUE(result.malformed);
  ASSERT_EQ(result.findings.size(), 1u);
  EXPECT_STREQ(result.findings[0].rule, "boolean.value");
  EXPECT_TRUE(LintHex("3005").malformed);
  // An indefinite element never closed is damage, not trailing data.
  EXPECT_TRUE(LintHex("3080 3080 0500").malformed);
  EXPECT_FALSE(LintHex("3080 0000 3080 0500").malformed);
}

TEST(LintTest, FindingsOfElements) {
  const Bytes der = H("3106 020102 020101");
  const Tree tree = Walk(der.data(), der.size(), WalkOptions());
  const LintResult result = Lint(tree, der.data());
  const auto of = FindingsOf(tree, result);
  ASSERT_EQ(of.size(), 3u);
  EXPECT_TRUE(of[0].empty());
  EXPECT_TRUE(of[1].empty());
  ASSERT_EQ(of[2].size(), 1u);
  EXPECT_STREQ(of[2][0]->rule, "set.order");
}

TEST(LintTest, TimeFaults) {
  auto fault = [](const std::string& text, bool generalized) {
    return TimeFault(reinterpret_cast<const unsigned char*>(text.data()), text.size(), generalized);
  };
  EXPECT_EQ(fault("240101120000Z", false), "");
  EXPECT_EQ(fault("491231235959Z", false), "");
  EXPECT_EQ(fault("20240229120000Z", true), "");
  EXPECT_EQ(fault("20240101120000.123Z", true), "");
  EXPECT_EQ(fault("", false), "empty");
  EXPECT_EQ(fault("2401011200Z", false), "seconds missing");
  EXPECT_EQ(fault("2024010112Z", true), "minutes and seconds missing");
  EXPECT_EQ(fault("240101120000", false), "no time zone: DER ends in Z");
  EXPECT_EQ(fault("240101120000+0100", false), "a time zone offset: DER is in UTC with Z");
  EXPECT_EQ(fault("240101120000ZZ", false), "characters after Z");
  EXPECT_EQ(fault("20240101120000,5Z", true), "a comma before the fraction: DER uses a full stop");
  EXPECT_EQ(fault("20240101120000.Z", true), "an empty fraction");
  EXPECT_EQ(fault("20240101120000.10Z", true), "the fraction ends in zero");
  EXPECT_EQ(fault("24/101120000Z", false), "octet 2F at position 2 where a digit belongs");
  EXPECT_EQ(fault("240231120000Z", false), "day 31 out of range");
  EXPECT_EQ(fault("240101240000Z", false), "hour 24 out of range");
  EXPECT_EQ(fault("240101126000Z", false), "minute 60 out of range");
  EXPECT_EQ(fault("240101120060Z", false), "second 60 out of range");
  EXPECT_EQ(fault("2401011200000Z", false), "13 digits where DER has 12");
}

}  // namespace
}  // namespace tool
}  // namespace keyasn
