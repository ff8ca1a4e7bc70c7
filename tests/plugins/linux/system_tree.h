#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/temporary_directory.h"

namespace Zentara::TestSupport {

/// A camera's descriptors, byte by byte.
class Descriptors {
public:
    using Bytes = std::vector<std::uint8_t>;

    Descriptors& add(Bytes bytes) {
        all.insert(all.end(), bytes.begin(), bytes.end());
        return *this;
    }
    Descriptors& interface(std::uint8_t number, std::uint8_t subclass) {
        return add({9, 4, number, 0, 0, 14, subclass, 0, 0});
    }
    Descriptors& input(std::uint8_t id) { return add({8, 0x24, 2, id, 1, 2, 0, 0}); }
    Descriptors& output(std::uint8_t id, std::uint8_t source) {
        return add({9, 0x24, 3, id, 1, 1, 0, source, 0});
    }
    /// An extension unit with controls 1, 2 and 9; its identifier is 16 times `mark`.
    Descriptors& unit(std::uint8_t id, std::uint8_t source, std::uint8_t mark = 0x42) {
        Bytes bytes{27, 0x24, 6, id};
        bytes.insert(bytes.end(), 16, mark);
        return add(bytes).add({3, 1, source, 2, 0x03, 0x01, 0});
    }
    /// An uncompressed format of that name.
    Descriptors& format(const std::string& name) {
        Bytes bytes{27, 0x24, 4, 1, 1};
        bytes.insert(bytes.end(), name.begin(), name.end());
        return add(bytes).add({0, 0, 16, 0, 128, 0, 0, 170, 0, 56, 155, 113, 16, 1, 0, 0, 0, 0});
    }
    /// One size at 30 frames a second.
    Descriptors& frame(unsigned width, unsigned height) {
        const auto low = [](unsigned value) { return static_cast<std::uint8_t>(value & 0xFF); };
        Bytes bytes(30);
        bytes[0] = 30, bytes[1] = 0x24, bytes[2] = 5;
        bytes[5] = low(width), bytes[6] = low(width >> 8), bytes[7] = low(height),
        bytes[8] = low(height >> 8);
        bytes[25] = 1, bytes[26] = 0x15, bytes[27] = 0x16, bytes[28] = 0x05;
        return add(bytes);
    }
    [[nodiscard]] const Bytes& bytes() const { return all; }

private:
    Bytes all;
};

/// What the system tells of its devices, in a directory.
class SystemTree {
public:
    /// A USB device with an interface of a camera.
    void plug(const std::string& port, const std::string& vendor, const std::string& product,
              const std::vector<std::uint8_t>& descriptors) {
        const std::string device = "devices/usb1/" + port;
        write(device + "/idVendor", vendor), write(device + "/idProduct", product);
        write(device + "/bcdDevice", "0102"), write(device + "/product", "Box"),
            write(device + "/serial", "S" + port);
        write(device + "/busnum", "1"), write(device + "/devnum", "7"), write(device + "/devpath", "4.2");
        write(device + "/" + port + ":1.0/bInterfaceClass", "0e");
        write(device + "/" + port + ":1.0/bInterfaceSubClass", "01");
        write(device + "/descriptors", {descriptors.begin(), descriptors.end()});
        link("bus/usb/devices/" + port, device);
    }
    /// 0: the kernel resets it
    void setAddress(const std::string& port, unsigned address) {
        write("devices/usb1/" + port + "/devnum", std::to_string(address));
    }
    void addVideo(unsigned number, const std::string& device, unsigned index = 0) {
        const std::string name = "class/video4linux/video" + std::to_string(number);
        write(name + "/index", std::to_string(index));
        link(name + "/device", device);
    }
    void addMicrophone(unsigned card, const std::string& device) {
        write("class/sound/pcmC" + std::to_string(card) + "D0c/dev", "116:1");
        link("class/sound/card" + std::to_string(card) + "/device", device);
    }
    void remove(const std::string& name) { std::filesystem::remove_all(directory.path(name)); }
    [[nodiscard]] std::string path() const { return directory.path(); }
    [[nodiscard]] std::string real(const std::string& name) const {
        return std::filesystem::canonical(directory.path(name)).string();
    }

private:
    void write(const std::string& name, const std::string& text) {
        const std::filesystem::path file = directory.path(name);
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }
    void link(const std::string& name, const std::string& target) {
        const std::filesystem::path place = directory.path(name);
        std::filesystem::create_directories(directory.path(target));
        std::filesystem::create_directories(place.parent_path());
        std::filesystem::create_directory_symlink(directory.path(target), place);
    }

    TemporaryDirectory directory;
};

} // namespace Zentara::TestSupport
