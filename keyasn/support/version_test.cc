#include "keyasn/version.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The header's numbers, the project's version (passed by the build) and the
// loaded library's text are one and the same.
TEST(VersionTest, HeaderProjectAndLibraryAgree) {
  const std::string numbers = std::to_string(KEYASN_VERSION_MAJOR) + "." +
                              std::to_string(KEYASN_VERSION_MINOR) + "." +
                              std::to_string(KEYASN_VERSION_PATCH);
  const struct {
    const char* what;
    std::string text;
  } rows[] = {
      {"KEYASN_VERSION_STRING", KEYASN_VERSION_STRING},
      {"project version", KEYASN_PROJECT_VERSION},
      {"keyasn::Version()", keyasn::Version()},
  };
  for (const auto& row : rows) EXPECT_EQ(row.text, numbers) << row.what;
}

}  // namespace
