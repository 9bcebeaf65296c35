#include "keyasn/codec/encoder.h"

#include <cstring>

#include "keyasn/codec/asn_time.h"
#include "keyasn/codec/octets.h"
#include "keyasn/codec/oid_text.h"
#include "keyasn/support/file_time.h"

namespace {

constexpr unsigned char kContextSpecific = 0x80;
constexpr unsigned int kLastEncodableTag = 26;

enum class Contents {
  kNone,     // no contents octets
  kCopy,     // the value octets as they are
  kSmall,    // octets built on the stack
  kInteger,  // the value octets reversed
  kOid,      // built from the dotted text (too long for the stack buffer)
};

// Object identifiers up to this many contents octets are built on the stack in
// one walk over the text; longer ones are walked a second time into the result.
constexpr unsigned int kStackOidContents = 64;

bool AllZero(const unsigned char* data, unsigned int size) {
  for (unsigned int i = 0; i < size; ++i)
    if (data[i]) return false;
  return true;
}

}  // namespace

IdentObj ASNTLowEncodeData(const ASNT_ASN_STRUCT_INFO& info, const unsigned char* data,
                           unsigned int size, int* /*error: never written*/) {
  Contents kind = Contents::kNone;
  unsigned int length = 0;      // what the length octets say
  unsigned int written = 0;     // contents octets actually written
  unsigned char small[kStackOidContents];
  static_assert(sizeof small >= keyasn::detail::kGeneralizedTimeTextSize, "time text fits");

  if (info.Class == kContextSpecific) {
    kind = Contents::kCopy;
    length = size;
    written = data ? size : 0;
  } else {
    if (info.Tag > kLastEncodableTag) return IdentObj();
    switch (info.Tag) {
      case 1:  // BOOLEAN
        kind = Contents::kSmall;
        small[0] = data && !AllZero(data, size) ? 0xFF : 0x00;
        length = written = 1;
        break;
      case 2:  // INTEGER
        kind = Contents::kInteger;
        length = written = keyasn::detail::IntegerContentsSize(data, size);
        break;
      case 3: case 4: case 12: case 19: case 20: case 22: case 26:  // strings
      case 16: case 17:  // SEQUENCE, SET: the items already encoded
        kind = Contents::kCopy;
        length = size;
        written = data ? size : 0;
        break;
      case 5:  // NULL
        break;
      case 6:  // OBJECT IDENTIFIER
        length = written = keyasn::detail::WriteOidContents(data, size, small, sizeof small);
        if (written > keyasn::detail::kMaxOidContents) return IdentObj();
        kind = written <= sizeof small ? Contents::kSmall : Contents::kOid;
        break;
      case 23:    // UTCTime
      case 24: {  // GeneralizedTime
        const bool generalized = info.Tag == 24;
        length = generalized ? keyasn::detail::kGeneralizedTimeTextSize
                             : keyasn::detail::kUtcTimeTextSize;
        if (!data) break;  // the length octet alone
        if (size < sizeof(FILETIME)) return IdentObj();
        FILETIME time;
        std::memcpy(&time, data, sizeof time);
        if (!keyasn::detail::PutTimeText(time, generalized, small)) return IdentObj();
        kind = Contents::kSmall;
        written = length;
        break;
      }
      default:
        return IdentObj();
    }
  }

  const unsigned int headerSize =
      keyasn::detail::IdentifierSize(info.Tag) + keyasn::detail::LengthSize(length);
  if (written > 0xFFFFFFFFu - headerSize) return IdentObj();
  IdentObj result;
  result.Alloc(headerSize + written);
  unsigned char* out = result.GetData();
  out += keyasn::detail::PutIdentifier(
      out, static_cast<unsigned char>(info.Class | info.Constructed), info.Tag);
  out += keyasn::detail::PutLength(out, length);
  switch (kind) {
    case Contents::kNone:
      break;
    case Contents::kCopy:
      if (written) std::memcpy(out, data, written);
      break;
    case Contents::kSmall:
      if (written) std::memcpy(out, small, written);
      break;
    case Contents::kInteger:
      for (unsigned int i = 0; i < written; ++i) out[i] = data ? data[written - 1 - i] : 0;
      break;
    case Contents::kOid:
      keyasn::detail::PutOidContents(data, size, out);
      break;
  }
  return result;
}
