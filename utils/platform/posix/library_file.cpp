#include "utils/platform/library_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>
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
        keep(begin, 0, length);
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
        return begin.take(offset, data, count) || end.take(offset, data, count) ||
               ::pread(file, data, count, static_cast<off_t>(offset)) == static_cast<ssize_t>(count);
    }

    /// Reads a stretch at once, if it is short, since what is looked at in it is read in pieces.
    void keepEnd(std::uint64_t offset, std::uint64_t count) noexcept {
        if (holds(offset, count) && count <= sizeof end.bytes)
            keep(end, offset, count);
    }

private:
    template<std::size_t size>
    struct Kept {
        std::uint64_t offset = 0;
        std::uint64_t count = 0;
        char bytes[size]; // not initialised: it is either filled or not looked at

        bool take(std::uint64_t from, void* data, std::size_t number) const noexcept {
            if (from < offset || from - offset > count || number > count - (from - offset))
                return false;
            std::memcpy(data, bytes + (from - offset), number);
            return true;
        }
    };

    template<std::size_t size>
    void keep(Kept<size>& kept, std::uint64_t offset, std::uint64_t count) const noexcept {
        const ssize_t done =
            ::pread(file, kept.bytes, std::min<std::uint64_t>(count, size), static_cast<off_t>(offset));
        kept.offset = offset;
        kept.count = static_cast<std::uint64_t>(std::max<ssize_t>(done, 0));
    }

    int file;
    std::uint64_t length = 0;
    Kept<1024> begin; ///< where most of what is looked at stands
    Kept<8192> end;
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

/// The entries of a dynamic section by their tags. The loader keeps the last of several with one tag.
class Dynamic {
public:
    explicit Dynamic(const std::vector<Entry>& entries) {
        for (const Entry& entry : entries) {
            const std::size_t slot = slotOf(entry.d_tag);
            if (slot < slots.size())
                slots[slot] = &entry;
        }
    }

    /// Null when there is none.
    [[nodiscard]] const Entry* find(std::int64_t tag) const { return slots[slotOf(tag)]; }

private:
    static constexpr std::int64_t further[] = {DT_GNU_HASH, DT_VERSYM, DT_VERNEED, DT_VERDEF};
    static constexpr std::size_t count = DT_NUM + std::size(further);

    /// Beyond all slots for a tag that nobody asks for.
    static std::size_t slotOf(std::int64_t tag) noexcept {
        if (tag >= 0 && tag < DT_NUM)
            return static_cast<std::size_t>(tag);
        return DT_NUM + static_cast<std::size_t>(std::find(std::begin(further), std::end(further), tag) -
                                                 std::begin(further));
    }

    std::array<const Entry*, count> slots{};
};

/// The segments of a library and what they point to, compared with the file.
class Image {
public:
    Image(const LibraryFile& libraryFile, std::vector<Segment> fileSegments)
        : file(libraryFile), segments(std::move(fileSegments)) {
        const auto pageSize = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
        for (const Segment& segment : segments) {
            if (segment.p_type != PT_LOAD)
                continue;
            // The rest of a segment's last page is mapped as well, and protected with it.
            const std::uint64_t beyond = (segment.p_vaddr + segment.p_memsz) % pageSize;
            mapped.push_back({segment.p_vaddr, segment.p_memsz + (beyond == 0 ? 0 : pageSize - beyond)});
        }
    }

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
        return std::any_of(mapped.begin(), mapped.end(), [&](const Stretch& stretch) {
            if (address < stretch.address)
                return false;
            const std::uint64_t offset = address - stretch.address;
            return offset < stretch.length && count <= stretch.length - offset;
        });
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
        const Dynamic known(entries);
        if (!known.find(DT_STRTAB) || !known.find(DT_SYMTAB))
            return "the dynamic section names no symbols";
        for (const Table& table : tables) {
            if (!isTableMapped(known, table))
                return "table " + std::to_string(table.address) + " lies outside of the mapped segments";
        }
        return isHashTableWhole(known) ? std::string() : "the hash table of the symbols is damaged";
    }

    /// The loader divides by the number of buckets and follows what they hold.
    [[nodiscard]] bool isHashTableWhole(const Dynamic& entries) const {
        constexpr std::uint64_t wordBytes = sizeof(std::uint32_t);
        std::uint32_t words[4];
        if (const Entry* const table = entries.find(DT_GNU_HASH)) {
            const auto& [bucketCount, firstSymbol, filterCount, filterShift] = words;
            if (!readMapped(table->d_un.d_ptr, words, sizeof words) || bucketCount == 0 || filterCount == 0 ||
                (filterCount & (filterCount - 1)) != 0)
                return false;
            return isMapped(table->d_un.d_ptr, sizeof words +
                                                   filterCount * std::uint64_t{sizeof(ElfW(Addr))} +
                                                   bucketCount * wordBytes);
        }
        const Entry* const table = entries.find(DT_HASH);
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

    [[nodiscard]] bool isTableMapped(const Dynamic& entries, const Table& table) const {
        const Entry* address = entries.find(table.address);
        const Entry* length = table.length == DT_NULL ? nullptr : entries.find(table.length);
        return !address || isMapped(address->d_un.d_ptr, length ? length->d_un.d_val : 1);
    }

    struct Stretch {
        std::uint64_t address;
        std::uint64_t length;
    };

    const LibraryFile& file;
    const std::vector<Segment> segments;
    std::vector<Stretch> mapped; ///< what the loader maps of them
};

/// The dynamic section and the section table are neighbours in a library without symbols for a debugger.
void keepTables(LibraryFile& file, const FileHeader& header, const std::vector<Segment>& segments) {
    for (const Segment& segment : segments) {
        if (segment.p_type == PT_DYNAMIC && segment.p_offset < header.e_shoff)
            file.keepEnd(segment.p_offset,
                         header.e_shoff + header.e_shnum * sizeof(Section) - segment.p_offset);
    }
}

} // namespace

const char* libraryExtension() noexcept { return "so"; }

bool isLibraryLoaded(const std::string& path) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
    if (library)
        dlclose(library);
    return library != nullptr;
}

LibraryFileState examineLibrary(const std::string& path, std::string& problem) {
    LibraryFile file(path);
    FileHeader header;
    if (!file.read(0, &header, sizeof header) || !isElf(header))
        return LibraryFileState::Unknown;
    std::vector<Segment> segments(header.e_phnum);
    const bool complete = file.read(header.e_phoff, segments.data(), segments.size() * sizeof(Segment));
    keepTables(file, header, segments);
    problem = complete ? Image(file, std::move(segments)).findDamage(header)
                       : "the file is cut short in its segment table";
    return problem.empty() ? LibraryFileState::Whole : LibraryFileState::Damaged;
}

} // namespace Zentara::Utils::Platform
