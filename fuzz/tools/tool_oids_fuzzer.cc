// The tool's --oids files on any text: read in either format (dumpasn1's
// configuration, openssl's -oid lines) or refused with the number of the line at
// fault; once loaded, every name read is the one the tool gives its identifier
// (but under the GOST arc, where the built-in names win), and dump prints the
// identifiers with those names in text and in JSON that parses.
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "common.h"
#include "dump.h"
#include "fuzz/tools/tool_support.h"
#include "keyasn/codec/oid.h"
#include "oid_config.h"
#include "oid_names.h"

namespace {

namespace tool = keyasn::tool;

// At most this many identifiers named by a file are dumped.
constexpr std::size_t kDumped = 32;

// Identifiers: a SEQUENCE of the identifiers named, as DER.
tool::Bytes Identifiers(const std::map<std::string, std::string>& names) {
  tool::Bytes contents;
  std::size_t count = 0;
  for (const auto& entry : names) {
    if (count++ == kDumped) break;
    const IdentObj oid = keyasn::OidContents(entry.first.c_str());
    if (oid.Count() == 0 || oid.Count() > 127) continue;
    contents.push_back(0x06);
    contents.push_back(static_cast<unsigned char>(oid.Count()));
    contents.insert(contents.end(), oid.GetData(), oid.GetData() + oid.Count());
  }
  tool::Bytes der = {0x30, 0x82, static_cast<unsigned char>(contents.size() >> 8),
                     static_cast<unsigned char>(contents.size())};
  der.insert(der.end(), contents.begin(), contents.end());
  return der;
}

}  // namespace

KEYASN_FUZZ_TARGET(tool_oids) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::map<std::string, std::string> names;
  std::string problem;
  const bool parsed = tool::ParseOidNames(text, &names, &problem);
  KEYASN_FUZZ_CHECK(parsed == problem.empty());

  // As --oids FILE loads it ("none": without the system's file).
  tool::ForgetOidNames();
  const std::string file = keyasn_fuzz::AsFile(data, size);
  try {
    tool::LoadOidNames({file, "none"});
    KEYASN_FUZZ_CHECK(parsed);
  } catch (const tool::ToolError& e) {
    KEYASN_FUZZ_CHECK(!parsed && e.status() == tool::kExitMalformed);
  }
  if (!parsed) return;

  for (const auto& entry : names) {
    const char* name = tool::OidName(entry.first);
    KEYASN_FUZZ_CHECK(name != nullptr);
    const bool builtin = entry.first.compare(0, 8, "1.2.643.") == 0 &&
                         tool::BuiltinOidName(entry.first) != nullptr;
    // The tool holds names as C strings: one stops at a NUL the file put in it.
    KEYASN_FUZZ_CHECK(builtin || std::strcmp(entry.second.c_str(), name) == 0);
  }
  const tool::Bytes der = Identifiers(names);
  keyasn_fuzz::Discard out;
  tool::DumpText(tool::Walk(der.data(), der.size(), tool::WalkOptions()), der.data(), false, out);
  tool::Json document;
  KEYASN_FUZZ_CHECK(keyasn_fuzz::StreamedJson(der.data(), der.size(), &document));
}
