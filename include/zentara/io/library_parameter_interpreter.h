#pragma once

#include <zentara/io/parameter_interpreter.h>

namespace Zentara::IO {

class VideoDeviceProxy;

/// The interpreter over a registered parameter back-end. All that a device plug-in writes to have one:
///
///     auto parameters = LibraryParameterInterpreter::create(store->getParameterInterpreterGUID());
///     parameters->initialize(*getAVDeviceProxy(), store->getNodeHardwareIDs(), store->getHardwareVersion());
///     parameters->write(ParameterType_INT_4, 2);
///
/// It holds the back-end's library loaded, and disposes the back-end's instance at the latest when it ends.
/// Separate.
class ZENTARA_API LibraryParameterInterpreter final : public ParameterInterpreter {
public:
    using ParameterInterpreter::initialize;

    /// Loads the back-end through the plug-in manager.
    /// \throws Zentara::Plugin::InitializationPluginException "couldn't find GUID GUID", "ImplType mismatch" or
    ///         "couldn't open: PATH"; nothing is loaded then
    [[nodiscard]] static Utils::SmartPtr<LibraryParameterInterpreter> create(GUID backEnd);

    /// Connects the back-end to the camera behind a proxy, which must live until `dispose`. A transfer that
    /// fails is logged and reaches the back-end as `ErrorCode_IO`. When the back-end then fails, this and every later
    /// operation throws what the proxy threw, which says what the camera did not do, in place of its own text.
    /// \throws what the other `initialize` throws
    void initialize(VideoDeviceProxy& device, HardwareIDs ids, HardwareVersionInternal version);

protected:
    ~LibraryParameterInterpreter() override;

private:
    struct Way;

    explicit LibraryParameterInterpreter(GUID backEnd);

    const std::unique_ptr<Way> way; ///< what the back-end's callbacks are handed
};

} // namespace Zentara::IO
