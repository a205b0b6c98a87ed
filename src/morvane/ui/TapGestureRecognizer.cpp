#include <morvane/ui/TapGestureRecognizer.h>

#include <morvane/ui/View.h>

namespace morvane::ui {

TapGestureRecognizer::TapGestureRecognizer(Action action) {
    addTarget(std::move(action));
}

std::shared_ptr<TapGestureRecognizer> TapGestureRecognizer::create(Action action) {
    return std::make_shared<TapGestureRecognizer>(std::move(action));
}

void TapGestureRecognizer::addTarget(Action action) {
    if (action) actions_.push_back(std::move(action));
}

gfx::Point TapGestureRecognizer::locationIn(const View* view) const {
    return view ? view->convertPointFrom(location_, nullptr) : location_;
}

void TapGestureRecognizer::fire(gfx::Point windowLocation) {
    location_ = windowLocation;
    // Copied: an action may remove targets, the recognizer or its view.
    auto actions = actions_;
    for (auto& action : actions)
        action(*this);
}

} // namespace morvane::ui
