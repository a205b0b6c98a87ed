#pragma once
// A spinner that shows work in progress: twelve spokes fading round a centre,
// turning once a second on the kit's clock while animating. Stopped, it hides
// itself (unless hidesWhenStopped is off). A running spinner keeps the window
// host drawing frames.

#include <morvane/ui/core/View.h>

namespace morvane::ui {

class ActivityIndicator : public View {
  public:
    enum class Style { Medium, Large };

    explicit ActivityIndicator(Style style = Style::Medium);
    ~ActivityIndicator() override;

    Style style() const { return style_; }
    // Also resizes the view to the style's size, keeping its centre.
    void setStyle(Style style);
    const gfx::Color& color() const { return color_; }
    void setColor(const gfx::Color& color);
    bool hidesWhenStopped() const { return hidesWhenStopped_; }
    void setHidesWhenStopped(bool hides);

    void startAnimating();
    void stopAnimating();
    bool isAnimating() const { return animating_; }

    // The style's size: 37 points square for large, 20 for medium.
    gfx::Size sizeThatFits(gfx::Size size) const override;
    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;

  private:
    Style style_;
    gfx::Color color_ = gfx::Color::grayColor();
    bool hidesWhenStopped_ = true;
    bool animating_ = false;
};

} // namespace morvane::ui
