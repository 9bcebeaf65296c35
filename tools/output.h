// Writing results: octets in an output form to a file or standard output, and
// the tool's messages, each naming what they are about.
#ifndef KEYASN_TOOLS_OUTPUT_H_
#define KEYASN_TOOLS_OUTPUT_H_

#include <cstddef>
#include <ostream>
#include <string>

namespace keyasn {
namespace tool {

enum class OutputForm { kDer, kPem, kHex };

// Report writes "keyasn: NAME: MESSAGE" to `err`.
void Report(std::ostream& err, const std::string& name, const std::string& message);

// OutputName is the name of an output in messages ("<stdout>" for "" and "-").
std::string OutputName(const std::string& path);

// WriteFailure is the message for a failed write to `out` ("cannot write: ...").
std::string WriteFailure();

// WriteOctets writes `size` octets in `form` (PEM under `label`) to `path` (""
// or "-": `out`). Returns the exit status, having reported any failure.
int WriteOctets(const unsigned char* data, std::size_t size, OutputForm form,
                const std::string& label, const std::string& path, std::ostream& out,
                std::ostream& err);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_OUTPUT_H_
