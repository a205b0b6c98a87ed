#pragma once
// ZBImage: a picture view that loads its picture by name or address through
// the photo loader (ZBImageModel), shows a large white spinner meanwhile, and
// places the picture by its shape: tall pictures fitted on their own corner
// colour, near-square ones fitted, wide ones filling the view. A touch that
// ends on the view switches between fit and fill with a half-second cross-fade.
//
//   auto photo = std::make_shared<ZBImage>(gfx::Rect{0, 0, 390, 240});
//   photo->addImage("https://example.com/rooms/suite.jpg", "2024.05.01T10:00:00");
//
// A download that fails leaves the spinner running (the loader calls nothing
// back). Main thread only; the loader's answer is brought back to the main
// queue before the view is touched, and a view released meanwhile is left alone.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Image.h>
#include <morvane/ui/controls/ActivityIndicator.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/core/View.h>

#include <memory>
#include <optional>
#include <string_view>

namespace morvane {

class ZBImage : public ui::View {
  public:
    // initWithFrame: the frame, with the brown colour (which is not applied).
    explicit ZBImage(const gfx::Rect& frame = {});
    // initWithColor: builds the view; the colour is not applied.
    explicit ZBImage(const gfx::Color& color);

    ui::ImageView& imageView() const { return *imageView_; }
    ui::ActivityIndicator& indicator() const { return *indicator_; }

    // Loads the picture of that name or address, for the date stamp, and shows it.
    void addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd);
    // Shows the image as it is.
    void addImage(const gfx::Image& image);
    // True: the spinner shows and turns, the picture hides; false: the reverse.
    void showProgress(bool show);
    // Switches between aspect fit and aspect fill with a 0.5 s cross-fade.
    void animate();

    void touchesBegan(const ui::Touches& touches) override;
    void touchesEnded(const ui::Touches& touches) override;

  protected:
    void layoutSubviews() override;

  private:
    // Places a loaded picture by its shape and shows it.
    void showLoaded(const gfx::Image& image);

    std::shared_ptr<ui::ImageView> imageView_;
    std::shared_ptr<ui::ActivityIndicator> indicator_;
};

} // namespace morvane
