#include <morvane/ui/core/Window.h>

#include <algorithm>

#include <morvane/sys/Clock.h>
#include <morvane/ui/controls/Control.h>
#include <morvane/ui/core/GestureRecognizer.h>
#include <morvane/ui/core/detail/Animator.h>
#include <morvane/ui/core/detail/RedrawAreas.h>

namespace morvane::ui {

namespace {

// Taps closer together than this, in time and in points, count as one
// double tap (or more).
constexpr double kMultiTapInterval = 0.35;
constexpr double kMultiTapDistance = 20;

Touches one(TouchPhase phase, gfx::Point at, gfx::Point previous, const std::shared_ptr<View>& view,
            int tapCount) {
    return {Touch(phase, at, previous, sys::Clock::now(), view, tapCount)};
}

// A control under a recognizer's view handles its own taps: a tap on a button
// inside a tappable card presses the button, not the card.
bool controlBetween(View* hit, const View* recognizerView) {
    for (View* v = hit; v && v != recognizerView; v = v->superview())
        if (dynamic_cast<Control*>(v)) return true;
    return false;
}

} // namespace

Window::Window(const gfx::Rect& frame) : View(frame) {
    isWindow_ = true;
    setBackgroundColor(gfx::Color::whiteColor());
}

std::shared_ptr<Window> Window::create(gfx::Size size) {
    return std::make_shared<Window>(gfx::Rect{0, 0, size.width, size.height});
}

void Window::setFirstResponder(View* view) {
    if (view)
        firstResponder_ = view->weak_from_this();
    else
        firstResponder_.reset();
}

void Window::detachedSubtree(View* root) {
    // A focused view that leaves the window gives up the focus.
    auto focused = firstResponder_.lock();
    if (focused && focused->isDescendantOf(root)) {
        firstResponder_.reset();
        focused->resignFirstResponder();
    }
}

void Window::sendTouchDown(gfx::Point location) {
    if (touch_.active) sendTouchCancel();
    layoutIfNeeded();
    View* hit = hitTest(location);
    if (!hit) return;
    auto view = hit->weak_from_this().lock();
    if (!view) return;

    double now = sys::Clock::now();
    bool again =
        now - lastTapTime_ <= kMultiTapInterval && location.distanceTo(lastTapLocation_) <= kMultiTapDistance;
    touch_ = TouchState{};
    touch_.active = true;
    touch_.view = view;
    touch_.start = touch_.last = location;
    touch_.tapCount = again ? lastTapCount_ + 1 : 1;
    for (View* v = hit; v; v = v->superview())
        for (auto& recognizer : v->gestureRecognizers()) {
            if (!recognizer->isEnabled()) continue;
            if (recognizer->yieldsToControls() && controlBetween(hit, v)) continue;
            recognizer->state_ = GestureRecognizer::State::Possible;
            recognizer->stepPending_ = false;
            recognizer->reset();
            touch_.recognizers.push_back(recognizer);
        }

    Touches step = one(TouchPhase::Began, location, location, view, touch_.tapCount);
    // The touch state is copied for the call: a handler may start another touch.
    TouchState touch = touch_;
    bool deliver = feedRecognizers(touch, step.front());
    if (touch_.active && touch_.view == touch.view) {
        touch_.claimedBy = touch.claimedBy;
        touch_.viewCancelled = touch.viewCancelled;
    }
    if (deliver) view->touchesBegan(step);
}

bool Window::feedRecognizers(TouchState& touch, const Touch& step) {
    for (auto& recognizer : touch.recognizers) {
        if (touch.claimedBy && recognizer != touch.claimedBy) continue;
        if (!recognizer->isActive() || !recognizer->view() || recognizer->view()->window() != this) continue;
        recognizer->location_ = step.windowLocation();
        switch (step.phase()) {
        case TouchPhase::Began:
            recognizer->touchBegan(step);
            break;
        case TouchPhase::Moved:
            recognizer->touchMoved(step);
            break;
        case TouchPhase::Ended:
            recognizer->touchEnded(step);
            break;
        case TouchPhase::Cancelled:
            recognizer->touchCancelled(step);
            break;
        }
        if (!touch.claimedBy && recognizer->stepPending_) touch.claimedBy = recognizer;
    }
    std::shared_ptr<GestureRecognizer> claimed = touch.claimedBy;
    if (claimed && claimed->stepPending_) {
        // The first recognised step: the others give up, and the view is told
        // its touch is gone before any action runs.
        for (auto& other : touch.recognizers)
            if (other != claimed && other->isActive()) other->state_ = GestureRecognizer::State::Failed;
        if (claimed->cancelsTouchesInView() && !touch.viewCancelled) {
            touch.viewCancelled = true;
            if (step.phase() != TouchPhase::Began)
                touch.view->touchesCancelled(one(TouchPhase::Cancelled, step.windowLocation(), touch.last,
                                                 touch.view, touch.tapCount));
        }
        claimed->runActions();
    }
    return !touch.viewCancelled;
}

void Window::sendTouchMove(gfx::Point location) {
    if (!touch_.active) return;
    TouchState touch = touch_;
    gfx::Point previous = touch.last;
    touch_.last = location;
    Touches step = one(TouchPhase::Moved, location, previous, touch.view, touch.tapCount);
    bool deliver = feedRecognizers(touch, step.front());
    if (touch_.active && touch_.view == touch.view) {
        touch_.claimedBy = touch.claimedBy;
        touch_.viewCancelled = touch.viewCancelled;
    }
    if (deliver) touch.view->touchesMoved(step);
}

void Window::sendTouchUp(gfx::Point location) {
    if (!touch_.active) return;
    // Taken out first: a handler may start the next touch.
    TouchState touch = std::move(touch_);
    touch_ = TouchState{};
    lastTapTime_ = sys::Clock::now();
    lastTapLocation_ = location;
    lastTapCount_ = touch.tapCount;
    Touches step = one(TouchPhase::Ended, location, touch.last, touch.view, touch.tapCount);
    if (feedRecognizers(touch, step.front())) touch.view->touchesEnded(step);
}

void Window::sendTouchCancel() {
    if (!touch_.active) return;
    TouchState touch = std::move(touch_);
    touch_ = TouchState{};
    Touches step = one(TouchPhase::Cancelled, touch.last, touch.last, touch.view, touch.tapCount);
    for (auto& recognizer : touch.recognizers)
        if (recognizer->isActive()) recognizer->touchCancelled(step.front());
    if (!touch.viewCancelled) touch.view->touchesCancelled(step);
}

void Window::sendText(std::string_view text) {
    if (text.empty()) return;
    if (auto focused = firstResponder_.lock()) focused->insertText(text);
}

namespace {
void collectFocusable(View& view, std::vector<std::shared_ptr<View>>& out) {
    if (view.isHidden() || view.alpha() < 0.01 || !view.isUserInteractionEnabled()) return;
    if (view.canBecomeFirstResponder()) out.push_back(view.shared_from_this());
    // A copy: the walk must not hold an iterator into a child list.
    auto children = view.subviews();
    for (auto& child : children)
        collectFocusable(*child, out);
}
} // namespace

bool Window::focusNextField(View& from) {
    std::vector<std::shared_ptr<View>> fields;
    collectFocusable(*this, fields);
    auto at = std::find_if(fields.begin(), fields.end(), [&](auto& v) { return v.get() == &from; });
    if (fields.empty() || (fields.size() == 1 && at != fields.end())) return false;
    std::size_t start = at == fields.end() ? fields.size() - 1 : std::size_t(at - fields.begin());
    for (std::size_t k = 1; k <= fields.size(); ++k) {
        auto& next = fields[(start + k) % fields.size()];
        if (next.get() == &from) break;
        if (next->becomeFirstResponder()) return true;
    }
    return false;
}

bool Window::sendKey(Key key) {
    if (auto focused = firstResponder_.lock()) return focused->keyPressed(key);
    return false;
}

// ---- Redraw areas ---------------------------------------------------------------

void Window::noteMoving(View& view) {
    for (auto& entry : moving_)
        if (entry.lock().get() == &view) return;
    moving_.push_back(view.weak_from_this());
}

Window::Changes Window::takeChanges(double time, double scale) {
    // Animating views change on screen with no property set: mark them for
    // this frame, and once more after they stop, for their final look.
    for (std::size_t i = 0; i < moving_.size();) {
        auto view = moving_[i].lock();
        bool keep = view && view->window() == this;
        if (keep) {
            view->markNeedsDisplay();
            keep = view->animatesContinuously_ || (view->animations_ && view->animations_->runningAt(time));
        }
        if (keep)
            ++i;
        else
            moving_.erase(moving_.begin() + static_cast<std::ptrdiff_t>(i));
    }
    Changes changes;
    DirtyRegion removed = std::move(removedAreas_);
    removedAreas_.clear();
    detail::RedrawAreas::collect(*this, time, scale, removed, changes);
    return changes;
}

} // namespace morvane::ui
