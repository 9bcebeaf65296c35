#include "lint_command.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "der_walk.h"
#include "json_text.h"
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

// FindingWriter prints findings as they come, in text or as a JSON array.
class FindingWriter {
 public:
  FindingWriter(bool json, std::ostream& out) : json_(json), out_(out) {
    if (json_) text_.push_back('[');
  }

  void Write(const Tree& tree, const Finding& f) {
    if (f.severity == Severity::kError) ++errors_;
    if (json_) {
      AddJson(tree, f);
    } else {
      char head[96];
      std::snprintf(head, sizeof head, "%6zu  %-5s  %-*s  ", f.offset, SeverityName(f.severity),
                    kRuleWidth, f.rule);
      text_ += head;
      text_ += f.message;
      text_.push_back('\n');
    }
    ++total_;
    text_.Emit(out_, OutText::kPiece);
  }

  // End closes the array, or writes the summary line unless the input is
  // malformed (then the error takes its place).
  void End(bool malformed) {
    if (json_) {
      text_ += total_ > 0 ? "\n]\n" : "]\n";
    } else if (malformed) {
      // No summary.
    } else if (total_ == 0) {
      text_ += "DER: no findings\n";
    } else {
      text_ += Plural(total_, "finding") + " (" + Plural(errors_, "error") + ", " +
               Plural(total_ - errors_, "note") + ")\n";
    }
    text_.Emit(out_);
  }

  std::size_t errors() const { return errors_; }

 private:
  void AddJson(const Tree& tree, const Finding& f) {
    JsonItem(&text_, total_ == 0, 2);
    JsonObject object(&text_, 2);
    object.Number("offset", f.offset);
    object.Number("depth", f.element < 0 ? 0 : static_cast<unsigned int>(tree.elements[f.element].depth));
    object.String("rule", f.rule);
    object.String("severity", SeverityName(f.severity));
    object.String("message", f.message);
    // The offsets of the element and of those that hold it, outermost first.
    std::vector<std::size_t> path;
    if (f.element < 0) {
      path.push_back(f.offset);
    } else {
      for (int i = f.element; i >= 0; i = tree.elements[i].parent) path.push_back(tree.elements[i].offset);
    }
    OutText& list = object.Key("path");
    list.push_back('[');
    for (std::size_t i = path.size(); i-- > 0;) {
      JsonItem(&list, i + 1 == path.size(), object.inner() + 2);
      AppendJsonNumber(&list, path[i]);
    }
    AppendIndent(&list, object.inner());
    list.push_back(']');
    object.Close();
  }

  bool json_;
  std::ostream& out_;
  OutText text_;  // output not yet written
  std::size_t total_ = 0;
  std::size_t errors_ = 0;
};

// Linter holds one top-level element at a time as a tree, lints it once it is
// complete, and prints its findings, so that memory follows the largest
// top-level element. Damage is judged as Lint judges it on the whole input:
// after a whole top-level element, what follows is trailing data; in the first,
// only the findings before it are kept.
class Linter : public TreeSink {
 public:
  Linter(Input* input, FindingWriter* writer) : TreeSink(&held_), input_(input), writer_(writer) {
    held_.input_size = input->size();
  }

  bool Finished() const override { return done_; }
  void Damaged(const WalkError& error) override {
    held_.failed = true;
    held_.error = error;
  }
  // Finish lints what the walk left: the element the damage cut short, or none.
  void Finish(const WalkResult& result) {
    if (done_ || !result.failed) return;
    held_.failed = true;
    held_.error = result.error;
    Conclude();
  }
  bool malformed() const { return malformed_; }

 private:
  void RootDone() override {
    // A damaged element is complete only as far as the walk is concerned: it
    // ends the lint, and the walk (which fails at its end anyway) is stopped.
    if (held_.failed) {
      Conclude();
      return;
    }
    const LintResult result = Lint(held_, input_->data(), whole_end_);
    for (const Finding& f : result.findings) writer_->Write(held_, f);
    whole_end_ = ElementEnd(held_.elements[held_.roots.front()], input_->size());
    input_->Release(whole_end_);
    Clear();
  }
  void Conclude() {
    const LintResult result = Lint(held_, input_->data(), whole_end_);
    for (const Finding& f : result.findings) writer_->Write(held_, f);
    malformed_ = result.malformed;
    done_ = true;
  }

  Input* input_;
  FindingWriter* writer_;
  Tree held_;                 // the top-level element being walked
  std::size_t whole_end_ = 0; // where the whole top-level elements so far end
  bool malformed_ = false;
  bool done_ = false;
};

}  // namespace

int RunLint(const LintRequest& request, std::ostream& out, std::ostream& err) {
  std::unique_ptr<Input> input;
  if (const int status = Open(request.file, request.inform, err, &input)) return status;
  FindingWriter writer(request.json, out);
  Linter linter(input.get(), &writer);
  const WalkResult result = WalkInto(input->data(), input->size(), WalkOptions(), &linter);
  linter.Finish(result);
  writer.End(linter.malformed());
  out.flush();
  if (!out) {
    Report(err, "<stdout>", WriteFailure());
    return kExitIo;
  }
  if (linter.malformed()) return Malformed(err, *input, WalkErrorText(result.error));
  return writer.errors() > 0 ? kExitFindings : kExitOk;
}

}  // namespace tool
}  // namespace keyasn
