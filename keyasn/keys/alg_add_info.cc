#include "keyasn/keys/alg_add_info.h"

#include <cstring>
#include <list>
#include <stdexcept>
#include <utility>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/header.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/keys/items.h"
#include "keyasn/record/base_record.h"

namespace {

bool HasText(const char* text) { return text && *text; }

// OidOrNullItem is the OBJECT IDENTIFIER of `text`, or NULL when there is none.
IdentObj OidOrNullItem(const char* text) {
  CASNTBaseRecord record;
  if (HasText(text)) {
    record.SetTag(6);
    record.SetEntry(text, static_cast<unsigned int>(std::strlen(text)));
  } else {
    record.SetTag(5);
  }
  return record.WriteData(nullptr);
}

// DecodeInto loads `element` into `record` and returns its decoded value. A failure
// is recorded in `*error` and stays there: a later success does not clear it. An
// element whose contents do not lie within it (an indefinite length) is not
// decoded and counts as malformed.
const IdentObj& DecodeInto(CASNTBaseRecord& record, const IdentObj& element, int* error) {
  static const IdentObj kNothing;
  if (!keyasn::detail::ElementFits(element.GetData(), element.Count())) {
    *error = keyasn::kErrMalformed;
    return kNothing;
  }
  const int parsed = record.SetEncodedEntry(element);
  if (parsed != 0) {
    *error = parsed;
    return kNothing;
  }
  int code = 0;
  const IdentObj& value = record.GetRecord(&code);
  if (code != 0) *error = code;
  return value;
}

void AssignText(std::string* text, const IdentObj& value) {
  text->assign(reinterpret_cast<const char*>(value.GetData()), value.Count());
}

// RequireText turns the setter's argument into a string, failing for null as making
// a string from a null pointer does.
std::string RequireText(const char* oid) {
  if (!oid) throw std::logic_error("basic_string: construction from null is not valid");
  return std::string(oid);
}

}  // namespace

CASNAlgAddInfo::CASNAlgAddInfo(const char* signOid, const char* hashOid,
                               const char* encryptOid) {
  EncodeObject(signOid, hashOid, encryptOid);
}

CASNAlgAddInfo::~CASNAlgAddInfo() = default;

void CASNAlgAddInfo::EncodeObject(const char* signOid, const char* hashOid,
                                  const char* encryptOid) {
  std::list<IdentObj> items;
  items.push_back(OidOrNullItem(signOid));
  items.push_back(OidOrNullItem(hashOid));
  if (HasText(encryptOid)) {
    CASNTBaseRecord oid;
    oid.SetTag(6);
    oid.SetEntry(encryptOid, static_cast<unsigned int>(std::strlen(encryptOid)));
    // A primitive [0] around the whole OBJECT IDENTIFIER element, not the
    // constructed form of explicit tagging: kept for existing readers.
    CASNTBaseRecord wrapper;
    wrapper.SetClass(0x80);
    wrapper.SetTag(0);
    wrapper.SetEntry(oid.GetEncodedRecord(nullptr));
    items.push_back(wrapper.WriteData(nullptr));
  }
  IdentObj encoded = ASNTPutSequence(items, 16, nullptr);
  static_cast<IdentObj&>(*this) = std::move(encoded);
}

bool CASNAlgAddInfo::DecodeObject(std::string* signOid, std::string* hashOid,
                                  std::string* encryptOid) const {
  std::list<IdentObj> items;
  int error = 0;
  ASNTGetSequence(items, GetData(), Count(), &error);
  if (error != 0) return false;

  CASNTBaseRecord work;
  unsigned int index = 0;
  for (const IdentObj& item : items) {
    if (index > 2) break;  // further items are ignored
    std::string* text = index == 0 ? signOid : index == 1 ? hashOid : nullptr;
    if (text) {
      text->clear();
      AssignText(text, DecodeInto(work, item, &error));
      if (error != 0) text->clear();
    } else if (index == 2 && encryptOid && work.SetEncodedEntry(item) == 0 &&
               work.GetTag() == 0) {
      // The class of the wrapper is not looked at, only its tag number.
      const IdentObj wrapped = DecodeInto(work, item, &error);
      if (error == 0) {
        CASNTBaseRecord inner;
        encryptOid->clear();
        AssignText(encryptOid, DecodeInto(inner, wrapped, &error));
        if (error != 0) encryptOid->clear();
      }
    }
    ++index;
  }
  return error == 0;
}

std::string CASNAlgAddInfo::GetSignOID() const {
  std::string text;
  return DecodeObject(&text, nullptr, nullptr) ? text : std::string();
}

std::string CASNAlgAddInfo::GetHashOID() const {
  std::string text;
  return DecodeObject(nullptr, &text, nullptr) ? text : std::string();
}

std::string CASNAlgAddInfo::GetEncryptOID() const {
  std::string text;
  return DecodeObject(nullptr, nullptr, &text) ? text : std::string();
}

void CASNAlgAddInfo::SetSignOID(const char* oid) {
  const std::string sign = RequireText(oid);
  std::string hash, encrypt;
  if (DecodeObject(nullptr, &hash, &encrypt))
    EncodeObject(sign.c_str(), hash.c_str(), encrypt.c_str());
  else
    EncodeObject(sign.c_str(), nullptr, nullptr);  // the other parts are dropped
}

void CASNAlgAddInfo::SetHashOID(const char* oid) {
  const std::string hash = RequireText(oid);
  std::string sign, encrypt;
  if (DecodeObject(&sign, nullptr, &encrypt))
    EncodeObject(sign.c_str(), hash.c_str(), encrypt.c_str());
  else
    EncodeObject(nullptr, hash.c_str(), nullptr);
}

void CASNAlgAddInfo::SetEncryptOID(const char* oid) {
  const std::string encrypt = RequireText(oid);
  std::string sign, hash;
  if (DecodeObject(&sign, &hash, nullptr))
    EncodeObject(sign.c_str(), hash.c_str(), encrypt.c_str());
  else
    EncodeObject(nullptr, nullptr, encrypt.c_str());
}

unsigned int CASNAlgAddInfo::ReadObject(const unsigned char* data, unsigned int size) {
  Empty();
  ASNT_ASN_STRUCT_INFO info{};
  if (ASNTGetAsnInfo(info, data, size) != 0) return 0;
  // The size is taken as if the length were in the one-octet form: kept deliberately.
  const unsigned long long total = info.Length + 2ull;
  if (size < total) return 0;
  Assign(data, static_cast<unsigned int>(total));
  return static_cast<unsigned int>(total);
}

CASNAlgAddInfo::CASNAlgAddInfo(const CASNAlgAddInfo& other) = default;

CASNAlgAddInfo& CASNAlgAddInfo::operator=(const CASNAlgAddInfo& other) = default;
