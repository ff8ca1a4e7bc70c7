#include "host/plugins/check/plugin_check_child.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <set>
#include <string>
#include <thread>

#include <zentara/core/audio_node_interface.h>
#include <zentara/core/color_node_interface.h>
#include <zentara/core/depth_node_interface.h>
#include <zentara/core/descriptor_store_interface.h>
#include <zentara/core/plugin_probe.h>
#include <zentara/core/shared_library.h>
#include <zentara/host/failure.h>
#include <zentara/io/audio_device_interface.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/io/library_parameter_interpreter.h>
#include <zentara/io/video_device_interface.h>
#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "host/guid_text.h"
#include "host/plugins/check/check_subject.h"
#include "utils/platform/child_process.h"
#include "utils/platform/library_file.h"
#include "utils/platform/program.h"

namespace Zentara::Host::Check {
namespace {

using Utils::Format;
using Utils::SmartPtr;
using namespace std::chrono_literals;

/// What an object says of its library is for its own class.
struct LibraryOfPlugin : Core::Plugin {
    using Plugin::getSharedLibrary;
};

Core::SharedLibrary* libraryOf(const Core::Plugin& object) {
    return (object.*(&LibraryOfPlugin::getSharedLibrary))();
}

bool isOfKind(Core::Plugin& object, std::int32_t type) {
    switch (type) {
    case Core::ImplType_DEPTH_NODE:
        return dynamic_cast<Core::DepthNodeInterface*>(&object) != nullptr;
    case Core::ImplType_COLOR_NODE:
        return dynamic_cast<Core::ColorNodeInterface*>(&object) != nullptr;
    case Core::ImplType_AUDIO_NODE:
        return dynamic_cast<Core::AudioNodeInterface*>(&object) != nullptr;
    case Core::ImplType_AUDIO_DEVICE:
        return dynamic_cast<IO::AudioDeviceInterface*>(&object) != nullptr;
    case Core::ImplType_VIDEO_DEVICE:
        return dynamic_cast<IO::VideoDeviceInterface*>(&object) != nullptr;
    case Core::ImplType_ENUMERATOR:
        return dynamic_cast<IO::EnumeratorInterface*>(&object) != nullptr;
    case Core::ImplType_DESCRIPTOR_STORE:
        return dynamic_cast<Core::DescriptorStoreInterface*>(&object) != nullptr;
    default:
        return false;
    }
}

/// Opens the file, looks for all that its kind exports, and closes it again.
void checkExports(CheckRun& run, const std::string& path, std::int32_t type) {
    run.step({libraryPart, "every export of its kind"}, Wanted::Success, [&]() -> std::string {
        void* const library = Utils::loadSharedLibrary(path, 0);
        std::vector<std::string> names{"createInstance"};
        if (type == Core::ImplType_PARAMETER_INTERPRETER)
            names.insert(names.end(), backEndExports().begin(), backEndExports().end());
        std::string missing;
        for (const std::string& name : names)
            if (Utils::getFunction(library, name) == nullptr)
                missing += (missing.empty() ? "" : ", ") + name;
        Utils::freeSharedLibrary(library);
        if (!missing.empty())
            throw Finding{StepVerdict::Failed, "not exported: " + missing,
                          "it is registered, and fails as soon as a host asks for an object of it",
                          "export them with C linkage (ZENTARA_PLUGIN_EXPORT)"};
        return Format("% beside the four that the scan asks") % names.size();
    });
    run.step({libraryPart, "leaves the process once it is closed"}, Wanted::Success, [&] {
        if (Utils::Platform::isLibraryLoaded(path))
            throw Finding{
                StepVerdict::Failed, "it is still there",
                "it cannot be replaced while a host runs, and its static objects outlive the SDK's library",
                "with g++ build it with -fno-gnu-unique; have no thread-local object with a destructor, and "
                "do not open the library yourself"};
    });
}

/// One plug-in from the manager's scan to the end of its library.
class ObjectCheck {
public:
    explicit ObjectCheck(const Subject& checked) : subject(checked), run(checked.run) {}

    void all() {
        threadsBefore = Utils::Platform::resourceUse().threads;
        if (!make(object, "createInstance")) {
            return;
        }
        library = libraryOf(*object);
        run.step({threadsPart, "a second object, made and dropped on another thread"}, Wanted::Success,
                 [this] {
                     OtherThread().run([this] {
                         SmartPtr<Core::Plugin> other;
                         create(other);
                     });
                 });
        use();
        end();
    }

private:
    /// Through the manager, as hosts do. Throws a Finding for what is no object.
    void create(SmartPtr<Core::Plugin>& made) {
        if (subject.type == Core::ImplType_PARAMETER_INTERPRETER) {
            made = IO::LibraryParameterInterpreter::create(subject.guid);
            return;
        }
        void* const raw =
            subject.manager.createInstance(subject.guid, static_cast<Core::ImplType>(subject.type));
        if (raw == nullptr)
            throw Finding{StepVerdict::Failed, "null", "a host gets no object, and no reason",
                          "return a new object, or throw one of the plug-in exceptions"};
        made = SmartPtr<Core::Plugin>::adopt(static_cast<Core::Plugin*>(raw));
    }

    bool make(SmartPtr<Core::Plugin>& made, const char* name) {
        run.step({objectPart, name}, Wanted::Success, [&]() -> std::string {
            create(made);
            if (subject.type == Core::ImplType_PARAMETER_INTERPRETER)
                return "a back-end: hosts call its functions";
            if (!isOfKind(*made, subject.type))
                throw Finding{StepVerdict::Failed,
                              Format("an object that is no %") % Core::implTypeName(subject.type),
                              "a host refuses it: 'Couldn't instantiate object'",
                              "derive from the interface of the kind that getImplType tells, and convert to "
                              "Core::Plugin* before it becomes void*"};
            if (!isSame(made->getGUID(), subject.guid))
                throw Finding{StepVerdict::Failed, Format("the object says %") % guidText(made->getGUID()),
                              "its references are counted on another library, and its own leaves under it",
                              "give the interface's constructor the GUID that getImplGUID returns"};
            return Core::implTypeName(subject.type);
        });
        return made.get() != nullptr &&
               (subject.type == Core::ImplType_PARAMETER_INTERPRETER || isOfKind(*made, subject.type));
    }

    void use() {
        switch (subject.type) {
        case Core::ImplType_AUDIO_DEVICE:
        case Core::ImplType_VIDEO_DEVICE:
            return checkDevice(subject, *object);
        case Core::ImplType_ENUMERATOR:
            return checkEnumerator(subject, *object);
        case Core::ImplType_DESCRIPTOR_STORE:
            return checkStore(subject, *object);
        case Core::ImplType_PARAMETER_INTERPRETER:
            return checkBackEnd(subject, library->getHandle());
        default:
            return checkNode(subject, *object);
        }
    }

    void end() {
        // A use of the library's own, so that a thread which is left has code to run and can be counted.
        subject.manager.incref(subject.guid);
        run.step({endingPart, "the last reference to the object is dropped"}, Wanted::Success,
                 [this] { object.reset(); });
        const bool isAlone = run.step({endingPart, "no thread of it is left"}, Wanted::Success,
                                      [this]() -> std::string { return countThreads(); });
        if (!isAlone)
            run.abandon("a thread of the plug-in would run in a library that is gone");
        run.step({endingPart, "no reference is left, and the library is closed"}, Wanted::Success,
                 [this]() -> std::string {
                     subject.manager.decref(subject.guid);
                     if (library->getHandle() != nullptr)
                         throw Finding{StepVerdict::Failed, "objects of it are still counted",
                                       "what the object holds (a camera, a thread, memory) is never given "
                                       "back, and the library "
                                       "stays",
                                       "drop what incref() took; hold no SmartPtr to yourself; delete what "
                                       "the factory makes and "
                                       "does not return"};
                     return {};
                 });
        run.step({endingPart, "the library has left the process"}, Wanted::Success, [this] {
            if (library->getHandle() != nullptr)
                throw Finding{StepVerdict::NotRun, "it is still in use", "", "mend the step before first"};
            if (Utils::Platform::isLibraryLoaded(subject.path))
                throw Finding{
                    StepVerdict::Failed, "it is still there", "it cannot be replaced while a host runs",
                    "build it with -fno-gnu-unique (g++), and have no thread-local object with a destructor"};
        });
        SmartPtr<Core::Plugin> again;
        if (make(again, "createInstance once it had gone"))
            run.step({endingPart, "the object that came back is dropped"}, Wanted::Success,
                     [&] { again.reset(); });
    }

    /// Ended ones may take a moment to be gone.
    std::string countThreads() const {
        for (const auto until = std::chrono::steady_clock::now() + 1s;;) {
            const unsigned now = Utils::Platform::resourceUse().threads;
            if (now <= threadsBefore)
                return {};
            if (std::chrono::steady_clock::now() > until)
                throw Finding{
                    StepVerdict::Failed,
                    Format("% more than before the first object") % (now - threadsBefore),
                    "the host crashes as soon as the thread goes on: its code is gone",
                    "join what the object started in the destructor of the class whose code it runs"};
            std::this_thread::sleep_for(5ms);
        }
    }

    Subject subject;
    CheckRun& run;
    SmartPtr<Core::Plugin> object;
    Core::SharedLibrary* library = nullptr; ///< the manager holds it
    unsigned threadsBefore = 0;
};

void checkFile(CheckRun& run, const std::string& path) {
    const Core::PluginProbe probe = Core::probePluginFile(path, {});
    checkExports(run, path, probe.type);
    Core::PluginManager* manager = nullptr;
    const bool isThere = run.step({objectPart, scanStep}, Wanted::Success, [&]() -> std::string {
        manager = Core::PluginManager::instance();
        const auto known = manager->getGUIDs(static_cast<Core::ImplType>(probe.type));
        if (std::none_of(known.begin(), known.end(),
                         [&probe](const GUID& guid) { return isSame(guid, probe.guid); }))
            throw Finding{StepVerdict::Failed, "it does not", "no host sees it",
                          "see 'zentara plugins --all'"};
        return Format("% plug-ins of its kind") % known.size();
    });
    if (!isThere)
        return;
    ObjectCheck({run, *manager, probe.guid, probe.type, path}).all();
    run.step({endingPart, "the plug-in manager ends"}, Wanted::Success, [&] { manager->release(); });
}

} // namespace

std::optional<int> answerPluginCheck(const std::vector<std::string>& arguments) {
    if (arguments.size() != 5 || arguments.front() != checkWord)
        return std::nullopt;
    std::FILE* const report = Utils::Platform::openReport(arguments[4]);
    if (report == nullptr)
        return Failure::Usage;
    std::set<std::string> leftOut;
    for (const std::string& step : Utils::split(arguments[3], '|'))
        leftOut.insert(step);
    // Never destroyed: its watch looks at it for as long as the process lives.
    auto& run = *new CheckRun(report, std::chrono::milliseconds(std::atoi(arguments[2].c_str())), leftOut);
    checkFile(run, arguments[1]);
    Utils::Platform::endProcess(Failure::None);
}

} // namespace Zentara::Host::Check
