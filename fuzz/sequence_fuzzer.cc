// The three splitters (contents in memory, a whole element in memory, a whole
// element in a file) and the two joiners.
#include <cstring>
#include <list>

#include "fuzz/fuzz_support.h"
#include "keyasn/codec/header.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/support/file.h"

namespace {

using keyasn_fuzz::Guard;
using keyasn_fuzz::IsLibraryCode;
using keyasn_fuzz::Same;
using Items = std::list<IdentObj>;

bool CodeOk(int code) { return code == 0 || IsLibraryCode(code); }

// The items lie one behind the other from `data` on; returns their total size.
size_t CheckConsecutive(const Items& items, const uint8_t* data, size_t size) {
  size_t at = 0;
  for (const IdentObj& item : items) {
    KEYASN_FUZZ_CHECK(item.Count() <= size - at);
    KEYASN_FUZZ_CHECK(Same(item, data + at, item.Count()));
    at += item.Count();
  }
  return at;
}

// An item in the indefinite form (or whose long-form length reads as 0xFFFFFFFF,
// the same mark) is measured with the octets that follow it: a primitive one is
// copied without its closing 00 00, and only the first octet of an
// end-of-contents pair is looked at. Such an item need not split the same way
// elsewhere.
bool HasIndefinite(const Items& items) {
  for (const IdentObj& item : items) {
    IdentObj tag;
    if (GetTagFromEncoded(item, &tag, nullptr, nullptr, nullptr) != 0) return true;
    if (tag.Count() < item.Count() && item.GetData()[tag.Count()] == 0x80) return true;
    ASNT_ASN_STRUCT_INFO info;
    if (ASNTGetAsnInfo(info, item.GetData(), item.Count()) != 0 || info.Length == 0xFFFFFFFFu)
      return true;
  }
  return false;
}

void SplitContents(const uint8_t* data, size_t size) {
  Items items = {IdentObj("x", 1)};
  const int code = ASNTGetSequence(items, data, keyasn_fuzz::Size32(size));
  KEYASN_FUZZ_CHECK(CodeOk(code));
  if (code != 0) {
    KEYASN_FUZZ_CHECK(items.empty());
    return;
  }
  CheckConsecutive(items, data, size);
  size_t at = 0;
  for (const IdentObj& item : items) {
    ASNT_ASN_STRUCT_INFO info;
    KEYASN_FUZZ_CHECK(ASNTGetAsnInfo(info, data + at, keyasn_fuzz::Size32(size - at)) == 0);
    KEYASN_FUZZ_CHECK(info.Length != 0);  // an empty item ends the split
    at += item.Count();
  }
  // Joined again and split as a whole element, the items come back.
  if (items.empty() || HasIndefinite(items)) return;
  int joined = -1;
  const IdentObj sequence = ASNTPutSequence(items, 16, &joined);
  KEYASN_FUZZ_CHECK(joined == 0 && sequence.Count() > 0);
  Items again;
  int code2 = -1;
  const unsigned int used = ASNTGetSequence(again, sequence.GetData(), sequence.Count(), &code2);
  if (code2 == 0) {
    KEYASN_FUZZ_CHECK(used == sequence.Count());
    KEYASN_FUZZ_CHECK(again == items);
  }
}

void SplitElement(const uint8_t* data, size_t size) {
  const unsigned int n = keyasn_fuzz::Size32(size);
  const IdentObj marker("kept", 4);
  Items items = {marker};
  int code = -1;
  const unsigned int used = ASNTGetSequence(items, data, n, &code);
  KEYASN_FUZZ_CHECK(CodeOk(code));
  KEYASN_FUZZ_CHECK(!items.empty() && items.front() == marker);  // appended, not cleared
  items.pop_front();
  if (code == 0) {
    KEYASN_FUZZ_CHECK(used <= n);
    ASNT_ASN_STRUCT_INFO info;
    KEYASN_FUZZ_CHECK(ASNTGetAsnInfo(info, data, n) == 0 && info.Constructed);
    const size_t header = static_cast<size_t>(info.Contents - data);
    const size_t total = CheckConsecutive(items, data + header, size - header);
    KEYASN_FUZZ_CHECK(header + total <= used);
    // The raising form agrees.
    Items raisedItems;
    unsigned int raisedUsed = 0;
    KEYASN_FUZZ_CHECK(Guard([&] { raisedUsed = ASNTGetSequence(raisedItems, data, n, nullptr); }) == 0);
    KEYASN_FUZZ_CHECK(raisedUsed == used && raisedItems == items);
    // Joined again (definite form), split the same way.
    if (!items.empty() && !HasIndefinite(items)) {
      const unsigned int tag = info.Tag == 17 ? 17 : 16;
      int joined = -1;
      const IdentObj sequence = ASNTPutSequence(items, tag, &joined);
      KEYASN_FUZZ_CHECK(joined == 0);
      Items again;
      int code2 = -1;
      (void)ASNTGetSequence(again, sequence.GetData(), sequence.Count(), &code2);
      KEYASN_FUZZ_CHECK(code2 == 0 && again == items);
    }
  } else {
    Items raisedItems;
    KEYASN_FUZZ_CHECK(Guard([&] { (void)ASNTGetSequence(raisedItems, data, n, nullptr); }) == code);
  }
}

void SplitFile(const uint8_t* data, size_t size) {
  keyasn_fuzz::ScratchFile::Write(data, size);
  CRUVFile file(keyasn_fuzz::ScratchFile::Path(), "rb");
  Items items = {IdentObj("x", 1)};
  int code = -1;
  const unsigned int used = ASNTGetSequence(items, file, &code);
  KEYASN_FUZZ_CHECK(CodeOk(code));
  KEYASN_FUZZ_CHECK(used <= size);
  if (code == 0) {
    ASNT_ASN_STRUCT_INFO info;
    KEYASN_FUZZ_CHECK(ASNTGetAsnInfo(info, data, keyasn_fuzz::Size32(size)) == 0);
    const size_t header = static_cast<size_t>(info.Contents - data);
    CheckConsecutive(items, data + header, size - header);
  }
  CRUVFile again(keyasn_fuzz::ScratchFile::Path(), "rb");
  Items raisedItems;
  KEYASN_FUZZ_CHECK(Guard([&] { (void)ASNTGetSequence(raisedItems, again, nullptr); }) == code);
}

void Join(const uint8_t* data, size_t size) {
  keyasn_fuzz::Input in(data, size);
  std::list<unsigned int> sizes;
  Items items;
  uint64_t sum = 0;
  for (int i = in.Byte() % 6; i > 0; --i) {
    const unsigned int s = in.U32() >> (in.Byte() % 32);
    sizes.push_back(s);
    sum += s;
  }
  int code = -1;
  const IdentObj header = ASNTPutSequence(sizes, 17, &code);
  KEYASN_FUZZ_CHECK(code == 0 || (code == 206 && sum > 0xFFFFFFFFu));
  if (sum <= 0x7FFFFFFFu) {  // longer contents are not written in the long form
    std::vector<uint8_t> octets = keyasn_fuzz::Bytes(header);
    octets.push_back(0);
    ASNT_ASN_STRUCT_INFO info;
    KEYASN_FUZZ_CHECK(ASNTGetAsnInfo(info, octets.data(), keyasn_fuzz::Size32(octets.size())) == 0);
    KEYASN_FUZZ_CHECK(info.Tag == 17 && info.Constructed && info.Length == sum);
    KEYASN_FUZZ_CHECK(static_cast<size_t>(info.Contents - octets.data()) == header.Count());
  }
  const int tag = static_cast<int>(in.U32());
  if (tag != 16 && tag != 17) {
    KEYASN_FUZZ_CHECK(ASNTPutSequence(items, tag, &code).Count() == 0 && code == 28);
    KEYASN_FUZZ_CHECK(ASNTPutSequence(sizes, tag, &code).Count() == 0 && code == 28);
    KEYASN_FUZZ_CHECK(Guard([&] { (void)ASNTPutSequence(items, tag, nullptr); }) == 28);
  }
}

}  // namespace

KEYASN_FUZZ_TARGET(sequence) {
  SplitContents(data, size);
  SplitElement(data, size);
  SplitFile(data, keyasn_fuzz::FileFormSize(size));
  Join(data, size);
}
