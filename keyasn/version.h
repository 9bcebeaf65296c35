/// @file
/// The library's version: the one compiled against (macros) and the one loaded
/// at run time (keyasn::Version).
#ifndef KEYASN_VERSION_H_
#define KEYASN_VERSION_H_

#include "keyasn/support/export.h"

/// Major version of the headers; the shared library's SONAME carries it.
#define KEYASN_VERSION_MAJOR 1
/// Minor version of the headers.
#define KEYASN_VERSION_MINOR 0
/// Patch version of the headers.
#define KEYASN_VERSION_PATCH 0
/// The three numbers above as "MAJOR.MINOR.PATCH".
#define KEYASN_VERSION_STRING "1.0.0"

namespace keyasn {

/// Returns the version of the library loaded at run time, as "MAJOR.MINOR.PATCH".
///
/// Compare it with KEYASN_VERSION_STRING to see whether a program runs against
/// the library it was built with. The text is static and never changes.
KEYASN_API const char* Version() noexcept;

}  // namespace keyasn

#endif  // KEYASN_VERSION_H_
