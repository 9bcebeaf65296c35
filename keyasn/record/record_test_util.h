// Test helpers for the record tests: records from hex and a view of a record's
// protected state. Used by the *_test.cc files only.
#ifndef KEYASN_RECORD_RECORD_TEST_UTIL_H_
#define KEYASN_RECORD_RECORD_TEST_UTIL_H_

#include <gtest/gtest.h>

#include "keyasn/record/base_record.h"
#include "keyasn/support/test_util.h"

namespace keyasn {
namespace testing {

// Peek exposes a record's protected state to the tests.
class Peek : public CASNTBaseRecord {
 public:
  using CASNTBaseRecord::operator=;
  static const ASNT_ASN_STRUCT_INFO& Header(const CASNTBaseRecord& r) {
    return r.*(&Peek::header);
  }
  static const IdentObj& Entry(const CASNTBaseRecord& r) { return r.*(&Peek::entry); }
  static const IdentObj& Encoded(const CASNTBaseRecord& r) { return r.*(&Peek::encoded); }
  static bool HeaderIsZero(const CASNTBaseRecord& r) {
    const ASNT_ASN_STRUCT_INFO& h = Header(r);
    return h.Class == 0 && h.Constructed == 0 && h.Tag == 0 && h.Length == 0 && !h.Contents;
  }
};

// Record is a base record holding the element given in hex.
inline CASNTBaseRecord Record(const char* hex) {
  CASNTBaseRecord record;
  EXPECT_EQ(record.SetEncodedEntry(Hex(hex)), 0);
  return record;
}

}  // namespace testing
}  // namespace keyasn

#endif  // KEYASN_RECORD_RECORD_TEST_UTIL_H_
