#include "input.h"

#include <string>

#include <gtest/gtest.h>

namespace keyasn {
namespace tool {
namespace {

Bytes B(const std::string& text) { return Bytes(text.begin(), text.end()); }

const Bytes kDer = {0x30, 0x03, 0x02, 0x01, 0x05};

TEST(InputTest, DetectsEachForm) {
  struct Row {
    const char* name;
    Bytes raw;
    InputForm form;
  };
  const Row rows[] = {
      {"raw DER", kDer, InputForm::kDer},
      {"PEM", B("-----BEGIN THING-----\nMAMCAQU=\n-----END THING-----\n"), InputForm::kPem},
      {"PEM after text", B("Certificate:\n  data\n-----BEGIN X-----\r\nMAMCAQU=\r\n-----END X-----\r\n"),
       InputForm::kPem},
      {"PEM with headers", B("-----BEGIN K-----\nProc-Type: 4,ENCRYPTED\n\nMAMCAQU=\n-----END K-----\n"),
       InputForm::kPem},
      {"hex", B("3003020105\n"), InputForm::kHex},
      {"hex with spaces and colons", B("30 03:02 01 05"), InputForm::kHex},
      {"lower-case hex", B("30030201ff"), InputForm::kHex},
      {"base64", B("MAMCAQU=\n"), InputForm::kBase64},
      {"base64 without padding", B("MAMCAQU"), InputForm::kBase64},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    InputForm detected = InputForm::kAuto;
    const Bytes der = DecodeInput(row.raw, InputForm::kAuto, &detected);
    EXPECT_EQ(detected, row.form);
    if (std::string(row.name) == "lower-case hex") {
      EXPECT_EQ(der, (Bytes{0x30, 0x03, 0x02, 0x01, 0xFF}));
    } else {
      EXPECT_EQ(der, kDer);
    }
  }
}

TEST(InputTest, DamagedBinaryIsTakenAsDer) {
  const Bytes damaged = {0x30, 0x05, 0x02, 0x01};
  InputForm detected = InputForm::kAuto;
  EXPECT_EQ(DecodeInput(damaged, InputForm::kAuto, &detected), damaged);
  EXPECT_EQ(detected, InputForm::kDer);
}

TEST(InputTest, CompleteDerWinsOverText) {
  // Every octet is a base64 character, but the whole is one complete element:
  // a SEQUENCE of 50 octets holding an [APPLICATION 1] of 48.
  const Bytes raw = B("02A0" + std::string(48, 'x'));
  InputForm detected = InputForm::kAuto;
  EXPECT_EQ(DecodeInput(raw, InputForm::kAuto, &detected), raw);
  EXPECT_EQ(detected, InputForm::kDer);
}

TEST(InputTest, TwoPemBlocksAreJoined) {
  const Bytes raw = B("-----BEGIN A-----\nMAMCAQU=\n-----END A-----\n"
                      "-----BEGIN B-----\nBQA=\n-----END B-----\n");
  Bytes expected = kDer;
  expected.insert(expected.end(), {0x05, 0x00});
  EXPECT_EQ(DecodeInput(raw, InputForm::kAuto, nullptr), expected);
}

TEST(InputTest, NamedFormsRefuseOtherText) {
  struct Row {
    const char* name;
    Bytes raw;
    InputForm form;
    const char* message;
  };
  const Row rows[] = {
      {"empty", Bytes(), InputForm::kAuto, "empty input"},
      {"odd hex", B("300"), InputForm::kHex, "not hex text"},
      {"hex with a letter", B("30zz"), InputForm::kHex, "not hex text"},
      {"split octet", B("3 0"), InputForm::kHex, "not hex text"},
      {"bad base64", B("MA*C"), InputForm::kBase64, "not base64 text"},
      {"base64 data after padding", B("MA==MA"), InputForm::kBase64, "not base64 text"},
      {"base64 of one symbol", B("MAMCA"), InputForm::kBase64, "not base64 text"},
      {"PEM without end", B("-----BEGIN A-----\nMAMCAQU=\n"), InputForm::kPem,
       "not PEM: no \"-----END A-----\" line"},
      {"PEM body not base64", B("-----BEGIN A-----\n*\n-----END A-----\n"), InputForm::kPem,
       "not PEM: the body of the PEM block \"A\" is not base64"},
      {"no PEM block", B("hello"), InputForm::kPem, "not PEM: no PEM block"},
      {"empty PEM body", B("-----BEGIN A-----\n-----END A-----\n"), InputForm::kPem,
       "no octets in the input"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    try {
      DecodeInput(row.raw, row.form, nullptr);
      ADD_FAILURE() << "accepted";
    } catch (const ToolError& e) {
      EXPECT_EQ(e.status(), kExitMalformed);
      EXPECT_NE(std::string(e.what()).find(row.message), std::string::npos) << e.what();
    }
  }
}

TEST(InputTest, ForcedDerTakesTextAsItStands) {
  const Bytes raw = B("3003020105");
  EXPECT_EQ(DecodeInput(raw, InputForm::kDer, nullptr), raw);
}

TEST(InputTest, Base64RoundTrip) {
  for (std::size_t size : {0u, 1u, 2u, 3u, 47u, 48u, 49u, 100u}) {
    SCOPED_TRACE(size);
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>(i * 37 + 11);
    const std::string text = EncodeBase64(bytes);
    for (std::size_t pos = 0; pos < text.size(); pos += 65) {
      EXPECT_LE(text.find('\n', pos) - pos, 64u);
    }
    Bytes back;
    ASSERT_TRUE(DecodeBase64(text, &back));
    EXPECT_EQ(back, bytes);
  }
}

TEST(InputTest, MissingFileIsAnIoError) {
  try {
    ReadSource("/nonexistent/keyasn-input");
    ADD_FAILURE() << "read";
  } catch (const ToolError& e) {
    EXPECT_EQ(e.status(), kExitIo);
    EXPECT_EQ(std::string(e.what()), "cannot open: No such file or directory");
  }
}

TEST(InputTest, FormNames) {
  EXPECT_STREQ(FormName(InputForm::kDer), "der");
  EXPECT_STREQ(FormName(InputForm::kPem), "pem");
  EXPECT_STREQ(FormName(InputForm::kBase64), "base64");
  EXPECT_STREQ(FormName(InputForm::kHex), "hex");
  EXPECT_STREQ(FormName(InputForm::kAuto), "auto");
}

}  // namespace
}  // namespace tool
}  // namespace keyasn
