// What every reader of the key structures and the encryption parameters reports
// at each step that can fail: the count it returns (the octets its steps had added
// before the failing test), the code, and the place text of the XRUVStatus it
// raises. One row per failing step, in the order the reader takes its steps.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "keyasn/codec/error_codes.h"
#include "keyasn/keys/alg_add_info.h"
#include "keyasn/keys/container_info.h"
#include "keyasn/keys/cryptoki.h"
#include "keyasn/keys/encr_params.h"
#include "keyasn/keys/encrypted_key.h"
#include "keyasn/keys/ephemeral_key.h"
#include "keyasn/keys/export_key.h"
#include "keyasn/keys/id_data.h"
#include "keyasn/keys/key_info.h"
#include "keyasn/keys/key_record.h"
#include "keyasn/keys/public_key_info.h"
#include "keyasn/support/file.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::Failure;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::Octets;
using keyasn::testing::Raised;
using keyasn::testing::Size;
using keyasn::testing::TempFile;
using keyasn::testing::ToHex;

constexpr int kUntouched = -12345;
constexpr int kMalformed = keyasn::kErrMalformed;
constexpr int kBadIdentifier = keyasn::kErrBadIdentifier;
constexpr int kTooShort = keyasn::kErrTooShort;

// Place texts raised from below the key structures.
constexpr char kHeaderPlace[] = "CASNTBaseRecord::ReadASNInfo";
constexpr char kSplitPlace[] = "ASNTGetSequence";

// A reader that reports through an error pointer: with one, `count` is returned and
// `code` stored; without one, the same input raises `code` at `where`.
struct CountRow {
  const char* step;
  const char* input;
  unsigned int count;
  int code;
  const char* where;
};

// A reader that reports by exception only.
struct ThrowRow {
  const char* step;
  const char* input;
  int code;
  const char* where;
};

// CheckCounts runs every row through `read(reader, data, size, err)` on fresh
// readers, once with an error pointer and once without.
template <class Reader, class Read>
void CheckCounts(const std::vector<CountRow>& rows, Read read) {
  for (const CountRow& row : rows) {
    SCOPED_TRACE(std::string(row.step) + ": " + row.input);
    const Octets input = HexBytes(row.input);
    {
      Reader reader;
      int err = kUntouched;
      EXPECT_EQ(read(reader, input.data(), Size(input), &err), row.count);
      EXPECT_EQ(err, row.code);
    }
    Reader reader;
    const Failure failure = Raised([&] { read(reader, input.data(), Size(input), nullptr); });
    EXPECT_EQ(failure.code, row.code);
    EXPECT_EQ(failure.where, row.where);
  }
}

// Fresh returns a newly constructed reader.
template <class Reader>
Reader Fresh() {
  return Reader();
}
template <>
CASNEncryptedKey Fresh<CASNEncryptedKey>() {
  return CASNEncryptedKey(nullptr, 0, nullptr, 0);
}

template <class Reader, class Read>
void CheckThrows(const std::vector<ThrowRow>& rows, Read read) {
  for (const ThrowRow& row : rows) {
    SCOPED_TRACE(std::string(row.step) + ": " + row.input);
    const Octets input = HexBytes(row.input);
    Reader reader = Fresh<Reader>();
    const Failure failure = Raised([&] { read(reader, input.data(), Size(input)); });
    EXPECT_EQ(failure.code, row.code);
    EXPECT_EQ(failure.where, row.where);
  }
}

// ---------------------------------------------------------------------------
// Identifier data from a buffer (ASNAlgorithmIdentifier inherits the reader).

TEST(ReaderCounts, IdDataFromBuffer) {
  CheckCounts<ASNAlgorithmIdentifier>(
      {
          {"1: outer header cut short", "30", 0, kMalformed, kHeaderPlace},
          {"1: outer not a SEQUENCE", "31 03 06 01 2A", 2, kMalformed, "CASNTIdData::ReadData"},
          {"2: identifier element cut short", "30 03 06 05 2A", 2, kTooShort, kHeaderPlace},
          // The identifier element's octets are added before its tag is tested.
          {"2: identifier not an OBJECT IDENTIFIER", "30 03 02 01 05", 5, kMalformed,
           "CASNTIdData::ReadData"},
          {"2: identifier in a tag form that never ends", "30 03 1F 86 86", 2, kBadIdentifier,
           kHeaderPlace},
          {"4: parameters header cut short", "30 04 06 01 2A 04", 5, kMalformed, kHeaderPlace},
          {"4: indefinite parameters that cannot be measured", "30 06 06 01 2A 30 80 02", 5,
           kMalformed, kHeaderPlace},
          // The parameters are refused before their octets would be added.
          {"4: parameters run past the data", "30 06 06 01 2A 04 05 FF", 5, kMalformed,
           "CASNTIdData::ReadData"},
      },
      [](ASNAlgorithmIdentifier& id, const unsigned char* data, unsigned int size, int* err) {
        return id.ReadData(data, size, err);
      });
}

// The case, on the base class as well: the count covers the INTEGER.
TEST(ReaderCounts, IdDataCountsTheIdentifierBeforeItsTag) {
  const Octets input = HexBytes("30 03 02 01 05");
  CASNTIdData base;
  int err = kUntouched;
  EXPECT_EQ(base.ReadData(input.data(), Size(input), &err), 5u);
  EXPECT_EQ(err, kMalformed);
}

// ---------------------------------------------------------------------------
// Identifier data from a file. A null `where` stands for the file's own name.

TEST(ReaderCounts, IdDataFromFile) {
  const CountRow rows[] = {
      {"1: outer length field of five octets", "30 85 00 00 00 00 03 06 01 2A", 0, kMalformed,
       kHeaderPlace},
      {"1: outer not a SEQUENCE", "31 03 06 01 2A", 2, kMalformed, "CASNTIdData::ReadData"},
      // A cut-short end-of-contents pair is reported under the file's name.
      {"2: indefinite contents that cannot be measured", "30 80 06 01 2A", 2, kMalformed,
       nullptr},
      {"3: contents run past the end of the file", "30 10 06 01 2A", 2, kTooShort,
       "CASNTIdData::ReadData"},
      // From here on the count is the header plus what the file gave.
      {"4: identifier element cut short", "30 02 06 05", 4, kTooShort, kHeaderPlace},
      {"4: identifier not an OBJECT IDENTIFIER", "30 03 02 01 05", 5, kMalformed,
       "CASNTIdData::ReadData"},
      {"5: parameters header in no octets", "30 03 06 01 2A", 5, kMalformed, kHeaderPlace},
      {"5: indefinite parameters that cannot be measured", "30 06 06 01 2A 30 80 02", 8,
       kMalformed, kHeaderPlace},
      {"5: parameters run past the contents", "30 06 06 01 2A 04 05 FF", 8, kMalformed,
       "CASNTIdData::ReadData"},
  };
  for (const CountRow& row : rows) {
    SCOPED_TRACE(std::string(row.step) + ": " + row.input);
    TempFile file(HexBytes(row.input));
    {
      CRUVFile in(file.path(), "rb");
      ASNAlgorithmIdentifier id;
      int err = kUntouched;
      EXPECT_EQ(id.ReadData(in, &err), row.count);
      EXPECT_EQ(err, row.code);
    }
    CRUVFile in(file.path(), "rb");
    ASNAlgorithmIdentifier id;
    const Failure failure = Raised([&] { id.ReadData(in, nullptr); });
    EXPECT_EQ(failure.code, row.code);
    EXPECT_EQ(failure.where, row.where != nullptr ? std::string(row.where) : file.path());
  }
}

// ---------------------------------------------------------------------------
// Key info: the count is the split's length once the split has succeeded.

TEST(ReaderCounts, KeyInfo) {
  CheckCounts<ASNKeyInfo>(
      {
          // A split that raises leaves nothing kept: the count is 0.
          {"2: outer not constructed", "02 01 05", 0, kBadIdentifier, kSplitPlace},
          {"2: item runs past the data", "30 05 02 01 05 02 05", 0, kMalformed, kSplitPlace},
          {"2: one item only", "30 03 02 01 05", 5, kMalformed,
           "ASNKeyInfo::ReadData ASNTGetSequence"},
          {"3: first item cannot be read", "30 09 30 80 05 00 00 00 02 01 07", 11, kTooShort,
           kHeaderPlace},
          {"3: first item not an INTEGER", "30 06 04 01 05 02 01 07", 8, kMalformed,
           "ASNKeyInfo::ReadData"},
          {"4: second item not an INTEGER", "30 06 02 01 05 04 01 07", 8, kMalformed,
           "ASNKeyInfo::ReadData"},
          // The split keeps a primitive indefinite item without its end-of-contents
          // octets; parsed alone, its header finds no end.
          {"5.1: optional item header", "30 0B 02 01 05 02 01 07 84 80 41 00 00", 13, kMalformed,
           "ASNKeyInfo::ReadData ASNTGetAsnInfo"},
          {"5.2: optional item not context-specific", "30 09 02 01 05 02 01 07 04 01 41", 11,
           kMalformed, "ASNKeyInfo::ReadData"},
          {"5.4 [0]: not identifier data", "30 0D 02 01 05 02 01 07 A0 05 31 03 06 01 2A", 15,
           kMalformed, "CASNTIdData::ReadData"},
          {"5.4 [1]: inner element cut short", "30 09 02 01 05 02 01 07 A1 01 04", 11, kMalformed,
           kHeaderPlace},
          {"5.4 [2]: inner element cut short", "30 09 02 01 05 02 01 07 A2 01 04", 11, kMalformed,
           kHeaderPlace},
          {"5.4 [3]: inner element cut short", "30 09 02 01 05 02 01 07 A3 01 04", 11, kMalformed,
           kHeaderPlace},
          {"5.4 [4]: inner element cut short", "30 09 02 01 05 02 01 07 A4 01 04", 11, kMalformed,
           kHeaderPlace},
          {"5.4 [5]: inner element cut short", "30 09 02 01 05 02 01 07 A5 01 04", 11, kMalformed,
           kHeaderPlace},
          {"5.4 [7]: inner element cut short", "30 09 02 01 05 02 01 07 A7 01 04", 11, kMalformed,
           kHeaderPlace},
          {"5.4 [8]: inner element cut short", "30 09 02 01 05 02 01 07 A8 01 04", 11, kMalformed,
           kHeaderPlace},
          {"5.4 [9]: inner element cut short", "30 09 02 01 05 02 01 07 A9 01 04", 11, kMalformed,
           kHeaderPlace},
          {"5.4 [1]: inner element longer than its tag", "30 0A 02 01 05 02 01 07 A1 02 04 05", 12,
           kTooShort, kHeaderPlace},
      },
      [](ASNKeyInfo& ki, const unsigned char* data, unsigned int size, int* err) {
        return ki.ReadData(data, size, err);
      });
}

// ---------------------------------------------------------------------------
// Container info: one local code; the count is the split's value plus what the
// first item's read used, and is returned after a failure too.

constexpr char kContainerPlace[] = "ASNContainerInfo::WriteData";  // the reader's too

TEST(ReaderCounts, ContainerInfo) {
  CheckCounts<ASNContainerInfo>(
      {
          {"3: outer header cut short", "30", 0, kMalformed, kContainerPlace},
          // The split reports the offset it reached: the outer header was read.
          {"3: outer not constructed", "02 01 05", 2, kBadIdentifier, kContainerPlace},
          {"3: item runs past the data", "30 05 02 01 05 02 05", 5, kMalformed, kContainerPlace},
          // No items ends the read there, with the split's count and no failure.
          {"3: no items", "30 00", 2, 0, ""},
          // The first item's header octets are added before its read fails.
          {"4: first item cannot be read", "30 06 30 80 05 00 00 00", 10, kTooShort,
           kContainerPlace},
          {"4: first item not an INTEGER", "30 03 04 01 05", 8, kMalformed, kContainerPlace},
          {"4: INTEGER of five octets", "30 07 02 05 01 02 03 04 05", 16, kMalformed,
           kContainerPlace},
          {"6: optional item cannot be read", "30 0D 02 01 03 30 00 30 00 A0 80 05 00 00 00", 18,
           kTooShort, kContainerPlace},
          {"6: optional item not context-specific", "30 0A 02 01 03 30 00 30 00 04 01 41", 15,
           kMalformed, kContainerPlace},
          {"6 [1]: inner value that does not decode", "30 0C 02 01 03 30 00 30 00 A1 03 07 01 41",
           17, keyasn::kErrUnsupported, kContainerPlace},
      },
      [](ASNContainerInfo& ci, const unsigned char* data, unsigned int size, int* err) {
        return ci.ReadData(data, size, err);
      });
}

// The [1] contents are read as one element with no error pointer: that failure is
// raised from the record even when the caller gave one.
TEST(ReaderCounts, ContainerInfoOptional1ContentsRaiseThroughTheErrorPointer) {
  const Octets input = HexBytes("30 0A 02 01 03 30 00 30 00 A1 01 04");
  ASNContainerInfo ci;
  int err = kUntouched;
  const Failure failure = Raised([&] { ci.ReadData(input.data(), Size(input), &err); });
  EXPECT_EQ(failure.code, kMalformed);
  EXPECT_EQ(failure.where, kHeaderPlace);
  EXPECT_EQ(err, kUntouched);
  EXPECT_EQ(ci.Version, 3u);
  EXPECT_EQ(ToHex(ci.KeyInfo), "30 00");
}

// The key descriptions are decoded on request, with no error pointer.
TEST(ReaderCounts, ContainerInfoKeyDescriptions) {
  const Octets input = HexBytes("30 0D 02 01 03 30 03 02 01 05 30 03 04 01 05");
  ASNContainerInfo ci;
  int err = kUntouched;
  EXPECT_EQ(ci.ReadData(input.data(), Size(input), &err), 18u);
  EXPECT_EQ(err, 0);
  Failure failure = Raised([&] { ci.GetKeyInfo(); });
  EXPECT_EQ(failure.code, kMalformed);
  EXPECT_EQ(failure.where, "ASNKeyInfo::ReadData ASNTGetSequence");
  failure = Raised([&] { ci.GetDefenceKeyInfo(); });
  EXPECT_EQ(failure.code, kMalformed);
  EXPECT_EQ(failure.where, "ASNKeyInfo::ReadData ASNTGetSequence");

  ci.KeyInfo = Hex("30 06 02 01 05 04 01 07");
  failure = Raised([&] { ci.GetKeyInfo(); });
  EXPECT_EQ(failure.code, kMalformed);
  EXPECT_EQ(failure.where, "ASNKeyInfo::ReadData");
  ci.DefenceKeyInfo = Hex("02 01 05");
  failure = Raised([&] { ci.GetDefenceKeyInfo(); });
  EXPECT_EQ(failure.code, kBadIdentifier);
  EXPECT_EQ(failure.where, kSplitPlace);
}

// ---------------------------------------------------------------------------
// Encrypted key and public key info: exceptions only.

TEST(ReaderCounts, EncryptedKey) {
  constexpr char kPlace[] = "CASNEncryptedKey::ReadData";
  CheckThrows<CASNEncryptedKey>(
      {
          {"2: header cut short", "30", kMalformed, kPlace},
          {"3: contents length beyond the input", "30 09 04 01 41", kMalformed, kPlace},
          {"3: not a SEQUENCE", "31 00", kMalformed, kPlace},
          {"4: first item cut short", "30 02 04 05", kTooShort, kHeaderPlace},
          {"4: first item not an OCTET STRING", "30 06 02 01 05 04 01 41", kMalformed, kPlace},
          {"5: second item missing", "30 04 04 02 01 02", kMalformed, kPlace},
          {"6: second item cut short", "30 05 04 01 41 04 05", kTooShort, kHeaderPlace},
          {"6: second item not an OCTET STRING", "30 06 04 01 41 02 01 05", kMalformed, kPlace},
      },
      [](CASNEncryptedKey& key, const unsigned char* data, unsigned int size) {
        return key.ReadData(data, size);
      });
}

TEST(ReaderCounts, PublicKeyInfo) {
  CheckThrows<CASNPublicKeyInfo>(
      {
          {"1: outer not constructed", "02 01 05", kBadIdentifier, kSplitPlace},
          {"1: one item", "30 05 30 03 06 01 2A", kMalformed,
           "CASNPublicKeyInfo::ReadData ASNTGetSequence"},
          {"1: three items", "30 0B 30 03 06 01 2A 03 01 00 03 01 00", kMalformed,
           "CASNPublicKeyInfo::ReadData ASNTGetSequence"},
          {"2: description not identifier data", "30 08 31 03 06 01 2A 03 01 00", kMalformed,
           "CASNTIdData::ReadData"},
          {"3: key cannot be read", "30 0B 30 03 06 01 2A 30 80 05 00 00 00", kTooShort,
           kHeaderPlace},
          {"3: key not a BIT STRING", "30 08 30 03 06 01 2A 04 01 00", kMalformed,
           "CASNPublicKeyInfo::ReadData"},
      },
      [](CASNPublicKeyInfo& info, const unsigned char* data, unsigned int size) {
        return info.ReadData(data, size);
      });
}

// ---------------------------------------------------------------------------
// Export and exchange records: exceptions only; the key record has a code.

TEST(ReaderCounts, ExportKeyInfo) {
  constexpr char kPlace[] = "CASNExportKeyInfo::ReadData";
  CheckThrows<CASNExportKeyInfo>(
      {
          {"2: header cut short", "30", kMalformed, kPlace},
          {"2: contents length beyond the input", "30 09 02 01 05", kMalformed, kPlace},
          {"2: not a SEQUENCE", "31 03 02 01 05", kMalformed, kPlace},
          {"3: item runs past the contents", "30 03 02 05 01", kMalformed, kPlace},
          {"3: item identifier that never ends", "30 02 1F 81", kBadIdentifier, kPlace},
          {"3: no elements", "30 00", kMalformed, kPlace},
          {"3: an empty first element ends the split", "30 02 05 00", kMalformed, kPlace},
      },
      [](CASNExportKeyInfo& info, const unsigned char* data, unsigned int size) {
        return info.ReadData(data, size);
      });
}

TEST(ReaderCounts, ExchangeKeyData) {
  CheckThrows<CASNExchangeKeyData>(
      {
          {"1: outer not constructed", "02 01 05", kBadIdentifier, kSplitPlace},
          {"2: no elements", "30 00", kMalformed, "CASNExchangeKeyData::ReadData ASNTGetSequence"},
          {"3: export key info not a SEQUENCE", "30 02 31 00", kMalformed,
           "CASNExportKeyInfo::ReadData"},
          {"4: exchange items not constructed", "30 07 30 03 02 01 05 04 00", kBadIdentifier,
           kSplitPlace},
      },
      [](CASNExchangeKeyData& data_, const unsigned char* data, unsigned int size) {
        return data_.ReadData(data, size);
      });
}

TEST(ReaderCounts, ProxyKeyExchangeData) {
  CheckThrows<CASNProxyKeyExchangeData>(
      {
          {"1: outer not constructed", "02 01 05", kBadIdentifier, kSplitPlace},
          {"2: one element", "30 05 30 03 02 01 05", kMalformed,
           "CASNProxyKeyExchangeData::ReadData ASNTGetSequence"},
          {"2: three elements", "30 09 30 03 02 01 05 04 00 04 00", kMalformed,
           "CASNProxyKeyExchangeData::ReadData ASNTGetSequence"},
          {"3: export key info not a SEQUENCE", "30 08 31 03 02 01 05 04 01 41", kMalformed,
           "CASNExportKeyInfo::ReadData"},
          {"4: proxy data cannot be read", "30 0B 30 03 02 01 05 30 80 05 00 00 00", kTooShort,
           kHeaderPlace},
      },
      [](CASNProxyKeyExchangeData& data_, const unsigned char* data, unsigned int size) {
        return data_.ReadData(data, size);
      });
}

TEST(ReaderCounts, KeyRecord) {
  CheckCounts<CASNKeyRecord>(
      {
          {"2: header cut short", "30", 0, kMalformed, "CASNKeyRecord::ReadData"},
          // The header's octets are the count of a failed element read.
          {"2: element longer than the data", "04 05 41", 2, kTooShort, "CASNKeyRecord::ReadData"},
          {"2: element of indefinite length", "30 80 05 00 00 00", 2, kTooShort,
           "CASNKeyRecord::ReadData"},
      },
      [](CASNKeyRecord& record, const unsigned char* data, unsigned int size, int* err) {
        return record.ReadData(data, size, err);
      });
  // Step 1: no data at all.
  CASNKeyRecord record;
  int err = kUntouched;
  EXPECT_EQ(record.ReadData(nullptr, 5, &err), 0u);
  EXPECT_EQ(err, keyasn::kErrNotSequenceTag);
  const Failure failure = Raised([&] { record.ReadData(nullptr, 5, nullptr); });
  EXPECT_EQ(failure.code, keyasn::kErrNotSequenceTag);
  EXPECT_EQ(failure.where, "CASNKeyRecord::ReadData");
}

// ---------------------------------------------------------------------------
// Cryptoki element and container info: 0 after any failure.

TEST(ReaderCounts, CryptokiElemInfo) {
  CheckCounts<ASNCryptokiElemInfo>(
      {
          {"2: outer not constructed", "02 01 05", 0, kBadIdentifier, kSplitPlace},
          {"2: item runs past the data", "30 05 02 01 05 02 05", 0, kMalformed, kSplitPlace},
          {"3: one item", "30 03 02 01 05", 0, kMalformed,
           "ASNCryptokiElemInfo::ReadData ASNTGetSequence"},
          {"4: first item cannot be read", "30 08 30 80 05 00 00 00 04 00", 0, kTooShort,
           kHeaderPlace},
          // An INTEGER wider than the field is refused rather than cut.
          {"4: type wider than four octets", "30 09 02 05 01 02 03 04 05 04 00", 0, kMalformed,
           "ASNCryptokiElemInfo::ReadData"},
          {"5: second item cannot be read", "30 09 02 01 01 30 80 05 00 00 00", 0, kTooShort,
           kHeaderPlace},
      },
      [](ASNCryptokiElemInfo& info, const unsigned char* data, unsigned int size, int* err) {
        return info.ReadData(data, size, err);
      });
}

TEST(ReaderCounts, CryptokiContInfo) {
  constexpr char kPlace[] = "ASNCryptokiContInfo::ReadData";
  constexpr char kContSplitPlace[] = "ASNCryptokiContInfo::ReadData ASNTGetSequence";
  CheckCounts<ASNCryptokiContInfo>(
      {
          {"2: outer not constructed", "02 01 05", 0, kBadIdentifier, kSplitPlace},
          {"3: one item", "30 03 04 01 41", 0, kMalformed, kContSplitPlace},
          // Four items are read: two or three are refused like one.
          {"3: three items", "30 09 04 01 41 02 01 01 02 01 02", 0, kMalformed, kContSplitPlace},
          {"4: name cannot be read", "30 0E 30 80 05 00 00 00 02 01 01 02 01 02 30 00", 0,
           kTooShort, kHeaderPlace},
          {"4: first number wider than four octets",
           "30 0F 04 01 41 02 05 01 02 03 04 05 02 01 02 30 00", 0, kMalformed, kPlace},
          {"4: second number wider than four octets",
           "30 0F 04 01 41 02 01 01 02 05 01 02 03 04 05 30 00", 0, kMalformed, kPlace},
          {"5: elements item cannot be read", "30 0F 04 01 41 02 01 01 02 01 02 30 80 05 00 00 00",
           0, kTooShort, kHeaderPlace},
      },
      [](ASNCryptokiContInfo& info, const unsigned char* data, unsigned int size, int* err) {
        return info.ReadData(data, size, err);
      });
}

// Step 6: the inner split's code is the result, neither stored nor raised.
TEST(ReaderCounts, CryptokiContInfoInnerSplitCodeIsTheResult) {
  const Octets input = HexBytes("30 0E 04 01 41 02 01 01 02 01 02 30 03 02 05 01");
  ASNCryptokiContInfo info;
  int err = kUntouched;
  EXPECT_EQ(info.ReadData(input.data(), Size(input), &err), static_cast<unsigned int>(kMalformed));
  EXPECT_EQ(err, 0);
  EXPECT_TRUE(info.Elements.empty());
  ASNCryptokiContInfo again;
  unsigned int result = 0;
  const Failure failure = Raised([&] { result = again.ReadData(input.data(), Size(input), nullptr); });
  EXPECT_EQ(failure.code, 0);
  EXPECT_EQ(result, static_cast<unsigned int>(kMalformed));
}

// ---------------------------------------------------------------------------
// Ephemeral key info: exceptions only.

TEST(ReaderCounts, EphemeralKeyInfo) {
  constexpr char kPlace[] = "CASNEphemeralKeyInfo::ReadData";
  CheckThrows<CASNEphemeralKeyInfo>(
      {
          // The unit reports any header failure as a malformed identifier.
          {"1: header cut short", "A0", kBadIdentifier, "CASNTUnit::Read"},
          {"2: outer primitive", "80 06 06 01 2A 04 01 41", kMalformed, kPlace},
          {"2: outer tag 1", "A1 06 06 01 2A 04 01 41", kMalformed, kPlace},
          {"2: one item", "A0 03 06 01 2A", kMalformed, kPlace},
          {"3: first item not an OBJECT IDENTIFIER", "A0 06 04 01 41 04 01 42", kMalformed, kPlace},
          {"4: key part of one item", "A0 0B 06 01 2A A0 03 04 01 41 04 01 42", kMalformed, kPlace},
          {"4.1: key description not identifier data",
           "A0 12 06 01 2A A0 0A 31 03 06 01 2A 03 03 00 04 00 04 01 42", kMalformed,
           "CASNTIdData::ReadData"},
          // One key octet is too few for the header that the length repair parses.
          {"4.3: key bits too short for a header",
           "A0 11 06 01 2A A0 09 30 03 06 01 2A 03 02 00 41 04 01 42", kMalformed, kHeaderPlace},
          // A declared size beyond the whole input is refused, not allocated.
          {"4.3: key bits declaring more than the input",
           "A0 14 06 01 2A A0 0C 30 03 06 01 2A 03 05 00 04 7F 00 00 04 01 42", kMalformed, kPlace},
          {"5: no item after the key part", "A0 10 06 01 2A A0 0B 30 03 06 01 2A 03 04 00 04 01 41",
           kMalformed, kPlace},
          {"5: last item not an OCTET STRING",
           "A0 13 06 01 2A A0 0B 30 03 06 01 2A 03 04 00 04 01 41 02 01 05", kMalformed, kPlace},
          {"5: last item not an OCTET STRING, no key part", "A0 06 06 01 2A 02 01 05", kMalformed,
           kPlace},
      },
      [](CASNEphemeralKeyInfo& info, const unsigned char* data, unsigned int size) {
        return info.ReadData(data, size);
      });
}

// ---------------------------------------------------------------------------
// Algorithm additional info: 0, and the object left empty.

TEST(ReaderCounts, AlgAddInfoReadObject) {
  const struct {
    const char* step;
    const char* input;
  } rows[] = {
      {"2: header cut short", "30"},
      {"2: length field of nine octets", "30 89 00"},
      {"4: fewer octets than the element needs", "30 03 05 00"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.step) + ": " + row.input);
    const Octets input = HexBytes(row.input);
    CASNAlgAddInfo info(nullptr, nullptr, nullptr);
    ASSERT_NE(info.Count(), 0u);
    EXPECT_EQ(info.ReadObject(input.data(), Size(input)), 0u);
    EXPECT_EQ(info.Count(), 0u);  // emptied first, whatever follows
  }
}

// ---------------------------------------------------------------------------
// Encryption parameters: the code is the result; members read before the failing
// step keep their new values, the later ones their old.

TEST(ReaderCounts, EncrParams) {
  const struct {
    const char* step;
    const char* input;
    int code;
    const char* paramSet;
    const char* box;
    int mode;
    int shift;
  } rows[] = {
      {"1: outer not constructed", "02 01 05", kBadIdentifier, "1.2.643.2.9.7.5.1.", "", 1, 64},
      {"1: outer of three items", "30 07 06 01 2A 04 00 04 00", kMalformed, "1.2.643.2.9.7.5.1.",
       "", 1, 64},
      {"2: first item not an OBJECT IDENTIFIER",
       "30 13 04 01 2A 30 0E 04 01 AA 02 01 00 02 01 40 30 03 06 01 2A", keyasn::kErrWrongType,
       "1.2.643.2.9.7.5.1.", "", 1, 64},
      {"3: second item not constructed", "30 05 06 01 2A 04 00", kBadIdentifier, "1.2.", "", 1, 64},
      {"3: inner of three items", "30 0E 06 01 2A 30 09 04 01 AA 02 01 00 02 01 40", kMalformed,
       "1.2.", "", 1, 64},
      {"4: box not an OCTET STRING",
       "30 13 06 01 2A 30 0E 02 01 AA 02 01 00 02 01 40 30 03 06 01 2A", keyasn::kErrWrongType,
       "1.2.", "", 1, 64},
      {"5: mode not an INTEGER",
       "30 13 06 01 2A 30 0E 04 01 AA 04 01 00 02 01 40 30 03 06 01 2A", keyasn::kErrWrongType,
       "1.2.", "AA", 1, 64},
      {"5: mode wider than four octets",
       "30 17 06 01 2A 30 12 04 01 AA 02 05 01 02 03 04 05 02 01 40 30 03 06 01 2A",
       keyasn::kErrWrongType, "1.2.", "AA", 1, 64},
      {"5: shift not an INTEGER",
       "30 13 06 01 2A 30 0E 04 01 AA 02 01 00 04 01 40 30 03 06 01 2A", keyasn::kErrWrongType,
       "1.2.", "AA", 0, 64},
      {"6: key meshing not constructed",
       "30 13 06 01 2A 30 0E 04 01 AA 02 01 00 02 01 40 04 03 06 01 2A", kBadIdentifier, "1.2.",
       "AA", 0, 0x40},
      // An empty key-meshing SEQUENCE has no identifier to take: refused.
      {"6: key meshing SEQUENCE empty", "30 10 06 01 2A 30 0B 04 01 AA 02 01 00 02 01 20 30 00",
       kMalformed, "1.2.", "AA", 0, 0x20},
      {"6: key meshing identifier not an OBJECT IDENTIFIER",
       "30 13 06 01 2A 30 0E 04 01 AA 02 01 00 02 01 20 30 03 04 01 2A", keyasn::kErrWrongType,
       "1.2.", "AA", 0, 0x20},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.step) + ": " + row.input);
    const Octets input = HexBytes(row.input);
    CASNEncrParams params;
    EXPECT_EQ(params.ReadData(input.data(), Size(input)), row.code);
    EXPECT_EQ(params.paramSetOid, row.paramSet);
    EXPECT_EQ(ToHex(params.substitutionBox), row.box);
    EXPECT_EQ(params.mode, row.mode);
    EXPECT_EQ(params.shiftBits, row.shift);
    EXPECT_EQ(params.keyMeshingOid, "1.2.643.2.2.14.1");
  }
  // The well-formed input the rows are made from reads whole.
  const Octets good =
      HexBytes("30 13 06 01 2A 30 0E 04 01 AA 02 01 00 02 01 40 30 03 06 01 2A");
  CASNEncrParams params;
  EXPECT_EQ(params.ReadData(good.data(), Size(good)), 0);
  EXPECT_EQ(params.keyMeshingOid, "1.2.");
}

TEST(ReaderCounts, EncrParamsFromDsdr) {
  Octets input(70, 0x00);
  input[0] = 0x40;
  input[1] = 0x01;
  input[4] = 0x07;
  input[6] = 0x1F;
  const struct {
    const char* step;
    const unsigned char* data;
    unsigned int size;
  } rows[] = {
      {"1: no data", nullptr, 70},
      {"1: 69 octets", input.data(), 69},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.step);
    CASNEncrParams params;
    EXPECT_EQ(params.GetFromDsdr(row.data, row.size), 134);
    EXPECT_EQ(params.paramSetOid, "1.2.643.2.9.7.5.1.");
    EXPECT_TRUE(params.substitutionBox.empty());
  }
  {
    SCOPED_TRACE("2: wrong magic");
    Octets bad = input;
    bad[3] = 0x01;
    CASNEncrParams params;
    EXPECT_EQ(params.GetFromDsdr(bad.data(), Size(bad)), 134);
    EXPECT_EQ(params.paramSetOid, "1.2.643.2.9.7.5.1.");
    EXPECT_TRUE(params.substitutionBox.empty());
  }
  CASNEncrParams params;
  EXPECT_EQ(params.GetFromDsdr(input.data(), Size(input)), 0);
  EXPECT_EQ(params.paramSetOid, "1.2.643.2.9.7.5.1.7");
  EXPECT_EQ(params.substitutionBox[0], 0xF1);
}

}  // namespace
