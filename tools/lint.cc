#include "lint.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "lint_rules.h"

namespace keyasn {
namespace tool {

// A truncated element claims more than there is: its end is the input's.
std::size_t ElementEnd(const Element& e, std::size_t size) {
  const std::size_t claimed = e.offset + e.header_length + (e.indefinite ? 2 : 0);
  if (claimed > size || e.length > size - claimed) return size;
  return claimed + e.length;
}

namespace {

// CompareEncodings orders two encodings as X.690 11.6 does: as octet strings,
// the shorter padded at its end with zero octets.
int CompareEncodings(const unsigned char* a, std::size_t na, const unsigned char* b,
                     std::size_t nb) {
  const int common = std::memcmp(a, b, std::min(na, nb));
  if (common != 0) return common;
  const unsigned char* rest = na > nb ? a + nb : b + na;
  const std::size_t left = na > nb ? na - nb : nb - na;
  for (std::size_t i = 0; i < left; ++i) {
    if (rest[i] != 0) return na > nb ? 1 : -1;
  }
  return 0;
}

void CheckSetOrder(const Tree& tree, const Checked& c, std::size_t size, Findings* findings) {
  const Element& set = c.element;
  if (set.tag_class != 0 || set.tag != 17 || !set.constructed) return;
  int previous = -1;
  for (int child : set.children) {
    const Element& e = tree.elements[child];
    if (e.end_of_contents) continue;
    if (previous >= 0) {
      const Element& p = tree.elements[previous];
      const unsigned char* a = c.data + p.offset;
      const unsigned char* b = c.data + e.offset;
      const std::size_t na = ElementEnd(p, size) - p.offset;
      const std::size_t nb = ElementEnd(e, size) - e.offset;
      if (CompareEncodings(a, na, b, nb) > 0) {
        findings->Add(e.offset, child, "set.order", Severity::kError,
                      "SET elements out of order: this one (" + OctetsText(b, nb) +
                          ") sorts before the one at offset " + std::to_string(p.offset) + " (" +
                          OctetsText(a, na) + ")");
      }
    }
    previous = child;
  }
}

void CheckEndOfContents(const Checked& c, Findings* findings) {
  const Element& e = c.element;
  if (e.end_of_contents || e.tag_class != 0 || e.tag != 0 || e.constructed ||
      e.header_length != 2 || e.length != 0) {
    return;
  }
  findings->Error(c, "eoc.misplaced",
                  std::string("end-of-contents octets (00 00) ") +
                      (e.parent >= 0 ? "inside a definite-length element"
                                     : "at the top level, where no indefinite length is open"));
}

// KeepBefore drops the findings at or after `offset`.
void KeepBefore(std::size_t offset, std::vector<Finding>* findings) {
  findings->erase(std::remove_if(findings->begin(), findings->end(),
                                 [offset](const Finding& f) { return f.offset >= offset; }),
                  findings->end());
}

}  // namespace

const char* SeverityName(Severity severity) {
  return severity == Severity::kError ? "error" : "note";
}

LintResult Lint(const Tree& tree, const unsigned char* data, std::size_t whole_before) {
  const std::size_t size = tree.input_size;
  LintResult result;
  Findings findings(&result.findings);
  for (std::size_t i = 0; i < tree.elements.size(); ++i) {
    const Checked c{tree.elements[i], static_cast<int>(i), data};
    CheckHeader(c, &findings);
    CheckEndOfContents(c, &findings);
    CheckValue(c, &findings);
    CheckTime(c, &findings);
    CheckString(c, &findings);
    CheckSetOrder(tree, c, size, &findings);
  }
  if (tree.failed) {
    // The top-level elements that end before the damage are whole; what follows
    // the last of them is trailing data, unless there is none (then the input
    // itself is damaged).
    std::size_t whole_end = whole_before;
    for (int root : tree.roots) {
      const Element& e = tree.elements[root];
      const std::size_t end = ElementEnd(e, size);
      // An indefinite element the walk did not close has no length yet.
      const bool open = e.indefinite && e.constructed &&
                        (e.children.empty() || !tree.elements[e.children.back()].end_of_contents);
      if (open || end > tree.error.offset || ElementEnd(e, SIZE_MAX) != end) break;
      whole_end = end;
    }
    if (whole_end == 0) {
      result.malformed = true;
      KeepBefore(tree.error.offset, &result.findings);
    } else {
      KeepBefore(whole_end, &result.findings);
      findings.Add(whole_end, -1, "data.trailing", Severity::kNote,
                   std::to_string(size - whole_end) +
                       (size - whole_end == 1 ? " octet after the last element does not form an element ("
                                              : " octets after the last element do not form elements (") +
                       OctetsText(data + whole_end, size - whole_end) + ")");
    }
  }
  std::stable_sort(result.findings.begin(), result.findings.end(),
                   [](const Finding& a, const Finding& b) { return a.offset < b.offset; });
  return result;
}

std::vector<std::vector<const Finding*>> FindingsOf(const Tree& tree, const LintResult& result) {
  std::vector<std::vector<const Finding*>> of(tree.elements.size());
  for (const Finding& f : result.findings) {
    if (f.element >= 0) of[static_cast<std::size_t>(f.element)].push_back(&f);
  }
  return of;
}

}  // namespace tool
}  // namespace keyasn
