#pragma once
// ToastPhoto: a bar offering "Photo" or "Camera", sliding up from where the
// application placed it; a choice slides it back down (fading out) and then
// reports which button was pressed.
//
//   auto chooser = std::make_shared<ToastPhoto>(gfx::Rect{0, 844, 390, 70});
//   chooser->watch(0, [](const std::string&) { pickPhoto(); }, [](const std::string&) { openCamera(); });
//   chooser->show();
//
// The bar moves relative to where it is (a show while it is up moves it up
// once more). Every callback may release the bar. Threads: main thread only.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/core/View.h>

#include <functional>
#include <memory>
#include <string>

namespace morvane {

class ToastPhoto : public ui::View {
  public:
    // Called with "" after the bar has started to slide away.
    using ChoiceCB = std::function<void(const std::string&)>;

    explicit ToastPhoto(const gfx::Rect& frame = {});
    ~ToastPhoto() override;

    const std::shared_ptr<ui::Button>& icon() const { return icon_; }
    const std::shared_ptr<ui::Button>& photo() const { return photo_; }
    const std::shared_ptr<ui::Button>& camera() const { return camera_; }
    const ChoiceCB& photoCB() const { return photoCB_; }
    const ChoiceCB& cameraCB() const { return cameraCB_; }

    // Un-hides the bar and slides it up by its height over 2.5 s.
    void show();
    // Slides it down by its height over 1.5 s, fading it out.
    void hide();
    // Stores the two callbacks (the number is not used).
    void watch(long unused, ChoiceCB photo, ChoiceCB camera);
    void photoAction();
    void cameraAction();
    static gfx::Image maskedImage(const gfx::Image& image, const gfx::Color& color);

  protected:
    void layoutSubviews() override;

  private:
    void choose(const ChoiceCB& callback);

    std::shared_ptr<ui::Button> icon_;
    std::shared_ptr<ui::Button> photo_;
    std::shared_ptr<ui::Button> camera_;
    ChoiceCB photoCB_;
    ChoiceCB cameraCB_;
};

} // namespace morvane
