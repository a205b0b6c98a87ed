#pragma once
// The drawing properties every view carries, the way a phone platform puts them
// on a view's layer: rounded corners, a border drawn above the content, a soft
// shadow, clipping, a rectangular mask, a 3-D transform and a translation of
// everything inside the view. A Layer lives inside its View (view.layer());
// changing a property asks for a redraw.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Shadow.h>
#include <morvane/gfx/Transform.h>
#include <morvane/ui/Forward.h>

#include <optional>

namespace morvane::ui {

// A rectangular mask: only what lies inside the rectangle (in the view's
// frame-local coordinates, rounded by its own corner radius) shows, including
// the view's background, border, shadow and children.
struct MaskLayer {
    gfx::Rect frame;
    double cornerRadius = 0;
    bool operator==(const MaskLayer&) const = default;
};

class Layer {
  public:
    double cornerRadius() const { return cornerRadius_; }
    void setCornerRadius(double radius);

    // The border is drawn inside the bounds, above the children.
    double borderWidth() const { return borderWidth_; }
    void setBorderWidth(double width);
    const gfx::Color& borderColor() const { return borderColor_; }
    void setBorderColor(const gfx::Color& color);

    // The shadow follows the rounded bounds; it shows only when the opacity is
    // above zero and the layer does not mask to its bounds.
    const gfx::Color& shadowColor() const { return shadow_.color; }
    void setShadowColor(const gfx::Color& color);
    double shadowOpacity() const { return shadow_.opacity; }
    void setShadowOpacity(double opacity);
    double shadowRadius() const { return shadow_.radius; }
    void setShadowRadius(double radius);
    gfx::Size shadowOffset() const { return shadow_.offset; }
    void setShadowOffset(gfx::Size offset);
    const gfx::Shadow& shadow() const { return shadow_; }

    // The same switch as View::clipsToBounds.
    bool masksToBounds() const { return masksToBounds_; }
    void setMasksToBounds(bool masks);

    const std::optional<MaskLayer>& mask() const { return mask_; }
    void setMask(std::optional<MaskLayer> mask);

    // The same transform as View::transform (a 3-D scale keeps its z factor).
    const gfx::Transform& transform() const;
    void setTransform(const gfx::Transform& transform);

    // Moves the children and the view's own drawing by this much, without
    // moving the view's frame, background or border (a text field shifts its
    // text to the right this way). Touches follow the shift.
    gfx::Point sublayerTranslation() const { return sublayerTranslation_; }
    void setSublayerTranslation(gfx::Point translation);

    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;

  private:
    friend class View;
    explicit Layer(View& owner) : owner_(owner) {}
    void changed();

    View& owner_;
    double cornerRadius_ = 0;
    double borderWidth_ = 0;
    gfx::Color borderColor_ = gfx::Color::blackColor();
    gfx::Shadow shadow_;
    bool masksToBounds_ = false;
    std::optional<MaskLayer> mask_;
    gfx::Point sublayerTranslation_;
};

} // namespace morvane::ui
