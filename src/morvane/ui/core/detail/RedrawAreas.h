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
#include <morvane/ui/core/Window.h>

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
    // Collects into `changes` the old and new areas of what changed under the
    // window (drawn at the canvas origin, as the renderer draws a root), and
    // clears the marks. `time` is the moment the frame shows; `removed` holds
    // the areas of views taken out since the last frame. With a scale above
    // 0, a pure scroll of an opaque clipping view becomes a pixel move.
    static void collect(Window& window, double time, double scale, const DirtyRegion& removed,
                        Window::Changes& changes);

  private:
    enum class Mode {
        Path,   // following marks: unmarked views are as they were
        Redraw, // inside a changed view: every area is recomputed
        Moved,  // inside a view whose content slid: marked views moved with it before they changed
    };
    // What the walk carries down from the ancestors.
    struct Context {
        const gfx::Transform* toWindow = nullptr; // the parent's content to the window; null for the root
        gfx::Rect clip;                           // the ancestors' clips, all boxes
        bool plain = true; // no fading, mask, rounded clip or border above: pixels can move
    };

    RedrawAreas(Window::Changes& changes, double time, double scale)
        : changes_(changes), time_(time), scale_(scale) {}
    gfx::Rect visit(View& view, const Context& context, Mode mode);
    // For a view whose content alone slid: the move of its pixels, or false
    // when they cannot move (the view is then drawn again).
    bool startMove(View& view, const gfx::Rect& frame, const Context& context, gfx::Point by);
    static void clearMarks(View& view);

    Window::Changes& changes_;
    double time_;
    double scale_;
    // The move in progress (Mode::Moved).
    Window::PixelMove move_;
};

} // namespace morvane::ui::detail
