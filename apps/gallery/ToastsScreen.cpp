#include "ToastsScreen.h"

#include "Style.h"

#include <morvane/gfx/Font.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr double kToastHeight = 60;
constexpr double kChooserHeight = 76;

} // namespace

ToastsScreen::ToastsScreen(const gfx::Rect& frame) : TitledScreen(frame, "Toasts", "Tap a button") {
    toastButton_ = style::actionButton("Show a toast");
    photoButton_ = style::actionButton("Add a photo");
    // Placed just below the screen: one slide up shows them.
    toast_ = std::make_shared<Toast>();
    chooser_ = std::make_shared<ToastPhoto>();
    for (const auto& view :
         std::initializer_list<std::shared_ptr<ui::View>>{toastButton_, photoButton_, toast_, chooser_})
        addSubview(view);
    setClipsToBounds(true);
}

std::shared_ptr<ToastsScreen> ToastsScreen::make(const gfx::Rect& frame, Back back) {
    auto screen = std::make_shared<ToastsScreen>(frame);
    screen->wire(std::move(back));
    return screen;
}

void ToastsScreen::wire(Back back) {
    watchBack(std::move(back));
    // The screen owns the buttons and bars: their callbacks hold it weakly.
    std::weak_ptr<ToastsScreen> weak = std::static_pointer_cast<ToastsScreen>(shared_from_this());
    toastButton_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        auto self = weak.lock();
        if (!self) return;
        const int number = ++self->toasts_;
        self->status()->setText("Toast " + std::to_string(number) + " on its way");
        self->toast_->show("Your table is ready · toast " + std::to_string(number),
                           [weak, number](const std::string&, const std::string&) {
                               if (auto alive = weak.lock())
                                   alive->status()->setText("Toast " + std::to_string(number) + " has gone");
                           });
    });
    photoButton_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        if (auto self = weak.lock()) self->chooser_->show();
    });
    chooser_->watch(
        0,
        [weak](const std::string&) {
            if (auto self = weak.lock()) self->status()->setText("Photo chosen");
        },
        [weak](const std::string&) {
            if (auto self = weak.lock()) self->status()->setText("Camera chosen");
        });
}

void ToastsScreen::layoutSubviews() {
    const gfx::Size size = bounds().size();
    placeFrame();
    toastButton_->setFrame({40, 160, size.width - 80, 52});
    photoButton_->setFrame({40, 240, size.width - 80, 52});
    // The bars are placed once, below the screen; after that they move themselves.
    if (toast_->frame().isEmpty()) toast_->setFrame({0, size.height, size.width, kToastHeight});
    if (chooser_->frame().isEmpty()) chooser_->setFrame({0, size.height, size.width, kChooserHeight});
}

} // namespace gallery
