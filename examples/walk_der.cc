// Reads any DER file into a CASNTUnit tree and prints one line per element.
// Usage: walk_der FILE.der
#include <keyasn/keyasn.h>

#include <cstdio>
#include <string>

#include "read_file.h"

namespace {

const char* const kClasses[] = {"universal", "application", "context", "private"};

void Print(const CASNTBaseRecord& record, int depth) {
  std::printf("%*s%s %u%s, %u octets", depth * 2, "", kClasses[record.GetClass() >> 6],
              record.GetTag(), record.GetIsConstraction() ? " constructed" : "",
              record.GetEntrySize());
  if (record.GetClass() == 0 && record.GetTag() == 6) {  // an OBJECT IDENTIFIER
    const IdentObj& encoded = record.GetEncodedRecord(nullptr);
    ASNT_ASN_STRUCT_INFO info;
    if (ASNTGetAsnInfo(info, encoded.GetData(), encoded.Count()) == 0)
      std::printf(": %s", keyasn::OidText(IdentObj(info.Contents, info.Length)).c_str());
  }
  std::printf("\n");
  // A record with items is a unit; its items are records or units again.
  if (const CASNTUnit* unit = dynamic_cast<const CASNTUnit*>(&record))
    for (unsigned int i = 0; i < unit->GetEntryListSize(); ++i) Print(*unit->GetItem(i), depth + 1);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::vector<unsigned char> der = ReadFile(argv[1]);
  CASNTUnit tree;
  int error = 0;
  const unsigned int used = tree.ReadData(der.data(), static_cast<unsigned int>(der.size()), &error);
  if (error != 0) {
    std::printf("%s: %s\n", argv[1], keyasn::ErrorText(error));
    return 1;
  }
  Print(tree, 0);
  if (used != der.size()) std::printf("%zu octets after the element\n", der.size() - used);
  return 0;
}
