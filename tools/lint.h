// DER conformance findings on an element tree: each element checked against the
// rules of X.690's distinguished encoding, one finding per rule broken.
#ifndef KEYASN_TOOLS_LINT_H_
#define KEYASN_TOOLS_LINT_H_

#include <cstddef>
#include <string>
#include <vector>

#include "der_walk.h"

namespace keyasn {
namespace tool {

enum class Severity { kError, kNote };

// Finding is one rule broken at `offset`.
struct Finding {
  std::size_t offset = 0;
  int element = -1;       // index in Tree::elements; -1 for octets that are no element
  const char* rule = "";  // "length.non-minimal", ...
  Severity severity = Severity::kError;
  std::string message;
};

struct LintResult {
  std::vector<Finding> findings;  // in input order
  // The walk failed before the end of the first top-level element: the input is
  // malformed, and only the findings before the damage are kept.
  bool malformed = false;
};

// Lint checks every element of `tree` (the walk of `data`). Octets that follow
// the last complete top-level element without forming elements are one
// data.trailing note rather than damage. `whole_before` is where the whole
// top-level elements before the tree's end, when the input is linted one
// top-level element at a time (0: the tree's are the first).
LintResult Lint(const Tree& tree, const unsigned char* data, std::size_t whole_before = 0);

// ElementEnd is the offset just behind an element's encoding, bounded by `size`.
std::size_t ElementEnd(const Element& element, std::size_t size);

// FindingsOf returns, for each element of the tree, the findings attached to it.
std::vector<std::vector<const Finding*>> FindingsOf(const Tree& tree, const LintResult& result);

const char* SeverityName(Severity severity);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_LINT_H_
