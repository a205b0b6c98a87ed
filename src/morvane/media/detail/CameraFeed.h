#pragma once
// One opening of the default camera, shown in a preview view: the camera's
// frames are handed to the main queue (only the newest one waits; older ones
// are dropped) and set on the preview there. The camera views and the QR
// reader each hold one per opening, so every opening has its own camera and
// preview, and dropping the feed closes the camera.
//
// Threads: built, used and dropped on the main thread. The frame tap runs on
// the camera's streaming thread; photos and failures arrive on the main queue.

#include <morvane/gfx/Image.h>
#include <morvane/sys/Camera.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/ImageView.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::detail {

class CameraFeed {
  public:
    using FrameTap = std::function<void(const gfx::Image& frame)>;

    // Opens and starts the default camera; null when there is none or it
    // refuses, after one log line "<owner>: ..." that says why.
    static std::unique_ptr<CameraFeed> start(std::string_view owner, std::weak_ptr<ui::ImageView> preview,
                                             FrameTap tap = {});
    ~CameraFeed();
    CameraFeed(const CameraFeed&) = delete;
    CameraFeed& operator=(const CameraFeed&) = delete;

    void stop();
    bool running() const;
    const std::shared_ptr<sys::Camera>& camera() const { return camera_; }
    // Frames set on the preview so far.
    std::uint64_t framesShown() const;

    // The next frame as photo bytes, handed to `deliver` on the main queue;
    // nothing when the camera stops first.
    void capturePhoto(std::function<void(std::vector<std::uint8_t>)> deliver);

  private:
    struct Shared;
    CameraFeed(std::shared_ptr<sys::Camera> camera, std::shared_ptr<Shared> shared);

    std::shared_ptr<sys::Camera> camera_;
    std::shared_ptr<Shared> shared_;
};

// The round button of the camera views and the reader: the platform's light
// text colour, tag 0, a white ring 2 points wide.
std::shared_ptr<ui::Button> makeShutter();
// Centred near the bottom edge of a view of that size, 3 system font sizes
// across, round.
void placeShutter(ui::Button& shutter, gfx::Size size);

} // namespace morvane::detail
