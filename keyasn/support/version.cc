#include "keyasn/version.h"

namespace keyasn {

const char* Version() noexcept { return KEYASN_VERSION_STRING; }

}  // namespace keyasn
