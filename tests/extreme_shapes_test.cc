// Extreme shapes fed to the readers of every fuzz target: no input at all, a
// million nested levels (definite and indefinite), lengths up to 0xFFFFFFFF over
// little data, every long length form, high tag numbers of five and more octets,
// and inputs of 64 MiB. Each reader must succeed or report a code or an
// XRUVStatus; nothing may escape, crash, exhaust the stack or trip a sanitizer.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_families.h"

namespace keyasn_sweep {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr size_t kDepth = 1000000;
constexpr size_t kHuge = size_t{64} << 20;  // 64 MiB

void Append(Bytes* out, std::initializer_list<uint8_t> octets) {
  out->insert(out->end(), octets.begin(), octets.end());
}

void AppendLength(Bytes* out, uint32_t length) {
  Append(out, {0x84, static_cast<uint8_t>(length >> 24), static_cast<uint8_t>(length >> 16),
               static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)});
}

// kDepth SEQUENCEs, each in the four-octet length form, around an empty one.
const Bytes& DeepDefinite() {
  static const Bytes shape = [] {
    Bytes out;
    out.reserve(kDepth * 6 + 2);
    for (size_t level = 0; level < kDepth; ++level) {
      out.push_back(0x30);
      AppendLength(&out, static_cast<uint32_t>((kDepth - 1 - level) * 6 + 2));
    }
    Append(&out, {0x30, 0x00});
    return out;
  }();
  return shape;
}

// kDepth indefinite-length SEQUENCEs, closed (or not) by their end-of-contents.
Bytes DeepIndefinite(bool closed, uint8_t identifier) {
  Bytes out;
  out.reserve(kDepth * 4);
  for (size_t level = 0; level < kDepth; ++level) Append(&out, {identifier, 0x80});
  if (closed) out.insert(out.end(), kDepth * 2, 0x00);
  return out;
}

class Extreme : public ::testing::TestWithParam<std::string> {
 protected:
  void Expect(const Bytes& input, const std::string& what, bool null = false) {
    const std::string escaped = Feed(FamilyNamed(GetParam()), input, null);
    EXPECT_TRUE(escaped.empty()) << what << ": " << escaped;
  }
};

TEST_P(Extreme, NoInput) {
  Expect(Bytes(), "null pointer", true);
  // A valid pointer with a size of zero.
  const Bytes one = {0x30};
  FamilyNamed(GetParam())(one.data(), 0);
  for (int octet = 0; octet < 256; ++octet)
    Expect(Bytes{static_cast<uint8_t>(octet)}, "one octet " + std::to_string(octet));
  Expect(Bytes{0x00, 0x00}, "end of contents alone");
}

TEST_P(Extreme, MillionNestedDefinite) {
  Expect(DeepDefinite(), "definite nesting");
  Bytes cut(DeepDefinite().begin(), DeepDefinite().end() - 1);
  Expect(cut, "definite nesting cut short");
}

TEST_P(Extreme, MillionNestedIndefinite) {
  Expect(DeepIndefinite(true, 0x30), "indefinite nesting");
  Expect(DeepIndefinite(false, 0x30), "indefinite nesting without end-of-contents");
  Expect(DeepIndefinite(true, 0xA0), "indefinite context-specific nesting");
}

TEST_P(Extreme, DeclaredLengthsBeyondTheData) {
  const std::vector<Bytes> identifiers = {
      {0x30}, {0x31}, {0x04}, {0x02}, {0x01}, {0x03}, {0x05}, {0x06}, {0x0C}, {0x17},
      {0x18}, {0x24}, {0x80}, {0xA0}, {0xA3}, {0x41}, {0x61}, {0x1F, 0x81, 0x00},
      {0x3F, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F}};
  const uint32_t lengths[] = {0x80, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000,
                              0xFFFFFFFE, 0xFFFFFFFF};
  for (const Bytes& identifier : identifiers) {
    for (uint32_t length : lengths) {
      for (size_t data : {0, 1, 3, 16}) {
        Bytes input = identifier;
        AppendLength(&input, length);
        for (size_t i = 0; i < data; ++i) input.push_back(static_cast<uint8_t>(0x02 + i % 3));
        Expect(input, "identifier " + std::to_string(identifier[0]) + " length " +
                          std::to_string(length) + " data " + std::to_string(data));
        // The same element as the first item of a definite SEQUENCE.
        Bytes outer = {0x30};
        AppendLength(&outer, static_cast<uint32_t>(input.size()));
        outer.insert(outer.end(), input.begin(), input.end());
        Expect(outer, "inside a SEQUENCE");
        // And of an indefinite one.
        Bytes open = {0x30, 0x80};
        open.insert(open.end(), input.begin(), input.end());
        Append(&open, {0x00, 0x00});
        Expect(open, "inside an indefinite SEQUENCE");
      }
    }
  }
}

TEST_P(Extreme, LongLengthForms) {
  for (uint8_t identifier : {0x30, 0x04, 0x02, 0x06, 0xA0, 0x80}) {
    for (int form = 0x81; form <= 0x8F; ++form) {
      const int count = form - 0x80;
      for (uint8_t fill : {0x00, 0x01, 0xFF}) {
        Bytes input = {identifier, static_cast<uint8_t>(form)};
        for (int i = 0; i < count; ++i) input.push_back(i + 1 == count ? 0x03 : fill);
        Append(&input, {0x02, 0x01, 0x05});
        Expect(input, "form " + std::to_string(form) + " fill " + std::to_string(fill));
        input.resize(2 + count / 2);  // the length octets cut short
        Expect(input, "form " + std::to_string(form) + " cut");
      }
    }
    Expect(Bytes{identifier, 0xFF, 0x00, 0x00}, "length octet 0xFF");
  }
}

TEST_P(Extreme, HighTagNumbers) {
  for (uint8_t first : {0x1F, 0x3F, 0x5F, 0x7F, 0x9F, 0xBF, 0xDF, 0xFF}) {
    for (size_t octets : {5, 6, 10, 64}) {
      for (uint8_t group : {0x80, 0x8F, 0xFF}) {
        Bytes tag = {first};
        for (size_t i = 0; i + 1 < octets; ++i) tag.push_back(group);
        Bytes ended = tag;
        ended.push_back(0x7F);
        for (const Bytes& contents : {Bytes{0x00}, Bytes{0x03, 0x02, 0x01, 0x05},
                                      Bytes{0x80, 0x02, 0x01, 0x05, 0x00, 0x00}}) {
          Bytes input = ended;
          input.insert(input.end(), contents.begin(), contents.end());
          Expect(input, "tag of " + std::to_string(octets) + " octets");
          Bytes outer = {0x30, static_cast<uint8_t>(input.size())};
          outer.insert(outer.end(), input.begin(), input.end());
          Expect(outer, "tag of " + std::to_string(octets) + " octets inside a SEQUENCE");
        }
        Expect(tag, "unterminated tag of " + std::to_string(octets) + " octets");
      }
    }
  }
}

TEST_P(Extreme, SixtyFourMiB) {
  {
    Bytes input = {0x04};
    AppendLength(&input, static_cast<uint32_t>(kHuge - 6));
    input.resize(kHuge, 0x41);
    Expect(input, "one OCTET STRING of 64 MiB");
  }
  {
    // A SEQUENCE of 1024 OCTET STRINGs of 64 KiB each.
    const uint32_t item = 65536;
    Bytes input = {0x30};
    AppendLength(&input, static_cast<uint32_t>((item + 6) * 1024));
    for (int i = 0; i < 1024; ++i) {
      input.push_back(0x04);
      AppendLength(&input, item);
      input.resize(input.size() + item, static_cast<uint8_t>(i));
    }
    Expect(input, "a SEQUENCE of 1024 items of 64 KiB");
  }
}

INSTANTIATE_TEST_SUITE_P(Every, Extreme, ::testing::ValuesIn(FamilyNames()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                           return info.param;
                         });

}  // namespace
}  // namespace keyasn_sweep
