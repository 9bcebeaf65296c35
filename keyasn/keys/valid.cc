#include "keyasn/keys/valid.h"

#include <cstring>
#include <list>

#include "keyasn/codec/sequence.h"
#include "keyasn/codec/tags.h"
#include "keyasn/keys/time_limit.h"
#include "keyasn/record/base_record.h"
#include "keyasn/record/tagged.h"

namespace keyasn {
namespace detail {

const CRUVFileTime kValidityTimeLimit(141690816010000000UL);

}  // namespace detail
}  // namespace keyasn

namespace {

using namespace keyasn::detail::tags;

unsigned int TimeTag(const CRUVFileTime& time) {
  return time < keyasn::detail::kValidityTimeLimit ? kUtcTimeTag : kGeneralizedTimeTag;
}

}  // namespace

CASNValid::CASNValid() = default;

CASNValid::CASNValid(const CRUVFileTime& from, const CRUVFileTime& to) { SetTime(from, to); }

CASNValid::CASNValid(const CASNValid& other) = default;

CASNValid::~CASNValid() = default;

CASNValid& CASNValid::operator=(const CASNValid& other) {
  if (this != &other) encoded = other.encoded;
  return *this;
}

const IdentObj& CASNValid::GetEncoded() const { return encoded; }

void CASNValid::SetEncoded(const IdentObj& encoding) { encoded = encoding; }

void CASNValid::SetTime(const CRUVFileTime& from, const CRUVFileTime& to) {
  std::list<IdentObj> items;
  CASNTBaseRecord record;
  record.SetTag(TimeTag(from));
  record.SetEntry(&from.GetFileTime(), sizeof(FILETIME));
  items.push_back(record.WriteData(nullptr));
  record.SetTag(TimeTag(to));
  record.SetEntry(&to.GetFileTime(), sizeof(FILETIME));
  items.push_back(record.WriteData(nullptr));
  encoded = ASNTPutSequence(items, kSequenceTag, nullptr);
}

CRUVFileTime CASNValid::GetTime(bool from) const {
  CRUVFileTime result;
  std::list<IdentObj> items;
  int code = 0;
  ASNTGetSequence(items, encoded.GetData(), encoded.Count(), &code);
  if (code != 0 || items.empty()) return result;

  const unsigned int wanted = from ? 0 : 1;
  unsigned int position = 0;
  for (const IdentObj& item : items) {
    Implicit record;
    record.SetEncodedEntry(item);
    record.SetOriginTag(0, kGeneralizedTimeTag);
    const bool tagged = record.GetClass() == kContextClass;
    const unsigned int key = tagged ? record.GetTag() : position;
    ++position;
    if (key != wanted) continue;

    int error = 0;
    const IdentObj value = tagged ? record.GetTaggedTypeRecord(&error) : record.GetRecord(&error);
    // A value shorter than a file time is no time at all.
    if (error == 0 && value.Count() >= sizeof(FILETIME)) {
      FILETIME time;
      std::memcpy(&time, value.GetData(), sizeof(FILETIME));
      result = time;
    }
    return result;
  }
  return result;
}
