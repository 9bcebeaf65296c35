// Replays saved inputs through a fuzz target's entry point, without libFuzzer:
// every file named on the command line, and every file below each directory named,
// in name order, each from an exactly sized heap buffer. A broken property or a
// sanitizer report ends the run with a failure; a missing directory is skipped.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  std::vector<fs::path> files;
  for (int i = 1; i < argc; ++i) {
    const fs::path arg(argv[i]);
    std::error_code ec;
    if (fs::is_directory(arg, ec)) {
      for (const auto& entry : fs::recursive_directory_iterator(arg))
        if (entry.is_regular_file()) files.push_back(entry.path());
    } else if (fs::is_regular_file(arg, ec)) {
      files.push_back(arg);
    }
  }
  std::sort(files.begin(), files.end());
  for (const fs::path& file : files) {
    std::ifstream in(file, std::ios::binary);
    std::vector<char> octets((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in.eof() && in.fail()) {
      std::fprintf(stderr, "cannot read %s\n", file.c_str());
      return 1;
    }
    std::vector<uint8_t> exact(octets.begin(), octets.end());
    std::fprintf(stderr, "replaying %s (%zu octets)\n", file.c_str(), exact.size());
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
  }
  std::printf("%zu inputs replayed\n", files.size());
  if (files.empty()) {
    std::fprintf(stderr, "no inputs found\n");
    return 1;
  }
  return 0;
}
