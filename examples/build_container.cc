// Builds a key description and a container from nothing, writes the container
// (to a file when one is named) and reads it back.
// Usage: build_container [OUT.der]
#include <keyasn/keyasn.h>

#include <cstdio>
#include <fstream>

int main(int argc, char** argv) {
  // The key description: numbers, an algorithm identifier and the key bits.
  ASNKeyInfo key;
  key.Flags = 0x1A;
  key.Number = 1;
  key.AlgorithmId.SetObjID(keyasn::OidContents("1.2.643.2.2.19"));
  const unsigned char bits[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  key.KeyBits = CRUVCryptBitBlob(bits, sizeof bits, 0);

  // The container holds key descriptions in encoded form.
  ASNContainerInfo container;
  container.Version = 3;
  container.SetKeyInfo(key);
  container.SetDefenceKeyInfo(key);
  int error = 0;
  const IdentObj der = container.WriteData(&error);
  if (error != 0) {
    std::printf("cannot write the container: %s\n", keyasn::ErrorText(error));
    return 1;
  }
  std::printf("container: %u octets\n", der.Count());
  if (argc > 1)
    std::ofstream(argv[1], std::ios::binary)
        .write(reinterpret_cast<const char*>(der.GetData()), der.Count());

  // Read back: the same container, the same key.
  ASNContainerInfo back;
  back.ReadData(der.GetData(), der.Count(), &error);
  if (error != 0 || back != container || back.GetKeyInfo() != key) {
    std::puts("read back differs");
    return 1;
  }
  std::puts("read back: same container");
  return 0;
}
