#include "plugins/v4l2/device_file.h"

#include <cerrno>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "plugins/v4l2/holders.h"

namespace Zentara::V4l2 {

using Utils::Format;

namespace {

int opened(Linux::Kernel& kernel, const std::string& path) {
    const int file = kernel.open(path);
    if (file >= 0)
        return file;
    const std::string words = Linux::errorWords(-file);
    if (file == -EACCES || file == -EPERM)
        throw Plugin::UnauthorizedAccessPluginException(
            Format("%: cannot open the camera; be a member of its group (mostly 'video'), or install the "
                   "rule for udev: %") %
            path % words);
    if (file == -ENOENT || file == -ENODEV || file == -ENXIO)
        throw Plugin::IOPluginException(Format("%: there is no camera any more: %") % path % words);
    if (file == -EBUSY)
        throw Plugin::IOPluginException(
            Format("%: cannot open the camera: %; one that the kernel failed to wake is plugged in anew by "
                   "it: try again") %
            path % words);
    throw Plugin::IOPluginException(Format("%: cannot open the camera: %") % path % words);
}

} // namespace

DeviceFile::DeviceFile(std::shared_ptr<Linux::Kernel> shared, std::string path)
    : kernel(std::move(shared)), name(std::move(path)), file(opened(*kernel, name)) {}

DeviceFile::~DeviceFile() { kernel->close(file); }

void DeviceFile::fail(const std::string& what, int error) const {
    const std::string words = Linux::errorWords(error);
    const std::string text = Format("%: cannot %: %") % name % what % words;
    switch (error) {
    case EBUSY:
        throw Plugin::InvalidOperationPluginException(Format("%: cannot %: it is in use: %; %") % name %
                                                      what % words % holdersOf(name));
    case EACCES:
    case EPERM:
        throw Plugin::UnauthorizedAccessPluginException(text);
    case ENOTTY:
        throw Plugin::NotSupportedPluginException(text);
    case ETIMEDOUT:
        throw Plugin::TimeoutPluginException(text);
    case ENODEV:
    case ENXIO:
    case ESHUTDOWN:
        throw Plugin::IOPluginException(Format("%: cannot %: the camera was unplugged: %") % name % what %
                                        words);
    case ENOSPC:
        throw Plugin::IOPluginException(Format("%: cannot %: the bus has no room for another stream: %; take "
                                               "a smaller mode or another socket") %
                                        name % what % words);
    default:
        throw Plugin::IOPluginException(text);
    }
}

} // namespace Zentara::V4l2
