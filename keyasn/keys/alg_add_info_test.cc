#include "keyasn/keys/alg_add_info.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::Bytes;
using keyasn::testing::Hex;
using keyasn::testing::HexBytes;
using keyasn::testing::ToHex;

static_assert(std::is_base_of<CRUVCryptBitBlob, CASNAlgAddInfo>::value, "a bit blob");
static_assert(sizeof(CASNAlgAddInfo) == sizeof(CRUVCryptBitBlob), "no members of its own");
static_assert(std::has_virtual_destructor<CASNAlgAddInfo>::value, "virtual destructor");

constexpr char kSign[] = "1.2.643.2.2.3";       // 06 06 2A 85 03 02 02 03
constexpr char kHash[] = "1.2.643.2.2.9";       // 06 06 2A 85 03 02 02 09
constexpr char kEncrypt[] = "1.2.643.2.2.21";   // 06 06 2A 85 03 02 02 15
constexpr char kSignDer[] = "06 06 2A 85 03 02 02 03";
constexpr char kHashDer[] = "06 06 2A 85 03 02 02 09";
constexpr char kEncryptDer[] = "80 08 06 06 2A 85 03 02 02 15";

std::string Der(const IdentObj& obj) { return ToHex(obj); }

// Loaded loads `hex` as the object's octets through ReadObject.
void Load(CASNAlgAddInfo* info, const std::string& hex) {
  const std::vector<unsigned char> bytes = HexBytes(hex);
  ASSERT_EQ(info->ReadObject(bytes.data(), static_cast<unsigned int>(bytes.size())),
            bytes.size());
}

TEST(CASNAlgAddInfo, NoTextsGiveTwoNulls) {
  CASNAlgAddInfo info(nullptr, nullptr, nullptr);
  EXPECT_EQ(Der(info), "30 04 05 00 05 00");
  EXPECT_EQ(info.GetUnusedBits(), 0u);
  CASNAlgAddInfo empty("", "", "");
  EXPECT_EQ(Der(empty), "30 04 05 00 05 00");
}

TEST(CASNAlgAddInfo, EncodingOfEachShape) {
  struct Row {
    const char* name;
    const char* sign;
    const char* hash;
    const char* encrypt;
    std::string der;
  };
  const Row rows[] = {
      {"sign only", kSign, nullptr, nullptr, std::string("30 0A ") + kSignDer + " 05 00"},
      {"hash only", nullptr, kHash, "", std::string("30 0A 05 00 ") + kHashDer},
      {"sign and hash", kSign, kHash, nullptr,
       std::string("30 10 ") + kSignDer + " " + kHashDer},
      {"all three", kSign, kHash, kEncrypt,
       std::string("30 1A ") + kSignDer + " " + kHashDer + " " + kEncryptDer},
      {"encrypt only", nullptr, nullptr, kEncrypt,
       std::string("30 0E 05 00 05 00 ") + kEncryptDer},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNAlgAddInfo info(row.sign, row.hash, row.encrypt);
    EXPECT_EQ(Der(info), row.der);
    EXPECT_EQ(info.GetSignOID(), row.sign ? row.sign : "");
    EXPECT_EQ(info.GetHashOID(), row.hash ? row.hash : "");
    EXPECT_EQ(info.GetEncryptOID(), row.encrypt ? row.encrypt : "");
  }
}

TEST(CASNAlgAddInfo, TheEncryptWrapperIsPrimitiveAndTwoLonger) {
  CASNAlgAddInfo info(kSign, kHash, "1.2.840.113549.1.1.1");
  // 06 09 2A 86 48 86 F7 0D 01 01 01 wrapped as 80 0B ...
  const std::string der = Der(info);
  EXPECT_NE(der.find("80 0B 06 09 2A 86 48 86 F7 0D 01 01 01"), std::string::npos) << der;
  EXPECT_EQ(info.GetEncryptOID(), "1.2.840.113549.1.1.1");
}

TEST(CASNAlgAddInfo, DecodeObjectFillsOnlyTheStringsGiven) {
  CASNAlgAddInfo info(kSign, kHash, kEncrypt);
  std::string sign = "x", hash = "y", encrypt = "z";
  EXPECT_TRUE(info.DecodeObject(&sign, nullptr, nullptr));
  EXPECT_EQ(sign, kSign);
  EXPECT_TRUE(info.DecodeObject(nullptr, &hash, &encrypt));
  EXPECT_EQ(hash, kHash);
  EXPECT_EQ(encrypt, kEncrypt);
  EXPECT_TRUE(info.DecodeObject(nullptr, nullptr, nullptr));
}

TEST(CASNAlgAddInfo, EncryptTextIsLeftUntouchedWithoutAThirdItem) {
  CASNAlgAddInfo info(kSign, kHash, nullptr);
  std::string sign = "x", hash = "y", encrypt = "keep";
  EXPECT_TRUE(info.DecodeObject(&sign, &hash, &encrypt));
  EXPECT_EQ(encrypt, "keep");
  // A NULL part decodes to an empty text.
  CASNAlgAddInfo nulls(nullptr, nullptr, nullptr);
  EXPECT_TRUE(nulls.DecodeObject(&sign, &hash, &encrypt));
  EXPECT_EQ(sign, "");
  EXPECT_EQ(hash, "");
  EXPECT_EQ(encrypt, "keep");
}

TEST(CASNAlgAddInfo, ThirdItemForms) {
  struct Row {
    const char* name;
    const char* hex;
    bool decodes;
    const char* encrypt;  // after DecodeObject with "keep" in it
  };
  const Row rows[] = {
      {"primitive [0]", "30 09 05 00 05 00 80 03 06 01 2D", true, "1.5."},
      {"constructed [0] (class and form not looked at)", "30 09 05 00 05 00 A0 03 06 01 2D",
       true, "1.5."},
      {"application tag 0 does not decode", "30 09 05 00 05 00 40 03 06 01 2D", false, "keep"},
      {"tag 1 is not looked at", "30 09 05 00 05 00 81 03 06 01 2D", true, "keep"},
      {"universal tag 0 does not decode", "30 09 05 00 05 00 00 03 06 01 2D", false, "keep"},
      {"wrapped element cut", "30 09 05 00 05 00 80 03 06 05 2D", false, ""},
      {"wrapped element not an element", "30 07 05 00 05 00 80 01 06", false, ""},
      {"wrapped OCTET STRING gives its octets", "30 09 05 00 05 00 80 03 04 01 41", true, "A"},
      {"further items ignored", "30 0C 05 00 05 00 80 03 06 01 2D 02 01 05", true, "1.5."},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNAlgAddInfo info(nullptr, nullptr, nullptr);
    Load(&info, row.hex);
    std::string encrypt = "keep";
    EXPECT_EQ(info.DecodeObject(nullptr, nullptr, &encrypt), row.decodes);
    EXPECT_EQ(encrypt, row.encrypt);
    EXPECT_EQ(info.GetEncryptOID(), row.decodes && std::string(row.encrypt) != "keep"
                                        ? row.encrypt
                                        : "");
  }
}

TEST(CASNAlgAddInfo, AFailedDecodeStaysRecorded) {
  // The sign item does not decode (its last subidentifier does not end); the hash
  // and encrypt items do.
  CASNAlgAddInfo info(nullptr, nullptr, nullptr);
  Load(&info, "30 0F 06 02 2A 86 06 02 2A 03 80 05 06 03 2A 03 04");
  EXPECT_EQ(info.GetSignOID(), "");
  EXPECT_EQ(info.GetHashOID(), "1.2.3");  // decoded alone, it succeeds
  EXPECT_EQ(info.GetEncryptOID(), "1.2.3.4");

  std::string sign = "x", hash = "y", encrypt = "keep";
  EXPECT_FALSE(info.DecodeObject(&sign, &hash, &encrypt));
  EXPECT_EQ(sign, "");
  EXPECT_EQ(hash, "");         // emptied: the earlier failure is still recorded
  EXPECT_EQ(encrypt, "keep");  // not reached while a failure is recorded

  // So a setter drops the other parts.
  info.SetEncryptOID("1.5");
  EXPECT_EQ(Der(info), "30 09 05 00 05 00 80 03 06 01 2D");
}

TEST(CASNAlgAddInfo, UndecodableOctets) {
  struct Row {
    const char* name;
    const char* hex;
  };
  const Row rows[] = {
      {"not constructed", "04 02 05 00"},
      {"item beyond the sequence", "30 03 06 05 2A"},
      {"indefinite-length item", "30 09 30 80 06 01 2A 00 00 05 00"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNAlgAddInfo info(nullptr, nullptr, nullptr);
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    info.ReadObject(bytes.data(), static_cast<unsigned int>(bytes.size()));
    std::string sign = "x";
    EXPECT_FALSE(info.DecodeObject(&sign, nullptr, nullptr));
    EXPECT_EQ(info.GetSignOID(), "");
  }
}

TEST(CASNAlgAddInfo, DecodeOfEmptyOctetsFailsWithoutTouchingAnything) {
  CASNAlgAddInfo info(nullptr, nullptr, nullptr);
  info.Empty();
  std::string sign = "x", hash = "y", encrypt = "z";
  EXPECT_FALSE(info.DecodeObject(&sign, &hash, &encrypt));
  EXPECT_EQ(sign, "x");
  EXPECT_EQ(hash, "y");
  EXPECT_EQ(encrypt, "z");
}

TEST(CASNAlgAddInfo, SettersKeepTheOtherParts) {
  CASNAlgAddInfo info(kSign, kHash, kEncrypt);
  info.SetHashOID("1.2.3");
  EXPECT_EQ(info.GetSignOID(), kSign);
  EXPECT_EQ(info.GetHashOID(), "1.2.3");
  EXPECT_EQ(info.GetEncryptOID(), kEncrypt);
  info.SetSignOID("1.2.4");
  info.SetEncryptOID("1.2.5");
  EXPECT_EQ(Der(info), "30 0E 06 02 2A 04 06 02 2A 03 80 04 06 02 2A 05");

  CASNAlgAddInfo signOnly(kSign, nullptr, nullptr);
  signOnly.SetEncryptOID(kEncrypt);
  EXPECT_EQ(Der(signOnly), std::string("30 14 ") + kSignDer + " 05 00 " + kEncryptDer);
  signOnly.SetHashOID("");
  EXPECT_EQ(Der(signOnly), std::string("30 14 ") + kSignDer + " 05 00 " + kEncryptDer);
}

TEST(CASNAlgAddInfo, SetEncryptEmptyDropsTheThirdItem) {
  CASNAlgAddInfo info(kSign, kHash, kEncrypt);
  info.SetEncryptOID("");
  EXPECT_EQ(Der(info), std::string("30 10 ") + kSignDer + " " + kHashDer);
  EXPECT_EQ(info.GetEncryptOID(), "");
}

TEST(CASNAlgAddInfo, SettersOnUndecodableOctetsDropTheOthers) {
  struct Row {
    const char* name;
    void (CASNAlgAddInfo::*setter)(const char*);
    const char* der;
  };
  const Row rows[] = {
      {"hash", &CASNAlgAddInfo::SetHashOID, "30 07 05 00 06 03 2A 03 04"},
      {"sign", &CASNAlgAddInfo::SetSignOID, "30 07 06 03 2A 03 04 05 00"},
      {"encrypt", &CASNAlgAddInfo::SetEncryptOID, "30 0B 05 00 05 00 80 05 06 03 2A 03 04"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNAlgAddInfo info(kSign, kHash, kEncrypt);
    info.Empty();
    (info.*row.setter)("1.2.3.4");
    EXPECT_EQ(Der(info), row.der);
  }
}

TEST(CASNAlgAddInfo, NullSetterArgumentIsALogicError) {
  CASNAlgAddInfo info(kSign, kHash, kEncrypt);
  const std::string before = Der(info);
  EXPECT_THROW(info.SetSignOID(nullptr), std::logic_error);
  EXPECT_THROW(info.SetHashOID(nullptr), std::logic_error);
  EXPECT_THROW(info.SetEncryptOID(nullptr), std::logic_error);
  EXPECT_EQ(Der(info), before);
}

TEST(CASNAlgAddInfo, ReadObjectTakesTheShortFormSize) {
  // 30 81 80 and 128 contents octets: 131 in all, taken as 0x80 + 2 = 130.
  std::vector<unsigned char> bytes = {0x30, 0x81, 0x80};
  bytes.resize(131, 0x05);
  CASNAlgAddInfo info(nullptr, nullptr, nullptr);
  EXPECT_EQ(info.ReadObject(bytes.data(), 131), 130u);
  EXPECT_EQ(info.Count(), 130u);
  EXPECT_EQ(ToHex(info.GetData(), 3), "30 81 80");
  EXPECT_EQ(info.GetData()[129], 0x05);
}

TEST(CASNAlgAddInfo, ReadObjectCases) {
  struct Row {
    const char* name;
    const char* hex;
    unsigned int result;
  };
  const Row rows[] = {
      {"whole element", "30 04 05 00 05 00", 6},
      {"trailing octets left", "30 04 05 00 05 00 FF FF", 6},
      {"one octet short", "30 04 05 00 05", 0},
      {"long form cut short", "30 82 00 02 05 00", 4},
      {"indefinite length", "30 80 05 00 00 00", 0},
      {"bad header", "30", 0},
      {"bad length octets", "30 89 00 00", 0},
      {"any element", "02 01 05", 3},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNAlgAddInfo info(kSign, nullptr, nullptr);
    const std::vector<unsigned char> bytes = HexBytes(row.hex);
    EXPECT_EQ(info.ReadObject(bytes.data(), static_cast<unsigned int>(bytes.size())),
              row.result);
    EXPECT_EQ(info.Count(), row.result);
    if (row.result) {
      EXPECT_EQ(ToHex(info.GetData(), row.result), ToHex(bytes.data(), row.result));
    }
  }
  CASNAlgAddInfo info(kSign, nullptr, nullptr);
  EXPECT_EQ(info.ReadObject(nullptr, 10), 0u);
  EXPECT_EQ(info.Count(), 0u);
}

TEST(CASNAlgAddInfo, ReadObjectThenDecode) {
  const CASNAlgAddInfo source(kSign, kHash, kEncrypt);
  const std::vector<unsigned char> bytes = Bytes(source);
  CASNAlgAddInfo info(nullptr, nullptr, nullptr);
  EXPECT_EQ(info.ReadObject(bytes.data(), static_cast<unsigned int>(bytes.size())),
            source.Count());
  EXPECT_EQ(info.GetSignOID(), kSign);
  EXPECT_EQ(info.GetHashOID(), kHash);
  EXPECT_EQ(info.GetEncryptOID(), kEncrypt);
}

TEST(CASNAlgAddInfo, PrefixesNeverReadBeyondTheirSize) {
  const CASNAlgAddInfo source(kSign, kHash, kEncrypt);
  const std::vector<unsigned char> whole(source.GetData(), source.GetData() + source.Count());
  for (size_t n = 0; n < whole.size(); ++n) {
    SCOPED_TRACE(n);
    const std::vector<unsigned char> prefix(whole.begin(), whole.begin() + static_cast<long>(n));
    CASNAlgAddInfo info(nullptr, nullptr, nullptr);
    EXPECT_EQ(info.ReadObject(n ? prefix.data() : nullptr, static_cast<unsigned int>(n)), 0u);
    EXPECT_EQ(info.Count(), 0u);
    // The prefix itself as the object's octets: decoding must refuse it.
    static_cast<IdentObj&>(info) = IdentObj(prefix.data(), static_cast<unsigned int>(n));
    std::string sign, hash, encrypt;
    EXPECT_FALSE(info.DecodeObject(&sign, &hash, &encrypt));
  }
}

TEST(CASNAlgAddInfo, CopiesAreDeep) {
  CASNAlgAddInfo a(kSign, kHash, nullptr);
  CASNAlgAddInfo b = a;
  b.SetHashOID("1.2.3");
  EXPECT_EQ(a.GetHashOID(), kHash);
  a = b;
  EXPECT_EQ(a.GetHashOID(), "1.2.3");
}

}  // namespace
