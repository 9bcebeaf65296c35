// Helpers for the DerHelper tests: Windows-1251 place texts and locales. Used by
// the *_test.cc files only.
#ifndef KEYASN_DER_DER_TEST_UTIL_H_
#define KEYASN_DER_DER_TEST_UTIL_H_

#include <gtest/gtest.h>

#include <clocale>
#include <stdexcept>
#include <string>

#include "keyasn/support/test_util.h"

namespace keyasn {
namespace testing {

// Cp1251 turns readable UTF-8 text (ASCII and the Cyrillic letters А..я) into the
// Windows-1251 octets that the library stores, independently of its own tables.
inline std::string Cp1251(const std::string& utf8) {
  std::string out;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(utf8[i]);
    if (c < 0x80) {
      out += static_cast<char>(c);
      continue;
    }
    if ((c & 0xE0) != 0xC0 || i + 1 >= utf8.size()) throw std::invalid_argument(utf8);
    const unsigned int code = ((c & 0x1Fu) << 6) | (static_cast<unsigned char>(utf8[++i]) & 0x3Fu);
    if (code < 0x410 || code > 0x44F) throw std::invalid_argument(utf8);
    out += static_cast<char>(0xC0 + (code - 0x410));
  }
  return out;
}

// Place(operation, phrase) is "<operation>: <phrase in Windows-1251>".
inline std::string Place(const std::string& operation, const std::string& phrase) {
  return operation + ": " + Cp1251(phrase);
}

// LocaleScope selects an LC_CTYPE locale for one test and restores the previous
// one afterwards. The library never selects a locale itself.
class LocaleScope {
 public:
  explicit LocaleScope(const char* name) {
    const char* current = std::setlocale(LC_CTYPE, nullptr);
    saved_ = current ? current : "C";
    selected_ = std::setlocale(LC_CTYPE, name) != nullptr;
  }
  ~LocaleScope() { std::setlocale(LC_CTYPE, saved_.c_str()); }
  LocaleScope(const LocaleScope&) = delete;
  LocaleScope& operator=(const LocaleScope&) = delete;
  bool selected() const { return selected_; }

 private:
  std::string saved_;
  bool selected_ = false;
};

}  // namespace testing
}  // namespace keyasn

#endif  // KEYASN_DER_DER_TEST_UTIL_H_
