#pragma once
// What the two camera views share: the two-press shutter (open, then take),
// the preview of each opening, the last photo shown small and hidden, and the
// photo handed to the owner. NCamera and AVCamera add their own layouts and
// extras on top.

#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>
#include <morvane/sys/Camera.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/core/View.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace morvane::detail {

class CameraFeed;

class CameraView : public ui::View {
  public:
    // The photo's encoded bytes (JPEG); empty when the photo failed.
    using PhotoCB = std::function<void(const std::vector<std::uint8_t>& photo)>;

    ~CameraView() override;

    const std::shared_ptr<ui::Button>& save() const { return save_; }
    const std::shared_ptr<ui::ImageView>& imgView() const { return imgView_; }
    // The preview of the current opening; null before the first opening.
    const std::shared_ptr<ui::ImageView>& videoPreviewLayer() const { return preview_; }
    // The camera of the current opening; null while closed or dark.
    std::shared_ptr<sys::Camera> captureSesssion() const;

    // The shutter: opens the camera when closed (tag 0), else takes a photo.
    void btnAction();
    // Opens the default camera; a camera that cannot be opened leaves the
    // preview empty (logged once). True in every case.
    bool startReading();
    void stopReading();
    // Asks the open camera for a photo; nothing arrives while it is dark.
    void shootIt();
    // A photo arrived: shown in imgView, the camera closed, the owner told.
    void captureOutput(std::vector<std::uint8_t> photo);

    // The photo limits: sides brought within 350 x 400 keeping the shape,
    // then encoded as JPEG at quality 0.1 and decoded again.
    static gfx::Image resizeImage(const gfx::Image& image);

    // Preview frames shown since the view was made (tests, benchmarks).
    std::uint64_t previewFramesShown() const;

  protected:
    CameraView(const gfx::Rect& frame, std::string name);
    // Where the preview goes, in the view's bounds.
    virtual gfx::Rect previewFrame() const = 0;
    // The shutter and the preview, placed alike in both views.
    void placeShutterAndPreview();
    static double buttonSide();

    PhotoCB nextCB_;

  private:
    std::string name_;
    std::shared_ptr<ui::Button> save_;
    std::shared_ptr<ui::ImageView> imgView_;
    std::shared_ptr<ui::ImageView> preview_;
    std::unique_ptr<CameraFeed> feed_;
    std::uint64_t shownBefore_ = 0;
};

} // namespace morvane::detail
