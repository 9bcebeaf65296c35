#include "dump.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "header_octets.h"
#include "json_text.h"
#include "oid_config.h"
#include "values.h"

namespace keyasn {
namespace tool {

namespace {

const char* UniversalName(unsigned int tag) {
  static const char* const kNames[] = {
      "EOC", "BOOLEAN", "INTEGER", "BIT STRING", "OCTET STRING", "NULL",
      "OBJECT IDENTIFIER", "ObjectDescriptor", "EXTERNAL", "REAL", "ENUMERATED",
      "EMBEDDED PDV", "UTF8String", "RELATIVE-OID", "TIME", nullptr, "SEQUENCE", "SET",
      "NumericString", "PrintableString", "T61String", "VideotexString", "IA5String",
      "UTCTime", "GeneralizedTime", "GraphicString", "VisibleString", "GeneralString",
      "UniversalString", "CHARACTER STRING", "BMPString"};
  return tag < sizeof kNames / sizeof kNames[0] ? kNames[tag] : nullptr;
}

// Described is the readable value of a primitive, in the form asked for.
struct Described {
  std::string text;            // for the text line (may be empty)
  std::string value;           // for JSON
  bool has_value = false;      // false: the JSON value is null
  const unsigned char* hex = nullptr;  // the JSON value is these octets in hex
  std::size_t hex_size = 0;
  const char* name = nullptr;  // the name of an object identifier
  int unused_bits = -1;        // for a BIT STRING
  void Value(std::string v) {
    value = std::move(v);
    has_value = true;
  }
  // HexValue: octets in hex, written straight into the output.
  void HexValue(const unsigned char* octets, std::size_t size) {
    hex = octets;
    hex_size = size;
    has_value = true;
  }
};

// Describe fills `text` (octets shortened past `octets`, 0: never) or, for JSON,
// `value`; the name and the unused bits in both.
Described Describe(const Element& e, const unsigned char* data, std::size_t octets, bool json) {
  Described d;
  const unsigned char* p = data + e.offset + e.header_length;
  const std::size_t n = e.length;
  const bool text = !json;
  if (e.end_of_contents) return d;
  if (e.tag_class != 0) {
    // Tagged primitives are shown as text when every octet is printable (such as
    // the URIs of a general name), otherwise as hex.
    if (json) {
      d.HexValue(p, n);
      return d;
    }
    bool printable = n > 0;
    for (std::size_t i = 0; i < n && printable; ++i) printable = p[i] >= 0x20 && p[i] < 0x7F;
    d.text = printable ? QuoteString(p, n, false) : HexTextUpTo(p, n, octets);
    return d;
  }
  switch (e.tag) {
    case 1:
      if (n == 1) {
        d.text = p[0] ? "TRUE" : "FALSE";
        if (json) d.Value(d.text);
      } else if (json) {
        d.HexValue(p, n);
      } else {
        d.text = HexTextUpTo(p, n, octets) + " (bad BOOLEAN length)";
      }
      return d;
    case 2:
    case 10:
      if (text) d.text = IntegerTextUpTo(p, n, octets);
      if (json && n != 0) d.Value(IntegerTextUpTo(p, n, 0));
      return d;
    case 3:
      if (n == 0) {
        if (text) d.text = "(no contents)";
        return d;
      }
      d.unused_bits = p[0];
      if (json) {
        d.HexValue(p + 1, n - 1);
        return d;
      }
      d.text = "(" + std::to_string(p[0]) + " unused bit" + (p[0] == 1 ? "" : "s") + ")";
      if (e.encapsulates) {
        d.text += ", encapsulates";
      } else if (n > 1) {
        d.text += " " + HexTextUpTo(p + 1, n - 1, octets);
      }
      return d;
    case 4:
      if (json) {
        d.HexValue(p, n);
      } else {
        d.text = e.encapsulates ? "encapsulates" : HexTextUpTo(p, n, octets);
      }
      return d;
    case 5:
      if (text && n != 0) d.text = HexTextUpTo(p, n, octets) + " (bad NULL length)";
      return d;
    case 6: {
      std::string dotted;
      if (DecodeOid(p, n, &dotted)) {
        d.name = OidName(dotted);
        if (json) {
          d.Value(std::move(dotted));
          return d;
        }
        d.text = std::move(dotted);
        if (d.name != nullptr) d.text += std::string(" (") + d.name + ")";
        // A subidentifier with a leading zero group decodes like the minimal
        // one; the octets show which encoding this is.
        for (std::size_t i = 0; i < n; ++i) {
          if (p[i] == 0x80 && (i == 0 || (p[i - 1] & 0x80) == 0)) {
            d.text += ", encoded " + HexTextUpTo(p, n, octets);
            break;
          }
        }
      } else if (text) {
        d.text = HexTextUpTo(p, n, octets) + " (malformed OBJECT IDENTIFIER)";
      }
      return d;
    }
    case 23:
    case 24: {
      std::string iso;
      if (TimeText(p, n, e.tag == 24, &iso)) {
        // The text as encoded beside its UTC value, so that a form other than
        // DER's stays visible.
        if (text) d.text = std::string(reinterpret_cast<const char*>(p), n) + " = " + iso;
        if (json) d.Value(std::move(iso));
      } else if (json) {
        d.Value(ToUtf8(p, n));
      } else {
        d.text = QuoteString(p, n, false) + " (not a valid time)";
      }
      return d;
    }
    case 28:
    case 30: {
      std::string converted;
      if (e.tag == 30 ? Utf16ToUtf8(p, n, &converted) : Utf32ToUtf8(p, n, &converted)) {
        if (json) {
          d.Value(std::move(converted));
        } else {
          d.text = QuoteString(reinterpret_cast<const unsigned char*>(converted.data()),
                               converted.size(), true);
        }
      } else if (text) {
        d.text = HexTextUpTo(p, n, octets) + " (malformed string)";
      }
      return d;
    }
    default:
      if (IsStringType(e.tag)) {
        if (json) {
          d.Value(ToUtf8(p, n));
        } else {
          d.text = QuoteString(p, n, e.tag == 12);
        }
      } else if (json) {
        d.HexValue(p, n);
      } else {
        d.text = HexTextUpTo(p, n, octets);
      }
      return d;
  }
}

// AppendRight appends `text` right-aligned in `width` columns (wider text as it is).
void AppendRight(OutText* out, const char* text, std::size_t size, std::size_t width) {
  if (size < width) out->append(width - size, ' ');
  out->append(text, size);
}

// AppendTypeName appends the element's type name without building a string for
// the universal names.
void AppendTypeName(OutText* out, const Element& e) {
  const char* name = e.end_of_contents ? "EOC" : (e.tag_class & 0xC0) == 0 ? UniversalName(e.tag) : nullptr;
  if (name != nullptr) {
    out->append(name);
  } else {
    out->append(TypeName(e.tag_class, e.tag));
  }
}

// AddOriginalHeader keeps the identifier and length octets when they are not
// the shortest form (BER), so that encode can write the input back as it was.
void AddOriginalHeader(const Element& e, const unsigned char* data, JsonObject* object) {
  if (e.end_of_contents) return;
  unsigned char minimal[kMaxHeader];
  const std::size_t size = MinimalHeader(e.tag_class, e.constructed, e.tag, e.indefinite, e.length, minimal);
  const unsigned char* header = data + e.offset;
  if (size != e.header_length || !std::equal(minimal, minimal + size, header)) {
    object->Hex("header", header, e.header_length);
  }
}

}  // namespace

void AddElementMembers(JsonObject* object, const Element& e, const unsigned char* data,
                       const Marks* marks) {
  object->Number("offset", e.offset);
  object->Number("header_length", e.header_length);
  if (e.indefinite) {
    object->Null("length");
  } else {
    object->Number("length", e.length);
  }
  object->String("class", ClassName(e.tag_class));
  object->Bool("constructed", e.constructed);
  object->Number("tag", e.tag);
  // Type names need no escaping.
  OutText& type = object->Key("type");
  type.push_back('"');
  AppendTypeName(&type, e);
  type.push_back('"');
  if (e.constructed) {
    object->Null("value");
  } else {
    const Described d = Describe(e, data, 0, true);
    if (d.hex != nullptr) {
      object->Hex("value", d.hex, d.hex_size);
    } else if (d.has_value) {
      object->String("value", d.value);
    } else {
      object->Null("value");
    }
    if (d.name != nullptr) object->String("name", d.name);
    if (d.unused_bits >= 0) object->Number("unused_bits", static_cast<unsigned int>(d.unused_bits));
    object->Hex("hex", data + e.offset + e.header_length, e.length);
  }
  if (e.encapsulated) object->Bool("encapsulated", true);
  AddOriginalHeader(e, data, object);
  if (marks != nullptr && !marks->empty()) {
    OutText& list = object->Key("findings");
    list.push_back('[');
    bool first = true;
    for (const Finding* f : *marks) {
      JsonItem(&list, first, object->inner() + 2);
      first = false;
      JsonObject finding(&list, object->inner() + 2);
      finding.String("rule", f->rule);
      finding.String("severity", SeverityName(f->severity));
      finding.String("message", f->message);
      finding.Close();
    }
    AppendIndent(&list, object->inner());
    list.push_back(']');
  }
}

bool PrimitiveValue(const Element& e, const unsigned char* data, std::string* value) {
  Described d = Describe(e, data, 0, true);
  *value = d.hex != nullptr ? ToHex(d.hex, d.hex_size) : std::move(d.value);
  return d.has_value;
}

bool IsStringType(unsigned int tag) {
  switch (tag) {
    case 7: case 12: case 18: case 19: case 20: case 21: case 22: case 25: case 26: case 27:
      return true;
    default:
      return false;
  }
}

const char* ClassName(unsigned char tag_class) {
  switch (tag_class & 0xC0) {
    case 0x40: return "application";
    case 0x80: return "context";
    case 0xC0: return "private";
    default: return "universal";
  }
}

std::string TypeName(unsigned char tag_class, unsigned int tag) {
  switch (tag_class & 0xC0) {
    case 0x40: return "[APPLICATION " + std::to_string(tag) + "]";
    case 0x80: return "[" + std::to_string(tag) + "]";
    case 0xC0: return "[PRIVATE " + std::to_string(tag) + "]";
    default: break;
  }
  const char* name = UniversalName(tag);
  return name != nullptr ? name : "[UNIVERSAL " + std::to_string(tag) + "]";
}

void DumpText(const Tree& tree, const unsigned char* data, bool full, std::ostream& out) {
  const LintResult lint = Lint(tree, data);
  const std::vector<Marks> findings = FindingsOf(tree, lint);
  OutText text;
  for (std::size_t index = 0; index < tree.elements.size(); ++index) {
    AppendElementLine(&text, tree.elements[index], data, full ? 0 : kShortOctets, &findings[index]);
    text.push_back('\n');
  }
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string ValueText(const Element& e, const unsigned char* data, std::size_t octets) {
  return e.constructed ? std::string() : Describe(e, data, octets, false).text;
}

void AppendElementLine(OutText* line, const Element& e, const unsigned char* data,
                       std::size_t octets, const Marks* marks) {
  // The columns as printf's "%6zu %2u %6s %s " would write them, without its
  // cost on every line.
  char number[24];
  AppendRight(line, number, Decimal(e.offset, number), 6);
  line->push_back(' ');
  AppendRight(line, number, Decimal(e.header_length, number), 2);
  line->push_back(' ');
  if (e.indefinite) {
    AppendRight(line, "inf", 3, 6);
  } else {
    AppendRight(line, number, Decimal(e.length, number), 6);
  }
  line->append(e.constructed ? " cons " : " prim ");
  line->append(static_cast<std::size_t>(e.depth) * 2, ' ');
  AppendTypeName(line, e);
  if (!e.constructed) {
    const Described d = Describe(e, data, octets, false);
    if (!d.text.empty()) {
      line->push_back(' ');
      line->append(d.text);
    }
  }
  if (marks != nullptr) {
    for (const Finding* f : *marks) {
      line->append("  ! ");
      line->append(f->rule);
    }
  }
}

std::string DumpLines(const unsigned char* data, std::size_t size, const std::string& indent,
                      bool full) {
  Tree tree = Walk(data, size, WalkOptions());
  std::ostringstream text;
  DumpText(tree, data, full, text);
  std::string out;
  std::istringstream lines(text.str());
  std::string line;
  while (std::getline(lines, line)) out += indent + line + "\n";
  if (tree.failed) {
    out += indent + "(error at offset " + std::to_string(tree.error.offset) + ": " +
           tree.error.meaning + ")\n";
  }
  return out;
}

}  // namespace tool
}  // namespace keyasn
