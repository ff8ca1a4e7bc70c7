#pragma once

#include <memory>
#include <string>

#include "plugins/linux/kernel.h"

namespace Zentara::V4l2 {

/// An open video node. The one who lets go of it last closes it, which may take as long as any call: all but the reader of
/// a stream use it, and let go of it, on the device's own thread.
class DeviceFile {
public:
    /// \throws Plugin::UnauthorizedAccessPluginException without permission, Plugin::IOPluginException for all else
    DeviceFile(std::shared_ptr<Linux::Kernel> kernel, std::string path);
    ~DeviceFile();
    DeviceFile(const DeviceFile&) = delete;
    DeviceFile& operator=(const DeviceFile&) = delete;

    /// An ioctl. \return 0 or more, or minus the number of the error
    template<typename Argument>
    int control(unsigned long request, Argument& argument) const {
        return kernel->control(file, request, &argument);
    }
    /// The same. \throws what errors mean, see fail() \param what was attempted: "set the format"
    template<typename Argument>
    void require(unsigned long request, Argument& argument, const char* what) const {
        const int result = control(request, argument);
        if (result < 0)
            fail(what, -result);
    }

    /// Throws what an error means: Plugin::InvalidOperationPluginException, with who has the camera, for one that is
    /// busy; Plugin::UnauthorizedAccessPluginException where permission is lacking; Plugin::NotSupportedPluginException
    /// for what the driver doesn't know; Plugin::TimeoutPluginException; and Plugin::IOPluginException for the rest.
    [[noreturn]] void fail(const std::string& what, int error) const;

    [[nodiscard]] const std::string& path() const noexcept { return name; }
    [[nodiscard]] int number() const noexcept { return file; }
    [[nodiscard]] const std::shared_ptr<Linux::Kernel>& sharedSystem() const noexcept { return kernel; }

private:
    const std::shared_ptr<Linux::Kernel> kernel;
    const std::string name;
    const int file;
};

} // namespace Zentara::V4l2
