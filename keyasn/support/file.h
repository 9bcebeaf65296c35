/// @file
/// CRUVFile: an open file with a current position.
#ifndef KEYASN_SUPPORT_FILE_H_
#define KEYASN_SUPPORT_FILE_H_

#include <cstdio>
#include <string>

#include "keyasn/support/export.h"

/// CRUVFile(path, mode) opens `path` with an fopen-style mode ("rb", "wb", "r+b",
/// "w+b"); it throws XRUVStatus(errno, path, false) when the file cannot be opened
/// and closes the file when destroyed. Not copyable. Every operation but Write is
/// const: the position is state of the open file, not of the object.
class KEYASN_API CRUVFile {
 public:
  /// Opens `path` with `mode`; see the class description for failures.
  CRUVFile(const char* path, const char* mode);
  ~CRUVFile();
  CRUVFile(const CRUVFile&) = delete;
  CRUVFile& operator=(const CRUVFile&) = delete;

  /// Length returns the file's size in octets (saturated at 0xFFFFFFFF).
  unsigned int Length() const;
  /// CurPos returns the current position (saturated at 0xFFFFFFFF).
  unsigned int CurPos() const;
  /// Read reads up to `size` octets at the current position and advances it;
  /// returns the count read (fewer at the end of the file). Throws
  /// XRUVStatus(errno, FileName(), false) on an I/O error.
  unsigned int Read(void* buffer, unsigned int size) const;
  /// Seek moves the position: whence 0 to `offset` from the start, 1 by `offset`
  /// from the current position, 2 by `offset` from the end. A relative move is
  /// taken modulo 2^32: a value of 2^31 or more (as an unsigned 32-bit number)
  /// moves backwards by 2^32 minus that value. Returns false when the move fails
  /// (for example before the start); the position is then unchanged.
  bool Seek(long offset, int whence) const;
  /// Write writes `size` octets at the current position; returns the count written.
  unsigned int Write(const void* data, unsigned int size);
  /// FileName returns the path the file was opened with.
  const char* FileName() const;

 private:
  std::FILE* m_file;
  std::string m_name;
};

#endif  // KEYASN_SUPPORT_FILE_H_
