// Shared pieces of the tool's fuzz targets: the commands run on the input as a
// file, their output thrown away or kept, and their exit status checked.
#ifndef KEYASN_FUZZ_TOOLS_TOOL_SUPPORT_H_
#define KEYASN_FUZZ_TOOLS_TOOL_SUPPORT_H_

#include <initializer_list>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>

#include "dump_stream.h"
#include "fuzz/fuzz_support.h"

namespace keyasn_fuzz {

// Discard is an output stream that takes everything and keeps nothing (a stream
// without a buffer would fail, and the commands report that as an I/O error).
class Discard : public std::ostream {
 public:
  Discard() : std::ostream(&buffer_) {}

 private:
  class Buffer : public std::streambuf {
   protected:
    int overflow(int c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
  };
  Buffer buffer_;
};

// AsFile puts the input in the scratch file, where the commands read it.
inline std::string AsFile(const uint8_t* data, size_t size) { return ScratchFile::Write(data, size); }

// CheckStatus: a command ended with one of the statuses it may give for this
// input (anything else, an I/O error on a readable file say, is a fault).
inline void CheckStatus(int status, std::initializer_list<int> allowed) {
  for (int ok : allowed)
    if (status == ok) return;
  Fail(__FILE__, __LINE__, ("exit status " + std::to_string(status)).c_str());
}

// StreamedJson prints what dump --json prints for the `size` octets at `data`
// into `document`; false when the walk fails. The text streamed must be what the
// parsed document writes.
inline bool StreamedJson(const uint8_t* data, size_t size, keyasn::tool::Json* document) {
  keyasn::tool::PrintOptions options;
  options.json = true;
  options.size = size;
  std::ostringstream out;
  if (keyasn::tool::PrintWalk(data, options, keyasn::tool::WalkOptions(), out, nullptr).failed)
    return false;
  const std::string text = out.str();
  *document = keyasn::tool::Json::parse(text);
  KEYASN_FUZZ_CHECK(text ==
                    document->dump(2, ' ', false, keyasn::tool::Json::error_handler_t::replace) + "\n");
  return true;
}

}  // namespace keyasn_fuzz

#endif  // KEYASN_FUZZ_TOOLS_TOOL_SUPPORT_H_
