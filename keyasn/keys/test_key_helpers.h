// Test helpers for the key structures: expected failures and truncation sweeps.
// Used by the *_test.cc files only.
#ifndef KEYASN_KEYS_TEST_KEY_HELPERS_H_
#define KEYASN_KEYS_TEST_KEY_HELPERS_H_

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "keyasn/support/ident_obj.h"
#include "keyasn/support/status.h"

namespace keyasn {
namespace testing {

// Size is the octet count of `v` as the library's size type.
inline unsigned int Size(const std::vector<unsigned char>& v) {
  return static_cast<unsigned int>(v.size());
}

// Bytes copies the octets of `obj` into an exactly sized heap buffer.
inline std::vector<unsigned char> Bytes(const IdentObj& obj) {
  return std::vector<unsigned char>(obj.GetData(), obj.GetData() + obj.Count());
}

// ExpectStatus runs `action` and expects it to throw XRUVStatus with exactly this
// code and place text (compared octet for octet).
inline void ExpectStatus(const std::function<void()>& action, int code,
                         const std::string& where) {
  try {
    action();
    ADD_FAILURE() << "no XRUVStatus thrown; expected " << code << " at " << where;
  } catch (const XRUVStatus& status) {
    EXPECT_EQ(status.Status(), code);
    EXPECT_EQ(std::string(status.Where()), where);
    EXPECT_FALSE(status.Flag());
  }
}

// AcceptedPrefixes reads every proper prefix of `bytes` from a heap buffer of exactly
// that size (so that AddressSanitizer sees any over-read) and returns the lengths
// for which `read` reported success. An XRUVStatus counts as a refusal; any other
// exception escapes and fails the test.
inline std::vector<size_t> AcceptedPrefixes(
    const std::vector<unsigned char>& bytes,
    const std::function<bool(const unsigned char*, unsigned int)>& read) {
  std::vector<size_t> accepted;
  for (size_t n = 0; n < bytes.size(); ++n) {
    std::vector<unsigned char> prefix(bytes.begin(), bytes.begin() + static_cast<long>(n));
    const unsigned char* data = n ? prefix.data() : nullptr;
    bool ok = false;
    try {
      ok = read(data, static_cast<unsigned int>(n));
    } catch (const XRUVStatus&) {
      ok = false;
    }
    if (ok) accepted.push_back(n);
  }
  return accepted;
}

// Tlv returns the one-octet identifier `tag`, the DER length octets of `contents`
// and `contents`.
inline std::vector<unsigned char> Tlv(unsigned char tag,
                                      const std::vector<unsigned char>& contents) {
  std::vector<unsigned char> out = {tag};
  const size_t n = contents.size();
  if (n < 128) {
    out.push_back(static_cast<unsigned char>(n));
  } else {
    std::vector<unsigned char> length;
    for (size_t v = n; v; v >>= 8) length.insert(length.begin(), static_cast<unsigned char>(v));
    out.push_back(static_cast<unsigned char>(0x80 | length.size()));
    out.insert(out.end(), length.begin(), length.end());
  }
  out.insert(out.end(), contents.begin(), contents.end());
  return out;
}

// Cat joins octet runs.
inline std::vector<unsigned char> Cat(std::initializer_list<std::vector<unsigned char>> parts) {
  std::vector<unsigned char> out;
  for (const std::vector<unsigned char>& part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

}  // namespace testing
}  // namespace keyasn

#endif  // KEYASN_KEYS_TEST_KEY_HELPERS_H_
