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
using Section = ElfW(Shdr);
using Entry = ElfW(Dyn);

/// A regular file under positional, bounded reads. It does not wait for the other end of a pipe.
class LibraryFile {
public:
    explicit LibraryFile(const std::string& path)
        : file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status;
        if (file < 0 || fstat(file, &status) != 0 || !S_ISREG(status.st_mode))
            return;
        length = static_cast<std::uint64_t>(status.st_size);
        begun = ::pread(file, begin, std::min<std::uint64_t>(length, sizeof begin), 0);
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
        if (!holds(offset, count))
            return false;
        if (begun > 0 && offset + count <= static_cast<std::uint64_t>(begun)) {
            std::memcpy(data, begin + offset, count);
            return true;
        }
        return ::pread(file, data, count, static_cast<off_t>(offset)) == static_cast<ssize_t>(count);
    }

private:
    int file;
    std::uint64_t length = 0;
    ssize_t begun = 0; ///< bytes in `begin`; negative when they could not be read
    char begin[1024];  ///< of the file, where most of what is looked at stands
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
    [[nodiscard]] std::string findDamage(const FileHeader& header) const {
        std::uint64_t mappedUntil = 0;
        for (const Segment& segment : segments) {
            std::string damage = findDamage(segment, mappedUntil);
            if (!damage.empty())
                return damage;
        }
        const auto dynamic = std::find_if(segments.begin(), segments.end(), [](const Segment& segment) {
            return segment.p_type == PT_DYNAMIC;
        });
        if (dynamic == segments.end())
            return "there is no dynamic section";
        std::string damage = findSectionDamage(header, *dynamic);
        return damage.empty() ? findDynamicDamage(*dynamic) : damage;
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

    /// The section headers stand at the end of the file and tell whether that has arrived. The loader does not look at
    /// them, and a library may have none.
    [[nodiscard]] std::string findSectionDamage(const FileHeader& header, const Segment& dynamic) const {
        if (header.e_shoff == 0 || header.e_shnum == 0)
            return std::string();
        std::vector<Section> sections(header.e_shnum);
        if (header.e_shentsize != sizeof(Section) ||
            !file.read(header.e_shoff, sections.data(), sections.size() * sizeof(Section)))
            return "the file is cut short in its section table";
        const bool isWhole =
            header.e_shstrndx < sections.size() && sections[header.e_shstrndx].sh_type == SHT_STRTAB &&
            std::any_of(sections.begin(), sections.end(),
                        [&](const Section& section) {
                            return section.sh_type == SHT_DYNAMIC && section.sh_offset == dynamic.p_offset;
                        }) &&
            std::all_of(sections.begin(), sections.end(), [&](const Section& section) {
                return section.sh_type == SHT_NOBITS || file.holds(section.sh_offset, section.sh_size);
            });
        return isWhole ? std::string() : "the section table does not belong to the rest of the file";
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
        if (entries.empty())
            return "the dynamic section is empty";
        if (!findEntry(entries, DT_STRTAB) || !findEntry(entries, DT_SYMTAB))
            return "the dynamic section names no symbols";
        for (const Table& table : tables) {
            if (!isTableMapped(entries, table))
                return "table " + std::to_string(table.address) + " lies outside of the mapped segments";
        }
        return isHashTableWhole(entries) ? std::string() : "the hash table of the symbols is damaged";
    }

    /// The loader divides by the number of buckets and follows what they hold.
    [[nodiscard]] bool isHashTableWhole(const std::vector<Entry>& entries) const {
        constexpr std::uint64_t wordBytes = sizeof(std::uint32_t);
        std::uint32_t words[4];
        if (const Entry* const table = findEntry(entries, DT_GNU_HASH)) {
            const auto& [bucketCount, firstSymbol, filterCount, filterShift] = words;
            if (!readMapped(table->d_un.d_ptr, words, sizeof words) || bucketCount == 0 || filterCount == 0 ||
                (filterCount & (filterCount - 1)) != 0)
                return false;
            return isMapped(table->d_un.d_ptr, sizeof words +
                                                   filterCount * std::uint64_t{sizeof(ElfW(Addr))} +
                                                   bucketCount * wordBytes);
        }
        const Entry* const table = findEntry(entries, DT_HASH);
        if (!table)
            return true;
        const auto& [bucketCount, chainCount, ignored, alsoIgnored] = words;
        return readMapped(table->d_un.d_ptr, words, 2 * wordBytes) && bucketCount != 0 &&
               isMapped(table->d_un.d_ptr, (2 + std::uint64_t{bucketCount} + chainCount) * wordBytes);
    }

    /// Reads what will be mapped to an address from its place in the file.
    bool readMapped(std::uint64_t address, void* data, std::size_t count) const {
        return std::any_of(segments.begin(), segments.end(), [&](const Segment& segment) {
            return segment.p_type == PT_LOAD && address >= segment.p_vaddr &&
                   address - segment.p_vaddr < segment.p_filesz &&
                   file.read(segment.p_offset + (address - segment.p_vaddr), data, count);
        });
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
    const std::string damage = complete ? Image(file, std::move(segments)).findDamage(header)
                                        : "the file is cut short in its segment table";
    if (damage.empty())
        return false;
    problem = damage;
    return true;
}

} // namespace Zentara::Utils::Platform
