#include "keyasn/codec/error_text.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <set>
#include <string>

#include "keyasn/codec/error_codes.h"

namespace {

struct TextRow {
  int code;
  const char* text;
};

// Every code of the library's own has its sentence.
const TextRow kRows[] = {
    {0, "No error."},
    {5, "A file read returned fewer octets than needed, or the file could not be read."},
    {6, "A file write wrote fewer octets than the encoding has."},
    {12, "Not enough memory for a string conversion buffer."},
    {16, "An unexpected failure occurred while reading the encryption parameters."},
    {28, "The tag of a constructed element is neither SEQUENCE nor SET."},
    {37, "The data, buffer or file is shorter than needed."},
    {42, "The encrypted key record cannot be written."},
    {115, "The decoder does not handle this kind of element."},
    {131, "A value has the wrong type, size or range."},
    {134, "The data is not the 70-octet binary form of the encryption parameters."},
    {205, "The identifier octets are malformed."},
    {206, "The data is malformed or truncated."},
};

TEST(ErrorTextTest, EachCodeHasItsSentence) {
  std::set<std::string> seen;
  for (const TextRow& row : kRows) {
    EXPECT_STREQ(keyasn::ErrorText(row.code), row.text) << row.code;
    EXPECT_TRUE(seen.insert(row.text).second) << "shared sentence: " << row.text;
  }
}

// The errno values the file class and the text conversions pass on each have a
// sentence of their own, none the generic one.
TEST(ErrorTextTest, ErrnoValuesHaveSentencesOfTheirOwn) {
  std::set<std::string> seen;
  for (const TextRow& row : kRows) seen.insert(row.text);
  seen.insert("Unknown error code.");
  for (int code : {ENOENT, EACCES, ENOTDIR, EISDIR, EINVAL, EMFILE, EROFS, ENAMETOOLONG, EILSEQ})
    EXPECT_TRUE(seen.insert(keyasn::ErrorText(code)).second) << code;
  EXPECT_STREQ(keyasn::ErrorText(ENOENT), "No such file or directory.");
}

TEST(ErrorTextTest, NamedCodesHaveTheirValues) {
  const struct {
    int named;
    int value;
  } rows[] = {{keyasn::kErrShortRead, 5},       {keyasn::kErrShortWrite, 6},
              {keyasn::kErrNoStringBuffer, 12}, {keyasn::kErrUnexpected, 16},
              {keyasn::kErrNotSequenceTag, 28}, {keyasn::kErrTooShort, 37},
              {keyasn::kErrCannotWriteKey, 42}, {keyasn::kErrUnsupported, 115},
              {keyasn::kErrWrongType, 131},     {keyasn::kErrBadBinaryParams, 134},
              {keyasn::kErrBadIdentifier, 205}, {keyasn::kErrMalformed, 206}};
  for (const auto& row : rows) EXPECT_EQ(row.named, row.value);
}

TEST(ErrorTextTest, UnknownCodesShareOneGenericSentence) {
  for (int code : {-1, 1, 7, 100, 133, 207, 1000, 0x7FFFFFFF, -0x7FFFFFFF - 1})
    EXPECT_STREQ(keyasn::ErrorText(code), "Unknown error code.") << code;
}

TEST(ErrorTextTest, SentencesAreShortAndEndWithAFullStop) {
  for (const TextRow& row : kRows) {
    const std::size_t n = std::strlen(keyasn::ErrorText(row.code));
    EXPECT_LT(n, 80u) << row.code;
    EXPECT_EQ(keyasn::ErrorText(row.code)[n - 1], '.') << row.code;
  }
}

}  // namespace
