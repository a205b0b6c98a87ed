#pragma once
// NCamera: a camera view that takes one still photo and hands its bytes to
// the application, with a close button "x" and the operations that shrink a
// photo for storing or sending.
//
//   auto camera = std::make_shared<NCamera>(gfx::Rect{20, 120, 350, 420});
//   camera->watch(0, [](const std::vector<std::uint8_t>& photo) { ... },
//                 [](bool) { /* closed with "x" */ });
//   // the shutter: the first press opens the camera, the second takes the photo
//
// The camera is the kit's default camera (sys::Camera): a real device, or a
// virtual one chosen by the application or MORVANE_CAMERA. Without a camera
// the preview stays empty and the reason is logged.
// Threads: main thread only; photos are delivered on the main queue.

#include <morvane/media/detail/CameraView.h>

namespace morvane {

class NCamera : public detail::CameraView {
  public:
    using QuitCB = std::function<void(bool)>;

    explicit NCamera(const gfx::Rect& frame = {});
    ~NCamera() override;

    const std::shared_ptr<ui::Button>& quit() const { return quit_; }

    // Stores the photo and close callbacks; the number is not used.
    void watch(int unused, PhotoCB prev, QuitCB quit);
    // The "x" button: reports false to the close callback, when there is one.
    void quitAction();

    // PNG bytes of resizeImage of the decoded photo (empty for bytes that
    // are not a picture).
    static std::vector<std::uint8_t> resizeData(const std::vector<std::uint8_t>& photo);
    // The decoded photo encoded again as PNG.
    static std::vector<std::uint8_t> rotateData(const std::vector<std::uint8_t>& photo);
    // An upright copy drawn at the image's own size and scale, not opaque.
    static gfx::Image rotateImage(const gfx::Image& image);
    // The image drawn at that size, scale 1.
    static gfx::Image imageWithImage(const gfx::Image& image, double width, double height);
    // The image, halved until its PNG takes at most 2,500,000 bytes.
    static gfx::Image resizeImageNew(const gfx::Image& image);
    static constexpr std::size_t kMaxPNGBytes = 2'500'000;

  protected:
    void layoutSubviews() override;
    gfx::Rect previewFrame() const override;

  private:
    std::shared_ptr<ui::Button> quit_;
    QuitCB quitCB_;
};

} // namespace morvane
