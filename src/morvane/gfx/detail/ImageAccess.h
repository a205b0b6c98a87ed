#pragma once
// Inside the library only: the Cairo surface behind an Image, and wrapping a
// surface as an Image. The surface holds premultiplied native-endian ARGB32.

#include <morvane/gfx/Image.h>

#include <cairo.h>

namespace morvane::gfx::detail {

struct ImageAccess {
    // The image's surface (borrowed; valid while the image lives); null for a null image.
    static cairo_surface_t* surface(const Image& image);
    // Takes over a reference to an ARGB32 image surface.
    static Image adopt(cairo_surface_t* surface, double scale, bool opaque);
    // The picture resampled to that many pixels (a new reference, which the
    // caller destroys), kept for the next call of the same size; null when
    // the size is refused or the image is null.
    static cairo_surface_t* resampled(const Image& image, int pixelWidth, int pixelHeight);
    // A new ARGB32 surface of that many pixels, zeroed; null when it is refused
    // (over the pixel limit, zero or negative sides) or cannot be allocated.
    static cairo_surface_t* createSurface(int pixelWidth, int pixelHeight);
};

// True when the pixel count is positive and within Image::kMaxPixels.
bool pixelCountAllowed(std::int64_t width, std::int64_t height);

} // namespace morvane::gfx::detail
