#include <morvane/media/ToastPhoto.h>

#include <morvane/gfx/Font.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/media/ZBImageCut.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/ImageView.h>

namespace morvane {

namespace {

constexpr double kRise = 2.5;
constexpr double kFall = 1.5;

std::shared_ptr<ui::Button> choiceButton(const char* title) {
    auto button = std::make_shared<ui::Button>();
    button->setTitle(title);
    button->setTitleColor(gfx::Color::whiteColor());
    button->layer().setBorderColor(gfx::Color::whiteColor());
    button->layer().setBorderWidth(2);
    return button;
}

} // namespace

ToastPhoto::ToastPhoto(const gfx::Rect& frame) : ui::View(frame) {
    icon_ = std::make_shared<ui::Button>();
    icon_->imageView()->setContentMode(gfx::ContentMode::AspectFit);
    icon_->setImage(maskedImage(ResourcePictures::named("person", {64, 64}), gfx::Color::whiteColor()));
    photo_ = choiceButton("Photo");
    camera_ = choiceButton("Camera");
    // Anyone may hold a button after the bar is gone: the destructor takes
    // these actions back.
    photo_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { photoAction(); });
    camera_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { cameraAction(); });
    addSubview(icon_);
    addSubview(photo_);
    addSubview(camera_);
    setBackgroundColor(gfx::Color::blackColor());
    setHidden(true);
}

ToastPhoto::~ToastPhoto() {
    photo_->removeActions(ui::ControlEvent::TouchUpInside);
    camera_->removeActions(ui::ControlEvent::TouchUpInside);
}

void ToastPhoto::show() {
    MORVANE_ASSERT_MAIN_THREAD();
    setHidden(false);
    setAlpha(1);
    const double height = bounds().height;
    animate(kRise, [&] { setCenter({center().x, center().y - height}); });
}

void ToastPhoto::hide() {
    MORVANE_ASSERT_MAIN_THREAD();
    const double height = bounds().height;
    animate(kFall, [&] {
        setCenter({center().x, center().y + height});
        setAlpha(0);
    });
}

void ToastPhoto::watch(long, ChoiceCB photo, ChoiceCB camera) {
    photoCB_ = std::move(photo);
    cameraCB_ = std::move(camera);
}

void ToastPhoto::photoAction() {
    choose(photoCB_);
}

void ToastPhoto::cameraAction() {
    choose(cameraCB_);
}

void ToastPhoto::choose(const ChoiceCB& callback) {
    // Copied and held: the callback may replace itself or release the bar.
    const ChoiceCB call = callback;
    const auto self = weak_from_this().lock();
    hide();
    if (call) call("");
}

gfx::Image ToastPhoto::maskedImage(const gfx::Image& image, const gfx::Color& color) {
    return ZBImageCut::maskedImage(image, color);
}

void ToastPhoto::layoutSubviews() {
    const double w = bounds().width, h = bounds().height;
    icon_->setFrame({0.14 * h, 0.13 * h, 0.74 * h, 0.74 * h});
    photo_->setFrame({0.25 * w, 0.3 * h, 0.25 * w, 0.4 * h});
    camera_->setFrame({0.6 * w, 0.3 * h, 0.25 * w, 0.4 * h});
    photo_->layer().setCornerRadius(0.1 * h);
    camera_->layer().setCornerRadius(0.1 * h);
}

} // namespace morvane
