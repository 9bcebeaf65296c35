#include "locate.h"

#include <string>

#include "common.h"
#include "dump.h"

namespace keyasn {
namespace tool {

namespace {

// Finder walks a scope looking for the element at `target` (relative to the
// scope), stepping over elements that cannot hold it.
class Finder : public WalkSink {
 public:
  Finder(std::size_t target, std::size_t base, const std::function<void(std::size_t)>& passed)
      : target_(target), base_(base), passed_(passed) {}

  bool Enter(const Element& e) override {
    if (found_) return true;  // inside the found indefinite element, until it ends
    if (e.offset == target_) {
      found_ = true;
      element_ = e;
      waiting_ = e.indefinite && e.constructed;
      return true;
    }
    if (e.offset > target_) {
      after_ = e.offset;
      has_after_ = true;
      return false;
    }
    before_ = e.offset;
    has_before_ = true;
    if (passed_) passed_(base_ + e.offset);
    if (e.indefinite) return true;  // its end is not known yet
    return target_ < e.offset + e.header_length + e.length;
  }
  void Leave(const Element& e) override {
    if (found_ && waiting_ && e.offset == element_.offset) {
      element_.length = e.length;
      waiting_ = false;
    }
  }
  bool Finished() const override { return (found_ && !waiting_) || has_after_; }

  bool found() const { return found_; }
  bool waiting() const { return waiting_; }
  const Element& element() const { return element_; }
  bool has_before() const { return has_before_; }
  bool has_after() const { return has_after_; }
  std::size_t before() const { return before_; }
  std::size_t after() const { return after_; }

 private:
  std::size_t target_;
  std::size_t base_;
  const std::function<void(std::size_t)>& passed_;
  bool found_ = false;
  bool waiting_ = false;
  Element element_;
  bool has_before_ = false, has_after_ = false;
  std::size_t before_ = 0, after_ = 0;
};

Located Describe(const Element& e, std::size_t base) {
  Located located;
  located.element = e;
  located.element.offset += base;
  const std::size_t start = located.element.offset;
  const bool eoc_after = e.indefinite;  // both forms of indefinite element end with 00 00
  located.whole = Span{start, e.header_length + e.length + (eoc_after ? 2u : 0u)};
  located.contents = Span{start + e.header_length, e.length};
  if (!e.constructed && e.tag_class == 0 && e.tag == 3 && e.length > 0 && !e.indefinite) {
    located.contents.offset += 1;
    located.contents.size -= 1;
  }
  return located;
}

// Scope is the run of octets the next offset is looked for in: the children of a
// constructed element, or the contents of a string read as BER.
Span InnerScope(const Located& at, const unsigned char* data) {
  const Element& e = at.element;
  if (e.constructed) return at.contents;
  const bool string = e.tag_class == 0 && (e.tag == 3 || e.tag == 4);
  if (!string) {
    throw ToolError(kExitMalformed, "the element at offset " + std::to_string(e.offset) + " (" +
                                        TypeName(e.tag_class, e.tag) +
                                        ") holds no elements to look for an offset in");
  }
  if (e.tag == 3 && e.length > 0 && data[e.offset + e.header_length] != 0) {
    throw ToolError(kExitMalformed, "the BIT STRING at offset " + std::to_string(e.offset) +
                                        " has unused bits: its contents are not BER");
  }
  return at.contents;
}

}  // namespace

Located Locate(const unsigned char* data, std::size_t size, const std::vector<std::size_t>& offsets,
               bool open_encapsulated, const std::function<void(std::size_t)>& passed) {
  Span scope{0, size};
  Located at;
  bool first = true;
  for (std::size_t offset : offsets) {
    if (!first) scope = InnerScope(at, data);
    if (offset < scope.offset || offset >= scope.offset + scope.size) {
      const std::string where =
          first ? "the input (" + std::to_string(size) + " octets)"
                : "the contents of the element at offset " + std::to_string(at.element.offset) +
                      " (offsets " + std::to_string(scope.offset) + " to " +
                      std::to_string(scope.offset + scope.size - 1) + ")";
      throw ToolError(kExitMalformed, "offset " + std::to_string(offset) + " is outside " + where);
    }
    WalkOptions options;
    options.open_encapsulated = open_encapsulated;
    Finder finder(offset - scope.offset, scope.offset, passed);
    const WalkResult result = WalkInto(data + scope.offset, scope.size, options, &finder);
    if (!finder.found() || finder.waiting()) {
      if (result.failed && (finder.found() || !finder.has_after())) {
        throw ToolError(kExitMalformed, "offset " + std::to_string(offset) + " not reached: " +
                                            WalkErrorText(result.error, scope.offset));
      }
      std::string nearest;
      if (finder.has_before()) nearest += std::to_string(finder.before() + scope.offset) + " before";
      if (finder.has_after()) {
        if (!nearest.empty()) nearest += " and ";
        nearest += std::to_string(finder.after() + scope.offset) + " after";
      }
      throw ToolError(kExitMalformed, "offset " + std::to_string(offset) +
                                          " is not the start of an element (nearest starts: " +
                                          nearest + ")");
    }
    // The walk stops at the element found, before the damage of a constructed
    // element whose length runs past the octets there are: its octets are not all
    // there to be dumped or extracted.
    const Element& found = finder.element();
    const std::size_t left = scope.size - found.offset - found.header_length;
    if (!found.indefinite && found.length > left) {
      const WalkError damage{found.offset, 206, PastTheEnd(found.length, left, found.depth == 0)};
      throw ToolError(kExitMalformed, WalkErrorText(damage, scope.offset));
    }
    at = Describe(found, scope.offset);
    first = false;
  }
  return at;
}

}  // namespace tool
}  // namespace keyasn
