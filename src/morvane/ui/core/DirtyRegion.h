#pragma once
// The parts of a window to draw again: a short list of rectangles in window
// coordinates. Rectangles that overlap or nearly touch are merged as they
// come, and the list never grows past a handful (the two closest are merged
// instead), so a frame clips to a few boxes however many views changed.
//
//   DirtyRegion region;
//   region.add(oldFrame);
//   region.add(newFrame);
//   for (const gfx::Rect& r : region.pixelAligned(3).rects()) ...

#include <morvane/gfx/Geometry.h>

#include <vector>

namespace morvane::ui {

class DirtyRegion {
  public:
    // At most this many rectangles are kept.
    static constexpr std::size_t kMaxRects = 6;

    // Adds the area; empty and non-finite rectangles are ignored.
    void add(const gfx::Rect& rect);
    void add(const DirtyRegion& other);
    void clear() { rects_.clear(); }

    bool isEmpty() const { return rects_.empty(); }
    const std::vector<gfx::Rect>& rects() const { return rects_; }
    // The box around every rectangle (empty when the region is).
    gfx::Rect bounds() const;
    bool intersects(const gfx::Rect& rect) const;
    // The sum of the rectangles' areas (overlaps counted twice).
    double area() const;

    // The same region grown outwards to whole device pixels at the scale and
    // cut to `limit`, so that a clip to it leaves no partly covered pixel.
    DirtyRegion pixelAligned(double scale, const gfx::Rect& limit) const;

  private:
    std::vector<gfx::Rect> rects_;
};

} // namespace morvane::ui
