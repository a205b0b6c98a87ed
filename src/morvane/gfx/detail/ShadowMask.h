#pragma once
// Blurred masks for soft shadows of rounded rectangles, cached per thread by
// shape and blur so a shadow that does not change is blurred only once.

#include <cairo.h>

#include <cstdint>

namespace morvane::gfx::detail {

struct ShadowMask {
    cairo_surface_t* surface; // A8, borrowed from the cache
    double maskScale;         // mask pixels per point
    double padding;           // points of blur around the shape on each side
};

// The mask of a width x height rounded rectangle blurred with a Gaussian of
// the given sigma (points); null surface when the shape is empty. The blur is
// computed at a low resolution (maskScale may be below the device scale).
ShadowMask shadowMask(double width, double height, double cornerRadius, double sigma, double deviceScale);

// The same mask at exactly the device scale, so that painting it at a whole
// pixel position is a plain unscaled composite (the fast path).
ShadowMask deviceShadowMask(double width, double height, double cornerRadius, double sigma,
                            double deviceScale);

// The device-resolution mask filled with a premultiplied colour (ARGB32), so
// that painting it is a plain unscaled image composite, the cheapest Cairo
// has. Null surface when no device-resolution mask can be made.
ShadowMask deviceShadowImage(double width, double height, double cornerRadius, double sigma,
                             double deviceScale, std::uint32_t premultipliedColor);

} // namespace morvane::gfx::detail
