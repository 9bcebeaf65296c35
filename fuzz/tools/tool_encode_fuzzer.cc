// The tool's encode on JSON text: the document dump --json prints (encode
// without --as) and the one show --json prints for every TYPE. Whatever the
// text, encode writes octets or fails with the status of malformed input; no
// other exception may leave it.
#include <string>
#include <vector>

#include "commands.h"
#include "fuzz/tools/tool_support.h"
#include "types.h"

namespace {

namespace tool = keyasn::tool;
using keyasn_fuzz::CheckStatus;
using keyasn_fuzz::Discard;

// Encode runs the command on the file, as DER to standard output.
void Encode(const std::string& file) {
  tool::EncodeRequest request;
  request.file = file;
  Discard out, err;
  CheckStatus(tool::RunEncode(request, out, err), {tool::kExitOk, tool::kExitMalformed});
}

}  // namespace

KEYASN_FUZZ_TARGET(tool_encode) {
  const std::string file = keyasn_fuzz::AsFile(data, size);
  Encode(file);
  // The document once parsed, through every TYPE's reader as well.
  const tool::Json document = tool::Json::parse(data, data + size, nullptr, false);
  if (document.is_discarded()) return;
  for (const tool::TypeInfo& type : tool::AllTypes()) {
    try {
      (void)type.encode(tool::JsonIn(document, ""));
    } catch (const tool::ToolError& e) {
      KEYASN_FUZZ_CHECK(e.status() == tool::kExitMalformed);
    }
  }
}
