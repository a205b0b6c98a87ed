#include <morvane/ui/core/GestureRecognizer.h>

#include <morvane/ui/core/View.h>

namespace morvane::ui {

void GestureRecognizer::addTarget(Action action) {
    if (action) actions_.push_back(std::move(action));
}

gfx::Point GestureRecognizer::locationIn(const View* view) const {
    return view ? view->convertPointFrom(location_, nullptr) : location_;
}

void GestureRecognizer::setState(State state) {
    state_ = state;
    // The window runs the actions after it has settled who owns the touch.
    stepPending_ = state == State::Began || state == State::Changed || state == State::Ended;
}

void GestureRecognizer::runActions() {
    stepPending_ = false;
    // Copied: an action may remove targets, the recogniser or its view.
    auto actions = actions_;
    for (auto& action : actions)
        action(*this);
}

} // namespace morvane::ui
