// Test helpers for the record tests: temporary files and a view of a record's
// protected state.
#ifndef KEYASN_RECORD_RECORD_TEST_UTIL_H_
#define KEYASN_RECORD_RECORD_TEST_UTIL_H_

#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "keyasn/record/base_record.h"

namespace keyasn {
namespace testing {

// A real file holding the given octets, removed when the object goes.
class TempFile {
 public:
  explicit TempFile(const std::vector<unsigned char>& octets) {
    std::string pattern = ::testing::TempDir() + "keyasn_record_XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int fd = mkstemp(name.data());
    if (fd < 0) throw std::runtime_error("mkstemp");
    size_t done = 0;
    while (done < octets.size()) {
      const ssize_t n = write(fd, octets.data() + done, octets.size() - done);
      if (n <= 0) break;
      done += static_cast<size_t>(n);
    }
    close(fd);
    path_ = name.data();
  }
  ~TempFile() { unlink(path_.c_str()); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;
  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

// Peek exposes a record's protected state to the tests.
class Peek : public CASNTBaseRecord {
 public:
  using CASNTBaseRecord::operator=;
  static const ASNT_ASN_STRUCT_INFO& Header(const CASNTBaseRecord& r) {
    return r.*(&Peek::header);
  }
  static const IdentObj& Entry(const CASNTBaseRecord& r) { return r.*(&Peek::entry); }
  static const IdentObj& Encoded(const CASNTBaseRecord& r) { return r.*(&Peek::encoded); }
  static bool HeaderIsZero(const CASNTBaseRecord& r) {
    const ASNT_ASN_STRUCT_INFO& h = Header(r);
    return h.Class == 0 && h.Constructed == 0 && h.Tag == 0 && h.Length == 0 && !h.Contents;
  }
};

}  // namespace testing
}  // namespace keyasn

#endif  // KEYASN_RECORD_RECORD_TEST_UTIL_H_
