#include "types.h"

namespace keyasn {
namespace tool {

void AddRecordTypes(std::vector<TypeInfo>*) {}

}  // namespace tool
}  // namespace keyasn
