#include "der_walk.h"

#include <cctype>
#include <climits>

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
  int element;        // index of the element, -1 for the top level
  std::size_t end;    // offset just behind its contents (the input end when indefinite)
  bool indefinite;    // children end at a 00 00 pair
  int depth;          // depth of its children
  bool encapsulated;  // children sit inside a primitive's contents
};

class Walker {
 public:
  Walker(const unsigned char* data, std::size_t size, const WalkOptions& options)
      : data_(data), size_(size), options_(options) {}

  Tree Run();

 private:
  // Fail ends the walk. The error reported is the first one met: a truncated
  // constructed element is only noted, and the walk goes on inside it as far as
  // the data goes, so that the tree shows where the data ends.
  bool Fail(std::size_t offset, int code, const std::string& meaning) {
    tree_.failed = true;
    if (pending_) {
      tree_.error = pending_error_;
    } else {
      tree_.error.offset = offset;
      tree_.error.code = code;
      tree_.error.meaning = meaning;
    }
    return false;
  }
  int AddElement(const Element& element, const Frame& frame) {
    const int index = static_cast<int>(tree_.elements.size());
    tree_.elements.push_back(element);
    if (frame.element < 0) {
      tree_.roots.push_back(index);
    } else {
      tree_.elements[frame.element].children.push_back(index);
    }
    return index;
  }
  bool Step();
  bool ExplainHeaderFailure(std::size_t pos, std::size_t left, int code);
  bool HoldsDer(const unsigned char* contents, std::size_t size) const;

  const unsigned char* data_;
  std::size_t size_;
  WalkOptions options_;
  Tree tree_;
  std::vector<Frame> frames_;
  std::size_t pos_ = 0;
  bool pending_ = false;
  WalkError pending_error_;
};

Tree Walker::Run() {
  tree_.input_size = size_;
  frames_.push_back(Frame{-1, size_, false, 0, false});
  while (!frames_.empty() && Step()) {
  }
  if (pending_ && !tree_.failed) Fail(0, 0, std::string());
  return std::move(tree_);
}

// Step reads one element (or closes one frame); false when the walk is over.
bool Walker::Step() {
  Frame frame = frames_.back();
  if (frame.indefinite) {
    if (pos_ + 2 <= frame.end && data_[pos_] == 0 && data_[pos_ + 1] == 0) {
      Element eoc;
      eoc.offset = pos_;
      eoc.header_length = 2;
      eoc.depth = frame.depth;
      eoc.parent = frame.element;
      eoc.encapsulated = frame.encapsulated;
      eoc.end_of_contents = true;
      AddElement(eoc, frame);
      Element& owner = tree_.elements[frame.element];
      owner.length = pos_ - (owner.offset + owner.header_length);
      pos_ += 2;
      frames_.pop_back();
      return true;
    }
    if (pos_ >= frame.end) {
      return Fail(tree_.elements[frame.element].offset, 206,
                  "indefinite length without end-of-contents octets (00 00)");
    }
  } else if (pos_ >= frame.end) {
    frames_.pop_back();
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
  element.parent = frame.element;
  element.encapsulated = frame.encapsulated;
  // The parser accepted the header, so its identifier octets lie within it.
  std::size_t id_length = 1;
  if ((data_[pos_] & 0x1F) == 0x1F) {
    while (id_length + 1 < element.header_length && (data_[pos_ + id_length] & 0x80) != 0) {
      ++id_length;
    }
    ++id_length;
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
  if (element.indefinite && element.constructed) {
    const int index = AddElement(element, frame);
    pos_ += element.header_length;
    frames_.push_back(Frame{index, frame.end, true, frame.depth + 1, false});
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
      const std::string meaning = "length " + std::to_string(element.length) +
                                  " runs past the end of the " +
                                  (frame.element < 0 ? "data" : "enclosing element") + " (" +
                                  OctetCount(after_header) + " left)";
      if (!element.constructed) return Fail(pos_, 206, meaning);
      if (!pending_) {
        pending_ = true;
        pending_error_ = WalkError{pos_, 206, meaning};
      }
      const int index = AddElement(element, frame);
      pos_ += element.header_length;
      frames_.push_back(Frame{index, frame.end, false, frame.depth + 1, false});
      return true;
    }
    total = element.header_length + element.length;
  }
  const int index = AddElement(element, frame);
  const std::size_t contents = pos_ + element.header_length;
  if (element.constructed) {
    pos_ = contents;
    frames_.push_back(Frame{index, contents + element.length, false, frame.depth + 1, false});
    return true;
  }
  pos_ += total;
  if (options_.open_encapsulated && element.tag_class == 0 && !element.indefinite) {
    std::size_t skip = 0;
    bool candidate = false;
    if (element.tag == 4) {
      candidate = true;
    } else if (element.tag == 3 && element.length > 1 && data_[contents] == 0) {
      candidate = true;
      skip = 1;
    }
    if (candidate && frame.depth + 1 < kMaxDepth &&
        HoldsDer(data_ + contents + skip, element.length - skip)) {
      tree_.elements[index].encapsulates = true;
      pos_ = contents + skip;
      frames_.push_back(Frame{index, contents + element.length, false, frame.depth + 1, true});
    }
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

bool Walker::HoldsDer(const unsigned char* contents, std::size_t size) const {
  if (size < 2) return false;
  const unsigned char first = contents[0];
  // Only universal and context-specific elements, and never 00 (end-of-contents).
  if ((first & 0xC0) == 0x40 || (first & 0xC0) == 0xC0 || first == 0) return false;
  WalkOptions strict;
  strict.open_encapsulated = false;
  strict.allow_indefinite = false;
  Tree inner = Walker(contents, size, strict).Run();
  if (inner.failed || inner.roots.empty()) return false;
  if (inner.roots.size() == 1) {
    const Element& root = inner.elements[inner.roots[0]];
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

}  // namespace

Tree Walk(const unsigned char* data, std::size_t size, const WalkOptions& options) {
  return Walker(data, size, options).Run();
}

bool IsCompleteEncoding(const unsigned char* data, std::size_t size) {
  WalkOptions options;
  options.open_encapsulated = false;
  Tree tree = Walk(data, size, options);
  return !tree.failed && !tree.roots.empty();
}

}  // namespace tool
}  // namespace keyasn
