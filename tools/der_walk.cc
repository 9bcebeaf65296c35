#include "der_walk.h"

#include <cctype>
#include <climits>
#include <cstdint>

#include "keyasn/codec/error_text.h"
#include "keyasn/codec/header.h"

namespace keyasn {
namespace tool {

std::string CodeMeaning(int code) {
  // The library's sentence as a phrase: first letter in lower case, no full stop.
  std::string text = keyasn::ErrorText(code);
  if (!text.empty() && text.back() == '.') text.pop_back();
  if (!text.empty()) text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
  return text;
}

namespace {

std::string ToHexOctet(unsigned char octet) {
  static const char kDigits[] = "0123456789ABCDEF";
  return std::string("0x") + kDigits[octet >> 4] + kDigits[octet & 0x0F];
}

std::string OctetCount(std::size_t n) {
  return std::to_string(n) + (n == 1 ? " octet" : " octets");
}

// Frame is a constructed (or opened primitive) element whose children are being read.
struct Frame {
  Element element;    // the element itself (offset -1 stands for the top level)
  bool top;           // the top level: no element
  std::size_t end;    // offset just behind its contents (the input end when indefinite)
  bool indefinite;    // children end at a 00 00 pair
  int depth;          // depth of its children
  bool encapsulated;  // children sit inside a primitive's contents
  bool silent;        // children are walked but not reported
};

class Walker {
 public:
  Walker(const unsigned char* data, std::size_t size, const WalkOptions& options, WalkSink* sink)
      : data_(data), size_(size), options_(options), sink_(sink) {}

  WalkResult Run();

 private:
  // Fail ends the walk. The error reported is the first one met: a truncated
  // constructed element is only noted, and the walk goes on inside it as far as
  // the data goes, so that the tree shows where the data ends.
  bool Fail(std::size_t offset, int code, const std::string& meaning) {
    result_.failed = true;
    if (pending_) {
      result_.error = pending_error_;
    } else {
      result_.error.offset = offset;
      result_.error.code = code;
      result_.error.meaning = meaning;
    }
    return false;
  }
  // Report passes an element to the sink (unless inside a silent frame); the
  // answer says whether its children are wanted.
  bool Report(const Element& element, const Frame& frame) {
    return frame.silent ? false : sink_->Enter(element);
  }
  void Close() {
    const Frame& frame = frames_.back();
    if (!frame.top && !frame.silent) sink_->Leave(frame.element);
    frames_.pop_back();
  }
  bool Step();
  bool ExplainHeaderFailure(std::size_t pos, std::size_t left, int code);

  const unsigned char* data_;
  std::size_t size_;
  WalkOptions options_;
  WalkSink* sink_;
  WalkResult result_;
  std::vector<Frame> frames_;
  std::size_t pos_ = 0;
  bool pending_ = false;
  WalkError pending_error_;
};

WalkResult Walker::Run() {
  frames_.push_back(Frame{Element(), true, size_, false, 0, false, false});
  while (!frames_.empty() && !sink_->Finished() && Step()) {
  }
  if (pending_ && !result_.failed) Fail(0, 0, std::string());
  return result_;
}

// Step reads one element (or closes one frame); false when the walk is over.
bool Walker::Step() {
  const Frame& frame = frames_.back();
  if (frame.indefinite) {
    if (pos_ + 2 <= frame.end && data_[pos_] == 0 && data_[pos_ + 1] == 0) {
      Element eoc;
      eoc.offset = pos_;
      eoc.header_length = 2;
      eoc.depth = frame.depth;
      eoc.encapsulated = frame.encapsulated;
      eoc.end_of_contents = true;
      Report(eoc, frame);
      Element& owner = frames_.back().element;
      owner.length = pos_ - (owner.offset + owner.header_length);
      pos_ += 2;
      Close();
      return true;
    }
    if (pos_ >= frame.end) {
      return Fail(frame.element.offset, 206,
                  "indefinite length without end-of-contents octets (00 00)");
    }
  } else if (pos_ >= frame.end) {
    Close();
    return !frames_.empty();
  }

  const std::size_t left = frame.end - pos_;
  if (frame.depth >= kMaxDepth) {
    return Fail(pos_, 206, "nesting deeper than " + std::to_string(kMaxDepth) + " levels");
  }
  const unsigned int bounded = left > UINT_MAX - 1 ? UINT_MAX - 1 : static_cast<unsigned int>(left);
  ASNT_ASN_STRUCT_INFO info{};
  const int code = ASNTGetAsnInfo(info, data_ + pos_, bounded);
  if (code != 0) return ExplainHeaderFailure(pos_, left, code);

  Element element;
  element.offset = pos_;
  element.header_length = static_cast<unsigned int>(info.Contents - (data_ + pos_));
  element.tag_class = info.Class;
  element.constructed = info.Constructed != 0;
  element.tag = info.Tag;
  element.depth = frame.depth;
  element.encapsulated = frame.encapsulated;
  // The parser accepted the header, so its identifier octets lie within it.
  std::size_t id_length = 1;
  if ((data_[pos_] & 0x1F) == 0x1F) {
    while (id_length + 1 < element.header_length && (data_[pos_ + id_length] & 0x80) != 0) {
      ++id_length;
    }
    ++id_length;
  }
  // The codec keeps the low 32 bits of a longer tag number, which would then be
  // shown, and written back by encode, as another tag.
  std::uint64_t tag_number = 0;
  for (std::size_t i = 1; i < id_length; ++i) {
    tag_number = tag_number << 7 | (data_[pos_ + i] & 0x7Fu);
    if (tag_number > UINT32_MAX) return Fail(pos_, 205, "tag number does not fit in 32 bits");
  }
  const unsigned char first_length = data_[pos_ + id_length];
  if (first_length > 0x84 && first_length != 0x80) {
    // More than four length octets: the codec keeps the last four, so the
    // leading ones must be zero for the length to mean what it says.
    for (std::size_t i = id_length + 1; i < element.header_length - 4u; ++i) {
      if (data_[pos_ + i] != 0) return Fail(pos_, 206, "length does not fit in 32 bits");
    }
  }
  element.indefinite = first_length == 0x80;
  if (element.indefinite && !options_.allow_indefinite) {
    return Fail(pos_, 206, "indefinite length");
  }
  const std::size_t after_header = left - element.header_length;
  const int depth = frame.depth;
  const std::size_t frame_end = frame.end;
  const bool silent = frame.silent;
  if (element.indefinite && element.constructed) {
    const bool wanted = Report(element, frame);
    pos_ += element.header_length;
    frames_.push_back(Frame{element, false, frame_end, true, depth + 1, false, silent || !wanted});
    return true;
  }
  std::size_t total;
  if (element.indefinite) {
    // A primitive element in the indefinite form ends at its first 00 00 pair,
    // which the header parser has found within the data.
    element.length = info.Length;
    total = element.header_length + element.length + 2;
  } else {
    element.length = info.Length;
    if (element.length > after_header) {
      const std::string meaning = PastTheEnd(element.length, after_header, frame.top);
      if (!element.constructed) return Fail(pos_, 206, meaning);
      if (!pending_) {
        pending_ = true;
        pending_error_ = WalkError{pos_, 206, meaning};
        sink_->Damaged(pending_error_);
      }
      const bool wanted = Report(element, frame);
      pos_ += element.header_length;
      frames_.push_back(Frame{element, false, frame_end, false, depth + 1, false, silent || !wanted});
      return true;
    }
    total = element.header_length + element.length;
  }
  const std::size_t contents = pos_ + element.header_length;
  if (element.constructed) {
    if (!Report(element, frame)) {
      pos_ = contents + element.length;
      return true;
    }
    pos_ = contents;
    frames_.push_back(Frame{element, false, contents + element.length, false, depth + 1, false, false});
    return true;
  }
  pos_ += total;
  std::size_t skip = 0;
  if (options_.open_encapsulated && element.tag_class == 0 && !element.indefinite && !silent) {
    bool candidate = false;
    if (element.tag == 4) {
      candidate = true;
    } else if (element.tag == 3 && element.length > 1 && data_[contents] == 0) {
      candidate = true;
      skip = 1;
    }
    element.encapsulates = candidate && depth + 1 < kMaxDepth &&
                           HoldsDer(data_ + contents + skip, element.length - skip);
  }
  if (Report(element, frame) && element.encapsulates) {
    pos_ = contents + skip;
    frames_.push_back(Frame{element, false, contents + element.length, false, depth + 1, true, false});
  }
  return true;
}

bool Walker::ExplainHeaderFailure(std::size_t pos, std::size_t left, int code) {
  const unsigned char* p = data_ + pos;
  if (left < 2) {
    return Fail(pos, 206, "header truncated (" + OctetCount(left) + " left)");
  }
  if (code == 205) {
    return Fail(pos, 205, "high tag number does not end within the data");
  }
  std::size_t id_length = 1;
  if ((p[0] & 0x1F) == 0x1F) {
    while (id_length < left && (p[id_length] & 0x80) != 0) ++id_length;
    ++id_length;
  }
  if (id_length >= left) return Fail(pos, 206, "header truncated: no length octets");
  const unsigned char first = p[id_length];
  if (first == 0x80) {
    return Fail(pos, 206, "primitive element of indefinite length without end-of-contents octets");
  }
  if (first > 0x88) {
    return Fail(pos, 206, "bad length octet " + ToHexOctet(first));
  }
  return Fail(pos, 206, "length octets truncated");
}

// RootCheck counts the top-level elements of contents and keeps the first.
class RootCheck : public WalkSink {
 public:
  bool Enter(const Element& element) override {
    if (element.depth == 0 && roots_++ == 0) first_ = element;
    return true;
  }
  int roots() const { return roots_; }
  const Element& first() const { return first_; }

 private:
  int roots_ = 0;
  Element first_;
};

}  // namespace

bool TreeSink::Enter(const Element& element) {
  const int index = static_cast<int>(tree_->elements.size());
  tree_->elements.push_back(element);
  Element& added = tree_->elements.back();
  if (open_.empty()) {
    tree_->roots.push_back(index);
  } else {
    added.parent = open_.back();
    tree_->elements[open_.back()].children.push_back(index);
  }
  events_.push_back(Event{true, index});
  if (added.constructed || added.encapsulates) {
    open_.push_back(index);
  } else if (open_.empty()) {
    RootDone();
  }
  return true;
}

void TreeSink::Leave(const Element& element) {
  tree_->elements[open_.back()].length = element.length;
  events_.push_back(Event{false, open_.back()});
  open_.pop_back();
  if (open_.empty()) RootDone();
}

void TreeSink::Clear() {
  tree_->elements.clear();
  tree_->roots.clear();
  events_.clear();
}

WalkResult WalkInto(const unsigned char* data, std::size_t size, const WalkOptions& options,
                    WalkSink* sink) {
  return Walker(data, size, options, sink).Run();
}

Tree Walk(const unsigned char* data, std::size_t size, const WalkOptions& options) {
  Tree tree;
  tree.input_size = size;
  TreeSink builder(&tree);
  const WalkResult result = WalkInto(data, size, options, &builder);
  tree.failed = result.failed;
  tree.error = result.error;
  return tree;
}

bool HoldsDer(const unsigned char* contents, std::size_t size) {
  if (size < 2) return false;
  const unsigned char first = contents[0];
  // Only universal and context-specific elements, and never 00 (end-of-contents).
  if ((first & 0xC0) == 0x40 || (first & 0xC0) == 0xC0 || first == 0) return false;
  WalkOptions strict;
  strict.open_encapsulated = false;
  strict.allow_indefinite = false;
  RootCheck check;
  if (WalkInto(contents, size, strict, &check).failed || check.roots() == 0) return false;
  if (check.roots() == 1) {
    const Element& root = check.first();
    if (!root.constructed) {
      // A lone primitive: only the kinds that carry keys and identifiers, so that
      // random key octets are not taken for an element by chance.
      const bool plausible = root.tag_class == 0 &&
                             (root.tag == 2 || root.tag == 3 || root.tag == 4 || root.tag == 6);
      if (!plausible || root.length == 0) return false;
    }
  }
  return true;
}

bool IsCompleteEncoding(const unsigned char* data, std::size_t size) {
  WalkOptions options;
  options.open_encapsulated = false;
  RootCheck check;
  return !WalkInto(data, size, options, &check).failed && check.roots() > 0;
}

std::string WalkErrorText(const WalkError& error, std::size_t base) {
  return "error at offset " + std::to_string(error.offset + base) + ": " +
         std::to_string(error.code) + " " + CodeMeaning(error.code) + ": " + error.meaning;
}

std::string PastTheEnd(std::size_t length, std::size_t left, bool top) {
  return "length " + std::to_string(length) + " runs past the end of the " +
         (top ? "data" : "enclosing element") + " (" + OctetCount(left) + " left)";
}

}  // namespace tool
}  // namespace keyasn
