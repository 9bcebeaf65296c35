// dump's JSON back to octets: BER forms kept, edited values written, and the
// round trip on every corpus file that dump reads; the streaming printer agrees
// with the tree's JSON; offsets are found or refused with their neighbours.
#include "der_json.h"

#include <ftw.h>

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "hex_bytes.h"

#include "dump_stream.h"
#include "load.h"
#include "locate.h"
#include "oid_config.h"

namespace keyasn {
namespace tool {
namespace {

// StreamDump prints what dump prints for `der`; false when the walk fails.
bool StreamDump(const unsigned char* data, std::size_t size, bool json, std::string* text,
                int depth = 0) {
  PrintOptions options;
  options.json = json;
  options.depth = depth;
  options.size = size;
  std::ostringstream out;
  const WalkResult result = PrintWalk(data, options, WalkOptions(), out, nullptr);
  *text = out.str();
  return !result.failed;
}

Bytes RoundTrip(const Bytes& der) {
  std::string json;
  EXPECT_TRUE(StreamDump(der.data(), der.size(), true, &json));
  return EncodeDumpJson(Json::parse(json));
}

TEST(DerJsonTest, BerFormsComeBackAsTheyWere) {
  const char* const kCases[] = {
      "3080020105 0000",            // indefinite length
      "3081030201 05",              // long form of a short length
      "308200030201 05",            // two length octets
      "2480 0402ABCD 0000",         // constructed OCTET STRING
      "0480 ABCD 0000",             // primitive of indefinite length
      "3080 3080 0500 0000 0000",   // nested indefinite
      "5F2001 00",                  // high tag number
      "1F8001 00",                  // high tag number with a leading 0x80 group
      "1F01 00",                    // a low tag number in the high form
      "0500 0500",                  // two top-level elements
      "A0 80 02 01 05 00 00",       // tagged, indefinite
      "04 06 30 04 06 02 2A 03",    // encapsulated in an OCTET STRING
      "03 05 00 30 02 05 00",       // encapsulated in a BIT STRING
      "03 03 06 AB C0",             // BIT STRING with unused bits
      "1E 04 00 41 00 42",          // BMPString
      "17 0D 3234303130313132303030305A",  // UTCTime
      "0C 02 C3 A9",                // UTF8String
      "13 02 41 FF",                // a PrintableString that is not UTF-8
  };
  for (const char* hex : kCases) {
    SCOPED_TRACE(hex);
    const Bytes der = H(hex);
    EXPECT_EQ(ToHex(RoundTrip(der)), ToHex(der));
  }
}

TEST(DerJsonTest, EditedValuesAreWrittenAndLengthsFollow) {
  struct Row {
    const char* input;
    const char* pointer;  // JSON pointer of the value edited
    Json value;
    const char* want;
  };
  const Row kRows[] = {
      {"3003020105", "/0/children/0/value", "65537", "3005020301 0001"},
      {"3003020105", "/0/children/0/value", "-129", "300402 02FF7F"},
      {"3003020105", "/0/children/0/value", "0", "3003020100"},
      {"30050603 2A0304", "/0/children/0/value", "1.2.840.113549.1.1.11",
       "300B0609 2A864886F70D01010B"},
      {"3003 0C01 41", "/0/children/0/value", "héllo", "3008 0C06 68C3A96C6C6F"},
      {"3004 1E02 0041", "/0/children/0/value", "AB", "3006 1E04 00410042"},
      {"3003 0101FF", "/0/children/0/value", "FALSE", "3003 010100"},
      {"3004 0402 ABCD", "/0/children/0/value", "01", "3003 040101"},
      {"300F 170D 3234303130313132303030305A", "/0/children/0/value", "2030-06-01T00:00:00Z",
       "300F 170D 3330303630313030303030305A"},
      {"3080 020105 0000", "/0/children/0/value", "300", "3080 0202012C 0000"},
      {"3081030201 05", "/0/children/0/value", "300", "30040202012C"},
      {"04 06 30 04 06 02 2A 03", "/0/children/0/children/0/value", "1.2.3.4",
       "04 07 30 05 06 03 2A 0304"},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.input);
    const Bytes der = H(row.input);
    std::string text;
    ASSERT_TRUE(StreamDump(der.data(), der.size(), true, &text));
    Json json = Json::parse(text);
    json[Json::json_pointer(row.pointer)] = row.value;
    EXPECT_EQ(ToHex(EncodeDumpJson(json)), ToHex(H(row.want)));
  }
}

TEST(DerJsonTest, BadDocumentsNameTheNode) {
  const struct {
    const char* json;
    const char* message;
  } kRows[] = {
      {R"([{"class": "nowhere", "constructed": false, "tag": 2, "hex": "05"}])", "[0].class"},
      {R"([{"class": "universal", "constructed": false, "tag": 2, "value": "x5"}])", "[0].value"},
      {R"([{"class": "universal", "constructed": false, "tag": 6, "value": "1"}])", "[0].value"},
      {R"([{"class": "universal", "constructed": true, "tag": 16, "children": [{"tag": 2}]}])",
       "[0].children[0]"},
      {R"(5)", "expected an element object"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.json);
    try {
      EncodeDumpJson(Json::parse(row.json));
      ADD_FAILURE() << "accepted";
    } catch (const ToolError& e) {
      EXPECT_NE(std::string(e.what()).find(row.message), std::string::npos) << e.what();
    }
  }
}

std::vector<std::string>* corpus_files = nullptr;

int AddFile(const char* path, const struct stat*, int kind, struct FTW*) {
  if (kind == FTW_F) corpus_files->push_back(path);
  return 0;
}

// Every corpus file that dump reads without error comes back from its JSON, and
// the streaming printer writes what the whole tree's JSON would be.
TEST(DerJsonTest, CorporaRoundTrip) {
  std::vector<std::string> files;
  corpus_files = &files;
  nftw((std::string(KEYASN_SHARED_DIR) + "/corpora").c_str(), AddFile, 16, FTW_PHYS);
  if (files.empty()) GTEST_SKIP() << "no corpora under " << KEYASN_SHARED_DIR;
  std::size_t read = 0;
  for (const std::string& file : files) {
    SCOPED_TRACE(file);
    std::unique_ptr<Input> input;
    try {
      input = LoadInput(file, InputForm::kAuto);
    } catch (const ToolError&) {
      continue;
    }
    std::string json;
    if (!StreamDump(input->data(), input->size(), true, &json)) continue;
    // The streamed text is what nlohmann writes for the same document.
    const Json document = Json::parse(json);
    ASSERT_EQ(json, document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
    const Bytes back = EncodeDumpJson(document);
    ASSERT_TRUE(back.size() == input->size() && std::equal(back.begin(), back.end(), input->data()));
    ++read;
  }
  EXPECT_GT(read, 0u);
  RecordProperty("round_trips", static_cast<int>(read));
}

TEST(LocateTest, OffsetsFoundOrRefusedWithNeighbours) {
  // SEQUENCE at 0 { OCTET STRING at 2 { SEQUENCE at 4 { INTEGER at 6 } } }, NULL at 10
  const Bytes der = H("3008 0406 3004 02020100 0500");
  struct Row {
    std::vector<std::size_t> offsets;
    std::string found;  // "offset:whole size" or the message part expected
  } rows[] = {
      {{0}, "0:10"},
      {{2}, "2:8"},
      {{4}, "4:6"},          // inside the OCTET STRING, opened because it holds DER
      {{6}, "6:4"},
      {{10}, "10:2"},
      {{2, 4}, "4:6"},
      {{3}, "nearest starts: 2 before and 4 after"},
      {{11}, "nearest starts: 10 before"},
      {{12}, "outside the input (12 octets)"},
      {{4, 10}, "outside the contents of the element at offset 4"},
      {{8}, "nearest starts: 6 before and 10 after"},
      {{6, 7}, "holds no elements"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.found);
    try {
      const Located at = Locate(der.data(), der.size(), row.offsets, true);
      EXPECT_EQ(std::to_string(at.whole.offset) + ":" + std::to_string(at.whole.size), row.found);
    } catch (const ToolError& e) {
      EXPECT_NE(std::string(e.what()).find(row.found), std::string::npos) << e.what();
    }
  }
  // A string whose contents the walk leaves closed is entered by a second offset.
  const Bytes closed = H("0402 0500");
  EXPECT_THROW(Locate(closed.data(), closed.size(), {2}, true), ToolError);
  EXPECT_EQ(Locate(closed.data(), closed.size(), {0, 2}, true).whole.size, 2u);
  // An element whose length runs past the octets there are is refused, not
  // handed on with an extent beyond the input; what it holds is still found.
  const Bytes damaged = H("3082 2B06 3006 0500");
  for (const std::vector<std::size_t>& offsets : {std::vector<std::size_t>{0}, {4}, {0, 4}}) {
    try {
      Locate(damaged.data(), damaged.size(), offsets, true);
      ADD_FAILURE() << "accepted";
    } catch (const ToolError& e) {
      const std::string text = e.what();
      EXPECT_NE(text.find("runs past the end of the"), std::string::npos) << text;
    }
  }
  EXPECT_EQ(Locate(damaged.data(), damaged.size(), {6}, true).whole.size, 2u);
  // An indefinite element's extent includes its end-of-contents octets.
  const Bytes indefinite = H("3080 3080 0500 0000 0000");
  EXPECT_EQ(Locate(indefinite.data(), indefinite.size(), {2}, true).whole.size, 6u);
}

TEST(DumpStreamTest, DepthSummarisesDeeperElements) {
  const Bytes der = H("3008 3006 0500 3002 0500");
  std::string text;
  ASSERT_TRUE(StreamDump(der.data(), der.size(), false, &text, 2));
  EXPECT_EQ(text,
            "     0  2      8 cons SEQUENCE\n"
            "     2  2      6 cons   SEQUENCE\n"
            "                          ... 3 elements\n");
}

TEST(OidConfigTest, BothFormatsAreRead) {
  std::map<std::string, std::string> names;
  std::string problem;
  ASSERT_TRUE(ParseOidNames("# comment\nOID = 1 2 3 4\nComment = x\nDescription = fourArcs\n"
                            "Warning\nOID = 06 03 2A 03 05\nDescription = hexForm\n"
                            "1.2.3.6 short Long Name\n1.2.3.7 onlyShort\n",
                            &names, &problem))
      << problem;
  EXPECT_EQ(names["1.2.3.4"], "fourArcs");
  EXPECT_EQ(names["1.2.3.5"], "hexForm");
  EXPECT_EQ(names["1.2.3.6"], "Long Name");
  EXPECT_EQ(names["1.2.3.7"], "onlyShort");
  EXPECT_FALSE(ParseOidNames("OID = zz\n", &names, &problem));
  EXPECT_NE(problem.find("line 1"), std::string::npos);
  EXPECT_FALSE(ParseOidNames("hello world\n", &names, &problem));
}

}  // namespace
}  // namespace tool
}  // namespace keyasn
