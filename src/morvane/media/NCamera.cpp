#include <morvane/media/NCamera.h>

#include <morvane/media/ImageColor.h>
#include <morvane/sys/Queue.h>

namespace morvane {

NCamera::NCamera(const gfx::Rect& frame) : detail::CameraView(frame, "NCamera") {
    quit_ = std::make_shared<ui::Button>();
    quit_->setTitle("x");
    quit_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { quitAction(); });
    addSubview(quit_);
    bringSubviewToFront(save().get());
    setClipsToBounds(true);
    setBackgroundColor(gfx::Color::fromBytes(213, 213, 226));
}

NCamera::~NCamera() {
    quit_->removeActions(ui::ControlEvent::TouchUpInside);
}

void NCamera::watch(int, PhotoCB prev, QuitCB quit) {
    nextCB_ = std::move(prev);
    quitCB_ = std::move(quit);
}

void NCamera::quitAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!quitCB_) return;
    auto keep = weak_from_this().lock();
    QuitCB quit = quitCB_;
    quit(false);
}

std::vector<std::uint8_t> NCamera::resizeData(const std::vector<std::uint8_t>& photo) {
    return resizeImage(gfx::Image::fromData(photo)).pngData();
}

std::vector<std::uint8_t> NCamera::rotateData(const std::vector<std::uint8_t>& photo) {
    return gfx::Image::fromData(photo).pngData();
}

gfx::Image NCamera::rotateImage(const gfx::Image& image) {
    return ImageColor::rotate(image);
}

gfx::Image NCamera::imageWithImage(const gfx::Image& image, double width, double height) {
    return ImageColor::imageWithImage(image, width, height);
}

gfx::Image NCamera::resizeImageNew(const gfx::Image& image) {
    // Halving goes on until the encoding fits or nothing is left to halve;
    // a loop rather than the recursion, so no picture can run it deep.
    gfx::Image current = image;
    if (current.isNull() || current.pngData().size() <= kMaxPNGBytes) return current;
    while (true) {
        const gfx::Size size = current.size();
        gfx::Image half = imageWithImage(current, size.width / 2, size.height / 2);
        if (half.isNull() || half.pngData().size() <= kMaxPNGBytes) return half.isNull() ? current : half;
        current = half;
    }
}

gfx::Rect NCamera::previewFrame() const {
    const double w = bounds().width, h = bounds().height;
    return {0.05 * w, 0, 0.9 * w, h};
}

void NCamera::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, b = buttonSide();
    quit_->setFrame({w - b, 0, b, b});
    imgView()->setFrame({0, 0, b, b});
    placeShutterAndPreview();
    layer().setCornerRadius(0.05 * h);
}

} // namespace morvane
