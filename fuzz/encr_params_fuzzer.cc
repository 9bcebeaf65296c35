// CASNEncrParams: the DER reader and writer, and the fixed-size binary form read
// by GetFromDsdr; what is read is written, read and written the same way again.
#include <vector>

#include "fuzz/fuzz_support.h"
#include "fuzz/structure_check.h"
#include "keyasn/keys/encr_params.h"

namespace {

IdentObj Written(CASNEncrParams& params) {
  const std::vector<unsigned char> out = params.WriteData();
  return IdentObj(out.data(), keyasn_fuzz::Size32(out.size()));
}

// Codes of the reader: the library's table; 16 (a standard exception caught)
// would mean an allocation or range failure inside, which no input may cause.
bool ReaderCode(int code) { return code == 0 || keyasn_fuzz::IsLibraryCode(code); }

}  // namespace

KEYASN_FUZZ_TARGET(encr_params) {
  keyasn_fuzz::CheckStable<CASNEncrParams>(
      data, size, [] { return CASNEncrParams(); },
      [](CASNEncrParams& params, const uint8_t* d, unsigned int s) {
        const int code = params.ReadData(d, s);
        KEYASN_FUZZ_CHECK(ReaderCode(code));
        return code;
      },
      [](const CASNEncrParams& params) {
        CASNEncrParams copy(params);
        return Written(copy);
      });

  CASNEncrParams binary;
  const int code = binary.GetFromDsdr(data, keyasn_fuzz::Size32(size));
  KEYASN_FUZZ_CHECK(code == 0 || code == 134);
  if (size < 70) KEYASN_FUZZ_CHECK(code == 134);
  if (code != 0) return;
  KEYASN_FUZZ_CHECK(binary.substitutionBox.size() == 64);
  const IdentObj written = Written(binary);
  KEYASN_FUZZ_CHECK(written.Count() > 0);
  CASNEncrParams back;
  KEYASN_FUZZ_CHECK(back.ReadData(written.GetData(), written.Count()) == 0);
  KEYASN_FUZZ_CHECK(back.paramSetOid == binary.paramSetOid);
  KEYASN_FUZZ_CHECK(back.substitutionBox == binary.substitutionBox);
  KEYASN_FUZZ_CHECK(back.mode == binary.mode && back.shiftBits == binary.shiftBits);
  KEYASN_FUZZ_CHECK(back.keyMeshingOid == binary.keyMeshingOid);
  KEYASN_FUZZ_CHECK(Written(back) == written);
}
