#include <morvane/ui/controls/Control.h>

#include <morvane/ui/core/Touch.h>

#include <algorithm>

namespace morvane::ui {

Control::Control() = default;

Control::Control(const gfx::Rect& frame) : View(frame) {}

void Control::addAction(ControlEvent event, Action action) {
    if (action) actions_.emplace_back(event, std::move(action));
}

void Control::removeActions(ControlEvent event) {
    std::erase_if(actions_, [&](auto& entry) { return entry.first == event; });
}

bool Control::hasActions(ControlEvent event) const {
    return std::any_of(actions_.begin(), actions_.end(), [&](auto& entry) { return entry.first == event; });
}

void Control::sendActions(ControlEvent event) {
    // The actions are copied and the control held: an action may remove the
    // control from the screen, drop the last reference to it, or change the list.
    auto keep = weak_from_this().lock();
    std::vector<Action> toRun;
    for (auto& [e, action] : actions_)
        if (e == event) toRun.push_back(action);
    for (auto& action : toRun)
        action(*this);
}

void Control::setEnabled(bool enabled) {
    if (enabled == enabled_) return;
    enabled_ = enabled;
    if (!enabled) highlighted_ = false;
    setNeedsDisplay();
    stateChanged();
}

void Control::setHighlighted(bool highlighted) {
    if (highlighted == highlighted_) return;
    highlighted_ = highlighted;
    setNeedsDisplay();
    stateChanged();
}

void Control::setSelected(bool selected) {
    if (selected == selected_) return;
    selected_ = selected;
    setNeedsDisplay();
    stateChanged();
}

ControlState Control::state() const {
    if (!enabled_) return ControlState::Disabled;
    if (highlighted_) return ControlState::Highlighted;
    if (selected_) return ControlState::Selected;
    return ControlState::Normal;
}

void Control::setContentHorizontalAlignment(ContentHorizontalAlignment alignment) {
    horizontalAlignment_ = alignment;
    setNeedsLayout();
}

void Control::setContentVerticalAlignment(ContentVerticalAlignment alignment) {
    verticalAlignment_ = alignment;
    setNeedsLayout();
}

// A control keeps the touches it tracks: they do not go on to its superview.
void Control::touchesBegan(const Touches&) {
    if (!enabled_) return;
    auto keep = weak_from_this().lock();
    tracking_ = true;
    setHighlighted(true);
    sendActions(ControlEvent::TouchDown);
}

void Control::touchesMoved(const Touches& touches) {
    if (!tracking_ || touches.empty()) return;
    // The pressed look follows the finger in and out of the control.
    setHighlighted(pointInside(touches.front().locationIn(this)));
}

void Control::touchesEnded(const Touches& touches) {
    if (!tracking_ || touches.empty()) return;
    auto keep = weak_from_this().lock();
    tracking_ = false;
    setHighlighted(false);
    bool inside = pointInside(touches.front().locationIn(this));
    if (inside) touchEndedInside(touches.front());
    sendActions(inside ? ControlEvent::TouchUpInside : ControlEvent::TouchUpOutside);
}

void Control::touchesCancelled(const Touches&) {
    if (!tracking_) return;
    auto keep = weak_from_this().lock();
    tracking_ = false;
    setHighlighted(false);
    sendActions(ControlEvent::TouchCancel);
}

} // namespace morvane::ui
