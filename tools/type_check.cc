#include "type_check.h"

#include <cstring>

#include "der_walk.h"
#include "types_common.h"
#include "values.h"

namespace keyasn {
namespace tool {

namespace {

// IsTime: a primitive UTCTime or GeneralizedTime, or one under a context tag
// (as validity periods may carry them), whose text is a valid time.
std::string CheckTime(const Element& e, const unsigned char* data, const char* which) {
  const bool universal_time = e.tag_class == 0 && (e.tag == 23 || e.tag == 24);
  const bool tagged = e.tag_class == 0x80 && !e.constructed;
  if (e.constructed || !(universal_time || tagged)) {
    return std::string("the ") + which + " time is not a UTCTime or GeneralizedTime";
  }
  const bool generalized = e.tag_class == 0 ? e.tag == 24 : e.length >= 15;
  std::string iso;
  if (!TimeText(data + e.offset + e.header_length, e.length, generalized, &iso)) {
    return std::string("the ") + which + " time \"" +
           ToUtf8(data + e.offset + e.header_length, e.length) + "\" is not a valid time";
  }
  return std::string();
}

// CheckValidity: a SEQUENCE of exactly two valid times.
std::string CheckValidity(const unsigned char* data, std::size_t size) {
  WalkOptions options;
  options.open_encapsulated = false;
  const Tree tree = Walk(data, size, options);
  if (tree.failed || tree.roots.empty()) return "the validity period is not one element";
  const Element& root = tree.elements[tree.roots[0]];
  if (!root.constructed || root.children.size() != 2) {
    return "a validity period is a SEQUENCE of two times, not " +
           std::to_string(root.children.size()) + " elements";
  }
  std::string problem = CheckTime(tree.elements[root.children[0]], data, "first");
  if (problem.empty()) problem = CheckTime(tree.elements[root.children[1]], data, "second");
  return problem;
}

std::string CheckHeldKeyInfos(const Bytes& der) {
  ASNContainerInfo container;
  int code = 0;
  container.ReadData(der.data(), Size(der), &code);
  if (code != 0) return std::string();  // show has reported it already
  const char* names[] = {"KeyInfo", "DefenceKeyInfo"};
  ASNKeyInfo (ASNContainerInfo::*getters[])() const = {&ASNContainerInfo::GetKeyInfo,
                                                       &ASNContainerInfo::GetDefenceKeyInfo};
  const IdentObj* held[] = {&container.KeyInfo, &container.DefenceKeyInfo};
  for (int i = 0; i < 2; ++i) {
    if (held[i]->Count() == 0) continue;
    try {
      (container.*getters[i])();
    } catch (const XRUVStatus& status) {
      return std::string(names[i]) + " is not a key description: " + StatusText(status);
    }
  }
  return std::string();
}

std::string CheckKeyInfoValidity(const Bytes& der) {
  ASNKeyInfo info;
  try {
    info.ReadData(der.data(), Size(der), nullptr);
  } catch (const XRUVStatus&) {
    return std::string();  // show has reported it already
  }
  const IdentObj& validity = info.Validity.GetEncoded();
  if (validity.Count() == 0) return std::string();
  const std::string problem = CheckValidity(validity.GetData(), validity.Count());
  return problem.empty() ? problem : "Validity: " + problem;
}

}  // namespace

std::string CheckType(const TypeInfo& type, const Bytes& der, const std::string& round_trip) {
  const std::string name = type.name;
  if (name == "validity") {
    const std::string problem = CheckValidity(der.data(), der.size());
    return problem.empty() ? round_trip : problem;
  }
  if (name == "container") {
    const std::string problem = CheckHeldKeyInfos(der);
    return problem.empty() ? round_trip : problem;
  }
  // A key description may be in a legacy form that the library reads and writes
  // otherwise; its times must still be times.
  if (name == "keyinfo") return CheckKeyInfoValidity(der);
  return round_trip;
}

}  // namespace tool
}  // namespace keyasn
