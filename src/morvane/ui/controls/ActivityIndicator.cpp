#include <morvane/ui/controls/ActivityIndicator.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/sys/Clock.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace morvane::ui {

namespace {

constexpr int kSpokes = 12;
constexpr double kTurnsPerSecond = 1;

} // namespace

ActivityIndicator::ActivityIndicator(Style style) : style_(style) {
    setUserInteractionEnabled(false);
    gfx::Size size = sizeThatFits({});
    setFrame({0, 0, size.width, size.height});
    setHidden(true);
}

ActivityIndicator::~ActivityIndicator() = default;

void ActivityIndicator::setStyle(Style style) {
    if (style == style_) return;
    style_ = style;
    gfx::Size size = sizeThatFits({});
    gfx::Point c = center();
    setBounds({bounds().x, bounds().y, size.width, size.height});
    setCenter(c);
}

void ActivityIndicator::setColor(const gfx::Color& color) {
    color_ = color;
    setNeedsDisplay();
}

void ActivityIndicator::setHidesWhenStopped(bool hides) {
    hidesWhenStopped_ = hides;
    if (hides && !animating_) setHidden(true);
}

void ActivityIndicator::startAnimating() {
    if (animating_) return;
    animating_ = true;
    // The spokes step round with the clock alone: every frame draws them again.
    setAnimatesContinuously(true);
    if (hidesWhenStopped_) setHidden(false);
    setNeedsDisplay();
}

void ActivityIndicator::stopAnimating() {
    if (!animating_) return;
    animating_ = false;
    setAnimatesContinuously(false);
    if (hidesWhenStopped_) setHidden(true);
    setNeedsDisplay();
}

gfx::Size ActivityIndicator::sizeThatFits(gfx::Size) const {
    return style_ == Style::Large ? gfx::Size{37, 37} : gfx::Size{20, 20};
}

void ActivityIndicator::draw(gfx::Canvas& canvas, const gfx::Rect& rect) {
    // The spinner keeps its style's size, centred, however large its view:
    // a screen-filling indicator (a busy overlay) shows a spinner, not spokes
    // across the screen.
    double side = std::min({rect.width, rect.height, sizeThatFits({}).width});
    if (side <= 0) return;
    gfx::Point c = rect.center();
    double outer = side / 2;
    double inner = outer * 0.45;
    double thickness = std::max(1.0, side * 0.09);
    // The brightest spoke steps round with the clock; the ones behind it fade.
    int lead = 0;
    if (animating_)
        lead = static_cast<int>(std::floor(sys::Clock::now() * kTurnsPerSecond * kSpokes)) % kSpokes;
    for (int i = 0; i < kSpokes; ++i) {
        double angle = 2 * std::numbers::pi * i / kSpokes - std::numbers::pi / 2;
        int behind = (lead - i + kSpokes) % kSpokes;
        double alpha = animating_ ? 1.0 - 0.75 * behind / (kSpokes - 1) : 1.0 - 0.75 * i / (kSpokes - 1);
        gfx::Point from{c.x + std::cos(angle) * inner, c.y + std::sin(angle) * inner};
        gfx::Point to{c.x + std::cos(angle) * (outer - thickness / 2),
                      c.y + std::sin(angle) * (outer - thickness / 2)};
        gfx::Path spoke;
        spoke.moveTo(from);
        spoke.lineTo(to);
        canvas.strokePath(spoke, color_.withAlpha(color_.alpha * alpha), thickness);
    }
}

} // namespace morvane::ui
