#include "dump_stream.h"

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

  PrintOptions options_;
  const unsigned char* data_;
  std::ostream& out_;
  std::function<void(std::size_t)> progress_;
};

class TextPrinter : public PrinterBase {
 public:
  using PrinterBase::PrinterBase;

  bool Enter(const Element& e) override {
    if (options_.depth > 0 && e.depth >= options_.depth) {
      ++hidden_.back();
    } else {
      out_ << ElementLine(Shifted(e), data_, options_.octets, marks_) << '\n';
    }
    if (HasChildren(e)) hidden_.push_back(0);
    return true;
  }
  void Leave(const Element& e) override {
    const std::size_t hidden = hidden_.back();
    hidden_.pop_back();
    if (hidden > 0 && e.depth == options_.depth - 1) {
      out_ << std::string(kHeadWidth + 2 * static_cast<std::size_t>(options_.depth), ' ') << "... "
           << hidden << (hidden == 1 ? " element" : " elements") << '\n';
    } else if (hidden > 0) {
      hidden_.back() += hidden;
    }
  }
  void Finish() override {}

 private:
  std::vector<std::size_t> hidden_{0};  // elements not shown, per open element
};

// JsonPrinter writes the same text as nlohmann's dump(2) of the whole array, one
// element at a time: an object's fields, then its children as they come.
class JsonPrinter : public PrinterBase {
 public:
  using PrinterBase::PrinterBase;

  bool Enter(const Element& e) override {
    const std::size_t indent = 2 + 4 * open_.size();
    out_ << (first_ ? "\n" : ",\n");
    first_ = false;
    any_ = true;
    const std::string fields = ElementFields(Shifted(e), data_, marks_)
                                   .dump(2, ' ', false, Json::error_handler_t::replace);
    // The object without its closing brace, every line indented.
    const std::string pad(indent, ' ');
    std::size_t start = 0;
    const std::size_t body_end = fields.size() - 2;  // before "\n}"
    while (start < body_end) {
      std::size_t end = fields.find('\n', start);
      if (end == std::string::npos || end > body_end) end = body_end;
      if (start > 0) out_ << '\n';
      out_ << pad;
      out_.write(fields.data() + start, static_cast<std::streamsize>(end - start));
      start = end + 1;
    }
    out_ << ",\n" << pad << "  \"children\": [";
    if (HasChildren(e)) {
      open_.push_back(indent);
      first_ = true;
    } else {
      out_ << "]\n" << pad << '}';
    }
    return true;
  }
  void Leave(const Element&) override { Close(); }
  void Finish() override {
    while (!open_.empty()) Close();
    out_ << (any_ ? "\n]\n" : "]\n");
  }
  // The opening bracket is written at once, so the output starts before the walk ends.
  void Start() { out_ << '['; }

 private:
  void Close() {
    const std::string pad(open_.back(), ' ');
    open_.pop_back();
    if (first_) {
      out_ << "]\n" << pad << '}';
    } else {
      out_ << '\n' << pad << "  ]\n" << pad << '}';
    }
    first_ = false;
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
      : printer_(std::move(printer)), data_(data) {
    tree_.input_size = size;
  }

  bool Enter(const Element& e) override {
    const int index = static_cast<int>(tree_.elements.size());
    tree_.elements.push_back(e);
    Element& added = tree_.elements.back();
    if (open_.empty()) {
      tree_.roots.push_back(index);
    } else {
      added.parent = open_.back();
      tree_.elements[open_.back()].children.push_back(index);
    }
    events_.push_back(Event{true, index});
    if (e.constructed || e.encapsulates) {
      open_.push_back(index);
    } else if (open_.empty()) {
      Flush();
    }
    return true;
  }
  void Leave(const Element& e) override {
    tree_.elements[open_.back()].length = e.length;
    events_.push_back(Event{false, open_.back()});
    open_.pop_back();
    if (open_.empty()) Flush();
  }
  bool Finished() const override { return printer_->Finished(); }
  void Fail(const WalkError& error) override {
    tree_.failed = true;
    tree_.error = error;
    printer_->Fail(error);
  }
  void Finish() override {
    if (!events_.empty()) Flush();  // the element the damage cut short
    printer_->Finish();
  }

 private:
  struct Event {
    bool enter;
    int index;
  };

  void Flush() {
    // As lint sees it: after a whole top-level element, a damaged one is trailing
    // data, whose octets are not checked; damage in the first one leaves the
    // findings before the damage.
    LintResult lint;
    if (!(tree_.failed && whole_)) lint = Lint(tree_, data_);
    whole_ = true;
    const std::vector<Marks> marks = FindingsOf(tree_, lint);
    for (const Event& event : events_) {
      const Element& e = tree_.elements[event.index];
      if (event.enter) {
        printer_->SetMarks(&marks[event.index]);
        printer_->Enter(e);
        printer_->SetMarks(nullptr);
      } else {
        printer_->Leave(e);
      }
    }
    tree_.elements.clear();
    tree_.roots.clear();
    events_.clear();
  }

  std::unique_ptr<Printer> printer_;
  const unsigned char* data_;  // where the walk starts (tree_.input_size: its octets)
  Tree tree_;
  std::vector<int> open_;
  std::vector<Event> events_;
  bool whole_ = false;  // a top-level element was complete
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

}  // namespace tool
}  // namespace keyasn
