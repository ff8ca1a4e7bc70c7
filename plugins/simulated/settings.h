#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugins/simulated/fault.h"
#include "plugins/simulated/firmware/firmware_settings.h"

namespace Zentara::Simulated {

/// How a simulated camera behaves: a small text, one statement a line, '#' begins a comment.
///
///     seed NUMBER                    the noise of the picture; 1 unless set
///     throw KIND at OPERATION        KIND: streaming configuration timeout argument io notSupported
///                                    initialization invalidOperation unauthorizedAccess, or foreign for an
///                                    exception that no plug-in should throw
///     hang MILLISECONDS at OPERATION the call does nothing for so long, then goes on; a cancel ends it with an
///                                    I/O failure
///     refuse cancel                  no cancel is accepted
///     chip NAME                      the controller: OV0570 (unless set), VC0258, VC0345 or none; the variable
///                                    ZENTARA_SIMULATED_CHIP, when set, has the last word; a camera that is
///                                    described has the controller of its description
///     device ADDRESS A D             a device on an OV0570's bus with A address and D data bytes, 1 to 4; the first
///                                    such statement replaces the usual two
///     claim N                        how many further devices an OV0570 claims to have
///     fpgaRounds N, resetReads N     how long an OV0570's FPGA takes to come up
///     flash PATH                     the bytes of the controller's memory; of a VC0258 both its memories
///     keepFlash PATH                 the memory is kept in this file, which is made when there is none: what one run
///                                    of a program writes, the next one reads; of a VC0258 the configuration memory
///     keepRegisters PATH             the same for the registers of the time-of-flight controller, and with them the
///                                    parameters: as if the camera stayed switched on
///     transfer N FAULT [MS]          the Nth transfer: fail, late, short, long, corrupt, or hang for MS milliseconds
///     transferLog PATH               a line for each transfer is added to this file
///
/// An OPERATION is one of the words of `Operation` (create, initialize, ... setMute, transfer); "video." or
/// "audio." before it picks one device, else both are meant. A throw or hang may go on with "after N" (so many
/// calls go well first), "times N" (so many go wrong), and a throw, at its end, with "saying TEXT".
/// Thread initialisation fails with "throw initialization at threadInitialize".
struct Settings {
    std::uint32_t seed = 1;
    bool refuseCancel = false;
    std::vector<Fault> faults;
    FirmwareSettings firmware; ///< `firmware.chip` is empty for a camera without a controller
    std::string transferLog;   ///< a file (UTF-8) that gets one line a transfer, empty for none

    /// The variable that holds the settings: "@PATH" names a file (UTF-8), anything else is the text itself, in
    /// which ';' ends a line as well. Unset or empty: no faults.
    static constexpr const char* variable = "ZENTARA_SIMULATED";

    /// \param source names the text in messages.
    /// \throws Plugin::ConfigurationPluginException naming source, line and what is wrong there.
    [[nodiscard]] static Settings parse(const std::string& text, const std::string& source);

    /// Reads further statements, in which ';' ends a line as well, over what is there. \throws as parse
    void add(const std::string& text, const std::string& source);

    /// Reads the variable. \throws as parse, and when the file cannot be read.
    [[nodiscard]] static Settings fromEnvironment();
};

} // namespace Zentara::Simulated
