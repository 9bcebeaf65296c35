#include "dump_stream.h"

#include <sstream>
#include <string>
#include <vector>

#include "dump.h"
#include "lint.h"

namespace keyasn {
namespace tool {

namespace {

// The width of the columns before the type name in a text line.
constexpr std::size_t kHeadWidth = 22;

class PrinterBase : public Printer {
 public:
  PrinterBase(const PrintOptions& options, const unsigned char* data, std::ostream& out,
              std::function<void(std::size_t)> progress)
      : options_(options), data_(data), out_(out), progress_(std::move(progress)) {}

 protected:
  // Shifted is the element with its offset counted from the start of the input.
  Element Shifted(const Element& e) {
    Element shifted = e;
    shifted.offset += options_.base;
    if (progress_) progress_(shifted.offset);
    return shifted;
  }
  static bool HasChildren(const Element& e) { return e.constructed || e.encapsulates; }
  // Emit writes the output once there is enough of it (`all`: whatever there is).
  void Emit(bool all = false) { text_.Emit(out_, all ? 0 : OutText::kPiece); }

  PrintOptions options_;
  const unsigned char* data_;
  std::ostream& out_;
  std::function<void(std::size_t)> progress_;
  OutText text_;  // output not yet written
};

class TextPrinter : public PrinterBase {
 public:
  using PrinterBase::PrinterBase;

  bool Enter(const Element& e) override {
    if (options_.depth > 0 && e.depth >= options_.depth) {
      ++hidden_.back();
    } else {
      AppendElementLine(&text_, Shifted(e), data_, options_.octets, marks_);
      text_.push_back('\n');
      Emit();
    }
    if (HasChildren(e)) hidden_.push_back(0);
    return true;
  }
  void Leave(const Element& e) override {
    const std::size_t hidden = hidden_.back();
    hidden_.pop_back();
    if (hidden > 0 && e.depth == options_.depth - 1) {
      text_.append(kHeadWidth + 2 * static_cast<std::size_t>(options_.depth), ' ');
      text_ += "... " + std::to_string(hidden) + (hidden == 1 ? " element" : " elements") + "\n";
      Emit();
    } else if (hidden > 0) {
      hidden_.back() += hidden;
    }
  }
  void Finish() override { Emit(true); }

 private:
  std::vector<std::size_t> hidden_{0};  // elements not shown, per open element
};

// JsonPrinter writes the text of the whole array as one document would be
// dumped, one element at a time: an object's members, then its children as they
// come.
class JsonPrinter : public PrinterBase {
 public:
  using PrinterBase::PrinterBase;

  bool Enter(const Element& e) override {
    const std::size_t indent = 2 + 4 * open_.size();
    JsonItem(&text_, first_, indent);
    first_ = false;
    any_ = true;
    JsonObject object(&text_, indent);
    AddElementMembers(&object, Shifted(e), data_, marks_);
    object.Key("children").push_back('[');
    if (HasChildren(e)) {
      open_.push_back(indent);
      first_ = true;
    } else {
      text_.push_back(']');
      object.Close();
    }
    Emit();
    return true;
  }
  void Leave(const Element&) override { Close(); }
  void Finish() override {
    while (!open_.empty()) Close();
    text_ += any_ ? "\n]\n" : "]\n";
    Emit(true);
  }
  void Start() { text_.push_back('['); }

 private:
  void Close() {
    const std::size_t indent = open_.back();
    open_.pop_back();
    if (!first_) AppendIndent(&text_, indent + 2);
    text_.push_back(']');
    AppendIndent(&text_, indent);
    text_.push_back('}');
    first_ = false;
    Emit();
  }

  std::vector<std::size_t> open_;  // indentation of each open object
  bool first_ = true;              // nothing written yet at the current level
  bool any_ = false;               // an element written
};

// LintingPrinter holds each top-level element as a tree until it is complete,
// lints it, and passes its elements on to the printer with their findings.
class LintingPrinter : public Printer {
 public:
  LintingPrinter(std::unique_ptr<Printer> printer, const unsigned char* data, std::size_t size)
      : printer_(std::move(printer)), trees_(this, data, size) {}

  bool Enter(const Element& e) override { return trees_.Enter(e); }
  void Leave(const Element& e) override { trees_.Leave(e); }
  bool Finished() const override { return printer_->Finished(); }
  void Fail(const WalkError& error) override {
    trees_.Fail(error);
    printer_->Fail(error);
  }
  void Finish() override {
    trees_.Flush();  // the element the damage cut short
    printer_->Finish();
  }

 private:
  class Trees : public TreeSink {
   public:
    Trees(LintingPrinter* owner, const unsigned char* data, std::size_t size)
        : TreeSink(&held_), owner_(owner), data_(data) {
      held_.input_size = size;
    }
    void Fail(const WalkError& error) {
      held_.failed = true;
      held_.error = error;
    }
    void Flush() {
      if (events_.empty()) return;
      // As lint sees it: after a whole top-level element, a damaged one is
      // trailing data, whose octets are not checked; damage in the first one
      // leaves the findings before the damage.
      LintResult lint;
      if (!(held_.failed && whole_)) lint = Lint(held_, data_);
      whole_ = true;
      const std::vector<Marks> marks = FindingsOf(held_, lint);
      Printer& printer = *owner_->printer_;
      for (const Event& event : events_) {
        const Element& e = held_.elements[event.index];
        if (event.enter) {
          printer.SetMarks(&marks[event.index]);
          printer.Enter(e);
          printer.SetMarks(nullptr);
        } else {
          printer.Leave(e);
        }
      }
      Clear();
    }

   private:
    void RootDone() override { Flush(); }

    LintingPrinter* owner_;
    const unsigned char* data_;  // where the walk starts (held_.input_size: its octets)
    Tree held_;
    bool whole_ = false;  // a top-level element was complete
  };

  std::unique_ptr<Printer> printer_;
  Trees trees_;
};

}  // namespace

std::unique_ptr<Printer> MakePrinter(const PrintOptions& options, const unsigned char* data,
                                     std::ostream& out,
                                     std::function<void(std::size_t)> progress) {
  std::unique_ptr<Printer> printer;
  if (!options.json) {
    printer.reset(new TextPrinter(options, data, out, std::move(progress)));
  } else {
    auto json = new JsonPrinter(options, data, out, std::move(progress));
    json->Start();
    printer.reset(json);
  }
  return WithLint(std::move(printer), data + options.base, options.size);
}

std::unique_ptr<Printer> WithLint(std::unique_ptr<Printer> printer, const unsigned char* data,
                                  std::size_t size) {
  return std::unique_ptr<Printer>(new LintingPrinter(std::move(printer), data, size));
}

WalkResult PrintWalk(const unsigned char* data, const PrintOptions& options,
                     const WalkOptions& walk, std::ostream& out,
                     std::function<void(std::size_t)> progress) {
  const std::unique_ptr<Printer> printer = MakePrinter(options, data, out, std::move(progress));
  const WalkResult result = WalkInto(data + options.base, options.size, walk, printer.get());
  if (result.failed) printer->Fail(result.error);
  printer->Finish();
  return result;
}

Json DumpJson(const unsigned char* data, std::size_t size) {
  PrintOptions options;
  options.json = true;
  options.size = size;
  std::ostringstream text;
  PrintWalk(data, options, WalkOptions(), text, nullptr);
  return Json::parse(text.str());
}

}  // namespace tool
}  // namespace keyasn
