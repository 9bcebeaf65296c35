// The lint command: DER conformance findings on any BER/DER input.
#ifndef KEYASN_TOOLS_LINT_COMMAND_H_
#define KEYASN_TOOLS_LINT_COMMAND_H_

#include <ostream>
#include <string>

#include "input.h"

namespace keyasn {
namespace tool {

struct LintRequest {
  std::string file;  // empty: standard input when it is data, else the bundled sample
  InputForm inform = InputForm::kAuto;
  bool json = false;
};

// RunLint prints one line (or JSON object) per finding, in input order, and
// returns 0 (no error finding), 4 (an error finding), 2 (malformed) or 3 (I/O).
int RunLint(const LintRequest& request, std::ostream& out, std::ostream& err);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_LINT_COMMAND_H_
