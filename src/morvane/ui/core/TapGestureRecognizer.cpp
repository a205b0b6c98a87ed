#include <morvane/ui/core/TapGestureRecognizer.h>

#include <morvane/ui/core/Touch.h>
#include <morvane/ui/core/View.h>

namespace morvane::ui {

std::shared_ptr<TapGestureRecognizer> TapGestureRecognizer::create(Action action) {
    return std::make_shared<TapGestureRecognizer>(std::move(action));
}

void TapGestureRecognizer::touchBegan(const Touch& touch) {
    start_ = touch.windowLocation();
}

void TapGestureRecognizer::touchMoved(const Touch& touch) {
    if (touch.windowLocation().distanceTo(start_) > kMaximumMovement) setState(State::Failed);
}

void TapGestureRecognizer::touchEnded(const Touch& touch) {
    View* owner = view();
    bool inside = owner && owner->pointInside(touch.locationIn(owner));
    bool still = touch.windowLocation().distanceTo(start_) <= kMaximumMovement;
    setState(inside && still && touch.tapCount() >= tapsRequired_ ? State::Ended : State::Failed);
}

} // namespace morvane::ui
