#include "types.h"

namespace keyasn {
namespace tool {

void AddKeyTypes(std::vector<TypeInfo>*) {}

}  // namespace tool
}  // namespace keyasn
