// Shared basics of the keyasn tool: octet vectors, hex text and the tool's error.
#ifndef KEYASN_TOOLS_COMMON_H_
#define KEYASN_TOOLS_COMMON_H_

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace keyasn {
namespace tool {

using Bytes = std::vector<unsigned char>;

// The exit statuses of the tool.
enum ExitStatus : int {
  kExitOk = 0,
  kExitUsage = 1,      // bad command line
  kExitMalformed = 2,  // the input is not what it should be
  kExitIo = 3,         // a file could not be read or written
  kExitFindings = 4,   // lint: the input breaks a DER rule
};

// ToolError is a failure that ends the command with `status`; what() is the
// message (without the "keyasn: FILE:" prefix, which the caller adds).
class ToolError : public std::runtime_error {
 public:
  ToolError(int status, const std::string& message)
      : std::runtime_error(message), status_(status) {}
  int status() const { return status_; }

 private:
  int status_;
};

// ToHex writes `size` octets as upper-case hex digits, no separators.
std::string ToHex(const unsigned char* data, std::size_t size);
// HexDigits writes the 2 * `size` digits of ToHex at `out`.
void HexDigits(const unsigned char* data, std::size_t size, char* out);
inline std::string ToHex(const Bytes& bytes) { return ToHex(bytes.data(), bytes.size()); }

// ParseHex reads hex digits (either case); white space and ':' between octets are
// ignored. False for any other character or an odd number of digits.
bool ParseHex(const std::string& text, Bytes* out);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_COMMON_H_
