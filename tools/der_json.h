// Writing BER/DER from the JSON that dump --json prints: each node's header is
// written anew (or kept, when the input's own differs from the shortest form and
// still fits) around contents rebuilt from its children, its value or its hex.
#ifndef KEYASN_TOOLS_DER_JSON_H_
#define KEYASN_TOOLS_DER_JSON_H_

#include "common.h"
#include "dump.h"

namespace keyasn {
namespace tool {

// EncodeDumpJson writes the elements of `document` (an array of top-level nodes,
// or one node) one after another. A primitive's "value", when it is not what
// its "hex" shows, has been edited and wins. Throws ToolError(kExitMalformed)
// naming the node at fault.
Bytes EncodeDumpJson(const Json& document);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_DER_JSON_H_
