// Reading the tool's input: a file or standard input, as raw DER/BER, PEM, base64
// or hex text, detected or named by the user.
#ifndef KEYASN_TOOLS_INPUT_H_
#define KEYASN_TOOLS_INPUT_H_

#include <string>

#include "common.h"

namespace keyasn {
namespace tool {

enum class InputForm { kAuto, kDer, kPem, kBase64, kHex };

// The largest input the tool reads (the codec counts octets in 32 bits).
constexpr std::size_t kMaxInputSize = 256u << 20;

// Source is an input read whole, with the name used in messages.
struct Source {
  std::string name;  // the path, "<stdin>" or "<bundled sample>"
  Bytes bytes;
};

// ReadSource reads the file at `path` ("-": standard input). Throws ToolError
// with kExitIo when it cannot be read, kExitMalformed when it is too large.
Source ReadSource(const std::string& path);

// FormName is "der", "pem", "base64" or "hex" ("auto" for kAuto).
const char* FormName(InputForm form);

// DetectForm names the form of raw input: PEM (a "-----BEGIN " line), raw DER
// when the input is one or more complete elements, hex text, base64 text, and raw
// DER for anything else (so a damaged binary file is reported as malformed DER).
InputForm DetectForm(const unsigned char* raw, std::size_t size);

// DecodeText turns input in the given form into octets; throws
// ToolError(kExitMalformed) when the text is not of that form or holds no octets.
Bytes DecodeText(const unsigned char* raw, std::size_t size, InputForm form);

// DecodeInput turns the raw input into DER/BER octets. With kAuto the form is
// detected: PEM (a "-----BEGIN " line), raw DER when the input is one or more
// complete elements, hex text, base64 text, and raw DER for anything else (so a
// damaged binary file is reported as malformed DER). `*detected` (when given)
// receives the form used. Throws ToolError(kExitMalformed) when the text is not of
// the form named, or the input is empty.
Bytes DecodeInput(const Bytes& raw, InputForm form, InputForm* detected);

// DecodeBase64 reads base64 text (white space ignored, padding optional); false
// when a character is outside the alphabet or the padding is misplaced.
bool DecodeBase64(const std::string& text, Bytes* out);

// EncodeBase64 writes base64 text in lines of 64 characters, each ended by '\n'.
std::string EncodeBase64(const Bytes& bytes);

// DecodePem returns the octets of every PEM block in the text, concatenated;
// false when there is no complete block or a body is not base64.
bool DecodePem(const std::string& text, Bytes* out, std::string* problem);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_INPUT_H_
