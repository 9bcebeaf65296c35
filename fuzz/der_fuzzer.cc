// DerHelper: every decoder over the input, with and without the tag check, and
// the encoders' round trips (integers, booleans, identifiers, octet and bit
// strings, text, generalized time).
#include <cstring>
#include <functional>
#include <string>

#include "fuzz/fuzz_support.h"
#include "keyasn/der/der_helper.h"
#include "keyasn/support/file_time.h"

namespace {

using keyasn_fuzz::Guard;
using keyasn_fuzz::Input;

// Decoders raise codes of the table, or an errno from a text conversion.
int Decode(const std::function<void()>& f) { return Guard(f, true); }

void DecodeAll(const IdentObj& element) {
  for (bool skip : {false, true}) {
    (void)Decode([&] { (void)DerHelper::DecodeLargeInteger(element, skip); });
    (void)Decode([&] { (void)DerHelper::DecodeInteger(element, skip); });
    (void)Decode([&] { (void)DerHelper::DecodeBool(element, skip); });
    (void)Decode([&] { (void)DerHelper::DecodeOid(element, skip); });
    (void)Decode([&] { (void)DerHelper::DecodeOctetString(element, skip); });
    (void)Decode([&] {
      (void)DerHelper::DecodeOctetString(element.GetData(), element.Count(), skip);
    });
    (void)Decode([&] { (void)DerHelper::DecodeBitStringAsInt(element, skip); });
    (void)Decode([&] { (void)DerHelper::DecodeUtf8StringW(element, skip); });
    (void)Decode([&] { (void)DerHelper::DecodeUtf8String(element, skip); });
    (void)Decode([&] { (void)DerHelper::DecodeGeneralizedTime(element, skip); });
  }
  unsigned int tag = 0;
  const int code = Decode([&] { tag = DerHelper::GetTag(element); });
  bool universal = false;
  KEYASN_FUZZ_CHECK(Decode([&] { universal = DerHelper::IsUniversalTag(element); }) == code);
  if (code == 0) KEYASN_FUZZ_CHECK(universal == ((element.GetData()[0] & 0xC0) == 0));
}

void RoundTrips(Input& in) {
  const uint32_t value = in.U32() >> (in.Byte() % 32);
  const int number = static_cast<int>(value & 0x7FFFFFFF);
  KEYASN_FUZZ_CHECK(DerHelper::DecodeInteger(DerHelper::EncodeInteger(number)) == number);
  const bool flag = in.Bool();
  KEYASN_FUZZ_CHECK(DerHelper::DecodeBool(DerHelper::EncodeBool(flag)) == flag);

  std::vector<uint8_t> octets = in.Take(in.Byte());
  const IdentObj blob(octets.data(), keyasn_fuzz::Size32(octets.size()));
  KEYASN_FUZZ_CHECK(DerHelper::DecodeOctetString(DerHelper::EncodeOctetString(blob)) == blob);
  const IdentObj bits = DerHelper::EncodeBitString(octets.data(), static_cast<int>(octets.size()));
  if (octets.size() <= 3) {
    uint32_t expected = 0;
    for (size_t i = 0; i < octets.size(); ++i) expected |= uint32_t{octets[i]} << (8 * (i + 1));
    KEYASN_FUZZ_CHECK(DerHelper::DecodeBitStringAsInt(bits) == expected);
  } else {
    KEYASN_FUZZ_CHECK(Decode([&] { (void)DerHelper::DecodeBitStringAsInt(bits); }) == 131);
  }
  // Large integers: the value comes back without its redundant octets.
  const IdentObj large = DerHelper::EncodeInteger(blob);
  (void)DerHelper::DecodeLargeInteger(large);

  // Identifiers whose first subidentifier fits one octet.
  std::string oid = std::to_string(in.Byte() % 3) + "." + std::to_string(in.Byte() % 40);
  for (int i = in.Byte() % 8; i > 0; --i) oid += "." + std::to_string(in.U32());
  KEYASN_FUZZ_CHECK(DerHelper::DecodeOid(DerHelper::EncodeOid(oid)) ==
                    (oid.find('.', oid.find('.') + 1) == std::string::npos ? oid + "." : oid));

  // Text of the portable character set goes through any locale.
  std::string text;
  for (uint8_t c : in.Take(in.Byte() % 64)) text += static_cast<char>(0x20 + c % 0x5F);
  KEYASN_FUZZ_CHECK(DerHelper::DecodeUtf8String(DerHelper::EncodeStringAsUtf8(text, 0)) == text);
  KEYASN_FUZZ_CHECK(DerHelper::DecodeUtf8String(DerHelper::EncodeStringAsIa5(text)) == text);
  const IdentObj printable = DerHelper::EncodeStringAsPrintable(text, in.Byte());
  (void)DerHelper::DecodeUtf8String(printable);
  const IdentObj numeric = DerHelper::EncodeStringAsNumeric(text, in.Byte());
  KEYASN_FUZZ_CHECK(DerHelper::DecodeUtf8String(numeric).empty());

  // Generalized time, to the second, from 1601 to 9999.
  const uint64_t ticks = in.U64() % 2650467743990000000ull;
  const CRUVFileTime time(static_cast<unsigned long>(ticks));
  const CRUVFileTime back = DerHelper::DecodeGeneralizedTime(DerHelper::EncodeGeneralizedTime(time));
  const FILETIME& ft = back.GetFileTime();
  const uint64_t second = 10000000;
  KEYASN_FUZZ_CHECK((static_cast<uint64_t>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime) ==
                    ticks / second * second);
}

}  // namespace

KEYASN_FUZZ_TARGET(der) {
  DecodeAll(IdentObj(data, keyasn_fuzz::Size32(size)));
  Input in(data, size);
  RoundTrips(in);
}
