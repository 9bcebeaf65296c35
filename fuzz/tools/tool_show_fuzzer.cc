// The tool's show on any input, read as every TYPE it knows, in text and JSON,
// with and without --force: each is shown or refused as malformed.
#include <string>

#include "commands.h"
#include "fuzz/tools/tool_support.h"
#include "types.h"

KEYASN_FUZZ_TARGET(tool_show) {
  namespace tool = keyasn::tool;
  const std::string file = keyasn_fuzz::AsFile(data, size);
  bool json = false;
  for (const tool::TypeInfo& type : tool::AllTypes()) {
    // Text and JSON, forced and not, in turn over the TYPEs.
    tool::ShowRequest request;
    request.file = file;
    request.type = type.name;
    request.inform = tool::InputForm::kDer;
    request.json = json;
    request.force = !json;
    json = !json;
    keyasn_fuzz::Discard out, err;
    keyasn_fuzz::CheckStatus(tool::RunShow(request, out, err), {tool::kExitOk, tool::kExitMalformed});
  }
}
