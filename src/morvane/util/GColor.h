#pragma once
// GColor: the corner analysis of pictures (are the corners white, which single
// colour do they share), which lets a component blend a picture into a
// background of the same colour, plus the colour comparisons it rests on.
//
// The picture is drawn into an ARGB bitmap (alpha first, premultiplied,
// big-endian: bytes A, R, G, B per pixel, 4 x width bytes per row) and four
// samples are read: (1, 1), (w - 1, 0), (0, h - 1) and (w - 1, h - 1). The
// first sample sits one pixel in from the top-left corner on purpose (that is
// how the kit has always sampled), so a picture needs at least 2 x 2 pixels;
// a smaller or null picture gives nothing. Colours read from the bitmap are
// its premultiplied bytes divided by 255.
//
// All operations are static; sharedInstance exists for code that wants an
// object and holds no state.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Forward.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace morvane {

class GColor {
  public:
    // The once-made shared instance (thread-safe).
    static GColor& sharedInstance();

    // A drawing surface of 8-bit ARGB pixels: draw on its canvas (one point is
    // one pixel), then read its bytes in the order described above.
    class Bitmap {
      public:
        Bitmap(int width, int height);
        ~Bitmap();
        Bitmap(const Bitmap&) = delete;
        Bitmap& operator=(const Bitmap&) = delete;

        int width() const { return width_; }
        int height() const { return height_; }
        gfx::Canvas& canvas() { return *canvas_; }
        // The pixels as bytes A, R, G, B (premultiplied), height rows of width x 4 bytes.
        std::vector<std::uint8_t> bytes() const;

      private:
        friend class GColor;
        int width_;
        int height_;
        std::vector<std::uint32_t> pixels_; // native-order ARGB words, as the canvas draws them
        std::unique_ptr<gfx::Canvas> canvas_;
    };

    // The four corner samples when they agree within 0.1, the clear colour when
    // they do not; nothing for a picture that cannot be read or sampled.
    static std::optional<gfx::Color> cornersColor(const gfx::Image& image);
    // The first corner sample, (1, 1); nothing as above.
    static std::optional<gfx::Color> getColorOfCornersForImage(const gfx::Image& image);
    // True when all four samples lie within 0.1 of white; false when there are none.
    static bool isAllCornerColorToWhite(const gfx::Image& image);

    // True when both colours exist and red, green, blue and alpha each differ by at most max.
    static bool UIColorCompareWithThreshold(const std::optional<gfx::Color>& color1,
                                            const std::optional<gfx::Color>& color2, double max);
    // True when the colour exists and its distance from white,
    // sqrt((1-r)^2 + (1-g)^2 + (1-b)^2), is at most max.
    static bool isColorCloseToWhite(const std::optional<gfx::Color>& color, double max);

    // The colour of the pixel at (x, y) (truncated to whole pixels) in ARGB
    // bytes with rows of `width` pixels; nothing when the pixel lies outside
    // the bytes or the row.
    static std::optional<gfx::Color> getColorAtPoint(gfx::Point point, std::span<const std::uint8_t> data,
                                                     int width);
    // A blank (transparent) bitmap of the picture's pixel size, ready to draw
    // the picture into; nothing for a null picture or one too large to hold.
    static std::unique_ptr<Bitmap> createARGBBitmapContextFromImage2(const gfx::Image& image);

  private:
    GColor() = default;
};

} // namespace morvane
