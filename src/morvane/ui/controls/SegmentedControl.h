#pragma once
// A row of segments with titles, one of which may be selected. A touch that
// ends on a segment selects it and sends ValueChanged when the selection
// changed; setting the selection from code sends nothing (a program that wants
// the action fires it with sendActions(ControlEvent::ValueChanged)).

#include <morvane/gfx/Font.h>
#include <morvane/ui/controls/Control.h>

#include <optional>
#include <string>
#include <vector>

namespace morvane::ui {

// How segment titles look in a state; an unset field keeps the default.
struct TextAttributes {
    std::optional<gfx::Font> font;
    std::optional<gfx::Color> color;
};

class SegmentedControl : public Control {
  public:
    static constexpr int kNoSegment = -1;

    explicit SegmentedControl(std::vector<std::string> items = {});

    int numberOfSegments() const { return static_cast<int>(titles_.size()); }
    // Inserts at the index (clamped to 0...count).
    void insertSegment(std::string title, int index);
    void removeSegment(int index);
    void removeAllSegments();
    void setTitle(std::string title, int segment);
    // Nothing for an index out of range.
    std::optional<std::string> titleForSegment(int segment) const;

    int selectedSegmentIndex() const { return selected_; }
    // kNoSegment clears the selection; an index out of range is ignored.
    void setSelectedSegmentIndex(int index);

    // Attributes for the Normal and Selected states.
    void setTitleTextAttributes(const TextAttributes& attributes, ControlState state);
    TextAttributes titleTextAttributes(ControlState state) const;
    const gfx::Color& selectedSegmentTintColor() const { return selectedTint_; }
    void setSelectedSegmentTintColor(const gfx::Color& color);

    // The segment under a point of the bounds, or kNoSegment.
    int segmentAt(gfx::Point point) const;
    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;

  protected:
    void touchEndedInside(const Touch& touch) override;

  private:
    std::vector<std::string> titles_;
    int selected_ = kNoSegment;
    TextAttributes normal_;
    TextAttributes selectedAttributes_;
    gfx::Color selectedTint_ = gfx::Color::whiteColor();
};

} // namespace morvane::ui
