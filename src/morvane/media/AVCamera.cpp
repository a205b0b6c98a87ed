#include <morvane/media/AVCamera.h>

#include <morvane/gfx/Font.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Touch.h>

namespace morvane {

AVCamera::AVCamera(const gfx::Rect& frame) : detail::CameraView(frame, "AVCamera") {
    name_ = std::make_shared<ui::TextView>();
    name_->setMaximumNumberOfLines(1);
    name_->setFont(gfx::Font::systemFont(gfx::Font::systemFontSize()));
    name_->setTextAlignment(gfx::TextAlignment::Center);
    name_->setBackgroundColor(gfx::Color::clearColor());
    name_->layer().setBorderColor(gfx::Color::clearColor());
    name_->setTextColor(gfx::Color::whiteColor());
    name_->setUserInteractionEnabled(false);
    name_->setDelegate(this);
    addSubview(name_);
    bringSubviewToFront(save().get());
}

AVCamera::~AVCamera() {
    name_->setDelegate(nullptr);
    if (timer_) timer_->invalidate();
}

void AVCamera::watch(int, PhotoCB prev) {
    nextCB_ = std::move(prev);
}

void AVCamera::openCaption() {
    name_->setBackgroundColor(gfx::Color::whiteColor());
    name_->setTextColor(gfx::Color::blackColor());
}

void AVCamera::touchesBegan(const ui::Touches& touches) {
    if (touches.empty()) return;
    const double y = touches.front().locationIn(this).y;
    const double w = bounds().width;
    captionY_ = y;
    name_->setFrame({0.1 * w, y, 0.8 * w, name_->frame().height});
    openCaption();
    name_->setUserInteractionEnabled(true);
    start();
}

void AVCamera::editAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    bringSubviewToFront(name_.get());
    openCaption();
    start();
}

void AVCamera::start() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (timer_) timer_->invalidate();
    std::weak_ptr<ui::View> weak = weak_from_this();
    timer_ = sys::Timer::schedule(kEditSeconds, sys::Timer::Repeat::Once, [weak](sys::Timer&) {
        if (auto self = std::static_pointer_cast<AVCamera>(weak.lock())) self->stop();
    });
}

void AVCamera::stop() {
    MORVANE_ASSERT_MAIN_THREAD();
    name_->setBackgroundColor(gfx::Color::clearColor());
    name_->setTextColor(gfx::Color::whiteColor());
    name_->resignFirstResponder();
    name_->setUserInteractionEnabled(false);
    if (timer_) timer_->invalidate();
    timer_.reset();
}

bool AVCamera::shouldChangeText(ui::TextView&, ui::TextRange, std::string_view replacement) {
    start();
    return replacement.find_first_of("\r\n") == std::string_view::npos;
}

gfx::Rect AVCamera::previewFrame() const {
    return {0, 0, bounds().width, bounds().height};
}

void AVCamera::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, b = buttonSide();
    name_->setFrame({0.1 * w, captionY_.value_or(0.2 * h), 0.8 * w, 0.7 * b});
    name_->layer().setCornerRadius(0.15 * b);
    imgView()->setFrame({0, 0, b, b});
    placeShutterAndPreview();
}

} // namespace morvane
