#include "plugins/simulated/firmware/kept_bytes.h"

#include <filesystem>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

namespace Zentara::Simulated {

namespace {

constexpr std::uint8_t erased = 0xFF;

void takeOrMake(const std::string& path, const std::filesystem::path& name, Bytes& memory) try {
    if (!std::filesystem::exists(name))
        return Utils::writeFile(path, std::string(memory.begin(), memory.end()));
    const std::string text = Utils::readFile(path);
    const std::size_t size = memory.size();
    memory.assign(text.begin(), text.end());
    memory.resize(size, erased);
} catch (const Utils::UIOException& failure) {
    throw Plugin::ConfigurationPluginException(Utils::Format("simulated flash: %") % failure.what());
}

} // namespace

KeptBytes::KeptBytes(const std::string& wanted, Bytes initial) : path(wanted), memory(std::move(initial)) {
    if (path.empty())
        return;
    const std::filesystem::path name(std::u8string(path.begin(), path.end()));
    takeOrMake(path, name, memory);
    file.open(name, std::ios::in | std::ios::out | std::ios::binary);
    if (!file)
        throw Plugin::ConfigurationPluginException(Utils::Format("simulated flash: cannot write to '%'") %
                                                   path);
}

void KeptBytes::write(std::size_t address, std::uint8_t value) {
    if (address >= memory.size())
        return;
    memory[address] = value;
    if (path.empty())
        return;
    file.seekp(static_cast<std::streamoff>(address));
    file.put(static_cast<char>(value));
    if (!file.flush())
        throw Plugin::IOPluginException(Utils::Format("simulated flash: cannot write to '%'") % path);
}

} // namespace Zentara::Simulated
