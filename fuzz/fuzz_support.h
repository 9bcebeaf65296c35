// Shared pieces of the fuzz targets, their replay driver and the robustness sweeps:
// property checks that abort, a cursor over the fuzz input for control values,
// exactly sized copies and a scratch file for the file readers.
#ifndef KEYASN_FUZZ_FUZZ_SUPPORT_H_
#define KEYASN_FUZZ_FUZZ_SUPPORT_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "keyasn/support/ident_obj.h"
#include "keyasn/support/status.h"

namespace keyasn_fuzz {

// Fail reports a broken property and aborts, so that libFuzzer keeps the input and
// a replay or sweep run stops at once.
[[noreturn]] void Fail(const char* file, int line, const char* what);

// SetFailureNote: a line that Fail prints first (the sweeps name the input).
void SetFailureNote(const std::string& note);

#define KEYASN_FUZZ_CHECK(cond) \
  ((cond) ? static_cast<void>(0) : ::keyasn_fuzz::Fail(__FILE__, __LINE__, #cond))

// A reader entry point: feeds one input to every reader of a family. Failures that
// the library reports (codes, XRUVStatus) are expected; anything else escapes or
// aborts.
using Family = void (*)(const uint8_t* data, size_t size);

// Size32 is the input size as the readers take it (inputs never reach 4 GiB).
inline unsigned int Size32(size_t size) { return static_cast<unsigned int>(size); }

// IsLibraryCode: a code of the library's table (5, 6, 12, 28, 37, 42, 115, 131,
// 205, 206).
bool IsLibraryCode(int code);

// Guard runs `f` and returns 0, or the code of the XRUVStatus it raised (which
// must be a code of the library's table, or, with `anyCode`, any positive
// value such as an errno). Other exceptions pass through.
template <class F>
int Guard(F&& f, bool anyCode = false);

// IsDer: the `size` octets are exactly one element in distinguished form as the
// record model writes it: identifier octets in their shortest form, definite
// lengths in their shortest form, no constructed element with empty contents, every
// constructed element's contents exactly its elements. Iterative.
bool IsDer(const uint8_t* data, size_t size);

// Input takes control values from the front of a fuzz input; what is left is the
// payload. Taking from an exhausted input gives zeros.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), size_(data ? size : 0) {}
  uint8_t Byte();
  uint32_t U32();
  uint64_t U64();
  bool Bool() { return Byte() & 1; }
  // Take returns the next `n` octets (fewer when the input is shorter).
  std::vector<uint8_t> Take(size_t n);
  // Rest returns everything not taken yet.
  std::vector<uint8_t> Rest();
  size_t Remaining() const { return size_; }

 private:
  const uint8_t* data_;
  size_t size_;
};

// Bytes: an exactly sized heap copy, so that AddressSanitizer sees an over-read.
inline std::vector<uint8_t> Bytes(const uint8_t* data, size_t size) {
  return data ? std::vector<uint8_t>(data, data + size) : std::vector<uint8_t>();
}

inline std::vector<uint8_t> Bytes(const IdentObj& obj) {
  return Bytes(obj.GetData(), obj.Count());
}

// Same: the octets of `obj` equal `size` octets at `data`.
bool Same(const IdentObj& obj, const uint8_t* data, size_t size);

// The file readers take octets one at a time, so they get at most this many
// octets of an input (the buffer readers get all of it).
constexpr size_t kFileFormLimit = 2048;
inline size_t FileFormSize(size_t size) { return size < kFileFormLimit ? size : kFileFormLimit; }

// ScratchFile: one file per process, rewritten for every input (in /dev/shm when
// there is one), removed at exit.
class ScratchFile {
 public:
  // Write replaces the file's contents; returns its path.
  static const char* Write(const uint8_t* data, size_t size);
  // Path returns the file's path (created empty on first use).
  static const char* Path();
  // Read returns the file's contents.
  static std::vector<uint8_t> Read();
};

template <class F>
int Guard(F&& f, bool anyCode) {
  try {
    f();
  } catch (const XRUVStatus& status) {
    const int code = status.Status();
    if (!(anyCode ? code > 0 : IsLibraryCode(code)))
      Fail(__FILE__, __LINE__, "an XRUVStatus with a code outside the table");
    return code;
  }
  return 0;
}

}  // namespace keyasn_fuzz

// KEYASN_FUZZ_TARGET(name) defines the family entry point
// keyasn_fuzz::Run_<name>(data, size) and, unless KEYASN_FUZZ_NO_ENTRY is defined
// (the sweeps link every family into one program), the libFuzzer entry point.
#ifdef KEYASN_FUZZ_NO_ENTRY
#define KEYASN_FUZZ_TARGET(name)                              \
  namespace keyasn_fuzz {                                     \
  void Run_##name(const uint8_t* data, size_t size);          \
  }                                                           \
  void keyasn_fuzz::Run_##name(const uint8_t* data, size_t size)
#else
#define KEYASN_FUZZ_TARGET(name)                                          \
  namespace keyasn_fuzz {                                                 \
  void Run_##name(const uint8_t* data, size_t size);                      \
  }                                                                       \
  extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) { \
    keyasn_fuzz::Run_##name(data, size);                                  \
    return 0;                                                             \
  }                                                                       \
  void keyasn_fuzz::Run_##name(const uint8_t* data, size_t size)
#endif

#endif  // KEYASN_FUZZ_FUZZ_SUPPORT_H_
