/// @file
/// The library's numeric error codes. Every layer reports through these values
/// (returned, stored through an int* out-parameter, or carried by XRUVStatus); an
/// errno value may also appear where a file could not be opened or read, or where a
/// multibyte conversion failed. keyasn::ErrorText (keyasn/codec/error_text.h) turns
/// any of them into words.
#ifndef KEYASN_CODEC_ERROR_CODES_H_
#define KEYASN_CODEC_ERROR_CODES_H_

namespace keyasn {

/// Success.
constexpr int kOk = 0;
/// A file read returned fewer octets than the element needs.
constexpr int kErrShortRead = 5;
/// A file write wrote fewer octets than the encoding has.
constexpr int kErrShortWrite = 6;
/// A conversion buffer for a string could not be created.
constexpr int kErrNoStringBuffer = 12;
/// Reading the encryption parameters met a failure other than XRUVStatus.
constexpr int kErrUnexpected = 16;
/// The tag number given for a constructed element is neither SEQUENCE nor SET.
constexpr int kErrNotSequenceTag = 28;
/// Data, buffer or file shorter than needed, a null output buffer, or a file
/// position beyond the end.
constexpr int kErrTooShort = 37;
/// The encrypted-key record cannot be written.
constexpr int kErrCannotWriteKey = 42;
/// The primitive decoder does not handle this element.
constexpr int kErrUnsupported = 115;
/// A typed decode found the wrong type, or a value of the wrong size or range.
constexpr int kErrWrongType = 131;
/// The 70-octet binary form of the encryption parameters is too short or does not
/// start with its four marker octets.
constexpr int kErrBadBinaryParams = 134;
/// Malformed identifier octets.
constexpr int kErrBadIdentifier = 205;
/// Malformed or truncated data.
constexpr int kErrMalformed = 206;

}  // namespace keyasn

#endif  // KEYASN_CODEC_ERROR_CODES_H_
