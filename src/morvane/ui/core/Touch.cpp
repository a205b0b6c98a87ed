#include <morvane/ui/core/Touch.h>

#include <morvane/ui/core/View.h>

namespace morvane::ui {

Touch::Touch(TouchPhase phase, gfx::Point windowLocation, gfx::Point previousWindowLocation, double timestamp,
             std::weak_ptr<View> view, int tapCount)
    : phase_(phase), location_(windowLocation), previous_(previousWindowLocation), timestamp_(timestamp),
      view_(std::move(view)), tapCount_(tapCount) {}

gfx::Point Touch::locationIn(const View* view) const {
    return view ? view->convertPointFrom(location_, nullptr) : location_;
}

gfx::Point Touch::previousLocationIn(const View* view) const {
    return view ? view->convertPointFrom(previous_, nullptr) : previous_;
}

} // namespace morvane::ui
