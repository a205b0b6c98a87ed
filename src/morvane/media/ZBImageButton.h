#pragma once
// ZBImageButton: a pill-shaped button with a small white-tinted picture at its
// left and a title at its right, as the payment strip uses them:
//
//   auto card = std::make_shared<ZBImageButton>(colour, "Card", "credit");
//   card->setFrame({20, 700, 160, 44});
//   card->addAction(ui::ControlEvent::TouchUpInside, [](ui::Control&) { pay(); });
//
// It also stores seven callbacks for the application (watch(...)); the button
// itself never calls them, so an owner decides what each one means.

#include <morvane/gfx/Color.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace morvane {

class ZBImageButton : public ui::Button {
  public:
    // A callback stored for the application.
    using Callback = std::function<void()>;

    // initWithFrame: brown, titled "credit", with the picture "credit".
    explicit ZBImageButton(const gfx::Rect& frame = {});
    // initWithColor:title:photo: the background colour, the title and the
    // name of a resource picture (shown tinted white).
    ZBImageButton(const gfx::Color& color, std::string_view title, std::string_view photo);

    ui::Label& titleLbl() const { return *titleLbl_; }
    ui::ImageView& image() const { return *image_; }

    // Stores click in smenuCB, data in dataCB, last in lastCB, next in nextCB,
    // prev in prevCB, okNext in nextOK and okPrev in prevOK; the object is not used.
    void watch(const void* object, Callback click, Callback data, Callback last, Callback next, Callback prev,
               Callback okNext, Callback okPrev);

    // The text's width in the system font at 12 points.
    static double widthAction(std::string_view text);
    // A white border of that width on the view's layer.
    static void addBorder(ui::View& view, int width);
    // Does nothing.
    void prevAction() {}

    Callback dataCB;
    Callback lastCB;
    Callback nextCB;
    Callback prevCB;
    Callback nextOK;
    Callback prevOK;
    Callback smenuCB;

  protected:
    void layoutSubviews() override;

  private:
    std::shared_ptr<ui::Label> titleLbl_;
    std::shared_ptr<ui::ImageView> image_;
};

} // namespace morvane
