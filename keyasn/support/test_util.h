// Helpers shared by every unit test: octet buffers, expected failures, prefix
// sweeps and scratch files. Used by the *_test.cc files only.
#ifndef KEYASN_SUPPORT_TEST_UTIL_H_
#define KEYASN_SUPPORT_TEST_UTIL_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "keyasn/support/ident_obj.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_hex.h"

namespace keyasn {
namespace testing {

// Octets is an owned run of octets as the tests build them.
using Octets = std::vector<unsigned char>;

// Size is the octet count of `v` as the library's size type.
inline unsigned int Size(const Octets& v) { return static_cast<unsigned int>(v.size()); }

// Bytes copies the octets of `obj` into an exactly sized heap buffer.
inline Octets Bytes(const IdentObj& obj) {
  return Octets(obj.GetData(), obj.GetData() + obj.Count());
}

// Exact copies the first `count` octets into a heap buffer of exactly that size, so
// that the address sanitizer sees any read beyond it.
inline IdentObj Exact(const Octets& octets, std::size_t count) {
  return IdentObj(count ? octets.data() : nullptr, static_cast<unsigned int>(count));
}

// ReadHex reads `hex` into `record` from an exactly sized heap buffer.
template <class Record>
auto ReadHex(Record& record, const std::string& hex, int* err)
    -> decltype(record.ReadData(nullptr, 0u, err)) {
  const Octets input = HexBytes(hex);
  return record.ReadData(input.data(), Size(input), err);
}

// ExpectStatus runs `call` and expects it to throw XRUVStatus with exactly this
// code and place text (compared octet for octet) and a clear flag.
template <typename Call>
void ExpectStatus(Call&& call, int code, const std::string& where) {
  try {
    call();
    ADD_FAILURE() << "no XRUVStatus thrown; expected " << code << " at " << where;
  } catch (const XRUVStatus& status) {
    EXPECT_EQ(status.Status(), code);
    EXPECT_EQ(std::string(status.Where()), where);
    EXPECT_FALSE(status.Flag());
  }
}

// Failure is the code and place text of an XRUVStatus (code 0 when none was raised).
struct Failure {
  int code = 0;
  std::string where;
};

// Raised runs `f` and reports the XRUVStatus it raised, if any.
template <class F>
Failure Raised(F&& f) {
  try {
    f();
  } catch (const XRUVStatus& status) {
    return Failure{status.Status(), status.Where()};
  }
  return Failure{};
}

// AcceptedPrefixes reads every proper prefix of `bytes` from a heap buffer of exactly
// that size (so that AddressSanitizer sees any over-read) and returns the lengths
// for which `read` reported success. An XRUVStatus counts as a refusal; any other
// exception escapes and fails the test.
inline std::vector<size_t> AcceptedPrefixes(
    const Octets& bytes, const std::function<bool(const unsigned char*, unsigned int)>& read) {
  std::vector<size_t> accepted;
  for (size_t n = 0; n < bytes.size(); ++n) {
    Octets prefix(bytes.begin(), bytes.begin() + static_cast<long>(n));
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

// ReadsWithoutStatus is a reader for AcceptedPrefixes: a fresh `Record` reads the
// octets, and returning at all (without an XRUVStatus) counts as accepting them.
template <class Record>
bool ReadsWithoutStatus(const unsigned char* data, unsigned int size) {
  Record record;
  record.ReadData(data, size);
  return true;
}

// PutLength appends the DER length octets of `length`.
inline void PutLength(Octets* out, size_t length) {
  if (length < 128) {
    out->push_back(static_cast<unsigned char>(length));
    return;
  }
  unsigned int n = 0;
  for (size_t v = length; v; v >>= 8) ++n;
  out->push_back(static_cast<unsigned char>(0x80 | n));
  for (unsigned int i = n; i-- > 0;) out->push_back(static_cast<unsigned char>(length >> (8 * i)));
}

// Tlv returns the one-octet identifier `tag`, the DER length octets of `contents`
// and `contents`.
inline Octets Tlv(unsigned char tag, const Octets& contents) {
  Octets out = {tag};
  PutLength(&out, contents.size());
  out.insert(out.end(), contents.begin(), contents.end());
  return out;
}

// Cat joins octet runs.
inline Octets Cat(std::initializer_list<Octets> parts) {
  Octets out;
  for (const Octets& part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

// Base64 decodes base64 text, skipping line ends, padding and anything else.
inline Octets Base64(const std::string& text) {
  Octets out;
  unsigned int acc = 0;
  int bits = 0;
  for (char c : text) {
    int v;
    if (c >= 'A' && c <= 'Z') v = c - 'A';
    else if (c >= 'a' && c <= 'z') v = c - 'a' + 26;
    else if (c >= '0' && c <= '9') v = c - '0' + 52;
    else if (c == '+') v = 62;
    else if (c == '/') v = 63;
    else continue;
    acc = (acc << 6) | static_cast<unsigned int>(v);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      out.push_back(static_cast<unsigned char>((acc >> bits) & 0xFF));
    }
  }
  return out;
}

// AsHex renders each buffer of a collection with ToHex.
template <class Collection>
std::vector<std::string> AsHex(const Collection& items) {
  std::vector<std::string> out;
  for (const IdentObj& item : items) out.push_back(ToHex(item));
  return out;
}

// TempFile is a scratch file (empty, or holding the given octets) removed when the
// object goes away.
class TempFile {
 public:
  TempFile() {
    std::string pattern = ::testing::TempDir() + "keyasn_XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int fd = mkstemp(name.data());
    if (fd < 0) throw std::runtime_error("mkstemp");
    close(fd);
    path_ = name.data();
  }
  explicit TempFile(const Octets& contents) : TempFile() {
    std::FILE* f = std::fopen(path_.c_str(), "wb");
    if (f == nullptr) throw std::runtime_error("fopen");
    if (!contents.empty()) std::fwrite(contents.data(), 1, contents.size(), f);
    std::fclose(f);
  }
  ~TempFile() { std::remove(path_.c_str()); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  const char* path() const { return path_.c_str(); }

  // Contents reads the whole file back.
  Octets Contents() const {
    Octets out;
    std::FILE* f = std::fopen(path_.c_str(), "rb");
    if (f == nullptr) return out;
    int c;
    while ((c = std::fgetc(f)) != EOF) out.push_back(static_cast<unsigned char>(c));
    std::fclose(f);
    return out;
  }

 private:
  std::string path_;
};

}  // namespace testing
}  // namespace keyasn

#endif  // KEYASN_SUPPORT_TEST_UTIL_H_
