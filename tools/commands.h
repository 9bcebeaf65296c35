// The three commands of the tool, apart from command-line parsing so that tests
// can run them on streams.
#ifndef KEYASN_TOOLS_COMMANDS_H_
#define KEYASN_TOOLS_COMMANDS_H_

#include <ostream>
#include <string>

#include "input.h"

namespace keyasn {
namespace tool {

enum class OutputForm { kDer, kPem, kHex };

struct DumpRequest {
  std::string file;  // empty: the bundled sample
  InputForm inform = InputForm::kAuto;
  bool json = false;
  bool full = false;
  bool encapsulated = true;
};

struct ShowRequest {
  std::string file;  // empty: the bundled sample
  std::string type;  // empty: container (only with the bundled sample)
  InputForm inform = InputForm::kAuto;
  bool json = false;
  bool full = false;
};

struct EncodeRequest {
  std::string file = "-";
  std::string type;
  std::string output;  // empty or "-": standard output
  OutputForm outform = OutputForm::kDer;
};

// Each returns the exit status; results go to `out`, messages to `err`.
int RunDump(const DumpRequest& request, std::ostream& out, std::ostream& err);
int RunShow(const ShowRequest& request, std::ostream& out, std::ostream& err);
int RunEncode(const EncodeRequest& request, std::ostream& out, std::ostream& err);

// The bundled sample container (made from samples/container.der at build time).
Source BundledSample();

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_COMMANDS_H_
