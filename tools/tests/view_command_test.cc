#include "view_command.h"

#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "common.h"
#include "hex_bytes.h"
#include "html_page.h"
#include "view.h"

namespace keyasn {
namespace tool {
namespace {

// PageData is the JSON a page carries.
Json PageData(const std::string& page) {
  const std::string start = "<script id=\"keyasn-data\" type=\"application/json\">";
  const std::size_t from = page.find(start);
  EXPECT_NE(from, std::string::npos);
  const std::size_t to = page.find("</script>", from);
  return Json::parse(page.substr(from + start.size(), to - from - start.size()));
}

TEST(ScriptJsonTest, NothingCanCloseTheScriptElement) {
  const Json data = {{"text", "</script><!-- & --><script>alert(1)</script>"},
                     {"bad", std::string("\xFF<", 2)}};
  const std::string text = ScriptJson(data);
  EXPECT_EQ(text.find('<'), std::string::npos) << text;
  EXPECT_EQ(text.find('>'), std::string::npos) << text;
  EXPECT_EQ(text.find('&'), std::string::npos) << text;
  const Json back = Json::parse(text);
  EXPECT_EQ(back["text"], data["text"]);
  EXPECT_EQ(back["bad"], "\xEF\xBF\xBD<");  // invalid UTF-8 replaced
}

TEST(WritePageTest, OneTemplateAroundTheData) {
  std::ostringstream out;
  WritePage(Json{{"name", "</html>"}}, out);
  const std::string page = out.str();
  EXPECT_EQ(page.rfind("<!DOCTYPE html>", 0), 0u);
  EXPECT_EQ(page.find("@KEYASN_DATA@"), std::string::npos);
  EXPECT_EQ(page.find("</html>"), page.rfind("</html>"));
  EXPECT_EQ(PageData(page)["name"], "</html>");
}

PageElement At(std::size_t offset, unsigned int header, std::size_t length, bool constructed) {
  PageElement e;
  e.offset = offset;
  e.header_length = header;
  e.length = length;
  e.flags = constructed ? 1 : 0;
  return e;
}

TEST(FindSourceTest, WholeContentsAndBitStrings) {
  // SEQUENCE { OCTET STRING AABB, BIT STRING (0 unused) CCDD, OCTET STRING AABB }
  const Bytes der = H("300D 0402AABB 030300CCDD 0402AABB");
  const std::vector<PageElement> elements = {At(0, 2, 13, true), At(2, 2, 2, false),
                                             At(6, 2, 3, false), At(11, 2, 2, false)};
  std::size_t cursor = 0;
  EXPECT_EQ(FindSource(elements, der.data(), H("AABB"), false, &cursor), 1);
  EXPECT_EQ(cursor, 2u);
  // The next equal octets are the next element that holds them.
  EXPECT_EQ(FindSource(elements, der.data(), H("AABB"), false, &cursor), 3);
  EXPECT_EQ(FindSource(elements, der.data(), H("AABB"), false, &cursor), 1);  // from the start again
  EXPECT_EQ(FindSource(elements, der.data(), H("CCDD"), false, &cursor), 2);
  EXPECT_EQ(FindSource(elements, der.data(), H("00CCDD"), false, &cursor), 2);
  EXPECT_EQ(FindSource(elements, der.data(), H("030300CCDD"), true, &cursor), 2);
  EXPECT_EQ(FindSource(elements, der.data(), der, true, &cursor), 0);
  // Contents of a constructed element are not a member's octets.
  EXPECT_EQ(FindSource(elements, der.data(), Bytes(der.begin() + 2, der.end()), false, &cursor), -1);
  EXPECT_EQ(FindSource(elements, der.data(), H("EE"), false, &cursor), -1);
  EXPECT_EQ(FindSource(elements, der.data(), Bytes(), false, &cursor), -1);
}

TEST(ViewMembersTest, InOrderWithTheirOctets) {
  View view;
  view.Num("Version", 1);
  View& key = view.Object("Key");
  const Bytes encoding = H("0402AABB");
  key.From(encoding.data(), encoding.size());
  key.Octets("Blob", H("AABB"));
  key.Note("a remark");
  View& list = view.Array("List");
  list.Item().Element("", encoding.data(), encoding.size());
  const std::vector<View::Member> members = view.Members();
  ASSERT_EQ(members.size(), 7u);
  EXPECT_EQ(members[0].label, "Version");
  EXPECT_EQ(members[0].text, "1 (0x1)");
  EXPECT_EQ(members[0].octets, nullptr);
  EXPECT_EQ(members[1].label, "Key");
  ASSERT_NE(members[1].octets, nullptr);
  EXPECT_EQ(*members[1].octets, encoding);
  EXPECT_TRUE(members[1].whole);
  EXPECT_EQ(members[2].depth, 1);
  EXPECT_EQ(*members[2].octets, H("AABB"));
  EXPECT_FALSE(members[2].whole);
  EXPECT_TRUE(members[3].note);
  EXPECT_EQ(members[3].text, "a remark");
  EXPECT_EQ(members[4].text, "1 item");
  EXPECT_EQ(members[5].label, "[0]");
  EXPECT_EQ(members[6].depth, 2);
  EXPECT_TRUE(members[6].whole);
}

TEST(RunViewTest, TheSampleContainerWithItsMembersLinked) {
  ViewRequest request;
  request.file = KEYASN_SOURCE_DIR "/samples/container.der";
  request.type = "container";
  std::ostringstream out, err;
  ASSERT_EQ(RunView(request, out, err), 0) << err.str();
  EXPECT_EQ(err.str(), "");
  const Json data = PageData(out.str());
  EXPECT_EQ(data["structure"], "container (ASNContainerInfo)");
  EXPECT_EQ(data["count"], 52);
  // Each element's offset is the packed offsets added up; KeyInfo is read from
  // the SEQUENCE at 7, its Octets1 from the OCTET STRING at 51.
  std::map<std::string, int> links;
  for (const Json& member : data["members"]) {
    if (member[0] == 0 || member[1] == "Octets1") links.emplace(member[1], member[3]);
  }
  EXPECT_EQ(links["Version"], -1);
  EXPECT_GE(links["KeyInfo"], 0);
  EXPECT_GE(links["Octets1"], 0);
}

TEST(RunViewTest, DamagedInputGivesAPageAndTheError) {
  const std::string path = ::testing::TempDir() + "view_damaged.der";
  {
    std::ofstream file(path, std::ios::binary);
    file << std::string("\x30\x06\x02\x01\x05\x04\x05\x41", 8);
  }
  ViewRequest request;
  request.file = path;
  std::ostringstream out, err;
  EXPECT_EQ(RunView(request, out, err), kExitMalformed);
  EXPECT_NE(err.str().find("keyasn: " + path + ": as der: error at offset 5: 206"), std::string::npos)
      << err.str();
  const Json data = PageData(out.str());
  EXPECT_EQ(data["error"]["offset"], 5);
  EXPECT_EQ(data["count"], 2);
  EXPECT_FALSE(data.contains("members"));
}

// Members of damaged input that the library's reader raises for, though given
// an error pointer, are a member error on the page, not an abort.
TEST(RunViewTest, MembersTheReaderRaisesForAreAnError) {
  const Bytes der = H(
      "30801F8080808002810100301006072A8648CE3D020106052B8104000F042B30"
      "800201F10401130000F4FFFFFF0000000000000001FFE10200408000DFD6FF2A"
      "82D28160AE020113042B81040021031E008080000000");
  const std::string path = ::testing::TempDir() + "view_raises.der";
  {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(der.data()), static_cast<std::streamsize>(der.size()));
  }
  ViewRequest request;
  request.file = path;
  request.type = "container";
  std::ostringstream out, err;
  EXPECT_EQ(RunView(request, out, err), kExitMalformed);
  const Json data = PageData(out.str());
  EXPECT_NE(data["member_error"].get<std::string>().find("cannot read the container"),
            std::string::npos);
}

}  // namespace
}  // namespace tool
}  // namespace keyasn
