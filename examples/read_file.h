// ReadFile: the whole of a file as octets, shared by the example programs.
#ifndef KEYASN_EXAMPLES_READ_FILE_H_
#define KEYASN_EXAMPLES_READ_FILE_H_

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

inline std::vector<unsigned char> ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot open " + path);
  return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), {});
}

#endif  // KEYASN_EXAMPLES_READ_FILE_H_
