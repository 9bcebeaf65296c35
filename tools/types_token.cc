#include "types.h"

namespace keyasn {
namespace tool {

void AddTokenTypes(std::vector<TypeInfo>*) {}

}  // namespace tool
}  // namespace keyasn
