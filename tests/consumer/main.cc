// A small program that uses the installed library through its public headers.
#include <keyasn/keyasn.h>

#include <cstdio>

int main() {
  const unsigned char der[] = {0x30, 0x03, 0x02, 0x01, 0x05};
  IdentObj copy(der, sizeof der);
  try {
    throw XRUVStatus(206, "consumer", false);
  } catch (const XRUVStatus& e) {
    if (e.Status() != 206 || copy.GetSize() != 5) return 1;
  }
  ASNT_ASN_STRUCT_INFO info;
  if (ASNTGetAsnInfo(info, der, sizeof der) != 0 || info.Tag != 16 || info.Length != 3 ||
      info.Contents != der + 2)
    return 1;
  std::puts("consumer: ok");
  return 0;
}
