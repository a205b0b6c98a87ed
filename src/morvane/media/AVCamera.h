#pragma once
// AVCamera: the camera view with a one-line caption laid over the picture.
// A touch on the view moves the caption to that height and opens it for
// editing; it closes again 5 seconds (on the kit's clock) after the last
// touch, edit action or typed change. The caption cannot take a line break.
//
//   auto camera = std::make_shared<AVCamera>(gfx::Rect{0, 100, 390, 500});
//   camera->watch(0, [](const std::vector<std::uint8_t>& photo) { ... });
//
// Decisions where the kit's behaviour leaves room: a caption placed by touch
// keeps its height through later layouts (the first layout puts it at a fifth
// of the view's height); a new edit timer replaces a running one, so the
// caption stays open 5 seconds after the last thing the user did.
// Threads: main thread only; photos are delivered on the main queue.

#include <morvane/media/detail/CameraView.h>
#include <morvane/sys/Timer.h>
#include <morvane/ui/text/TextView.h>

#include <optional>

namespace morvane {

class AVCamera : public detail::CameraView, private ui::TextViewDelegate {
  public:
    static constexpr double kEditSeconds = 5;

    explicit AVCamera(const gfx::Rect& frame = {});
    ~AVCamera() override;

    const std::shared_ptr<ui::TextView>& name() const { return name_; }
    // The caption's edit timer; null when none is running.
    std::shared_ptr<sys::Timer> timer() const { return timer_ && timer_->isValid() ? timer_ : nullptr; }

    // Stores the photo callback; the number is not used.
    void watch(int unused, PhotoCB prev);
    // Brings the caption forward, open for editing.
    void editAction();
    // (Re)starts the 5-second edit timer.
    void start();
    // Closes the caption: clear, white text, editing ended, no touches.
    void stop();

    void touchesBegan(const ui::Touches& touches) override;

  protected:
    void layoutSubviews() override;
    gfx::Rect previewFrame() const override;

  private:
    bool shouldChangeText(ui::TextView& view, ui::TextRange range, std::string_view replacement) override;
    void openCaption();

    std::shared_ptr<ui::TextView> name_;
    std::shared_ptr<sys::Timer> timer_;
    std::optional<double> captionY_;
};

} // namespace morvane
