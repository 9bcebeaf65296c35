#include "keyasn/support/file.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdint>

#include "keyasn/support/status.h"

namespace {

unsigned int Saturate(long long v) {
  if (v < 0) return 0;
  return v > 0xFFFFFFFFll ? 0xFFFFFFFFu : static_cast<unsigned int>(v);
}

}  // namespace

CRUVFile::CRUVFile(const char* path, const char* mode)
    : m_file(nullptr), m_name(path ? path : "") {
  if (!path || !mode) throw XRUVStatus(EINVAL, m_name.c_str(), false);
  m_file = std::fopen(path, mode);
  if (!m_file) throw XRUVStatus(errno, m_name.c_str(), false);
}

CRUVFile::~CRUVFile() {
  if (m_file) std::fclose(m_file);
}

unsigned int CRUVFile::Length() const {
  std::fflush(m_file);  // a pending write counts towards the size
  struct stat st;
  if (fstat(fileno(m_file), &st) != 0) return 0;
  return Saturate(st.st_size);
}

unsigned int CRUVFile::CurPos() const { return Saturate(ftello(m_file)); }

unsigned int CRUVFile::Read(void* buffer, unsigned int size) const {
  if (size == 0) return 0;
  const size_t got = std::fread(buffer, 1, size, m_file);
  if (got < size && std::ferror(m_file)) {
    const int code = errno ? errno : EIO;
    std::clearerr(m_file);
    throw XRUVStatus(code, m_name.c_str(), false);
  }
  std::clearerr(m_file);  // end of file is not sticky: a later Read may find more
  return static_cast<unsigned int>(got);
}

bool CRUVFile::Seek(long offset, int whence) const {
  off_t target;
  if (whence == 0) {
    target = offset;
  } else {
    // Relative moves arrive as unsigned 32-bit values; 2^31 and above mean backwards.
    const long delta = whence == 1 || whence == 2
                           ? static_cast<long>(static_cast<int32_t>(static_cast<uint32_t>(offset)))
                           : 0;
    if (whence == 1) {
      target = ftello(m_file) + delta;
    } else if (whence == 2) {
      target = static_cast<off_t>(Length()) + delta;
    } else {
      return false;
    }
  }
  if (target < 0) return false;
  return fseeko(m_file, target, SEEK_SET) == 0;
}

unsigned int CRUVFile::Write(const void* data, unsigned int size) {
  if (size == 0) return 0;
  const size_t put = std::fwrite(data, 1, size, m_file);
  std::fflush(m_file);
  return static_cast<unsigned int>(put);
}

const char* CRUVFile::FileName() const { return m_name.c_str(); }
