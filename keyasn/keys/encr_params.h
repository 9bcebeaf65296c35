/// @file
/// CASNEncrParams: the parameter set of the GOST 28147-89 block cipher.
#ifndef KEYASN_KEYS_ENCR_PARAMS_H_
#define KEYASN_KEYS_ENCR_PARAMS_H_

#include <string>
#include <vector>

#include "keyasn/support/export.h"

/// CASNEncrParams holds a GOST 28147-89 parameter set. Its DER form is
///   SEQUENCE { OBJECT IDENTIFIER paramSetOid,
///              SEQUENCE { OCTET STRING substitutionBox, INTEGER mode,
///                         INTEGER shiftBits,
///                         SEQUENCE { OBJECT IDENTIFIER keyMeshingOid } } }
/// (the parameter-set identifier followed by Gost28147-89-ParamSetParameters of
/// RFC 4357). It is also filled from a 70-octet binary form (GetFromDsdr).
class KEYASN_API CASNEncrParams {
 public:
  /// CASNEncrParams() sets the defaults: paramSetOid "1.2.643.2.9.7.5.1." (a prefix
  /// that GetFromDsdr completes, so it ends in a dot on purpose), keyMeshingOid
  /// "1.2.643.2.2.14.1", mode 1, shiftBits 64, an empty substitution box.
  CASNEncrParams();
  /// Copies `other` (a deep copy).
  CASNEncrParams(const CASNEncrParams& other);
  /// Replaces the contents by a copy of `other`; returns this object.
  CASNEncrParams& operator=(const CASNEncrParams& other);
  ~CASNEncrParams();

  /// ReadData replaces the members from the DER element at `data`, each as soon as
  /// its item is decoded (a failure part-way keeps what was already replaced).
  /// Returns 0; 206 when the outer SEQUENCE does not hold exactly two items, the
  /// inner one fewer than four (a fifth and later ones are ignored) or the key
  /// meshing SEQUENCE none; the code of an XRUVStatus raised by the splitter or a
  /// typed decoder (131 for a wrong type or an INTEGER wider than four octets, 205,
  /// 206); 16 for any other standard exception.
  int ReadData(const unsigned char* data, unsigned int size);

  /// WriteData returns the DER element, the substitution box written as it is
  /// whatever its length. On any failure (a negative mode or shift cannot be
  /// written) it returns an empty vector and writes the one line
  /// "CASNEncrParams- Error write data \n" to the standard error stream.
  std::vector<unsigned char> WriteData();

  /// GetFromDsdr fills the members from the binary form: 4 octets of magic
  /// 40 01 00 00, the set's number as a low and a high octet, and the 64 octets of
  /// the substitution box with their half-octets exchanged; octets beyond the 70th
  /// are ignored. The number (high octet * 16 + low octet: a factor of 16, kept
  /// deliberately) is appended in decimal to paramSetOid, whatever it holds. mode,
  /// shiftBits and keyMeshingOid are not touched. Returns 0, or 134 with nothing
  /// changed for fewer than 70 octets, a null `data` or a wrong magic.
  int GetFromDsdr(const unsigned char* data, unsigned int size);

  std::string paramSetOid;                    ///< dotted text of the parameter set's identifier
  std::string keyMeshingOid;                  ///< dotted text of the key meshing algorithm
  int mode;                                   ///< cipher mode: 0 counter, 1 CFB, 2 CBC
  int shiftBits;                              ///< shift width in bits
  std::vector<unsigned char> substitutionBox;  ///< 64 octets once filled
};

#endif  // KEYASN_KEYS_ENCR_PARAMS_H_
