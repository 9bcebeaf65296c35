#include "keyasn/keys/cryptoki.h"


#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/keys/items.h"
#include "keyasn/record/base_record.h"
#include "keyasn/support/status.h"

namespace {

constexpr char kElemPlace[] = "ASNCryptokiElemInfo::ReadData";
constexpr char kElemSplitPlace[] = "ASNCryptokiElemInfo::ReadData ASNTGetSequence";
constexpr char kContPlace[] = "ASNCryptokiContInfo::ReadData";
constexpr char kContSplitPlace[] = "ASNCryptokiContInfo::ReadData ASNTGetSequence";

// ItemValue reads one complete item and returns its value in the decoder's form.
IdentObj ItemValue(const IdentObj& item) {
  CASNTBaseRecord record;
  record.ReadData(item.GetData(), item.Count(), nullptr);
  return record.GetRecord(nullptr);
}

// LoadWord sets `*field` to 0, then to the item's value; a value wider than the
// field is refused rather than cut.
void LoadWord(const IdentObj& item, unsigned int* field, const char* place) {
  *field = 0;
  if (!keyasn::detail::WordFromOctets(ItemValue(item), field))
    keyasn::detail::RaiseStatus(keyasn::kErrMalformed, place);
}

}  // namespace

ASNCryptokiElemInfo::ASNCryptokiElemInfo() : Type(0) {}

ASNCryptokiElemInfo::~ASNCryptokiElemInfo() = default;

unsigned int ASNCryptokiElemInfo::ReadData(const unsigned char* data, unsigned int size,
                                           int* error) {
  if (error) *error = 0;
  try {
    std::list<IdentObj> items;
    const unsigned int consumed = ASNTGetSequence(items, data, size, nullptr);
    if (items.size() < 2) keyasn::detail::RaiseStatus(keyasn::kErrMalformed, kElemSplitPlace);
    auto it = items.begin();
    LoadWord(*it++, &Type, kElemPlace);
    Value.Empty();
    Value = ItemValue(*it);
    return consumed;
  } catch (const XRUVStatus& status) {
    if (!error) throw;
    *error = status.Status();
    return 0;
  }
}

IdentObj ASNCryptokiElemInfo::WriteData(int* error) const {
  std::list<IdentObj> items;
  items.push_back(keyasn::detail::EncodeWordItem(Type));
  items.push_back(keyasn::detail::EncodeUniversalItem(4, Value.GetData(), Value.Count()));
  return ASNTPutSequence(items, 16, error);
}

ASNCryptokiContInfo::ASNCryptokiContInfo() : Number1(0), Number2(0) {}

ASNCryptokiContInfo::~ASNCryptokiContInfo() = default;

unsigned int ASNCryptokiContInfo::ReadData(const unsigned char* data, unsigned int size,
                                           int* error) {
  if (error) *error = 0;
  try {
    std::list<IdentObj> items;
    ASNTGetSequence(items, data, size, nullptr);
    // Four items are read, so fewer than four are refused before anything changes.
    if (items.size() < 4) keyasn::detail::RaiseStatus(keyasn::kErrMalformed, kContSplitPlace);
    auto it = items.begin();
    const IdentObj name = ItemValue(*it++);
    Name.Load(name.GetData(), name.Count());
    LoadWord(*it++, &Number1, kContPlace);
    LoadWord(*it++, &Number2, kContPlace);
    const IdentObj inner = ItemValue(*it);
    // The split's own code is the result, neither stored nor thrown: kept so.
    return static_cast<unsigned int>(ASNTGetSequence(Elements, inner.GetData(), inner.Count()));
  } catch (const XRUVStatus& status) {
    if (!error) throw;
    *error = status.Status();
    return 0;
  }
}

IdentObj ASNCryptokiContInfo::WriteData(int* error) const {
  std::list<IdentObj> items;
  items.push_back(keyasn::detail::EncodeUniversalItem(
      4, static_cast<const char*>(Name), Name.Length()));
  items.push_back(keyasn::detail::EncodeWordItem(Number1));
  items.push_back(keyasn::detail::EncodeWordItem(Number2));
  items.push_back(ASNTPutSequence(Elements, 16, error));
  return ASNTPutSequence(items, 16, error);
}

ASNCryptokiElemInfo::ASNCryptokiElemInfo(const ASNCryptokiElemInfo& other) = default;

ASNCryptokiElemInfo& ASNCryptokiElemInfo::operator=(const ASNCryptokiElemInfo& other) = default;

ASNCryptokiContInfo::ASNCryptokiContInfo(const ASNCryptokiContInfo& other) = default;

ASNCryptokiContInfo& ASNCryptokiContInfo::operator=(const ASNCryptokiContInfo& other) = default;
