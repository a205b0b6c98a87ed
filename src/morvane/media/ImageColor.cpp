#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/ImageContext.h>
#include <morvane/media/ImageColor.h>

#include <cmath>

namespace morvane {

namespace {

// The image stretched over a new transparent context of `size` points.
gfx::Image drawn(const gfx::Image& image, gfx::Size size, double scale) {
    if (image.isNull() || size.isEmpty()) return {};
    gfx::ImageContext context(size, gfx::Opacity::Transparent, scale);
    if (!context.isValid()) return {};
    context.canvas().drawImage(image, gfx::Rect(0, 0, size.width, size.height));
    return context.takeImage();
}

// The tone of the monochrome filter: the luminance grey laid over the tone
// colour, so black stays black, white stays white and a middle grey takes the
// colour itself.
double overlay(double grey, double tone) {
    return grey < 0.5 ? 2 * grey * tone : 1 - 2 * (1 - grey) * (1 - tone);
}

} // namespace

gfx::Image ImageColor::color(const gfx::Image& image, const gfx::Color& tint) {
    if (image.isNull()) return {};
    const gfx::Size size = image.size();
    gfx::ImageContext context(size, gfx::Opacity::Transparent, image.scale());
    if (!context.isValid()) return {};
    auto& canvas = context.canvas();
    canvas.drawImage(image, gfx::Rect(0, 0, size.width, size.height));
    canvas.setBlendMode(gfx::BlendMode::SourceAtop);
    canvas.fillRect(gfx::Rect(0, 0, size.width, size.height), tint);
    return context.takeImage();
}

gfx::Image ImageColor::maskedImageWithcolor(const gfx::Image& image, const gfx::Color& tint) {
    return color(image, tint);
}

gfx::Image ImageColor::white(const gfx::Image& image) {
    return color(image, gfx::Color::whiteColor());
}

gfx::Image ImageColor::resize(const gfx::Image& image, gfx::Size size) {
    return drawn(image, size, 1);
}

gfx::Image ImageColor::size(const gfx::Image& image, double side) {
    return resize(image, {side, side});
}

gfx::Image ImageColor::imageWithImage(const gfx::Image& image, double width, double height) {
    return drawn(image, {width, height}, 1);
}

gfx::Image ImageColor::rotate(const gfx::Image& image) {
    return drawn(image, image.size(), image.scale());
}

gfx::Image ImageColor::resizeImageBy(const gfx::Image& image, double factor) {
    const gfx::Size size = image.size();
    return imageWithImage(image, size.width * factor, size.height * factor);
}

std::int64_t ImageColor::sizeIfResizeBy(const gfx::Image& image, double factor) {
    return static_cast<std::int64_t>(resizeImageBy(image, factor).jpegData(1.0).size());
}

gfx::Image ImageColor::resizeImage(const gfx::Image& image, float budget) {
    // A loop rather than the recursion the operation is usually described
    // with: same halvings, no stack growth for a huge photo and a tiny budget.
    gfx::Image current = image;
    while (!current.isNull()) {
        if (static_cast<float>(current.pngData().size()) <= budget) return current;
        if (current.pixelWidth() <= 1 && current.pixelHeight() <= 1) return current;
        const gfx::Size size = current.size();
        current = imageWithImage(current, size.width / 2, size.height / 2);
    }
    return current;
}

gfx::Image ImageColor::applyFilter(const gfx::Image& image) {
    return image;
}

gfx::Image ImageColor::applyFilterOrg(const gfx::Image& image) {
    if (image.isNull()) return {};
    constexpr double kIntensity = 0.5;
    constexpr double kTone[3] = {0.76, 0.34, 0.0};
    // Rec. 709 luminance weights, as the platform's filters use.
    constexpr double kWeights[3] = {0.2125, 0.7154, 0.0721};
    auto pixels = image.pixels(gfx::PixelFormat::RGBA);
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        double rgb[3] = {pixels[i] / 255.0, pixels[i + 1] / 255.0, pixels[i + 2] / 255.0};
        const double grey = rgb[0] * kWeights[0] + rgb[1] * kWeights[1] + rgb[2] * kWeights[2];
        for (int c = 0; c < 3; ++c) {
            const double toned = overlay(grey, kTone[c]);
            pixels[i + c] = gfx::Color::toByte(rgb[c] + (toned - rgb[c]) * kIntensity);
        }
    }
    const int width = image.pixelWidth();
    return gfx::Image::fromPixels(pixels.data(), width, image.pixelHeight(), std::size_t(width) * 4,
                                  gfx::PixelFormat::RGBA, 1);
}

std::optional<gfx::Color> ImageColor::colorOfPoint(const gfx::Image& image, gfx::Point point) {
    if (image.isNull() || !std::isfinite(point.x) || !std::isfinite(point.y)) return std::nullopt;
    // The bitmap is the image at one pixel per point: the image itself at scale 1.
    const gfx::Image bitmap = image.scale() == 1 ? image : drawn(image, image.size(), 1);
    const double x = std::floor(point.x), y = std::floor(point.y);
    if (bitmap.isNull() || x < 0 || y < 0 || x >= bitmap.pixelWidth() || y >= bitmap.pixelHeight())
        return std::nullopt;
    // One pixel read in place, not a copy of the whole picture.
    const auto rgba = bitmap.pixelBytes(int(x), int(y), gfx::PixelFormat::RGBAPremultiplied);
    if (!rgba) return std::nullopt;
    return gfx::Color::fromBytes((*rgba)[0], (*rgba)[1], (*rgba)[2], (*rgba)[3]);
}

} // namespace morvane
