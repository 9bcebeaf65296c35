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
enum : int {
  kConstructed = 1,
  kEncapsulated = 2,
  kEncapsulates = 4,
  kEndOfContents = 8,
  kIndefinite = 16,
};

// PageCollector keeps the elements of the walk (with their lint findings) in
// the compact form of the page's data: arrays, type names given once.
class PageCollector : public Printer {
 public:
  explicit PageCollector(const unsigned char* data) : data_(data) {}

  bool Enter(const Element& e) override {
    const std::string type = e.end_of_contents ? std::string("EOC") : TypeName(e.tag_class, e.tag);
    auto found = type_index_.find(type);
    if (found == type_index_.end()) {
      found = type_index_.emplace(type, types_.size()).first;
      types_.push_back(type);
    }
    const int flags = (e.constructed ? kConstructed : 0) | (e.encapsulated ? kEncapsulated : 0) |
                      (e.encapsulates ? kEncapsulates : 0) |
                      (e.end_of_contents ? kEndOfContents : 0) | (e.indefinite ? kIndefinite : 0);
    Json row = Json::array({e.offset, e.header_length, e.length, e.depth, found->second, flags,
                            ValueText(e, data_, kShortOctets)});
    if (marks_ != nullptr && !marks_->empty()) {
      Json findings = Json::array();
      for (const Finding* f : *marks_) {
        findings.push_back(Json::array({f->rule, SeverityName(f->severity), f->message}));
      }
      row.push_back(std::move(findings));
    }
    if (e.constructed || e.encapsulates) open_.push_back(rows_.size());
    rows_.push_back(std::move(row));
    elements_.push_back(e);
    return true;
  }
  void Leave(const Element& e) override {
    // An indefinite length is known only now.
    rows_[open_.back()][2] = e.length;
    elements_[open_.back()].length = e.length;
    open_.pop_back();
  }
  void Finish() override {}

  Json TakeRows() { return std::move(rows_); }
  Json Types() const { return Json(types_); }
  const std::vector<Element>& elements() const { return elements_; }

 private:
  const unsigned char* data_;
  Json rows_ = Json::array();
  std::vector<Element> elements_;
  std::vector<std::size_t> open_;
  std::vector<std::string> types_;
  std::map<std::string, std::size_t> type_index_;
};

bool SameAt(const unsigned char* at, std::size_t size, const Bytes& octets) {
  return size == octets.size() && std::memcmp(at, octets.data(), size) == 0;
}

bool Holds(const Element& e, const unsigned char* data, const Bytes& octets, bool whole) {
  if (whole) return SameAt(data + e.offset, e.header_length + e.length, octets);
  if (e.constructed) return false;
  const unsigned char* contents = data + e.offset + e.header_length;
  if (SameAt(contents, e.length, octets)) return true;
  return e.tag_class == 0 && e.tag == 3 && e.length > 0 && SameAt(contents + 1, e.length - 1, octets);
}

}  // namespace

int FindSource(const std::vector<Element>& elements, const unsigned char* data,
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

Json MemberLinks(const View& view, const std::vector<Element>& elements,
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
  std::string octets = EncodeBase64(Bytes(data, data + size));
  octets.erase(std::remove(octets.begin(), octets.end(), '\n'), octets.end());
  page["octets"] = std::move(octets);
  page["types"] = collector->Types();
  page["elements"] = collector->TakeRows();
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
