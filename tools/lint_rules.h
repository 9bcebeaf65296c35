// The rule families of the lint, each checking one element; Lint (lint.cc) runs
// them over the tree and adds the rules that span elements.
#ifndef KEYASN_TOOLS_LINT_RULES_H_
#define KEYASN_TOOLS_LINT_RULES_H_

#include <cstddef>
#include <string>
#include <vector>

#include "dump.h"
#include "lint.h"

namespace keyasn {
namespace tool {

// Checked is the element under check, with its place in the input.
struct Checked {
  const Element& element;
  int index;                    // in Tree::elements
  const unsigned char* data;    // the whole input
  const unsigned char* contents() const { return data + element.offset + element.header_length; }
};

// Findings collects what the rules report.
class Findings {
 public:
  explicit Findings(std::vector<Finding>* out) : out_(out) {}
  void Error(const Checked& c, const char* rule, const std::string& message) {
    Add(c.element.offset, c.index, rule, Severity::kError, message);
  }
  void Note(const Checked& c, const char* rule, const std::string& message) {
    Add(c.element.offset, c.index, rule, Severity::kNote, message);
  }
  void Add(std::size_t offset, int element, const char* rule, Severity severity,
           const std::string& message) {
    out_->push_back(Finding{offset, element, rule, severity, message});
  }

 private:
  std::vector<Finding>* out_;
};

// OctetsText shows octets spaced ("1F 02"), at most eight, then "...".
std::string OctetsText(const unsigned char* data, std::size_t size);

// Identifier and length octets: tag.*, length.*.
void CheckHeader(const Checked& c, Findings* findings);
// BOOLEAN, INTEGER/ENUMERATED, BIT STRING, NULL, OBJECT IDENTIFIER contents and
// the constructed form of string types.
void CheckValue(const Checked& c, Findings* findings);
// UTCTime and GeneralizedTime text.
void CheckTime(const Checked& c, Findings* findings);
// Character sets of the string types.
void CheckString(const Checked& c, Findings* findings);

// TimeFault says why a UTCTime (`generalized` false) or GeneralizedTime text is
// not in its DER form; empty when it is.
std::string TimeFault(const unsigned char* text, std::size_t size, bool generalized);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_LINT_RULES_H_
