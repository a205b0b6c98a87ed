#include <morvane/media/Toast.h>

#include <morvane/gfx/Font.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/media/ZBImageCut.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/sys/Sound.h>

namespace morvane {

namespace {
constexpr double kRise = 2.5;
constexpr double kFall = 1.5;
} // namespace

Toast::Toast(const gfx::Rect& frame) : ui::View(frame) {
    const double s = gfx::Font::systemFontSize();
    msg_ = std::make_shared<ui::Label>();
    msg_->setFont(gfx::Font::italicSystemFont(s));
    msg_->setText("More");
    msg_->setBackgroundColor(gfx::Color::clearColor());
    msg_->setTextColor(gfx::Color::whiteColor());
    cart_ = std::make_shared<ui::Button>();
    cart_->imageView()->setContentMode(gfx::ContentMode::AspectFit);
    cart_->setImage(maskedImage(ResourcePictures::named("person", {64, 64}), gfx::Color::whiteColor()));
    addSubview(cart_);
    addSubview(msg_);
    setBackgroundColor(gfx::Color::blackColor());
    setHidden(true);
}

void Toast::show(std::string_view text, DoneCB done) {
    MORVANE_ASSERT_MAIN_THREAD();
    msg_->setText(std::string(text));
    setHidden(false);
    setAlpha(1);
    std::weak_ptr<ui::View> weak = weak_from_this();
    const double height = bounds().height;
    animate(
        kRise,
        [&] {
            setCenter({center().x, center().y - height});
        },
        [weak, height, done = std::move(done)](bool) {
            auto self = weak.lock();
            if (!self) return;
            // Opening the audio device can take a while: not on the main thread.
            sys::Queue::global().async([] { sys::Sound::playAlert(); });
            animate(
                kFall,
                [&] {
                    self->setCenter({self->center().x, self->center().y + height});
                    self->setAlpha(0);
                },
                [weak, done](bool) {
                    // Held for the call: the callback may release the toast.
                    auto alive = weak.lock();
                    if (alive && done) done("", "");
                });
        });
}

gfx::Image Toast::maskedImage(const gfx::Image& image, const gfx::Color& color) {
    return ZBImageCut::maskedImage(image, color);
}

void Toast::layoutSubviews() {
    const double w = bounds().width, h = bounds().height;
    cart_->setFrame({0.14 * h, 0.13 * h, 0.74 * h, 0.74 * h});
    msg_->setFrame({1.1 * h, 0, w - h, h});
}

} // namespace morvane
