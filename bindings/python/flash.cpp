#include "bindings/python/flash.h"

#include <string>
#include <utility>
#include <vector>

#include <pybind11/stl.h>

#include "bindings/python/arrays.h"
#include "bindings/python/failures.h"
#include "bindings/python/flash_images.h"
#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using namespace pybind11::literals;
using Host::Flash;
using Host::FlashChange;
using Host::FlashImage;
using Host::FlashOptions;
using Host::SectionChange;

Flash::Access accessTo(bool write) { return write ? Flash::Access::Write : Flash::Access::Read; }

FlashOptions::Header headerNamed(const std::string& name) {
    if (name == "auto")
        return FlashOptions::Header::Auto;
    if (name == "start" || name == "end")
        return name == "start" ? FlashOptions::Header::Start : FlashOptions::Header::End;
    throw Host::Failure(Host::Failure::Usage, "cannot put the header at \"" + name + "\"", {},
                        "take \"auto\", \"start\" or \"end\"");
}

const char* nameOf(FlashChange::Obstacle obstacle) {
    switch (obstacle) {
    case FlashChange::Obstacle::None:
        return "none";
    case FlashChange::Obstacle::ReadOnly:
        return "read_only";
    case FlashChange::Obstacle::OtherCamera:
        return "other_camera";
    case FlashChange::Obstacle::Damaged:
        return "damaged";
    case FlashChange::Obstacle::Costly:
        return "costly";
    case FlashChange::Obstacle::Impossible:
        return "impossible";
    }
    return "impossible";
}

/// Values are (path, before, after), as `differences` gives them.
py::dict dictionaryOf(const SectionChange& change) {
    py::list values;
    for (const Host::ValueChange& value : change.values)
        values.append(py::make_tuple(text(value.path), fromJson(value.before), fromJson(value.after)));
    return py::dict("kind"_a = change.kind == SectionChange::Kind::Added      ? "added"
                               : change.kind == SectionChange::Kind::Replaced ? "replaced"
                                                                              : "erased",
                    "uid"_a = change.uid, "text"_a = text(change.text), "values"_a = values);
}

std::unique_ptr<FlashObject> opened(Flash flash) { return std::make_unique<FlashObject>(std::move(flash)); }

/// What the content is in Python is read here: the thread that plans does without the interpreter.
std::shared_ptr<FlashChange> plan(const FlashObject& self, const std::shared_ptr<FlashImage>& before,
                                  const py::object& wanted, bool formats, bool rebuild, bool otherCamera,
                                  bool damaged) {
    return self.ask(
        [before, content = contentFrom(wanted),
         options = Host::ChangeOptions{formats, rebuild, otherCamera, damaged}](const Flash& flash) {
            return std::make_shared<FlashChange>(flash.plan(*before, content, options));
        });
}

std::shared_ptr<FlashChange> planRestore(const FlashObject& self, const std::shared_ptr<FlashImage>& before,
                                         const PathText& path, bool formats, bool rebuild, bool otherCamera,
                                         bool damaged) {
    return self.ask(
        [before, path = path.name,
         options = Host::ChangeOptions{formats, rebuild, otherCamera, damaged}](const Flash& flash) {
            return std::make_shared<FlashChange>(flash.planRestore(*before, path, options));
        });
}

/// Half a change is worse than a late end: Ctrl-C is heard before the first byte, and then once all is written.
/// Which file keeps the bytes of before is told as soon as it is there, not with the result, which a failure takes
/// away.
py::str apply(const FlashObject& self, const std::shared_ptr<FlashChange>& change, bool keeps,
              const PathText& backup, const py::object& progress) {
    return text(self.use(progress, true,
                         [change, keeps, backup = backup.name, told = notes()](Flash& flash, Errand& errand) {
                             const auto kept = [&told](const std::string& file) {
                                 told("the bytes that the flash had are in '" + file + "'");
                             };
                             return flash.apply(*change, {keeps, backup, kept}, errand.progress());
                         }));
}

void bindChange(py::class_<FlashChange, std::shared_ptr<FlashChange>> bound) {
    bound
        .def_property_readonly(
            "before", [](const FlashChange& self) { return std::make_shared<FlashImage>(self.before); })
        .def_property_readonly(
            "after", [](const FlashChange& self) { return std::make_shared<FlashImage>(self.after); })
        .def_property_readonly(
            "writes",
            [](const FlashChange& self) {
                py::list all;
                for (const Host::FlashWrite& write : self.writes)
                    all.append(py::make_tuple(
                        write.address,
                        py::bytes(reinterpret_cast<const char*>(write.bytes.data()), write.bytes.size())));
                return all;
            },
            "The addresses and bytes that go out, in their order.")
        .def_property_readonly("sections",
                               [](const FlashChange& self) {
                                   py::list all;
                                   for (const SectionChange& change : self.sections)
                                       all.append(dictionaryOf(change));
                                   return all;
                               })
        .def_property_readonly(
            "lines", [](const FlashChange& self) { return textsOf(self.lines); },
            "All that becomes of it, for people.")
        .def_property_readonly(
            "foreign", [](const FlashChange& self) { return textsOf(self.foreign); },
            "What only another camera can have.")
        .def_readonly("takes_away", &FlashChange::takesAway)
        .def_property_readonly("obstacle", [](const FlashChange& self) { return nameOf(self.obstacle); })
        .def_property_readonly(
            "refusal",
            [](const FlashChange& self) {
                return self.refusal ? exceptionOf(*self.refusal) : py::object(py::none());
            },
            "What apply() raises; None for a change that nothing stands in the way of.")
        .def_readonly("rebuild_helps", &FlashChange::rebuildHelps)
        .def_readonly("salvage_helps", &FlashChange::salvageHelps)
        .def("__len__", &FlashChange::bytes)
        .def("__str__", [](const FlashChange& self) {
            std::string all;
            for (const std::string& line : self.lines)
                all += (all.empty() ? "" : "\n") + line;
            return text(all);
        });
}

} // namespace

FlashObject::FlashObject(Flash flash) : held(std::make_shared<Shared>(std::move(flash))) {}

void FlashObject::close() const {
    interruptible([shared = held.share()] {
        const std::lock_guard hold(shared->lock);
        shared->flash.reset();
    });
}

std::unique_ptr<FlashObject> flashOf(const CameraObject& camera, bool write,
                                     std::optional<std::uint64_t> start, std::uint64_t size) {
    FlashOptions options;
    options.start = start;
    options.size = size;
    return opened(camera.ask([options, access = accessTo(write)](const Host::Camera& one) {
        return Flash::camera(one, options, access);
    }));
}

void bindFlash(py::module_& module) {
    bindFlashImages(module);
    bindChange(
        {module, "FlashChange", "A change that was planned and tried on a copy; nothing is written yet."});
    const py::object none = py::none();
    py::class_<FlashObject>(module, "Flash",
                            "The flash that holds a camera's calibration: a camera's, or an image file's.")
        .def_static(
            "image",
            [](const PathText& path, bool write, std::optional<std::uint64_t> start, std::uint64_t size) {
                FlashOptions options;
                options.start = start;
                options.size = size;
                return opened(interruptible([path = path.name, options, write] {
                    return Flash::image(path, options, accessTo(write));
                }));
            },
            "path"_a, py::kw_only(), "write"_a = false, "start"_a = none, "size"_a = 0,
            "Opens an image file. To write, it holds the file's lock until it is closed.")
        .def_static(
            "create",
            [](const PathText& path, std::uint64_t start, std::uint64_t size, std::uint32_t chunkSize,
               const std::string& header) {
                const FlashOptions options{start, size, chunkSize, headerNamed(header)};
                return opened(
                    interruptible([path = path.name, options] { return Flash::create(path, options); }));
            },
            "path"_a, py::kw_only(), "start"_a = 0, "size"_a = 0, "chunk_size"_a = 256, "header"_a = "auto",
            "An image file that is to be formatted; a new one appears with the first change that is applied.")
        .def_property_readonly("name",
                               [](const FlashObject& self) {
                                   return text(self.ask([](const Flash& flash) { return flash.name(); }));
                               })
        .def_property_readonly("area",
                               [](const FlashObject& self) {
                                   return dictionaryOf(
                                       self.ask([](const Flash& flash) { return flash.area(); }));
                               })
        .def(
            "load",
            [](const FlashObject& self, const py::object& progress) {
                return self.use(progress, false, [](Flash& flash, Errand& errand) {
                    return std::make_shared<FlashImage>(flash.load(errand.progress()));
                });
            },
            "progress"_a = none,
            "Reads the whole area. progress: is called with the bytes that are done and all; False ends it.")
        .def(
            "content",
            [](const FlashObject& self, const std::shared_ptr<FlashImage>& image) {
                return contentOf(self.ask([image](const Flash& flash) { return flash.content(*image); }));
            },
            "image"_a.none(false), "What a fresh load of the image finds, as `zentara rom export` writes it.")
        .def("plan", &plan, "before"_a.none(false), "wanted"_a, py::kw_only(), "formats"_a = false,
             "rebuild"_a = false, "other_camera"_a = false, "damaged"_a = false,
             "Plans to bring the flash to a content; reads and writes nothing.")
        .def(
            "plan_format",
            [](const FlashObject& self, const std::shared_ptr<FlashImage>& before) {
                return self.ask([before](const Flash& flash) {
                    return std::make_shared<FlashChange>(flash.planFormat(*before));
                });
            },
            "before"_a.none(false), "Plans a new storage; all that stands there goes.")
        .def("plan_restore", &planRestore, "before"_a.none(false), "path"_a, py::kw_only(),
             "formats"_a = false, "rebuild"_a = false, "other_camera"_a = false, "damaged"_a = false,
             "Plans to put back what backup() kept.")
        .def(
            "apply", &apply, "change"_a.none(false), py::kw_only(), "keeps"_a = true, "backup"_a = "",
            "progress"_a = none,
            "Makes a planned change, reads it back, and gives the name of the file with the bytes of "
            "before.\n"
            "Ctrl-C, and a progress that returns False, end it before its first byte or once all is written.")
        .def(
            "backup",
            [](const FlashObject& self, const PathText& path, const std::shared_ptr<FlashImage>& image) {
                self.ask([path = path.name, image](const Flash& flash) { flash.backup(path, *image); });
            },
            "path"_a, "image"_a.none(false), "Keeps an image of this flash in a file that is not there yet.")
        .def("close", &FlashObject::close)
        .def("__enter__", [](const py::object& self) { return self; })
        .def("__exit__", [](const FlashObject& self, const py::args&) { self.close(); });
}

} // namespace Zentara::Python
