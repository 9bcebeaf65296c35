#include "load.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "bundled_sample.h"

namespace keyasn {
namespace tool {

namespace {

// Inputs larger than this are not scanned whole to detect their form: their
// first octets decide (a text form is text from the start).
constexpr std::size_t kDetectWhole = 16u << 20;
constexpr std::size_t kDetectPrefix = 64u << 10;
// Mapped pages are given back in steps of this size.
constexpr std::size_t kReleaseStep = 8u << 20;

bool IsTextOctet(unsigned char c) {
  return (c >= 0x20 && c < 0x7F) || c == '\n' || c == '\r' || c == '\t';
}

bool AllText(const unsigned char* data, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    if (!IsTextOctet(data[i])) return false;
  }
  return size > 0;
}

}  // namespace

Input::~Input() {
  if (map_ != nullptr) munmap(map_, map_size_);
}

void Input::Release(std::size_t offset) {
  if (map_ == nullptr || data_ != map_ || offset < released_ + kReleaseStep) return;
  const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t upto = offset / page * page;
  madvise(map_, upto, MADV_DONTNEED);
  released_ = upto;
}

std::string Input::Hint() const {
  if (!detected_ || !text_ || form_ == InputForm::kPem) return std::string();
  return " (the text was taken for " + std::string(FormName(form_)) +
         "; name its form with --inform der|pem|base64|hex)";
}

bool StandardInputIsData() {
  struct stat st;
  if (fstat(STDIN_FILENO, &st) != 0) return false;
  return S_ISFIFO(st.st_mode) || S_ISREG(st.st_mode) || S_ISSOCK(st.st_mode);
}

std::unique_ptr<Input> LoadInput(const std::string& file, InputForm form) {
  std::unique_ptr<Input> input(new Input);
  const bool use_stdin = file == "-" || (file.empty() && StandardInputIsData());
  if (file.empty() && !use_stdin) {
    input->name_ = "<bundled sample>";
    input->sample_ = true;
    input->data_ = kBundledSample;
    input->size_ = kBundledSampleSize;
    input->form_ = InputForm::kDer;
    input->detected_ = form == InputForm::kAuto;
    return input;
  }
  input->name_ = use_stdin ? "<stdin>" : file;
  const int fd = use_stdin ? STDIN_FILENO : open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) throw ToolError(kExitIo, std::string("cannot open: ") + std::strerror(errno));
  struct stat st;
  if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0) {
    void* map = mmap(nullptr, static_cast<std::size_t>(st.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
    if (map != MAP_FAILED) {
      madvise(map, static_cast<std::size_t>(st.st_size), MADV_SEQUENTIAL);
      input->map_ = map;
      input->map_size_ = static_cast<std::size_t>(st.st_size);
    }
  }
  if (input->map_ == nullptr) {
    if (!use_stdin) close(fd);
    Source source = ReadSource(file.empty() ? "-" : file);
    input->held_.swap(source.bytes);
  } else if (!use_stdin) {
    close(fd);
  }
  const unsigned char* raw = input->map_ != nullptr
                                 ? static_cast<const unsigned char*>(input->map_)
                                 : input->held_.data();
  const std::size_t raw_size = input->map_ != nullptr ? input->map_size_ : input->held_.size();
  if (raw_size == 0) throw ToolError(kExitMalformed, "empty input");
  input->text_ = AllText(raw, raw_size < kDetectPrefix ? raw_size : kDetectPrefix);
  InputForm chosen = form;
  if (chosen == InputForm::kAuto && raw_size > kDetectWhole && !input->text_) {
    chosen = InputForm::kDer;  // a large binary input: not scanned twice
  }
  input->detected_ = form == InputForm::kAuto;
  if (chosen == InputForm::kDer) {
    input->form_ = InputForm::kDer;
    input->data_ = raw;
    input->size_ = raw_size;
    return input;
  }
  if (chosen == InputForm::kAuto) chosen = DetectForm(raw, raw_size);
  input->form_ = chosen;
  if (chosen == InputForm::kDer) {
    input->data_ = raw;
    input->size_ = raw_size;
    return input;
  }
  Bytes decoded = DecodeText(raw, raw_size, chosen);
  input->held_.swap(decoded);
  if (input->map_ != nullptr) {
    munmap(input->map_, input->map_size_);
    input->map_ = nullptr;
  }
  input->data_ = input->held_.data();
  input->size_ = input->held_.size();
  return input;
}

}  // namespace tool
}  // namespace keyasn
