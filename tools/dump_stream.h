// The dump command's printers: each element is written as the walk meets it, so
// that memory follows the largest top-level element, not the size of the input.
#ifndef KEYASN_TOOLS_DUMP_STREAM_H_
#define KEYASN_TOOLS_DUMP_STREAM_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <ostream>

#include "der_walk.h"
#include "dump.h"

namespace keyasn {
namespace tool {

struct PrintOptions {
  bool json = false;
  std::size_t octets = 16;  // contents octets per text line; 0: all
  int depth = 0;            // elements this deep or deeper are summarised; 0: no limit
  std::size_t base = 0;     // added to every offset (the walk starts inside the input)
  std::size_t size = 0;     // octets walked from `base` (lint reads no further)
};

// Printer is a walk sink that writes dump's text lines or its JSON array.
class Printer : public WalkSink {
 public:
  // SetMarks gives the lint findings of the next element entered (null: none).
  void SetMarks(const Marks* marks) { marks_ = marks; }
  // Fail tells the printer where the walk stopped, before Finish.
  virtual void Fail(const WalkError& error) { (void)error; }
  // Finish ends the output (closes the JSON of elements left open by damage).
  virtual void Finish() = 0;

 protected:
  const Marks* marks_ = nullptr;
};

// MakePrinter writes to `out`; `data` is the start of the input (offsets in
// elements, plus `base`, count from it). `progress` (may be empty) is called with
// the offset of each element, so the caller can let go of the octets before it.
// Each top-level element (of the walk) is held as a tree until it is complete and
// linted, so that its lines carry their findings: memory follows the largest
// top-level element.
std::unique_ptr<Printer> MakePrinter(const PrintOptions& options, const unsigned char* data,
                                     std::ostream& out,
                                     std::function<void(std::size_t)> progress);

// PrintWalk walks the `options.size` octets at `data + options.base` into a
// printer made by MakePrinter, and ends its output.
WalkResult PrintWalk(const unsigned char* data, const PrintOptions& options,
                     const WalkOptions& walk, std::ostream& out,
                     std::function<void(std::size_t)> progress);

// DumpJson is what dump --json prints for `data`, as a document.
Json DumpJson(const unsigned char* data, std::size_t size);

// WithLint passes the elements of each top-level element on to `printer` once
// that element is complete and linted, with its findings as marks; `data` and
// `size` are the octets the walk reads.
std::unique_ptr<Printer> WithLint(std::unique_ptr<Printer> printer, const unsigned char* data,
                                  std::size_t size);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_DUMP_STREAM_H_
