// Every input of the shared seed corpora (arbitrary, mostly malformed BER/DER)
// through every command and TYPE: each is shown or refused with exit status 2
// (lint: 0, 4 for a finding that is an error, or 2; view: a page either way),
// and nothing crashes or reads out of bounds.
#include <dirent.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "commands.h"
#include "lint_command.h"
#include "types.h"
#include "view_command.h"

namespace keyasn {
namespace tool {
namespace {

std::vector<std::string> CorpusFiles() {
  std::vector<std::string> files;
  const std::string root = std::string(KEYASN_SHARED_DIR) + "/corpora/openssl/";
  for (const char* corpus : {"asn1", "asn1parse", "x509", "cms"}) {
    const std::string dir = root + corpus;
    DIR* d = opendir(dir.c_str());
    if (d == nullptr) continue;
    while (dirent* entry = readdir(d)) {
      if (entry->d_name[0] != '.') files.push_back(dir + "/" + entry->d_name);
    }
    closedir(d);
  }
  std::sort(files.begin(), files.end());
  return files;
}

TEST(ReplayTest, EveryCorpusInputIsShownOrRefused) {
  const std::vector<std::string> files = CorpusFiles();
  if (files.empty()) GTEST_SKIP() << "no seed corpora under " << KEYASN_SHARED_DIR;
  std::size_t shown = 0;
  std::size_t index = 0;
  for (const std::string& file : files) {
    SCOPED_TRACE(file);
    for (bool json : {false, true}) {
      DumpRequest dump;
      dump.file = file;
      dump.json = json;
      std::ostringstream out, err;
      const int status = RunDump(dump, out, err);
      ASSERT_TRUE(status == kExitOk || status == kExitMalformed) << status << err.str();
      EXPECT_EQ(status == kExitOk, err.str().empty()) << err.str();
    }
    for (bool json : {false, true}) {
      LintRequest lint;
      lint.file = file;
      lint.json = json;
      std::ostringstream out, err;
      const int status = RunLint(lint, out, err);
      ASSERT_TRUE(status == kExitOk || status == kExitFindings || status == kExitMalformed)
          << status << err.str();
      EXPECT_EQ(status == kExitMalformed, !err.str().empty()) << err.str();
    }
    for (const TypeInfo& type : AllTypes()) {
      SCOPED_TRACE(type.name);
      ShowRequest show;
      show.file = file;
      show.type = type.name;
      show.json = true;
      std::ostringstream out, err;
      const int status = RunShow(show, out, err);
      ASSERT_TRUE(status == kExitOk || status == kExitMalformed) << status << err.str();
      if (status == kExitOk) ++shown;
    }
    {
      // The page's members with each TYPE in turn.
      ViewRequest view;
      view.file = file;
      view.type = AllTypes()[index++ % AllTypes().size()].name;
      std::ostringstream out, err;
      const int status = RunView(view, out, err);
      ASSERT_TRUE(status == kExitOk || status == kExitMalformed) << status << err.str();
      EXPECT_EQ(status == kExitOk, err.str().empty()) << err.str();
      EXPECT_NE(out.str().find("</html>"), std::string::npos);
    }
  }
  RecordProperty("files", static_cast<int>(files.size()));
  RecordProperty("shown", static_cast<int>(shown));
}

}  // namespace
}  // namespace tool
}  // namespace keyasn
