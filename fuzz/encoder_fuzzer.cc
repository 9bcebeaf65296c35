// The primitive encoder over every class and tag, and its round trips with the
// decoder within their domains: INTEGER, object identifiers whose first
// subidentifier fits one octet, UTCTime and GeneralizedTime.
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

constexpr int kUntouched = -12345;

IdentObj Encode(unsigned char tagClass, unsigned char constructed, unsigned int tag,
                const uint8_t* data, size_t size) {
  ASNT_ASN_STRUCT_INFO info{};
  info.Class = tagClass;
  info.Constructed = constructed;
  info.Tag = tag;
  int error = kUntouched;
  IdentObj out = ASNTLowEncodeData(info, data, keyasn_fuzz::Size32(size), &error);
  KEYASN_FUZZ_CHECK(error == kUntouched);  // never written
  return out;
}

// Decodes a complete element that the encoder made.
IdentObj Decode(const IdentObj& element, int* code) {
  ASNT_ASN_STRUCT_INFO info;
  KEYASN_FUZZ_CHECK(ASNTGetAsnInfo(info, element.GetData(), element.Count()) == 0);
  KEYASN_FUZZ_CHECK(static_cast<size_t>(info.Contents - element.GetData()) + info.Length ==
                    element.Count());
  return ASNTLowDecodeData(info, nullptr, 0, code);
}

// Any class, flag, tag and value: an empty result, or an element whose header
// says what was asked and whose length matches its contents.
void EncodeAnything(Input& in) {
  const uint8_t first = in.Byte();
  const uint8_t more = in.Byte();
  const unsigned char tagClass = first & 0xC0;
  const unsigned int tag = (first & 0x1F) | (more & 0x80 ? (more & 0x7Fu) << 5 : 0u);
  std::vector<uint8_t> value = in.Take(more & 0x10 ? 300 : 40);
  const uint8_t* pointer = (more & 0x60) == 0x60 ? nullptr : value.data();
  const bool null = pointer == nullptr;  // an empty vector may give no pointer either
  IdentObj element = Encode(tagClass, first & 0x20, tag, pointer, value.size());
  const bool known = tagClass == 0x80 || tag == 1 || tag == 2 || tag == 3 || tag == 4 ||
                     tag == 5 || tag == 6 || tag == 12 || tag == 16 || tag == 17 ||
                     tag == 19 || tag == 20 || tag == 22 || tag == 23 || tag == 24 ||
                     tag == 26;
  if (!known) {
    KEYASN_FUZZ_CHECK(element.Count() == 0);
    return;
  }
  if (element.Count() == 0) {  // only a time value out of range
    KEYASN_FUZZ_CHECK(tagClass != 0x80 && (tag == 23 || tag == 24));
    return;
  }
  ASNT_ASN_STRUCT_INFO info;
  KEYASN_FUZZ_CHECK(ASNTGetAsnInfo(info, element.GetData(), element.Count()) == 0);
  KEYASN_FUZZ_CHECK(info.Class == tagClass && info.Constructed == (first & 0x20));
  KEYASN_FUZZ_CHECK(info.Tag == tag);
  const size_t header = static_cast<size_t>(info.Contents - element.GetData());
  if (!null) KEYASN_FUZZ_CHECK(header + info.Length == element.Count());
  if (tagClass == 0x80 || (tag != 1 && tag != 2 && tag != 5 && tag != 6 && tag != 23 &&
                           tag != 24)) {
    KEYASN_FUZZ_CHECK(info.Length == value.size());
    if (null)
      KEYASN_FUZZ_CHECK(element.Count() == header);
    else if (!value.empty())
      KEYASN_FUZZ_CHECK(std::memcmp(info.Contents, value.data(), value.size()) == 0);
  } else if (tag == 1) {
    bool set = false;
    for (uint8_t b : value) set = set || b;
    KEYASN_FUZZ_CHECK(element.Count() == 3 && element.GetData()[1] == 1);
    KEYASN_FUZZ_CHECK(element.GetData()[2] == (!null && set ? 0xFF : 0x00));
  } else if (tag == 5) {
    KEYASN_FUZZ_CHECK(element.Count() == 2 && element.GetData()[1] == 0);
  }
}

void IntegerRoundTrip(Input& in) {
  std::vector<uint8_t> value = in.Take(in.Byte() % 40);
  IdentObj element = Encode(0, 0, 2, value.data(), value.size());
  std::vector<uint8_t> minimal = keyasn_fuzz::MinimalInteger(value);
  KEYASN_FUZZ_CHECK(element.Count() >= 2);
  KEYASN_FUZZ_CHECK(element.GetData()[0] == 0x02 && element.GetData()[1] == minimal.size());
  KEYASN_FUZZ_CHECK(minimal.empty() ||
                    std::memcmp(element.GetData() + 2, minimal.data(), minimal.size()) == 0);
  int code = -1;
  IdentObj back = Decode(element, &code);
  KEYASN_FUZZ_CHECK(code == 0);
  std::vector<uint8_t> expected = keyasn_fuzz::IntegerValue(minimal.data(), minimal.size());
  KEYASN_FUZZ_CHECK(Same(back, expected.data(), expected.size()));
}

void OidRoundTrip(Input& in) {
  const unsigned int x = in.Byte() % 3;
  const unsigned int y = in.Byte() % 40;  // the decoder splits the first octet by 40
  const unsigned int more = in.Byte() % 24;
  std::string text = std::to_string(x);
  if (in.Bool() || more) text += "." + std::to_string(y);
  for (unsigned int i = 0; i < more; ++i) {
    const uint32_t wide = in.U32();
    text += "." + std::to_string(wide >> (in.Byte() % 32));
  }
  IdentObj element = Encode(0, 0, 6, reinterpret_cast<const uint8_t*>(text.data()), text.size());
  KEYASN_FUZZ_CHECK(element.Count() >= 2);
  int code = -1;
  IdentObj back = Decode(element, &code);
  KEYASN_FUZZ_CHECK(code == 0);
  std::string expected = text.find('.') == std::string::npos ? std::string() : text;
  if (!more && !expected.empty()) expected += ".";  // the first pair keeps its trailing dot
  KEYASN_FUZZ_CHECK(Same(back, reinterpret_cast<const uint8_t*>(expected.data()),
                         expected.size()));
}

// Free text as an object identifier: whatever is written decodes again.
void OidAnyText(Input& in) {
  std::vector<uint8_t> text = in.Take(in.Byte());
  IdentObj element = Encode(0, 0, 6, text.data(), text.size());
  if (element.Count() == 0) return;
  int code = -1;
  (void)Decode(element, &code);
  KEYASN_FUZZ_CHECK(code == 0);
}

void TimeRoundTrip(Input& in) {
  const bool generalized = in.Bool();
  const uint64_t ticks = in.U64() >> (in.Byte() % 8);
  uint8_t value[8];
  for (int i = 0; i < 8; ++i) value[i] = static_cast<uint8_t>(ticks >> (8 * i));
  IdentObj element = Encode(0, 0, generalized ? 24 : 23, value, sizeof value);
  FILETIME time{static_cast<unsigned int>(ticks), static_cast<unsigned int>(ticks >> 32)};
  SYSTEMTIME calendar;
  if (!FileTimeToSystemTime(&time, &calendar)) {
    KEYASN_FUZZ_CHECK(element.Count() == 0);
    return;
  }
  KEYASN_FUZZ_CHECK(element.Count() == (generalized ? 17u : 15u));
  const bool inRange = generalized ? calendar.wYear <= 9999
                                   : calendar.wYear >= 1950 && calendar.wYear <= 2049;
  int code = -1;
  IdentObj back = Decode(element, &code);
  if (!inRange) return;
  KEYASN_FUZZ_CHECK(code == 0 && back.Count() == 8);
  const uint64_t second = 10000000;
  KEYASN_FUZZ_CHECK(keyasn_fuzz::FileTime64(back.GetData()) == ticks / second * second);
}

}  // namespace

// Only the front of a long input is a control stream worth following.
constexpr size_t kMaxStream = 65536;

KEYASN_FUZZ_TARGET(encoder) {
  Input in(data, size < kMaxStream ? size : kMaxStream);
  while (in.Remaining() > 0) {
    switch (in.Byte() % 5) {
      case 0: EncodeAnything(in); break;
      case 1: IntegerRoundTrip(in); break;
      case 2: OidRoundTrip(in); break;
      case 3: OidAnyText(in); break;
      default: TimeRoundTrip(in); break;
    }
  }
}
