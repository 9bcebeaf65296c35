#include "keyasn/support/status.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "keyasn/support/cruv_string.h"
#include "keyasn/support/file.h"
#include "keyasn/support/test_util.h"

namespace {

TEST(XRUVStatus, CarriesCodeAndPlace) {
  try {
    throw XRUVStatus(206, "CASNTBaseRecord::ReadASNInfo", false);
  } catch (const XRUVMsg& e) {  // caught through its base
    const XRUVStatus* s = dynamic_cast<const XRUVStatus*>(&e);
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->Status(), 206);
    EXPECT_STREQ(s->Where(), "CASNTBaseRecord::ReadASNInfo");
    EXPECT_FALSE(s->Flag());
    const std::string what = e.what();
    EXPECT_NE(what.find("206"), std::string::npos);
    EXPECT_NE(what.find("CASNTBaseRecord::ReadASNInfo"), std::string::npos);
    EXPECT_EQ(what.find('\n'), std::string::npos);
  }
}

TEST(XRUVStatus, PlaceTextKeptByteForByte) {
  const char where[] = "DerHelper::DecodeBool: \xcd\xe5\xe2\xe5\xf0\xed\xfb\xe9";
  XRUVStatus s(131, where, false);
  XRUVStatus copy = s;
  EXPECT_EQ(std::strcmp(copy.Where(), where), 0);
  EXPECT_EQ(copy.Status(), 131);
  XRUVStatus null_place(5, nullptr, true);
  EXPECT_STREQ(null_place.Where(), "");
  EXPECT_TRUE(null_place.Flag());
  std::exception& base = s;
  EXPECT_NE(std::string(base.what()).find("131"), std::string::npos);
}

TEST(CRUVString, LoadAndLength) {
  CRUVString empty;
  EXPECT_EQ(empty.Length(), 0u);
  EXPECT_STREQ(static_cast<const char*>(empty), "");
  CRUVString s("abc");
  EXPECT_EQ(s.Length(), 3u);
  const unsigned char data[] = {'x', 0, 'y'};
  s.Load(data, 3);
  EXPECT_EQ(s.Length(), 3u);
  EXPECT_EQ(std::memcmp(static_cast<const char*>(s), data, 3), 0);
  s.Load(nullptr, 0);
  EXPECT_EQ(s.Length(), 0u);
  CRUVString null_text(nullptr);
  EXPECT_EQ(null_text.Length(), 0u);
}

// A fresh empty scratch file for each test.
class TempFile : public ::testing::Test {
 protected:
  keyasn::testing::TempFile file_;
  const std::string path_ = file_.path();
};

TEST_F(TempFile, ReadWriteSeek) {
  {
    CRUVFile f(path_.c_str(), "wb");
    EXPECT_EQ(f.Write("0123456789", 10), 10u);
    EXPECT_EQ(f.Length(), 10u);
    EXPECT_STREQ(f.FileName(), path_.c_str());
  }
  const CRUVFile f(path_.c_str(), "rb");
  EXPECT_EQ(f.Length(), 10u);
  EXPECT_EQ(f.CurPos(), 0u);
  char buf[16] = {};
  EXPECT_EQ(f.Read(buf, 4), 4u);
  EXPECT_EQ(std::string(buf, 4), "0123");
  EXPECT_EQ(f.CurPos(), 4u);
  // A backward move of 3 arrives as 2^32 - 3.
  EXPECT_TRUE(f.Seek(static_cast<long>(0x100000000ul - 3), 1));
  EXPECT_EQ(f.CurPos(), 1u);
  EXPECT_TRUE(f.Seek(-1, 1));  // a plain negative long works too
  EXPECT_EQ(f.CurPos(), 0u);
  EXPECT_FALSE(f.Seek(-1, 1));  // before the start: refused, position kept
  EXPECT_EQ(f.CurPos(), 0u);
  EXPECT_TRUE(f.Seek(8, 0));
  EXPECT_EQ(f.Read(buf, 16), 2u);  // short read at the end
  EXPECT_EQ(f.Read(buf, 16), 0u);
  EXPECT_TRUE(f.Seek(5, 1));        // past the end is allowed
  EXPECT_EQ(f.CurPos(), 15u);
  EXPECT_EQ(f.Read(buf, 1), 0u);
  EXPECT_TRUE(f.Seek(static_cast<long>(0x100000000ul - 2), 2));
  EXPECT_EQ(f.CurPos(), 8u);
  EXPECT_FALSE(f.Seek(0, 7));
}

TEST_F(TempFile, OpenFailureThrowsErrno) {
  try {
    CRUVFile f("/nonexistent-dir/keyasn", "rb");
    FAIL() << "opened";
  } catch (const XRUVStatus& e) {
    EXPECT_EQ(e.Status(), ENOENT);
    EXPECT_STREQ(e.Where(), "/nonexistent-dir/keyasn");
    EXPECT_FALSE(e.Flag());
  }
}

TEST_F(TempFile, ReadOnWriteOnlyFileThrows) {
  CRUVFile f(path_.c_str(), "wb");
  char c;
  EXPECT_THROW(f.Read(&c, 1), XRUVStatus);
}

}  // namespace
