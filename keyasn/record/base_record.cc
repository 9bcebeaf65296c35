#include "keyasn/record/base_record.h"

#include <cstdint>
#include <cstring>
#include <utility>

#include "keyasn/codec/decoder.h"
#include "keyasn/codec/encoder.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/octets.h"
#include "keyasn/codec/tags.h"
#include "keyasn/record/record_octets.h"
#include "keyasn/record/whole_element.h"
#include "keyasn/support/status.h"

namespace {

using namespace keyasn::detail::tags;

constexpr char kWhereReadAsnInfo[] = "CASNTBaseRecord::ReadASNInfo";
constexpr char kWhereReadData[] = "CASNTBaseRecord::ReadData";
constexpr char kWhereWriteData[] = "CASNTBaseRecord::WriteData";

constexpr unsigned int kIndefinite = 0xFFFFFFFFu;
constexpr unsigned int kNoPosition = 0xFFFFFFFFu;
constexpr unsigned char kIndefiniteOctet = 0x80;
constexpr unsigned int kMaxFileLengthOctets = 4;

// Reports `code` the library's way: stored when `error` is given, else thrown.
void Fail(int code, const char* where, int* error) {
  if (error) {
    *error = code;
    return;
  }
  throw XRUVStatus(code, where, false);
}

void Succeed(int* error) {
  if (error) *error = keyasn::kOk;
}

// Number of identifier octets of the element at `data` (at least 1), looking at
// no more than `limit` octets.
unsigned int IdentifierOctets(const unsigned char* data, unsigned int limit) {
  if ((data[0] & kHighTagForm) != kHighTagForm) return 1;
  unsigned int i = 1;
  while (i < limit && (data[i] & 0x80)) ++i;
  return i + 1;
}

// Index of the first zero octet in [from, size), or `size` when there is none.
unsigned int FirstZero(const unsigned char* data, unsigned int from, unsigned int size) {
  if (from >= size) return size;
  const void* hit = std::memchr(data + from, 0, size - from);
  return hit ? static_cast<unsigned int>(static_cast<const unsigned char*>(hit) - data) : size;
}

unsigned int Saturate(uint64_t v) {
  return v > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<unsigned int>(v);
}

// Reads one octet at the file's position; false at the end of the file.
bool ReadOctet(const CRUVFile& file, unsigned char* octet) {
  return file.Read(octet, 1) == 1;
}

// The primitive indefinite-contents reader of the file measurement: octets are
// taken one at a time into a 16-bit accumulator updated as (acc * 2) | octet, and
// reading stops after the octet that leaves it zero, or at `end`. The one-bit
// doubling is deliberate and kept for compatibility with existing containers.
// Returns the octets read; `count` is the running count the bound adds to.
uint64_t ReadPrimitiveByAccumulator(const CRUVFile& file, uint64_t start, uint64_t end,
                                    uint64_t count) {
  uint16_t acc = 0;
  uint64_t read = 0;
  while (start + count + read < end) {
    unsigned char octet;
    if (!ReadOctet(file, &octet)) break;
    ++read;
    acc = static_cast<uint16_t>((acc << 1) | octet);
    if (acc == 0) break;
  }
  return read;
}

}  // namespace

namespace keyasn {
namespace detail {

int ParseWholeElement(ASNT_ASN_STRUCT_INFO& header, const unsigned char* data,
                      unsigned int size, unsigned int* headerSize) {
  header = ASNT_ASN_STRUCT_INFO{};
  *headerSize = 0;
  const int code = ASNTGetAsnInfo(header, data, size);
  if (code != kOk) return code;
  const unsigned int h = static_cast<unsigned int>(header.Contents - data);
  *headerSize = h;
  // An indefinite length (0xFFFFFFFF) never fits.
  return h <= size && static_cast<uint64_t>(size - h) >= header.Length ? kOk : kErrTooShort;
}

}  // namespace detail
}  // namespace keyasn

CASNTBaseRecord::CASNTBaseRecord() : header(), entry(), encoded() {}

unsigned int CASNTBaseRecord::GetTag() const { return header.Tag; }

void CASNTBaseRecord::SetTag(unsigned int tag) { header.Tag = tag; }

bool CASNTBaseRecord::GetIsConstraction() const { return header.Constructed != 0; }

void CASNTBaseRecord::SetIsConstraction(unsigned char constructed) {
  header.Constructed = constructed ? 0x20 : 0;
}

unsigned char CASNTBaseRecord::GetClass() const { return header.Class; }

void CASNTBaseRecord::SetClass(short tagClass) {
  header.Class = static_cast<unsigned char>(tagClass);
}

unsigned int CASNTBaseRecord::GetEntrySize() const { return header.Length; }

CASNTBaseRecord::CASNTBaseRecord(const CASNTBaseRecord& other) : header(), entry(), encoded() {
  CASNTBaseRecord::operator=(other);
}

CASNTBaseRecord::~CASNTBaseRecord() = default;

CASNTBaseRecord& CASNTBaseRecord::operator=(const CASNTBaseRecord& other) {
  if (this == &other) return *this;
  encoded = other.encoded;
  entry = other.entry;
  if (encoded.Count() != 0) {
    // Re-parsed from the own copy so that Contents points into this record's buffer.
    (void)ASNTGetAsnInfo(header, encoded.GetData(), encoded.Count());
  } else {
    header = other.header;
  }
  return *this;
}

bool CASNTBaseRecord::IsUnit() const { return false; }

void CASNTBaseRecord::SetEntry(const void* data, unsigned int size) {
  entry.Assign(data, size);  // copied before `encoded` goes: `data` may point into it
  encoded.Empty();
}

void CASNTBaseRecord::SetEntry(const IdentObj& value) {
  entry = value;
  encoded.Empty();
}

int CASNTBaseRecord::SetEncodedEntry(const IdentObj& encoding) {
  const int code = ASNTGetAsnInfo(header, encoding.GetData(), encoding.Count());
  if (code != keyasn::kOk) return code;
  const size_t contentsOffset = header.Contents - encoding.GetData();
  encoded = encoding;
  entry.Empty();
  header.Contents = encoded.GetData() + contentsOffset;
  return keyasn::kOk;
}

const IdentObj& CASNTBaseRecord::GetRecord(int* error) const {
  if (entry.Count() != 0) return entry;
  if (encoded.Count() == 0) {
    // Nothing to re-parse: decode the header's type over empty contents rather
    // than through a contents pointer that may outlive its buffer.
    ASNT_ASN_STRUCT_INFO empty = header;
    empty.Contents = nullptr;
    empty.Length = 0;
    entry = ASNTLowDecodeData(empty, nullptr, 0, error);
    return entry;
  }
  const int code = ASNTGetAsnInfo(header, encoded.GetData(), encoded.Count());
  if (code != keyasn::kOk) {
    if (error) *error = code;
    return entry;
  }
  // An encoding set from outside may declare more contents than it holds.
  const uint64_t end = static_cast<uint64_t>(header.Contents - encoded.GetData()) + header.Length;
  if (end > encoded.Count()) {
    if (error) *error = keyasn::kErrMalformed;
    return entry;
  }
  entry = ASNTLowDecodeData(header, header.Contents, header.Length, error);
  return entry;
}

const IdentObj& CASNTBaseRecord::GetEncodedRecord(int* error) const {
  if (encoded.Count() == 0) {
    encoded = ASNTLowEncodeData(header, entry.GetData(), entry.Count(), error);
  }
  return encoded;
}

unsigned int CASNTBaseRecord::GetObjectSize() const {
  if (encoded.Count() != 0) return encoded.Count();
  int code = keyasn::kOk;
  GetEncodedRecord(&code);
  return code != keyasn::kOk ? 0 : encoded.Count();
}

IdentObj CASNTBaseRecord::WriteTag() const {
  unsigned char octets[keyasn::detail::kMaxIdentifierOctets];
  const unsigned int n = keyasn::detail::PutIdentifier(
      octets, static_cast<unsigned char>(header.Class | header.Constructed), header.Tag);
  return IdentObj(octets, n);
}

IdentObj CASNTBaseRecord::EncodeSize(unsigned int length) const {
  unsigned char octets[keyasn::detail::kMaxSizeOctets];
  return IdentObj(octets, keyasn::detail::PutSizeOctets(octets, length));
}

unsigned int CASNTBaseRecord::ReadASNInfo(const void* data, unsigned int size,
                                          int* error) const {
  header = ASNT_ASN_STRUCT_INFO{};
  const unsigned char* octets = static_cast<const unsigned char*>(data);
  const int code = ASNTGetAsnInfo(header, octets, size);
  if (code != keyasn::kOk) {
    Fail(code, kWhereReadAsnInfo, error);
    return 0;
  }
  Succeed(error);
  return static_cast<unsigned int>(header.Contents - octets);
}

unsigned int CASNTBaseRecord::ReadASNInfo(const CRUVFile& file, unsigned int position,
                                          int* error) const {
  header = ASNT_ASN_STRUCT_INFO{};
  const uint64_t fileLength = file.Length();
  // The position only bounds the reads; "no position" counts the bound from 0.
  const uint64_t bound = position == kNoPosition ? 0 : position;
  unsigned int count = 0;
  int code = keyasn::kOk;
  unsigned char octet = 0;
  if (position != kNoPosition && bound >= fileLength) {
    code = keyasn::kErrTooShort;
  } else if (!ReadOctet(file, &octet)) {
    code = keyasn::kErrMalformed;  // no identifier octet at the end of the file
  } else {
    ++count;
    header.Class = octet & 0xC0;
    header.Constructed = octet & 0x20;
    header.Tag = octet & kHighTagForm;
    if (header.Tag == kHighTagForm) {
      header.Tag = 0;
      unsigned char previous = octet;
      for (;;) {
        if (bound + count > fileLength) {
          if (previous & 0x80) code = keyasn::kErrBadIdentifier;
          break;
        }
        if (!ReadOctet(file, &octet)) {
          code = keyasn::kErrBadIdentifier;  // the file ends inside the tag number
          break;
        }
        ++count;
        header.Tag = header.Tag * 128 + (octet & 0x7F);
        previous = octet;
        if (octet < 0x80) break;
      }
    }
    if (code == keyasn::kOk) {
      if (!ReadOctet(file, &octet)) {
        code = keyasn::kErrMalformed;  // no length octet
      } else {
        ++count;
        if (octet < 0x80) {
          header.Length = octet;
        } else if (octet == kIndefiniteOctet) {
          header.Length = kIndefinite;
        } else {
          const unsigned int n = octet - 0x80u;
          unsigned int length = 0;
          if (n > kMaxFileLengthOctets) code = keyasn::kErrMalformed;
          for (unsigned int i = 0; code == keyasn::kOk && i < n; ++i) {
            if (bound + count == fileLength || !ReadOctet(file, &octet)) {
              code = keyasn::kErrMalformed;
              break;
            }
            ++count;
            length = (length << 8) | octet;
          }
          header.Length = length;
        }
      }
    }
  }
  if (code != keyasn::kOk) {
    header = ASNT_ASN_STRUCT_INFO{};
    Fail(code, kWhereReadAsnInfo, error);
    return count;
  }
  Succeed(error);
  return count;
}

unsigned int CASNTBaseRecord::ReadData(const void* data, unsigned int size, int* error) {
  unsigned int h = 0;
  const int code = keyasn::detail::ParseWholeElement(
      header, static_cast<const unsigned char*>(data), size, &h);
  if (code == keyasn::kOk) {
    const unsigned int total = h + header.Length;
    encoded.Assign(data, total);
    entry.Empty();
    header.Contents = encoded.GetData() + h;
    Succeed(error);
    return total;
  }
  header = ASNT_ASN_STRUCT_INFO{};
  // The place names the header reader on purpose: callers match on it.
  Fail(code, kWhereReadAsnInfo, error);
  return h;
}

unsigned int CASNTBaseRecord::ReadData(const CRUVFile& file, unsigned int position,
                                       int* error) {
  int code = keyasn::kOk;
  const unsigned int h = ReadASNInfo(file, position, &code);
  unsigned int count = h;
  if (code == keyasn::kOk) {
    // An empty element leaves the buffers as they were and the file after the
    // header: kept for compatibility.
    if (header.Length == 0) {
      Succeed(error);
      return h;
    }
    if (header.Length == kIndefinite) {
      // The size of indefinite contents is not known here; callers measure them
      // with GetContecstSpecSize.
      code = keyasn::kErrTooShort;
    } else {
      // Back to the header's first octet: a relative move of 2^32 - h.
      file.Seek(static_cast<long>(0x100000000ull - h), 1);
      const uint64_t need = static_cast<uint64_t>(h) + header.Length;
      const uint64_t here = file.CurPos();
      const uint64_t fileLength = file.Length();
      const uint64_t available = fileLength > here ? fileLength - here : 0;
      if (need > available) {
        // Short: the read would stop at the end of the file. Nothing is
        // allocated for a length the file cannot hold.
        file.Seek(static_cast<long>(here + available), 0);
        count = static_cast<unsigned int>(available);
        code = keyasn::kErrShortRead;
      } else {
        IdentObj buffer(nullptr, static_cast<unsigned int>(need));
        count = file.Read(buffer.GetData(), buffer.Count());
        if (count < need) {
          code = keyasn::kErrShortRead;
        } else {
          encoded = std::move(buffer);
          entry.Empty();
          header.Contents = encoded.GetData() + count - header.Length;
          Succeed(error);
          return count;
        }
      }
    }
  }
  header = ASNT_ASN_STRUCT_INFO{};
  Fail(code, kWhereReadData, error);
  return count;
}

unsigned int CASNTBaseRecord::GetContecstSpecSize(const unsigned char* data, unsigned int size,
                                                  unsigned char constructed, int* error) {
  Succeed(error);
  if (!constructed) {
    if (size == 0 || !data) return 0;
    const unsigned int k = FirstZero(data, 0, size);
    // The second end-of-contents octet is assumed, not examined.
    return k == size ? size : k + 2;
  }
  CASNTBaseRecord record;
  int depth = 0;
  uint64_t o = 0;
  try {
    for (;;) {
      const unsigned int at = static_cast<unsigned int>(o);
      const unsigned int h = record.ReadASNInfo(data + at, size - at, nullptr);
      o += h;
      if (record.header.Constructed && record.header.Length == kIndefinite) {
        ++depth;
        if (o >= size) return Saturate(o);
        continue;
      }
      // The header parser gives a primitive element in the indefinite form the
      // length up to its end-of-contents pair; it is measured here the same way as
      // in a file, from its length octet.
      const unsigned int idSize = IdentifierOctets(data + at, h);
      const bool indefiniteForm = idSize < h && data[at + idSize] == kIndefiniteOctet;
      if (!record.header.Constructed && (indefiniteForm || record.header.Length == kIndefinite)) {
        // Its contents run to the first zero octet, whose partner is taken as read.
        if (o < size) {
          const unsigned int zero = FirstZero(data, static_cast<unsigned int>(o), size);
          o = zero == size ? size : static_cast<uint64_t>(zero) + 2;
        }
      } else {
        o += record.header.Length;
      }
      while (o < size && data[o] == 0) {
        --depth;
        o += 2;
        if (depth < 0) return Saturate(o);
      }
      if (o >= size) return Saturate(o);
    }
  } catch (const XRUVStatus& status) {
    if (!error) throw;
    *error = status.Status();
    return Saturate(o);
  }
}

unsigned int CASNTBaseRecord::GetContecstSpecSize(const CRUVFile& file, unsigned char constructed,
                                                  int* error) {
  Succeed(error);
  const uint64_t start = file.CurPos();
  const uint64_t end = file.Length();
  uint64_t c = 0;
  try {
    if (!constructed) {
      c = ReadPrimitiveByAccumulator(file, start, end, 0);
      file.Seek(static_cast<long>(start), 0);
      return Saturate(c);
    }
    if (start >= end) return 0;
    CASNTBaseRecord record;
    int depth = 0;
    for (;;) {
      c += record.ReadASNInfo(file, kNoPosition, nullptr);
      if (record.header.Length == kIndefinite && record.header.Constructed) {
        ++depth;
      } else {
        if (record.header.Length == kIndefinite) {
          c += ReadPrimitiveByAccumulator(file, start, end, c);
        } else {
          c += record.header.Length;
          // Contents that run past the end leave the position there; the
          // end-of-contents read below then comes up short.
          file.Seek(static_cast<long>(start + c < end ? start + c : end), 0);
        }
        for (;;) {
          unsigned char pair[2];
          if (file.Read(pair, 2) < 2) throw XRUVStatus(keyasn::kErrMalformed, file.FileName(), false);
          if (pair[0] != 0 || pair[1] != 0) {
            file.Seek(static_cast<long>(0x100000000ull - 2), 1);
            break;
          }
          --depth;
          c += 2;
          if (depth < 0) {
            file.Seek(static_cast<long>(start), 0);
            return Saturate(c);
          }
        }
      }
      if (start + c >= end) {
        file.Seek(static_cast<long>(start), 0);
        return Saturate(c);
      }
    }
  } catch (const XRUVStatus& status) {
    file.Seek(static_cast<long>(start), 0);
    if (!error) throw;
    *error = status.Status();
    return Saturate(c);
  }
}

unsigned int CASNTBaseRecord::WriteData(void* buffer, unsigned int size, int* error) const {
  int code = keyasn::kOk;
  if (encoded.Count() == 0) GetEncodedRecord(&code);
  if (code == keyasn::kOk) {
    if (buffer && encoded.Count() <= size) {
      if (encoded.Count() != 0) std::memcpy(buffer, encoded.GetData(), encoded.Count());
      Succeed(error);
      return encoded.Count();
    }
    code = keyasn::kErrTooShort;
  }
  Fail(code, kWhereWriteData, error);
  return 0;
}

IdentObj CASNTBaseRecord::WriteData(int* error) const {
  IdentObj buffer(nullptr, GetObjectSize());
  WriteData(buffer.GetData(), buffer.Count(), error);
  return buffer;
}

unsigned int CASNTBaseRecord::WriteData(CRUVFile& file, unsigned int position, int* error) const {
  int code = keyasn::kOk;
  unsigned int result = 0;
  if (position != kNoPosition && position > file.Length()) {
    code = keyasn::kErrTooShort;
  } else {
    if (position != kNoPosition) file.Seek(static_cast<long>(position), 0);
    const IdentObj encoding = WriteData(&code);
    if (code == keyasn::kOk) {
      if (file.Write(encoding.GetData(), encoding.Count()) < encoding.Count()) {
        code = keyasn::kErrShortWrite;
      } else {
        result = encoding.Count();
      }
    }
  }
  if (code != keyasn::kOk) {
    Fail(code, kWhereWriteData, error);
    return 0;
  }
  Succeed(error);
  return result;
}
