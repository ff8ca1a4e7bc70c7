#include "utils/platform/library_file.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>
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
using Entry = ElfW(Dyn);

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

/// No process has addresses beyond; sums of two of them do not overflow.
constexpr std::uint64_t addressLimit = INT64_MAX;

/// Tables that the loader follows without a look at where they lead, with the entry that holds their length.
struct Table {
    std::int64_t address;
    std::int64_t length;
};
constexpr Table tables[] = {{DT_STRTAB, DT_STRSZ},
                            {DT_RELA, DT_RELASZ},
                            {DT_REL, DT_RELSZ},
                            {DT_JMPREL, DT_PLTRELSZ},
                            {DT_INIT_ARRAY, DT_INIT_ARRAYSZ},
                            {DT_FINI_ARRAY, DT_FINI_ARRAYSZ},
                            {DT_SYMTAB, DT_NULL},
                            {DT_HASH, DT_NULL},
                            {DT_GNU_HASH, DT_NULL},
                            {DT_VERSYM, DT_NULL},
                            {DT_VERNEED, DT_NULL},
                            {DT_VERDEF, DT_NULL},
                            {DT_PLTGOT, DT_NULL},
                            {DT_INIT, DT_NULL},
                            {DT_FINI, DT_NULL}};

/// The segments of a library and what they point to, compared with the file.
class Image {
public:
    Image(const LibraryFile& libraryFile, std::vector<Segment> fileSegments)
        : file(libraryFile), segments(std::move(fileSegments)) {}

    /// The first fault in words; empty when there is none.
    [[nodiscard]] std::string findDamage() const {
        std::uint64_t mappedUntil = 0;
        for (const Segment& segment : segments) {
            std::string damage = findDamage(segment, mappedUntil);
            if (!damage.empty())
                return damage;
        }
        const auto dynamic = std::find_if(segments.begin(), segments.end(), [](const Segment& segment) {
            return segment.p_type == PT_DYNAMIC;
        });
        return dynamic == segments.end() ? "there is no dynamic section" : findDynamicDamage(*dynamic);
    }

private:
    [[nodiscard]] std::string findDamage(const Segment& segment, std::uint64_t& mappedUntil) const {
        if (segment.p_type != PT_LOAD)
            return !isReadWhereMapped(segment) || isMapped(segment.p_vaddr, mappedLength(segment))
                       ? std::string()
                       : "a segment lies outside of the mapped ones";
        if (!file.holds(segment.p_offset, segment.p_filesz))
            return cutShort(segment);
        if (segment.p_vaddr < mappedUntil || segment.p_memsz < segment.p_filesz ||
            segment.p_vaddr > addressLimit || segment.p_memsz > addressLimit - segment.p_vaddr)
            return "the mapped segments overlap";
        mappedUntil = segment.p_vaddr + segment.p_memsz;
        return std::string();
    }

    static bool isReadWhereMapped(const Segment& segment) noexcept {
        return segment.p_type == PT_DYNAMIC || segment.p_type == PT_NOTE || segment.p_type == PT_TLS ||
               segment.p_type == PT_GNU_RELRO || segment.p_type == PT_GNU_EH_FRAME;
    }

    /// Of thread-local data only the initial values are mapped.
    static std::uint64_t mappedLength(const Segment& segment) noexcept {
        return segment.p_type == PT_TLS ? segment.p_filesz : segment.p_memsz;
    }

    [[nodiscard]] std::string cutShort(const Segment& segment) const {
        return "the file is cut short: it has " + std::to_string(file.size()) + " bytes, and a segment of " +
               std::to_string(segment.p_filesz) + " begins at " + std::to_string(segment.p_offset);
    }

    [[nodiscard]] bool isMapped(std::uint64_t address, std::uint64_t count) const {
        return std::any_of(segments.begin(), segments.end(), [&](const Segment& segment) {
            if (segment.p_type != PT_LOAD || address < segment.p_vaddr)
                return false;
            const std::uint64_t offset = address - segment.p_vaddr;
            const std::uint64_t length = toWholePages(segment);
            return offset < length && count <= length - offset;
        });
    }

    /// The rest of a segment's last page is mapped as well, and protected with it.
    [[nodiscard]] std::uint64_t toWholePages(const Segment& segment) const noexcept {
        const std::uint64_t beyond = (segment.p_vaddr + segment.p_memsz) % pageSize;
        return segment.p_memsz + (beyond == 0 ? 0 : pageSize - beyond);
    }

    [[nodiscard]] std::string findDynamicDamage(const Segment& dynamic) const {
        std::vector<Entry> entries;
        if (file.holds(dynamic.p_offset, dynamic.p_filesz))
            entries.resize(dynamic.p_filesz / sizeof(Entry));
        if (!file.read(dynamic.p_offset, entries.data(), entries.size() * sizeof(Entry)))
            return cutShort(dynamic);
        const auto end = std::find_if(entries.begin(), entries.end(),
                                      [](const Entry& entry) { return entry.d_tag == DT_NULL; });
        if (end == entries.end())
            return "the dynamic section has no end";
        entries.erase(end, entries.end());
        for (const Table& table : tables) {
            if (!isTableMapped(entries, table))
                return "table " + std::to_string(table.address) + " lies outside of the mapped segments";
        }
        return std::string();
    }

    [[nodiscard]] bool isTableMapped(const std::vector<Entry>& entries, const Table& table) const {
        const Entry* address = findEntry(entries, table.address);
        const Entry* length = table.length == DT_NULL ? nullptr : findEntry(entries, table.length);
        return !address || isMapped(address->d_un.d_ptr, length ? length->d_un.d_val : 1);
    }

    /// The loader keeps the last of several entries with one tag.
    static const Entry* findEntry(const std::vector<Entry>& entries, std::int64_t tag) {
        const auto found = std::find_if(entries.rbegin(), entries.rend(),
                                        [&](const Entry& entry) { return entry.d_tag == tag; });
        return found == entries.rend() ? nullptr : &*found;
    }

    const LibraryFile& file;
    const std::vector<Segment> segments;
    const std::uint64_t pageSize = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
};

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
    const std::string damage = complete ? Image(file, std::move(segments)).findDamage()
                                        : "the file is cut short in its segment table";
    if (damage.empty())
        return false;
    problem = damage;
    return true;
}

} // namespace Zentara::Utils::Platform
