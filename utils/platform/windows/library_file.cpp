#include "utils/platform/library_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "utils/platform/files.h"
#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

namespace {

/// A file under positional, bounded reads.
class LibraryFile {
public:
    explicit LibraryFile(const std::string& path) : file(openFile(path, FileMode::ReadBinary)) {
        if (file && std::fseek(file, 0, SEEK_END) == 0)
            length = static_cast<std::uint64_t>(std::max(0L, std::ftell(file)));
    }
    ~LibraryFile() {
        if (file)
            std::fclose(file);
    }
    LibraryFile(const LibraryFile&) = delete;
    LibraryFile& operator=(const LibraryFile&) = delete;

    [[nodiscard]] std::uint64_t size() const noexcept { return length; }

    [[nodiscard]] bool holds(std::uint64_t offset, std::uint64_t count) const noexcept {
        return offset <= length && count <= length - offset;
    }

    bool read(std::uint64_t offset, void* data, std::size_t count) const noexcept {
        return holds(offset, count) && std::fseek(file, static_cast<long>(offset), SEEK_SET) == 0 &&
               std::fread(data, 1, count, file) == count;
    }

private:
    std::FILE* file;
    std::uint64_t length = 0;
};

constexpr std::uint32_t pageSize = 0x1000;
constexpr std::uint32_t allocationGranularity = 0x10000;

constexpr const char* cutShort = "the file is cut short";

/// The headers of a library, compared with the file and with the size of the image that they announce. The
/// numbers have 32 bits, sums are made in 64.
class Image {
public:
    Image(const LibraryFile& libraryFile, const IMAGE_NT_HEADERS64& headers,
          std::vector<IMAGE_SECTION_HEADER> sectionHeaders)
        : file(libraryFile), optional(headers.OptionalHeader), sections(std::move(sectionHeaders)) {}

    /// The first fault in words; empty when there is none.
    [[nodiscard]] std::string findDamage() const {
        if (!file.holds(0, optional.SizeOfHeaders))
            return cutShort;
        if (optional.ImageBase % allocationGranularity != 0 || optional.SectionAlignment % pageSize != 0 ||
            optional.SizeOfImage == 0)
            return "the image is not aligned";
        std::uint64_t mappedUntil = optional.SizeOfHeaders;
        for (const IMAGE_SECTION_HEADER& section : sections) {
            if (!file.holds(section.PointerToRawData, section.SizeOfRawData))
                return cutShort;
            if (section.VirtualAddress < mappedUntil || endOf(section) > optional.SizeOfImage)
                return "the sections overlap or lie outside of the image";
            mappedUntil = endOf(section);
        }
        return findDirectoryDamage();
    }

private:
    /// A section without a size of its own is as long as its bytes in the file.
    [[nodiscard]] static std::uint64_t endOf(const IMAGE_SECTION_HEADER& section) noexcept {
        const DWORD size = section.Misc.VirtualSize ? section.Misc.VirtualSize : section.SizeOfRawData;
        return std::uint64_t{section.VirtualAddress} + size;
    }

    [[nodiscard]] std::string findDirectoryDamage() const {
        if (optional.NumberOfRvaAndSizes > IMAGE_NUMBEROF_DIRECTORY_ENTRIES)
            return "there are too many directories";
        for (DWORD index = 0; index < optional.NumberOfRvaAndSizes; ++index) {
            const IMAGE_DATA_DIRECTORY& directory = optional.DataDirectory[index];
            // The signature is the one that is not mapped.
            if (index != IMAGE_DIRECTORY_ENTRY_SECURITY &&
                !isMapped(directory.VirtualAddress, directory.Size))
                return "directory " + std::to_string(index) + " lies outside of the sections";
        }
        if (!isMapped(optional.AddressOfEntryPoint, 1))
            return "the entry point lies outside of the sections";
        if (!areImportsWhole())
            return "the import table is damaged";
        return areRelocationsWhole() ? std::string() : "the relocation table is damaged";
    }

    [[nodiscard]] IMAGE_DATA_DIRECTORY directoryOf(DWORD index) const {
        return index < optional.NumberOfRvaAndSizes ? optional.DataDirectory[index] : IMAGE_DATA_DIRECTORY{};
    }

    /// Without its imports a library calls anything when it is started.
    [[nodiscard]] bool areImportsWhole() const {
        const IMAGE_DATA_DIRECTORY table = directoryOf(IMAGE_DIRECTORY_ENTRY_IMPORT);
        if (table.VirtualAddress == 0)
            return true;
        IMAGE_IMPORT_DESCRIPTOR import{};
        std::uint64_t address = table.VirtualAddress;
        do {
            if (!readMapped(address, &import, sizeof import) || !isMapped(import.Name, 1) ||
                !isMapped(import.FirstThunk, sizeof(std::uint64_t)))
                return false;
            address += sizeof import;
        } while (import.Name != 0);
        return address > table.VirtualAddress + sizeof import;
    }

    /// Linkers put this table last, so it tells whether the end of the file has arrived.
    [[nodiscard]] bool areRelocationsWhole() const {
        const IMAGE_DATA_DIRECTORY table = directoryOf(IMAGE_DIRECTORY_ENTRY_BASERELOC);
        if (table.VirtualAddress == 0)
            return true;
        for (std::uint64_t done = 0; done < table.Size;) {
            IMAGE_BASE_RELOCATION block;
            if (!readMapped(table.VirtualAddress + done, &block, sizeof block) ||
                block.SizeOfBlock < sizeof block || block.SizeOfBlock > table.Size - done ||
                block.VirtualAddress == 0 || !isMapped(block.VirtualAddress, 1))
                return false;
            done += block.SizeOfBlock;
        }
        return true;
    }

    /// Reads what will be mapped to an address from its place in the file.
    bool readMapped(std::uint64_t address, void* data, std::size_t count) const {
        return std::any_of(sections.begin(), sections.end(), [&](const IMAGE_SECTION_HEADER& section) {
            return address >= section.VirtualAddress &&
                   address - section.VirtualAddress + count <= section.SizeOfRawData &&
                   file.read(section.PointerToRawData + (address - section.VirtualAddress), data, count);
        });
    }

    /// An address of 0 means that there is none. The headers are mapped too: bound imports lie there.
    [[nodiscard]] bool isMapped(std::uint64_t address, std::uint64_t count) const {
        return address == 0 || address + count <= optional.SizeOfHeaders ||
               std::any_of(sections.begin(), sections.end(), [&](const auto& section) {
                   return address >= section.VirtualAddress && address + count <= endOf(section);
               });
    }

    const LibraryFile& file;
    const IMAGE_OPTIONAL_HEADER64 optional;
    const std::vector<IMAGE_SECTION_HEADER> sections;
};

std::string findDamage(const LibraryFile& file, std::uint64_t start) {
    IMAGE_NT_HEADERS64 headers;
    if (!file.read(start, &headers, sizeof headers))
        return cutShort;
    // Libraries of other machines have other headers; the loader tells.
    if (headers.Signature != IMAGE_NT_SIGNATURE || headers.FileHeader.Machine != IMAGE_FILE_MACHINE_AMD64)
        return std::string();
    if (headers.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC ||
        headers.FileHeader.SizeOfOptionalHeader != sizeof headers.OptionalHeader)
        return "the headers have an unknown form";
    std::vector<IMAGE_SECTION_HEADER> sections(headers.FileHeader.NumberOfSections);
    if (!file.read(start + sizeof headers, sections.data(), sections.size() * sizeof(IMAGE_SECTION_HEADER)))
        return cutShort;
    return Image(file, headers, std::move(sections)).findDamage();
}

} // namespace

const char* libraryExtension() noexcept { return "dll"; }

bool isLibraryLoaded(const std::string& path) {
    return GetModuleHandleW(utf8ToWideOrWidened(nativeSeparators(path)).c_str()) != nullptr;
}

LibraryFileState examineLibrary(const std::string& path, std::string& problem) {
    const LibraryFile file(path);
    IMAGE_DOS_HEADER header;
    if (!file.read(0, &header, sizeof header) || header.e_magic != IMAGE_DOS_SIGNATURE)
        return LibraryFileState::Unknown;
    problem = findDamage(file, static_cast<std::uint32_t>(header.e_lfanew));
    return problem.empty() ? LibraryFileState::Whole : LibraryFileState::Damaged;
}

} // namespace Zentara::Utils::Platform
