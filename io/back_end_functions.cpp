#include "io/back_end_functions.h"

namespace Zentara::IO {

void BackEndFunctions::lookUp(void* library) {
    const auto lookUpAll = [library](auto&... functions) { (functions.lookUp(library), ...); };
    lookUpAll(createInstance, destroyInstance, initialize, dispose, getUnitType, getAccessMode, readFloat,
              writeFloat, readInt, writeInt, readBool, writeBool, setRegionOfInterest, getRegionOfInterest,
              getLastError, readSystemState, writeSystemState, getParameterRange, writeCalibration,
              readCalibration, getPhaseScaling);
}

} // namespace Zentara::IO
