#pragma once
// An immutable picture: pixels plus a size in points and a scale (pixels per
// point), as the kit's picture operations expect. Images are cheap to copy:
// copies share the pixels. A default-constructed Image is the null image that
// every failed decode or render gives back.
//
// Decoding honours a JPEG's EXIF orientation, so every Image is upright.
// Pictures over kMaxPixels are refused before any pixel memory is allocated.
//
// Images may be decoded and encoded on any thread; drawing them happens on the
// thread that owns the Canvas.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace morvane::gfx {

namespace detail {
struct ImageAccess;
}

// Byte orders of pixel copies. The ARGB order is what the corner sampling
// bitmap holds (alpha first, premultiplied, big-endian: bytes A, R, G, B); the
// RGBA orders are rows of red, green, blue, alpha bytes.
enum class PixelFormat {
    ARGBPremultiplied,
    RGBAPremultiplied,
    RGBA, // straight (not premultiplied) alpha
};

enum class ImageCodec { PNG, JPEG, SVG, Unknown };

class Image {
  public:
    // Larger pictures are refused (a 10000 x 10000 photo still fits).
    static constexpr std::int64_t kMaxPixels = 100'000'000;

    Image() = default; // the null image

    // A fully transparent image of the given size in pixels.
    static Image blank(int pixelWidth, int pixelHeight, double scale = 1);
    // A copy of caller-owned pixels in the given format; rows are `stride` bytes apart.
    static Image fromPixels(const std::uint8_t* data, int pixelWidth, int pixelHeight, std::size_t stride,
                            PixelFormat format, double scale = 1);

    // Decoding: the codec is recognised from the bytes. On failure the result is
    // the null image and, when `error` is given, it receives the reason.
    static Image fromData(std::span<const std::uint8_t> bytes, double scale = 1,
                          std::string* error = nullptr);
    static Image fromPNG(std::span<const std::uint8_t> bytes, double scale = 1, std::string* error = nullptr);
    static Image fromJPEG(std::span<const std::uint8_t> bytes, double scale = 1,
                          std::string* error = nullptr);
    // Renders an SVG document fitted into `size` points (aspect kept, centred)
    // at the scale; an empty size renders at the document's own size.
    static Image fromSVG(std::span<const std::uint8_t> bytes, Size size, double scale = 1,
                         std::string* error = nullptr);
    // Reads a PNG, JPEG or SVG file.
    static Image fromFile(const std::string& path, double scale = 1, std::string* error = nullptr);
    static ImageCodec codecOf(std::span<const std::uint8_t> bytes);

    bool isNull() const { return impl_ == nullptr; }
    explicit operator bool() const { return impl_ != nullptr; }

    // Size in points: the pixel size divided by the scale.
    Size size() const;
    double scale() const;
    int pixelWidth() const;
    int pixelHeight() const;
    // True when the image was made opaque (an opaque image context or a JPEG).
    bool isOpaque() const;
    // The same pixels at another scale (a different size in points).
    Image withScale(double scale) const;
    // True when both share the same pixels (a copy of this image).
    bool isSameAs(const Image& other) const { return impl_ == other.impl_; }

    // A tightly packed copy of the pixels (width x 4 bytes per row).
    std::vector<std::uint8_t> pixels(PixelFormat format) const;
    // The straight colour of one pixel; nothing outside the image.
    std::optional<Color> pixelColor(int x, int y) const;
    // The four bytes of one pixel in the format's order, read in place: no
    // copy of the picture, however large. Nothing outside the image.
    std::optional<std::array<std::uint8_t, 4>> pixelBytes(int x, int y, PixelFormat format) const;

    // The whole picture averaged to one colour (straight, not premultiplied):
    // what a filter that reduces an area to one pixel gives. Read in place.
    // Nothing for the null image.
    std::optional<Color> averageColor() const;

    // Encodings; an empty vector for the null image. JPEG quality is 0...1.
    std::vector<std::uint8_t> pngData() const;
    std::vector<std::uint8_t> jpegData(double quality) const;

  private:
    friend struct detail::ImageAccess;
    struct Impl;
    explicit Image(std::shared_ptr<const Impl> impl) : impl_(std::move(impl)) {}
    std::shared_ptr<const Impl> impl_;
};

} // namespace morvane::gfx
