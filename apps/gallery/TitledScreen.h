#pragma once
// The frame most gallery screens share: "‹ Home" at the top left, the big
// title below it, and the status line at the foot that says what the last
// touch did. A screen places its own views in the area between; views it
// adds later lie above the frame's (a toast slides over the status line).

#include "Screen.h"
#include "Style.h"

#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>

#include <memory>
#include <string>

namespace gallery {

class TitledScreen : public Screen {
  public:
    static constexpr double kTop = 92; // where the screen's own views begin

    TitledScreen(const morvane::gfx::Rect& frame, std::string title, std::string status)
        : Screen(frame), title_(style::screenTitle(std::move(title))), back_(style::homeButton()),
          status_(style::statusLine(std::move(status))) {
        setBackgroundColor(style::kList);
        addSubview(title_);
        addSubview(back_);
        addSubview(status_);
    }

    const std::shared_ptr<morvane::ui::Label>& status() const { return status_; }
    std::shared_ptr<morvane::ui::View> backControl() const override { return back_; }

  protected:
    void watchBack(Back back) {
        back_->addAction(morvane::ui::ControlEvent::TouchUpInside,
                         [back = std::move(back)](morvane::ui::Control&) {
                             if (back) back();
                         });
    }
    // Places the frame; the area left for the screen's own views.
    morvane::gfx::Rect placeFrame() {
        const morvane::gfx::Size size = bounds().size();
        back_->setFrame({8, 8, 90, 30});
        title_->setFrame({20, 44, size.width - 40, 36});
        status_->setFrame({0, size.height - style::kStatusHeight, size.width, style::kStatusHeight});
        return {0, kTop, size.width, size.height - style::kStatusHeight - kTop};
    }

  private:
    std::shared_ptr<morvane::ui::Label> title_;
    std::shared_ptr<morvane::ui::Button> back_;
    std::shared_ptr<morvane::ui::Label> status_;
};

} // namespace gallery
