#pragma once
// The gallery's cameras: the plain camera, whose photo is shown beside it
// brought within the photo limits (at most 350 x 400, JPEG at quality 0.1),
// and the captioned camera, whose caption is placed with a touch and typed.
// Both look, through the virtual camera, at a picture of a dish.
//
//   auto screen = CameraScreen::make(frame, dishPicture, scratchFolder, goHome);

#include "TitledScreen.h"

#include <morvane/gfx/Image.h>
#include <morvane/media/AVCamera.h>
#include <morvane/media/NCamera.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>

#include <filesystem>
#include <memory>

namespace gallery {

class CameraScreen : public TitledScreen {
  public:
    static std::shared_ptr<CameraScreen> make(const morvane::gfx::Rect& frame,
                                              const morvane::gfx::Image& scene,
                                              const std::filesystem::path& folder, Back back);
    explicit CameraScreen(const morvane::gfx::Rect& frame);

    const std::shared_ptr<morvane::NCamera>& camera() const { return camera_; }
    const std::shared_ptr<morvane::AVCamera>& captioned() const { return captioned_; }
    const std::shared_ptr<morvane::ui::ImageView>& photo() const { return photo_; }
    const std::shared_ptr<morvane::ui::Label>& photoInfo() const { return photoInfo_; }

  protected:
    void layoutSubviews() override;

  private:
    void wire(Back back);

    std::shared_ptr<morvane::NCamera> camera_;
    std::shared_ptr<morvane::ui::ImageView> photo_;
    std::shared_ptr<morvane::ui::Label> photoInfo_;
    std::shared_ptr<morvane::AVCamera> captioned_;
};

} // namespace gallery
