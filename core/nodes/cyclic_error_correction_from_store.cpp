#include <zentara/core/descriptor_store_ro.h>
#include <zentara/cyclic_error_correction.h>

#include <utility>

#include <zentara/utils/format.h>

#include "utils/log_warning.h"

namespace Zentara {

// Stands on the floor of the store and not on that of the class, which knows the store by name only.
CyclicErrorCorrection::CyclicErrorCorrection(Core::DescriptorStoreRO* store) {
    if (!store)
        return;
    // Both modes or none: a store that fails for the second must not leave the first alone corrected.
    auto read = modes;
    try {
        for (std::uint32_t mode = 0; mode < MODE_COUNT; ++mode) {
            CyclicErrorRecord record;
            if (!store->getCyclicErrorRecord(static_cast<DepthNode::CameraMode>(mode), record))
                continue;
            read[mode].algorithm = static_cast<CorrectionAlgorithm>(record.algorithm);
            read[mode].parameters = std::move(record.parameters);
        }
        modes = std::move(read);
    } catch (const std::exception& failure) {
        Utils::logWarning(
            Utils::Format("CyclicErrorCorrection: the descriptor store has no record to give: %") %
            failure.what());
    } catch (...) {
        Utils::logWarning("CyclicErrorCorrection: the descriptor store has no record to give");
    }
}

} // namespace Zentara
