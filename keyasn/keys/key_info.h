/// @file
/// ASNKeyInfo: the key description.
#ifndef KEYASN_KEYS_KEY_INFO_H_
#define KEYASN_KEYS_KEY_INFO_H_

#include "keyasn/keys/id_data.h"
#include "keyasn/keys/valid.h"
#include "keyasn/support/crypt_bit_blob.h"
#include "keyasn/support/export.h"
#include "keyasn/support/ident_obj.h"

/// ASNKeyInfo is SEQUENCE { Flags INTEGER, Number INTEGER, [0] AlgorithmId,
/// [1]..[5] Octets1..Octets5, [6] Validity, [7] KeyBits, [8] Octets8, [9] Octets9 },
/// every optional member under an explicit (constructed) context tag and present
/// only when non-empty. Callers fill and read the public members directly.
class KEYASN_API ASNKeyInfo {
 public:
  /// ASNKeyInfo() has every member at its default: zero or empty.
  ASNKeyInfo();
  /// Copies `other` (a deep copy).
  ASNKeyInfo(const ASNKeyInfo& other);
  ~ASNKeyInfo();
  /// operator= copies every member; self-assignment does nothing.
  ASNKeyInfo& operator=(const ASNKeyInfo& other);

  /// operator== compares Flags, Number, Octets1..Octets5, the Validity encoding and
  /// KeyBits. AlgorithmId, Octets8 and Octets9 take no part, on purpose.
  bool operator==(const ASNKeyInfo& other) const;
  /// The negation of operator==.
  bool operator!=(const ASNKeyInfo& other) const;

  /// WriteData(err) returns the encoded SEQUENCE, optional members in ascending tag
  /// order. `err` is passed to the final join only: a failure of the record model
  /// before it propagates as XRUVStatus whatever `err` is.
  IdentObj WriteData(int* err) const;
  /// ReadData(data, size, err) fills the structure and returns the length the
  /// sequence split reported (0 when the failure came before or inside the split).
  /// Optional members may come in any order; [1] and [2] also in their legacy
  /// INTEGER form; tags above 9 are skipped. Failures (206 "ASNKeyInfo::ReadData",
  /// "ASNKeyInfo::ReadData ASNTGetSequence", or the header parser's code with
  /// "ASNKeyInfo::ReadData ASNTGetAsnInfo", or any code from below) go to `*err`
  /// when it is given, else propagate. Octets8 and Octets9 keep their previous
  /// values unless the input carries them; nothing is rolled back after a failure.
  unsigned int ReadData(const void* data, unsigned int size, int* err);

  unsigned int Flags;                  ///< flag word; bit 0x10 sizes the legacy [2] form
  unsigned int Number;                 ///< a second integer, carried as is
  ASNAlgorithmIdentifier AlgorithmId;  ///< [0] the key's algorithm
  IdentObj Octets1;                    ///< [1]
  IdentObj Octets2;                    ///< [2]
  IdentObj Octets3;                    ///< [3]
  IdentObj Octets4;                    ///< [4]
  IdentObj Octets5;                    ///< [5]
  CASNValid Validity;                  ///< [6] validity period, held encoded
  CRUVCryptBitBlob KeyBits;            ///< [7] bit string with its unused-bit count
  IdentObj Octets8;                    ///< [8]
  IdentObj Octets9;                    ///< [9]
};

#endif  // KEYASN_KEYS_KEY_INFO_H_
