#include "fuzz/fuzz_support.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace keyasn_fuzz {

void Fail(const char* file, int line, const char* what) {
  std::fprintf(stderr, "%s:%d: property broken: %s\n", file, line, what);
  std::fflush(stderr);
  std::abort();
}

bool IsLibraryCode(int code) {
  switch (code) {
    case 5: case 6: case 12: case 28: case 37: case 42: case 115: case 131: case 205:
    case 206:
      return true;
    default:
      return false;
  }
}

uint8_t Input::Byte() {
  if (size_ == 0) return 0;
  --size_;
  return *data_++;
}

uint32_t Input::U32() {
  uint32_t v = 0;
  for (int i = 0; i < 4; ++i) v = v << 8 | Byte();
  return v;
}

uint64_t Input::U64() {
  const uint64_t hi = U32();
  return hi << 32 | U32();
}

std::vector<uint8_t> Input::Take(size_t n) {
  if (n > size_) n = size_;
  std::vector<uint8_t> out(data_, data_ + n);
  data_ += n;
  size_ -= n;
  return out;
}

std::vector<uint8_t> Input::Rest() { return Take(size_); }

bool Same(const IdentObj& obj, const uint8_t* data, size_t size) {
  if (obj.Count() != size) return false;
  return size == 0 || std::memcmp(obj.GetData(), data, size) == 0;
}

namespace {

std::string& PathText() {
  static std::string path;
  return path;
}

void RemoveScratch() {
  if (!PathText().empty()) std::remove(PathText().c_str());
}

}  // namespace

const char* ScratchFile::Path() {
  std::string& path = PathText();
  if (path.empty()) {
    const char* dir = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : nullptr;
    if (!dir) dir = std::getenv("TMPDIR");
    if (!dir || !*dir) dir = "/tmp";
    path = std::string(dir) + "/keyasn-fuzz-" + std::to_string(getpid()) + ".der";
    std::atexit(RemoveScratch);
    Write(nullptr, 0);
  }
  return path.c_str();
}

const char* ScratchFile::Write(const uint8_t* data, size_t size) {
  const char* path = Path();
  std::FILE* f = std::fopen(path, "wb");
  if (!f) Fail(__FILE__, __LINE__, "cannot create the scratch file");
  if (size && std::fwrite(data, 1, size, f) != size) Fail(__FILE__, __LINE__, "short write");
  std::fclose(f);
  return path;
}

std::vector<uint8_t> ScratchFile::Read() {
  std::vector<uint8_t> out;
  std::FILE* f = std::fopen(Path(), "rb");
  if (!f) Fail(__FILE__, __LINE__, "cannot open the scratch file");
  unsigned char buf[65536];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) out.insert(out.end(), buf, buf + n);
  std::fclose(f);
  return out;
}

}  // namespace keyasn_fuzz
