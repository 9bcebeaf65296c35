#include "dump.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "header_octets.h"
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

// Described is the readable value of a primitive in its two forms.
struct Described {
  std::string text;           // for the text line (may be empty)
  Json value;                 // for JSON (null when there is no value)
  const char* name = nullptr; // the name of an object identifier
  int unused_bits = -1;       // for a BIT STRING
};

Described Describe(const Element& e, const unsigned char* data, std::size_t octets) {
  Described d;
  const unsigned char* p = data + e.offset + e.header_length;
  const std::size_t n = e.length;
  if (e.end_of_contents) return d;
  if (e.tag_class != 0) {
    // Tagged primitives are shown as text when every octet is printable (such as
    // the URIs of a general name), otherwise as hex.
    bool printable = n > 0;
    for (std::size_t i = 0; i < n && printable; ++i) printable = p[i] >= 0x20 && p[i] < 0x7F;
    d.text = printable ? QuoteString(p, n, false) : HexTextUpTo(p, n, octets);
    d.value = ToHex(p, n);
    return d;
  }
  switch (e.tag) {
    case 1:
      if (n == 1) {
        d.text = p[0] ? "TRUE" : "FALSE";
        d.value = d.text;
      } else {
        d.text = HexTextUpTo(p, n, octets) + " (bad BOOLEAN length)";
        d.value = ToHex(p, n);
      }
      return d;
    case 2:
    case 10:
      d.text = IntegerTextUpTo(p, n, octets);
      d.value = n == 0 ? Json() : Json(IntegerTextUpTo(p, n, 0));
      return d;
    case 3:
      if (n == 0) {
        d.text = "(no contents)";
        return d;
      }
      d.unused_bits = p[0];
      d.value = ToHex(p + 1, n - 1);
      d.text = "(" + std::to_string(p[0]) + " unused bit" + (p[0] == 1 ? "" : "s") + ")";
      if (e.encapsulates) {
        d.text += ", encapsulates";
      } else if (n > 1) {
        d.text += " " + HexTextUpTo(p + 1, n - 1, octets);
      }
      return d;
    case 4:
      d.value = ToHex(p, n);
      d.text = e.encapsulates ? "encapsulates" : HexTextUpTo(p, n, octets);
      return d;
    case 5:
      if (n != 0) d.text = HexTextUpTo(p, n, octets) + " (bad NULL length)";
      return d;
    case 6: {
      std::string dotted;
      if (DecodeOid(p, n, &dotted)) {
        d.value = dotted;
        d.name = OidName(dotted);
        d.text = dotted;
        if (d.name != nullptr) d.text += std::string(" (") + d.name + ")";
        // A subidentifier with a leading zero group decodes like the minimal
        // one; the octets show which encoding this is.
        for (std::size_t i = 0; i < n; ++i) {
          if (p[i] == 0x80 && (i == 0 || (p[i - 1] & 0x80) == 0)) {
            d.text += ", encoded " + HexTextUpTo(p, n, octets);
            break;
          }
        }
      } else {
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
        d.text = std::string(reinterpret_cast<const char*>(p), n) + " = " + iso;
        d.value = iso;
      } else {
        d.text = QuoteString(p, n, false) + " (not a valid time)";
        d.value = ToUtf8(p, n);
      }
      return d;
    }
    case 28:
    case 30: {
      std::string text;
      if (e.tag == 30 ? Utf16ToUtf8(p, n, &text) : Utf32ToUtf8(p, n, &text)) {
        d.text = QuoteString(reinterpret_cast<const unsigned char*>(text.data()), text.size(), true);
        d.value = text;
      } else {
        d.text = HexTextUpTo(p, n, octets) + " (malformed string)";
      }
      return d;
    }
    default:
      if (IsStringType(e.tag)) {
        d.text = QuoteString(p, n, e.tag == 12);
        d.value = ToUtf8(p, n);
      } else {
        d.text = HexTextUpTo(p, n, octets);
        d.value = ToHex(p, n);
      }
      return d;
  }
}

// AddOriginalHeader keeps the identifier and length octets when they are not
// the shortest form (BER), so that encode can write the input back as it was.
void AddOriginalHeader(const Element& e, const unsigned char* data, Json* j) {
  if (e.end_of_contents) return;
  const Bytes minimal = MinimalHeader(e.tag_class, e.constructed, e.tag, e.indefinite, e.length);
  const unsigned char* header = data + e.offset;
  if (minimal.size() != e.header_length ||
      !std::equal(minimal.begin(), minimal.end(), header)) {
    (*j)["header"] = ToHex(header, e.header_length);
  }
}

using ElementFindings = std::vector<std::vector<const Finding*>>;

Json ElementJson(const Tree& tree, int index, const unsigned char* data,
                 const ElementFindings& findings) {
  const Element& e = tree.elements[index];
  Json j = ElementFields(e, data, &findings[index]);
  Json children = Json::array();
  for (int child : e.children) children.push_back(ElementJson(tree, child, data, findings));
  j["children"] = std::move(children);
  return j;
}

}  // namespace

Json ElementFields(const Element& e, const unsigned char* data, const Marks* marks) {
  Json j;
  j["offset"] = e.offset;
  j["header_length"] = e.header_length;
  j["length"] = e.indefinite ? Json() : Json(e.length);
  j["class"] = ClassName(e.tag_class);
  j["constructed"] = e.constructed;
  j["tag"] = e.tag;
  j["type"] = e.end_of_contents ? std::string("EOC") : TypeName(e.tag_class, e.tag);
  if (e.constructed) {
    j["value"] = nullptr;
  } else {
    Described d = Describe(e, data, 0);
    j["value"] = d.value;
    if (d.name != nullptr) j["name"] = d.name;
    if (d.unused_bits >= 0) j["unused_bits"] = d.unused_bits;
    j["hex"] = ToHex(data + e.offset + e.header_length, e.length);
  }
  if (e.encapsulated) j["encapsulated"] = true;
  AddOriginalHeader(e, data, &j);
  if (marks != nullptr && !marks->empty()) {
    Json list = Json::array();
    for (const Finding* f : *marks) {
      list.push_back({{"rule", f->rule}, {"severity", SeverityName(f->severity)}, {"message", f->message}});
    }
    j["findings"] = std::move(list);
  }
  return j;
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
  const ElementFindings findings = FindingsOf(tree, lint);
  for (std::size_t index = 0; index < tree.elements.size(); ++index) {
    out << ElementLine(tree.elements[index], data, full ? 0 : kShortOctets, &findings[index])
        << '\n';
  }
}

std::string ValueText(const Element& e, const unsigned char* data, std::size_t octets) {
  return e.constructed ? std::string() : Describe(e, data, octets).text;
}

std::string ElementLine(const Element& e, const unsigned char* data, std::size_t octets,
                        const Marks* marks) {
  {
    char head[64];
    const std::string length = e.indefinite ? "inf" : std::to_string(e.length);
    std::snprintf(head, sizeof head, "%6zu %2u %6s %s ", e.offset, e.header_length,
                  length.c_str(), e.constructed ? "cons" : "prim");
    std::string line = head;
    line.append(static_cast<std::size_t>(e.depth) * 2, ' ');
    line += e.end_of_contents ? std::string("EOC") : TypeName(e.tag_class, e.tag);
    if (!e.constructed) {
      const std::string value = ValueText(e, data, octets);
      if (!value.empty()) line += " " + value;
    }
    if (marks != nullptr) {
      for (const Finding* f : *marks) line += std::string("  ! ") + f->rule;
    }
    return line;
  }
}

Json DumpJson(const Tree& tree, const unsigned char* data) {
  const LintResult lint = Lint(tree, data);
  const ElementFindings findings = FindingsOf(tree, lint);
  Json all = Json::array();
  for (int root : tree.roots) all.push_back(ElementJson(tree, root, data, findings));
  return all;
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
