// Helpers shared by the tests of the key structures. Used by *_test.cc only.
#ifndef KEYASN_KEYS_TEST_UTIL_H_
#define KEYASN_KEYS_TEST_UTIL_H_

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "keyasn/support/file.h"
#include "keyasn/support/ident_obj.h"
#include "keyasn/support/status.h"

namespace keyasn {
namespace testing {

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

// TempFile is a scratch file removed when the object goes away.
class TempFile {
 public:
  TempFile() {
    char name[] = "/tmp/keyasn_keys_XXXXXX";
    const int fd = mkstemp(name);
    if (fd >= 0) close(fd);
    path_ = name;
  }
  explicit TempFile(const std::vector<unsigned char>& contents) : TempFile() {
    std::FILE* f = std::fopen(path_.c_str(), "wb");
    if (f != nullptr) {
      if (!contents.empty()) std::fwrite(contents.data(), 1, contents.size(), f);
      std::fclose(f);
    }
  }
  ~TempFile() { std::remove(path_.c_str()); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  const char* path() const { return path_.c_str(); }

  // Contents reads the whole file back.
  std::vector<unsigned char> Contents() const {
    std::vector<unsigned char> out;
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

// Bytes copies an IdentObj into an exactly sized heap vector.
inline std::vector<unsigned char> Bytes(const IdentObj& obj) {
  return std::vector<unsigned char>(obj.GetData(), obj.GetData() + obj.Count());
}

}  // namespace testing
}  // namespace keyasn

#endif  // KEYASN_KEYS_TEST_UTIL_H_
