// Helpers shared by the TYPE handlers: calling the library with its failures
// turned into the tool's, and the readable forms of times and identifiers.
#ifndef KEYASN_TOOLS_TYPES_COMMON_H_
#define KEYASN_TOOLS_TYPES_COMMON_H_

#include <cstring>
#include <exception>
#include <list>
#include <string>

#include "keyasn/keyasn.h"

#include "common.h"
#include "view.h"

namespace keyasn {
namespace tool {

// StatusText is the place and code of a library failure, the place text made
// readable (its Windows-1251 octets converted to UTF-8).
std::string StatusText(const XRUVStatus& status);

// Library runs `call` and turns a failure of the library into a ToolError with
// kExitMalformed, prefixed by `what` ("cannot read the container").
template <typename Call>
void Library(const std::string& what, Call call) {
  try {
    call();
  } catch (const XRUVStatus& status) {
    throw ToolError(kExitMalformed, what + ": " + StatusText(status));
  } catch (const ToolError&) {
    throw;
  } catch (const std::exception& e) {
    throw ToolError(kExitMalformed, what + ": " + e.what());
  }
}

// CheckCode turns a non-zero code returned or stored by the library into a
// ToolError naming `place`.
void CheckCode(int code, const std::string& what, const std::string& place);

// ReadWithCode runs a reader given an error pointer, `read(&code)`, and returns
// what it returns. A reader may raise all the same (for damage deep inside a
// member), so both the stored code and a raised failure become a ToolError.
template <typename Read>
unsigned int ReadWithCode(const std::string& what, const std::string& place, Read read) {
  int code = 0;
  unsigned int used = 0;
  Library(what, [&] { used = read(&code); });
  CheckCode(code, what, place);
  return used;
}

inline IdentObj ToIdent(const Bytes& bytes) {
  return IdentObj(bytes.data(), static_cast<unsigned int>(bytes.size()));
}
// SameOctets compares two buffers (the tool does its own comparison, needing only
// the buffer accessors of the library).
inline bool SameOctets(const IdentObj& a, const IdentObj& b) {
  return a.Count() == b.Count() &&
         (a.Count() == 0 || std::memcmp(a.GetData(), b.GetData(), a.Count()) == 0);
}
inline Bytes ToBytes(const IdentObj& ident) {
  return Bytes(ident.GetData(), ident.GetData() + ident.Count());
}

// FileTimeText is the ISO 8601 form of a file time ("2024-01-01T00:00:00Z", with
// milliseconds when there are any); empty when it cannot be converted.
std::string FileTimeText(const CRUVFileTime& time);
// ParseFileTime reads that form back; false for any other text.
bool ParseFileTime(const std::string& iso, CRUVFileTime* time);

// Time shows a file time: the ISO text, or null for the zero time (none).
void ShowTime(View* view, const std::string& name, const CRUVFileTime& time);
// ReadTime reads what ShowTime wrote.
CRUVFileTime ReadTime(const JsonIn& in, const std::string& name);

// ShowOidContents shows identifier contents octets in dotted form, or as
// {"hex": ...} when the dotted form would not give the same octets back.
void ShowOidContents(View* view, const std::string& name, const IdentObj& contents);

// ShowOptionalOctets: the octets, or null when empty; ReadOptionalOctets reads it.
void ShowOptionalOctets(View* view, const std::string& name, const IdentObj& octets);
IdentObj ReadOptionalOctets(const JsonIn& in, const std::string& name);

// ShowOptionalElement: an encoded element (with its tree), or null when empty.
void ShowOptionalElement(View* view, const std::string& name, const IdentObj& element);

// ShowAlgorithmId shows ObjID and AddInfo; ReadAlgorithmId reads them back.
void ShowAlgorithmId(View* view, const ASNAlgorithmIdentifier& id);
ASNAlgorithmIdentifier ReadAlgorithmId(const JsonIn& in);

// ShowIdData / ReadIdData: the same for a plain CASNTIdData (reached through the
// accessors of ASNAlgorithmIdentifier, which adds nothing to it).
void ShowIdData(View* view, const CASNTIdData& id);
CASNTIdData ReadIdData(const JsonIn& in);

// ShowKeyOctets: octets that often are DER themselves (a public key): shown with
// their element tree when they are.
void ShowKeyOctets(View* view, const std::string& name, const IdentObj& octets);

// ShowElementList / ReadElementList: a list of encoded elements as a JSON array
// of hex strings.
void ShowElementList(View* view, const std::string& name, const std::list<IdentObj>& items);
std::list<IdentObj> ReadElementList(const JsonIn& in, const std::string& name);

// Size is the octet count of a buffer the tool holds, for the library's 32-bit sizes.
inline unsigned int Size(const Bytes& bytes) { return static_cast<unsigned int>(bytes.size()); }

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_TYPES_COMMON_H_
