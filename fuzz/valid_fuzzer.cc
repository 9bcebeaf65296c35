// CASNValid: a validity period taken as it stands and its two times read back;
// times set by the caller read back as far as their written formats keep them.
#include "fuzz/fuzz_support.h"
#include "keyasn/keys/valid.h"
#include "keyasn/support/file_time.h"

namespace {

using keyasn_fuzz::Guard;
using keyasn_fuzz::Input;

uint64_t Ticks(const CRUVFileTime& time) {
  const FILETIME& ft = time.GetFileTime();
  return static_cast<uint64_t>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime;
}

// True when `ticks` goes out in a form that reads back to the same second:
// UTCTime from 1950 up to 2049, GeneralizedTime from 2050-01-01 00:00:01 to 9999.
bool KeptBySetTime(uint64_t ticks) {
  FILETIME ft{static_cast<unsigned int>(ticks), static_cast<unsigned int>(ticks >> 32)};
  SYSTEMTIME st;
  if (!FileTimeToSystemTime(&ft, &st)) return false;
  if (st.wYear < 1950 || st.wYear > 9999) return false;
  return !(st.wYear == 2050 && st.wMonth == 1 && st.wDay == 1 && st.wHour == 0 &&
           st.wMinute == 0 && st.wSecond == 0);
}

}  // namespace

KEYASN_FUZZ_TARGET(valid) {
  CASNValid period;
  period.SetEncoded(IdentObj(data, keyasn_fuzz::Size32(size)));
  (void)Guard([&] { (void)period.GetTime(true); });
  (void)Guard([&] { (void)period.GetTime(false); });
  CASNValid copy(period);
  KEYASN_FUZZ_CHECK(copy.GetEncoded() == period.GetEncoded());

  Input in(data, size);
  const uint64_t from = in.U64() >> (in.Byte() % 4);
  const uint64_t to = in.U64() >> (in.Byte() % 4);
  CASNValid set;
  const int raised = Guard([&] { set.SetTime(CRUVFileTime(from), CRUVFileTime(to)); });
  if (raised != 0) return;
  const uint64_t second = 10000000;
  if (KeptBySetTime(from)) KEYASN_FUZZ_CHECK(Ticks(set.GetTime(true)) == from / second * second);
  if (KeptBySetTime(to)) KEYASN_FUZZ_CHECK(Ticks(set.GetTime(false)) == to / second * second);
}
