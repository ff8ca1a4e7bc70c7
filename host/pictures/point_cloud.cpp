#include <zentara/host/point_cloud.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <exception>
#include <limits>
#include <streambuf>

#include <zentara/host/failure.h>
#include <zentara/host/lens.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {
namespace {

using Utils::Format;

/// A point counts as hidden behind another one that the colour camera sees in the same cell when it is farther by more
/// than this: a share of the distance, and metres for what is near.
constexpr float hiddenShare = 0.02F;
constexpr float hiddenMargin = 0.01F;

constexpr double metresPerMillimetre = 0.001;

/// The rigid transform from one camera to the other, in metres.
class Pose {
public:
    explicit Pose(const ExtrinsicParametersInternal& numbers) : pose(numbers) {}

    /// Whether its three rows are unit vectors at right angles, within a thousandth.
    [[nodiscard]] bool rotates() const noexcept {
        const std::array<std::array<double, 3>, 3> rows{
            {{pose.r11, pose.r12, pose.r13}, {pose.r21, pose.r22, pose.r23}, {pose.r31, pose.r32, pose.r33}}};
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = i; j < 3; ++j) {
                const double product =
                    rows[i][0] * rows[j][0] + rows[i][1] * rows[j][1] + rows[i][2] * rows[j][2];
                if (!(std::abs(product - (i == j ? 1 : 0)) < 1e-3))
                    return false;
            }
        }
        return std::isfinite(pose.t1) && std::isfinite(pose.t2) && std::isfinite(pose.t3);
    }

    [[nodiscard]] Point operator()(const Point& p) const noexcept {
        return {static_cast<float>(pose.r11 * p.x + pose.r12 * p.y + pose.r13 * p.z +
                                   metresPerMillimetre * pose.t1),
                static_cast<float>(pose.r21 * p.x + pose.r22 * p.y + pose.r23 * p.z +
                                   metresPerMillimetre * pose.t2),
                static_cast<float>(pose.r31 * p.x + pose.r32 * p.y + pose.r33 * p.z +
                                   metresPerMillimetre * pose.t3)};
    }

private:
    const ExtrinsicParametersInternal pose;
};

/// What a point is to the other camera.
struct Sight {
    std::size_t pixel = 0;
    std::size_t cell = 0;
    float distance = 0; ///< 0: outside the picture
};

void appendNumber(std::string& text, float value) {
    if (std::isnan(value)) {
        text += "nan";
        return;
    }
    std::array<char, 32> digits{};
    text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
}

/// Pieces of this size are handed to the stream.
constexpr std::size_t pieceBytes = 64 * 1024;

class PlyBody {
public:
    explicit PlyBody(std::ostream& target) : out(target) { text.reserve(pieceBytes + 128); }
    ~PlyBody() { flush(); }
    PlyBody(const PlyBody&) = delete;
    PlyBody& operator=(const PlyBody&) = delete;

    void add(const Point& point, const Color* color, PointCloud::PlyFormat format) {
        if (format == PointCloud::PlyFormat::Text)
            addText(point, color);
        else
            addBytes(point, color);
        if (text.size() >= pieceBytes)
            flush();
    }

private:
    void addText(const Point& point, const Color* color) {
        for (const float value : {point.x, point.y, point.z}) {
            appendNumber(text, value);
            text += ' ';
        }
        text.pop_back();
        if (color != nullptr)
            text += Format(" % % %") % unsigned{color->red} % unsigned{color->green} % unsigned{color->blue};
        text += '\n';
    }

    void addBytes(const Point& point, const Color* color) {
        std::array<char, 15> bytes{};
        std::size_t at = 0;
        for (const float value : {point.x, point.y, point.z}) {
            const auto bits = std::bit_cast<std::uint32_t>(value);
            for (unsigned shift = 0; shift < 32; shift += 8)
                bytes[at++] = static_cast<char>(bits >> shift & 0xFF);
        }
        if (color != nullptr) {
            for (const std::uint8_t channel : {color->red, color->green, color->blue})
                bytes[at++] = static_cast<char>(channel);
        }
        text.append(bytes.data(), at);
    }

    void flush() {
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
        text.clear();
    }

    std::ostream& out;
    std::string text;
};

/// Hands a stream's bytes to a file. A stream keeps no failure, only that there was one, so this does.
class PartBytes final : public std::streambuf {
public:
    explicit PartBytes(OutputFile& target) : file(target) {}

    void check() const {
        if (failure)
            std::rethrow_exception(failure);
    }

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize size) override {
        if (failure)
            return 0;
        try {
            file.append(bytes, static_cast<std::size_t>(size));
        } catch (...) {
            failure = std::current_exception();
            return 0;
        }
        return size;
    }
    int_type overflow(int_type letter) override {
        const char byte = traits_type::to_char_type(letter);
        return xsputn(&byte, 1) == 1 ? letter : traits_type::eof();
    }

private:
    OutputFile& file;
    std::exception_ptr failure;
};

} // namespace

PointCloud::PointCloud() = default;
PointCloud::PointCloud(const PointCloud&) = default;
PointCloud::PointCloud(PointCloud&&) noexcept = default;
PointCloud& PointCloud::operator=(const PointCloud&) = default;
PointCloud& PointCloud::operator=(PointCloud&&) noexcept = default;
PointCloud::~PointCloud() = default;

void PointCloud::colorFrom(std::span<const std::uint8_t> rgb, const Lens& lens,
                           const ExtrinsicParametersInternal& pose) {
    const std::size_t width = lens.model().width;
    const std::size_t height = lens.model().height;
    const std::string attempted = "cannot colour a point cloud with the picture of " + lens.owner();
    if (rgb.size() != 3 * width * height)
        throw Failure(Failure::Failed, attempted,
                      Format("the picture has % bytes, % x % pixels take %") % rgb.size() % width % height %
                          (3 * width * height));
    const Pose move(pose);
    if (!move.rotates())
        throw Failure(Failure::Failed, attempted,
                      "the extrinsics between the two cameras are no rotation and translation",
                      "Calibrate the camera, or mend its description.");

    // Cells as wide as the depth camera's pixels: in the finer colour picture its points would leave gaps to look
    // through.
    const std::size_t cellSize = std::max<std::size_t>(1, (2 * width) / std::max(1U, sourceColumns));
    const std::size_t cellColumns = width / cellSize + 1;
    std::vector<float> nearest((height / cellSize + 1) * cellColumns, std::numeric_limits<float>::max());
    std::vector<Sight> seen(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        const Point moved = move(all[i]);
        const auto place = lens.project(moved);
        if (!place)
            continue;
        const float column = std::round(place->x);
        const float row = std::round(place->y);
        if (!(column >= 0 && column < static_cast<float>(width) && row >= 0 &&
              row < static_cast<float>(height)))
            continue;
        const auto x = static_cast<std::size_t>(column);
        const auto y = static_cast<std::size_t>(row);
        seen[i] = {y * width + x, y / cellSize * cellColumns + x / cellSize, moved.z};
        nearest[seen[i].cell] = std::min(nearest[seen[i].cell], moved.z);
    }
    painted.assign(all.size(), std::nullopt);
    colorless.clear();
    for (std::size_t i = 0; i < all.size(); ++i) {
        const Sight& sight = seen[i];
        if (sight.distance <= 0 || sight.distance > nearest[sight.cell] * (1 + hiddenShare) + hiddenMargin)
            continue;
        painted[i] = Color{rgb[3 * sight.pixel], rgb[3 * sight.pixel + 1], rgb[3 * sight.pixel + 2]};
    }
}

void PointCloud::writePly(std::ostream& out, PlyFormat format) const {
    out << "ply\nformat " << (format == PlyFormat::Text ? "ascii" : "binary_little_endian") << " 1.0\n"
        << "comment unit metre, x right, y down, z forward\n";
    std::vector<std::string> lines = about;
    if (!colorless.empty())
        lines.push_back("no colour: " + colorless);
    for (std::string& line : lines) {
        std::replace_if(
            line.begin(), line.end(), [](char letter) { return letter == '\n' || letter == '\r'; }, ' ');
        out << "comment " << line << '\n';
    }
    if (columns != 0)
        out << "comment grid " << columns << " x " << rows << '\n';
    out << "element vertex " << all.size() << "\nproperty float x\nproperty float y\nproperty float z\n";
    if (!painted.empty())
        out << "property uchar red\nproperty uchar green\nproperty uchar blue\n";
    out << "end_header\n";
    if (painted.empty() && format == PlyFormat::Binary && std::endian::native == std::endian::little) {
        static_assert(sizeof(Point) == 3 * sizeof(float), "points in memory are points in the file");
        out.write(reinterpret_cast<const char*>(all.data()),
                  static_cast<std::streamsize>(all.size() * sizeof(Point)));
        return;
    }
    PlyBody body(out);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const Color color = painted.empty() ? Color{} : painted[i].value_or(Color{});
        body.add(all[i], painted.empty() ? nullptr : &color, format);
    }
}

void PointCloud::writePly(const std::string& path, PlyFormat format, const OutputFile::Rules& rules) const {
    OutputFile file(path, rules);
    PartBytes bytes(file);
    std::ostream out(&bytes);
    writePly(out, format);
    bytes.check();
    file.commit();
}

} // namespace Zentara::Host
