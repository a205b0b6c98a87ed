#pragma once
// A rectangle on screen that draws itself, holds ordered child views, lays
// them out, and receives touches and keys. Everything the kit shows derives
// from View.
//
//   auto card = std::make_shared<ui::View>(gfx::Rect{20, 100, 350, 200});
//   card->setBackgroundColor(gfx::Color::whiteColor());
//   card->layer().setCornerRadius(12);
//   root->addSubview(card);
//
// Geometry: a view's bounds are its own coordinate space (origin and size);
// its centre places it in the superview, and its transform turns and scales it
// about that centre. The frame is derived from those three. Moving the bounds
// origin shifts every child (a scroll view scrolls this way).
//
// Lifecycle hooks for subclasses: layoutSubviews (after setNeedsLayout or a
// size change, before drawing), draw (own content), the touch handlers, and
// the first-responder hooks for views that take typed text.
//
// Views are owned by std::shared_ptr (create them with std::make_shared); the
// superview is a non-owning back reference. Main thread only.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Forward.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Transform.h>
#include <morvane/ui/Forward.h>
#include <morvane/ui/core/Layer.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::ui {

namespace detail {
struct ViewAnimations;
class Animator;
class RedrawAreas;
enum AnimatedProperty : int;
} // namespace detail

// What an animation may change in place of a plain jump.
enum class Transition { None, CrossDissolve };

// The values the screen shows right now: the model values, or values between
// the start and the model values while an animation runs.
struct PresentationState {
    gfx::Point center;
    gfx::Rect bounds;
    double alpha = 1;
    gfx::Transform transform;

    gfx::Rect frame() const;
};

class View : public std::enable_shared_from_this<View> {
  public:
    View();
    explicit View(const gfx::Rect& frame);
    virtual ~View();

    View(const View&) = delete;
    View& operator=(const View&) = delete;

    // ---- Geometry -----------------------------------------------------------
    // The frame in the superview's coordinates: the bounding box of the
    // transformed bounds placed at the centre.
    gfx::Rect frame() const;
    void setFrame(const gfx::Rect& frame);
    const gfx::Rect& bounds() const { return bounds_; }
    void setBounds(const gfx::Rect& bounds);
    gfx::Point center() const { return center_; }
    void setCenter(gfx::Point center);
    // Turns and scales the view about its centre.
    const gfx::Transform& transform() const { return transform_; }
    void setTransform(const gfx::Transform& transform);

    // ---- Appearance ---------------------------------------------------------
    bool isHidden() const { return hidden_; }
    void setHidden(bool hidden);
    double alpha() const { return alpha_; }
    void setAlpha(double alpha);
    const gfx::Color& backgroundColor() const { return backgroundColor_; }
    virtual void setBackgroundColor(const gfx::Color& color);
    bool clipsToBounds() const { return layer_.masksToBounds(); }
    void setClipsToBounds(bool clips) { layer_.setMasksToBounds(clips); }
    Layer& layer() { return layer_; }
    const Layer& layer() const { return layer_; }
    // Asks the host to draw the view again in the next frame (every property
    // change does this itself; a view that draws its own content calls it
    // when that content changes).
    void setNeedsDisplay();

    // ---- Identity -----------------------------------------------------------
    int tag() const { return tag_; }
    void setTag(int tag) { tag_ = tag; }
    // The first view of this subtree (this one included) with the tag, depth first.
    View* viewWithTag(int tag);
    const std::optional<std::string>& accessibilityHint() const { return accessibilityHint_; }
    void setAccessibilityHint(std::optional<std::string> hint) { accessibilityHint_ = std::move(hint); }

    // ---- The tree -----------------------------------------------------------
    View* superview() const { return superview_; }
    const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }
    // The root window this view is shown in, or null.
    Window* window() const;

    // Adds the view as the frontmost child, taking it from its old superview.
    // Adding a view to itself or to one of its descendants is refused (logged).
    void addSubview(const std::shared_ptr<View>& view);
    // Inserts at a position in the child order (0 is the backmost); clamped.
    void insertSubview(const std::shared_ptr<View>& view, std::size_t index);
    void insertSubviewAbove(const std::shared_ptr<View>& view, const View* sibling);
    void insertSubviewBelow(const std::shared_ptr<View>& view, const View* sibling);
    void bringSubviewToFront(const View* view);
    void sendSubviewToBack(const View* view);
    void removeFromSuperview();
    bool isDescendantOf(const View* view) const;

    // ---- Layout -------------------------------------------------------------
    void setNeedsLayout();
    bool needsLayout() const { return needsLayout_; }
    // Runs layoutSubviews now on this view and its descendants that need it.
    void layoutIfNeeded();
    // The size the view would like within `size` (its current size by default).
    virtual gfx::Size sizeThatFits(gfx::Size size) const;
    void sizeToFit();

    // ---- Coordinates --------------------------------------------------------
    // Converts a point of this view's bounds to the bounds of `view` (to window
    // coordinates for nullptr). The views must share a window or a root.
    gfx::Point convertPointTo(gfx::Point point, const View* view) const;
    gfx::Point convertPointFrom(gfx::Point point, const View* view) const;
    gfx::Rect convertRectTo(const gfx::Rect& rect, const View* view) const;
    // Maps this view's bounds coordinates to its root's coordinates.
    gfx::Transform transformToRoot() const;
    // Maps this view's bounds coordinates to its superview's bounds coordinates.
    gfx::Transform transformToSuperview() const;

    // ---- Touches ------------------------------------------------------------
    bool isUserInteractionEnabled() const { return userInteractionEnabled_; }
    void setUserInteractionEnabled(bool enabled) { userInteractionEnabled_ = enabled; }
    // The deepest view under the point (in this view's bounds coordinates) that
    // takes touches: hidden, nearly transparent and non-interactive views are
    // skipped, and the frontmost child wins. Null when the point is outside.
    virtual View* hitTest(gfx::Point point);
    virtual bool pointInside(gfx::Point point) const;

    void addGestureRecognizer(std::shared_ptr<GestureRecognizer> recognizer);
    void removeGestureRecognizer(const GestureRecognizer* recognizer);
    const std::vector<std::shared_ptr<GestureRecognizer>>& gestureRecognizers() const {
        return gestureRecognizers_;
    }

    // Touch handlers. The default passes the touches on to the superview, so a
    // view that does not handle them lets its container see them.
    virtual void touchesBegan(const Touches& touches);
    virtual void touchesMoved(const Touches& touches);
    virtual void touchesEnded(const Touches& touches);
    virtual void touchesCancelled(const Touches& touches);

    // ---- Focus and typing ---------------------------------------------------
    // Views that take typed text (text fields) answer true and handle
    // insertText and keyPressed; the window sends typing to the focused view.
    virtual bool canBecomeFirstResponder() const { return false; }
    virtual bool canResignFirstResponder() const { return true; }
    // Takes the focus from the current holder; false when refused or when the
    // view is not in a window.
    virtual bool becomeFirstResponder();
    // Gives up the focus; true when the view no longer has it.
    virtual bool resignFirstResponder();
    bool isFirstResponder() const;
    // Typed text; the default passes it to the superview.
    virtual void insertText(std::string_view text);
    // A key; the default passes it to the superview. True when handled.
    virtual bool keyPressed(Key key);
    // Ends editing in this subtree: the focused descendant (or this view) resigns.
    bool endEditing();

    // ---- Animation ----------------------------------------------------------
    // Runs `changes` now. Frame, bounds, centre, alpha and transform changes
    // made inside it take their new values at once but are shown moving from
    // what is on screen to the new values over `duration` seconds of the kit's
    // clock (ease in, ease out). The completion runs on the main queue when the
    // duration has passed, with true unless the animations were removed.
    static void animate(double duration, const std::function<void()>& changes,
                        std::function<void(bool finished)> completion = {});
    // Runs `changes` on the view and shows the old look fading into the new one.
    static void transition(const std::shared_ptr<View>& view, double duration, Transition kind,
                           const std::function<void()>& changes,
                           std::function<void(bool finished)> completion = {});
    // Stops the view's running animations: the screen jumps to the model values
    // and their completions run with false.
    void removeAllAnimations();
    bool hasAnimations() const;
    // What the screen shows of this view at the kit's current time.
    PresentationState presentation() const;
    // The same at a moment of the kit's clock (a frame uses one moment throughout).
    PresentationState presentationAt(double time) const;

    // ---- Drawing ------------------------------------------------------------
    // Draws the view's own content in its bounds coordinates, above the
    // background and below the children and the border. `rect` is the area
    // to draw (the bounds). The default draws nothing.
    virtual void draw(gfx::Canvas& canvas, const gfx::Rect& rect);
    // The area, in bounds coordinates, that draw() may paint: a frame that
    // redraws only what changed redraws this much of the view. The default is
    // the bounds with a point to spare for strokes on the edge and glyph ink;
    // a view that draws further out says so here.
    virtual gfx::Rect drawingRect() const;
    // True when everything the view shows inside its bounds, its own drawing
    // included, is placed in bounds coordinates, so that moving the bounds
    // origin slides all of it (a scroll view). A frame may then move the
    // pixels already drawn instead of drawing them again. A view whose draw()
    // paints at the rectangle it is given stays put instead: false.
    virtual bool slidesContent() const { return false; }

  protected:
    // Places the children from the view's own bounds. Called before drawing
    // and by layoutIfNeeded after setNeedsLayout or a size change.
    virtual void layoutSubviews() {}
    // Told after the view moved to another superview or window (may be null).
    virtual void didMoveToSuperview() {}
    virtual void didMoveToWindow() {}
    // Told after the bounds changed (origin or size). A size change has
    // already asked for layout; a scroll view also lays out when its origin moves.
    virtual void boundsChanged(const gfx::Rect& oldBounds) { (void)oldBounds; }
    // For a view whose drawing moves with the clock alone (a spinner): while
    // on, every frame draws it again and the host keeps drawing frames.
    void setAnimatesContinuously(bool animates);

  private:
    friend class Layer;
    friend class Window;
    friend class Renderer;
    friend class detail::Animator;
    friend class detail::RedrawAreas;

    void changed();
    // Marks the view for redrawing in the next frame, and the path to it.
    void markNeedsDisplay();
    // Marks a move of the bounds origin alone: the content slid under the
    // view, which a frame may show by moving the pixels already there.
    void markContentMoved(gfx::Point oldOrigin);
    // Lets the window redraw this view on every frame while it moves on its own.
    void noteMoving();
    bool canAdopt(const View* view) const;
    void attach(const std::shared_ptr<View>& view, std::size_t index);
    void detachChild(const View* view);
    void markSubtreeNeedsLayout();
    void notifyWindowChange(Window* oldWindow, Window* newWindow);
    // One pass over the views marked for layout; true when one of them ran.
    bool layoutPass();
    // Starts the property's animation from what the screen showed (inside an animation block).
    void animateProperty(detail::AnimatedProperty property, const PresentationState& from);

    gfx::Point center_;
    gfx::Rect bounds_;
    gfx::Transform transform_;
    double alpha_ = 1;
    bool hidden_ = false;
    bool userInteractionEnabled_ = true;
    bool needsLayout_ = true;
    bool subtreeNeedsLayout_ = true;
    // Redraw marks, kept like the layout marks: a marked view has marked
    // ancestors, so a frame walks only the paths to what changed.
    bool needsDisplay_ = false;
    bool contentMoved_ = false;
    gfx::Point shownOrigin_; // the bounds origin the last frame showed, while contentMoved_
    bool subtreeNeedsDisplay_ = false;
    bool animatesContinuously_ = false;
    // Where this view and everything inside it showed in the last frame, in
    // window coordinates and cut by the ancestors' clips: what a change or a
    // removal must draw over.
    gfx::Rect shownArea_;
    gfx::Color backgroundColor_ = gfx::Color::clearColor();
    int tag_ = 0;
    std::optional<std::string> accessibilityHint_;
    Layer layer_;
    View* superview_ = nullptr;
    std::vector<std::shared_ptr<View>> subviews_;
    std::vector<std::shared_ptr<GestureRecognizer>> gestureRecognizers_;
    std::unique_ptr<detail::ViewAnimations> animations_;

  protected:
    // Set by Window's constructor: the root of a window.
    bool isWindow_ = false;
};

} // namespace morvane::ui
