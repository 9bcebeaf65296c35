// CASNTBaseRecord: one element read from a buffer and from a file, its header
// readers, the measuring of indefinite-length contents (buffer and file), and its
// writers (buffer, new buffer, file), with copies and values set by the caller.
#include <cstring>

#include "fuzz/fuzz_support.h"
#include "keyasn/codec/header.h"
#include "keyasn/record/base_record.h"
#include "keyasn/support/file.h"

namespace {

using keyasn_fuzz::Guard;
using keyasn_fuzz::Input;
using keyasn_fuzz::IsLibraryCode;
using keyasn_fuzz::Same;
using keyasn_fuzz::ScratchFile;

bool CodeOk(int code) { return code == 0 || IsLibraryCode(code); }

// A record read from a buffer holds exactly the octets it reports, and writes
// them back unchanged through every writer.
void ReadFromBuffer(const uint8_t* data, size_t size) {
  const unsigned int n = keyasn_fuzz::Size32(size);
  CASNTBaseRecord record;
  int code = -1;
  const unsigned int used = record.ReadData(data, n, &code);
  KEYASN_FUZZ_CHECK(CodeOk(code));
  KEYASN_FUZZ_CHECK(used <= n);
  int raised = Guard([&] {
    CASNTBaseRecord other;
    other.ReadData(data, n, nullptr);
  });
  KEYASN_FUZZ_CHECK(raised == code);
  if (code != 0) return;

  KEYASN_FUZZ_CHECK(record.GetEntrySize() != 0xFFFFFFFFu);
  int written = -1;
  IdentObj encoding = record.WriteData(&written);
  KEYASN_FUZZ_CHECK(written == 0 && Same(encoding, data, used));
  KEYASN_FUZZ_CHECK(record.GetObjectSize() == used);
  KEYASN_FUZZ_CHECK(Same(record.GetEncodedRecord(nullptr), data, used));

  // A copy re-parses its own buffer and decodes to the same value.
  CASNTBaseRecord copy(record);
  int decoded = -1;
  IdentObj value = record.GetRecord(&decoded);
  KEYASN_FUZZ_CHECK(decoded == 0 || decoded == 115 || decoded == 206);
  int copyDecoded = -1;
  KEYASN_FUZZ_CHECK(copy.GetRecord(&copyDecoded) == value && copyDecoded == decoded);
  KEYASN_FUZZ_CHECK(copy.GetTag() == record.GetTag() && copy.GetClass() == record.GetClass());
  CASNTBaseRecord assigned;
  assigned = copy;
  KEYASN_FUZZ_CHECK(Same(assigned.WriteData(nullptr), data, used));

  // Into a caller's buffer: exactly large enough, one octet short, none.
  std::vector<uint8_t> exact(used);
  int bufferCode = -1;
  KEYASN_FUZZ_CHECK(record.WriteData(exact.data(), used, &bufferCode) == used);
  KEYASN_FUZZ_CHECK(bufferCode == 0 && std::memcmp(exact.data(), data, used) == 0);
  if (used > 0) {
    std::vector<uint8_t> small(used - 1, 0xEE);
    KEYASN_FUZZ_CHECK(record.WriteData(small.data(), used - 1, &bufferCode) == 0);
    KEYASN_FUZZ_CHECK(bufferCode == 37);
    for (uint8_t octet : small) KEYASN_FUZZ_CHECK(octet == 0xEE);
  }
  KEYASN_FUZZ_CHECK(record.WriteData(nullptr, used, &bufferCode) == 0 && bufferCode == 37);

  // Into a file, then read back from it.
  {
    CRUVFile out(ScratchFile::Path(), "wb");
    int fileCode = -1;
    KEYASN_FUZZ_CHECK(record.WriteData(out, 0xFFFFFFFFu, &fileCode) == used);
    KEYASN_FUZZ_CHECK(fileCode == 0);
  }
  std::vector<uint8_t> back = ScratchFile::Read();
  KEYASN_FUZZ_CHECK(back.size() == used && (used == 0 || std::memcmp(back.data(), data, used) == 0));
}

// The header readers agree with the parser on a buffer.
void ReadHeaders(const uint8_t* data, size_t size) {
  const unsigned int n = keyasn_fuzz::Size32(size);
  CASNTBaseRecord record;
  int code = -1;
  const unsigned int h = record.ReadASNInfo(data, n, &code);
  ASNT_ASN_STRUCT_INFO info;
  const int parsed = ASNTGetAsnInfo(info, data, n);
  KEYASN_FUZZ_CHECK(code == parsed);
  if (code == 0) {
    KEYASN_FUZZ_CHECK(h == static_cast<unsigned int>(info.Contents - data));
    KEYASN_FUZZ_CHECK(record.GetTag() == info.Tag && record.GetEntrySize() == info.Length);
  } else {
    KEYASN_FUZZ_CHECK(h == 0);
  }
}

// Measuring indefinite-length contents never reads outside the buffer.
void Measure(const uint8_t* data, size_t size) {
  const unsigned int n = keyasn_fuzz::Size32(size);
  for (unsigned char constructed : {0x00, 0x20}) {
    int code = -1;
    (void)CASNTBaseRecord::GetContecstSpecSize(data, n, constructed, &code);
    KEYASN_FUZZ_CHECK(CodeOk(code));
    (void)Guard([&] { (void)CASNTBaseRecord::GetContecstSpecSize(data, n, constructed, nullptr); });
  }
}

// The file forms: the whole element, the header, and the measuring (which must
// leave the position where it was).
void ReadFromFile(const uint8_t* data, size_t size, unsigned int position) {
  ScratchFile::Write(data, size);
  const unsigned int n = keyasn_fuzz::Size32(size);
  CRUVFile file(ScratchFile::Path(), "rb");
  {
    CASNTBaseRecord record;
    int code = -1;
    const unsigned int used = record.ReadData(file, position, &code);
    KEYASN_FUZZ_CHECK(CodeOk(code));
    KEYASN_FUZZ_CHECK(used <= n);
    if (code == 0 && record.GetEntrySize() != 0) {
      KEYASN_FUZZ_CHECK(Same(record.GetEncodedRecord(nullptr), data, used));
      KEYASN_FUZZ_CHECK(file.CurPos() == used);
      int decoded = -1;
      (void)record.GetRecord(&decoded);
      KEYASN_FUZZ_CHECK(decoded == 0 || decoded == 115 || decoded == 206);
    }
  }
  {
    file.Seek(0, 0);
    CASNTBaseRecord record;
    int code = -1;
    const unsigned int h = record.ReadASNInfo(file, position, &code);
    KEYASN_FUZZ_CHECK(CodeOk(code));
    KEYASN_FUZZ_CHECK(h <= n && file.CurPos() == h);
    file.Seek(0, 0);
    (void)Guard([&] { (void)record.ReadASNInfo(file, position, nullptr); });
  }
  for (unsigned char constructed : {0x00, 0x20}) {
    const unsigned int skip = n ? position % (n + 1) : 0;
    file.Seek(skip, 0);
    int code = -1;
    (void)CASNTBaseRecord::GetContecstSpecSize(file, constructed, &code);
    KEYASN_FUZZ_CHECK(CodeOk(code));
    KEYASN_FUZZ_CHECK(file.CurPos() == skip);
    (void)Guard([&] { (void)CASNTBaseRecord::GetContecstSpecSize(file, constructed, nullptr); });
    KEYASN_FUZZ_CHECK(file.CurPos() == skip);
  }
}

// A value set by the caller: the size reported matches the encoding, and an
// encoding that parses is read back to the same octets.
void SetValue(const uint8_t* data, size_t size) {
  Input in(data, size);
  const uint8_t first = in.Byte();
  const uint8_t number = in.Byte();
  std::vector<uint8_t> value = in.Take(in.Byte());
  CASNTBaseRecord record;
  record.SetClass(first & 0xC0);
  record.SetIsConstraction(first & 0x20);
  record.SetTag(number & 0x80 ? number : number & 0x1F);
  record.SetEntry(value.data(), keyasn_fuzz::Size32(value.size()));
  const unsigned int objectSize = record.GetObjectSize();
  int code = -1;
  IdentObj encoding = record.WriteData(&code);
  KEYASN_FUZZ_CHECK(encoding.Count() == objectSize);
  KEYASN_FUZZ_CHECK(CodeOk(code));
  if (objectSize == 0) return;
  // A time or string value given without octets is written with its length octets
  // alone; only a complete element reads back.
  ASNT_ASN_STRUCT_INFO info;
  if (ASNTGetAsnInfo(info, encoding.GetData(), encoding.Count()) != 0 ||
      info.Contents + info.Length != encoding.GetData() + encoding.Count())
    return;
  CASNTBaseRecord back;
  int readCode = -1;
  KEYASN_FUZZ_CHECK(back.ReadData(encoding.GetData(), encoding.Count(), &readCode) ==
                    encoding.Count());
  KEYASN_FUZZ_CHECK(readCode == 0);
  KEYASN_FUZZ_CHECK(back.WriteData(nullptr) == encoding);
  KEYASN_FUZZ_CHECK(back.GetTag() == record.GetTag() && back.GetClass() == record.GetClass());
  // Setting the encoding clears the value, and the other way round.
  CASNTBaseRecord swapped;
  KEYASN_FUZZ_CHECK(swapped.SetEncodedEntry(encoding) == 0);
  KEYASN_FUZZ_CHECK(swapped.GetObjectSize() == encoding.Count());
}

}  // namespace

KEYASN_FUZZ_TARGET(record) {
  ReadFromBuffer(data, size);
  ReadHeaders(data, size);
  Measure(data, size);
  Input in(data, size);
  const uint8_t choice = in.Byte();
  const unsigned int position = choice & 1 ? 0xFFFFFFFFu : (choice >> 1) % 8;
  ReadFromFile(data, keyasn_fuzz::FileFormSize(size), position);
  SetValue(data, size);
}
