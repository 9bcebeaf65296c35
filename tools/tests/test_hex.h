// Octets written as hex in test tables.
#ifndef KEYASN_TOOLS_TESTS_TEST_HEX_H_
#define KEYASN_TOOLS_TESTS_TEST_HEX_H_

#include <string>

#include <gtest/gtest.h>

#include "common.h"

namespace keyasn {
namespace tool {

// HexOctets reads hex digits (spaces allowed), failing the test on other text.
inline Bytes HexOctets(const std::string& hex) {
  Bytes bytes;
  EXPECT_TRUE(ParseHex(hex, &bytes)) << hex;
  return bytes;
}

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_TESTS_TEST_HEX_H_
