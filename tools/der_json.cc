#include "der_json.h"

#include "header_octets.h"
#include "value_encode.h"
#include "view.h"

namespace keyasn {
namespace tool {

namespace {

unsigned char ClassBits(const JsonIn& node) {
  const std::string name = node.Str("class");
  if (name == "universal") return 0x00;
  if (name == "application") return 0x40;
  if (name == "context") return 0x80;
  if (name == "private") return 0xC0;
  node.Fail("class", "expected universal, application, context or private");
}

// ShownValue is the value dump prints for a primitive with these contents.
Json ShownValue(unsigned char tag_class, unsigned int tag, const Bytes& contents) {
  Bytes element = MinimalHeader(tag_class, false, tag, false, contents.size());
  Element e;
  e.header_length = static_cast<unsigned int>(element.size());
  e.length = contents.size();
  e.tag_class = tag_class;
  e.tag = tag;
  element.insert(element.end(), contents.begin(), contents.end());
  std::string value;
  return PrimitiveValue(e, element.data(), &value) ? Json(value) : Json();
}

Bytes EncodeNode(const JsonIn& node);

Bytes EncodeChildren(const JsonIn& node) {
  Bytes out;
  if (!node.Has("children")) return out;
  for (const JsonIn& child : node.Items("children")) {
    const Bytes encoded = EncodeNode(child);
    out.insert(out.end(), encoded.begin(), encoded.end());
  }
  return out;
}

// UnusedBits is a BIT STRING's unused-bits octet (0 when not given).
unsigned char UnusedBits(const JsonIn& node) {
  const unsigned int unused = node.Has("unused_bits") ? node.U32("unused_bits") : 0;
  if (unused > 7) node.Fail("unused_bits", "expected 0 to 7");
  return static_cast<unsigned char>(unused);
}

// PrimitiveContents: the children when the contents were opened (so that edits
// inside count), otherwise "hex" unless "value" shows something else: then the
// value was edited and is written instead.
Bytes PrimitiveContents(const JsonIn& node, unsigned char tag_class, unsigned int tag) {
  const bool bit_string = tag_class == 0 && tag == 3;
  Bytes contents;
  if (node.Has("children") && !node.value().at("children").empty()) {
    contents = EncodeChildren(node);
    if (bit_string) contents.insert(contents.begin(), UnusedBits(node));
    return contents;
  }
  const bool from_hex = node.Has("hex");
  if (from_hex) contents = node.Hex("hex");
  const Json& value = node.Has("value") ? node.value().at("value") : Json();
  if (value.is_null() || (from_hex && value == ShownValue(tag_class, tag, contents))) return contents;
  std::string text;
  if (value.is_string()) {
    text = value.get<std::string>();
  } else if (value.is_number_integer()) {
    text = value.dump();
  } else {
    node.Fail("value", "expected a string");
  }
  std::string problem;
  const unsigned int kind = tag_class == 0 ? tag : 4;  // the value of a tagged primitive is hex
  if (!ValueContents(kind, text, &contents, &problem)) node.Fail("value", problem);
  if (bit_string) contents.insert(contents.begin(), UnusedBits(node));
  return contents;
}

Bytes EncodeNode(const JsonIn& node) {
  if (!node.value().is_object()) node.Fail("", "expected an element object");
  const unsigned char tag_class = ClassBits(node);
  const bool constructed = node.value().contains("constructed") && node.value().at("constructed").is_boolean()
                               ? node.value().at("constructed").get<bool>()
                               : (node.Fail("constructed", "expected true or false"), false);
  const unsigned int tag = node.U32("tag");
  const bool indefinite = node.Has("length") && node.value().at("length").is_null();
  const Bytes contents = constructed ? EncodeChildren(node) : PrimitiveContents(node, tag_class, tag);
  Bytes out;
  bool kept = false;
  if (node.Has("header") && !node.IsNull("header")) {
    const Bytes header = node.Hex("header");
    HeaderFields fields;
    kept = ParseHeader(header, &fields) && fields.tag_class == tag_class &&
           fields.constructed == constructed && fields.tag == tag && fields.indefinite == indefinite &&
           (indefinite || fields.length == contents.size());
    if (kept) out = header;
  }
  if (!kept) out = MinimalHeader(tag_class, constructed, tag, indefinite, contents.size());
  out.insert(out.end(), contents.begin(), contents.end());
  if (indefinite && !constructed) {
    out.push_back(0);  // a primitive of indefinite length ends at its first 00 00
    out.push_back(0);
  }
  return out;
}

}  // namespace

Bytes EncodeDumpJson(const Json& document) {
  const Json wrapper = {{"elements", document.is_array() ? document : Json::array({document})}};
  JsonIn root(wrapper, "");
  Bytes out;
  for (const JsonIn& node : root.Items("elements")) {
    const Bytes encoded = EncodeNode(node);
    out.insert(out.end(), encoded.begin(), encoded.end());
  }
  return out;
}

}  // namespace tool
}  // namespace keyasn
