#pragma once
// The spinner above a scroll view's content that starts a refresh when the
// content is pulled down past a threshold. It sends ValueChanged once per
// pull and shows itself refreshing until endRefreshing.
//
//   auto refresh = std::make_shared<ui::RefreshControl>();
//   refresh->addAction(ui::ControlEvent::ValueChanged, [](ui::Control&) { reload(); });
//   table->setRefreshControl(refresh);
//   ... later: refresh->endRefreshing();

#include <morvane/ui/controls/Control.h>

#include <memory>

namespace morvane::ui {

class ActivityIndicator;
class ScrollView;

class RefreshControl : public Control {
  public:
    // The control's height, and how far the content must be pulled past its top to fire.
    static constexpr double kHeight = 60;
    static constexpr double kThreshold = 80;

    RefreshControl();

    const gfx::Color& tintColor() const { return tint_; }
    void setTintColor(const gfx::Color& color);
    bool isRefreshing() const { return refreshing_; }
    // Shows the spinner and keeps room for it above the content (no event is sent).
    void beginRefreshing();
    // Hides the spinner and gives the room back.
    void endRefreshing();

    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;

  protected:
    void layoutSubviews() override;

  private:
    friend class ScrollView;
    // Called by the scroll view as the content moves and when the touch ends.
    void pulled(double distance, bool dragging);
    void touchEnded();

    gfx::Color tint_ = gfx::Color::grayColor();
    bool refreshing_ = false;
    // A pull fires once: armed again only when the finger lifts.
    bool firedThisPull_ = false;
    double pullDistance_ = 0;
    std::shared_ptr<ActivityIndicator> spinner_;
};

} // namespace morvane::ui
