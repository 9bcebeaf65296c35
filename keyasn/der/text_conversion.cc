#include "keyasn/der/text_conversion.h"

#include <cerrno>
#include <clocale>
#include <exception>
#include <memory>
#include <new>

#include "keyasn/codec/error_codes.h"
#include "keyasn/der/der_common.h"
#include "keyasn/der/der_helper.h"

namespace keyasn {
namespace detail {
namespace {

// The texts of one direction. The allocation failure text names ToString in both
// directions, and the narrow result text has two blanks: both kept as callers see
// them.
struct Direction {
  const char* measureFailed;
  const char* allocationFailed;
  const char* convertFailed;
  const char* resultFailed;
};
constexpr Direction kToMultibyte = {
    "DerHelper::ToString wcsrtombs(1)", "DerHelper::ToString throw bad_alloc",
    "DerHelper::ToString wcsrtombs(2)", "DerHelper::ToString. Error create  string"};
constexpr Direction kToWide = {
    "DerHelper::ToWString mbsrtowcs(1)", "DerHelper::ToString throw bad_alloc",
    "DerHelper::ToWString mbsrtowcs(2)", "DerHelper::ToString. Error create wstring"};

// Convert runs the measure, allocate, convert and build steps shared by both
// directions. `convert` is wcsrtombs or mbsrtowcs (or a stand-in), each call with a
// zeroed state from the start of `source`.
template <typename To, typename From, typename Result>
Result Convert(const From* source, std::size_t (*convert)(To*, const From**, std::size_t,
                                                           std::mbstate_t*),
               To* (*allocate)(std::size_t), Result (*make)(const To*, std::size_t),
               const Direction& texts) {
  std::mbstate_t state{};
  const From* cursor = source;
  const std::size_t length = convert(nullptr, &cursor, 0, &state);
  if (length == static_cast<std::size_t>(-1)) RaiseDer(errno, texts.measureFailed);

  std::unique_ptr<To[]> buffer(allocate(length + 1));
  if (!buffer) RaiseDer(errno, texts.allocationFailed);

  state = std::mbstate_t{};
  cursor = source;
  const std::size_t converted = convert(buffer.get(), &cursor, length, &state);
  if (converted == static_cast<std::size_t>(-1)) {
    const int code = errno;  // read before the buffer is released
    buffer.reset();
    RaiseDer(code, texts.convertFailed);
  }
  if (converted == 0) return Result();

  try {
    return make(buffer.get(), length);
  } catch (const std::exception&) {
    RaiseDer(kErrNoStringBuffer, texts.resultFailed);
  }
}

}  // namespace

const TextConversionCalls& LibcTextConversion() {
  static constexpr TextConversionCalls kCalls = {
      [](char* target, const wchar_t** source, std::size_t length, std::mbstate_t* state) {
        return std::wcsrtombs(target, source, length, state);
      },
      [](wchar_t* target, const char** source, std::size_t length, std::mbstate_t* state) {
        return std::mbsrtowcs(target, source, length, state);
      },
      [](std::size_t count) -> char* { return new (std::nothrow) char[count](); },
      [](std::size_t count) -> wchar_t* { return new (std::nothrow) wchar_t[count](); },
      [](const char* text, std::size_t length) { return std::string(text, length); },
      [](const wchar_t* text, std::size_t length) { return std::wstring(text, length); },
  };
  return kCalls;
}

std::string WideToMultibyte(const std::wstring& text, const TextConversionCalls& calls) {
  if (text.empty()) return std::string();
  // The locale's name is taken (and kept for the call) but never changed: the
  // calling program owns the locale.
  const char* name = std::setlocale(LC_CTYPE, nullptr);
  const std::string locale = name != nullptr ? name : "";
  (void)locale;
  return Convert(text.c_str(), calls.wideToMultibyte, calls.allocateNarrow, calls.makeString,
                 kToMultibyte);
}

std::wstring MultibyteToWide(const std::string& text, const TextConversionCalls& calls) {
  if (text.empty()) return std::wstring();
  return Convert(text.c_str(), calls.multibyteToWide, calls.allocateWide, calls.makeWString,
                 kToWide);
}

}  // namespace detail
}  // namespace keyasn

std::string DerHelper::ToString(const std::wstring& text) {
  return keyasn::detail::WideToMultibyte(text, keyasn::detail::LibcTextConversion());
}

std::wstring DerHelper::ToWString(const std::string& text) {
  return keyasn::detail::MultibyteToWide(text, keyasn::detail::LibcTextConversion());
}
