#pragma once
// Recognises a tap (a touch that ends where it began, within a few points) on
// the view it is added to or on any of its descendants, and calls its actions.
// When it recognises, the view the touch began on is told the touch was
// cancelled instead of ended (unless cancelsTouchesInView is off). A control
// below the recognising view keeps its own taps.
//
//   auto tap = ui::TapGestureRecognizer::create([](ui::TapGestureRecognizer& r) { ... });
//   view->addGestureRecognizer(tap);

#include <morvane/gfx/Geometry.h>
#include <morvane/ui/Forward.h>

#include <functional>
#include <memory>
#include <vector>

namespace morvane::ui {

class TapGestureRecognizer {
  public:
    using Action = std::function<void(TapGestureRecognizer& recognizer)>;

    // A touch that moves farther than this from where it began is no tap.
    static constexpr double kMaximumMovement = 10;

    TapGestureRecognizer() = default;
    explicit TapGestureRecognizer(Action action);
    static std::shared_ptr<TapGestureRecognizer> create(Action action);

    // Adds a target's action; every action runs on each tap, in the order added.
    void addTarget(Action action);
    void removeAllTargets() { actions_.clear(); }

    View* view() const { return view_; }
    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled) { enabled_ = enabled; }
    int numberOfTapsRequired() const { return tapsRequired_; }
    void setNumberOfTapsRequired(int taps) { tapsRequired_ = taps < 1 ? 1 : taps; }
    bool cancelsTouchesInView() const { return cancelsTouches_; }
    void setCancelsTouchesInView(bool cancels) { cancelsTouches_ = cancels; }

    // Where the last recognised tap was, in the coordinates of `view`.
    gfx::Point locationIn(const View* view) const;

  private:
    friend class View;
    friend class Window;
    void fire(gfx::Point windowLocation);

    View* view_ = nullptr;
    std::vector<Action> actions_;
    bool enabled_ = true;
    int tapsRequired_ = 1;
    bool cancelsTouches_ = true;
    gfx::Point location_;
};

} // namespace morvane::ui
