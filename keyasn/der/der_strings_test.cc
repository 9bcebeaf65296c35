#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "keyasn/der/der_helper.h"
#include "keyasn/der/der_test_util.h"
#include "keyasn/support/status.h"

namespace {

using keyasn::testing::Exact;
using keyasn::testing::ExpectStatus;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::LocaleScope;
using keyasn::testing::Place;
using keyasn::testing::ToHex;

const char kWrongType[] = "Неверный тип";
const char kDecodePlace[] = "DerHelper::DecodeUtf8String";
const char kWideFailed[] = "DerHelper::ToString wcsrtombs(1)";
const char kNarrowFailed[] = "DerHelper::ToWString mbsrtowcs(1)";

std::string Octets(const IdentObj& obj) {
  return obj.Count() ? std::string(reinterpret_cast<const char*>(obj.GetData()), obj.Count())
                     : std::string();
}

// ---------------------------------------------------------------------------
// Filters over every octet value, against alphabets written out here.

bool Printable(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         (c != 0 && std::strchr(" '()+,-./:=?", c) != nullptr);
}

bool Numeric(unsigned char c) { return (c >= '0' && c <= '9') || c == ' '; }

bool Ia5(unsigned char c) { return c <= 0x7F; }

TEST(DerStrings, CharFiltersOverAllOctets) {
  struct Row {
    const char* name;
    char (*filter)(char);
    bool (*member)(unsigned char);
    char replacement;
    int kept;
    char nul;  // what NUL becomes
  };
  const Row rows[] = {
      {"printable", &DerHelper::ToPrintableChar, Printable, '.', 74, '.'},
      {"numeric", &DerHelper::ToNumericChar, Numeric, ' ', 11, ' '},
      {"IA5", &DerHelper::ToIa5Char, Ia5, '.', 128, '\0'},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    int kept = 0;
    for (int v = 0; v < 256; ++v) {
      SCOPED_TRACE(v);
      const char c = static_cast<char>(v);
      const bool keep = row.member(static_cast<unsigned char>(v));
      kept += keep;
      EXPECT_EQ(row.filter(c), keep ? c : row.replacement);
    }
    EXPECT_EQ(kept, row.kept);
    EXPECT_EQ(row.filter('\0'), row.nul);
  }
}

// ---------------------------------------------------------------------------
// Length-limited encoders

TEST(DerStrings, LimitedEncoders) {
  struct Row {
    const char* name;
    IdentObj (*encode)(const std::string&, unsigned long);
    const char* text;
    unsigned long maxLength;
    const char* der;
  };
  const Row rows[] = {
      {"printable, no limit", &DerHelper::EncodeStringAsPrintable, "Ab_c*1", ~0UL,
       "13 06 41 62 2E 63 2E 31"},
      {"printable, limit 3", &DerHelper::EncodeStringAsPrintable, "Ab_c*1", 3, "13 03 41 62 2E"},
      {"printable, limit at the length", &DerHelper::EncodeStringAsPrintable, "Ab_c*1", 6,
       "13 06 41 62 2E 63 2E 31"},
      {"printable, limit above the length", &DerHelper::EncodeStringAsPrintable, "Ab", 7,
       "13 02 41 62"},
      {"printable, largest limit but one", &DerHelper::EncodeStringAsPrintable, "Ab", ~0UL - 1,
       "13 02 41 62"},
      {"printable, limit 0", &DerHelper::EncodeStringAsPrintable, "Ab", 0, "13 00"},
      {"printable, marks kept", &DerHelper::EncodeStringAsPrintable, " '()+,-./:=?", ~0UL,
       "13 0C 20 27 28 29 2B 2C 2D 2E 2F 3A 3D 3F"},
      {"printable, empty", &DerHelper::EncodeStringAsPrintable, "", ~0UL, "13 00"},
      {"numeric, limit 10", &DerHelper::EncodeStringAsNumeric, "12-34", 10,
       "12 05 31 32 20 33 34"},
      {"numeric, limit 2", &DerHelper::EncodeStringAsNumeric, "12-34", 2, "12 02 31 32"},
      {"numeric, limit 0", &DerHelper::EncodeStringAsNumeric, "12-34", 0, "12 00"},
      {"numeric, empty", &DerHelper::EncodeStringAsNumeric, "", ~0UL, "12 00"},
      {"numeric, letters", &DerHelper::EncodeStringAsNumeric, "a1 b", ~0UL, "12 04 20 31 20 20"},
      {"ia5, no limit", &DerHelper::EncodeStringAsIa5, "a\x7F\x80\xFF", ~0UL, "16 04 61 7F 2E 2E"},
      {"ia5, limit 1", &DerHelper::EncodeStringAsIa5, "ab", 1, "16 01 61"},
      {"ia5, limit 0", &DerHelper::EncodeStringAsIa5, "ab", 0, "16 00"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ToHex(row.encode(row.text, row.maxLength)), row.der);
  }
  // The limit defaults to none.
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsPrintable(std::string("Ab_"))), "13 03 41 62 2E");
}

// Every octet value through each encoder, with a NUL inside the text.
TEST(DerStrings, LimitedEncodersOverAllOctets) {
  std::string all;
  for (int v = 0; v < 256; ++v) all += static_cast<char>(v);
  struct Row {
    const char* name;
    IdentObj (*encode)(const std::string&, unsigned long);
    unsigned char tag;
    char (*filter)(char);
  };
  const Row rows[] = {
      {"printable", &DerHelper::EncodeStringAsPrintable, 0x13, &DerHelper::ToPrintableChar},
      {"numeric", &DerHelper::EncodeStringAsNumeric, 0x12, &DerHelper::ToNumericChar},
      {"ia5", &DerHelper::EncodeStringAsIa5, 0x16, &DerHelper::ToIa5Char},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const IdentObj element = row.encode(all, ~0UL);
    ASSERT_EQ(element.Count(), 4u + 256u);
    EXPECT_EQ(element.GetData()[0], row.tag);
    EXPECT_EQ(ToHex(element.GetData() + 1, 3), "82 01 00");
    for (int v = 0; v < 256; ++v) {
      SCOPED_TRACE(v);
      EXPECT_EQ(static_cast<char>(element.GetData()[4 + v]), row.filter(static_cast<char>(v)));
    }
  }
}

TEST(DerStrings, WideLimitedEncodersCountMultibyteUnits) {
  LocaleScope locale("C.UTF-8");
  ASSERT_TRUE(locale.selected());
  // L"AЖB" is 41 D0 96 42 in UTF-8: four units, each filtered on its own.
  const std::wstring text = L"A\u0416B";
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsPrintable(text, ~0UL)), "13 04 41 2E 2E 42");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsPrintable(text, 2)), "13 02 41 2E");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsPrintable(text, 0)), "13 00");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsIa5(text, ~0UL)), "16 04 41 2E 2E 42");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsIa5(text, 3)), "16 03 41 2E 2E");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsNumeric(std::wstring(L"1\u04162"), ~0UL)),
            "12 04 31 20 20 32");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsNumeric(std::wstring(L"1\u04162"), 2)), "12 02 31 20");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsPrintable(std::wstring(L"Ab_c*1"), 3)),
            "13 03 41 62 2E");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsPrintable(std::wstring())), "13 00");
}

TEST(DerStrings, WideEncodersFailForUnrepresentableCharacters) {
  LocaleScope locale("C");
  ASSERT_TRUE(locale.selected());
  const std::wstring text = L"A\u0416";
  ExpectStatus([&] { DerHelper::EncodeStringAsUtf8(text); }, EILSEQ, kWideFailed);
  ExpectStatus([&] { DerHelper::EncodeStringAsPrintable(text, ~0UL); }, EILSEQ, kWideFailed);
  ExpectStatus([&] { DerHelper::EncodeStringAsNumeric(text, ~0UL); }, EILSEQ, kWideFailed);
  ExpectStatus([&] { DerHelper::EncodeStringAsIa5(text, ~0UL); }, EILSEQ, kWideFailed);
  // Even a limit of 0: the whole text is converted first.
  ExpectStatus([&] { DerHelper::EncodeStringAsIa5(text, 0); }, EILSEQ, kWideFailed);
  // ASCII converts under "C".
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsPrintable(std::wstring(L"Ab_"), ~0UL)),
            "13 03 41 62 2E");
}

// ---------------------------------------------------------------------------
// UTF8String

TEST(DerStrings, EncodeStringAsUtf8UnderUtf8Locale) {
  LocaleScope locale("C.UTF-8");
  ASSERT_TRUE(locale.selected());
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::wstring(L"\u0416"))), "0C 02 D0 96");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::wstring(L"AB"))), "0C 02 41 42");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::wstring(L"\u20AC"))), "0C 03 E2 82 AC");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::wstring(L"\U0001F600"))),
            "0C 04 F0 9F 98 80");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::wstring())), "0C 00");
  // The narrow form goes through the wide form; its number is ignored.
  for (unsigned int n : {0u, 1u, 2u, 100u, UINT_MAX}) {
    SCOPED_TRACE(n);
    EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::string("\xD0\x96"), n)), "0C 02 D0 96");
    EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::string("AB"), n)), "0C 02 41 42");
    EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::string(), n)), "0C 00");
  }
  // A narrow text that is not valid in the locale.
  ExpectStatus([] { DerHelper::EncodeStringAsUtf8(std::string("\xD0"), 0); }, EILSEQ,
               kNarrowFailed);
  ExpectStatus([] { DerHelper::EncodeStringAsUtf8(std::string("A\xFF"), 0); }, EILSEQ,
               kNarrowFailed);
  // An embedded NUL ends the converted text.
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::wstring(L"A\0B", 3))), "0C 01 41");
}

TEST(DerStrings, EncodeStringAsUtf8UnderCLocale) {
  LocaleScope locale("C");
  ASSERT_TRUE(locale.selected());
  ExpectStatus([] { DerHelper::EncodeStringAsUtf8(std::wstring(L"\u0416")); }, EILSEQ,
               kWideFailed);
  ExpectStatus([] { DerHelper::EncodeStringAsUtf8(std::string("\xD0\x96"), 0); }, EILSEQ,
               kNarrowFailed);
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::wstring(L"AB"))), "0C 02 41 42");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::string("AB"), 7)), "0C 02 41 42");
  // Empty texts need no conversion at all.
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::wstring())), "0C 00");
  EXPECT_EQ(ToHex(DerHelper::EncodeStringAsUtf8(std::string(), 0)), "0C 00");
}

TEST(DerStrings, DecodeUtf8String) {
  LocaleScope locale("C.UTF-8");
  ASSERT_TRUE(locale.selected());
  struct Row {
    const char* name;
    const char* der;
    bool skip;
    std::wstring wide;
  };
  const Row rows[] = {
      {"utf8", "0C 02 D0 96", false, L"\u0416"},
      {"printable", "13 02 41 42", false, L"AB"},
      {"ia5", "16 02 41 42", false, L"AB"},
      {"numeric decodes to nothing (kept)", "12 02 31 32", false, L""},
      {"empty utf8", "0C 00", false, L""},
      {"octet string skipped", "04 02 41 42", true, L"AB"},
      {"utf8 skipped", "0C 01 41", true, L"A"},
      {"bmp string skipped: its octets as text", "1E 02 00 41", true, L""},
      {"visible string skipped", "1A 01 7A", true, L"z"},
      {"embedded NUL ends the text", "0C 03 41 00 42", false, L"A"},
      {"context class [12]", "8C 02 41 42", false, L"AB"},
      {"long form", "0C 81 02 41 42", false, L"AB"},
      {"indefinite primitive", "0C 80 41 42 00 00", false, L"AB"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(DerHelper::DecodeUtf8StringW(Hex(row.der), row.skip), row.wide);
    EXPECT_EQ(DerHelper::DecodeUtf8String(Hex(row.der), row.skip), DerHelper::ToString(row.wide));
  }
  EXPECT_EQ(DerHelper::DecodeUtf8String(Hex("0C 02 D0 96")), "\xD0\x96");
  EXPECT_EQ(DerHelper::DecodeUtf8String(Hex("13 02 41 42")), "AB");
}

TEST(DerStrings, DecodeUtf8StringFailures) {
  LocaleScope locale("C.UTF-8");
  ASSERT_TRUE(locale.selected());
  struct Row {
    const char* name;
    const char* der;
    bool skip;
    int code;
    std::string where;
  };
  const Row rows[] = {
      {"octet string", "04 02 41 42", false, 131, Place(kDecodePlace, kWrongType)},
      {"bmp string", "1E 02 00 41", false, 131, Place(kDecodePlace, kWrongType)},
      {"t61 string", "14 01 41", false, 131, Place(kDecodePlace, kWrongType)},
      {"integer", "02 01 41", false, 131, Place(kDecodePlace, kWrongType)},
      {"one octet", "0C", false, 206, kDecodePlace},
      {"empty", "", false, 206, kDecodePlace},
      {"high tag number never ends", "1F 8C 8C", false, 205, kDecodePlace},
      {"contents beyond the element", "0C 05 41", false, 206, kDecodePlace},
      {"indefinite constructed", "2C 80 0C 01 41 00 00", true, 206, kDecodePlace},
      {"invalid utf-8", "0C 01 FF", false, EILSEQ, kNarrowFailed},
      {"cut utf-8", "0C 01 D0", false, EILSEQ, kNarrowFailed},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const IdentObj element = Hex(row.der);
    ExpectStatus([&] { DerHelper::DecodeUtf8StringW(element, row.skip); }, row.code, row.where);
    ExpectStatus([&] { DerHelper::DecodeUtf8String(element, row.skip); }, row.code, row.where);
  }
}

TEST(DerStrings, DecodeUtf8StringUnderCLocale) {
  LocaleScope locale("C");
  ASSERT_TRUE(locale.selected());
  EXPECT_EQ(DerHelper::DecodeUtf8String(Hex("0C 02 41 42")), "AB");
  EXPECT_EQ(DerHelper::DecodeUtf8StringW(Hex("16 02 41 42")), L"AB");
  const IdentObj cyrillic = Hex("0C 02 D0 96");
  ExpectStatus([&] { DerHelper::DecodeUtf8StringW(cyrillic); }, EILSEQ, kNarrowFailed);
  ExpectStatus([&] { DerHelper::DecodeUtf8String(cyrillic); }, EILSEQ, kNarrowFailed);
}

// ---------------------------------------------------------------------------
// Round trips under both locales

TEST(DerStrings, Utf8RoundTripsUnderUtf8Locale) {
  LocaleScope locale("C.UTF-8");
  ASSERT_TRUE(locale.selected());
  std::wstring ascii;
  for (wchar_t c = 1; c < 0x80; ++c) ascii += c;
  const std::wstring texts[] = {
      L"", L"hello", L"\u041F\u0440\u0438\u0432\u0435\u0442, \u043C\u0438\u0440",
      L"\u65E5\u672C\u8A9E", L"\u20AC 100", L"\U0001F600\U0010FFFF", L"\u00FF\u0100\u07FF\u0800",
      std::wstring(200, L'\u0416'), ascii};
  for (const std::wstring& text : texts) {
    SCOPED_TRACE(DerHelper::ToString(text));
    const IdentObj element = DerHelper::EncodeStringAsUtf8(text);
    EXPECT_EQ(DerHelper::DecodeUtf8StringW(element), text);
    const std::string narrow = DerHelper::ToString(text);
    EXPECT_EQ(DerHelper::DecodeUtf8String(DerHelper::EncodeStringAsUtf8(narrow, 0)), narrow);
    EXPECT_EQ(Octets(element).substr(element.Count() - narrow.size()), narrow);
  }
}

TEST(DerStrings, RoundTripsUnderCLocale) {
  LocaleScope locale("C");
  ASSERT_TRUE(locale.selected());
  std::string ascii;
  for (int c = 1; c < 0x80; ++c) ascii += static_cast<char>(c);
  for (const std::string& text : {std::string(), std::string("hello"), ascii}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(DerHelper::DecodeUtf8String(DerHelper::EncodeStringAsUtf8(text, 0)), text);
    EXPECT_EQ(DerHelper::DecodeUtf8StringW(DerHelper::EncodeStringAsUtf8(
                  DerHelper::ToWString(text))),
              DerHelper::ToWString(text));
    std::string printable;
    for (char c : text) printable += DerHelper::ToPrintableChar(c);
    EXPECT_EQ(DerHelper::DecodeUtf8String(DerHelper::EncodeStringAsPrintable(text, ~0UL)),
              printable);
    EXPECT_EQ(DerHelper::DecodeUtf8String(DerHelper::EncodeStringAsIa5(text, ~0UL)), text);
    // A NumericString never comes back (kept).
    EXPECT_EQ(DerHelper::DecodeUtf8String(DerHelper::EncodeStringAsNumeric(text, ~0UL)), "");
  }
}

TEST(DerStrings, LimitedRoundTripsUnderUtf8Locale) {
  LocaleScope locale("C.UTF-8");
  ASSERT_TRUE(locale.selected());
  const std::wstring text = L"Key \u2116 42 (test)";  // the sign is three UTF-8 octets
  EXPECT_EQ(DerHelper::DecodeUtf8StringW(DerHelper::EncodeStringAsPrintable(text, ~0UL)),
            L"Key ... 42 (test)");
  EXPECT_EQ(DerHelper::DecodeUtf8StringW(DerHelper::EncodeStringAsIa5(text, 5)), L"Key .");
  EXPECT_EQ(DerHelper::DecodeUtf8StringW(DerHelper::EncodeStringAsNumeric(text, ~0UL)), L"");
  EXPECT_EQ(Octets(DerHelper::EncodeStringAsNumeric(text, ~0UL)),
            std::string("\x12\x11") + "    " + "   " + " 42 " + "      ");
}

// ---------------------------------------------------------------------------
// Cut elements from buffers of exactly their size

TEST(DerStrings, PrefixesNeverReadBeyondTheBuffer) {
  LocaleScope locale("C.UTF-8");
  ASSERT_TRUE(locale.selected());
  for (const char* der : {"0C 02 D0 96", "13 81 02 41 42", "16 80 41 42 00 00"}) {
    SCOPED_TRACE(der);
    const std::vector<unsigned char> bytes = HexBytes(der);
    for (std::size_t n = 0; n < bytes.size(); ++n) {
      SCOPED_TRACE(n);
      const IdentObj prefix = Exact(bytes, n);
      try {
        DerHelper::DecodeUtf8StringW(prefix);
        ADD_FAILURE() << "a cut element was accepted";
      } catch (const XRUVStatus& e) {
        EXPECT_TRUE(e.Status() == 205 || e.Status() == 206) << e.Status();
        EXPECT_EQ(std::string(e.Where()), kDecodePlace);
      }
    }
    EXPECT_NO_THROW(DerHelper::DecodeUtf8String(Exact(bytes, bytes.size())));
  }
}

}  // namespace
