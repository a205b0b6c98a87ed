// View: geometry, the tree, layout passes, coordinates, hit testing, the
// responder chain and animation entry points. Sections:
//   1. Geometry and appearance
//   2. The tree
//   3. Layout
//   4. Coordinates and hit testing
//   5. Touches and focus
//   6. Animation

#include <morvane/ui/core/View.h>

#include <morvane/gfx/ImageContext.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/GestureRecognizer.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/core/detail/Animator.h>

#include <algorithm>
#include <cmath>

namespace morvane::ui {

using detail::Animator;

namespace {

// Layout that keeps asking for more layout (a layoutSubviews that marks its
// own view again) is cut off after this many passes.
constexpr int kMaxLayoutPasses = 16;

// Views at or below this alpha do not take touches.
constexpr double kMinimumHitAlpha = 0.01;

// How far past its bounds a view's own drawing may reach by default: strokes
// centred on the edge and glyph ink beyond the line box.
constexpr double kInkMargin = 1;

} // namespace

gfx::Rect PresentationState::frame() const {
    gfx::Rect local{-bounds.width / 2, -bounds.height / 2, bounds.width, bounds.height};
    if (transform.isIdentity()) return local.offsetBy(center.x, center.y);
    return transform.apply(local).offsetBy(center.x, center.y);
}

// ---- 1. Geometry and appearance -----------------------------------------------

View::View() : layer_(*this) {}

View::View(const gfx::Rect& frame) : layer_(*this) {
    setFrame(frame);
}

View::~View() {
    // Children outlive their parent only if someone else holds them; they
    // must not point back at a dead superview.
    for (auto& child : subviews_)
        child->superview_ = nullptr;
    for (auto& recognizer : gestureRecognizers_)
        recognizer->view_ = nullptr;
    if (animatesContinuously_) Animator::removeContinuous();
}

void View::changed() {
    MORVANE_ASSERT_MAIN_THREAD();
    markNeedsDisplay();
    Animator::bumpDisplayGeneration();
}

void View::markNeedsDisplay() {
    needsDisplay_ = true;
    subtreeNeedsDisplay_ = true;
    // From the parent up: a view that was just attached may carry its own
    // marks from before, with none yet on its new ancestors.
    for (View* v = superview_; v && !v->subtreeNeedsDisplay_; v = v->superview_)
        v->subtreeNeedsDisplay_ = true;
}

void View::markContentMoved(gfx::Point oldOrigin) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!contentMoved_) shownOrigin_ = oldOrigin;
    contentMoved_ = true;
    for (View* v = this; v && !v->subtreeNeedsDisplay_; v = v->superview_)
        v->subtreeNeedsDisplay_ = true;
    Animator::bumpDisplayGeneration();
}

void View::noteMoving() {
    if (Window* w = window()) w->noteMoving(*this);
}

void View::setAnimatesContinuously(bool animates) {
    if (animates == animatesContinuously_) return;
    animatesContinuously_ = animates;
    if (animates) {
        Animator::addContinuous();
        noteMoving();
    } else {
        Animator::removeContinuous();
    }
    changed();
}

gfx::Rect View::drawingRect() const {
    return bounds_.insetBy(-kInkMargin, -kInkMargin);
}

void View::setNeedsDisplay() {
    changed();
}

gfx::Rect View::frame() const {
    return PresentationState{center_, bounds_, alpha_, transform_}.frame();
}

void View::setFrame(const gfx::Rect& frame) {
    // With a transform in place the frame is ambiguous; like the platform, the
    // frame's centre and size are taken as the new centre and bounds size.
    // A negative size is kept as given: such a view is drawn as nothing.
    setCenter({frame.x + frame.width / 2, frame.y + frame.height / 2});
    setBounds({bounds_.x, bounds_.y, frame.width, frame.height});
}

void View::setBounds(const gfx::Rect& bounds) {
    if (bounds == bounds_) return;
    auto from = presentation();
    gfx::Rect old = bounds_;
    bounds_ = bounds;
    animateProperty(detail::kBounds, from);
    if (old.size() != bounds.size()) setNeedsLayout();
    bool animated = animations_ && animations_->tracks[detail::kBounds].runningAt(sys::Clock::now());
    if (old.size() == bounds.size() && !animated)
        markContentMoved(old.origin());
    else
        changed();
    boundsChanged(old);
}

void View::setCenter(gfx::Point center) {
    if (center == center_) return;
    auto from = presentation();
    center_ = center;
    animateProperty(detail::kCenter, from);
    changed();
}

void View::setTransform(const gfx::Transform& transform) {
    if (transform == transform_) return;
    auto from = presentation();
    transform_ = transform;
    animateProperty(detail::kTransform, from);
    changed();
}

void View::setHidden(bool hidden) {
    if (hidden == hidden_) return;
    hidden_ = hidden;
    changed();
}

void View::setAlpha(double alpha) {
    alpha = std::isnan(alpha) ? 1 : std::clamp(alpha, 0.0, 1.0);
    if (alpha == alpha_) return;
    auto from = presentation();
    alpha_ = alpha;
    animateProperty(detail::kAlpha, from);
    changed();
}

void View::setBackgroundColor(const gfx::Color& color) {
    if (color == backgroundColor_) return;
    backgroundColor_ = color;
    changed();
}

View* View::viewWithTag(int tag) {
    if (tag_ == tag) return this;
    for (auto& child : subviews_)
        if (View* found = child->viewWithTag(tag)) return found;
    return nullptr;
}

void View::draw(gfx::Canvas&, const gfx::Rect&) {}

gfx::Size View::sizeThatFits(gfx::Size) const {
    return bounds_.size();
}

void View::sizeToFit() {
    gfx::Size fitting = sizeThatFits(bounds_.size());
    gfx::Rect f = frame();
    setFrame({f.x, f.y, fitting.width, fitting.height});
}

// ---- 2. The tree -----------------------------------------------------------------

Window* View::window() const {
    const View* top = this;
    while (top->superview_)
        top = top->superview_;
    return top->isWindow_ ? static_cast<Window*>(const_cast<View*>(top)) : nullptr;
}

bool View::isDescendantOf(const View* view) const {
    for (const View* v = this; v; v = v->superview_)
        if (v == view) return true;
    return false;
}

bool View::canAdopt(const View* view) const {
    if (!view) return false;
    if (isDescendantOf(view)) {
        sys::Log::platform(view == this ? "View: refused to add a view to itself"
                                        : "View: refused to add a view to one of its own descendants");
        return false;
    }
    if (view->isWindow_) {
        sys::Log::platform("View: refused to add a window to another view");
        return false;
    }
    return true;
}

void View::addSubview(const std::shared_ptr<View>& view) {
    if (canAdopt(view.get())) attach(view, subviews_.size());
}

void View::insertSubview(const std::shared_ptr<View>& view, std::size_t index) {
    if (canAdopt(view.get())) attach(view, index);
}

void View::insertSubviewAbove(const std::shared_ptr<View>& view, const View* sibling) {
    if (!canAdopt(view.get())) return;
    auto it = std::find_if(subviews_.begin(), subviews_.end(), [&](auto& c) { return c.get() == sibling; });
    // Index after removal of `view` from this same parent is handled by attach().
    std::size_t index = it == subviews_.end() ? subviews_.size() : std::size_t(it - subviews_.begin()) + 1;
    attach(view, index);
}

void View::insertSubviewBelow(const std::shared_ptr<View>& view, const View* sibling) {
    if (!canAdopt(view.get())) return;
    auto it = std::find_if(subviews_.begin(), subviews_.end(), [&](auto& c) { return c.get() == sibling; });
    std::size_t index = it == subviews_.end() ? 0 : std::size_t(it - subviews_.begin());
    attach(view, index);
}

void View::attach(const std::shared_ptr<View>& view, std::size_t index) {
    MORVANE_ASSERT_MAIN_THREAD();
    std::shared_ptr<View> keep = view;
    Window* oldWindow = view->window();
    if (view->superview_ == this) {
        // A move within the same parent: the index refers to the order before the move.
        auto it = std::find(subviews_.begin(), subviews_.end(), view);
        std::size_t from = std::size_t(it - subviews_.begin());
        subviews_.erase(it);
        if (index > from) --index;
    } else if (view->superview_) {
        view->superview_->detachChild(view.get());
    }
    index = std::min(index, subviews_.size());
    subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(index), view);
    bool moved = view->superview_ != this;
    view->superview_ = this;
    if (moved) {
        view->setNeedsLayout();
        setNeedsLayout();
        view->didMoveToSuperview();
        Window* newWindow = window();
        if (oldWindow != newWindow) view->notifyWindowChange(oldWindow, newWindow);
    }
    // Only the added (or restacked) view's area changes on screen.
    view->changed();
}

void View::detachChild(const View* view) {
    auto it = std::find_if(subviews_.begin(), subviews_.end(), [&](auto& c) { return c.get() == view; });
    if (it == subviews_.end()) return;
    // What the child showed must be drawn over; it can no longer be found from the window.
    if (Window* w = window()) w->addRemovedArea((*it)->shownArea_);
    (*it)->superview_ = nullptr;
    subviews_.erase(it);
    setNeedsLayout();
}

void View::removeFromSuperview() {
    if (!superview_) return;
    MORVANE_ASSERT_MAIN_THREAD();
    // The parent may hold the last reference; stay alive until done here.
    auto keep = weak_from_this().lock();
    Window* oldWindow = window();
    superview_->detachChild(this);
    didMoveToSuperview();
    if (oldWindow) notifyWindowChange(oldWindow, nullptr);
    changed();
}

void View::notifyWindowChange(Window* oldWindow, Window* newWindow) {
    if (oldWindow) oldWindow->detachedSubtree(this);
    if (newWindow && (animatesContinuously_ || hasAnimations())) newWindow->noteMoving(*this);
    // Index loop: a hook may change the children.
    didMoveToWindow();
    for (std::size_t i = 0; i < subviews_.size(); ++i) {
        auto child = subviews_[i];
        child->notifyWindowChange(nullptr, newWindow);
    }
}

void View::bringSubviewToFront(const View* view) {
    auto it = std::find_if(subviews_.begin(), subviews_.end(), [&](auto& c) { return c.get() == view; });
    if (it == subviews_.end() || it + 1 == subviews_.end()) return;
    auto moved = *it;
    std::rotate(it, it + 1, subviews_.end());
    moved->changed();
}

void View::sendSubviewToBack(const View* view) {
    auto it = std::find_if(subviews_.begin(), subviews_.end(), [&](auto& c) { return c.get() == view; });
    if (it == subviews_.end() || it == subviews_.begin()) return;
    auto moved = *it;
    std::rotate(subviews_.begin(), it, it + 1);
    moved->changed();
}

// ---- 3. Layout ---------------------------------------------------------------------

void View::setNeedsLayout() {
    needsLayout_ = true;
    markSubtreeNeedsLayout();
    // The host must come round to lay out; the layout itself marks what it moves.
    Animator::bumpDisplayGeneration();
}

void View::markSubtreeNeedsLayout() {
    // Invariant: a marked view has marked ancestors, so marking stops at the
    // first ancestor already marked and a pass walks only marked paths.
    for (View* v = this; v && !v->subtreeNeedsLayout_; v = v->superview_)
        v->subtreeNeedsLayout_ = true;
}

bool View::layoutPass() {
    if (!subtreeNeedsLayout_) return false;
    // Cleared first, so that marks made while this subtree is laid out climb
    // past this view again and ask for another pass.
    subtreeNeedsLayout_ = false;
    bool ran = false;
    auto keep = weak_from_this().lock();
    if (needsLayout_) {
        needsLayout_ = false;
        layoutSubviews();
        ran = true;
    }
    for (std::size_t i = 0; i < subviews_.size(); ++i) {
        if (!subviews_[i]->subtreeNeedsLayout_) continue;
        auto child = subviews_[i];
        ran = child->layoutPass() || ran;
    }
    return ran;
}

void View::layoutIfNeeded() {
    MORVANE_ASSERT_MAIN_THREAD();
    auto keep = weak_from_this().lock();
    for (int pass = 0; pass < kMaxLayoutPasses; ++pass) {
        if (!subtreeNeedsLayout_) return;
        layoutPass();
    }
    if (!subtreeNeedsLayout_) return;
    sys::Log::platform("View: layout did not settle after " + std::to_string(kMaxLayoutPasses) +
                       " passes; a layoutSubviews keeps asking for layout");
    // Give up on this round: the marks are dropped so the next frame does not loop again.
    std::vector<View*> stack{this};
    while (!stack.empty()) {
        View* v = stack.back();
        stack.pop_back();
        if (!v->subtreeNeedsLayout_ && v != this) continue;
        v->subtreeNeedsLayout_ = false;
        v->needsLayout_ = false;
        for (auto& child : v->subviews_)
            stack.push_back(child.get());
    }
}

// ---- 4. Coordinates and hit testing ------------------------------------------------

gfx::Transform View::transformToSuperview() const {
    gfx::Point shift = superview_ ? superview_->layer_.sublayerTranslation() : gfx::Point{};
    double ox = center_.x + shift.x;
    double oy = center_.y + shift.y;
    gfx::Point boundsCenter = bounds_.center();
    if (transform_.isIdentity()) return gfx::Transform::translation(ox - boundsCenter.x, oy - boundsCenter.y);
    return gfx::Transform::translation(-boundsCenter.x, -boundsCenter.y)
        .concatenated(transform_)
        .concatenated(gfx::Transform::translation(ox, oy));
}

gfx::Transform View::transformToRoot() const {
    gfx::Transform t;
    for (const View* v = this; v->superview_; v = v->superview_)
        t = t.concatenated(v->transformToSuperview());
    return t;
}

gfx::Point View::convertPointTo(gfx::Point point, const View* view) const {
    gfx::Point inRoot = transformToRoot().apply(point);
    if (!view) return inRoot;
    auto inverse = view->transformToRoot().inverted();
    return inverse ? inverse->apply(inRoot) : gfx::Point{};
}

gfx::Point View::convertPointFrom(gfx::Point point, const View* view) const {
    gfx::Point inRoot = view ? view->transformToRoot().apply(point) : point;
    auto inverse = transformToRoot().inverted();
    return inverse ? inverse->apply(inRoot) : gfx::Point{};
}

gfx::Rect View::convertRectTo(const gfx::Rect& rect, const View* view) const {
    gfx::Transform t = transformToRoot();
    if (view) {
        auto inverse = view->transformToRoot().inverted();
        if (!inverse) return {};
        t = t.concatenated(*inverse);
    }
    return t.apply(rect);
}

bool View::pointInside(gfx::Point point) const {
    return bounds_.contains(point);
}

View* View::hitTest(gfx::Point point) {
    if (hidden_ || !userInteractionEnabled_ || alpha_ <= kMinimumHitAlpha) return nullptr;
    if (!pointInside(point)) return nullptr;
    gfx::Point shift = layer_.sublayerTranslation();
    for (auto it = subviews_.rbegin(); it != subviews_.rend(); ++it) {
        View* child = it->get();
        // The point in the child's bounds: undo its centre, transform and bounds origin.
        gfx::Point local{point.x - child->center_.x - shift.x, point.y - child->center_.y - shift.y};
        if (!child->transform_.isIdentity()) {
            auto inverse = child->transform_.inverted();
            if (!inverse) continue;
            local = inverse->apply(local);
        }
        gfx::Point boundsCenter = child->bounds_.center();
        if (View* hit = child->hitTest(local + boundsCenter)) return hit;
    }
    return this;
}

void View::addGestureRecognizer(std::shared_ptr<GestureRecognizer> recognizer) {
    if (!recognizer) return;
    if (recognizer->view_ && recognizer->view_ != this)
        recognizer->view_->removeGestureRecognizer(recognizer.get());
    if (recognizer->view_ == this) return;
    recognizer->view_ = this;
    gestureRecognizers_.push_back(std::move(recognizer));
}

void View::removeGestureRecognizer(const GestureRecognizer* recognizer) {
    auto it = std::find_if(gestureRecognizers_.begin(), gestureRecognizers_.end(),
                           [&](auto& r) { return r.get() == recognizer; });
    if (it == gestureRecognizers_.end()) return;
    (*it)->view_ = nullptr;
    gestureRecognizers_.erase(it);
}

// ---- 5. Touches and focus ------------------------------------------------------------

// The default handlers pass touches up the chain, each with the parent held
// alive for the call.
void View::touchesBegan(const Touches& touches) {
    if (auto parent = superview_ ? superview_->weak_from_this().lock() : nullptr)
        parent->touchesBegan(touches);
}

void View::touchesMoved(const Touches& touches) {
    if (auto parent = superview_ ? superview_->weak_from_this().lock() : nullptr)
        parent->touchesMoved(touches);
}

void View::touchesEnded(const Touches& touches) {
    if (auto parent = superview_ ? superview_->weak_from_this().lock() : nullptr)
        parent->touchesEnded(touches);
}

void View::touchesCancelled(const Touches& touches) {
    if (auto parent = superview_ ? superview_->weak_from_this().lock() : nullptr)
        parent->touchesCancelled(touches);
}

bool View::isFirstResponder() const {
    Window* w = window();
    return w && w->firstResponder() == this;
}

bool View::becomeFirstResponder() {
    Window* w = window();
    if (!w || !canBecomeFirstResponder()) return false;
    View* current = w->firstResponder();
    if (current == this) return true;
    if (current && !current->resignFirstResponder()) return false;
    w->setFirstResponder(this);
    return true;
}

bool View::resignFirstResponder() {
    Window* w = window();
    if (!w || w->firstResponder() != this) return true;
    if (!canResignFirstResponder()) return false;
    w->setFirstResponder(nullptr);
    return true;
}

void View::insertText(std::string_view text) {
    if (auto parent = superview_ ? superview_->weak_from_this().lock() : nullptr) parent->insertText(text);
}

bool View::keyPressed(Key key) {
    if (auto parent = superview_ ? superview_->weak_from_this().lock() : nullptr)
        return parent->keyPressed(key);
    return false;
}

bool View::endEditing() {
    Window* w = window();
    View* focused = w ? w->firstResponder() : nullptr;
    if (!focused || !focused->isDescendantOf(this)) return true;
    auto keep = focused->weak_from_this().lock();
    return focused->resignFirstResponder();
}

// ---- 6. Animation ---------------------------------------------------------------------

PresentationState View::presentation() const {
    if (!animations_) return {center_, bounds_, alpha_, transform_};
    return presentationAt(sys::Clock::now());
}

PresentationState View::presentationAt(double now) const {
    PresentationState s{center_, bounds_, alpha_, transform_};
    if (!animations_) return s;
    const auto& a = *animations_;
    if (a.tracks[detail::kCenter].runningAt(now))
        s.center = detail::mix(a.fromCenter, center_, a.tracks[detail::kCenter].progress(now));
    if (a.tracks[detail::kBounds].runningAt(now))
        s.bounds = detail::mix(a.fromBounds, bounds_, a.tracks[detail::kBounds].progress(now));
    if (a.tracks[detail::kAlpha].runningAt(now))
        s.alpha = detail::mix(a.fromAlpha, alpha_, a.tracks[detail::kAlpha].progress(now));
    if (a.tracks[detail::kTransform].runningAt(now))
        s.transform = detail::mix(a.fromTransform, transform_, a.tracks[detail::kTransform].progress(now));
    return s;
}

bool View::hasAnimations() const {
    return animations_ && animations_->runningAt(sys::Clock::now());
}

void View::animateProperty(detail::AnimatedProperty property, const PresentationState& from) {
    Animator::Context* context = Animator::current();
    if (!context || context->duration <= 0) {
        // A change outside an animation shows at once, ending a running one.
        if (animations_) animations_->tracks[property].active = false;
        return;
    }
    if (!animations_) animations_ = std::make_unique<detail::ViewAnimations>();
    auto& a = *animations_;
    // The new animation starts from what is on screen now, which may be
    // partway through an earlier animation of the same property.
    switch (property) {
    case detail::kCenter:
        a.fromCenter = from.center;
        break;
    case detail::kBounds:
        a.fromBounds = from.bounds;
        break;
    case detail::kAlpha:
        a.fromAlpha = from.alpha;
        break;
    case detail::kTransform:
        a.fromTransform = from.transform;
        break;
    default:
        return;
    }
    a.tracks[property] = detail::Track{true, context->start, context->duration, context->group};
    noteMoving();
}

void View::removeAllAnimations() {
    if (!animations_) return;
    std::vector<std::shared_ptr<detail::AnimationGroup>> groups;
    double now = sys::Clock::now();
    auto stop = [&](detail::Track& track) {
        if (track.runningAt(now) && track.group) groups.push_back(track.group);
        track.active = false;
        track.group.reset();
    };
    for (auto& track : animations_->tracks)
        stop(track);
    stop(animations_->dissolve);
    animations_->oldLook = gfx::Image();
    changed();
    for (auto& group : groups) {
        if (group->done || group->cancelled) continue;
        // The completion still runs from the main queue, as always, but with false.
        group->cancelled = true;
        sys::Queue::main().async([group] { group->finish(false); });
    }
}

namespace {

void scheduleCompletion(const std::shared_ptr<detail::AnimationGroup>& group, double duration) {
    auto run = [group] { group->finish(true); };
    if (duration > 0)
        sys::Queue::main().after(duration, run);
    else
        sys::Queue::main().async(run);
}

} // namespace

void View::animate(double duration, const std::function<void()>& changes,
                   std::function<void(bool finished)> completion) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!(duration > 0) || !std::isfinite(duration)) duration = 0;
    auto group = std::make_shared<detail::AnimationGroup>();
    group->completion = std::move(completion);
    double now = sys::Clock::now();
    Animator::push({duration, now, group});
    if (changes) changes();
    Animator::pop();
    if (duration > 0) Animator::noteBusyUntil(now + duration);
    scheduleCompletion(group, duration);
}

void View::transition(const std::shared_ptr<View>& view, double duration, Transition kind,
                      const std::function<void()>& changes, std::function<void(bool finished)> completion) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!(duration > 0) || !std::isfinite(duration)) duration = 0;
    auto group = std::make_shared<detail::AnimationGroup>();
    group->completion = std::move(completion);
    double now = sys::Clock::now();
    if (view && kind == Transition::CrossDissolve && duration > 0) {
        // The old look is taken before the changes, at the scale the screen uses.
        gfx::Image oldLook = Renderer::imageOf(*view, gfx::ImageContext::screenScale());
        if (!view->animations_) view->animations_ = std::make_unique<detail::ViewAnimations>();
        view->animations_->oldLook = oldLook;
        view->animations_->dissolve = detail::Track{true, now, duration, group};
        Animator::noteBusyUntil(now + duration);
        view->noteMoving();
    }
    // The changes themselves are not animated (a zero-length block shields
    // them from an enclosing animate()).
    Animator::push({0, now, nullptr});
    if (changes) changes();
    Animator::pop();
    if (view) view->changed();
    scheduleCompletion(group, duration);
}

} // namespace morvane::ui
