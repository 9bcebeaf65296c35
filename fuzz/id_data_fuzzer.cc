// CASNTIdData and ASNAlgorithmIdentifier: read from a buffer and from a file,
// written to a buffer and to a file, compared.
#include "fuzz/fuzz_support.h"
#include "fuzz/structure_check.h"
#include "keyasn/keys/id_data.h"
#include "keyasn/support/file.h"

namespace {

using keyasn_fuzz::Guard;
using keyasn_fuzz::IsLibraryCode;
using keyasn_fuzz::ScratchFile;

}  // namespace

KEYASN_FUZZ_TARGET(id_data) {
  const unsigned int n = keyasn_fuzz::Size32(size);
  const bool read = keyasn_fuzz::CheckStable<CASNTIdData>(
      data, size, [] { return CASNTIdData(); },
      [](CASNTIdData& id, const uint8_t* d, unsigned int s) {
        int err = 0;
        id.ReadData(d, s, &err);
        return err;
      },
      [](const CASNTIdData& id) {
        int err = 0;
        IdentObj out = id.WriteData(&err);
        KEYASN_FUZZ_CHECK(err == 0 || IsLibraryCode(err));
        return out;
      });

  ASNAlgorithmIdentifier algorithm;
  int err = 0;
  const unsigned int used = algorithm.ReadData(data, n, &err);
  KEYASN_FUZZ_CHECK(err == 0 || IsLibraryCode(err));
  KEYASN_FUZZ_CHECK(used <= n || err != 0);
  KEYASN_FUZZ_CHECK(read == (err == 0));
  const int raised = Guard([&] {
    ASNAlgorithmIdentifier other;
    other.ReadData(data, n, nullptr);
  });
  KEYASN_FUZZ_CHECK(raised == err);
  const IdentObj objectId = algorithm.GetObjID();
  const IdentObj addInfo = algorithm.GetAddInfo();
  ASNAlgorithmIdentifier copy(algorithm);
  KEYASN_FUZZ_CHECK(copy == algorithm && !(copy != algorithm));
  KEYASN_FUZZ_CHECK(copy.GetObjID() == objectId && copy.GetAddInfo() == addInfo);
  (void)(copy < algorithm);
  (void)(copy > algorithm);
  unsigned int objectSize = 0;
  (void)Guard([&] { objectSize = algorithm.GetObjectSize(); });

  // Through a file: written, then read back.
  if (read) {
    {
      CRUVFile out(ScratchFile::Path(), "wb");
      int fileErr = 0;
      const unsigned int written = algorithm.WriteData(out, &fileErr);
      KEYASN_FUZZ_CHECK(fileErr == 0 && written == objectSize);
    }
    CRUVFile in(ScratchFile::Path(), "rb");
    ASNAlgorithmIdentifier back;
    int backErr = 0;
    back.ReadData(in, &backErr);
    KEYASN_FUZZ_CHECK(backErr == 0 || IsLibraryCode(backErr));
    // Parameters kept as they stood may not read again (see CheckStable).
    if (backErr == 0) KEYASN_FUZZ_CHECK(back.WriteData(nullptr) == algorithm.WriteData(nullptr));
  }
  // The input itself as a file.
  ScratchFile::Write(data, keyasn_fuzz::FileFormSize(size));
  CRUVFile in(ScratchFile::Path(), "rb");
  ASNAlgorithmIdentifier fromFile;
  int fileErr = 0;
  (void)fromFile.ReadData(in, &fileErr);
  KEYASN_FUZZ_CHECK(fileErr == 0 || IsLibraryCode(fileErr));
  (void)Guard([&] { (void)fromFile.WriteData(nullptr); });
}
