// The view command: one self-contained HTML page of an input's element tree
// beside its octets, and with --as the members of a key structure.
#ifndef KEYASN_TOOLS_VIEW_COMMAND_H_
#define KEYASN_TOOLS_VIEW_COMMAND_H_

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "der_walk.h"
#include "input.h"
#include "view.h"

namespace keyasn {
namespace tool {

// The largest input made into a page without --force: past it the page grows
// beyond what a browser opens quickly.
constexpr std::size_t kMaxViewSize = 1u << 20;

struct ViewRequest {
  std::string file;    // empty: standard input when it is data, else the bundled sample
  InputForm inform = InputForm::kAuto;
  std::string type;    // a TYPE of show, or empty: no members panel (the sample: container)
  std::string output;  // empty or "-": standard output
  bool force = false;  // make a page of an input larger than kMaxViewSize
};

// RunView writes the page; on damaged input the page is written all the same
// and the error reported, with the exit status of malformed input.
int RunView(const ViewRequest& request, std::ostream& out, std::ostream& err);

// PageElement is what the page keeps of an element.
struct PageElement {
  std::size_t offset = 0;
  std::size_t length = 0;
  unsigned int header_length = 0;
  int depth = 0;
  std::size_t type = 0;      // index in the page's type names
  unsigned int flags = 0;    // constructed, encapsulated, ... (see view_command.cc)
  std::size_t value = 0;     // index in the page's values, when it has one
  std::size_t findings = 0;  // index in the page's finding lists, when it has some
};

// FindSource is the index in `elements` of the element whose octets a member
// holds: its whole encoding when `whole`, else its contents (of a BIT STRING,
// also without the unused-bits octet). The search starts at `*cursor`, goes on
// from the start, and moves `*cursor` past a match; -1 when none matches.
int FindSource(const std::vector<PageElement>& elements, const unsigned char* data,
               const Bytes& octets, bool whole, std::size_t* cursor);

// MemberLinks is the members of `view` as the page lists them, each with the
// element it was read from (see FindSource) or -1.
nlohmann::ordered_json MemberLinks(const View& view, const std::vector<PageElement>& elements,
                                   const unsigned char* data);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_VIEW_COMMAND_H_
