#include "lint_command.h"

#include <cstdio>
#include <memory>

#include "commands.h"
#include "dump.h"
#include "lint.h"
#include "load.h"
#include "output.h"

namespace keyasn {
namespace tool {

namespace {

// The widest rule id, so that the messages line up.
constexpr int kRuleWidth = 26;

std::string Plural(std::size_t n, const char* word) {
  return std::to_string(n) + " " + word + (n == 1 ? "" : "s");
}

Json FindingJson(const Tree& tree, const Finding& f) {
  Json path = Json::array();
  int depth = 0;
  if (f.element < 0) {
    path.push_back(f.offset);
  } else {
    depth = tree.elements[f.element].depth;
    for (int i = f.element; i >= 0; i = tree.elements[i].parent) {
      path.insert(path.begin(), tree.elements[i].offset);
    }
  }
  Json j;
  j["offset"] = f.offset;
  j["depth"] = depth;
  j["rule"] = f.rule;
  j["severity"] = SeverityName(f.severity);
  j["message"] = f.message;
  j["path"] = std::move(path);
  return j;
}

void PrintText(const LintResult& result, std::ostream& out) {
  std::size_t errors = 0;
  for (const Finding& f : result.findings) {
    char head[96];
    std::snprintf(head, sizeof head, "%6zu  %-5s  %-*s  ", f.offset, SeverityName(f.severity),
                  kRuleWidth, f.rule);
    out << head << f.message << '\n';
    if (f.severity == Severity::kError) ++errors;
  }
  if (result.malformed) return;  // the error takes the place of the summary
  const std::size_t total = result.findings.size();
  if (total == 0) {
    out << "DER: no findings\n";
  } else {
    out << Plural(total, "finding") << " (" << Plural(errors, "error") << ", "
        << Plural(total - errors, "note") << ")\n";
  }
}

}  // namespace

int RunLint(const LintRequest& request, std::ostream& out, std::ostream& err) {
  std::unique_ptr<Input> input;
  if (const int status = Open(request.file, request.inform, err, &input)) return status;
  const Tree tree = Walk(input->data(), input->size(), WalkOptions());
  const LintResult result = Lint(tree, input->data());
  if (request.json) {
    Json all = Json::array();
    for (const Finding& f : result.findings) all.push_back(FindingJson(tree, f));
    out << all.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
  } else {
    PrintText(result, out);
  }
  out.flush();
  if (!out) {
    Report(err, "<stdout>", WriteFailure());
    return kExitIo;
  }
  if (result.malformed) return Malformed(err, *input, WalkErrorText(tree.error));
  for (const Finding& f : result.findings) {
    if (f.severity == Severity::kError) return kExitFindings;
  }
  return kExitOk;
}

}  // namespace tool
}  // namespace keyasn
