#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/flash_image.h>
#include <zentara/host/value_change.h>

namespace Zentara::Host {

// What a storage holds, without the places where it lies; as JSON and back without loss. Values and functions of
// values: safe.

/// One section. A plain value that owns its bytes. Separate.
struct FlashSection {
    std::uint8_t type = 0;  ///< 1 to 5 have names and records; any other is kept as it is
    std::uint8_t flags = 0; ///< bit 0: writable
    Bytes data;             ///< the records; at most what the area has room for

    [[nodiscard]] ZENTARA_HOST_API bool isWritable() const noexcept;
    ZENTARA_HOST_API void setWritable(bool writable) noexcept;

    friend bool operator==(const FlashSection&, const FlashSection&) = default;
};

/// Everything that a storage holds, by uid: 1 to 65535. A storage that is damaged may hold the uid 0, which cannot be
/// written.
using FlashContent = std::map<std::uint16_t, FlashSection>;

/// The name of a type, "systemInfo" for 1 and so on; null for a type without one.
[[nodiscard]] ZENTARA_HOST_API const char* sectionTypeName(std::uint8_t type) noexcept;
[[nodiscard]] ZENTARA_HOST_API std::optional<std::uint8_t> sectionTypeFromName(const std::string& name);
/// The name, or "type 77".
[[nodiscard]] ZENTARA_HOST_API std::string sectionTypeText(std::uint8_t type);
/// "section 3 (configuration, 39 bytes)"
[[nodiscard]] ZENTARA_HOST_API std::string sectionText(std::uint16_t uid, const FlashSection& section);

/// Whether a storage can be loaded from the image.
[[nodiscard]] ZENTARA_HOST_API bool holdsStorage(const FlashImage& image);
/// What the library loads from it; nothing where no storage can be loaded.
[[nodiscard]] ZENTARA_HOST_API FlashContent contentOf(const FlashImage& image);

/// JSON, indented by two blanks, with a line end. A record whose fields say all of its bytes is written as fields, any
/// other as its bytes in hexadecimal, and likewise a section of a type without a name. Read and written again, the text
/// is the same.
[[nodiscard]] ZENTARA_HOST_API std::string toJson(const FlashContent& content);
[[nodiscard]] ZENTARA_HOST_API std::string toJson(std::uint16_t uid, const FlashSection& section);

/// \param source  of the text, for messages: the file's name
/// \throws Failure (Failed) that names the source and the path of the first field that is missing, surplus, twice in
/// one object, or of a wrong type or range: "'a.json': /sections/0/uid: expected a whole number from 1 to 65535"
[[nodiscard]] ZENTARA_HOST_API FlashContent contentFromJson(const std::string& text,
                                                            const std::string& source);
/// A section alone, or the field `section` of an object. \param uid  that it must have
[[nodiscard]] ZENTARA_HOST_API FlashSection sectionFromJson(const std::string& text,
                                                            const std::string& source, std::uint16_t uid);

/// One section that a change adds, replaces or erases. A plain value. Separate.
struct SectionChange {
    enum class Kind { Added, Replaced, Erased };
    Kind kind;                       ///< what becomes of it
    std::uint16_t uid;               ///< which one
    std::string text;                ///< "section 3 (configuration, 39 bytes) is added"
    std::vector<ValueChange> values; ///< of one that is replaced

    /// The text, and below it a line for each value, "  records/0/fx: 224.5 -> 230.5", cut where a value is long.
    [[nodiscard]] ZENTARA_HOST_API std::vector<std::string> lines() const;
};

/// The erased ones first, then the others, each in ascending order of the uids.
[[nodiscard]] ZENTARA_HOST_API std::vector<SectionChange> changesBetween(const FlashContent& before,
                                                                         const FlashContent& after);

/// The uids of the sections that may not be changed, but would not be the same afterwards.
[[nodiscard]] ZENTARA_HOST_API std::vector<std::uint16_t> readOnlyConflicts(const FlashContent& before,
                                                                            const FlashContent& wanted);

} // namespace Zentara::Host
