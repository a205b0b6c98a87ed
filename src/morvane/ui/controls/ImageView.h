#pragma once
// A view that shows a picture placed by its content mode: stretched (scale to
// fill), fitted inside (aspect fit), covering (aspect fill: turn clipping on
// to keep the overflow inside) or centred. Image views do not take touches
// unless asked to.

#include <morvane/gfx/ContentMode.h>
#include <morvane/gfx/Image.h>
#include <morvane/ui/core/View.h>

namespace morvane::ui {

class ImageView : public View {
  public:
    ImageView();
    explicit ImageView(const gfx::Rect& frame);
    explicit ImageView(gfx::Image image);

    const gfx::Image& image() const { return image_; }
    void setImage(gfx::Image image);
    gfx::ContentMode contentMode() const { return contentMode_; }
    void setContentMode(gfx::ContentMode mode);

    // The picture's size in points.
    gfx::Size sizeThatFits(gfx::Size size) const override;
    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;
    // Aspect fill and centring may place the picture past the bounds.
    gfx::Rect drawingRect() const override;

  private:
    gfx::Image image_;
    gfx::ContentMode contentMode_ = gfx::ContentMode::ScaleToFill;
};

} // namespace morvane::ui
