#include "keyasn/der/text_conversion.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

#include "keyasn/der/der_helper.h"
#include "keyasn/der/der_test_util.h"
#include "keyasn/support/status.h"

namespace {

using keyasn::detail::LibcTextConversion;
using keyasn::detail::MultibyteToWide;
using keyasn::detail::TextConversionCalls;
using keyasn::detail::WideToMultibyte;
using keyasn::testing::ExpectStatus;
using keyasn::testing::LocaleScope;

std::string CurrentLocale() {
  const char* name = std::setlocale(LC_CTYPE, nullptr);
  return name ? name : "";
}

// ---------------------------------------------------------------------------
// Through the C library, under the locale the test selects

TEST(DerText, ToStringAndToWStringUnderUtf8Locale) {
  LocaleScope locale("C.UTF-8");
  ASSERT_TRUE(locale.selected());
  EXPECT_EQ(DerHelper::ToString(L"\u0416"), "\xD0\x96");
  EXPECT_EQ(DerHelper::ToString(L"AB"), "AB");
  EXPECT_EQ(DerHelper::ToString(L"\U0001F600"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(DerHelper::ToString(std::wstring()), "");
  EXPECT_EQ(DerHelper::ToWString("\xD0\x96"), L"\u0416");
  EXPECT_EQ(DerHelper::ToWString("\xE2\x82\xAC"), L"\u20AC");
  EXPECT_EQ(DerHelper::ToWString(std::string()), L"");
  // A NUL ends the converted text.
  EXPECT_EQ(DerHelper::ToString(std::wstring(L"A\0B", 3)), "A");
  EXPECT_EQ(DerHelper::ToWString(std::string("A\0B", 3)), L"A");
  EXPECT_EQ(DerHelper::ToString(std::wstring(L"\0A", 2)), "");
  EXPECT_EQ(DerHelper::ToWString(std::string("\0A", 2)), L"");
  // Not valid UTF-8, or a lone surrogate.
  ExpectStatus([] { DerHelper::ToWString("\xD0"); }, EILSEQ, "DerHelper::ToWString mbsrtowcs(1)");
  ExpectStatus([] { DerHelper::ToWString("A\x80"); }, EILSEQ,
               "DerHelper::ToWString mbsrtowcs(1)");
  ExpectStatus([] { DerHelper::ToString(std::wstring(1, static_cast<wchar_t>(0xD800))); },
               EILSEQ, "DerHelper::ToString wcsrtombs(1)");
  // The library reads the locale but never changes it.
  EXPECT_EQ(CurrentLocale(), "C.UTF-8");
}

TEST(DerText, ToStringAndToWStringUnderCLocale) {
  LocaleScope locale("C");
  ASSERT_TRUE(locale.selected());
  EXPECT_EQ(DerHelper::ToString(L"AB"), "AB");
  EXPECT_EQ(DerHelper::ToWString("AB"), L"AB");
  ExpectStatus([] { DerHelper::ToString(L"\u0416"); }, EILSEQ, "DerHelper::ToString wcsrtombs(1)");
  ExpectStatus([] { DerHelper::ToString(L"A\u00E9"); }, EILSEQ,
               "DerHelper::ToString wcsrtombs(1)");
  ExpectStatus([] { DerHelper::ToWString("\xD0\x96"); }, EILSEQ,
               "DerHelper::ToWString mbsrtowcs(1)");
  EXPECT_EQ(CurrentLocale(), "C");
}

TEST(DerText, AsciiRoundTripsUnderBothLocales) {
  std::string ascii;
  for (int c = 1; c < 0x80; ++c) ascii += static_cast<char>(c);
  for (const char* name : {"C", "C.UTF-8"}) {
    SCOPED_TRACE(name);
    LocaleScope locale(name);
    ASSERT_TRUE(locale.selected());
    const std::wstring wide = DerHelper::ToWString(ascii);
    ASSERT_EQ(wide.size(), ascii.size());
    for (std::size_t i = 0; i < ascii.size(); ++i) EXPECT_EQ(wide[i], static_cast<wchar_t>(ascii[i]));
    EXPECT_EQ(DerHelper::ToString(wide), ascii);
  }
}

// ---------------------------------------------------------------------------
// The failure paths, through stand-in calls

struct Seen {
  int calls = 0;
  bool nullTargetFirst = false;
  std::size_t firstLength = 99;
  std::size_t secondLength = 0;
  bool statesZero = true;
  bool fromTheStart = true;
};
Seen seen;
const void* expectedSource = nullptr;

bool IsZero(const std::mbstate_t* state) {
  const std::mbstate_t zero{};
  return std::memcmp(state, &zero, sizeof zero) == 0;
}

// Records its calls, measures with the real function and, on the second call,
// behaves as `secondResult` says.
enum class Second { kReal, kFail, kZero };
Second second = Second::kReal;

std::size_t RecordingToMultibyte(char* target, const wchar_t** source, std::size_t length,
                                 std::mbstate_t* state) {
  ++seen.calls;
  seen.statesZero = seen.statesZero && IsZero(state);
  seen.fromTheStart = seen.fromTheStart && *source == expectedSource;
  if (seen.calls == 1) {
    seen.nullTargetFirst = target == nullptr;
    seen.firstLength = length;
    return std::wcsrtombs(target, source, length, state);
  }
  seen.secondLength = length;
  if (second == Second::kFail) {
    errno = EILSEQ;
    return static_cast<std::size_t>(-1);
  }
  if (second == Second::kZero) return 0;
  return std::wcsrtombs(target, source, length, state);
}

std::size_t RecordingToWide(wchar_t* target, const char** source, std::size_t length,
                            std::mbstate_t* state) {
  ++seen.calls;
  seen.statesZero = seen.statesZero && IsZero(state);
  seen.fromTheStart = seen.fromTheStart && *source == expectedSource;
  if (seen.calls == 1) {
    seen.nullTargetFirst = target == nullptr;
    seen.firstLength = length;
    return std::mbsrtowcs(target, source, length, state);
  }
  seen.secondLength = length;
  if (second == Second::kFail) {
    errno = EINVAL;
    return static_cast<std::size_t>(-1);
  }
  if (second == Second::kZero) return 0;
  return std::mbsrtowcs(target, source, length, state);
}

char* NoNarrow(std::size_t) {
  errno = ENOMEM;
  return nullptr;
}
wchar_t* NoWide(std::size_t) {
  errno = ENOMEM;
  return nullptr;
}
std::string StringTooLong(const char*, std::size_t) { throw std::length_error("string"); }
std::wstring WStringTooLong(const wchar_t*, std::size_t) { throw std::bad_alloc(); }
std::string StringThrowsInt(const char*, std::size_t) { throw 7; }
std::wstring WStringThrowsInt(const wchar_t*, std::size_t) { throw 8; }

class DerTextCalls : public ::testing::Test {
 protected:
  void SetUp() override {
    seen = Seen();
    second = Second::kReal;
    calls_ = LibcTextConversion();
    calls_.wideToMultibyte = &RecordingToMultibyte;
    calls_.multibyteToWide = &RecordingToWide;
  }
  LocaleScope locale_{"C.UTF-8"};
  TextConversionCalls calls_{};
  const std::wstring wide_ = L"A\u0416";
  const std::string narrow_ = "A\xD0\x96";
};

TEST_F(DerTextCalls, MeasureThenConvertWithZeroedStatesFromTheStart) {
  ASSERT_TRUE(locale_.selected());
  expectedSource = wide_.c_str();
  EXPECT_EQ(WideToMultibyte(wide_, calls_), "A\xD0\x96");
  EXPECT_EQ(seen.calls, 2);
  EXPECT_TRUE(seen.nullTargetFirst);
  EXPECT_EQ(seen.firstLength, 0u);
  EXPECT_EQ(seen.secondLength, 3u);
  EXPECT_TRUE(seen.statesZero);
  EXPECT_TRUE(seen.fromTheStart);

  seen = Seen();
  expectedSource = narrow_.c_str();
  EXPECT_EQ(MultibyteToWide(narrow_, calls_), L"A\u0416");
  EXPECT_EQ(seen.calls, 2);
  EXPECT_TRUE(seen.nullTargetFirst);
  EXPECT_EQ(seen.secondLength, 2u);
  EXPECT_TRUE(seen.statesZero);
  EXPECT_TRUE(seen.fromTheStart);
}

TEST_F(DerTextCalls, EmptyTextMakesNoCall) {
  EXPECT_EQ(WideToMultibyte(std::wstring(), calls_), "");
  EXPECT_EQ(MultibyteToWide(std::string(), calls_), L"");
  EXPECT_EQ(seen.calls, 0);
}

TEST_F(DerTextCalls, AllocationFailure) {
  ASSERT_TRUE(locale_.selected());
  calls_.allocateNarrow = &NoNarrow;
  calls_.allocateWide = &NoWide;
  expectedSource = wide_.c_str();
  ExpectStatus([&] { WideToMultibyte(wide_, calls_); }, ENOMEM,
               "DerHelper::ToString throw bad_alloc");
  // The wide direction reports under the same text.
  expectedSource = narrow_.c_str();
  ExpectStatus([&] { MultibyteToWide(narrow_, calls_); }, ENOMEM,
               "DerHelper::ToString throw bad_alloc");
}

TEST_F(DerTextCalls, SecondConversionFailure) {
  ASSERT_TRUE(locale_.selected());
  second = Second::kFail;
  expectedSource = wide_.c_str();
  ExpectStatus([&] { WideToMultibyte(wide_, calls_); }, EILSEQ,
               "DerHelper::ToString wcsrtombs(2)");
  seen = Seen();
  expectedSource = narrow_.c_str();
  ExpectStatus([&] { MultibyteToWide(narrow_, calls_); }, EINVAL,
               "DerHelper::ToWString mbsrtowcs(2)");
}

TEST_F(DerTextCalls, SecondConversionOfNothingGivesEmpty) {
  ASSERT_TRUE(locale_.selected());
  second = Second::kZero;
  expectedSource = wide_.c_str();
  EXPECT_EQ(WideToMultibyte(wide_, calls_), "");
  seen = Seen();
  expectedSource = narrow_.c_str();
  EXPECT_EQ(MultibyteToWide(narrow_, calls_), L"");
}

TEST_F(DerTextCalls, ResultStringFailure) {
  ASSERT_TRUE(locale_.selected());
  calls_.makeString = &StringTooLong;
  calls_.makeWString = &WStringTooLong;
  expectedSource = wide_.c_str();
  // Two blanks before "string", as callers have always seen it.
  ExpectStatus([&] { WideToMultibyte(wide_, calls_); }, 12,
               "DerHelper::ToString. Error create  string");
  expectedSource = narrow_.c_str();
  ExpectStatus([&] { MultibyteToWide(narrow_, calls_); }, 12,
               "DerHelper::ToString. Error create wstring");
}

TEST_F(DerTextCalls, OtherExceptionsPassUnchanged) {
  ASSERT_TRUE(locale_.selected());
  calls_.makeString = &StringThrowsInt;
  calls_.makeWString = &WStringThrowsInt;
  expectedSource = wide_.c_str();
  EXPECT_THROW(WideToMultibyte(wide_, calls_), int);
  expectedSource = narrow_.c_str();
  EXPECT_THROW(MultibyteToWide(narrow_, calls_), int);
}

}  // namespace
