#pragma once
// The root of a view tree that a host shows. It knows which view has the
// focus (the first responder) and turns a host's raw input into touches,
// gesture recognition, typed text and keys for the right views. Points given
// to the send functions are in window coordinates.

#include <morvane/ui/core/DirtyRegion.h>
#include <morvane/ui/core/Key.h>
#include <morvane/ui/core/Touch.h>
#include <morvane/ui/core/View.h>

#include <memory>
#include <string_view>
#include <vector>

namespace morvane::ui {

class Window : public View {
  public:
    explicit Window(const gfx::Rect& frame);
    static std::shared_ptr<Window> create(gfx::Size size);

    // The view that receives typed text and keys, or null.
    View* firstResponder() const { return firstResponder_.lock().get(); }

    // Input as a host delivers it. A touch goes to the view it began on until
    // it ends; a second touch down while one is down cancels the first.
    void sendTouchDown(gfx::Point location);
    void sendTouchMove(gfx::Point location);
    void sendTouchUp(gfx::Point location);
    void sendTouchCancel();
    bool isTouchDown() const { return touch_.active; }
    // Typed text and keys go to the first responder; nothing happens without one.
    void sendText(std::string_view text);
    bool sendKey(Key key);
    // Moves the focus from `from` to the next view after it, in the order the
    // tree is drawn, that takes typed text (wrapping round to the first).
    // False when no other view would take it.
    bool focusNextField(View& from);

    // Pixels a frame can move instead of drawing them again: where a view's
    // content slid under it (a scroll), what the last frame showed there.
    struct PixelMove {
        gfx::Rect area; // whole device pixels, in window coordinates
        gfx::Point by;  // the new pixel at p is the old one at p + by
    };
    struct Changes {
        std::vector<PixelMove> moves; // done first, in order
        DirtyRegion region;           // then drawn again
    };
    // What changed on screen since the last call, in window coordinates: the
    // old and the new areas of every view changed, added, removed or
    // animating, with the views drawn as they are at `time` on the kit's
    // clock. With a device scale, content that slid by whole pixels under an
    // opaque clipping view comes as a move plus the strip it uncovered; with
    // 0, as areas to draw. Taking the changes clears the marks, so they belong
    // to the one host that keeps this window's pixels from frame to frame.
    // Lay the window out first.
    Changes takeChanges(double time, double scale);

  private:
    friend class View;
    void addRemovedArea(const gfx::Rect& area) { removedAreas_.add(area); }
    // Keeps redrawing the view on every frame while it animates or moves continuously.
    void noteMoving(View& view);
    void setFirstResponder(View* view);
    void detachedSubtree(View* root);

    struct TouchState {
        bool active = false;
        std::shared_ptr<View> view;
        gfx::Point start;
        gfx::Point last;
        int tapCount = 1;
        // Watching recognisers, innermost first; the one that claimed the touch.
        std::vector<std::shared_ptr<GestureRecognizer>> recognizers;
        std::shared_ptr<GestureRecognizer> claimedBy;
        bool viewCancelled = false;
    };
    // Hands a touch step to the recognisers, settles a claim, and runs the
    // actions of the recognised step. False when the view must not see the step.
    bool feedRecognizers(TouchState& touch, const Touch& step);
    TouchState touch_;
    DirtyRegion removedAreas_;
    std::vector<std::weak_ptr<View>> moving_;
    std::weak_ptr<View> firstResponder_;
    // For counting taps in a row.
    double lastTapTime_ = -1e9;
    gfx::Point lastTapLocation_;
    int lastTapCount_ = 0;
};

} // namespace morvane::ui
