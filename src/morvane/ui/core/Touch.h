#pragma once
// One finger on the screen (a mouse button in the window host): where it is,
// where it was, in which phase, and on which view it began. Locations are kept
// in window coordinates; locationIn() converts them for any view.

#include <morvane/gfx/Geometry.h>
#include <morvane/ui/Forward.h>

#include <memory>

namespace morvane::ui {

enum class TouchPhase { Began, Moved, Ended, Cancelled };

class Touch {
  public:
    Touch() = default;
    Touch(TouchPhase phase, gfx::Point windowLocation, gfx::Point previousWindowLocation, double timestamp,
          std::weak_ptr<View> view, int tapCount = 1);

    // The location in the coordinates of `view` (window coordinates for nullptr).
    gfx::Point locationIn(const View* view) const;
    gfx::Point previousLocationIn(const View* view) const;

    TouchPhase phase() const { return phase_; }
    // Seconds on the kit's clock when the touch last changed.
    double timestamp() const { return timestamp_; }
    int tapCount() const { return tapCount_; }
    // The view the touch began on; null once that view is gone.
    std::shared_ptr<View> view() const { return view_.lock(); }
    gfx::Point windowLocation() const { return location_; }

  private:
    TouchPhase phase_ = TouchPhase::Began;
    gfx::Point location_;
    gfx::Point previous_;
    double timestamp_ = 0;
    std::weak_ptr<View> view_;
    int tapCount_ = 1;
};

} // namespace morvane::ui
