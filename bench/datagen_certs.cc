// W3's input: the certificates of a PEM bundle, re-encoded as DER.
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <stdexcept>

#include "bench/datagen.h"

namespace bench {

namespace {

// Reference walk for W3: counts every element, entering constructed ones only.
// An explicit stack of end offsets, so it shares no code with the measured walks.
uint64_t CountElements(const Bytes& der) {
  uint64_t count = 0;
  std::vector<size_t> ends{der.size()};
  size_t pos = 0;
  while (!ends.empty()) {
    if (pos == ends.back()) {
      ends.pop_back();
      continue;
    }
    if (pos + 2 > ends.back()) throw std::runtime_error("certificate walk: truncated");
    const uint8_t id = der[pos++];
    if ((id & 0x1F) == 0x1F) {
      while (der.at(pos) & 0x80) ++pos;
      ++pos;
    }
    size_t len = der.at(pos++);
    if (len & 0x80) {
      const size_t n = len & 0x7F;
      if (n == 0 || n > 4) throw std::runtime_error("certificate walk: length form");
      len = 0;
      for (size_t k = 0; k < n; ++k) len = (len << 8) | der.at(pos++);
    }
    if (pos + len > ends.back()) throw std::runtime_error("certificate walk: overrun");
    ++count;
    if (id & 0x20) {
      ends.push_back(pos + len);
    } else {
      pos += len;
    }
  }
  return count;
}

}  // namespace

void ReadCerts(const std::string& path) {
  Inputs* in = &MutableIn();
  BIO* bio = BIO_new_file(path.c_str(), "r");
  if (!bio) throw std::runtime_error("cannot open " + path);
  while (X509* x = PEM_read_bio_X509(bio, nullptr, nullptr, nullptr)) {
    unsigned char* der = nullptr;
    const int n = i2d_X509(x, &der);
    if (n > 0) {
      in->certs.emplace_back(der, der + n);
      OPENSSL_free(der);
    }
    X509_free(x);
  }
  ERR_clear_error();
  BIO_free(bio);
  for (const Bytes& c : in->certs) {
    in->w3_elements += CountElements(c);
    in->w3_bytes += c.size();
  }
  in->w3_certs = in->certs.size();
}

}  // namespace bench
