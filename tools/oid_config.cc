#include "oid_config.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "keyasn/codec/oid.h"

#include "common.h"
#include "oid_names.h"
#include "values.h"

namespace keyasn {
namespace tool {

const std::string kSystemOidFile = "/etc/dumpasn1/dumpasn1.cfg";

namespace {

std::map<std::string, std::string>& ReadNames() {
  static std::map<std::string, std::string> names;
  return names;
}

std::string Trim(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string::npos) return std::string();
  const std::size_t end = text.find_last_not_of(" \t\r");
  return text.substr(begin, end - begin + 1);
}

bool IsDotted(const std::string& text) { return keyasn::OidContents(text.c_str()).Count() != 0; }

// DottedFromConfig reads the value of dumpasn1's "OID =": the components
// separated by spaces ("2 5 4 3"), or the whole encoded identifier in hex
// ("06 03 55 04 03").
bool DottedFromConfig(const std::string& value, std::string* dotted) {
  std::istringstream words(value);
  std::string word, joined;
  while (words >> word) joined += (joined.empty() ? "" : ".") + word;
  if (IsDotted(joined)) {
    *dotted = joined;
    return true;
  }
  Bytes octets;
  const std::string& hex = value;
  if (!ParseHex(hex, &octets) || octets.size() < 3 || octets[0] != 0x06 ||
      octets[1] != octets.size() - 2) {
    return false;
  }
  *dotted = keyasn::OidText(IdentObj(octets.data() + 2, static_cast<unsigned int>(octets.size() - 2)));
  return !dotted->empty();
}

bool ReadFile(const std::string& path, std::string* text) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return false;
  std::ostringstream all;
  all << file.rdbuf();
  *text = all.str();
  return !file.bad();
}

}  // namespace

bool ParseOidNames(const std::string& text, std::map<std::string, std::string>* names,
                   std::string* problem) {
  std::istringstream lines(text);
  std::string line;
  std::string pending;  // the identifier of the last "OID =" line
  int number = 0;
  while (std::getline(lines, line)) {
    ++number;
    line = Trim(line);
    if (line.empty() || line[0] == '#') continue;
    const std::size_t equals = line.find('=');
    if (line == "Warning") continue;  // dumpasn1's flag on an entry
    if (equals != std::string::npos && !(line[0] >= '0' && line[0] <= '9')) {
      const std::string key = Trim(line.substr(0, equals));
      const std::string value = Trim(line.substr(equals + 1));
      if (key == "OID") {
        if (!DottedFromConfig(value, &pending)) {
          *problem = "line " + std::to_string(number) + ": not an encoded object identifier";
          return false;
        }
      } else if (key == "Description" && !pending.empty()) {
        names->emplace(pending, value);
        pending.clear();
      }
      continue;
    }
    // openssl's form: dotted identifier, short name, long name (may hold spaces).
    std::istringstream fields(line);
    std::string dotted, short_name;
    fields >> dotted >> short_name;
    std::string long_name;
    std::getline(fields, long_name);
    long_name = Trim(long_name);
    if (short_name.empty() || !IsDotted(dotted)) {
      *problem = "line " + std::to_string(number) +
                 ": neither \"OID = ...\" nor \"DOTTED shortName longName\"";
      return false;
    }
    names->emplace(dotted, long_name.empty() ? short_name : long_name);
  }
  return true;
}

void LoadOidNames(const std::vector<std::string>& files) {
  std::map<std::string, std::string>& names = ReadNames();
  bool system = true;
  const char* env = std::getenv("KEYASN_OIDS");
  if (env != nullptr && std::string(env) == "none") system = false;
  for (const std::string& path : files) {
    if (path == "none") {
      system = false;
      continue;
    }
    std::string text, problem;
    if (!ReadFile(path, &text)) throw ToolError(kExitIo, path + ": cannot read the names file");
    if (!ParseOidNames(text, &names, &problem)) throw ToolError(kExitMalformed, path + ": " + problem);
  }
  std::string text, problem;
  // The system file is a convenience: when it cannot be read, built-in names remain.
  if (system && ReadFile(kSystemOidFile, &text)) ParseOidNames(text, &names, &problem);
}

void ForgetOidNames() { ReadNames().clear(); }

const char* OidName(const std::string& dotted) {
  const bool gost = dotted.compare(0, 8, "1.2.643.") == 0;
  if (gost) {
    if (const char* name = BuiltinOidName(dotted)) return name;
  }
  const std::map<std::string, std::string>& names = ReadNames();
  const auto found = names.find(dotted);
  if (found != names.end()) return found->second.c_str();
  return gost ? nullptr : BuiltinOidName(dotted);
}

}  // namespace tool
}  // namespace keyasn
