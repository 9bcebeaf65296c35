// Every key structure reader over the shared corpus of real and broken ASN.1
// inputs, each whole and cut, from exactly sized heap buffers: every input is read
// or refused with a code or an XRUVStatus, and whatever was read can be written.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "keyasn/keys/alg_add_info.h"
#include "keyasn/keys/cryptoki.h"
#include "keyasn/keys/encr_params.h"
#include "keyasn/keys/encrypted_key.h"
#include "keyasn/keys/ephemeral_key.h"
#include "keyasn/keys/export_key.h"
#include "keyasn/keys/key_record.h"
#include "keyasn/keys/public_key_info.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::Octets;
using Reader = std::function<void(const unsigned char*, unsigned int)>;

struct NamedReader {
  const char* name;
  Reader read;
};

// Each reader reads, and when it succeeded writes what it read.
const std::vector<NamedReader>& Readers() {
  static const std::vector<NamedReader> readers = {
      {"CASNEncryptedKey", [](const unsigned char* d, unsigned int n) {
         CASNEncryptedKey key(nullptr, 0, nullptr, 0);
         if (key.ReadData(d, n) && key.encryptedKey.Count() && key.additionalData.Count())
           key.WriteData();
       }},
      {"CASNPublicKeyInfo", [](const unsigned char* d, unsigned int n) {
         CASNPublicKeyInfo info;
         info.ReadData(d, n);
         info.WriteData();
       }},
      {"CASNExportKeyInfo", [](const unsigned char* d, unsigned int n) {
         CASNExportKeyInfo info;
         info.ReadData(d, n);
         info.WriteData();
       }},
      {"CASNExchangeKeyData", [](const unsigned char* d, unsigned int n) {
         CASNExchangeKeyData data;
         data.ReadData(d, n);
         data.WriteData();
       }},
      {"CASNProxyKeyExchangeData", [](const unsigned char* d, unsigned int n) {
         CASNProxyKeyExchangeData data;
         data.ReadData(d, n);
         data.WriteData();
       }},
      {"CASNKeyRecord", [](const unsigned char* d, unsigned int n) {
         CASNKeyRecord record;
         int code = 0;
         const unsigned int used = record.ReadData(d, n, &code);
         EXPECT_LE(used, n);
         record.WriteData();
       }},
      {"ASNCryptokiElemInfo", [](const unsigned char* d, unsigned int n) {
         ASNCryptokiElemInfo elem;
         int code = 0;
         EXPECT_LE(elem.ReadData(d, n, &code), n);
         elem.WriteData(&code);
       }},
      {"ASNCryptokiContInfo", [](const unsigned char* d, unsigned int n) {
         ASNCryptokiContInfo cont;
         int code = 0;
         cont.ReadData(d, n, &code);
         cont.WriteData(&code);
       }},
      {"CASNEphemeralKeyInfo", [](const unsigned char* d, unsigned int n) {
         CASNEphemeralKeyInfo info;
         EXPECT_LE(info.ReadData(d, n), n);
         info.WriteData();
       }},
      {"CASNAlgAddInfo", [](const unsigned char* d, unsigned int n) {
         CASNAlgAddInfo info(nullptr, nullptr, nullptr);
         EXPECT_LE(info.ReadObject(d, n), n);
         std::string sign, hash, encrypt;
         info.DecodeObject(&sign, &hash, &encrypt);
         static_cast<IdentObj&>(info) = IdentObj(d, d ? n : 0);
         if (info.DecodeObject(&sign, &hash, &encrypt)) info.SetHashOID("1.2.3");
       }},
      {"CASNEncrParams", [](const unsigned char* d, unsigned int n) {
         CASNEncrParams params;
         if (params.ReadData(d, n) == 0) {
           testing::internal::CaptureStderr();
           params.WriteData();
           testing::internal::GetCapturedStderr();
         }
         params.GetFromDsdr(d, n);
       }},
  };
  return readers;
}

std::vector<std::filesystem::path> CorpusFiles() {
  std::vector<std::filesystem::path> files;
  const std::filesystem::path root = std::filesystem::path(KEYASN_SHARED_DIR) / "corpora";
  std::error_code error;
  for (auto it = std::filesystem::recursive_directory_iterator(root, error);
       it != std::filesystem::recursive_directory_iterator(); it.increment(error)) {
    if (error) break;
    if (!it->is_regular_file()) continue;
    const std::string name = it->path().filename().string();
    if (name.find('.') != std::string::npos) continue;  // README, LICENSE, MANIFEST
    files.push_back(it->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

Octets Contents(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return Octets((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// Feed runs one reader over an exactly sized copy of `input`; only XRUVStatus may
// leave a reader.
void Feed(const NamedReader& reader, const Octets& input) {
  const Octets copy(input);
  try {
    reader.read(copy.empty() ? nullptr : copy.data(), static_cast<unsigned int>(copy.size()));
  } catch (const XRUVStatus&) {
  }
}

TEST(KeyReadersOverTheCorpus, EveryInputIsReadOrRefused) {
  const std::vector<std::filesystem::path> files = CorpusFiles();
  ASSERT_GE(files.size(), 3000u) << "the shared corpora are needed";
  for (const std::filesystem::path& file : files) {
    SCOPED_TRACE(file.string());
    const Octets whole = Contents(file);
    const Octets half(whole.begin(), whole.begin() + static_cast<long>(whole.size() / 2));
    const Octets lessOne(whole.begin(), whole.end() - (whole.empty() ? 0 : 1));
    for (const NamedReader& reader : Readers()) {
      SCOPED_TRACE(reader.name);
      Feed(reader, whole);
      Feed(reader, half);
      Feed(reader, lessOne);
    }
  }
}

}  // namespace
