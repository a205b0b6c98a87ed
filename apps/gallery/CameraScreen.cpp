#include "CameraScreen.h"

#include "Style.h"
#include "VirtualCamera.h"

#include <morvane/gfx/Font.h>

#include <cmath>

namespace gallery {

using namespace morvane;

CameraScreen::CameraScreen(const gfx::Rect& frame)
    : TitledScreen(frame, "Cameras", "Both cameras are closed") {
    camera_ = std::make_shared<NCamera>();
    photo_ = std::make_shared<ui::ImageView>();
    photo_->setContentMode(gfx::ContentMode::AspectFit);
    photo_->setBackgroundColor(style::kBar);
    photoInfo_ = std::make_shared<ui::Label>();
    photoInfo_->setFont(gfx::Font::systemFont(12));
    photoInfo_->setTextColor(style::kStatusText);
    photoInfo_->setNumberOfLines(0);
    photoInfo_->setText("Press the round shutter twice: once to open the camera, once to take the photo.");
    captioned_ = std::make_shared<AVCamera>();
    for (const auto& view :
         std::initializer_list<std::shared_ptr<ui::View>>{camera_, photo_, photoInfo_, captioned_})
        addSubview(view);
}

std::shared_ptr<CameraScreen> CameraScreen::make(const gfx::Rect& frame, const gfx::Image& scene,
                                                 const std::filesystem::path& folder, Back back) {
    auto screen = std::make_shared<CameraScreen>(frame);
    if (!showToCamera(scene, folder / "camera-scene.png"))
        screen->status()->setText("No picture for the camera");
    screen->wire(std::move(back));
    return screen;
}

void CameraScreen::wire(Back back) {
    watchBack(std::move(back));
    std::weak_ptr<CameraScreen> weak = std::static_pointer_cast<CameraScreen>(shared_from_this());
    camera_->watch(
        0,
        [weak](const std::vector<std::uint8_t>& bytes) {
            auto self = weak.lock();
            if (!self) return;
            const gfx::Image taken = gfx::Image::fromData(bytes);
            const gfx::Image kept = NCamera::resizeImage(taken);
            self->photo_->setImage(kept);
            self->photoInfo_->setText("Taken: " + std::to_string(taken.pixelWidth()) + " × " +
                                      std::to_string(taken.pixelHeight()) + ", " +
                                      std::to_string(bytes.size() / 1024) +
                                      " KB\nKept: " + std::to_string(kept.pixelWidth()) + " × " +
                                      std::to_string(kept.pixelHeight()) + ", JPEG at 0.1, " +
                                      std::to_string(kept.jpegData(0.1).size() / 1024) + " KB");
            self->status()->setText("Photo taken; the camera closed");
        },
        [weak](bool) {
            if (auto self = weak.lock()) self->status()->setText("Camera closed with x");
        });
    captioned_->watch(0, [weak](const std::vector<std::uint8_t>& bytes) {
        if (auto self = weak.lock())
            self->status()->setText("Captioned photo taken: " + std::to_string(bytes.size() / 1024) + " KB");
    });
}

void CameraScreen::layoutSubviews() {
    const gfx::Size size = bounds().size();
    placeFrame();
    const double cameraWidth = std::floor((size.width - 50) * 0.6);
    camera_->setFrame({20, 92, cameraWidth, 300});
    const double right = 30 + cameraWidth, rightWidth = size.width - 20 - right;
    photo_->setFrame({right, 92, rightWidth, rightWidth * 400 / 350});
    photoInfo_->setFrame({right, 100 + rightWidth * 400 / 350, rightWidth, 120});
    captioned_->setFrame({20, 404, size.width - 40, size.height - 404 - style::kStatusHeight - 12});
}

} // namespace gallery
