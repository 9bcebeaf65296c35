// Octets from hex text in the tests' tables.
#ifndef KEYASN_TOOLS_TESTS_HEX_BYTES_H_
#define KEYASN_TOOLS_TESTS_HEX_BYTES_H_

#include <string>

#include <gtest/gtest.h>

#include "common.h"

namespace keyasn {
namespace tool {

// H reads hex digits (spaces allowed), failing the test on anything else.
inline Bytes H(const std::string& hex) {
  Bytes bytes;
  EXPECT_TRUE(ParseHex(hex, &bytes)) << hex;
  return bytes;
}

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_TESTS_HEX_BYTES_H_
