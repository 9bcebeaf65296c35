// JSON written as it goes, laid out as nlohmann's dump(2) lays out a whole
// document (one member or item per line, two spaces per level) and escaped as it
// escapes strings (invalid UTF-8 replaced), so that streamed output and a
// document dumped whole are the same text.
#ifndef KEYASN_TOOLS_JSON_TEXT_H_
#define KEYASN_TOOLS_JSON_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>

#include "common.h"

namespace keyasn {
namespace tool {

// OutText is output being built from many small pieces (JSON or the text
// lines): the appends of a std::string, inline and without its zero fill when
// it grows.
class OutText {
 public:
  static constexpr std::size_t kPiece = 64u << 10;  // written at once, at least
  OutText() { Reserve(kStart); }
  // Grow lengthens the text by `size` octets (unset) and returns where they go.
  char* Grow(std::size_t size) {
    if (size > capacity_ - size_) Reserve(size_ + size);
    char* at = data_.get() + size_;
    size_ += size;
    return at;
  }
  void append(const char* text, std::size_t size) { std::memcpy(Grow(size), text, size); }
  void append(const char* text) { append(text, std::strlen(text)); }
  void append(const std::string& text) { append(text.data(), text.size()); }
  void append(std::size_t count, char c) { std::memset(Grow(count), c, count); }
  void push_back(char c) { *Grow(1) = c; }
  OutText& operator+=(const char* text) {
    append(text);
    return *this;
  }
  OutText& operator+=(const std::string& text) {
    append(text);
    return *this;
  }
  const char* data() const { return data_.get(); }
  std::size_t size() const { return size_; }
  void clear() { size_ = 0; }
  // Emit writes the text to `out` and empties it once it holds `at_least`
  // octets (kPiece, so that a stream is written in large pieces).
  void Emit(std::ostream& out, std::size_t at_least = 0) {
    if (size_ < at_least) return;
    out.write(data(), static_cast<std::streamsize>(size_));
    size_ = 0;
  }
  std::string str() const { return std::string(data(), size()); }

 private:
  static constexpr std::size_t kStart = 128u << 10;
  void Reserve(std::size_t size);

  std::unique_ptr<char[]> data_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

// AppendJsonString appends `text` as a quoted JSON string: \" \\ \b \f \n \r \t,
// \u00xx for the other control characters, valid UTF-8 as it is, and U+FFFD for
// each sequence that is not valid UTF-8 (its octets up to the one that breaks it).
void AppendJsonString(OutText* out, const char* text, std::size_t size);
inline void AppendJsonString(OutText* out, const std::string& text) {
  AppendJsonString(out, text.data(), text.size());
}
void AppendJsonString(OutText* out, const char* text);

// AppendJsonNumber appends an unsigned decimal number.
void AppendJsonNumber(OutText* out, std::uint64_t value);

// JsonItem starts an item of an array whose items are `indent` spaces in: a
// comma unless it is the first, then a new line.
void JsonItem(OutText* out, bool first, std::size_t indent);

// AppendIndent starts a new line `indent` spaces in.
void AppendIndent(OutText* out, std::size_t indent);

// JsonObject appends the members of one object, the braces `indent` spaces in.
class JsonObject {
 public:
  // The opening brace is appended at once.
  JsonObject(OutText* out, std::size_t indent) : out_(out), indent_(indent) { out_->push_back('{'); }
  // Key starts a member (its name a literal that needs no escaping), the caller
  // appending its value to what it returns.
  template <std::size_t N>
  OutText& Key(const char (&key)[N]) {
    return Member(key, N - 1);
  }
  template <std::size_t N>
  void String(const char (&key)[N], const std::string& value) {
    AppendJsonString(&Key(key), value);
  }
  template <std::size_t N>
  void String(const char (&key)[N], const char* value) {
    AppendJsonString(&Key(key), value);
  }
  // Hex: a string of the octets in hex, which needs no escaping.
  template <std::size_t N>
  void Hex(const char (&key)[N], const unsigned char* data, std::size_t size) {
    OutText& out = Key(key);
    out.push_back('"');
    HexDigits(data, size, out.Grow(2 * size));
    out.push_back('"');
  }
  template <std::size_t N>
  void Number(const char (&key)[N], std::uint64_t value) {
    AppendJsonNumber(&Key(key), value);
  }
  template <std::size_t N>
  void Bool(const char (&key)[N], bool value) {
    Key(key) += value ? "true" : "false";
  }
  template <std::size_t N>
  void Null(const char (&key)[N]) {
    Key(key) += "null";
  }
  // Close appends the closing brace on a line of its own ("{}" when empty).
  void Close();
  // The indentation of the members (and of the brackets of an array value).
  std::size_t inner() const { return indent_ + 2; }

 private:
  OutText& Member(const char* key, std::size_t size);

  OutText* out_;
  std::size_t indent_;
  bool empty_ = true;
};

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_JSON_TEXT_H_
