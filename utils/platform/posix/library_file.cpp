#include "utils/platform/library_file.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zentara::Utils::Platform {

namespace {

using FileHeader = ElfW(Ehdr);
using Segment = ElfW(Phdr);

/// A regular file under positional, bounded reads. It does not wait for the other end of a pipe.
class LibraryFile {
public:
    explicit LibraryFile(const std::string& path)
        : file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status;
        if (file >= 0 && fstat(file, &status) == 0 && S_ISREG(status.st_mode))
            length = static_cast<std::uint64_t>(status.st_size);
    }
    ~LibraryFile() {
        if (file >= 0)
            ::close(file);
    }
    LibraryFile(const LibraryFile&) = delete;
    LibraryFile& operator=(const LibraryFile&) = delete;

    [[nodiscard]] std::uint64_t size() const noexcept { return length; }

    [[nodiscard]] bool holds(std::uint64_t offset, std::uint64_t count) const noexcept {
        return offset <= length && count <= length - offset;
    }

    bool read(std::uint64_t offset, void* data, std::size_t count) const noexcept {
        return holds(offset, count) &&
               ::pread(file, data, count, static_cast<off_t>(offset)) == static_cast<ssize_t>(count);
    }

private:
    int file;
    std::uint64_t length = 0;
};

bool isElf(const FileHeader& header) noexcept {
    const unsigned char own = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
    return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 && header.e_ident[EI_CLASS] == own &&
           header.e_phentsize == sizeof(Segment);
}

bool liesInside(const Segment& inner, const Segment& outer) noexcept {
    return inner.p_vaddr >= outer.p_vaddr && inner.p_memsz <= outer.p_memsz &&
           inner.p_vaddr - outer.p_vaddr <= outer.p_memsz - inner.p_memsz;
}

/// The loader reads the dynamic section where it is mapped.
bool isMapped(const Segment& dynamic, const std::vector<Segment>& segments) {
    return std::any_of(segments.begin(), segments.end(), [&](const Segment& segment) {
        return segment.p_type == PT_LOAD && liesInside(dynamic, segment);
    });
}

std::string findDamage(const LibraryFile& file, const std::vector<Segment>& segments) {
    for (const Segment& segment : segments) {
        if (segment.p_type == PT_LOAD && !file.holds(segment.p_offset, segment.p_filesz))
            return "the file is cut short: it has " + std::to_string(file.size()) +
                   " bytes, and a segment of " + std::to_string(segment.p_filesz) + " begins at " +
                   std::to_string(segment.p_offset);
        if (segment.p_type == PT_DYNAMIC && !isMapped(segment, segments))
            return "the dynamic section lies outside of the mapped segments";
    }
    return std::string();
}

} // namespace

const char* libraryExtension() noexcept { return "so"; }

bool isLibraryLoaded(const std::string& path) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
    if (library)
        dlclose(library);
    return library != nullptr;
}

bool isDamagedLibrary(const std::string& path, std::string& problem) {
    const LibraryFile file(path);
    FileHeader header;
    if (!file.read(0, &header, sizeof header) || !isElf(header))
        return false;
    std::vector<Segment> segments(header.e_phnum);
    const bool complete = file.read(header.e_phoff, segments.data(), segments.size() * sizeof(Segment));
    const std::string damage =
        complete ? findDamage(file, segments) : "the file is cut short in its segment table";
    if (damage.empty())
        return false;
    problem = damage;
    return true;
}

} // namespace Zentara::Utils::Platform
