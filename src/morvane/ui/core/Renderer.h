#pragma once
// Draws a view tree onto a Canvas. Each view is drawn in this order: its
// shadow, its background with rounded corners, its own draw(), its children
// (clipped to its rounded bounds when it masks to bounds, and to its mask
// layer), then its border on top. Alpha and transforms compose down the tree;
// hidden views, fully transparent views and views with an empty size are
// skipped with everything inside them. While animations run, the renderer
// draws each view's on-screen (presentation) values.
//
// The tree is laid out before it is drawn. A host that keeps its pixels from
// one frame to the next draws with renderFrame, which redraws only the parts
// of the window that changed (see Window::takeDirtyRegion). Main thread only.

#include <morvane/gfx/Forward.h>
#include <morvane/gfx/Image.h>
#include <morvane/ui/Forward.h>
#include <morvane/ui/core/DirtyRegion.h>

#include <cstdint>

namespace morvane::ui {

class Renderer {
  public:
    // Lays out and draws the tree with the root's top-left corner at the
    // canvas's origin (the root's own position and transform are ignored).
    void render(View& root, gfx::Canvas& canvas);

    // How a frame treats the pixels left on the canvas by the frame before.
    enum class Redraw {
        Changes,    // they show the window's last frame: draw only what changed since
        Everything, // they are new or lost: draw the whole window
    };
    // What a frame did, in window coordinates grown to whole device pixels.
    struct Frame {
        DirtyRegion drawn; // cleared and drawn again
        DirtyRegion moved; // pixels moved, as content slid under a view
        bool isEmpty() const { return drawn.isEmpty() && moved.isEmpty(); }
        // Every pixel that may have changed.
        DirtyRegion changed() const;
    };
    // Lays out and draws a frame of the window at the canvas's origin, over
    // white where the window is transparent, as hosts show it. Content that
    // slid under a view (a scroll) has its pixels moved and only the strip it
    // uncovered drawn. Nothing is drawn when nothing changed. A frame redrawn
    // in parts has the same pixels as one drawn whole.
    Frame renderFrame(Window& window, gfx::Canvas& canvas, Redraw redraw);

    // A picture of the view alone (laid out first), the size of its bounds at
    // the scale, transparent where it draws nothing. A view with an empty
    // size gives the null image.
    static gfx::Image imageOf(View& view, double scale);

    // Views drawn by the last render or frame (skipped and culled views do not
    // count; a view drawn in two parts of a frame counts twice).
    int viewsDrawn() const { return viewsDrawn_; }
    // Renders done by this renderer.
    std::uint64_t framesRendered() const { return framesRendered_; }

  private:
    void drawRoot(View& root, gfx::Canvas& canvas, double now);
    void drawView(View& view, gfx::Canvas& canvas, double now);
    void drawBody(View& view, gfx::Canvas& canvas, const gfx::Rect& bounds, double now);
    void fillBackground(View& view, gfx::Canvas& canvas, const gfx::Rect& local, gfx::Point shift, double now);

    int viewsDrawn_ = 0;
    std::uint64_t framesRendered_ = 0;
};

} // namespace morvane::ui
