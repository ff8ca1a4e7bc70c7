#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/accessor.h>

namespace Zentara::ROM {

/// A flash image kept in a file: read whole, changed in memory, saved in one step. Address 0 is the file's
/// first byte, and the size never changes. Separate.
class ZENTARA_API FileAccessor : public Accessor {
public:
    /// Opens an existing image.
    /// \param fileName  UTF-8.
    /// \throws IOPluginException with the file and the reason if it cannot be read.
    explicit FileAccessor(const std::string& fileName);

    /// A new image of erased flash, `size` bytes of 0xFF. The file appears with the first save().
    FileAccessor(const std::string& fileName, std::uint32_t size);
    FileAccessor(const FileAccessor&) = delete;
    FileAccessor& operator=(const FileAccessor&) = delete;
    /// Does not save.
    ~FileAccessor() override;

    /// \throws IOPluginException if a byte lies past the end of the image.
    std::vector<std::uint8_t> read(std::uint32_t address, std::uint32_t length) override;

    /// Changes the image in memory alone.
    /// \throws IOPluginException if a byte lies past the end of the image; nothing is written then.
    void write(std::uint32_t address, const std::vector<std::uint8_t>& bytes) override;

    /// Puts the image on disk: written beside the file under a name of its own, flushed, renamed over it. Whatever
    /// fails or is cut off in between, the file holds the old image or the new one, whole. Of a link the file that it
    /// leads to is replaced; nobody may read the new file who could not read the old one. Two that save at once take
    /// turns, up to a second; the later one wins, so whoever changes what others change too looks before.
    /// \throws IOPluginException with the file and the system's reason; the file is then as it was.
    void save();

    const std::string& getFileName() const;
    /// The image, lent until the next write().
    const std::vector<std::uint8_t>& getImage() const;
    /// Whether the image differs from what was opened or last saved.
    bool isModified() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::ROM
