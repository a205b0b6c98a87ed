#pragma once
// ImageColor: the picture operations the components share: tinting icons,
// scaling, shrinking a photo to a byte budget before it is stored or sent,
// an orange tone, and reading one pixel. Each is a pure function of an image
// and a parameter that returns a new image (or a number); none keeps state,
// so they are safe on any thread.
//
// Shaped like the other operation groups of the kit (Txt, Dates, Colors): a
// static member named after the operation, the image first:
//   ImageColor::color(icon, gfx::Color::whiteColor())
//   ImageColor::resizeImage(photo, 200'000)
//
// "Drawing into a context of size S" below means: a new transparent bitmap of
// S points, into which the image is drawn stretched over (0, 0, S.width,
// S.height). A null image gives a null image (or 0, or nothing) everywhere.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>

#include <cstdint>
#include <optional>

namespace morvane {

class ImageColor {
  public:
    ImageColor() = delete;

    // Tint: the image drawn at its own size and scale, then covered with the
    // colour in the source-atop mode, so the colour replaces every visible
    // pixel and keeps that pixel's alpha; transparent parts stay transparent.
    static gfx::Image color(const gfx::Image& image, const gfx::Color& tint);
    static gfx::Image maskedImageWithcolor(const gfx::Image& image, const gfx::Color& tint);
    static gfx::Image white(const gfx::Image& image);

    // Drawn into a context of that size at scale 1.
    static gfx::Image resize(const gfx::Image& image, gfx::Size size);
    // resize to a square of that side.
    static gfx::Image size(const gfx::Image& image, double side);
    static gfx::Image imageWithImage(const gfx::Image& image, double width, double height);
    // An upright copy at the image's own size and scale. Decoding already
    // applies a JPEG's orientation, so this is a plain copy of the pixels.
    static gfx::Image rotate(const gfx::Image& image);
    // imageWithImage with both sides multiplied by the factor.
    static gfx::Image resizeImageBy(const gfx::Image& image, double factor);
    // The byte length of the JPEG encoding, at quality 1, of the image scaled by the factor.
    static std::int64_t sizeIfResizeBy(const gfx::Image& image, double factor);
    // The image itself when its PNG encoding fits the budget (in bytes);
    // otherwise the image with both sides halved, again and again, until the
    // PNG of the result fits. A picture of one pixel is returned as it is,
    // so a budget nothing can meet still ends.
    static gfx::Image resizeImage(const gfx::Image& image, float budget);

    // The image itself, unchanged.
    static gfx::Image applyFilter(const gfx::Image& image);
    // The orange monochrome tone at scale 1: each pixel's luminance toned
    // with red 0.76, green 0.34, blue 0, blended half-way (intensity 0.5)
    // with the pixel's own colour; alpha is kept.
    static gfx::Image applyFilterOrg(const gfx::Image& image);

    // The colour at the point (whole points, from the top-left) of the image
    // drawn into an RGBA bitmap of its size in points, as that bitmap holds it
    // (premultiplied bytes divided by 255); nothing outside the image.
    static std::optional<gfx::Color> colorOfPoint(const gfx::Image& image, gfx::Point point);
};

} // namespace morvane
