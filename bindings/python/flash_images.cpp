#include "bindings/python/flash_images.h"

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <pybind11/stl.h>
#include <zentara/host/correction_tables.h>
#include <zentara/host/flash_map.h>
#include <zentara/host/flash_survey.h>

#include "bindings/python/arrays.h"
#include "bindings/python/interpreter.h"
#include "bindings/python/pictures.h"
#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using namespace pybind11::literals;
using Host::FlashArea;
using Host::FlashImage;
using Host::FlashSurvey;
using Image = std::shared_ptr<FlashImage>;

py::object headerOf(const std::optional<Host::SurveyedHeader>& header) {
    if (!header)
        return py::none();
    return py::dict("strategy"_a = header->strategy, "version"_a = header->version,
                    "available_size"_a = header->availableSize, "chunk_size"_a = header->chunkSize,
                    "first_block"_a = header->firstBlock);
}

py::dict dictionaryOf(const Host::SurveyedSection& section) {
    return py::dict("uid"_a = section.uid, "type"_a = Host::sectionTypeText(section.content.type),
                    "address"_a = section.address, "length"_a = section.content.data.size(),
                    "is_writable"_a = section.content.isWritable());
}

/// Blocks are left out but for their sections: where they lie and how they are linked, `map` and `findings` tell.
py::dict surveyOf(const Image& image) {
    const FlashSurvey survey = aside([image] { return Host::surveyOf(*image); });
    py::list sections;
    for (const Host::SurveyedBlock& block : survey.blocks) {
        if (block.section)
            sections.append(dictionaryOf(*block.section));
    }
    py::list unreachable;
    for (const Host::SurveyedSection& section : survey.unreachable)
        unreachable.append(dictionaryOf(section));
    py::list findings;
    for (const Host::Finding& finding : survey.findings)
        findings.append(py::dict("kind"_a = Host::findingKindName(finding.kind),
                                 "address"_a = finding.address, "is_fault"_a = finding.isFault,
                                 "text"_a = text(finding.text)));
    return py::dict("header"_a = headerOf(survey.header), "sections"_a = sections,
                    "unreachable"_a = unreachable, "findings"_a = findings,
                    "free_bytes"_a = survey.freeSpace.bytes, "largest_gap"_a = survey.freeSpace.largestGap,
                    "is_faulty"_a = survey.isFaulty(), "is_chain_broken"_a = survey.isChainBroken);
}

py::dict salvageOf(const Image& image) {
    Host::FlashSalvage found = aside([image] { return Host::salvageOf(*image); });
    return py::dict("content"_a = contentOf(found.content), "lines"_a = textsOf(found.lines),
                    "image"_a = found.image ? py::cast(std::make_shared<FlashImage>(std::move(*found.image)))
                                            : py::object(py::none()),
                    "why_not"_a = text(found.whyNot));
}

/// The values are arrays of their own.
py::list tablesOf(const Image& image) {
    py::list sections;
    const auto found = aside([image] { return Host::correctionsOf(Host::contentOf(*image)); });
    for (const Host::CorrectionSection& section : found) {
        py::list tables;
        for (const Host::CorrectionTable& table : section.tables)
            tables.append(py::dict("megahertz"_a = table.megahertz,
                                   "values"_a = py::array_t<std::uint8_t>(
                                       static_cast<py::ssize_t>(table.values.size()), table.values.data())));
        sections.append(py::dict("uid"_a = section.uid, "version"_a = section.version,
                                 "time_of_last_write"_a = section.timeOfLastWrite,
                                 "number_of_sets"_a = section.numberOfSets,
                                 "serial_id"_a = text(section.serialId), "tables"_a = tables));
    }
    return sections;
}

py::array_t<std::uint8_t> pictureOf(const Rows<std::uint8_t>& values, const std::string& title,
                                    std::size_t width, std::size_t scale) {
    const std::span<const std::uint8_t> bytes = spanOf(values, 1, 0, "values");
    Host::CorrectionTable table;
    table.values.assign(bytes.begin(), bytes.end());
    return arrayOf(released([&] { return Host::pictureOf(table, title, width, scale).picture; }));
}

Host::FlashMap mapOf(const Image& image) {
    return aside([image] { return Host::FlashMap(Host::surveyOf(*image)); });
}

} // namespace

py::object contentOf(const Host::FlashContent& content) { return fromJson(Host::toJson(content)); }

Host::FlashContent contentFrom(const py::object& content) {
    return Host::contentFromJson(toJson(content), "the content");
}

py::dict dictionaryOf(const FlashArea& area) {
    return py::dict("start"_a = area.start, "size"_a = area.size, "chunk_size"_a = area.chunkSize,
                    "header_at_start"_a = area.headerAtStart);
}

void bindFlashImages(py::module_& module) {
    py::class_<FlashImage, std::shared_ptr<FlashImage>>(module, "FlashImage",
                                                        "The bytes of one area of flash.")
        .def(py::init([](const Rows<std::uint8_t>& data, std::uint32_t start, std::uint32_t chunkSize,
                         bool headerAtStart) {
                 const std::span<const std::uint8_t> bytes = spanOf(data, 1, 0, "data");
                 return std::make_shared<FlashImage>(
                     FlashArea{start, static_cast<std::uint32_t>(bytes.size()), chunkSize, headerAtStart},
                     Host::Bytes(bytes.begin(), bytes.end()));
             }),
             "data"_a, py::kw_only(), "start"_a = 0, "chunk_size"_a = 256, "header_at_start"_a = true)
        .def_property_readonly(
            "data",
            [](const py::object& self) {
                const Host::Bytes& bytes = self.cast<const FlashImage&>().bytes();
                return viewOf(bytes.data(), {static_cast<py::ssize_t>(bytes.size())}, self);
            },
            "All bytes, read-only; the array keeps the image.")
        .def_property_readonly("area", [](const FlashImage& image) { return dictionaryOf(image.area()); })
        .def("survey", &surveyOf, "Everything that can be told of it, and all that is wrong with it.")
        .def("salvage", &salvageOf, "Every whole section that it holds, also where no link leads any more.")
        .def("correction_tables", &tablesOf, "The tables of distortion correction that it holds.")
        .def(
            "map", [](const Image& image) { return text(mapOf(image).text()); },
            "What stands where, as rows of characters.")
        .def(
            "draw",
            [](const Image& image, const std::string& title) { return arrayOf(mapOf(image).picture(title)); },
            "title"_a, "The same as a picture: (height, width, 3) bytes.");
    module.def("draw_correction", &pictureOf, "values"_a, "title"_a, py::kw_only(), "width"_a = 0,
               "scale"_a = 0, "A correction table in colours: (height, width, 3) bytes.");
}

} // namespace Zentara::Python
