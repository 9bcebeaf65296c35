// Robustness sweeps: every corpus file, every sample and every saved fuzz input,
// whole, cut short and with one octet changed, fed to the readers of every fuzz
// target. Each reader must succeed or report a code or an XRUVStatus; nothing may
// escape, crash or trip a sanitizer. The samples get every prefix and every
// position changed; of the other files the small ones do too, the larger ones a
// deterministic sample of positions, so the sweep stays quick under the sanitizers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz_families.h"
#include "keyasn/support/status.h"

namespace keyasn_sweep {

std::string Feed(keyasn_fuzz::Family family, const std::vector<uint8_t>& input, bool null) {
  try {
    family(null ? nullptr : input.data(), null ? 0 : input.size());
  } catch (const XRUVStatus&) {
    // a reported failure
  } catch (const std::exception& e) {
    return std::string("exception: ") + e.what();
  } catch (...) {
    return "unknown exception";
  }
  return std::string();
}

namespace {

namespace fs = std::filesystem;

// Inputs up to this size get every prefix and every position changed.
constexpr size_t kEveryPosition = 48;
// Larger inputs: this many positions, spread over the input.
constexpr size_t kSampledPositions = 8;
// The costly families get fewer positions: those that also read every input from
// a file, one octet per call (hundreds of system calls a run), and the typed
// decoders, most of which raise on most inputs.
constexpr size_t kFileEveryPosition = 16;
constexpr size_t kFileSampledPositions = 4;

bool Costly(const std::string& family) {
  return family == "record" || family == "sequence" || family == "unit" ||
         family == "id_data" || family == "der";
}

struct InputFile {
  std::string name;
  std::vector<uint8_t> octets;
};

std::vector<InputFile> Load(const fs::path& root) {
  std::vector<InputFile> files;
  std::error_code ec;
  if (!fs::is_directory(root, ec)) return files;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (!entry.is_regular_file()) continue;
    const std::string ext = entry.path().extension().string();
    if (ext == ".md" || ext == ".tsv" || entry.path().filename() == "LICENSE.txt") continue;
    std::ifstream in(entry.path(), std::ios::binary);
    files.push_back({entry.path().string(),
                     std::vector<uint8_t>((std::istreambuf_iterator<char>(in)),
                                          std::istreambuf_iterator<char>())});
  }
  std::sort(files.begin(), files.end(),
            [](const InputFile& a, const InputFile& b) { return a.name < b.name; });
  return files;
}

const std::vector<InputFile>& Corpus() {
  static const std::vector<InputFile> files =
      Load(fs::path(KEYASN_SHARED_DIR) / "corpora");
  return files;
}

// The key records and parameter sets of the source tree (not their generator).
const std::vector<InputFile>& Samples() {
  static const std::vector<InputFile> files = [] {
    std::vector<InputFile> all = Load(fs::path(KEYASN_SOURCE_DIR) / "samples");
    all.erase(std::remove_if(all.begin(), all.end(),
                             [](const InputFile& file) {
                               const std::string ext = fs::path(file.name).extension().string();
                               return ext != ".der" && ext != ".bin";
                             }),
              all.end());
    return all;
  }();
  return files;
}

// The fuzz targets' seeds and the inputs that once broke a property.
const std::vector<InputFile>& SavedInputs() {
  static const std::vector<InputFile> files = [] {
    std::vector<InputFile> all;
    for (const char* dir : {"fuzz/seeds", "fuzz/regressions"}) {
      std::vector<InputFile> more = Load(fs::path(KEYASN_SOURCE_DIR) / dir);
      all.insert(all.end(), more.begin(), more.end());
    }
    return all;
  }();
  return files;
}

enum class Coverage { kEveryPosition, kSampled };

// Positions to cut at and to change: all of them for small inputs (or when asked
// for); otherwise the first and last few and the rest spread with a stride that
// depends on the file.
std::vector<size_t> Positions(size_t size, size_t salt, bool files, Coverage coverage) {
  std::vector<size_t> at;
  if (coverage == Coverage::kEveryPosition ||
      size <= (files ? kFileEveryPosition : kEveryPosition)) {
    for (size_t i = 0; i < size; ++i) at.push_back(i);
    return at;
  }
  const size_t head = files ? 2 : 4;
  for (size_t i = 0; i < head; ++i) at.push_back(i);
  for (size_t i = 1; i <= 2; ++i) at.push_back(size - i);
  const size_t spread = (files ? kFileSampledPositions : kSampledPositions) - at.size();
  for (size_t i = 0; i < spread; ++i)
    at.push_back(head + (i * (size - head - 2) + salt * 7919) / spread % (size - head - 2));
  return at;
}

// The octet put at a position: one of the values that steer a parser, rotating
// with the position, never the octet that was there.
uint8_t Changed(uint8_t was, size_t rotation) {
  static const uint8_t kValues[] = {0x00, 0xFF, 0x80, 0x84, 0x1F, 0x30, 0x81, 0x7F};
  for (size_t i = 0; i < 8; ++i) {
    const uint8_t v = kValues[(rotation + i) % 8];
    if (v != was) return v;
  }
  return static_cast<uint8_t>(was ^ 1);
}

// Runs `family` over each file, its prefixes and its changed forms; returns the
// number of failures (reporting the first few).
size_t Sweep(const std::string& familyName, const std::vector<InputFile>& files,
             Coverage coverage = Coverage::kSampled) {
  keyasn_fuzz::Family family = FamilyNamed(familyName);
  size_t failures = 0;
  size_t runs = 0;
  auto run = [&](const std::vector<uint8_t>& input, const std::string& what) {
    ++runs;
    keyasn_fuzz::SetFailureNote(familyName + ": " + what);
    const std::string escaped = Feed(family, input);
    if (!escaped.empty() && ++failures <= 5) ADD_FAILURE() << what << ": " << escaped;
  };
  for (size_t f = 0; f < files.size(); ++f) {
    const std::vector<uint8_t>& octets = files[f].octets;
    run(octets, files[f].name);
    for (size_t at : Positions(octets.size(), f, Costly(familyName), coverage)) {
      run(std::vector<uint8_t>(octets.begin(), octets.begin() + at),
          files[f].name + " cut at " + std::to_string(at));
      std::vector<uint8_t> changed = octets;
      changed[at] = Changed(changed[at], at + f);
      run(changed, files[f].name + " changed at " + std::to_string(at));
    }
  }
  ::testing::Test::RecordProperty("inputs", static_cast<int>(runs));
  return failures;
}

class Robustness : public ::testing::TestWithParam<std::string> {};

TEST_P(Robustness, CorpusWholeCutAndChanged) {
  ASSERT_FALSE(Corpus().empty()) << "no corpus below " << KEYASN_SHARED_DIR;
  EXPECT_EQ(Sweep(GetParam(), Corpus()), 0u);
}

TEST_P(Robustness, SamplesEveryPrefixAndEveryPositionChanged) {
  ASSERT_FALSE(Samples().empty());
  EXPECT_EQ(Sweep(GetParam(), Samples(), Coverage::kEveryPosition), 0u);
}

TEST_P(Robustness, SavedInputsWholeCutAndChanged) {
  ASSERT_FALSE(SavedInputs().empty());
  EXPECT_EQ(Sweep(GetParam(), SavedInputs()), 0u);
}

INSTANTIATE_TEST_SUITE_P(Every, Robustness, ::testing::ValuesIn(FamilyNames()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                           return info.param;
                         });

}  // namespace
}  // namespace keyasn_sweep
