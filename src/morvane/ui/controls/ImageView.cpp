#include <morvane/ui/controls/ImageView.h>

#include <morvane/gfx/Canvas.h>

namespace morvane::ui {

ImageView::ImageView() {
    setUserInteractionEnabled(false);
}

ImageView::ImageView(const gfx::Rect& frame) : ImageView() {
    setFrame(frame);
}

ImageView::ImageView(gfx::Image image) : ImageView() {
    setImage(std::move(image));
    sizeToFit();
}

void ImageView::setImage(gfx::Image image) {
    if (image.isSameAs(image_)) return;
    image_ = std::move(image);
    setNeedsDisplay();
}

void ImageView::setContentMode(gfx::ContentMode mode) {
    if (mode == contentMode_) return;
    contentMode_ = mode;
    setNeedsDisplay();
}

gfx::Size ImageView::sizeThatFits(gfx::Size) const {
    return image_ ? image_.size() : gfx::Size{};
}

gfx::Rect ImageView::drawingRect() const {
    gfx::Rect area = View::drawingRect();
    if (!image_) return area;
    return area.united(gfx::placeContent(image_.size(), bounds(), contentMode_).insetBy(-1, -1));
}

void ImageView::draw(gfx::Canvas& canvas, const gfx::Rect& rect) {
    if (image_) canvas.drawImage(image_, rect, contentMode_);
}

} // namespace morvane::ui
