// A camera at USB level, plugged into this machine's virtual host controller: `simulated_usb_camera --help`.
#include <csignal>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <sys/socket.h>

#include "plugins/descriptions/camera_description.h"
#include "plugins/simulated/port.h"
#include "plugins/simulated/settings.h"
#include "plugins/simulated/usb/descriptors.h"
#include "plugins/simulated/usb/usb_camera.h"
#include "plugins/simulated/usb/virtual_controller.h"

namespace {

using namespace Zentara;
using namespace Zentara::Simulated;

struct Options {
    std::string camera = "plain";
    std::string serialNumber;
    std::string settings;
    std::vector<std::string> faults;
    std::string configurationFile;
    Coding coding = Coding::Yuy2;
    unsigned pictures = 0;
    bool isochronous = false;
    bool withoutTables = false;
    bool withoutMicrophone = false;
    bool showDescriptors = false;
    bool withoutConfidence = false;
};

const std::map<std::string, Coding> codings{
    {"y16", Coding::Y16}, {"z16", Coding::Z16}, {"yuy2", Coding::Yuy2}, {"mjpeg", Coding::Mjpeg}};

Cameras::CameraDescription descriptionOf(const std::string& model) {
    std::string known;
    for (Cameras::CameraDescription& description :
         Cameras::readDescriptionFolder(Cameras::descriptionFolder())) {
        if (description.model == model)
            return std::move(description);
        known += ' ' + description.model;
    }
    throw std::invalid_argument("no camera '" + model + "' is described; known: plain plain-one" + known);
}

/// The camera's insides, and what a host sees of them.
struct Camera {
    CameraShape shape;
    std::unique_ptr<Port> port; ///< null without a controller
    Eyes eyes;
    std::uint32_t seed = 1;
};

Camera makeCamera(const Options& options) {
    Camera camera;
    Settings settings = Settings::parse({}, {});
    settings.add(options.settings, "--settings");
    if (!settings.faults.empty())
        throw std::invalid_argument("--settings: faults of a camera at USB level are told with --fault");
    camera.seed = settings.seed;
    if (options.camera == "plain" || options.camera == "plain-one") {
        camera.shape = plainShape(options.camera == "plain-one");
    } else {
        const Cameras::CameraDescription description = descriptionOf(options.camera);
        settings.firmware.chip = description.controller;
        camera.eyes = eyesOf(description);
        camera.port = makePort(settings, nullptr);
        if (camera.port)
            camera.port->select(camera.port->model().guid());
        camera.shape = shapeOf(description, camera.port ? &camera.port->model() : nullptr);
    }
    if (!options.serialNumber.empty())
        camera.shape.serialNumber = options.serialNumber;
    camera.shape.isochronous = options.isochronous;
    camera.shape.hasMicrophone = !options.withoutMicrophone;
    return camera;
}

void write(const Bytes& bytes) {
    std::cout.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

Bytes readBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::invalid_argument("cannot read '" + path + "'");
    return {std::istreambuf_iterator<char>(file), {}};
}

// Who is told to end pulls the cable out and ends as after any other unplugging.
volatile std::sig_atomic_t plugged = -1; // the camera's end of the cable
void pullOut(int) { ::shutdown(plugged, SHUT_RDWR); }

void run(const Options& options) {
    const Camera camera = makeCamera(options);
    const Pictures pictures(camera.seed, camera.eyes, camera.port.get(), !options.withoutTables);
    if (options.showDescriptors) {
        write(configurationDescriptor(camera.shape));
        return;
    }
    const bool confidence = options.coding == Coding::Y16 && !options.withoutConfidence;
    for (unsigned number = 0; number < options.pictures; ++number)
        write(pictures.draw(options.coding, {320, static_cast<std::uint16_t>(confidence ? 480 : 240)}, number,
                            0));
    if (options.pictures > 0)
        return;
    UsbFaults faults;
    for (const std::string& sentence : options.faults)
        faults.add(sentence);
    UsbCamera device(camera.shape,
                     options.configurationFile.empty() ? configurationDescriptor(camera.shape)
                                                       : readBytes(options.configurationFile),
                     camera.port.get(), pictures, faults);
    plugged = plugIntoVirtualController();
    UsbCable cable(plugged);
    std::signal(SIGTERM, pullOut);
    std::signal(SIGINT, pullOut);
    std::cout << "plugged in: " << camera.shape.productName << ", " << camera.shape.serialNumber << std::endl;
    device.serve(cable);
}

void describe(CLI::App& app, Options& options) {
    app.add_option("--camera", options.camera,
                   "the model of a described camera, which then shows its controller's unit; 'plain': colour "
                   "as MJPEG "
                   "and depth as Z16, on an interface each; 'plain-one': both on one")
        ->capture_default_str();
    app.add_option("--serial", options.serialNumber, "serial number; the camera's own unless told");
    app.add_flag("--isochronous", options.isochronous, "pictures come in isochronous transfers, not in bulk");
    app.add_flag("--no-huffman", options.withoutTables, "JPEG pictures come without their Huffman tables");
    app.add_flag("--no-microphone", options.withoutMicrophone, "the camera is deaf");
    app.add_option("--settings", options.settings,
                   "the controller's, in the words of ZENTARA_SIMULATED: seed flash keepFlash keepRegisters "
                   "transferLog...");
    app.add_option("--fault", options.faults,
                   "what goes wrong, as 'PLACE KIND [after N] [times N] [reason N]'; may be told more than "
                   "once. PLACE: unit length "
                   "info control probe commit interface frame sound. KIND: stall short zero silent unplug");
    app.add_option("--configuration", options.configurationFile,
                   "a file with the configuration descriptor to show instead of its own");
    app.add_flag("--descriptors", options.showDescriptors,
                 "writes the configuration descriptor to standard output and plugs nothing in");
    app.add_option("--pictures", options.pictures,
                   "writes so many pictures to standard output, as a stream sends them from its start, and "
                   "plugs nothing in");
    app.add_option("--coding", options.coding, "of --pictures")
        ->transform(CLI::CheckedTransformer(codings, CLI::ignore_case));
    app.add_flag("--depth-only", options.withoutConfidence, "of --pictures in Y16: without the lower half");
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Plugs a camera into this machine's virtual USB host controller (module vhci-hcd; as root) "
                 "and is that camera until "
                 "it is ended, which pulls the camera out.");
    describe(app, options);
    CLI11_PARSE(app, argc, argv);
    try {
        run(options);
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "simulated_usb_camera: " << failure.what() << '\n';
        return 1;
    }
}
