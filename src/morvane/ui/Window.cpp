#include <morvane/ui/Window.h>

#include <morvane/sys/Clock.h>
#include <morvane/ui/Control.h>
#include <morvane/ui/TapGestureRecognizer.h>

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
    touch_ = TouchState{true, view, location, location, again ? lastTapCount_ + 1 : 1, {}};
    // Recognizers of the view and its ancestors, innermost first.
    for (View* v = hit; v; v = v->superview())
        for (auto& recognizer : v->gestureRecognizers())
            if (recognizer->isEnabled()) touch_.recognizers.push_back(recognizer);

    view->touchesBegan(one(TouchPhase::Began, location, location, view, touch_.tapCount));
}

void Window::sendTouchMove(gfx::Point location) {
    if (!touch_.active) return;
    auto view = touch_.view;
    gfx::Point previous = touch_.last;
    touch_.last = location;
    view->touchesMoved(one(TouchPhase::Moved, location, previous, view, touch_.tapCount));
}

void Window::sendTouchUp(gfx::Point location) {
    if (!touch_.active) return;
    // Taken out first: a handler may start the next touch.
    TouchState touch = std::move(touch_);
    touch_ = TouchState{};
    auto view = touch.view;

    std::shared_ptr<TapGestureRecognizer> recognized;
    if (location.distanceTo(touch.start) <= TapGestureRecognizer::kMaximumMovement) {
        for (auto& weak : touch.recognizers) {
            auto recognizer = weak.lock();
            View* owner = recognizer ? recognizer->view() : nullptr;
            if (!owner || !recognizer->isEnabled() || owner->window() != this) continue;
            if (touch.tapCount < recognizer->numberOfTapsRequired()) continue;
            if (controlBetween(view.get(), owner)) continue;
            if (!owner->pointInside(owner->convertPointFrom(location, nullptr))) continue;
            recognized = recognizer;
            break;
        }
    }
    lastTapTime_ = sys::Clock::now();
    lastTapLocation_ = location;
    lastTapCount_ = touch.tapCount;

    if (recognized && recognized->cancelsTouchesInView())
        view->touchesCancelled(one(TouchPhase::Cancelled, location, touch.last, view, touch.tapCount));
    else
        view->touchesEnded(one(TouchPhase::Ended, location, touch.last, view, touch.tapCount));
    if (recognized) recognized->fire(location);
}

void Window::sendTouchCancel() {
    if (!touch_.active) return;
    TouchState touch = std::move(touch_);
    touch_ = TouchState{};
    touch.view->touchesCancelled(
        one(TouchPhase::Cancelled, touch.last, touch.last, touch.view, touch.tapCount));
}

void Window::sendText(std::string_view text) {
    if (text.empty()) return;
    if (auto focused = firstResponder_.lock()) focused->insertText(text);
}

bool Window::sendKey(Key key) {
    if (auto focused = firstResponder_.lock()) return focused->keyPressed(key);
    return false;
}

} // namespace morvane::ui
