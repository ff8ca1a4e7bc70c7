#include <zentara/rom/memory_manager.h>

namespace Zentara::ROM {

MemoryManager::~MemoryManager() = default;

} // namespace Zentara::ROM
