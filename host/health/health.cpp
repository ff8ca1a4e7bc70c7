#include <zentara/host/health.h>

#include <memory>
#include <mutex>
#include <vector>

#include <zentara/host/cameras.h>
#include <zentara/host/failure.h>
#include <zentara/host/own_root.h>
#include <zentara/utils/format.h>

#include "host/files/paths.h"
#include "host/health/checkup.h"
#include "host/user_log.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

void addFailure(Checkup& checkup, const Failure& failure) {
    checkup.wrong(failure.message() + (failure.cause().empty() ? "" : ": " + failure.cause()),
                  failure.remedy().empty() ? "mend what it names" : failure.remedy());
}

/// \return whether this process may load them, as it does to look for cameras
bool checkPlugins(Checkup& checkup, const PluginQuestions& questions) {
    checkup.about("install-root");
    PluginDirectory directory;
    try {
        directory = surveyPlugins(questions);
    } catch (const Failure& failure) {
        addFailure(checkup, failure);
        return true;
    }
    const InstallRoot root = installRoot();
    const std::string named = Format("'%', %") % Utils::visibleText(root.directory) % root.origin;
    if (isDirectory(root.directory))
        checkup.well(named);
    else
        checkup.wrong(named + ": it is no directory",
                      "set ZENTARASDK_ROOT to the directory that holds bin/Plugins/");

    checkup.about("plugin-directory");
    const std::string place = "'" + Utils::visibleText(directory.path) + "'";
    if (!directory.isThere) {
        checkup.wrong(place + " is not there",
                      "set ZENTARASDK_ROOT to the directory that holds bin/Plugins/");
        return true;
    }
    if (directory.everybodyMayWrite)
        checkup.wrong(Format("everybody may write to %, and what lies there runs in every program that looks "
                             "for cameras") %
                          place,
                      "let administrators alone write there");
    if (directory.registered.empty())
        checkup.wrong(place + " holds no usable plug-in", "install them there");
    else
        checkup.well(Format("% plug-ins in %") % static_cast<long long>(directory.registered.size()) % place);

    checkup.about("plugin");
    bool isSafe = true;
    for (const RefusedFile& file : directory.refused) {
        if (file.step == "ending") // nobody meant it to be a plug-in
            continue;
        const std::string versions =
            file.found.empty() ? "" : " (found " + file.found + ", wanted " + file.wanted + ")";
        checkup.wrong("'" + Utils::visibleText(file.path) + "' is refused: " + file.reason + versions +
                          (file.isFatal ? "; no program finds a camera because of it" : ""),
                      file.remedy);
        isSafe = isSafe && !file.isFatal;
    }
    return isSafe;
}

void checkLog(Checkup& checkup) {
    checkup.about("log");
    try {
        beginUserLog();
    } catch (const Failure& failure) {
        passOverUserLog(); // or nothing else could be looked at
        return addFailure(checkup, failure);
    }
    const std::optional<std::string> target = userLogTarget();
    checkup.well(target ? "goes to '" + Utils::visibleText(*target) + "', as ZENTARASDK_LOG says"
                        : "is off; ZENTARASDK_LOG turns it on");
}

/// That there is none is nothing wrong, unless an enumerator has failed.
void checkNone(Checkup& checkup, Cameras& cameras) {
    try {
        static_cast<void>(cameras.choose({}));
    } catch (const Failure& failure) {
        if (failure.cause().empty())
            checkup.note("none is plugged in",
                         "plug one in; simulated ones are there unless a file names none");
        else
            addFailure(checkup, failure);
    }
}

/// What the enumerators and stores have to say; they may do so later than anybody waits.
struct Told {
    std::mutex lock;
    std::vector<std::string> texts; ///< guarded by `lock`
};

void checkCameras(Checkup& checkup) {
    checkup.about("cameras");
    const auto told = std::make_shared<Told>();
    try {
        Cameras::Options options;
        options.note = [told](const std::string& text) {
            const std::lock_guard hold(told->lock);
            told->texts.push_back(text);
        };
        Cameras cameras(std::move(options));
        const std::vector<CameraInfo> all = cameras.list();
        for (const CameraInfo& camera : all)
            checkup.well(Utils::visibleText(camera.label()));
        if (all.empty())
            checkNone(checkup, cameras);
        cameras.close();
    } catch (const Failure& failure) {
        addFailure(checkup, failure);
    }
    const std::lock_guard hold(told->lock);
    for (const std::string& text : told->texts)
        checkup.wrong(Utils::visibleText(text), "mend what it names, or take it out of the installation");
}

} // namespace

void Checkup::add(HealthFinding::State state, std::string text, std::string remedy) {
    findings.push_back({check, state, std::move(text), std::move(remedy)});
}

HealthReport examine(const HealthOptions& options) {
    Checkup checkup;
    const std::filesystem::path system = pathOf(options.system);
    checkLog(checkup);
    const bool isSafe = checkPlugins(checkup, options.plugins);
    checkLibraries(checkup, system);
    checkSharedMemory(checkup, system); // before anybody sweeps it
    checkKernelCameras(checkup, system);
    if (isSafe) {
        checkCameras(checkup);
    } else {
        checkup.about("cameras");
        checkup.note("were not looked for", "first take out the plug-in that ends every program");
    }
    return checkup.take();
}

} // namespace Zentara::Host
