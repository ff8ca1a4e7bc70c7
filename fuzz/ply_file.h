#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <zentara/host/point_cloud.h>

#include "input.h"

namespace Zentara::Fuzz {

/// A PLY file with one element, the vertex: read by what the format says, not by what wrote it.
class PlyFile {
public:
    explicit PlyFile(const std::string& bytes) : file(bytes) {
        require(line() == "ply");
        const std::string format = line();
        isText = format == "format ascii 1.0";
        require(isText || format == "format binary_little_endian 1.0");
        std::string next = line();
        for (; startsWith(next, "comment "); next = line())
            comments.push_back(next.substr(8));
        require(startsWith(next, "element vertex "));
        vertices = std::stoul(next.substr(15));
        for (const char* name : {"float x", "float y", "float z"})
            require(line() == std::string("property ") + name);
        next = line();
        isColored = next == "property uchar red";
        if (isColored) {
            require(line() == "property uchar green");
            require(line() == "property uchar blue");
            next = line();
        }
        require(next == "end_header");
    }

    /// Every vertex is the cloud's, number for number, and nothing follows the last one.
    void compareWith(const Host::PointCloud& cloud) {
        require(vertices == cloud.points().size() && isColored == !cloud.colors().empty());
        for (std::size_t i = 0; i < vertices; ++i) {
            const Host::Point& point = cloud.points()[i];
            std::istringstream numbers(isText ? line() : std::string());
            for (const float value : {point.x, point.y, point.z})
                require(isSame(isText ? textFloat(numbers) : float32(), value));
            if (isColored) {
                const Host::Color color = cloud.colors()[i].value_or(Host::Color{});
                for (const unsigned value : {color.red, color.green, color.blue})
                    require((isText ? std::stoul(word(numbers)) : byte()) == value);
            }
            require(!isText || (numbers >> std::ws).eof());
        }
        require(at == file.size());
    }

    std::vector<std::string> comments;

private:
    static bool startsWith(const std::string& text, const char* start) { return text.rfind(start, 0) == 0; }
    static bool isSame(float read, float value) {
        return std::bit_cast<std::uint32_t>(read) == std::bit_cast<std::uint32_t>(value) ||
               (std::isnan(read) && std::isnan(value));
    }

    std::string line() {
        const std::size_t end = file.find('\n', at);
        require(end != std::string::npos);
        std::string text = file.substr(at, end - at);
        at = end + 1;
        return text;
    }
    static std::string word(std::istringstream& numbers) {
        std::string text;
        require(static_cast<bool>(numbers >> text));
        return text;
    }
    static float textFloat(std::istringstream& numbers) {
        const std::string text = word(numbers);
        char* end = nullptr;
        const float value = std::strtof(text.c_str(), &end);
        require(*end == '\0');
        return value;
    }
    std::uint8_t byte() {
        require(at < file.size());
        return static_cast<std::uint8_t>(file[at++]);
    }
    float float32() {
        std::uint32_t bits = 0;
        for (unsigned shift = 0; shift < 32; shift += 8)
            bits |= std::uint32_t{byte()} << shift;
        return std::bit_cast<float>(bits);
    }

    const std::string& file;
    std::size_t at = 0;
    std::size_t vertices = 0;
    bool isText = false;
    bool isColored = false;
};

} // namespace Zentara::Fuzz
