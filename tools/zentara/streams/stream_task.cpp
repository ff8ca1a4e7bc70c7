#include "tools/zentara/streams/stream_task.h"

#include <string>
#include <utility>

#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {
namespace {

/// "temperature, cyclic error: algorithm 3 is not known"
void printList(std::ostream& out, const char* what, const std::vector<std::string>& corrections) {
    const char* before = what;
    for (const std::string& one : corrections) {
        out << (before == what ? "         " : "") << before
            << printable(one.substr(0, one.find(": not applied")));
        before = ", ";
    }
    out << (corrections.empty() ? "" : "\n");
}

} // namespace

void StreamTask::writeTo(const char* word, const char* key, std::unique_ptr<FrameFile> file) {
    told.push_back({word, key, *file});
    Capture::writeTo(std::move(file));
}

void StreamTask::makeCloud(std::shared_ptr<CloudMaker> shared) {
    cloud = std::move(shared);
    showTo([maker = cloud](const Frame& seen) { maker->take(seen); });
}

void StreamTask::print(std::ostream& out) const {
    const StreamStatistics& came = statistics();
    if (kind() == Kind::Audio)
        out << "sound    " << taken() << " samples of " << info().mode.channels << " channels at "
            << info().mode.rate << " Hz\n";
    else
        out << "frames   " << taken() << (wanted() == 0 ? "" : " of " + std::to_string(wanted())) << ", "
            << came.dropped() << " dropped, " << fixed(came.framesPerSecond(), 1) << " frames/s\n";
    if (kind() == Kind::Depth && last()) {
        out << "depth    " << came.nearestMillimetres() << " to " << came.farthestMillimetres() << " mm, "
            << fixed(100.0 * came.withoutDepth(), 1) << " % of the pixels without\n";
        printList(out, "corrected: ", last()->corrections());
        printList(out, "not corrected: ", last()->uncorrected());
    }
    for (const Told& one : told) {
        if (one.file.isThere())
            out << padded(one.word, 9) << printable(one.file.path()) << '\n';
    }
    if (cloud && kind() == Kind::Depth)
        cloud->print(out);
}

void StreamTask::fill(Json& json) const {
    const StreamStatistics& came = statistics();
    if (kind() == Kind::Audio) {
        json["audio"] = {
            {"samples", taken()}, {"sampleRate", info().mode.rate}, {"channels", info().mode.channels}};
    } else {
        json["frames"] = {{"received", taken()}, {"dropped", came.dropped()}};
        if (wanted() != 0)
            json["frames"]["wanted"] = wanted();
        json["seconds"] = came.seconds();
        json["framesPerSecond"] = came.framesPerSecond();
    }
    if (kind() == Kind::Depth)
        json["depth"] = {{"nearestMillimetres", came.nearestMillimetres()},
                         {"farthestMillimetres", came.farthestMillimetres()},
                         {"withoutDepth", came.withoutDepth()},
                         {"corrected", last() ? Json(last()->corrections()) : Json::array()},
                         {"uncorrected", last() ? Json(last()->uncorrected()) : Json::array()}};
    for (const Told& one : told) {
        if (one.file.isThere())
            json["files"][one.key] = one.file.path();
    }
    if (cloud && kind() == Kind::Depth)
        cloud->fill(json);
}

} // namespace Zentara::Tool
