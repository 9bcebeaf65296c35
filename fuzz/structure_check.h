// The round trip of the key structures: what a fresh structure reads from the
// input (when the read succeeds) it writes; written, read into a fresh structure
// and written again, the octets settle after one round.
#ifndef KEYASN_FUZZ_STRUCTURE_CHECK_H_
#define KEYASN_FUZZ_STRUCTURE_CHECK_H_

#include "fuzz/fuzz_support.h"

namespace keyasn_fuzz {

// Settles: every encoding a structure wrote must settle.
struct AlwaysSettles {
  bool operator()(const IdentObj&) const { return true; }
};

// `read(T&, data, size)` returns 0 or a code and may raise XRUVStatus;
// `write(const T&)` returns the encoding and may raise XRUVStatus; `settles(encoding)`
// tells whether octets written in the first round must settle (structures read
// through the record tree: see the ephemeral key target). Returns true when the
// input read successfully.
template <class T, class Make, class Read, class Write, class Settles = AlwaysSettles>
bool CheckStable(const uint8_t* data, size_t size, Make make, Read read, Write write,
                 Settles settles = Settles()) {
  const unsigned int n = Size32(size);
  T first = make();
  int code = -1;
  const int raised = Guard([&] { code = read(first, data, n); });
  KEYASN_FUZZ_CHECK(raised != 0 || code == 0 || IsLibraryCode(code));
  IdentObj written;
  const int writeRaised = Guard([&] { written = write(first); });  // also after a failure
  if (raised != 0 || code != 0 || writeRaised != 0 || written.Count() == 0) return false;

  // Members are copied as they stand, so an item that was only readable where it
  // stood (a primitive item in the indefinite form loses its closing 00 00) may
  // make the written octets unreadable; and a 32-bit field with its top bit set is
  // written as a negative INTEGER that reads back without sign extension, so the
  // first round may change such a value once. From the second write on, what reads
  // back writes the same octets.
  IdentObj previous = written;
  if (!settles(previous)) return true;
  for (int round = 0; round < 2; ++round) {
    T next = make();
    int nextCode = -1;
    if (Guard([&] { nextCode = read(next, previous.GetData(), previous.Count()); }) != 0 ||
        nextCode != 0)
      return true;
    IdentObj again;
    if (Guard([&] { again = write(next); }) != 0) return true;  // as in the first round
    if (round == 1) KEYASN_FUZZ_CHECK(again == previous);
    previous = again;
  }
  return true;
}

}  // namespace keyasn_fuzz

#endif  // KEYASN_FUZZ_STRUCTURE_CHECK_H_
