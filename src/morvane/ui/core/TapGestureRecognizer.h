#pragma once
// Recognises a tap (a touch that ends within a few points of where it began,
// with enough taps in a row) on its view or any of its descendants, and runs
// its actions. A control below the recognising view keeps its own taps.
//
//   auto tap = ui::TapGestureRecognizer::create([](ui::GestureRecognizer& r) { ... });
//   view->addGestureRecognizer(tap);

#include <morvane/ui/core/GestureRecognizer.h>

#include <memory>

namespace morvane::ui {

class TapGestureRecognizer : public GestureRecognizer {
  public:
    // A touch that moves farther than this from where it began is no tap.
    static constexpr double kMaximumMovement = 10;

    TapGestureRecognizer() = default;
    explicit TapGestureRecognizer(Action action) { addTarget(std::move(action)); }
    static std::shared_ptr<TapGestureRecognizer> create(Action action);

    int numberOfTapsRequired() const { return tapsRequired_; }
    void setNumberOfTapsRequired(int taps) { tapsRequired_ = taps < 1 ? 1 : taps; }

    bool yieldsToControls() const override { return true; }

  protected:
    void touchBegan(const Touch& touch) override;
    void touchMoved(const Touch& touch) override;
    void touchEnded(const Touch& touch) override;

  private:
    int tapsRequired_ = 1;
    gfx::Point start_;
};

} // namespace morvane::ui
