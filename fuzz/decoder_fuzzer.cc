// The primitive decoder over every tag and class, with the headers the parser
// makes and with headers chosen by the input; and its three helpers.
#include <cmath>
#include <cstring>
#include <string>

#include "fuzz/fuzz_support.h"
#include "fuzz/oracles.h"
#include "keyasn/codec/decoder.h"
#include "keyasn/codec/encoder.h"
#include "keyasn/codec/header.h"
#include "keyasn/support/file_time.h"

namespace {

using keyasn_fuzz::Input;
using keyasn_fuzz::Same;

bool IsStringLike(unsigned int tag) {
  switch (tag) {
    case 3: case 4: case 12: case 16: case 17: case 19: case 20: case 22: case 26: case 30:
      return true;
    default:
      return false;
  }
}

bool AllZero(const IdentObj& value) {
  for (unsigned int i = 0; i < value.Count(); ++i)
    if (value.GetData()[i]) return false;
  return true;
}

// A canonical time text (YYMMDDhhmmssZ or YYYYMMDDhhmmssZ) that decodes is
// written back as the same text.
void CheckTimeRoundTrip(const ASNT_ASN_STRUCT_INFO& info, const IdentObj& value) {
  const unsigned int textSize = info.Tag == 23 ? 13 : 15;
  if (info.Length != textSize || info.Contents[textSize - 1] != 'Z') return;
  if (!IsDigits(info.Contents, static_cast<int>(textSize - 1))) return;
  if (info.Tag == 24 && std::memcmp(info.Contents, "1601", 4) < 0) return;
  ASNT_ASN_STRUCT_INFO out{};
  out.Tag = info.Tag;
  IdentObj encoded = ASNTLowEncodeData(out, value.GetData(), value.Count(), nullptr);
  KEYASN_FUZZ_CHECK(encoded.Count() == 2 + textSize);
  KEYASN_FUZZ_CHECK(std::memcmp(encoded.GetData() + 2, info.Contents, textSize) == 0);
}

// Decodes the element that `info` describes (its Length octets at Contents are
// readable) and compares the result with what the contents say.
void CheckDecode(const ASNT_ASN_STRUCT_INFO& info) {
  int code = -1;
  IdentObj value = ASNTLowDecodeData(info, nullptr, 0, &code);
  KEYASN_FUZZ_CHECK(code == 0 || code == 115 || code == 206);
  const unsigned char* c = info.Contents;
  const unsigned int n = c ? info.Length : 0;
  if (info.Class == 0x80) {
    KEYASN_FUZZ_CHECK(code == 0 && Same(value, c, n));
    return;
  }
  if (info.Tag > 30) {
    KEYASN_FUZZ_CHECK(code == 115 && value.Count() == 0);
    return;
  }
  if (IsStringLike(info.Tag)) {
    KEYASN_FUZZ_CHECK(code == 0 && Same(value, c, n));
    return;
  }
  switch (info.Tag) {
    case 1: {
      KEYASN_FUZZ_CHECK(code == 0 && value.Count() == 4);
      uint32_t flag;
      std::memcpy(&flag, value.GetData(), 4);
      KEYASN_FUZZ_CHECK(flag == (n > 0 && c[0] != 0 ? 1u : 0u));
      break;
    }
    case 2: {
      KEYASN_FUZZ_CHECK(code == 0);
      if (c) {
        std::vector<uint8_t> expected = keyasn_fuzz::IntegerValue(c, n);
        KEYASN_FUZZ_CHECK(Same(value, expected.data(), expected.size()));
      }
      break;
    }
    case 5:
      KEYASN_FUZZ_CHECK(code == 0 && value.Count() == 0);
      break;
    case 6: {
      if (!c) {
        KEYASN_FUZZ_CHECK(code == 206 && value.Count() == 0);
        break;
      }
      std::string text;
      const bool ok = keyasn_fuzz::OidText(c, n, &text);
      KEYASN_FUZZ_CHECK(code == (ok ? 0 : 206));
      KEYASN_FUZZ_CHECK(Same(value, reinterpret_cast<const uint8_t*>(text.data()), text.size()));
      break;
    }
    case 23:
    case 24:
      KEYASN_FUZZ_CHECK(value.Count() == 8);
      if (code != 0) KEYASN_FUZZ_CHECK(AllZero(value));
      if (info.Tag == 23) KEYASN_FUZZ_CHECK(code != 115);
      if (code == 0) CheckTimeRoundTrip(info, value);
      break;
    default:
      KEYASN_FUZZ_CHECK(code == 115 && value.Count() == 0);
      break;
  }
}

// The element as the callers see it: parsed, checked to fit, then decoded.
void DecodeParsed(const uint8_t* data, size_t size) {
  ASNT_ASN_STRUCT_INFO info;
  if (ASNTGetAsnInfo(info, data, keyasn_fuzz::Size32(size)) != 0) return;
  if (info.Length == 0xFFFFFFFFu) return;
  const size_t header = static_cast<size_t>(info.Contents - data);
  if (info.Length > size - header) return;
  CheckDecode(info);
}

// Any class and tag over the rest of the input (in an exactly sized buffer).
void DecodeChosen(const uint8_t* data, size_t size) {
  Input in(data, size);
  const uint8_t first = in.Byte();
  const uint8_t more = in.Byte();
  ASNT_ASN_STRUCT_INFO info{};
  info.Class = first & 0xC0;
  info.Constructed = first & 0x20;
  info.Tag = (first & 0x1F) | (more & 0x80 ? (more & 0x7Fu) << 5 : 0u);
  std::vector<uint8_t> contents = in.Rest();
  info.Length = keyasn_fuzz::Size32(contents.size());
  info.Contents = contents.data();
  CheckDecode(info);
  // A missing contents pointer reads as no contents.
  info.Contents = nullptr;
  int code = -1;
  (void)ASNTLowDecodeData(info, nullptr, 0, &code);
  KEYASN_FUZZ_CHECK(code == 0 || code == 115 || code == 206);
}

void CheckHelpers(const uint8_t* data, size_t size) {
  std::vector<uint8_t> text = keyasn_fuzz::Bytes(data, size);
  bool digits = true;
  for (uint8_t ch : text) digits = digits && ch >= '0' && ch <= '9';
  KEYASN_FUZZ_CHECK(IsDigits(text.data(), static_cast<int>(text.size())) == digits);

  Input in(data, size);
  uint64_t bits = in.U64();
  double fraction;
  std::memcpy(&fraction, &bits, sizeof fraction);
  const uint8_t which = in.Byte();
  unsigned short m = 0, s = 0, ms = 0;
  const double left = FractionToTime(fraction, which & 1 ? &m : nullptr,
                                     which & 2 ? &s : nullptr, which & 4 ? &ms : nullptr);
  if (std::isfinite(fraction)) KEYASN_FUZZ_CHECK(!(std::fabs(left) > 1.0));

  const unsigned int words[2] = {in.U32(), in.U32()};
  std::vector<uint8_t> out(8);
  MemCpyDwordToByte(out.data(), words, 2);
  KEYASN_FUZZ_CHECK(keyasn_fuzz::FileTime64(out.data()) ==
                    (static_cast<uint64_t>(words[1]) << 32 | words[0]));
}

}  // namespace

KEYASN_FUZZ_TARGET(decoder) {
  DecodeParsed(data, size);
  DecodeChosen(data, size);
  CheckHelpers(data, size);
}
