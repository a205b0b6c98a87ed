#pragma once
// The gallery's toasts screen: two buttons, one showing a message toast (with
// the kit's alert chime once it has arrived), one offering the Photo or
// Camera choice; the status line says what each reported.
//
//   auto screen = ToastsScreen::make(frame, goHome);

#include "TitledScreen.h"

#include <morvane/media/Toast.h>
#include <morvane/media/ToastPhoto.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>

#include <memory>
#include <string>

namespace gallery {

class ToastsScreen : public TitledScreen {
  public:
    static std::shared_ptr<ToastsScreen> make(const morvane::gfx::Rect& frame, Back back);
    // Use make(): the callbacks need the screen to be owned already.
    explicit ToastsScreen(const morvane::gfx::Rect& frame);

    const std::shared_ptr<morvane::Toast>& toast() const { return toast_; }
    const std::shared_ptr<morvane::ToastPhoto>& chooser() const { return chooser_; }
    const std::shared_ptr<morvane::ui::Button>& toastButton() const { return toastButton_; }
    const std::shared_ptr<morvane::ui::Button>& photoButton() const { return photoButton_; }

  protected:
    void layoutSubviews() override;

  private:
    void wire(Back back);

    std::shared_ptr<morvane::ui::Button> toastButton_;
    std::shared_ptr<morvane::ui::Button> photoButton_;
    std::shared_ptr<morvane::Toast> toast_;
    std::shared_ptr<morvane::ToastPhoto> chooser_;
    int toasts_ = 0;
};

} // namespace gallery
