#include "keyasn/keys/valid.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "keyasn/keys/time_limit.h"
#include "keyasn/support/file_time.h"
#include "keyasn/support/status.h"
#include "keyasn/support/test_util.h"

namespace {

using keyasn::testing::Base64;
using keyasn::testing::Hex;
using keyasn::testing::Raised;
using keyasn::testing::TempFile;
using keyasn::testing::ToHex;

CRUVFileTime At(unsigned short year, unsigned short month, unsigned short day,
                unsigned short hour = 0, unsigned short minute = 0, unsigned short second = 0,
                unsigned short milliseconds = 0) {
  SYSTEMTIME st = {year, month, 0, day, hour, minute, second, milliseconds};
  FILETIME ft = {0, 0};
  EXPECT_TRUE(SystemTimeToFileTime(&st, &ft));
  return CRUVFileTime(ft);
}

// Text renders a time as YYYY-MM-DD hh:mm:ss.mmm ("none" for the zero time).
std::string Text(const CRUVFileTime& time) {
  if (time.GetTicks() == 0) return "none";
  SYSTEMTIME st;
  if (!FileTimeToSystemTime(&time.GetFileTime(), &st)) return "unconvertible";
  char text[64];
  std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u.%03u", st.wYear, st.wMonth,
                st.wDay, st.wHour, st.wMinute, st.wSecond, st.wMilliseconds);
  return text;
}

// Element builds a time element of `tag` (one octet) around the text.
std::string Element(const char* tag, const std::string& text) {
  std::string hex = tag;
  char length[4];
  std::snprintf(length, sizeof length, " %02X", static_cast<unsigned int>(text.size()));
  hex += length;
  for (unsigned char c : text) {
    char octet[4];
    std::snprintf(octet, sizeof octet, " %02X", c);
    hex += octet;
  }
  return hex;
}

// Sequence wraps element hex strings in a short-form SEQUENCE.
std::string Sequence(const std::vector<std::string>& elements) {
  std::string body;
  for (const std::string& e : elements) body += " " + e;
  char head[8];
  std::snprintf(head, sizeof head, "30 %02X", static_cast<unsigned int>(Hex(body).Count()));
  return head + body;
}

CASNValid Encoded(const std::string& hex) {
  CASNValid valid;
  valid.SetEncoded(Hex(hex));
  return valid;
}

TEST(CASNValid, TimeLimitBuiltAtLoad) {
  EXPECT_EQ(keyasn::detail::kValidityTimeLimit.GetTicks(), 141690816010000000UL);
  EXPECT_EQ(Text(keyasn::detail::kValidityTimeLimit), "2050-01-01 00:00:01.000");
}

TEST(CASNValid, DefaultHoldsNothing) {
  const CASNValid valid;
  EXPECT_EQ(valid.GetEncoded().Count(), 0u);
  EXPECT_EQ(valid.GetTime(true).GetTicks(), 0u);
  EXPECT_EQ(valid.GetTime(false).GetTicks(), 0u);
}

TEST(CASNValid, ChoosesTheTimeTypeForEachTimeOnItsOwn) {
  struct Row {
    const char* name;
    CRUVFileTime from;
    CRUVFileTime to;
    std::string encoding;
  } rows[] = {
      {"UTCTime then GeneralizedTime across the limit", At(2049, 12, 31, 23, 59, 59),
       At(2050, 1, 1, 0, 0, 1),
       Sequence({Element("17", "491231235959Z"), Element("18", "20500101000001Z")})},
      {"the turn of 2050 still goes out as UTCTime", At(2050, 1, 1), At(2050, 1, 1, 0, 0, 0, 999),
       Sequence({Element("17", "500101000000Z"), Element("17", "500101000000Z")})},
      {"both before the limit", At(2024, 1, 1), At(2049, 12, 31, 23, 59, 59),
       Sequence({Element("17", "240101000000Z"), Element("17", "491231235959Z")})},
      {"both from the limit on", At(2050, 1, 1, 0, 0, 1), At(9999, 12, 31, 23, 59, 59),
       Sequence({Element("18", "20500101000001Z"), Element("18", "99991231235959Z")})},
      {"start after end is not checked", At(2060, 6, 1), At(2001, 2, 3, 4, 5, 6),
       Sequence({Element("18", "20600601000000Z"), Element("17", "010203040506Z")})},
      {"before 1950 goes out as UTCTime too", At(1949, 12, 31), At(1601, 1, 1),
       Sequence({Element("17", "491231000000Z"), Element("17", "010101000000Z")})},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CASNValid valid;
    valid.SetTime(row.from, row.to);
    EXPECT_EQ(ToHex(valid.GetEncoded()), ToHex(Hex(row.encoding)));
    const CASNValid constructed(row.from, row.to);
    EXPECT_EQ(ToHex(constructed.GetEncoded()), ToHex(Hex(row.encoding)));
  }
}

TEST(CASNValid, SetTimeThenGetTime) {
  struct Row {
    const char* name;
    CRUVFileTime from;
    CRUVFileTime to;
    const char* start;
    const char* end;
  } rows[] = {
      {"milliseconds are dropped", At(2024, 1, 1, 12, 34, 56, 789), At(2049, 12, 31, 23, 59, 59),
       "2024-01-01 12:34:56.000", "2049-12-31 23:59:59.000"},
      {"across the limit", At(2049, 12, 31, 23, 59, 59), At(2050, 1, 1, 0, 0, 1),
       "2049-12-31 23:59:59.000", "2050-01-01 00:00:01.000"},
      // The two-digit year 50 reads back as 1950: the written format keeps no more.
      {"the turn of 2050 comes back as 1950", At(2024, 5, 6), At(2050, 1, 1),
       "2024-05-06 00:00:00.000", "1950-01-01 00:00:00.000"},
      {"far future", At(2050, 1, 1, 0, 0, 2), At(9999, 12, 31, 23, 59, 59),
       "2050-01-01 00:00:02.000", "9999-12-31 23:59:59.000"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const CASNValid valid(row.from, row.to);
    EXPECT_EQ(Text(valid.GetTime(true)), row.start);
    EXPECT_EQ(Text(valid.GetTime(false)), row.end);
  }
}

TEST(CASNValid, GetTimeFromEncodings) {
  struct Row {
    const char* name;
    std::string encoding;
    const char* start;
    const char* end;
  } rows[] = {
      {"empty", "", "none", "none"},
      {"one item", Sequence({Element("17", "240101000000Z")}), "2024-01-01 00:00:00.000", "none"},
      {"tagged [1] then [0]",
       Sequence({Element("81", "20300101000000Z"), Element("80", "20200101000000Z")}),
       "2020-01-01 00:00:00.000", "2030-01-01 00:00:00.000"},
      {"tagged items read as GeneralizedTime",
       Sequence({Element("80", "20200101000000Z"), Element("81", "300101000000Z")}),
       "2020-01-01 00:00:00.000", "none"},
      {"constructed tags are taken by number too",
       Sequence({Element("A1", "20300101000000Z"), Element("A0", "20200101000000Z")}),
       "2020-01-01 00:00:00.000", "2030-01-01 00:00:00.000"},
      {"positions count tagged items",
       Sequence({Element("80", "20200101000000Z"), Element("17", "300101000000Z")}),
       "2020-01-01 00:00:00.000", "2030-01-01 00:00:00.000"},
      {"the first matching item wins",
       Sequence({Element("81", "20300101000000Z"), Element("17", "310101000000Z")}), "none",
       "2030-01-01 00:00:00.000"},
      {"tags above 1 never match",
       Sequence({Element("82", "20300101000000Z"), Element("83", "20310101000000Z")}), "none",
       "none"},
      {"GeneralizedTime by position",
       Sequence({Element("18", "20500101000001Z"), Element("18", "20600101000000+0130")}),
       "2050-01-01 00:00:01.000", "2060-01-01 01:30:00.000"},
      {"undecodable start", Sequence({Element("17", "24013X000000Z"), Element("17", "250101000000Z")}),
       "none", "2025-01-01 00:00:00.000"},
      {"a value shorter than a time is no time", "30 06 02 01 05 02 01 07", "none", "none"},
      {"not a sequence", Element("04", "240101000000Z"), "none", "none"},
      {"truncated sequence", "30 0F 17 0D 32 34", "none", "none"},
      {"indefinite sequence",
       "30 80 " + Element("17", "240101000000Z") + " " + Element("17", "250101000000Z") + " 00 00",
       "2024-01-01 00:00:00.000", "2025-01-01 00:00:00.000"},
      {"empty sequence", "30 00", "none", "none"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const CASNValid valid = Encoded(row.encoding);
    EXPECT_EQ(Text(valid.GetTime(true)), row.start);
    EXPECT_EQ(Text(valid.GetTime(false)), row.end);
  }
}

TEST(CASNValid, EveryPrefixReadsSafely) {
  const std::string whole =
      Sequence({Element("17", "491231235959Z"), Element("18", "20500101000001Z")});
  const IdentObj all = Hex(whole);
  for (unsigned int n = 0; n <= all.Count(); ++n) {
    SCOPED_TRACE(n);
    CASNValid valid;
    valid.SetEncoded(IdentObj(all.GetData(), n));
    const CRUVFileTime start = valid.GetTime(true);
    const CRUVFileTime end = valid.GetTime(false);
    if (n < all.Count()) {
      EXPECT_EQ(end.GetTicks(), 0u);
    } else {
      EXPECT_EQ(Text(start), "2049-12-31 23:59:59.000");
      EXPECT_EQ(Text(end), "2050-01-01 00:00:01.000");
    }
  }
}

TEST(CASNValid, UnencodableTimeLeavesThePeriodAsItWas) {
  CASNValid valid(At(2024, 1, 1), At(2025, 1, 1));
  const IdentObj before = valid.GetEncoded();
  const CRUVFileTime never(~0UL);  // past the last convertible year
  const auto failure = Raised([&] { valid.SetTime(At(2024, 1, 1), never); });
  EXPECT_NE(failure.code, 0);
  EXPECT_EQ(ToHex(valid.GetEncoded()), ToHex(before));
}

TEST(CASNValid, CopyAndAssign) {
  const CASNValid source(At(2024, 1, 1), At(2060, 1, 1));
  CASNValid copy(source);
  EXPECT_EQ(ToHex(copy.GetEncoded()), ToHex(source.GetEncoded()));
  CASNValid assigned;
  assigned = source;
  EXPECT_EQ(ToHex(assigned.GetEncoded()), ToHex(source.GetEncoded()));
  const CASNValid& self = assigned;
  assigned = self;
  EXPECT_EQ(ToHex(assigned.GetEncoded()), ToHex(source.GetEncoded()));
  assigned = CASNValid();
  EXPECT_EQ(assigned.GetEncoded().Count(), 0u);
  EXPECT_EQ(copy.GetEncoded().Count(), source.GetEncoded().Count());
}

// --- Validity periods of real certificates ---------------------------------

// Tlv reads one definite-length DER header at `pos`; false when it does not fit.
bool Tlv(const std::vector<unsigned char>& der, size_t pos, size_t end, unsigned char& tag,
         size_t& header, size_t& length) {
  if (pos + 2 > end) return false;
  tag = der[pos];
  size_t p = pos + 1;
  const unsigned char first = der[p++];
  if (first < 0x80) {
    length = first;
  } else {
    const size_t n = first & 0x7F;
    if (n == 0 || n > 4 || p + n > end) return false;
    length = 0;
    for (size_t i = 0; i < n; ++i) length = (length << 8) | der[p++];
  }
  header = p - pos;
  return length <= end - p;
}

// ValidityOf returns the Validity SEQUENCE of a certificate, or nothing.
std::vector<unsigned char> ValidityOf(const std::vector<unsigned char>& der) {
  unsigned char tag;
  size_t header, length;
  if (!Tlv(der, 0, der.size(), tag, header, length) || tag != 0x30) return {};
  size_t pos = header;  // the TBSCertificate
  if (!Tlv(der, pos, der.size(), tag, header, length) || tag != 0x30) return {};
  const size_t end = pos + header + length;
  pos += header;
  int index = 0;
  while (pos < end && Tlv(der, pos, end, tag, header, length)) {
    if (index == 0 && tag == 0xA0) {  // version
      pos += header + length;
      continue;
    }
    if (index == 3) {
      if (tag != 0x30) return {};
      return std::vector<unsigned char>(der.begin() + pos, der.begin() + pos + header + length);
    }
    ++index;
    pos += header + length;
  }
  return {};
}

// OpensslDates asks openssl for notBefore and notAfter as "YYYY-MM-DD hh:mm:ss".
bool OpensslDates(const std::string& pem, std::string& notBefore, std::string& notAfter) {
  TempFile file(std::vector<unsigned char>(pem.begin(), pem.end()));
  const std::string command = std::string("openssl x509 -noout -startdate -enddate ") +
                              "-dateopt iso_8601 -in '" + file.path() + "' 2>/dev/null";
  std::FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return false;
  char line[256];
  while (std::fgets(line, sizeof line, pipe) != nullptr) {
    std::string text(line);
    while (!text.empty() && (text.back() == '\n' || text.back() == 'Z')) text.pop_back();
    if (text.rfind("notBefore=", 0) == 0) notBefore = text.substr(10);
    if (text.rfind("notAfter=", 0) == 0) notAfter = text.substr(9);
  }
  return pclose(pipe) == 0 && !notBefore.empty() && !notAfter.empty();
}

TEST(CASNValid, ReadsTheValidityOfSystemCertificates) {
  std::ifstream bundle("/etc/ssl/certs/ca-certificates.crt");
  ASSERT_TRUE(bundle) << "the ca-certificates package provides the bundle";
  std::stringstream all;
  all << bundle.rdbuf();
  const std::string text = all.str();

  const std::string begin = "-----BEGIN CERTIFICATE-----";
  const std::string end = "-----END CERTIFICATE-----";
  int checked = 0, generalized = 0;
  for (size_t at = text.find(begin); at != std::string::npos; at = text.find(begin, at)) {
    const size_t stop = text.find(end, at);
    ASSERT_NE(stop, std::string::npos);
    const std::string pem = text.substr(at, stop + end.size() - at) + "\n";
    const std::vector<unsigned char> der = Base64(text.substr(at + begin.size(), stop - at - begin.size()));
    at = stop;

    const std::vector<unsigned char> validity = ValidityOf(der);
    ASSERT_FALSE(validity.empty()) << "certificate " << checked;
    std::string notBefore, notAfter;
    ASSERT_TRUE(OpensslDates(pem, notBefore, notAfter)) << "certificate " << checked;
    SCOPED_TRACE("certificate " + std::to_string(checked) + " " + notBefore + " .. " + notAfter);

    CASNValid valid;
    valid.SetEncoded(IdentObj(validity.data(), static_cast<unsigned int>(validity.size())));
    EXPECT_EQ(Text(valid.GetTime(true)), notBefore + ".000");
    EXPECT_EQ(Text(valid.GetTime(false)), notAfter + ".000");
    if (validity[2] == 0x18 || validity[2 + 2 + validity[3]] == 0x18) ++generalized;
    ++checked;
  }
  EXPECT_GT(checked, 50);
  RecordProperty("certificates", checked);
  RecordProperty("generalized_time", generalized);
}

}  // namespace
