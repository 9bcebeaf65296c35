// View: the members of one decoded structure, rendered as indented text (show)
// or as JSON (show --json); and JsonIn, the reader of that JSON (encode).
#ifndef KEYASN_TOOLS_VIEW_H_
#define KEYASN_TOOLS_VIEW_H_

#include <list>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "common.h"

namespace keyasn {
namespace tool {

using Json = nlohmann::ordered_json;

// View is a member tree. Leaves carry their JSON value and the text shown for
// them; objects and arrays carry children.
class View {
 public:
  View() = default;

  // Num: an unsigned number, shown in decimal and hex.
  void Num(const std::string& name, unsigned long long value);
  // Int: a signed number, shown in decimal.
  void Int(const std::string& name, long long value);
  // Octets: hex in JSON; shortened hex and the count in text.
  void Octets(const std::string& name, const unsigned char* data, std::size_t size);
  void Octets(const std::string& name, const Bytes& bytes) { Octets(name, bytes.data(), bytes.size()); }
  // Element: a complete encoded element as hex; in text also its element tree.
  void Element(const std::string& name, const unsigned char* data, std::size_t size);
  // Oid: the dotted text with its name in text output.
  void Oid(const std::string& name, const std::string& dotted);
  // Str: a character string, quoted in text output.
  void Str(const std::string& name, const std::string& text);
  // Time: an ISO 8601 time.
  void Time(const std::string& name, const std::string& iso);
  // Null: an absent member (JSON null, "(absent)" in text).
  void Null(const std::string& name, const char* text = "(absent)");
  // Raw: any JSON value with the text given.
  void Raw(const std::string& name, const Json& value, const std::string& text);
  // Note adds a line of commentary to the text output only.
  void Note(const std::string& text);
  // Object / Array start a nested member; fill the View returned.
  View& Object(const std::string& name);
  View& Array(const std::string& name);
  // Item appends an array element (for a View made by Array).
  View& Item();
  // From records that this member was decoded from a stored encoding (the
  // element's octets), so that a reader of the view can find where it came from.
  void From(const unsigned char* data, std::size_t size);

  // Member is one line of the member tree, for renderings other than text.
  struct Member {
    int depth;
    std::string label;   // the name, or "[n]" for an array item
    std::string text;    // the leaf text, an item count, or empty for an object
    bool note;           // a line of commentary (label empty)
    const Bytes* octets; // the octets the member holds or was decoded from, or null
    bool whole;          // `octets` are a whole element (Element, From), not contents
  };
  // Members lists the tree in order, children after their parent.
  std::vector<Member> Members() const;

  Json ToJson() const;
  // ToText renders `indent` spaces deep; octets shortened unless `full`.
  std::string ToText(bool full, int indent = 0) const;

 private:
  enum class Kind { kLeaf, kObject, kArray, kNote };
  View& AddChild(const std::string& name, Kind kind);
  void AddMembers(int depth, std::vector<Member>* members) const;

  std::string name_;
  Kind kind_ = Kind::kObject;
  Json value_;
  std::string text_;        // leaf text
  std::string full_text_;   // leaf text when --full (empty: same as text_)
  std::string below_;       // extra lines under a leaf (an element tree), unindented
  std::string below_full_;
  Bytes octets_;            // see Member::octets
  bool has_octets_ = false;
  bool whole_ = false;
  std::list<View> children_;  // a list: references to children stay valid
};

// JsonIn reads members of a JSON object for encode, naming the member path in
// every error (ToolError with kExitMalformed).
class JsonIn {
 public:
  JsonIn(const Json& value, std::string path) : value_(value), path_(std::move(path)) {}

  bool Has(const std::string& name) const;
  bool IsNull(const std::string& name) const;
  JsonIn Get(const std::string& name) const;
  unsigned int U32(const std::string& name) const;
  int I32(const std::string& name) const;
  Bytes Hex(const std::string& name) const;
  std::string Str(const std::string& name) const;
  // Oid reads a dotted identifier (or {"hex": ...}) into contents octets.
  Bytes OidContents(const std::string& name) const;
  std::vector<JsonIn> Items(const std::string& name) const;

  const Json& value() const { return value_; }
  const std::string& path() const { return path_; }
  [[noreturn]] void Fail(const std::string& name, const std::string& what) const;

 private:
  const Json& Member(const std::string& name) const;
  std::string Path(const std::string& name) const;

  const Json& value_;
  std::string path_;
};

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_VIEW_H_
