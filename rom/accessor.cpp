#include <zentara/rom/accessor.h>

namespace Zentara::ROM {

Accessor::~Accessor() = default;

} // namespace Zentara::ROM
