#include "json_text.h"

#include <random>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace keyasn {
namespace tool {
namespace {

using Json = nlohmann::ordered_json;

// Reference is how nlohmann writes the string, invalid UTF-8 replaced.
std::string Reference(const std::string& text) {
  return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string Written(const std::string& text) {
  OutText out;
  AppendJsonString(&out, text);
  return out.str();
}

TEST(JsonTextTest, StringsAsNlohmannWritesThem) {
  const std::string rows[] = {
      "",
      "plain",
      std::string("quote \" backslash \\ slash / nul \0 bell \x07 del \x7F", 39),
      "\b\f\n\r\t\x1F",
      "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80",
      "\x80 lone continuation",
      "\xC0\xAF overlong",
      "\xE2\x82 cut short, then \xE2",
      "\xED\xA0\x80 surrogate",
      "\xF4\x90\x80\x80 beyond U+10FFFF",
      "\xF0\x9F\x98",
      "\xE0\x80\x80 \xF0\x80 \xFF\xFE",
  };
  for (const std::string& row : rows) {
    SCOPED_TRACE(row);
    EXPECT_EQ(Written(row), Reference(row));
  }
  // Random octets, weighted towards the ones that begin and continue sequences.
  std::mt19937 random(18);
  const unsigned char kOctets[] = {0x00, 0x09, 0x1F, 0x22, 0x41, 0x5C, 0x7F, 0x80, 0x8F, 0x90,
                                   0x9F, 0xA0, 0xBF, 0xC0, 0xC2, 0xDF, 0xE0, 0xED, 0xEF, 0xF0,
                                   0xF4, 0xF5, 0xFF};
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    const int length = static_cast<int>(random() % 9);
    for (int i = 0; i < length; ++i) {
      text.push_back(static_cast<char>(kOctets[random() % sizeof kOctets]));
    }
    ASSERT_EQ(Written(text), Reference(text)) << round;
  }
}

TEST(JsonTextTest, ObjectsAndItemsAsDumpLaysThemOut) {
  OutText out;
  out.push_back('[');
  JsonItem(&out, true, 2);
  JsonObject object(&out, 2);
  object.Number("n", 18446744073709551615u);
  object.Null("none");
  object.Bool("yes", true);
  OutText& list = object.Key("list");
  list.push_back('[');
  JsonItem(&list, true, object.inner() + 2);
  JsonObject empty(&list, object.inner() + 2);
  empty.Close();
  AppendIndent(&list, object.inner());
  list.push_back(']');
  object.String("s", "x");
  object.Close();
  out += "\n]";
  const Json document = Json::parse(out.str());
  EXPECT_EQ(out.str(), document.dump(2));
}

}  // namespace
}  // namespace tool
}  // namespace keyasn
