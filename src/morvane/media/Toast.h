#pragma once
// Toast: a one-line message bar that slides up from where the application
// placed it (2.5 s), plays the alert sound once it has arrived, slides back
// down while fading out (1.5 s), and then reports that it has gone.
//
//   auto toast = std::make_shared<Toast>(gfx::Rect{0, 844, 390, 56}); // just below the screen
//   screen->addSubview(toast);
//   toast->show("Saved for later", [](const std::string&, const std::string&) { ... });
//
// The bar moves relative to where it is: a second show() while it is up
// moves it up once more. It stays un-hidden at alpha 0 after a show.
//
// Decisions where the kit's behaviour leaves room: the sound is started on a
// background queue (opening the audio device can take a while) and is silent
// where there is no audio; a toast released while it slides neither plays
// the sound nor calls back. Threads: main thread only.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/View.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace morvane {

class Toast : public ui::View {
  public:
    // done: "" and "" once the bar has gone.
    using DoneCB = std::function<void(const std::string&, const std::string&)>;

    explicit Toast(const gfx::Rect& frame = {});

    const std::shared_ptr<ui::Label>& msg() const { return msg_; }
    const std::shared_ptr<ui::Button>& cart() const { return cart_; }

    void show(std::string_view text, DoneCB done = {});
    // The picture tinted with the colour.
    static gfx::Image maskedImage(const gfx::Image& image, const gfx::Color& color);

  protected:
    void layoutSubviews() override;

  private:
    std::shared_ptr<ui::Label> msg_;
    std::shared_ptr<ui::Button> cart_;
};

} // namespace morvane
