// The contents octets of a primitive from the readable value dump shows for it,
// so that a user can edit an INTEGER's decimal, an identifier's dotted text, a
// string or a time in dump's JSON and encode it back.
#ifndef KEYASN_TOOLS_VALUE_ENCODE_H_
#define KEYASN_TOOLS_VALUE_ENCODE_H_

#include <string>

#include "common.h"

namespace keyasn {
namespace tool {

// ValueContents writes the contents of a universal primitive of `tag` (of a BIT
// STRING: without the unused-bits octet) from `text`, the form dump gives its
// value. False, with the reason in `problem`, when the text is not of that form.
bool ValueContents(unsigned int tag, const std::string& text, Bytes* contents, std::string* problem);

// Utf8ToUtf16 / Utf8ToUtf32: big-endian BMPString / UniversalString contents.
bool Utf8ToUtf16(const std::string& text, Bytes* out);
bool Utf8ToUtf32(const std::string& text, Bytes* out);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_VALUE_ENCODE_H_
