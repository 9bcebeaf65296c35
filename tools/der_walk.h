// The element tree of BER/DER input, walked without recursion and bounded in
// depth, with OCTET STRING and BIT STRING contents opened when they hold DER.
#ifndef KEYASN_TOOLS_DER_WALK_H_
#define KEYASN_TOOLS_DER_WALK_H_

#include <cstddef>
#include <string>
#include <vector>

namespace keyasn {
namespace tool {

// The deepest nesting the walker follows; deeper input is reported as malformed
// (the tree is printed with indentation, so depth costs output as well as memory).
constexpr int kMaxDepth = 100;

// Element is one element of the tree; offsets count from the start of the input.
struct Element {
  std::size_t offset = 0;         // first identifier octet
  unsigned int header_length = 0;  // identifier and length octets
  bool indefinite = false;         // length octet 0x80
  std::size_t length = 0;          // contents octets (for an indefinite element, found by the walk)
  unsigned char tag_class = 0;     // 0x00, 0x40, 0x80 or 0xC0
  bool constructed = false;
  unsigned int tag = 0;
  int depth = 0;
  int parent = -1;             // index in Tree::elements, -1 at the top
  bool encapsulated = false;   // a child found inside a primitive's contents
  bool encapsulates = false;   // a primitive whose contents were opened
  bool end_of_contents = false;  // the 00 00 pair that ends an indefinite element
  std::vector<int> children;
};

// WalkError is where and why the walk stopped.
struct WalkError {
  std::size_t offset = 0;
  int code = 0;          // the library's code: 205 or 206
  std::string meaning;   // what is wrong, in words
};

struct Tree {
  std::vector<Element> elements;  // in encoding order (each parent before its children)
  std::vector<int> roots;
  std::size_t input_size = 0;     // octets walked
  bool failed = false;
  WalkError error;
};

struct WalkOptions {
  bool open_encapsulated = true;  // open OCTET/BIT STRING contents that are DER
  bool allow_indefinite = true;   // false: an indefinite length is an error
};

// WalkSink receives the elements in encoding order while the walk goes on, so
// that callers print or search without holding the tree.
class WalkSink {
 public:
  virtual ~WalkSink() = default;
  // Enter: an element's header has been read (`children` and `parent` are left
  // empty). For an element with children (constructed, or a primitive whose
  // contents are opened), false skips them: a definite length is stepped over
  // unread, an indefinite one is walked without reporting.
  virtual bool Enter(const Element& element) = 0;
  // Leave: the children of an entered element are over; `length` is now known
  // for an indefinite element.
  virtual void Leave(const Element& element) { (void)element; }
  // Finished ends the walk early (without an error) once the sink has what it needs.
  virtual bool Finished() const { return false; }
  // Damaged: a constructed element claims more octets than hold it. The walk goes
  // on inside it as far as the data goes, and will fail with `error` at its end.
  virtual void Damaged(const WalkError& error) { (void)error; }
};

// TreeSink keeps the elements it is given as a tree, each linked to its parent,
// and the order of the calls (to replay them once the tree is complete).
class TreeSink : public WalkSink {
 public:
  explicit TreeSink(Tree* tree) : tree_(tree) {}
  bool Enter(const Element& element) override;
  void Leave(const Element& element) override;

 protected:
  struct Event {
    bool enter;  // Enter, or Leave
    int index;   // in Tree::elements
  };
  // RootDone: a top-level element is complete. A sink that holds one at a time
  // looks at the tree and calls Clear.
  virtual void RootDone() {}
  void Clear();

  Tree* tree_;
  std::vector<int> open_;      // elements whose children are being walked
  std::vector<Event> events_;  // since the last Clear
};

struct WalkResult {
  bool failed = false;
  WalkError error;
};

// WalkInto walks `data`, reporting each element to `sink`; it stops at the first
// malformed element (after reporting the elements before it).
WalkResult WalkInto(const unsigned char* data, std::size_t size, const WalkOptions& options,
                    WalkSink* sink);

// Walk parses every element of `data` into a tree. On malformed input it keeps
// the elements parsed before the bad one and fills `error`.
Tree Walk(const unsigned char* data, std::size_t size, const WalkOptions& options);

// HoldsDer is true when `size` octets of contents are, in the walker's opinion,
// DER themselves (one or more whole definite-length elements, not a lone
// primitive that random octets would make by chance).
bool HoldsDer(const unsigned char* contents, std::size_t size);

// IsCompleteEncoding is true when `data` is one or more whole elements, nothing
// left over, with no error anywhere inside.
bool IsCompleteEncoding(const unsigned char* data, std::size_t size);

// WalkErrorText is "error at offset N: CODE MEANING: detail", the offset moved by `base`.
std::string WalkErrorText(const WalkError& error, std::size_t base = 0);

// PastTheEnd is the detail of a length that runs past the octets there are:
// past the end of the data (`top`) or of the enclosing element.
std::string PastTheEnd(std::size_t length, std::size_t left, bool top);

// CodeMeaning names one of the library's codes as a phrase for a message line:
// keyasn::ErrorText without its capital and full stop ("the data is malformed or
// truncated").
std::string CodeMeaning(int code);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_DER_WALK_H_
