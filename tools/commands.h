// The three commands of the tool, apart from command-line parsing so that tests
// can run them on streams.
#ifndef KEYASN_TOOLS_COMMANDS_H_
#define KEYASN_TOOLS_COMMANDS_H_

#include <ostream>
#include <string>

#include "der_walk.h"
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

// Shared by the commands: a message "keyasn: NAME: MESSAGE" on `err`, the text of
// a walk's error, the name of the input in messages, and the input's DER (from
// the bundled sample when `file` is empty; `name` set to the input's name).
void Report(std::ostream& err, const std::string& name, const std::string& message);
std::string InputName(const std::string& file);
std::string WalkErrorText(const WalkError& error);
// FinishOutput flushes `out` and returns the exit status: 2 with the walk's
// `damage` reported (when not null), 3 when the output failed, otherwise 0.
int FinishOutput(std::ostream& out, std::ostream& err, const std::string& name,
                 const WalkError* damage);
Bytes ReadInput(const std::string& file, InputForm form, std::string* name);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_COMMANDS_H_
