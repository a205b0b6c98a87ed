#pragma once
// UIQRRead: points the camera at a QR code, decodes it, reads its text back
// into a Node and hands both to the application. A code whose text is not a
// JSON object or array shows "    Error" sliding up from the bottom edge.
//
//   auto reader = std::make_shared<UIQRRead>(gfx::Rect{20, 120, 350, 350});
//   reader->watchRead([](const std::string& text, const Value& node) {
//       // runs on the serial queue "myQueue": hop to the main queue for views
//   });
//   // the round button starts scanning (red) and stops it again (grey)
//
// Frames are decoded one at a time on "myQueue"; frames that arrive while
// one is being decoded are dropped, never queued. The first code found stops
// the camera (the button stays red); the next press gives the idle look, the
// press after that scans again.
// Threads: main thread only, except readCB (on "myQueue").

#include <morvane/gfx/Geometry.h>
#include <morvane/model/Value.h>
#include <morvane/sys/Camera.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/core/View.h>
#include <morvane/ui/text/TextField.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace morvane {

namespace detail {
class CameraFeed;
}

class UIQRRead : public ui::View {
  public:
    // The code's text and what it reads as: a Node, or a list for a JSON array.
    using ReadCB = std::function<void(const std::string& text, const Value& node)>;
    static constexpr const char* kErrorMessage = "    Error";
    static constexpr const char* kQueueName = "myQueue";

    explicit UIQRRead(const gfx::Rect& frame = {});
    ~UIQRRead() override;

    const std::shared_ptr<ui::Button>& save() const { return save_; }
    const std::shared_ptr<ui::TextField>& toaster() const { return toaster_; }
    // The preview of the current opening; null before the first.
    const std::shared_ptr<ui::ImageView>& videoPreviewLayer() const { return preview_; }
    // The camera of the current opening (null before the first, or when
    // there was none), and whether it runs.
    std::shared_ptr<sys::Camera> captureSession() const;
    bool captureSessionRunning() const;

    UIQRRead& watchRead(ReadCB read);
    // The button: starts scanning when idle (tag 0), else stops.
    void btnAction();
    // Opens the default camera; false (nothing changed) when there is none.
    bool startReading();
    void stopReading();
    // Decoded codes, first one first (normally called from "myQueue").
    void captureOutput(const std::vector<std::string>& codes);
    // The text as a Node or list; absent for anything else (logged).
    static Value textToDict(std::string_view text);
    // Slides the message up from the bottom edge and away again (1.5 s each way).
    void toast(std::string_view text);

    // Frames decoded so far, and frames dropped because one was being decoded.
    std::uint64_t framesDecoded() const;
    std::uint64_t framesDropped() const;

  protected:
    void layoutSubviews() override;

  private:
    struct Shared;
    std::shared_ptr<ui::Button> save_;
    std::shared_ptr<ui::TextField> toaster_;
    std::shared_ptr<ui::ImageView> preview_;
    std::unique_ptr<detail::CameraFeed> feed_;
    std::shared_ptr<Shared> shared_;
};

} // namespace morvane
