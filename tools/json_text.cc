#include "json_text.h"

#include <cstring>

#include "values.h"

namespace keyasn {
namespace tool {

namespace {

// BrokenPrefix is how many octets at `p` begin a UTF-8 sequence before an octet
// (or the end) breaks it: 0 when the first octet cannot begin one.
std::size_t BrokenPrefix(const unsigned char* p, std::size_t left) {
  const unsigned char c = p[0];
  std::size_t n;
  unsigned char low = 0x80, high = 0xBF;  // the range of the second octet
  if (c >= 0xC2 && c <= 0xDF) {
    n = 2;
  } else if (c >= 0xE0 && c <= 0xEF) {
    n = 3;
    if (c == 0xE0) low = 0xA0;
    if (c == 0xED) high = 0x9F;
  } else if (c >= 0xF0 && c <= 0xF4) {
    n = 4;
    if (c == 0xF0) low = 0x90;
    if (c == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  std::size_t i = 1;
  while (i < n && i < left && p[i] >= (i == 1 ? low : 0x80) && p[i] <= (i == 1 ? high : 0xBF)) ++i;
  return i;
}

}  // namespace

void AppendJsonString(OutText* out, const char* text, std::size_t size) {
  static const char kHex[] = "0123456789abcdef";
  const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
  out->push_back('"');
  std::size_t i = 0;
  while (i < size) {
    // A run of octets written as they are, in one append.
    std::size_t run = i;
    while (run < size && p[run] >= 0x20 && p[run] < 0x80 && p[run] != '"' && p[run] != '\\') ++run;
    out->append(text + i, run - i);
    i = run;
    if (i == size) break;
    const unsigned char c = p[i];
    if (c >= 0x80) {
      const std::size_t n = Utf8Sequence(p + i, size - i);
      if (n > 0) {
        out->append(text + i, n);
        i += n;
      } else {
        // The octet that breaks a sequence is read again as the start of the next.
        const std::size_t broken = BrokenPrefix(p + i, size - i);
        out->append("\xEF\xBF\xBD");
        i += broken > 0 ? broken : 1;
      }
      continue;
    }
    out->push_back('\\');
    switch (c) {
      case '"': out->push_back('"'); break;
      case '\\': out->push_back('\\'); break;
      case '\b': out->push_back('b'); break;
      case '\f': out->push_back('f'); break;
      case '\n': out->push_back('n'); break;
      case '\r': out->push_back('r'); break;
      case '\t': out->push_back('t'); break;
      default:
        out->append("u00");
        out->push_back(kHex[c >> 4]);
        out->push_back(kHex[c & 0x0F]);
        break;
    }
    ++i;
  }
  out->push_back('"');
}

void AppendJsonString(OutText* out, const char* text) {
  AppendJsonString(out, text, std::strlen(text));
}

void AppendJsonNumber(OutText* out, std::uint64_t value) {
  char digits[20];
  out->append(digits, Decimal(value, digits));
}

namespace {

// Indented writes a line end and `indent` spaces at `p`; returns what follows.
char* Indented(char* p, std::size_t indent) {
  *p++ = '\n';
  std::memset(p, ' ', indent);
  return p + indent;
}

}  // namespace

void OutText::Reserve(std::size_t size) {
  std::size_t capacity = capacity_ == 0 ? kStart : capacity_;
  while (capacity < size) capacity *= 2;
  std::unique_ptr<char[]> data(new char[capacity]);
  if (size_ > 0) std::memcpy(data.get(), data_.get(), size_);
  data_ = std::move(data);
  capacity_ = capacity;
}

void JsonItem(OutText* out, bool first, std::size_t indent) {
  char* p = out->Grow((first ? 0 : 1) + 1 + indent);
  if (!first) *p++ = ',';
  Indented(p, indent);
}

void AppendIndent(OutText* out, std::size_t indent) { Indented(out->Grow(1 + indent), indent); }

OutText& JsonObject::Member(const char* key, std::size_t size) {
  const std::size_t indent = indent_ + 2;
  char* p = out_->Grow((empty_ ? 0 : 1) + 1 + indent + 1 + size + 3);
  if (!empty_) *p++ = ',';
  empty_ = false;
  p = Indented(p, indent);
  *p++ = '"';
  std::memcpy(p, key, size);
  std::memcpy(p + size, "\": ", 3);
  return *out_;
}

void JsonObject::Close() {
  if (!empty_) AppendIndent(out_, indent_);
  out_->push_back('}');
}

}  // namespace tool
}  // namespace keyasn
