#pragma once
// A bar of items laid out left to right: buttons at their title's width,
// fixed spaces at theirs, and flexible spaces sharing what is left. A tap on
// a button item runs the item's action. A text field's keyboard accessory
// (flexible space, then Done) is the typical use.

#include <morvane/ui/core/View.h>

#include <memory>
#include <vector>

namespace morvane::ui {

class Toolbar : public View {
  public:
    static constexpr double kDefaultHeight = 44;

    Toolbar();
    explicit Toolbar(const gfx::Rect& frame);

    const std::vector<std::shared_ptr<BarButtonItem>>& items() const { return items_; }
    void setItems(std::vector<std::shared_ptr<BarButtonItem>> items);
    // The colour of the items' titles.
    const gfx::Color& tintColor() const { return tint_; }
    void setTintColor(const gfx::Color& color);

    // The button that shows the item at the index; null for spaces.
    Button* buttonForItem(std::size_t index) const;

    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;

  protected:
    void layoutSubviews() override;

  private:
    std::vector<std::shared_ptr<BarButtonItem>> items_;
    std::vector<std::shared_ptr<Button>> buttons_; // parallel to items_, null for spaces
    gfx::Color tint_{0, 0.478, 1};
};

} // namespace morvane::ui
