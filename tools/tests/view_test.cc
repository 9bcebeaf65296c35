#include "view.h"

#include <functional>
#include <string>

#include <gtest/gtest.h>

namespace keyasn {
namespace tool {
namespace {

TEST(ViewTest, TextAndJson) {
  View view;
  view.Num("Version", 3);
  View& inner = view.Object("KeyInfo");
  inner.Oid("ObjID", "1.2.643.2.2.19");
  inner.Octets("Blob", Bytes(20, 0x11));
  inner.Null("Missing");
  View& list = view.Array("Elements");
  list.Item().Str("Name", "A\"B");
  view.Note("a remark");
  view.Time("When", "2024-01-01T00:00:00Z");
  view.Int("Mode", -1);
  EXPECT_EQ(view.ToText(false),
            "Version: 3 (0x3)\n"
            "KeyInfo:\n"
            "  ObjID: 1.2.643.2.2.19 (id-GostR3410-2001)\n"
            "  Blob: 11111111111111111111111111111111... (20 octets)\n"
            "  Missing: (absent)\n"
            "Elements: 1 item\n"
            "  [0]:\n"
            "    Name: \"A\\\"B\"\n"
            "# a remark\n"
            "When: 2024-01-01T00:00:00Z\n"
            "Mode: -1\n");
  EXPECT_EQ(view.ToJson().dump(),
            "{\"Version\":3,\"KeyInfo\":{\"ObjID\":\"1.2.643.2.2.19\",\"Blob\":"
            "\"1111111111111111111111111111111111111111\",\"Missing\":null},"
            "\"Elements\":[{\"Name\":\"A\\\"B\"}],\"When\":\"2024-01-01T00:00:00Z\",\"Mode\":-1}");
}

TEST(ViewTest, ElementShowsItsTree) {
  View view;
  const Bytes element = {0x30, 0x03, 0x02, 0x01, 0x05};
  view.Element("AddInfo", element.data(), element.size());
  EXPECT_EQ(view.ToText(false),
            "AddInfo: 3003020105 (5 octets)\n"
            "    |      0  2      3 cons SEQUENCE\n"
            "    |      2  2      1 prim   INTEGER 5\n");
  EXPECT_EQ(view.ToJson()["AddInfo"], "3003020105");
}

TEST(JsonInTest, ReadsMembersAndNamesThePathOnError) {
  const Json doc = Json::parse(R"({"A": 5, "B": {"C": "0A0b", "D": -3, "E": [1, {"F": "x"}]},
                                   "O": "1.2.643.2.2.19", "H": {"hex": "2A"}, "N": null})");
  JsonIn in(doc, "");
  EXPECT_EQ(in.U32("A"), 5u);
  EXPECT_EQ(in.Get("B").Hex("C"), (Bytes{0x0A, 0x0B}));
  EXPECT_EQ(in.Get("B").I32("D"), -3);
  EXPECT_EQ(in.OidContents("O"), (Bytes{0x2A, 0x85, 0x03, 0x02, 0x02, 0x13}));
  EXPECT_EQ(in.OidContents("H"), (Bytes{0x2A}));
  EXPECT_TRUE(in.IsNull("N"));
  EXPECT_TRUE(in.IsNull("missing"));
  EXPECT_FALSE(in.IsNull("A"));
  struct Row {
    const char* name;
    std::function<void()> call;
    const char* message;
  };
  const Row rows[] = {
      {"negative to unsigned", [&] { in.Get("B").U32("D"); },
       "member \"B.D\": expected a whole number from 0 to 4294967295"},
      {"missing", [&] { in.U32("Z"); }, "member \"Z\": missing"},
      {"not hex", [&] { in.Hex("O"); }, "member \"O\": expected a string of hex digit pairs"},
      {"nested array", [&] { in.Get("B").Items("E")[1].Hex("F"); },
       "member \"B.E[1].F\": expected a string of hex digit pairs"},
      {"item not an object", [&] { in.Get("B").Items("E")[0].Hex("F"); },
       "member \"B.E[0]\": expected an object"},
      {"not a string", [&] { in.Str("A"); }, "member \"A\": expected a string"},
      {"bad identifier", [&] { in.OidContents("A"); },
       "member \"A\": expected a dotted object identifier"},
      {"not an array", [&] { in.Items("A"); }, "member \"A\": expected an array"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    try {
      row.call();
      ADD_FAILURE() << "accepted";
    } catch (const ToolError& e) {
      EXPECT_EQ(e.status(), kExitMalformed);
      EXPECT_EQ(std::string(e.what()).substr(0, std::string(row.message).size()), row.message);
    }
  }
}

}  // namespace
}  // namespace tool
}  // namespace keyasn
