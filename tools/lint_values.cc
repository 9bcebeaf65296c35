// Contents of the primitive types whose DER form is fixed (X.690 8.2-8.8, 8.19,
// 10.2, 11.2).
#include "lint_rules.h"

namespace keyasn {
namespace tool {

namespace {

// Named bit lists are short; longer BIT STRINGs are taken for keys and
// signatures, whose last bits are whatever they are.
constexpr std::size_t kNamedBitListOctets = 4;

bool IsCharacterString(unsigned int tag) {
  switch (tag) {
    case 7: case 12: case 18: case 19: case 20: case 21: case 22: case 25: case 26:
    case 27: case 28: case 29: case 30:
      return true;
    default:
      return false;
  }
}

std::string Contents(const Checked& c) {
  const std::size_t n = c.element.length;
  return std::to_string(n) + (n == 1 ? " contents octet" : " contents octets") +
         (n == 0 ? "" : " (" + OctetsText(c.contents(), n) + ")");
}

void CheckBoolean(const Checked& c, Findings* findings) {
  const unsigned char* p = c.contents();
  if (c.element.length != 1) {
    findings->Error(c, "boolean.length", "BOOLEAN with " + Contents(c) + "; DER has exactly one");
  } else if (p[0] != 0x00 && p[0] != 0xFF) {
    findings->Error(c, "boolean.value", "BOOLEAN TRUE written as " + OctetsText(p, 1) +
                                            "; DER writes FF");
  }
}

void CheckInteger(const Checked& c, Findings* findings) {
  const unsigned char* p = c.contents();
  const std::size_t n = c.element.length;
  const std::string type = TypeName(0, c.element.tag);
  if (n == 0) {
    findings->Error(c, "integer.empty", type + " with no contents octets");
  } else if (n > 1 && ((p[0] == 0x00 && (p[1] & 0x80) == 0) ||
                       (p[0] == 0xFF && (p[1] & 0x80) != 0))) {
    findings->Error(c, "integer.non-minimal",
                    type + " starts " + OctetsText(p, 2) + ": the first nine bits are all " +
                        (p[0] == 0 ? "zero" : "one") + ", so the first octet is redundant");
  }
}

void CheckBitString(const Checked& c, Findings* findings) {
  const unsigned char* p = c.contents();
  const std::size_t n = c.element.length;
  if (n == 0) {
    findings->Error(c, "bitstring.empty", "BIT STRING without the unused-bits octet");
    return;
  }
  const unsigned int unused = p[0];
  if (unused > 7 || (unused > 0 && n == 1)) {
    findings->Error(c, "bitstring.unused-range",
                    "unused-bits octet " + OctetsText(p, 1) +
                        (unused > 7 ? " is above 7" : " with no bits following"));
    return;
  }
  if (n == 1) return;
  const unsigned char last = p[n - 1];
  if ((last & ((1u << unused) - 1)) != 0) {
    findings->Error(c, "bitstring.unused-nonzero",
                    "the " + std::to_string(unused) + " unused bit" + (unused == 1 ? "" : "s") +
                        " of the last octet " + OctetsText(&last, 1) + " are not zero");
    return;
  }
  const bool named_bit_list = !c.element.encapsulates && (unused > 0 || n - 1 <= kNamedBitListOctets);
  if (named_bit_list && ((last >> unused) & 1) == 0) {
    findings->Note(c, "bitstring.trailing-zero",
                   "ends in zero bits (last octet " + OctetsText(&last, 1) + ", " +
                       std::to_string(unused) +
                       " unused): if the type is a named bit list, DER leaves them out");
  }
}

void CheckOid(const Checked& c, Findings* findings) {
  const unsigned char* p = c.contents();
  const std::size_t n = c.element.length;
  if (n == 0) {
    findings->Error(c, "oid.empty", TypeName(0, c.element.tag) + " with no contents octets");
    return;
  }
  for (std::size_t i = 0; i < n; ++i) {
    const bool starts_subidentifier = i == 0 || (p[i - 1] & 0x80) == 0;
    if (starts_subidentifier && p[i] == 0x80) {
      findings->Error(c, "oid.non-minimal",
                      "subidentifier at contents octet " + std::to_string(i) +
                          " starts with 80 (a leading zero group): " + OctetsText(p, n));
      break;
    }
  }
  if ((p[n - 1] & 0x80) != 0) {
    findings->Error(c, "oid.truncated",
                    "the last subidentifier does not end: its last octet " +
                        OctetsText(p + n - 1, 1) + " has bit 8 set");
  }
}

}  // namespace

void CheckValue(const Checked& c, Findings* findings) {
  const Element& e = c.element;
  if (e.tag_class != 0 || e.end_of_contents) return;
  if (e.constructed) {
    if (e.tag == 3 || e.tag == 4 || IsCharacterString(e.tag)) {
      findings->Error(c, "constructed.primitive-type",
                      "constructed " + TypeName(e.tag_class, e.tag) +
                          "; DER allows only the primitive form");
    }
    return;
  }
  switch (e.tag) {
    case 1: CheckBoolean(c, findings); break;
    case 2: case 10: CheckInteger(c, findings); break;
    case 3: CheckBitString(c, findings); break;
    case 5:
      if (e.length != 0) findings->Error(c, "null.length", "NULL with " + Contents(c));
      break;
    case 6: case 13: CheckOid(c, findings); break;
    default: break;
  }
}

}  // namespace tool
}  // namespace keyasn
