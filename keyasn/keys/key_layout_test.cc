// The key structures are plain value types whose members lie in their documented
// order; callers use the members directly.
#include <gtest/gtest.h>

#include <type_traits>

#include "keyasn/keys/alg_add_info.h"
#include "keyasn/keys/cryptoki.h"
#include "keyasn/keys/encr_params.h"
#include "keyasn/keys/encrypted_key.h"
#include "keyasn/keys/ephemeral_key.h"
#include "keyasn/keys/export_key.h"
#include "keyasn/keys/key_record.h"
#include "keyasn/keys/public_key_info.h"

namespace {

static_assert(!std::is_polymorphic<CASNEncryptedKey>::value, "no virtual operations");
static_assert(!std::is_polymorphic<CASNPublicKeyInfo>::value, "no virtual operations");
static_assert(!std::is_polymorphic<CASNExportKeyInfo>::value, "no virtual operations");
static_assert(!std::is_polymorphic<CASNExchangeKeyData>::value, "no virtual operations");
static_assert(!std::is_polymorphic<CASNProxyKeyExchangeData>::value, "no virtual operations");
static_assert(!std::is_polymorphic<CASNKeyRecord>::value, "no virtual operations");
static_assert(!std::is_polymorphic<ASNCryptokiElemInfo>::value, "no virtual operations");
static_assert(!std::is_polymorphic<ASNCryptokiContInfo>::value, "no virtual operations");
static_assert(!std::is_polymorphic<CASNEphemeralKeyInfo>::value, "no virtual operations");
static_assert(!std::is_polymorphic<CASNEncrParams>::value, "no virtual operations");
static_assert(std::is_copy_constructible<CASNKeyRecord>::value &&
                  std::is_copy_assignable<CASNKeyRecord>::value,
              "a value type");
static_assert(std::is_base_of<CASNExportKeyInfo, CASNExchangeKeyData>::value &&
                  std::is_base_of<CASNExportKeyInfo, CASNProxyKeyExchangeData>::value,
              "the exchange records begin with the export key info");
static_assert(sizeof(CASNEncryptedKey) == 2 * sizeof(IdentObj), "two buffers");
static_assert(sizeof(CASNExportKeyInfo) == 2 * sizeof(IdentObj), "two buffers");
static_assert(sizeof(CASNKeyRecord) == 2 * sizeof(IdentObj), "two buffers");
static_assert(sizeof(CASNPublicKeyInfo) == sizeof(CASNTIdData) + sizeof(IdentObj),
              "identifier data, then the key");

// Before is true when member `a` lies before member `b` in the same object.
template <typename A, typename B>
bool Before(const A& a, const B& b) {
  return reinterpret_cast<const char*>(&a) < reinterpret_cast<const char*>(&b);
}

TEST(KeyStructureLayout, MembersInTheirOrder) {
  CASNEncryptedKey encrypted(nullptr, 0, nullptr, 0);
  EXPECT_TRUE(Before(encrypted.encryptedKey, encrypted.additionalData));
  CASNPublicKeyInfo publicKey;
  EXPECT_TRUE(Before(publicKey.idData, publicKey.publicKey));
  CASNExchangeKeyData exchange;
  EXPECT_TRUE(Before(exchange.keyElement, exchange.extraElement));
  EXPECT_TRUE(Before(exchange.extraElement, exchange.exchangeItems));
  CASNProxyKeyExchangeData proxy;
  EXPECT_TRUE(Before(proxy.extraElement, proxy.proxyData));
  CASNKeyRecord record;
  EXPECT_TRUE(Before(record.descriptor, record.key));
  ASNCryptokiElemInfo elem;
  EXPECT_TRUE(Before(elem.Type, elem.Value));
  ASNCryptokiContInfo cont;
  EXPECT_TRUE(Before(cont.Name, cont.Number1));
  EXPECT_TRUE(Before(cont.Number1, cont.Number2));
  EXPECT_TRUE(Before(cont.Number2, cont.Elements));
  CASNEphemeralKeyInfo ephemeral;
  EXPECT_TRUE(Before(ephemeral.algorithmOid, ephemeral.idData));
  EXPECT_TRUE(Before(ephemeral.idData, ephemeral.keyBits));
  EXPECT_TRUE(Before(ephemeral.keyBits, ephemeral.trailerData));
  CASNEncrParams params;
  EXPECT_TRUE(Before(params.paramSetOid, params.keyMeshingOid));
  EXPECT_TRUE(Before(params.keyMeshingOid, params.mode));
  EXPECT_TRUE(Before(params.mode, params.shiftBits));
  EXPECT_TRUE(Before(params.shiftBits, params.substitutionBox));
  // The algorithm triple has no members of its own: its state is the buffer's.
  EXPECT_EQ(sizeof(CASNAlgAddInfo), sizeof(CRUVCryptBitBlob));
}

}  // namespace
