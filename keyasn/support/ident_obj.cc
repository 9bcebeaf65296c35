#include "keyasn/support/ident_obj.h"

#include <algorithm>
#include <cstring>

namespace {

unsigned char* NewOctets(unsigned int size) {
  return size == 0 ? nullptr : new unsigned char[size];
}

void PutLe32(unsigned char* p, unsigned int v) {
  p[0] = static_cast<unsigned char>(v);
  p[1] = static_cast<unsigned char>(v >> 8);
  p[2] = static_cast<unsigned char>(v >> 16);
  p[3] = static_cast<unsigned char>(v >> 24);
}

unsigned int GetLe32(const unsigned char* p) {
  return p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<unsigned int>(p[3]) << 24);
}

}  // namespace

IdentObj::IdentObj() noexcept : m_size(0), m_data(nullptr) {}

IdentObj::IdentObj(const void* data, unsigned int size)
    : m_size(size), m_data(NewOctets(size)) {
  if (size == 0) return;
  if (data)
    std::memcpy(m_data, data, size);
  else
    std::memset(m_data, 0, size);
}

IdentObj::IdentObj(const IdentObj& other) : IdentObj(other.m_data, other.m_size) {}

IdentObj& IdentObj::operator=(const IdentObj& other) {
  if (this != &other) Assign(other.m_data, other.m_size);
  return *this;
}

IdentObj::~IdentObj() { delete[] m_data; }

unsigned int IdentObj::GetSize() const { return m_size; }

void IdentObj::Alloc(unsigned int size) {
  if (size == m_size) return;
  unsigned char* fresh = NewOctets(size);
  delete[] m_data;
  m_data = fresh;
  m_size = size;
}

void IdentObj::Realloc(unsigned int size) {
  if (size == m_size) return;
  unsigned char* fresh = NewOctets(size);
  const unsigned int kept = std::min(size, m_size);
  if (kept) std::memcpy(fresh, m_data, kept);
  if (size > kept) std::memset(fresh + kept, 0, size - kept);
  delete[] m_data;
  m_data = fresh;
  m_size = size;
}

void IdentObj::Empty() {
  delete[] m_data;
  m_data = nullptr;
  m_size = 0;
}

void IdentObj::Assign(const void* data, unsigned int size) {
  // A fresh buffer first, so that `data` may point into the old one.
  unsigned char* fresh = NewOctets(size);
  if (size) {
    if (data)
      std::memcpy(fresh, data, size);
    else
      std::memset(fresh, 0, size);
  }
  delete[] m_data;
  m_data = fresh;
  m_size = size;
}

unsigned int IdentObj::GetObjectSize() const { return 4 + m_size; }

unsigned int IdentObj::WriteData(void* target, unsigned int capacity) const {
  const unsigned long long need = 4ull + m_size;
  if (!target || capacity < need) return 0;
  unsigned char* out = static_cast<unsigned char*>(target);
  PutLe32(out, m_size);
  if (m_size) std::memcpy(out + 4, m_data, m_size);
  return static_cast<unsigned int>(need);
}

unsigned int IdentObj::ReadData(const void* source, unsigned int size) {
  if (!source || size < 4) return 0;
  const unsigned char* in = static_cast<const unsigned char*>(source);
  const unsigned int count = GetLe32(in);
  if (count > size - 4) return 0;
  Assign(in + 4, count);
  return 4 + count;
}

bool IdentObj::operator==(const IdentObj& other) const {
  return m_size == other.m_size &&
         (m_size == 0 || std::memcmp(m_data, other.m_data, m_size) == 0);
}

bool IdentObj::operator!=(const IdentObj& other) const { return !(*this == other); }

bool IdentObj::operator<(const IdentObj& other) const {
  const unsigned int common = std::min(m_size, other.m_size);
  if (common) {
    const int c = std::memcmp(m_data, other.m_data, common);
    if (c != 0) return c < 0;
  }
  return m_size < other.m_size;
}
