#include <morvane/ui/controls/RefreshControl.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/ui/collections/ScrollView.h>
#include <morvane/ui/controls/ActivityIndicator.h>

#include <algorithm>
#include <cmath>

namespace morvane::ui {

RefreshControl::RefreshControl() {
    spinner_ = std::make_shared<ActivityIndicator>(ActivityIndicator::Style::Medium);
    spinner_->setColor(tint_);
    addSubview(spinner_);
}

void RefreshControl::setTintColor(const gfx::Color& color) {
    tint_ = color;
    spinner_->setColor(color);
    setNeedsDisplay();
}

void RefreshControl::beginRefreshing() {
    if (refreshing_) return;
    refreshing_ = true;
    spinner_->startAnimating();
    setNeedsDisplay();
    if (auto* scroll = dynamic_cast<ScrollView*>(superview())) scroll->refreshInsetChanged();
}

void RefreshControl::endRefreshing() {
    if (!refreshing_) return;
    refreshing_ = false;
    spinner_->stopAnimating();
    setNeedsDisplay();
    if (auto* scroll = dynamic_cast<ScrollView*>(superview())) scroll->refreshInsetChanged();
}

void RefreshControl::pulled(double distance, bool dragging) {
    if (distance == pullDistance_) return;
    pullDistance_ = distance;
    setNeedsDisplay();
    if (!dragging || refreshing_ || firedThisPull_ || distance < kThreshold) return;
    firedThisPull_ = true;
    refreshing_ = true;
    spinner_->startAnimating();
    sendActions(ControlEvent::ValueChanged);
}

void RefreshControl::touchEnded() {
    firedThisPull_ = false;
}

void RefreshControl::layoutSubviews() {
    spinner_->sizeToFit();
    spinner_->setCenter(bounds().center());
}

void RefreshControl::draw(gfx::Canvas& canvas, const gfx::Rect& rect) {
    // While pulled but not refreshing: a ring that closes as the pull nears the threshold.
    if (refreshing_ || pullDistance_ <= 0) return;
    double progress = std::clamp(pullDistance_ / kThreshold, 0.0, 1.0);
    gfx::Point c = rect.center();
    int spokes = static_cast<int>(std::round(progress * 12));
    for (int i = 0; i < spokes; ++i) {
        double angle = -M_PI / 2 + i * M_PI / 6;
        canvas.drawLine({c.x + 5 * std::cos(angle), c.y + 5 * std::sin(angle)},
                        {c.x + 9 * std::cos(angle), c.y + 9 * std::sin(angle)}, tint_, 2);
    }
}

} // namespace morvane::ui
