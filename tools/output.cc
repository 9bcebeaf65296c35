#include "output.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "common.h"
#include "input.h"

namespace keyasn {
namespace tool {

void Report(std::ostream& err, const std::string& name, const std::string& message) {
  err << "keyasn: " << name << ": " << message << '\n';
}

std::string OutputName(const std::string& path) {
  return path.empty() || path == "-" ? "<stdout>" : path;
}

std::string WriteFailure() {
  // The stream keeps no reason of its own; errno still holds the write's.
  return errno != 0 ? std::string("cannot write: ") + std::strerror(errno) : "cannot write";
}

int WriteOctets(const unsigned char* data, std::size_t size, OutputForm form,
                const std::string& label, const std::string& path, std::ostream& out,
                std::ostream& err) {
  std::string text;
  switch (form) {
    case OutputForm::kDer:
      text.assign(reinterpret_cast<const char*>(data), size);
      break;
    case OutputForm::kHex:
      text = ToHex(data, size) + "\n";
      break;
    case OutputForm::kPem:
      text = "-----BEGIN " + label + "-----\n" + EncodeBase64(Bytes(data, data + size)) +
             "-----END " + label + "-----\n";
      break;
  }
  errno = 0;
  if (path.empty() || path == "-") {
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.flush();
    if (!out) {
      Report(err, OutputName(path), WriteFailure());
      return kExitIo;
    }
    return kExitOk;
  }
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!file) {
    Report(err, path, std::string("cannot open for writing: ") + std::strerror(errno));
    return kExitIo;
  }
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  if (!file) {
    Report(err, path, WriteFailure());
    return kExitIo;
  }
  return kExitOk;
}

}  // namespace tool
}  // namespace keyasn
