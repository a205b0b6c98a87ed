#include "ToastsScreen.h"

#include "Style.h"

#include <morvane/gfx/Font.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr double kToastHeight = 60;
constexpr double kChooserHeight = 76;

} // namespace

ToastsScreen::ToastsScreen(const gfx::Rect& frame) : Screen(frame) {
    setBackgroundColor(style::kList);
    title_ = style::screenTitle("Toasts");
    back_ = style::homeButton();
    toastButton_ = style::actionButton("Show a toast");
    photoButton_ = style::actionButton("Add a photo");
    status_ = style::statusLine("Tap a button");
    // Placed just below the screen: one slide up shows them.
    toast_ = std::make_shared<Toast>();
    chooser_ = std::make_shared<ToastPhoto>();
    for (const auto& view : std::initializer_list<std::shared_ptr<ui::View>>{
             title_, back_, toastButton_, photoButton_, status_, toast_, chooser_})
        addSubview(view);
    setClipsToBounds(true);
}

std::shared_ptr<ToastsScreen> ToastsScreen::make(const gfx::Rect& frame, Back back) {
    auto screen = std::make_shared<ToastsScreen>(frame);
    screen->wire(std::move(back));
    return screen;
}

void ToastsScreen::wire(Back back) {
    back_->addAction(ui::ControlEvent::TouchUpInside, [back = std::move(back)](ui::Control&) {
        if (back) back();
    });
    // The screen owns the buttons and bars: their callbacks hold it weakly.
    std::weak_ptr<ToastsScreen> weak = std::static_pointer_cast<ToastsScreen>(shared_from_this());
    toastButton_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        auto self = weak.lock();
        if (!self) return;
        const int number = ++self->toasts_;
        self->status_->setText("Toast " + std::to_string(number) + " on its way");
        self->toast_->show("Your table is ready · toast " + std::to_string(number),
                           [weak, number](const std::string&, const std::string&) {
                               if (auto alive = weak.lock())
                                   alive->status_->setText("Toast " + std::to_string(number) + " has gone");
                           });
    });
    photoButton_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        if (auto self = weak.lock()) self->chooser_->show();
    });
    chooser_->watch(
        0,
        [weak](const std::string&) {
            if (auto self = weak.lock()) self->status_->setText("Photo chosen");
        },
        [weak](const std::string&) {
            if (auto self = weak.lock()) self->status_->setText("Camera chosen");
        });
}

void ToastsScreen::layoutSubviews() {
    const gfx::Size size = bounds().size();
    back_->setFrame({8, 8, 90, 30});
    title_->setFrame({20, 44, size.width - 40, 36});
    toastButton_->setFrame({40, 160, size.width - 80, 52});
    photoButton_->setFrame({40, 240, size.width - 80, 52});
    status_->setFrame({0, size.height - style::kStatusHeight, size.width, style::kStatusHeight});
    // The bars are placed once, below the screen; after that they move themselves.
    if (toast_->frame().isEmpty()) toast_->setFrame({0, size.height, size.width, kToastHeight});
    if (chooser_->frame().isEmpty()) chooser_->setFrame({0, size.height, size.width, kChooserHeight});
}

} // namespace gallery
