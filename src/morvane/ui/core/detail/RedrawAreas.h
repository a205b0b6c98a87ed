#pragma once
// Where views show in their window, kept up to date for partial redraws. A
// frame walks the marked paths of the tree (as a layout pass does), works out
// the window area of every view that changed and everything inside it, and
// collects the old area (kept from the frame before) and the new one. What a
// view shows is bounded by its bounds, shadow and drawingRect(), cut by its
// mask and by the clips of its ancestors; the renderer draws by the same
// rules, so everything it draws for a view lies inside that view's area.
// Main thread only.

#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Shadow.h>
#include <morvane/gfx/Transform.h>
#include <morvane/ui/Forward.h>

namespace morvane::ui {
struct PresentationState;
class DirtyRegion;
} // namespace morvane::ui

namespace morvane::ui::detail {

// Alpha below this draws nothing visible (less than half a step of 8 bits).
constexpr double kInvisibleAlpha = 0.5 / 255;

// How far a shadow reaches beyond its shape: offset plus the blur.
gfx::Rect shadowExtent(const gfx::Rect& shape, const gfx::Shadow& shadow);

// A position or transform that is not a finite number would put the whole
// canvas into an error state; such a view is not drawn.
bool isDrawable(const PresentationState& state);

class RedrawAreas {
  public:
    // Adds to `region` the old and new areas of what changed under `root`
    // (drawn at the canvas origin, as the renderer draws a root), and clears
    // the marks. `time` is the moment the frame shows.
    static void collect(View& root, double time, DirtyRegion& region);

  private:
    enum class Mode { Path, Redraw };
    RedrawAreas(DirtyRegion& region, double time) : region_(region), time_(time) {}
    gfx::Rect visit(View& view, const gfx::Transform* toWindow, const gfx::Rect& clip, Mode mode);
    static void clearMarks(View& view);

    DirtyRegion& region_;
    double time_;
};

} // namespace morvane::ui::detail
