// A Botan DataSource over a caller's buffer, without the copy that
// DataSource_Memory makes.
#ifndef KEYASN_BENCH_BOTAN_SOURCE_H_
#define KEYASN_BENCH_BOTAN_SOURCE_H_

#include <botan/data_src.h>

#include <algorithm>
#include <cstring>

namespace bench {

class SpanSource final : public Botan::DataSource {
 public:
  SpanSource(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  size_t read(uint8_t out[], size_t length) override {
    const size_t n = std::min(length, size_ - pos_);
    std::memcpy(out, data_ + pos_, n);
    pos_ += n;
    return n;
  }
  bool check_available(size_t n) override { return n <= size_ - pos_; }
  size_t peek(uint8_t out[], size_t length, size_t offset) const override {
    if (offset >= size_ - pos_) return 0;
    const size_t n = std::min(length, size_ - pos_ - offset);
    std::memcpy(out, data_ + pos_ + offset, n);
    return n;
  }
  bool end_of_data() const override { return pos_ == size_; }
  size_t get_bytes_read() const override { return pos_; }

 private:
  const uint8_t* data_;
  size_t size_;
  size_t pos_ = 0;
};

}  // namespace bench

#endif  // KEYASN_BENCH_BOTAN_SOURCE_H_
