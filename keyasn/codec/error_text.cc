#include "keyasn/codec/error_text.h"

#include <cerrno>

#include "keyasn/codec/error_codes.h"

namespace keyasn {

namespace {

struct CodeText {
  int code;
  const char* text;
};

// The library's own codes, then the errno values its file class and its text
// conversions pass on. Some errno values coincide with the library's codes (EIO
// is 5, ENOMEM is 12): their sentences cover both meanings.
constexpr CodeText kTexts[] = {
    {kOk, "No error."},
    {kErrShortRead, "A file read returned fewer octets than needed, or the file could not be read."},
    {kErrShortWrite, "A file write wrote fewer octets than the encoding has."},
    {kErrNoStringBuffer, "Not enough memory for a string conversion buffer."},
    {kErrUnexpected, "An unexpected failure occurred while reading the encryption parameters."},
    {kErrNotSequenceTag, "The tag of a constructed element is neither SEQUENCE nor SET."},
    {kErrTooShort, "The data, buffer or file is shorter than needed."},
    {kErrCannotWriteKey, "The encrypted key record cannot be written."},
    {kErrUnsupported, "The decoder does not handle this kind of element."},
    {kErrWrongType, "A value has the wrong type, size or range."},
    {kErrBadBinaryParams, "The data is not the 70-octet binary form of the encryption parameters."},
    {kErrBadIdentifier, "The identifier octets are malformed."},
    {kErrMalformed, "The data is malformed or truncated."},
    {ENOENT, "No such file or directory."},
    {EACCES, "Permission denied."},
    {ENOTDIR, "A component of the path is not a directory."},
    {EISDIR, "The path names a directory."},
    {EINVAL, "Invalid argument: a file name or mode is missing."},
    {EMFILE, "Too many open files."},
    {EROFS, "The file system is read-only."},
    {ENAMETOOLONG, "The file name is too long."},
    {EILSEQ, "The text holds a character that the current locale cannot convert."},
};

}  // namespace

const char* ErrorText(int code) noexcept {
  for (const CodeText& row : kTexts)
    if (row.code == code) return row.text;
  return "Unknown error code.";
}

}  // namespace keyasn
