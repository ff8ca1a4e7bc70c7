#include <zentara/core/descriptor_store_ro.h>
#include <zentara/cyclic_error_correction.h>

#include <utility>

namespace Zentara {

// Stands on the floor of the store and not on that of the class, which knows the store by name only.
CyclicErrorCorrection::CyclicErrorCorrection(Core::DescriptorStoreRO* store) {
    if (!store)
        return;
    for (std::uint32_t mode = 0; mode < MODE_COUNT; ++mode) {
        CyclicErrorRecord record;
        if (!store->getCyclicErrorRecord(static_cast<DepthNode::CameraMode>(mode), record))
            continue;
        modes[mode].algorithm = static_cast<CorrectionAlgorithm>(record.algorithm);
        modes[mode].parameters = std::move(record.parameters);
    }
}

} // namespace Zentara
