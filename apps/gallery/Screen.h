#pragma once
// What every screen of the gallery offers the app around it: a way back to
// the home screen, and a word on whether it shows everything it should yet
// (pictures downloaded, translations arrived), which the tour waits for
// before it takes a screenshot.

#include <morvane/ui/core/View.h>

#include <functional>
#include <memory>
#include <string>

namespace gallery {

class Screen : public morvane::ui::View {
  public:
    // Called when the user asks to leave the screen.
    using Back = std::function<void()>;

    using morvane::ui::View::View;

    // The control a finger taps to go back home; null on the home screen.
    virtual std::shared_ptr<morvane::ui::View> backControl() const = 0;
    // What the screen is still waiting for ("" once it shows everything).
    virtual std::string waitingFor() const { return {}; }
};

} // namespace gallery
