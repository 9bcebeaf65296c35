#include "input.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "der_walk.h"

namespace keyasn {
namespace tool {

Source ReadSource(const std::string& path) {
  Source source;
  const bool stdin_input = path == "-";
  source.name = stdin_input ? "<stdin>" : path;
  std::FILE* file = stdin_input ? stdin : std::fopen(path.c_str(), "rb");
  if (file == nullptr) {
    throw ToolError(kExitIo, std::string("cannot open: ") + std::strerror(errno));
  }
  unsigned char buffer[65536];
  bool too_large = false;
  while (true) {
    std::size_t got = std::fread(buffer, 1, sizeof buffer, file);
    source.bytes.insert(source.bytes.end(), buffer, buffer + got);
    if (source.bytes.size() > kMaxInputSize) {
      too_large = true;
      break;
    }
    if (got < sizeof buffer) break;
  }
  const bool failed = std::ferror(file) != 0;
  const int saved_errno = errno;
  if (!stdin_input) std::fclose(file);
  if (failed) {
    throw ToolError(kExitIo, std::string("cannot read: ") + std::strerror(saved_errno));
  }
  if (too_large) {
    throw ToolError(kExitMalformed,
                    "input larger than " + std::to_string(kMaxInputSize) + " octets");
  }
  return source;
}

const char* FormName(InputForm form) {
  switch (form) {
    case InputForm::kDer: return "der";
    case InputForm::kPem: return "pem";
    case InputForm::kBase64: return "base64";
    case InputForm::kHex: return "hex";
    case InputForm::kAuto: break;
  }
  return "auto";
}

namespace {

int Base64Value(unsigned char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+') return 62;
  if (c == '/') return 63;
  return -1;
}

bool IsSpace(unsigned char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string AsText(const unsigned char* raw, std::size_t size) {
  return std::string(reinterpret_cast<const char*>(raw), size);
}

// LooksLikeHex: only hex digits, white space and ':', and at least one octet.
bool LooksLikeHex(const unsigned char* raw, std::size_t size) {
  std::size_t digits = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const unsigned char c = raw[i];
    if (std::isxdigit(c)) {
      ++digits;
    } else if (!IsSpace(c) && c != ':') {
      return false;
    }
  }
  return digits >= 2;
}

// LooksLikeBase64: only the alphabet, '=' and white space, and some characters.
bool LooksLikeBase64(const unsigned char* raw, std::size_t size) {
  std::size_t chars = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const unsigned char c = raw[i];
    if (Base64Value(c) >= 0 || c == '=') {
      ++chars;
    } else if (!IsSpace(c)) {
      return false;
    }
  }
  return chars >= 2;
}

bool HasPemMarker(const unsigned char* raw, std::size_t size) {
  static const char kMarker[] = "-----BEGIN ";
  const std::size_t n = sizeof kMarker - 1;
  if (size < n) return false;
  for (std::size_t i = 0; i + n <= size; ++i) {
    if (raw[i] == '-' && std::memcmp(raw + i, kMarker, n) == 0) return true;
  }
  return false;
}

}  // namespace

bool DecodeBase64(const std::string& text, Bytes* out) {
  Bytes bytes;
  bytes.reserve(text.size() / 4 * 3);
  unsigned int accumulator = 0;
  int bits = 0;
  std::size_t symbols = 0;
  std::size_t padding = 0;
  for (unsigned char c : text) {
    if (IsSpace(c)) continue;
    if (c == '=') {
      ++padding;
      continue;
    }
    if (padding > 0) return false;  // data after the padding
    int value = Base64Value(c);
    if (value < 0) return false;
    ++symbols;
    accumulator = (accumulator << 6) | static_cast<unsigned int>(value);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      bytes.push_back(static_cast<unsigned char>(accumulator >> bits));
      accumulator &= (1u << bits) - 1;
    }
  }
  if (symbols % 4 == 1 || padding > 2) return false;
  if (padding > 0 && (symbols + padding) % 4 != 0) return false;
  out->swap(bytes);
  return true;
}

std::string EncodeBase64(const Bytes& bytes) {
  static const char kAlphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  std::size_t line = 0;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    unsigned int group = static_cast<unsigned int>(bytes[i]) << 16;
    const std::size_t left = bytes.size() - i;
    if (left > 1) group |= static_cast<unsigned int>(bytes[i + 1]) << 8;
    if (left > 2) group |= bytes[i + 2];
    text += kAlphabet[(group >> 18) & 63];
    text += kAlphabet[(group >> 12) & 63];
    text += left > 1 ? kAlphabet[(group >> 6) & 63] : '=';
    text += left > 2 ? kAlphabet[group & 63] : '=';
    line += 4;
    if (line == 64) {
      text += '\n';
      line = 0;
    }
  }
  if (line > 0) text += '\n';
  return text;
}

bool DecodePem(const std::string& text, Bytes* out, std::string* problem) {
  Bytes all;
  std::size_t blocks = 0;
  std::size_t pos = 0;
  while (true) {
    std::size_t begin = text.find("-----BEGIN ", pos);
    if (begin == std::string::npos) break;
    std::size_t label_end = text.find("-----", begin + 11);
    std::size_t line_end = text.find('\n', begin);
    if (label_end == std::string::npos || (line_end != std::string::npos && label_end > line_end)) {
      *problem = "PEM BEGIN line without its closing dashes";
      return false;
    }
    const std::string label = text.substr(begin + 11, label_end - begin - 11);
    const std::string end_line = "-----END " + label + "-----";
    std::size_t body = line_end == std::string::npos ? text.size() : line_end + 1;
    std::size_t end = text.find(end_line, body);
    if (end == std::string::npos) {
      *problem = "no \"" + end_line + "\" line";
      return false;
    }
    // Header lines ("Name: value") and the blank line after them are skipped.
    std::string base64;
    std::size_t line_start = body;
    while (line_start < end) {
      std::size_t next = text.find('\n', line_start);
      if (next == std::string::npos || next > end) next = end;
      std::string line = text.substr(line_start, next - line_start);
      if (line.find(':') == std::string::npos) base64 += line;
      line_start = next + 1;
    }
    Bytes decoded;
    if (!DecodeBase64(base64, &decoded)) {
      *problem = "the body of the PEM block \"" + label + "\" is not base64";
      return false;
    }
    all.insert(all.end(), decoded.begin(), decoded.end());
    ++blocks;
    pos = end + end_line.size();
  }
  if (blocks == 0) {
    *problem = "no PEM block";
    return false;
  }
  out->swap(all);
  return true;
}

InputForm DetectForm(const unsigned char* raw, std::size_t size) {
  if (HasPemMarker(raw, size)) return InputForm::kPem;
  if (IsCompleteEncoding(raw, size)) return InputForm::kDer;
  if (LooksLikeHex(raw, size)) return InputForm::kHex;
  if (LooksLikeBase64(raw, size)) return InputForm::kBase64;
  return InputForm::kDer;
}

Bytes DecodeText(const unsigned char* raw, std::size_t size, InputForm form) {
  Bytes out;
  std::string problem;
  switch (form) {
    case InputForm::kPem:
      if (!DecodePem(AsText(raw, size), &out, &problem)) {
        throw ToolError(kExitMalformed, "not PEM: " + problem);
      }
      break;
    case InputForm::kHex:
      if (!ParseHex(AsText(raw, size), &out)) {
        throw ToolError(kExitMalformed,
                        "not hex text (only hex digit pairs, white space and ':' allowed)");
      }
      break;
    case InputForm::kBase64:
      if (!DecodeBase64(AsText(raw, size), &out)) {
        throw ToolError(kExitMalformed, "not base64 text");
      }
      break;
    case InputForm::kDer:
    case InputForm::kAuto:
      out.assign(raw, raw + size);
      break;
  }
  if (out.empty()) throw ToolError(kExitMalformed, "no octets in the input");
  return out;
}

Bytes DecodeInput(const Bytes& raw, InputForm form, InputForm* detected) {
  if (raw.empty()) throw ToolError(kExitMalformed, "empty input");
  if (form == InputForm::kAuto) form = DetectForm(raw.data(), raw.size());
  if (detected != nullptr) *detected = form;
  return DecodeText(raw.data(), raw.size(), form);
}

}  // namespace tool
}  // namespace keyasn
