#pragma once
// A gallery screen made of the kit's header-and-list composite above a
// status line: the menus and bookings screens. The header's back button
// leads home.

#include "Screen.h"
#include "Style.h"

#include <morvane/lists/UITblHdrAll.h>
#include <morvane/ui/controls/Label.h>

#include <memory>
#include <string>

namespace gallery {

class CompositeScreen : public Screen {
  public:
    CompositeScreen(const morvane::gfx::Rect& frame, std::shared_ptr<morvane::UITblHdrAll> composite,
                    std::string hint)
        : Screen(frame), composite_(std::move(composite)), status_(style::statusLine(std::move(hint))) {
        setBackgroundColor(style::kBar);
        addSubview(composite_);
        addSubview(status_);
    }

    const std::shared_ptr<morvane::UITblHdrAll>& composite() const { return composite_; }
    const std::shared_ptr<morvane::ui::Label>& status() const { return status_; }
    std::shared_ptr<morvane::ui::View> backControl() const override {
        return composite_->headerUI()->backBtn();
    }

  protected:
    void say(const std::string& text) { status_->setText(text); }
    // The back button titled "Home", calling `back`.
    void watchBack(Back back) {
        composite_->watchHdrBack("Home", [back = std::move(back)](const std::string&) {
            if (back) back();
        });
    }
    void layoutSubviews() override {
        const morvane::gfx::Size size = bounds().size();
        composite_->setFrame({0, 0, size.width, size.height - style::kStatusHeight});
        status_->setFrame({0, size.height - style::kStatusHeight, size.width, style::kStatusHeight});
    }

  private:
    std::shared_ptr<morvane::UITblHdrAll> composite_;
    std::shared_ptr<morvane::ui::Label> status_;
};

} // namespace gallery
