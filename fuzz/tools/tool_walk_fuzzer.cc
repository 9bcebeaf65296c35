// The tool on BER/DER input, each command as it runs on a file: dump (text and
// JSON, with --depth, --octets and --no-encap, and from the elements --offset
// finds), extract, lint (text and JSON) and view. Input the walk reads whole
// comes back octet for octet from dump's JSON through encode, and the JSON that
// dump streams is what the parsed document writes.
#include <sstream>
#include <string>
#include <vector>

#include "commands.h"
#include "der_json.h"
#include "fuzz/tools/tool_support.h"
#include "lint_command.h"
#include "types.h"
#include "view_command.h"

namespace {

namespace tool = keyasn::tool;
using keyasn_fuzz::CheckStatus;
using keyasn_fuzz::Discard;

void Dump(const std::string& file, tool::InputForm form, bool json, std::size_t octets, int depth,
          bool encapsulated, const std::vector<std::size_t>& offsets = {}) {
  tool::DumpRequest request;
  request.file = file;
  request.inform = form;
  request.json = json;
  request.octets = octets;
  request.depth = depth;
  request.encapsulated = encapsulated;
  request.offsets = offsets;
  Discard out;
  std::ostringstream err;
  const int status = tool::RunDump(request, out, err);
  CheckStatus(status, {tool::kExitOk, tool::kExitMalformed});
  // A message exactly when the command fails.
  KEYASN_FUZZ_CHECK((status == tool::kExitOk) == err.str().empty());
}

void Extract(const std::string& file, const std::vector<std::size_t>& offsets, bool contents) {
  tool::ExtractRequest request;
  request.file = file;
  request.inform = tool::InputForm::kDer;
  request.offsets = offsets;
  request.contents = contents;
  request.outform = contents ? tool::OutputForm::kHex : tool::OutputForm::kPem;
  Discard out, err;
  CheckStatus(tool::RunExtract(request, out, err), {tool::kExitOk, tool::kExitMalformed});
}

// Elements to navigate to: a few spread over the tree, each by its own offset
// and by the chain of offsets that holds it, and offsets that start nothing.
void Navigate(const std::string& file, const uint8_t* data, size_t size) {
  const tool::Tree tree = tool::Walk(data, size, tool::WalkOptions());
  const std::size_t count = tree.elements.size();
  const std::size_t step = count / 4 + 1;
  for (std::size_t i = 0; i < count; i += step) {
    const tool::Element& element = tree.elements[i];
    std::vector<std::size_t> chain;
    for (int at = static_cast<int>(i); at >= 0; at = tree.elements[at].parent)
      chain.insert(chain.begin(), tree.elements[at].offset);
    Dump(file, tool::InputForm::kDer, false, 16, 0, true, {element.offset});
    Dump(file, tool::InputForm::kDer, true, 16, 0, false, chain);
    Extract(file, chain, i % 2 == 1);
    Extract(file, {element.offset + 1}, false);
  }
  Extract(file, {size}, true);
}

void Lint(const std::string& file, bool json) {
  tool::LintRequest request;
  request.file = file;
  request.inform = tool::InputForm::kDer;
  request.json = json;
  Discard out, err;
  CheckStatus(tool::RunLint(request, out, err),
              {tool::kExitOk, tool::kExitFindings, tool::kExitMalformed});
}

void View(const std::string& file, size_t size) {
  const std::vector<tool::TypeInfo>& types = tool::AllTypes();
  tool::ViewRequest request;
  request.file = file;
  request.inform = tool::InputForm::kDer;
  // One page without members, others with the members of a TYPE, by input.
  const std::size_t pick = size % (types.size() + 1);
  if (pick > 0) request.type = types[pick - 1].name;
  std::ostringstream out;
  Discard err;
  CheckStatus(tool::RunView(request, out, err), {tool::kExitOk, tool::kExitMalformed});
  // Damaged input still gives a page; no input at all gives none.
  KEYASN_FUZZ_CHECK((out.str().find("</html>") != std::string::npos) == (size > 0));
}

// RoundTrip: what encode makes of dump --json for input the walk reads whole.
void RoundTrip(const uint8_t* data, size_t size) {
  tool::Json document;
  if (!keyasn_fuzz::StreamedJson(data, size, &document)) return;
  KEYASN_FUZZ_CHECK(tool::EncodeDumpJson(document) == tool::Bytes(data, data + size));
}

}  // namespace

KEYASN_FUZZ_TARGET(tool_walk) {
  const std::vector<uint8_t> exact = keyasn_fuzz::Bytes(data, size);
  const std::string file = keyasn_fuzz::AsFile(exact.data(), exact.size());
  Dump(file, tool::InputForm::kAuto, false, 16, 0, true);
  Dump(file, tool::InputForm::kDer, true, 16, 0, true);
  Dump(file, tool::InputForm::kDer, false, 0, 2, false);
  Navigate(file, exact.data(), exact.size());
  Lint(file, false);
  Lint(file, true);
  View(file, exact.size());
  RoundTrip(exact.data(), exact.size());
}
