// Every fuzz target's reader family, by name, for the robustness sweeps.
#ifndef KEYASN_TESTS_FUZZ_FAMILIES_H_
#define KEYASN_TESTS_FUZZ_FAMILIES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

#define KEYASN_FUZZ_FAMILY(name) \
  namespace keyasn_fuzz {        \
  void Run_##name(const uint8_t* data, size_t size); \
  }
#include "fuzz_families.inc"
#undef KEYASN_FUZZ_FAMILY

namespace keyasn_sweep {

struct NamedFamily {
  const char* name;
  keyasn_fuzz::Family run;
};

inline const std::vector<NamedFamily>& Families() {
  static const std::vector<NamedFamily> families = {
#define KEYASN_FUZZ_FAMILY(name) {#name, &keyasn_fuzz::Run_##name},
#include "fuzz_families.inc"
#undef KEYASN_FUZZ_FAMILY
  };
  return families;
}

inline std::vector<std::string> FamilyNames() {
  std::vector<std::string> names;
  for (const NamedFamily& f : Families()) names.push_back(f.name);
  return names;
}

inline keyasn_fuzz::Family FamilyNamed(const std::string& name) {
  for (const NamedFamily& f : Families())
    if (name == f.name) return f.run;
  return nullptr;
}

// Feed runs one input through a family from an exactly sized heap buffer (a null
// pointer for `null`). Returns an empty text when the readers succeeded or
// reported a code or an XRUVStatus, otherwise what escaped.
std::string Feed(keyasn_fuzz::Family family, const std::vector<uint8_t>& input,
                 bool null = false);

}  // namespace keyasn_sweep

#endif  // KEYASN_TESTS_FUZZ_FAMILIES_H_
