// The octets a command works on: a regular file mapped into memory (so that large
// inputs are read as the walk goes, never copied whole), standard input read
// whole, or the bundled sample; then turned from their text form into BER/DER.
#ifndef KEYASN_TOOLS_LOAD_H_
#define KEYASN_TOOLS_LOAD_H_

#include <cstddef>
#include <memory>
#include <string>

#include "input.h"

namespace keyasn {
namespace tool {

class Input {
 public:
  Input() = default;
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
  ~Input();

  const std::string& name() const { return name_; }
  // The BER/DER octets (after PEM, base64 or hex text is decoded).
  const unsigned char* data() const { return data_; }
  std::size_t size() const { return size_; }
  // The form the input was read as, and whether it was detected or named.
  InputForm form() const { return form_; }
  bool detected() const { return detected_; }
  // Text is true when the raw input is printable ASCII text.
  bool text() const { return text_; }
  bool sample() const { return sample_; }
  // Release says that the octets before `offset` will not be read again, so the
  // pages of a mapped file can leave memory.
  void Release(std::size_t offset);
  // Describe is "as FORM" for messages, so the user sees what was assumed.
  std::string Assumed() const { return std::string("as ") + FormName(form_); }
  // Hint is the advice to name the form, for a detected text form that did not
  // decode to BER/DER (empty otherwise).
  std::string Hint() const;

 private:
  friend std::unique_ptr<Input> LoadInput(const std::string&, InputForm);
  std::string name_;
  const unsigned char* data_ = nullptr;
  std::size_t size_ = 0;
  InputForm form_ = InputForm::kDer;
  bool detected_ = true;
  bool text_ = false;
  bool sample_ = false;
  void* map_ = nullptr;  // the mapping of a regular file
  std::size_t map_size_ = 0;
  std::size_t released_ = 0;
  Bytes held_;  // octets read or decoded
};

// StandardInputIsData: standard input is a pipe, a socket or a regular file (not
// a terminal or a device such as /dev/null), so a command without FILE reads it.
bool StandardInputIsData();

// LoadInput reads `file` ("-": standard input; empty: standard input when it is
// data, otherwise the bundled sample) in `form`. Throws ToolError: kExitIo when
// it cannot be read, kExitMalformed when the text is not of its form.
std::unique_ptr<Input> LoadInput(const std::string& file, InputForm form);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_LOAD_H_
