#include <morvane/ui/core/Layer.h>

#include <morvane/ui/core/View.h>

namespace morvane::ui {

// Every change goes through the owning view, which asks for a redraw.
void Layer::changed() {
    owner_.changed();
}

void Layer::setCornerRadius(double radius) {
    if (radius == cornerRadius_) return;
    cornerRadius_ = radius;
    changed();
}

void Layer::setBorderWidth(double width) {
    if (width == borderWidth_) return;
    borderWidth_ = width;
    changed();
}

void Layer::setBorderColor(const gfx::Color& color) {
    if (color == borderColor_) return;
    borderColor_ = color;
    changed();
}

void Layer::setShadowColor(const gfx::Color& color) {
    shadow_.color = color;
    changed();
}

void Layer::setShadowOpacity(double opacity) {
    shadow_.opacity = opacity;
    changed();
}

void Layer::setShadowRadius(double radius) {
    shadow_.radius = radius;
    changed();
}

void Layer::setShadowOffset(gfx::Size offset) {
    shadow_.offset = offset;
    changed();
}

void Layer::setMasksToBounds(bool masks) {
    if (masks == masksToBounds_) return;
    masksToBounds_ = masks;
    changed();
}

void Layer::setMask(std::optional<MaskLayer> mask) {
    mask_ = mask;
    changed();
}

const gfx::Transform& Layer::transform() const {
    return owner_.transform();
}

void Layer::setTransform(const gfx::Transform& transform) {
    owner_.setTransform(transform);
}

void Layer::setSublayerTranslation(gfx::Point translation) {
    if (translation == sublayerTranslation_) return;
    sublayerTranslation_ = translation;
    changed();
}

} // namespace morvane::ui
