#include <morvane/gfx/Canvas.h>
#include <morvane/util/GColor.h>

#include <array>
#include <cmath>

namespace morvane {

namespace {

constexpr double kCornerTolerance = 0.1;

// The four corner samples in their fixed order; nothing when the picture
// cannot be read or a sample point falls outside it (pictures under 2 x 2).
// Drawing the picture to fill a bitmap of its own pixel size copies every
// pixel unchanged, so the samples are read from the picture in place: a tall
// photo shown on the main thread costs four reads, not two copies of itself.
std::optional<std::array<gfx::Color, 4>> cornerSamples(const gfx::Image& image) {
    if (image.isNull()) return std::nullopt;
    const int w = image.pixelWidth(), h = image.pixelHeight();
    const int points[4][2] = {{1, 1}, {w - 1, 0}, {0, h - 1}, {w - 1, h - 1}};
    std::array<gfx::Color, 4> samples;
    for (std::size_t i = 0; i < 4; ++i) {
        const auto argb = image.pixelBytes(points[i][0], points[i][1], gfx::PixelFormat::ARGBPremultiplied);
        if (!argb) return std::nullopt;
        const auto color = GColor::getColorAtPoint({0, 0}, *argb, 1);
        if (!color) return std::nullopt;
        samples[i] = *color;
    }
    return samples;
}

} // namespace

GColor& GColor::sharedInstance() {
    static GColor instance;
    return instance;
}

GColor::Bitmap::Bitmap(int width, int height)
    : width_(width), height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0u),
      canvas_(gfx::Canvas::overPixels(reinterpret_cast<std::uint8_t*>(pixels_.data()), width, height,
                                      width * 4, 1)) {}

GColor::Bitmap::~Bitmap() = default;

std::vector<std::uint8_t> GColor::Bitmap::bytes() const {
    // The canvas keeps whole 32-bit words in the machine's byte order; spelling
    // each word out high byte first gives A, R, G, B on any machine.
    std::vector<std::uint8_t> out;
    out.reserve(pixels_.size() * 4);
    for (const std::uint32_t p : pixels_) {
        out.push_back(static_cast<std::uint8_t>(p >> 24));
        out.push_back(static_cast<std::uint8_t>(p >> 16));
        out.push_back(static_cast<std::uint8_t>(p >> 8));
        out.push_back(static_cast<std::uint8_t>(p));
    }
    return out;
}

std::unique_ptr<GColor::Bitmap> GColor::createARGBBitmapContextFromImage2(const gfx::Image& image) {
    if (image.isNull()) return nullptr;
    const int w = image.pixelWidth(), h = image.pixelHeight();
    if (w <= 0 || h <= 0 || static_cast<std::int64_t>(w) * h > gfx::Image::kMaxPixels) return nullptr;
    std::unique_ptr<Bitmap> bitmap(new Bitmap(w, h));
    if (!bitmap->canvas_) return nullptr;
    return bitmap;
}

std::optional<gfx::Color> GColor::getColorAtPoint(gfx::Point point, std::span<const std::uint8_t> data,
                                                  int width) {
    if (!(point.x >= 0) || !(point.y >= 0) || width <= 0 || point.x >= width) return std::nullopt;
    const double offset = std::trunc((std::trunc(point.y) * width + std::trunc(point.x)) * 4);
    if (!(offset + 4 <= static_cast<double>(data.size()))) return std::nullopt;
    const auto at = static_cast<std::size_t>(offset);
    return gfx::Color(data[at + 1] / 255.0, data[at + 2] / 255.0, data[at + 3] / 255.0, data[at] / 255.0);
}

std::optional<gfx::Color> GColor::cornersColor(const gfx::Image& image) {
    const auto samples = cornerSamples(image);
    if (!samples) return std::nullopt;
    for (std::size_t i = 0; i < samples->size(); ++i)
        for (std::size_t j = i + 1; j < samples->size(); ++j)
            if (!UIColorCompareWithThreshold((*samples)[i], (*samples)[j], kCornerTolerance))
                return gfx::Color::clearColor();
    return (*samples)[0];
}

std::optional<gfx::Color> GColor::getColorOfCornersForImage(const gfx::Image& image) {
    const auto samples = cornerSamples(image);
    if (!samples) return std::nullopt;
    return (*samples)[0];
}

bool GColor::isAllCornerColorToWhite(const gfx::Image& image) {
    const auto samples = cornerSamples(image);
    if (!samples) return false;
    for (const auto& sample : *samples)
        if (!isColorCloseToWhite(sample, kCornerTolerance)) return false;
    return true;
}

bool GColor::UIColorCompareWithThreshold(const std::optional<gfx::Color>& color1,
                                         const std::optional<gfx::Color>& color2, double max) {
    return color1 && color2 && color1->isClose(*color2, max);
}

bool GColor::isColorCloseToWhite(const std::optional<gfx::Color>& color, double max) {
    if (!color) return false;
    const double r = 1 - color->red, g = 1 - color->green, b = 1 - color->blue;
    return std::sqrt(r * r + g * g + b * b) <= max;
}

} // namespace morvane
