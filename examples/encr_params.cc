// Reads the encryption parameters from their DER form and from their 70-octet
// binary form, prints them and writes the DER form back.
// Usage: encr_params PARAMS.der PARAMS.bin
#include <keyasn/keyasn.h>

#include <cstdio>

#include "read_file.h"

namespace {

void Print(const char* from, const CASNEncrParams& params) {
  std::printf("%s: parameter set %s, mode %d, shift %d, box %zu octets, meshing %s\n", from,
              params.paramSetOid.c_str(), params.mode, params.shiftBits,
              params.substitutionBox.size(), params.keyMeshingOid.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const std::vector<unsigned char> der = ReadFile(argv[1]);
  const std::vector<unsigned char> binary = ReadFile(argv[2]);

  // This class returns its codes: 0, a library code, or 16.
  CASNEncrParams fromDer;
  int code = fromDer.ReadData(der.data(), static_cast<unsigned int>(der.size()));
  if (code != 0) {
    std::printf("DER form: %s\n", keyasn::ErrorText(code));
    return 1;
  }
  Print("DER", fromDer);

  // The binary form completes the default parameter set prefix with its number.
  CASNEncrParams fromBinary;
  code = fromBinary.GetFromDsdr(binary.data(), static_cast<unsigned int>(binary.size()));
  if (code != 0) {
    std::printf("binary form: %s\n", keyasn::ErrorText(code));
    return 1;
  }
  Print("binary", fromBinary);

  // WriteData returns the DER form, or nothing (and one line on stderr).
  const std::vector<unsigned char> written = fromDer.WriteData();
  std::printf("written back: %zu octets, %s\n", written.size(),
              written == der ? "the same as read" : "different");
  return written == der ? 0 : 1;
}
