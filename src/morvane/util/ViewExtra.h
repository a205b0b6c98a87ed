#pragma once
// ViewExtra: the two vertical placement helpers that layouts use to stack one
// view below another. They work on frames for now and become members of the
// view class once the view layer exists.

#include <morvane/gfx/Geometry.h>

namespace morvane {

class ViewExtra {
  public:
    ViewExtra() = delete;

    // A y below the rectangle: by < 0 moves up from its bottom by |by| points;
    // 0 <= by < 10 counts rectangle heights below its bottom; by >= 10 counts points.
    static double yPos(const gfx::Rect& rect, double by);
    // The rectangle moved down to start `offset` below its own bottom.
    static gfx::Rect advanceV(const gfx::Rect& rect, double offset);
};

} // namespace morvane
