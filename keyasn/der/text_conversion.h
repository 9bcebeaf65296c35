// The wide/multibyte conversions behind DerHelper::ToString and ToWString, with
// their libc calls and allocations passed in. Internal to the library.
#ifndef KEYASN_DER_TEXT_CONVERSION_H_
#define KEYASN_DER_TEXT_CONVERSION_H_

#include <cstddef>
#include <cwchar>
#include <string>

namespace keyasn {
namespace detail {

// TextConversionCalls names the calls a conversion makes. The library uses
// LibcTextConversion(); tests pass their own to reach the failure paths. The
// allocators are non-throwing, give zero-filled arrays released with delete[], and
// return null (with errno set) on failure.
struct TextConversionCalls {
  std::size_t (*wideToMultibyte)(char* target, const wchar_t** source, std::size_t length,
                                 std::mbstate_t* state);  // wcsrtombs
  std::size_t (*multibyteToWide)(wchar_t* target, const char** source, std::size_t length,
                                 std::mbstate_t* state);  // mbsrtowcs
  char* (*allocateNarrow)(std::size_t count);
  wchar_t* (*allocateWide)(std::size_t count);
  std::string (*makeString)(const char* text, std::size_t length);
  std::wstring (*makeWString)(const wchar_t* text, std::size_t length);
};

// LibcTextConversion: wcsrtombs, mbsrtowcs, new (std::nothrow) and the string
// constructors.
const TextConversionCalls& LibcTextConversion();

// WideToMultibyte is DerHelper::ToString with the given calls.
std::string WideToMultibyte(const std::wstring& text, const TextConversionCalls& calls);
// MultibyteToWide is DerHelper::ToWString with the given calls.
std::wstring MultibyteToWide(const std::string& text, const TextConversionCalls& calls);

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_DER_TEXT_CONVERSION_H_
