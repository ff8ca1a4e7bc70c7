#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/container_section_type.h>

namespace Zentara::ROM {

/// A data object of the storage: the typed content of one section. Its bytes are a run of records, in the
/// order in which the object writes them, with nothing between or after them.
///
/// Reading never fails as a whole: a record that does not parse is skipped with a warning in the log, an
/// unknown one too, and what is absent keeps its default. Reading stops at the first bytes that are no whole
/// record.
class ZENTARA_API Object {
public:
    virtual ~Object();

    virtual ContainerSectionType getType() const = 0;

    /// The object's bytes, as they go into a section.
    virtual std::vector<std::uint8_t> serialize() const = 0;

protected:
    friend class ROM;
    friend class GradientDistortionCorrectionStore;

    Object();
    Object(const Object& other);
    Object& operator=(const Object& other);

    /// A new object of the class that the type stands for, owned by the caller; null for an unknown type.
    static Object* deserialize(ContainerSectionType type, const std::vector<std::uint8_t>& bytes);
};

} // namespace Zentara::ROM
