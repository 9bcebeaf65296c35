// Finding the element that starts at a given offset, as dump and extract do for
// --offset: inside the element reached by the offsets before, whose contents are
// read as BER even when it is an OCTET STRING or a BIT STRING.
#ifndef KEYASN_TOOLS_LOCATE_H_
#define KEYASN_TOOLS_LOCATE_H_

#include <cstddef>
#include <functional>
#include <vector>

#include "der_walk.h"

namespace keyasn {
namespace tool {

// Span is a run of the input, from its first octet.
struct Span {
  std::size_t offset = 0;
  std::size_t size = 0;
};

// Located is an element found, its offset from the start of the input.
struct Located {
  Element element;
  Span whole;     // identifier, length, contents (and end-of-contents octets)
  Span contents;  // contents octets (of a BIT STRING, without the unused-bits octet)
};

// Locate follows `offsets` (each from the start of the input) and returns the
// element the last one names. Throws ToolError(kExitMalformed) when an offset is
// not the start of an element (naming the nearest starts before and after it),
// lies outside the element reached so far, or the walk meets damage first.
// `passed` (may be empty) is told each offset the search has gone past.
Located Locate(const unsigned char* data, std::size_t size, const std::vector<std::size_t>& offsets,
               bool open_encapsulated,
               const std::function<void(std::size_t)>& passed = nullptr);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_LOCATE_H_
