#pragma once
// Filling axis-aligned rectangles, rounded rectangles and their outlines
// straight into a premultiplied 32-bit pixel buffer. Views are mostly such
// shapes, and Cairo's general path filler spends most of a frame on them; here
// the coverage of each pixel is computed directly (exact for straight edges,
// from the distance to the arc at corners) and composed source-over.

#include <cstdint>

namespace morvane::gfx::detail {

// A rounded rectangle in device pixels. The radius is clamped to half the
// shorter side; zero gives square corners.
struct DeviceBox {
    double x0, y0, x1, y1;
    double radius;
};

// The pixel buffer and the integral pixel rectangle that may be written.
struct PixelTarget {
    std::uint8_t* data;
    int stride;
    int clipX0, clipY0, clipX1, clipY1;
};

// A premultiplied colour, 0 to 255 per component.
struct PremultipliedColor {
    std::uint8_t a, r, g, b;
};

// Receives the whole-pixel rectangles of a fill (the bulk of its area), for a
// filler that composes large areas faster than pixel by pixel.
struct SolidRects {
    void (*fill)(void* context, int x, int y, int width, int height);
    void* context;
};

// Fills `outer`, leaving out `inner` when given (an outline as the ring
// between two shapes; `inner` must lie inside `outer`). Edge and corner
// pixels are written here; whole pixels inside go to `solid`.
void fillBox(const PixelTarget& target, const DeviceBox& outer, const DeviceBox* inner,
             PremultipliedColor color, SolidRects solid);

} // namespace morvane::gfx::detail
