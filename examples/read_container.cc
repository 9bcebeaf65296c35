// Reads a key container and prints what its key description holds.
// Usage: read_container CONTAINER.der
#include <keyasn/keyasn.h>

#include <cstdio>

#include "read_file.h"

namespace {

void PrintTime(const char* name, const CRUVFileTime& time) {
  SYSTEMTIME st{};
  FileTimeToSystemTime(&time.GetFileTime(), &st);
  std::printf("  %s %04u-%02u-%02u %02u:%02u:%02u UTC\n", name, st.wYear, st.wMonth, st.wDay,
              st.wHour, st.wMinute, st.wSecond);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::vector<unsigned char> der = ReadFile(argv[1]);

  ASNContainerInfo container;
  int error = 0;  // with a pointer given, failures are stored, not thrown
  container.ReadData(der.data(), static_cast<unsigned int>(der.size()), &error);
  if (error != 0) {
    std::printf("not a key container: %d: %s\n", error, keyasn::ErrorText(error));
    return 1;
  }
  std::printf("container version %u\n", container.Version);

  // The key description is kept encoded; GetKeyInfo decodes it (and throws
  // XRUVStatus when it cannot).
  try {
    const ASNKeyInfo key = container.GetKeyInfo();
    std::printf("key: flags 0x%X, number %u\n", key.Flags, key.Number);
    std::printf("  algorithm %s\n", keyasn::OidText(key.AlgorithmId.GetObjID()).c_str());
    PrintTime("valid from", key.Validity.GetTime(true));
    PrintTime("valid to  ", key.Validity.GetTime(false));
    std::printf("  key bits: %u octets, %u unused bits\n", key.KeyBits.Count(),
                key.KeyBits.GetUnusedBits());
  } catch (const XRUVStatus& status) {
    std::printf("bad key description: %s (%s)\n", keyasn::ErrorText(status.Status()),
                status.Where());
    return 1;
  }
  return 0;
}
