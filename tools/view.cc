#include "view.h"

#include <climits>
#include <cstdio>

#include "dump.h"
#include "keyasn/codec/oid.h"
#include "oid_config.h"
#include "values.h"

namespace keyasn {
namespace tool {

View& View::AddChild(const std::string& name, Kind kind) {
  children_.emplace_back();
  View& child = children_.back();
  child.name_ = name;
  child.kind_ = kind;
  return child;
}

void View::Num(const std::string& name, unsigned long long value) {
  char hex[32];
  std::snprintf(hex, sizeof hex, " (0x%llX)", value);
  Raw(name, value, std::to_string(value) + hex);
}

void View::Int(const std::string& name, long long value) {
  Raw(name, value, std::to_string(value));
}

namespace {

std::string OctetsText(const unsigned char* data, std::size_t size, bool full) {
  if (size == 0) return "(empty)";
  std::string text = HexText(data, size, full);
  if (full || size <= kShortOctets) text += " (" + std::to_string(size) + (size == 1 ? " octet)" : " octets)");
  return text;
}

std::string ItemCount(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " item" : " items");
}

}  // namespace

void View::Octets(const std::string& name, const unsigned char* data, std::size_t size) {
  View& leaf = AddChild(name, Kind::kLeaf);
  leaf.value_ = ToHex(data, size);
  leaf.text_ = OctetsText(data, size, false);
  leaf.full_text_ = OctetsText(data, size, true);
  leaf.octets_.assign(data, data + size);
  leaf.has_octets_ = true;
}

void View::Element(const std::string& name, const unsigned char* data, std::size_t size) {
  Octets(name, data, size);
  if (size == 0) return;
  View& leaf = children_.back();
  leaf.whole_ = true;
  leaf.below_ = DumpLines(data, size, "", false);
  leaf.below_full_ = DumpLines(data, size, "", true);
}

void View::Oid(const std::string& name, const std::string& dotted) {
  std::string text = dotted.empty() ? std::string("(empty)") : dotted;
  if (const char* known = OidName(dotted)) text += std::string(" (") + known + ")";
  Raw(name, dotted, text);
}

void View::Str(const std::string& name, const std::string& text) {
  Raw(name, ToUtf8(reinterpret_cast<const unsigned char*>(text.data()), text.size()),
      QuoteString(reinterpret_cast<const unsigned char*>(text.data()), text.size(), true));
}

void View::Time(const std::string& name, const std::string& iso) { Raw(name, iso, iso); }

void View::Null(const std::string& name, const char* text) { Raw(name, nullptr, text); }

void View::Raw(const std::string& name, const Json& value, const std::string& text) {
  View& leaf = AddChild(name, Kind::kLeaf);
  leaf.value_ = value;
  leaf.text_ = text;
}

void View::Note(const std::string& text) {
  View& note = AddChild("", Kind::kNote);
  note.text_ = text;
}

View& View::Object(const std::string& name) { return AddChild(name, Kind::kObject); }
View& View::Array(const std::string& name) { return AddChild(name, Kind::kArray); }
View& View::Item() { return AddChild("", Kind::kObject); }

void View::From(const unsigned char* data, std::size_t size) {
  octets_.assign(data, data + size);
  has_octets_ = true;
  whole_ = true;
}

std::vector<View::Member> View::Members() const {
  std::vector<Member> members;
  AddMembers(0, &members);
  return members;
}

void View::AddMembers(int depth, std::vector<Member>* members) const {
  std::size_t item = 0;
  for (const View& child : children_) {
    Member member{depth, child.name_, child.text_, child.kind_ == Kind::kNote,
                  child.has_octets_ ? &child.octets_ : nullptr, child.whole_};
    if (kind_ == Kind::kArray && !member.note) member.label = "[" + std::to_string(item++) + "]";
    if (child.kind_ == Kind::kArray) {
      member.text = ItemCount(child.children_.size());
    }
    members->push_back(member);
    if (child.kind_ == Kind::kArray || child.kind_ == Kind::kObject) {
      child.AddMembers(depth + 1, members);
    }
  }
}

Json View::ToJson() const {
  switch (kind_) {
    case Kind::kLeaf:
      return value_;
    case Kind::kArray: {
      Json array = Json::array();
      for (const View& child : children_) {
        if (child.kind_ != Kind::kNote) array.push_back(child.ToJson());
      }
      return array;
    }
    case Kind::kObject:
    case Kind::kNote:
      break;
  }
  Json object = Json::object();
  for (const View& child : children_) {
    if (child.kind_ != Kind::kNote) object[child.name_] = child.ToJson();
  }
  return object;
}

std::string View::ToText(bool full, int indent) const {
  const std::string pad(static_cast<std::size_t>(indent), ' ');
  std::string out;
  std::size_t item = 0;
  for (const View& child : children_) {
    std::string label = child.name_;
    if (kind_ == Kind::kArray && child.kind_ != Kind::kNote) label = "[" + std::to_string(item++) + "]";
    switch (child.kind_) {
      case Kind::kNote:
        out += pad + "# " + child.text_ + "\n";
        break;
      case Kind::kLeaf: {
        const std::string& text =
            full && !child.full_text_.empty() ? child.full_text_ : child.text_;
        out += pad + label + ": " + text + "\n";
        const std::string& below = full ? child.below_full_ : child.below_;
        std::size_t start = 0;
        while (start < below.size()) {
          std::size_t end = below.find('\n', start);
          if (end == std::string::npos) end = below.size();
          out += pad + "    | " + below.substr(start, end - start) + "\n";
          start = end + 1;
        }
        break;
      }
      case Kind::kArray:
        out += pad + label + ": " + ItemCount(child.children_.size()) + "\n";
        out += child.ToText(full, indent + 2);
        break;
      case Kind::kObject:
        out += pad + label + ":\n";
        out += child.ToText(full, indent + 2);
        break;
    }
  }
  return out;
}

// JsonIn

std::string JsonIn::Path(const std::string& name) const {
  if (path_.empty()) return name;
  if (!name.empty() && name[0] == '[') return path_ + name;
  return path_ + "." + name;
}

void JsonIn::Fail(const std::string& name, const std::string& what) const {
  const std::string where = name.empty() ? path_ : Path(name);
  throw ToolError(kExitMalformed,
                  (where.empty() ? std::string("the document") : "member \"" + where + "\"") +
                      ": " + what);
}

bool JsonIn::Has(const std::string& name) const {
  return value_.is_object() && value_.contains(name);
}

bool JsonIn::IsNull(const std::string& name) const {
  return !Has(name) || value_.at(name).is_null();
}

const Json& JsonIn::Member(const std::string& name) const {
  if (!value_.is_object()) Fail("", "expected an object");
  auto found = value_.find(name);
  if (found == value_.end()) Fail(name, "missing");
  return *found;
}

JsonIn JsonIn::Get(const std::string& name) const { return JsonIn(Member(name), Path(name)); }

unsigned int JsonIn::U32(const std::string& name) const {
  const Json& v = Member(name);
  if (v.is_number_unsigned() && v.get<unsigned long long>() <= UINT_MAX) return v.get<unsigned int>();
  if (v.is_number_integer() && v.get<long long>() >= 0 && v.get<long long>() <= UINT_MAX) {
    return static_cast<unsigned int>(v.get<long long>());
  }
  Fail(name, "expected a whole number from 0 to 4294967295");
}

int JsonIn::I32(const std::string& name) const {
  const Json& v = Member(name);
  if (v.is_number_integer() && !v.is_number_unsigned() && v.get<long long>() >= INT_MIN &&
      v.get<long long>() <= INT_MAX) {
    return static_cast<int>(v.get<long long>());
  }
  if (v.is_number_unsigned() && v.get<unsigned long long>() <= INT_MAX) return v.get<int>();
  Fail(name, "expected a whole number from -2147483648 to 2147483647");
}

Bytes JsonIn::Hex(const std::string& name) const {
  const Json& v = Member(name);
  Bytes bytes;
  if (!v.is_string() || !ParseHex(v.get<std::string>(), &bytes)) {
    Fail(name, "expected a string of hex digit pairs");
  }
  return bytes;
}

std::string JsonIn::Str(const std::string& name) const {
  const Json& v = Member(name);
  if (!v.is_string()) Fail(name, "expected a string");
  return v.get<std::string>();
}

Bytes JsonIn::OidContents(const std::string& name) const {
  const Json& v = Member(name);
  Bytes contents;
  if (v.is_string()) {
    if (v.get<std::string>().empty()) return contents;
    const IdentObj octets = keyasn::OidContents(v.get<std::string>().c_str());
    if (octets.Count() != 0) return Bytes(octets.GetData(), octets.GetData() + octets.Count());
  } else if (v.is_object() && v.contains("hex") && v.size() == 1) {
    return Get(name).Hex("hex");
  }
  Fail(name, "expected a dotted object identifier such as \"1.2.643.2.2.19\" or {\"hex\": ...}");
}

std::vector<JsonIn> JsonIn::Items(const std::string& name) const {
  const Json& v = Member(name);
  if (!v.is_array()) Fail(name, "expected an array");
  std::vector<JsonIn> items;
  for (std::size_t i = 0; i < v.size(); ++i) {
    items.emplace_back(v[i], Path(name) + "[" + std::to_string(i) + "]");
  }
  return items;
}

}  // namespace tool
}  // namespace keyasn
