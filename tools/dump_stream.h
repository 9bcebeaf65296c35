// The dump command's printers: each element is written as the walk meets it, so
// that memory follows the nesting depth and not the size of the input.
#ifndef KEYASN_TOOLS_DUMP_STREAM_H_
#define KEYASN_TOOLS_DUMP_STREAM_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <ostream>

#include "der_walk.h"

namespace keyasn {
namespace tool {

struct PrintOptions {
  bool json = false;
  std::size_t octets = 16;  // contents octets per text line; 0: all
  int depth = 0;            // elements this deep or deeper are summarised; 0: no limit
  std::size_t base = 0;     // added to every offset (the walk starts inside the input)
};

// Printer is a walk sink that writes dump's text lines or its JSON array.
class Printer : public WalkSink {
 public:
  // Finish ends the output (closes the JSON of elements left open by damage).
  virtual void Finish() = 0;
};

// MakePrinter writes to `out`; `data` is the start of the input (offsets in
// elements, plus `base`, count from it). `progress` (may be empty) is called with
// the offset of each element, so the caller can let go of the octets before it.
std::unique_ptr<Printer> MakePrinter(const PrintOptions& options, const unsigned char* data,
                                     std::ostream& out,
                                     std::function<void(std::size_t)> progress);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_DUMP_STREAM_H_
