#include "view_command.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <sstream>

#include "commands.h"
#include "dump.h"
#include "dump_stream.h"
#include "html_page.h"
#include "load.h"
#include "output.h"
#include "types.h"
#include "values.h"

namespace keyasn {
namespace tool {

namespace {

// The flags of an element in the page's data (read by the page's script).
constexpr unsigned int kConstructed = 1;
constexpr unsigned int kEncapsulated = 2;
constexpr unsigned int kEncapsulates = 4;
constexpr unsigned int kEndOfContents = 8;
constexpr unsigned int kIndefinite = 16;
constexpr unsigned int kHasValue = 32;
constexpr unsigned int kHasFindings = 64;

// AppendNumber writes `value` 7 bits an octet, low bits first, the high bit set
// on every octet but the last.
void AppendNumber(std::size_t value, std::string* out) {
  while (value >= 0x80) {
    out->push_back(static_cast<char>(0x80 | (value & 0x7F)));
    value >>= 7;
  }
  out->push_back(static_cast<char>(value));
}

// Table keeps each distinct text once and gives its index.
class Table {
 public:
  std::size_t Index(const std::string& text) {
    auto found = index_.find(text);
    if (found != index_.end()) return found->second;
    index_.emplace(text, texts_.size());
    texts_.push_back(text);
    return texts_.size() - 1;
  }
  const std::vector<std::string>& texts() const { return texts_; }

 private:
  std::map<std::string, std::size_t> index_;
  std::vector<std::string> texts_;
};

// PageCollector keeps the elements of the walk with their lint findings, small
// enough that an input of many tiny elements still makes a page of a few octets
// an element: numbers packed, each distinct text (type, value, findings) once.
class PageCollector : public Printer {
 public:
  explicit PageCollector(const unsigned char* data) : data_(data) {}

  bool Enter(const Element& e) override {
    PageElement row;
    row.offset = e.offset;
    row.header_length = e.header_length;
    row.length = e.length;
    row.depth = e.depth;
    row.type = types_.Index(e.end_of_contents ? std::string("EOC") : TypeName(e.tag_class, e.tag));
    if (row.type == tags_.size()) {
      tags_.push_back(std::string(ClassName(e.tag_class)) + " " + std::to_string(e.tag));
    }
    row.flags = (e.constructed ? kConstructed : 0) | (e.encapsulated ? kEncapsulated : 0) |
                (e.encapsulates ? kEncapsulates : 0) | (e.end_of_contents ? kEndOfContents : 0) |
                (e.indefinite ? kIndefinite : 0);
    const std::string value = ValueText(e, data_, kShortOctets);
    if (!value.empty()) {
      row.flags |= kHasValue;
      row.value = values_.Index(value);
    }
    if (marks_ != nullptr && !marks_->empty()) {
      Json findings = Json::array();
      for (const Finding* f : *marks_) {
        findings.push_back(Json::array({f->rule, SeverityName(f->severity), f->message}));
      }
      row.flags |= kHasFindings;
      row.findings = findings_.Index(findings.dump(-1, ' ', false, Json::error_handler_t::replace));
    }
    if (e.constructed || e.encapsulates) open_.push_back(elements_.size());
    elements_.push_back(row);
    return true;
  }
  void Leave(const Element& e) override {
    // An indefinite length is known only now.
    elements_[open_.back()].length = e.length;
    open_.pop_back();
  }
  void Finish() override {}

  const std::vector<PageElement>& elements() const { return elements_; }

  // AddTo puts the elements into the page's data: "elements" packs, for each,
  // its offset less the one before, header length, length, depth, type, flags,
  // then the value and the findings when the flags say there are some.
  void AddTo(Json* page) const {
    std::string packed;
    std::size_t previous = 0;
    for (const PageElement& row : elements_) {
      AppendNumber(row.offset - previous, &packed);
      previous = row.offset;
      AppendNumber(row.header_length, &packed);
      AppendNumber(row.length, &packed);
      AppendNumber(static_cast<std::size_t>(row.depth), &packed);
      AppendNumber(row.type, &packed);
      AppendNumber(row.flags, &packed);
      if (row.flags & kHasValue) AppendNumber(row.value, &packed);
      if (row.flags & kHasFindings) AppendNumber(row.findings, &packed);
    }
    (*page)["count"] = elements_.size();
    (*page)["elements"] = Base64(packed.data(), packed.size());
    (*page)["types"] = types_.texts();
    (*page)["tags"] = tags_;
    (*page)["values"] = values_.texts();
    Json findings = Json::array();
    for (const std::string& list : findings_.texts()) findings.push_back(Json::parse(list));
    (*page)["findings"] = std::move(findings);
  }

  static std::string Base64(const void* octets, std::size_t size) {
    const unsigned char* begin = static_cast<const unsigned char*>(octets);
    std::string text = EncodeBase64(Bytes(begin, begin + size));
    text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
    return text;
  }

 private:
  const unsigned char* data_;
  std::vector<PageElement> elements_;
  std::vector<std::size_t> open_;
  Table types_;
  std::vector<std::string> tags_;  // class and number of each type ("universal 16")
  Table values_;
  Table findings_;
};

bool SameAt(const unsigned char* at, std::size_t size, const Bytes& octets) {
  return size == octets.size() && std::memcmp(at, octets.data(), size) == 0;
}

bool Holds(const PageElement& e, const unsigned char* data, const Bytes& octets, bool whole) {
  if (whole) return SameAt(data + e.offset, e.header_length + e.length, octets);
  if (e.flags & kConstructed) return false;
  const unsigned char* contents = data + e.offset + e.header_length;
  if (SameAt(contents, e.length, octets)) return true;
  // A BIT STRING's octets without the unused-bits count.
  return data[e.offset] == 0x03 && e.length > 0 && SameAt(contents + 1, e.length - 1, octets);
}

}  // namespace

int FindSource(const std::vector<PageElement>& elements, const unsigned char* data,
               const Bytes& octets, bool whole, std::size_t* cursor) {
  if (octets.empty()) return -1;
  const std::size_t count = elements.size();
  for (std::size_t step = 0; step < count; ++step) {
    const std::size_t index = (*cursor + step) % count;
    if (Holds(elements[index], data, octets, whole)) {
      *cursor = index + 1;
      return static_cast<int>(index);
    }
  }
  return -1;
}

Json MemberLinks(const View& view, const std::vector<PageElement>& elements,
                 const unsigned char* data) {
  Json members = Json::array();
  // Members come in the order of their encoding, so each search starts after
  // the last match: equal octets in two places link to the right one.
  std::size_t cursor = 0;
  for (const View::Member& m : view.Members()) {
    int source = -1;
    if (m.octets != nullptr) {
      source = FindSource(elements, data, *m.octets, m.whole, &cursor);
      // Octets a reader keeps whole (an element) may be shown as plain octets.
      if (source < 0 && !m.whole) source = FindSource(elements, data, *m.octets, true, &cursor);
    }
    members.push_back(Json::array({m.depth, m.label, m.text, source, m.note}));
  }
  return members;
}

int RunView(const ViewRequest& request, std::ostream& out, std::ostream& err) {
  std::unique_ptr<Input> input;
  if (const int status = Open(request.file, request.inform, err, &input)) return status;
  const std::string type_name = request.type.empty() && input->sample() ? "container" : request.type;
  const TypeInfo* type = nullptr;
  if (!type_name.empty()) {
    type = FindType(type_name);
    if (type == nullptr) {
      Report(err, "view", "unknown TYPE \"" + type_name + "\" (see keyasn show --help)");
      return kExitUsage;
    }
  }
  if (input->size() > kMaxViewSize && !request.force) {
    Report(err, input->name(),
           std::to_string(input->size()) + " octets, more than the " +
               std::to_string(kMaxViewSize) +
               " a page is made of without --force (a larger page opens slowly)");
    return kExitUsage;
  }
  const unsigned char* data = input->data();
  const std::size_t size = input->size();

  auto collector = new PageCollector(data);
  std::unique_ptr<Printer> printer = WithLint(std::unique_ptr<Printer>(collector), data, size);
  const WalkResult walk = WalkInto(data, size, WalkOptions(), printer.get());
  if (walk.failed) printer->Fail(walk.error);
  printer->Finish();

  Json page;
  page["name"] = input->name();
  page["octets"] = PageCollector::Base64(data, size);
  collector->AddTo(&page);
  page["error"] = nullptr;
  if (walk.failed) {
    page["error"] = {{"offset", walk.error.offset}, {"text", WalkErrorText(walk.error)}};
  }
  page["structure"] = nullptr;
  if (type != nullptr) {
    page["structure"] = std::string(type->name) + " (" + type->structure + ")";
    View members;
    try {
      if (size > kMaxInputSize) {
        throw ToolError(kExitMalformed, "larger than the library reads");
      }
      type->show(Bytes(data, data + size), &members);
    } catch (const ToolError& e) {
      page["member_error"] = std::string("cannot read it as ") + type->name + ": " + e.what();
    }
    page["members"] = MemberLinks(members, collector->elements(), data);
  }
  printer.reset();

  std::ostringstream text;
  WritePage(page, text);
  page = nullptr;
  const std::string html = text.str();
  const int status = WriteOctets(reinterpret_cast<const unsigned char*>(html.data()), html.size(),
                                 OutputForm::kDer, "", request.output, out, err);
  if (status != kExitOk) return status;
  if (walk.failed) return Malformed(err, *input, WalkErrorText(walk.error));
  return kExitOk;
}

}  // namespace tool
}  // namespace keyasn
