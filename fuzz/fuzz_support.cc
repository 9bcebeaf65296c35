#include "fuzz/fuzz_support.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace keyasn_fuzz {

namespace {
std::string& Note() {
  static std::string note;
  return note;
}
}  // namespace

void SetFailureNote(const std::string& note) { Note() = note; }

void Fail(const char* file, int line, const char* what) {
  if (!Note().empty()) std::fprintf(stderr, "input: %s\n", Note().c_str());
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

bool IsDer(const uint8_t* data, size_t size) {
  if (!data || size == 0) return false;
  std::vector<size_t> ends = {size};  // the end of every open constructed element
  size_t at = 0;
  while (at < size) {
    // Identifier octets.
    const uint8_t first = data[at++];
    if ((first & 0x1F) == 0x1F) {
      if (at >= size || data[at] == 0x80) return false;  // a leading zero group
      uint64_t tag = 0;
      size_t groups = 0;
      for (;;) {
        if (at >= size || ++groups > 5) return false;
        const uint8_t octet = data[at++];
        tag = tag << 7 | (octet & 0x7Fu);
        if (!(octet & 0x80)) break;
      }
      if (tag < 31 || tag > 0xFFFFFFFFu) return false;
    }
    // Length octets.
    if (at >= size) return false;
    const uint8_t lead = data[at++];
    size_t length = lead;
    if (lead == 0x80 || lead > 0x84) return false;
    if (lead > 0x80) {
      const size_t count = lead & 0x7Fu;
      if (size - at < count || data[at] == 0) return false;
      length = 0;
      for (size_t i = 0; i < count; ++i) length = length << 8 | data[at++];
      if (length < 0x80) return false;
    }
    if (at > ends.back() || length > ends.back() - at) return false;
    if (first & 0x20) {
      if (length == 0) return false;
      ends.push_back(at + length);
    } else {
      at += length;
    }
    while (ends.size() > 1 && at == ends.back()) ends.pop_back();
    if (ends.size() == 1) return at == size;  // the one outer element is complete
  }
  return false;
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
  // One descriptor kept open: truncating and rewriting is cheaper than creating.
  static int fd = -1;
  const char* path = Path();
  if (fd < 0) fd = open(path, O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  if (fd < 0 || ftruncate(fd, 0) != 0) Fail(__FILE__, __LINE__, "cannot rewrite the scratch file");
  size_t done = 0;
  while (done < size) {
    const ssize_t n = pwrite(fd, data + done, size - done, static_cast<off_t>(done));
    if (n <= 0) Fail(__FILE__, __LINE__, "short write to the scratch file");
    done += static_cast<size_t>(n);
  }
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
