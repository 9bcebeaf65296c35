/// @file
/// Splitting constructed contents into items, and joining items.
#ifndef KEYASN_CODEC_SEQUENCE_H_
#define KEYASN_CODEC_SEQUENCE_H_

#include <list>

#include "keyasn/support/export.h"
#include "keyasn/support/file.h"
#include "keyasn/support/ident_obj.h"

/// ASNTGetSequence(items, data, size) splits contents octets into items (complete
/// element encodings). `items` is cleared first. Returns 0 or a code (list cleared).
/// An item with empty contents ends the split (kept for compatibility).
KEYASN_API int ASNTGetSequence(std::list<IdentObj>& items, const unsigned char* data,
                               unsigned int size);

/// ASNTGetSequence(items, data, size, error) splits a whole constructed element,
/// appending to `items` (not cleared). Returns the octets consumed. Failures go to
/// `*error`, or are thrown as XRUVStatus(code, "ASNTGetSequence", false) when
/// `error` is null.
KEYASN_API unsigned int ASNTGetSequence(std::list<IdentObj>& items,
                                        const unsigned char* data, unsigned int size,
                                        int* error);

/// ASNTGetSequence(items, file, error) splits the constructed element at the file's
/// current position; `items` is cleared. Returns the octets consumed.
KEYASN_API unsigned int ASNTGetSequence(std::list<IdentObj>& items, const CRUVFile& file,
                                        int* error);

/// ASNTPutSequence(items, tag, error) joins the items into a SEQUENCE (16) or SET
/// (17); any other tag gives code 28 (stored, empty result; or thrown with
/// "ASNTPutSequence").
KEYASN_API IdentObj ASNTPutSequence(const std::list<IdentObj>& items, int tag, int* error);

/// ASNTPutSequence(sizes, tag, error) returns only the identifier and length octets
/// of a SEQUENCE or SET whose items have the given sizes.
KEYASN_API IdentObj ASNTPutSequence(const std::list<unsigned int>& sizes, int tag,
                                    int* error);

#endif  // KEYASN_CODEC_SEQUENCE_H_
