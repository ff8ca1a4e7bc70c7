#include "tools/viewer/scene.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <utility>

#include <zentara/host/frame_set.h>
#include <zentara/host/picture.h>
#include <zentara/host/recording.h>
#include <zentara/host/visible_text.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

namespace Zentara::Viewer {

using Host::CameraInfo;
using Host::Failure;
using Phase = FeedState::Phase;

namespace {

constexpr Host::ValueRange usualRange{200, 5000}; ///< millimetres
constexpr std::chrono::seconds messageStays{8};
constexpr std::chrono::milliseconds busLook{300};
constexpr std::chrono::seconds endLimit{3}; ///< a stream's own is 2 s

std::string fileName(const CameraInfo& camera) {
    std::string name = camera.serial.empty() ? camera.path : camera.serial;
    std::replace_if(
        name.begin(), name.end(),
        [](unsigned char letter) { return std::isalnum(letter) == 0 && letter != '-' && letter != '_'; },
        '_');
    return name;
}

std::string textOf(const Failure& failure) {
    return Host::visibleText(failure.what()) +
           (failure.remedy().empty() ? "" : "; " + Host::visibleText(failure.remedy()));
}

std::string holdsText(const Film& film) {
    if (film.frames() == 0)
        return "nothing was recorded: no frame came";
    return Utils::Format("'%' holds % frames") % film.path() % film.frames();
}

} // namespace

/// The buses, and what a thread of its own has heard of them.
struct Scene::Bus {
    Host::Cameras cameras;
    std::atomic<bool> ending = false;
    std::mutex lock;
    std::optional<std::vector<CameraInfo>> heard; ///< guarded by the lock: the cameras, as they are now
    std::thread thread;
};

Scene::Scene(const ViewWishes& wanted, std::function<void()> waker)
    : wishes(wanted), wake(std::move(waker)), play(wanted.play) {
    fixedRange = wishes.range.size() == 2 ? Host::ValueRange{wishes.range[0], wishes.range[1]} : usualRange;
    shownRange = fixedRange;
    hasCloud = wishes.cloud;
    hasPanel = !wishes.bare;
    std::vector<CameraInfo> named;
    std::vector<CameraInfo> there;
    if (isPlaying()) {
        recording.emplace(play);
        there = recording->cameras();
        named = wishes.cameras.empty() ? there : recording->choose(wishes.cameras);
    } else {
        bus = std::make_unique<Bus>();
        named = bus->cameras.choose(wishes.cameras); // which says why there is none
        there = bus->cameras.list();
        if (wishes.all)
            named = there;
    }
    for (const CameraInfo& who : there)
        addCamera(who);
    for (const auto& camera : all) {
        if (std::any_of(named.begin(), named.end(),
                        [&](const CameraInfo& who) { return who.path == camera->info.path; }))
            show(*camera, true);
    }
    if (bus)
        bus->thread = std::thread([this] { watchBus(); });
}

Scene::~Scene() {
    if (bus) {
        bus->ending = true;
        bus->thread.join();
    }
    for (const auto& camera : all) {
        if (camera->feed)
            camera->feed->end(); // all at once: each may take its time
    }
}

void Scene::watchBus() {
    try {
        bus->cameras.watch();
        while (!bus->ending) {
            if (!bus->cameras.next(busLook))
                continue;
            std::vector<CameraInfo> now = bus->cameras.list();
            {
                const std::lock_guard<std::mutex> guard(bus->lock);
                bus->heard = std::move(now);
            }
            wake();
        }
    } catch (const Failure& failure) {
        say(textOf(failure), true);
    }
}

/// A camera that has gone stays in the list, for it may come back.
void Scene::takeBus() {
    std::optional<std::vector<CameraInfo>> heard;
    {
        const std::lock_guard<std::mutex> guard(bus->lock);
        heard.swap(bus->heard);
    }
    if (!heard)
        return;
    for (const auto& camera : all) {
        const bool isThere = std::any_of(heard->begin(), heard->end(), [&](const CameraInfo& who) {
            return who.path == camera->info.path;
        });
        if (isThere != std::exchange(camera->isThere, isThere))
            say(camera->info.label() + (isThere ? " is back" : " was pulled out"), !isThere);
    }
    for (const CameraInfo& who : *heard) {
        const bool isKnown = std::any_of(all.begin(), all.end(),
                                         [&](const auto& camera) { return camera->info.path == who.path; });
        if (isKnown)
            continue;
        addCamera(who);
        say(who.label() + " was plugged in");
        if (wishes.all)
            show(*all.back(), true);
    }
}

void Scene::addCamera(const CameraInfo& who) {
    all.push_back(std::make_unique<SceneCamera>());
    all.back()->info = who;
}

void Scene::show(SceneCamera& camera, bool isShown) {
    if (isShown == camera.isShown())
        return;
    if (!isShown) {
        // Its end may take as long as a call of the camera.
        std::shared_ptr<CameraControls> controls = std::move(camera.controls);
        std::shared_ptr<CameraFeed> feed = std::move(camera.feed);
        feed->end();
        files.post([feed, controls]() mutable {
            controls.reset();
            feed.reset();
        });
        camera.state = {};
        camera.known = {};
        return;
    }
    const FeedRules rules{.mode = wishes.mode,
                          .colorMode = wishes.colorMode,
                          .shared = wishes.share,
                          .corrected = wishes.corrected,
                          .recorded = isPlaying()};
    CameraFeed::Opener open;
    if (isPlaying())
        open = [this, who = camera.info] { return recording->camera(who); };
    else
        open = [this, who = camera.info] { return bus->cameras.open(who); };
    camera.feed = std::make_unique<CameraFeed>(camera.info, rules, std::move(open), wake);
    camera.controls =
        std::make_unique<CameraControls>([feed = camera.feed.get()] { return feed->camera(); }, wake);
    select(camera);
    if (paused)
        camera.feed->hold(true);
}

bool Scene::update() {
    if (bus)
        takeBus();
    bool isNew = false;
    for (const auto& camera : all) {
        if (!camera->isShown() || camera->feed->shown() == camera->state.shown)
            continue;
        FeedState now = camera->feed->state();
        if (paused) { // the pictures stand; what befalls the camera is told all the same
            now.depth = camera->state.depth;
            now.color = camera->state.color;
        }
        camera->state = std::move(now);
        isNew = true;
    }
    if (recorded && recorded->isOver())
        endFilm();
    // What somebody has just set stands until the camera has answered.
    SceneCamera* const camera = selected();
    if (camera != nullptr) {
        CameraControls::State answered = camera->controls->state();
        if (answered.answers != camera->known.answers)
            camera->known = std::move(answered);
    }
    return isNew;
}

void Scene::askSelected() {
    SceneCamera* const camera = selected();
    if (camera != nullptr && camera->state.phase == Phase::Streaming && !isPlaying())
        camera->controls->refresh(hasPanel);
}

void Scene::waitForAnswers() {
    if (SceneCamera* camera = selected())
        static_cast<void>(camera->controls->isDoneWithin(endLimit));
}

void Scene::followRange() {
    if (!automatic || paused)
        return;
    Host::ValueRange range{0, 0};
    for (const auto& shown : all) {
        if (!shown->isShown() || !shown->state.depth)
            continue;
        const Host::ValueRange one = Host::ColorMap::rangeOf(shown->state.depth->depth());
        const double unit = shown->state.depth->info().millimetresPerUnit;
        if (one.high == 0)
            continue;
        range.low = range.high == 0 ? one.low * unit : std::min(range.low, one.low * unit);
        range.high = std::max(range.high, one.high * unit);
    }
    if (range.high != 0)
        shownRange = range;
}

SceneCamera* Scene::selected() noexcept {
    if (chosen < all.size() && all[chosen]->isShown())
        return all[chosen].get();
    const auto first =
        std::find_if(all.begin(), all.end(), [](const auto& camera) { return camera->isShown(); });
    return first == all.end() ? nullptr : first->get();
}

void Scene::select(SceneCamera& camera) {
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.get() == &camera; });
    chosen = static_cast<std::size_t>(found - all.begin());
}

void Scene::selectNext() {
    for (std::size_t step = 1; step <= all.size(); ++step) {
        const std::size_t next = (chosen + step) % all.size();
        if (all[next]->isShown()) {
            chosen = next;
            return;
        }
    }
}

void Scene::setRange(Host::ValueRange millimetres) {
    automatic = false;
    fixedRange = shownRange = {millimetres.low, std::max(millimetres.low + 1, millimetres.high)};
}

void Scene::followPictures(bool isWanted) {
    automatic = isWanted;
    if (!automatic)
        shownRange = fixedRange;
}

void Scene::togglePause() {
    paused = !paused;
    for (const auto& camera : all) {
        if (camera->isShown())
            camera->feed->hold(paused);
    }
}

void Scene::playAgain() {
    for (const auto& camera : all) {
        if (camera->isShown())
            camera->feed->again();
    }
}

void Scene::toggleRecording() {
    if (recorded) {
        endFilm();
        return;
    }
    std::vector<Host::StreamInfo> streams;
    std::vector<std::pair<CameraFeed*, std::size_t>> feeds;
    for (const auto& camera : all) {
        if (!camera->isShown())
            continue;
        feeds.emplace_back(camera->feed.get(), streams.size());
        const auto infos = camera->feed->recordable();
        if (infos.empty())
            feeds.pop_back();
        streams.insert(streams.end(), infos.begin(), infos.end());
    }
    if (feeds.empty())
        return say("nothing streams that could be recorded", true);
    try {
        recorded = std::make_shared<Film>(Host::unusedPath(place("zentara"), "ztrec"), streams);
    } catch (const Failure& failure) {
        return say(textOf(failure), true);
    }
    for (const auto& [feed, first] : feeds)
        feed->recordTo(recorded, first);
}

void Scene::endFilm() {
    for (const auto& camera : all) {
        if (camera->isShown())
            camera->feed->recordTo(nullptr, 0);
    }
    files.post([this, ended = std::move(recorded)] {
        ended->finish();
        const auto trouble = ended->trouble();
        const bool isEmpty = ended->frames() == 0;
        const std::string holds = holdsText(*ended);
        say(trouble ? "the recording ended: " + textOf(*trouble) + (isEmpty ? "" : "; " + holds) : holds,
            trouble || isEmpty);
        wake();
    });
    recorded.reset();
}

void Scene::takeSnapshot() {
    bool isAny = false;
    for (const auto& camera : all) {
        if (!camera->isShown() || !camera->state.depth)
            continue;
        isAny = true;
        const std::string stem = place(fileName(camera->info));
        files.post([this, stem, depth = *camera->state.depth, color = camera->state.color,
                    range = shownRange] {
            std::string written;
            const auto write = [&](const char* what, const char* ending, const auto& how) {
                const std::string path = Host::unusedPath(stem + what, ending);
                how(path);
                written += (written.empty() ? "'" : ", '") + path + "'";
            };
            try {
                const Host::OutputFile::Rules rules{.ifThere = Host::IfThere::Keep};
                write("-depth", "png", [&](const std::string& path) {
                    // As it is shown, with the scale that it is shown in.
                    const float unit = depth.info().millimetresPerUnit;
                    const Host::ColorMap map({range.low / unit, range.high / unit},
                                             unit == 1 ? std::string("mm") : Utils::Format("% mm") % unit,
                                             "no reading");
                    map.explain(map.paint(depth.depth(), depth.width(), depth.height()),
                                depth.info().camera.label(Host::Kind::Depth) + " frame " +
                                    std::to_string(depth.number()))
                        .writePng(path, rules);
                });
                Host::LastSet set;
                if (color) {
                    set.add(*color);
                    write("-color", "png",
                          [&](const std::string& path) { Host::pictureOf(*color).writePng(path, rules); });
                }
                set.add(depth);
                write("-cloud", "ply", [&](const std::string& path) {
                    Host::cloudOf(set.set()).writePly(path, Host::PointCloud::PlyFormat::Binary, rules);
                });
                say("wrote " + written);
            } catch (const Failure& failure) {
                say(textOf(failure) + (written.empty() ? "" : "; wrote " + written), true);
            }
            wake();
        });
    }
    if (!isAny)
        say("there is no picture yet", true);
}

void Scene::writeCloud(const SceneCamera& camera, const std::string& path) const {
    Host::LastSet set;
    if (camera.state.color)
        set.add(*camera.state.color);
    if (camera.state.depth)
        set.add(*camera.state.depth);
    Host::cloudOf(set.set()).writePly(path);
}

void Scene::say(const std::string& text, bool isTrouble) {
    const std::lock_guard<std::mutex> guard(sayLock);
    said = text;
    saidTrouble = isTrouble;
    saidAt = Clock::now();
}

std::string Scene::message() const {
    const std::lock_guard<std::mutex> guard(sayLock);
    return Clock::now() - saidAt < messageStays ? said : std::string();
}

bool Scene::messageIsTrouble() const {
    const std::lock_guard<std::mutex> guard(sayLock);
    return saidTrouble;
}

std::string Scene::place(const std::string& name) const {
    return wishes.output.empty() ? name : Utils::addTrailingSeparator(wishes.output) + name;
}

bool Scene::end() {
    if (recorded)
        endFilm();
    for (const auto& camera : all) {
        if (camera->isShown())
            camera->feed->end();
    }
    const auto until = Clock::now() + endLimit;
    const auto left = [&] {
        return std::max(std::chrono::milliseconds(0),
                        std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now()));
    };
    bool isWell = files.isDoneWithin(std::chrono::seconds(20)); // a slow disk has its time
    for (const auto& camera : all) {
        if (!camera->isShown())
            continue;
        while (!camera->feed->isOver() && left().count() > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        isWell = camera->controls->isDoneWithin(left()) && camera->feed->isOver() && isWell;
    }
    return isWell;
}

std::string Scene::rescue() {
    if (!recorded)
        return {};
    recorded->finish();
    return holdsText(*recorded);
}

} // namespace Zentara::Viewer
