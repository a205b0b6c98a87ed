#pragma once
// Small helpers shared by the view-layer tests.

#include <morvane/ui/core/Touch.h>
#include <morvane/ui/core/View.h>

#include <memory>
#include <string>
#include <vector>

namespace morvane::ui::testing {

// Records every hook call as "<name>:<event>" into a shared journal.
class RecordingView : public View {
  public:
    RecordingView(std::string name, std::vector<std::string>& journal, const gfx::Rect& frame = {})
        : View(frame), name_(std::move(name)), journal_(journal) {}

    void touchesBegan(const Touches& touches) override {
        journal_.push_back(name_ + ":began");
        lastLocation = touches.front().locationIn(this);
    }
    void touchesMoved(const Touches&) override { journal_.push_back(name_ + ":moved"); }
    void touchesEnded(const Touches& touches) override {
        journal_.push_back(name_ + ":ended");
        lastLocation = touches.front().locationIn(this);
    }
    void touchesCancelled(const Touches&) override { journal_.push_back(name_ + ":cancelled"); }

    gfx::Point lastLocation;

  protected:
    void layoutSubviews() override { journal_.push_back(name_ + ":layout"); }

  private:
    std::string name_;
    std::vector<std::string>& journal_;
};

inline std::shared_ptr<View> makeView(const gfx::Rect& frame) {
    return std::make_shared<View>(frame);
}

// A plain view filled with one colour.
inline std::shared_ptr<View> box(const gfx::Rect& frame, const gfx::Color& color) {
    auto view = std::make_shared<View>(frame);
    view->setBackgroundColor(color);
    return view;
}

} // namespace morvane::ui::testing
