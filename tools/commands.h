// The three commands of the tool, apart from command-line parsing so that tests
// can run them on streams.
#ifndef KEYASN_TOOLS_COMMANDS_H_
#define KEYASN_TOOLS_COMMANDS_H_

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "der_walk.h"
#include "input.h"
#include "load.h"
#include "output.h"

namespace keyasn {
namespace tool {

struct DumpRequest {
  std::string file;  // empty: standard input when it is data, else the bundled sample
  InputForm inform = InputForm::kAuto;
  bool json = false;
  bool full = false;         // as octets = 0
  std::size_t octets = 16;   // contents octets per text line; 0: all
  int depth = 0;             // summarise elements this deep; 0: no limit
  bool encapsulated = true;
  std::vector<std::size_t> offsets;  // start at the element these reach (see Locate)
};

struct ExtractRequest {
  std::string file;
  InputForm inform = InputForm::kAuto;
  std::vector<std::size_t> offsets;
  bool contents = false;  // the contents octets only
  bool encapsulated = true;
  OutputForm outform = OutputForm::kDer;
  std::string output;  // empty or "-": standard output
};

struct ShowRequest {
  std::string file;  // empty: standard input when it is data, else the bundled sample
  bool force = false;  // show input that does not fit the TYPE
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
int RunExtract(const ExtractRequest& request, std::ostream& out, std::ostream& err);

// InputName names the input of a request in messages before it is opened.
std::string InputName(const std::string& file);

// The bundled sample container (made from samples/container.der at build time).
Source BundledSample();

// Open loads the input of a command (a FILE, standard input or the bundled
// sample); a failure is reported on `err` and its exit status returned, 0 otherwise.
int Open(const std::string& file, InputForm form, std::ostream& err, std::unique_ptr<Input>* input);

// Malformed reports a fault of the input, naming the form it was read as, and
// returns the exit status for malformed input.
int Malformed(std::ostream& err, const Input& input, const std::string& message);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_COMMANDS_H_
