// Writes the first inputs of the storage's fuzz targets with the library's own writers: rom_seeds DIRECTORY
#include <cstdio>
#include <fstream>
#include <string>

#include <zentara/rom/configuration.h>
#include <zentara/rom/diagnostic.h>
#include <zentara/rom/gradient_distortion_correction.h>
#include <zentara/rom/rom.h>
#include <zentara/rom/system_calibration.h>
#include <zentara/rom/system_info.h>

#include "support/rom_image.h"

namespace {

using namespace Zentara;
using namespace Zentara::TestSupport;

void save(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void fill(ROM::ROM& rom) {
    const ROM::IntrinsicsData depth(ROM::IntrinsicsData::Type::Depth, 320, 240, 1, 2, 3, 4, 5, 6, 7, 8, 9);
    const ROM::SystemInfo info({}, {});
    const ROM::SystemCalibration calibration({1, 2, 3}, {}, {depth}, {});
    const ROM::Configuration configuration(ROM::TemperatureCalibrationData({1, 2}), {},
                                           {ROM::PhaseOffset::MARKER2, 7},
                                           {ROM::TemperatureAlgorithmID::None, {3}}, {});
    const ROM::Diagnostic diagnostic({1, 2});
    const ROM::GradientDistortionCorrection correction({1, 2, 1, "SN1"}, {{30, {1, 2, 3, 4}}});
    std::uint16_t uid = 1;
    for (const ROM::Object* object :
         {static_cast<const ROM::Object*>(&info), static_cast<const ROM::Object*>(&calibration),
          static_cast<const ROM::Object*>(&configuration), static_cast<const ROM::Object*>(&diagnostic),
          static_cast<const ROM::Object*>(&correction)}) {
        rom.set(uid, object, uid % 2 == 0 ? 0 : 1);
        ++uid;
    }
}

/// The first byte of an image input: where the header stands, and where the area begins in steps of 64.
Bytes image(std::uint8_t kind, bool filled) {
    Bytes flashBytes(1024 + (kind >> 1) * 64u, 0xFF);
    const Area area{(kind >> 1) * 64u, 1024, kind % 2 == 0 ? 160u : 32u, kind % 2 != 0};
    ImageFlash flash(flashBytes);
    Storage storage(flash, area);
    ROM::ROM rom(&storage.container);
    rom.initialize();
    rom.initializeRom();
    if (filled)
        fill(rom);
    flashBytes.insert(flashBytes.begin(), kind);
    return flashBytes;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    const std::string directory = argv[1];
    for (std::uint8_t kind = 0; kind < 4; ++kind) {
        save(directory + "/rom_image/written-" + std::to_string(kind), image(kind, true));
        save(directory + "/rom_image/empty-" + std::to_string(kind), image(kind, false));
    }
    save(directory + "/rom_image/erased", Bytes(256, 0xFF));
    // Sets, a replacement, a remount, an erased section, a write that fails.
    for (std::uint8_t kind = 0; kind < 16; ++kind)
        save(directory + "/rom_store/mixed-" + std::to_string(kind),
             {kind, 60, 12, 20, 1, 20, 40, 2,  12, 90, 3,  28, 200, 4,
              1,    16, 20, 10, 5, 8,  36, 30, 6,  27, 10, 1,  5});
    return 0;
}
