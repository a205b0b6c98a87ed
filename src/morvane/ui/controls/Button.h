#pragma once
// A custom button: a title and an image per state, laid out side by side by
// the content alignments, and actions per control event (touch up inside is
// the press). While pressed it dims its title and image. The title label and
// image view are ordinary subviews that a subclass may place itself in its
// own layoutSubviews after the base layout.
//
//   auto ok = std::make_shared<ui::Button>(gfx::Rect{20, 700, 350, 50});
//   ok->setTitle("Book now");
//   ok->addAction(ui::ControlEvent::TouchUpInside, [](ui::Control&) { book(); });

#include <morvane/gfx/AttributedText.h>
#include <morvane/gfx/Image.h>
#include <morvane/ui/controls/Control.h>

#include <array>
#include <memory>
#include <optional>
#include <string>

namespace morvane::ui {

class Button : public Control {
  public:
    Button();
    explicit Button(const gfx::Rect& frame);

    // Per-state values; a state without its own value uses the normal one.
    void setTitle(std::optional<std::string> title, ControlState state = ControlState::Normal);
    std::optional<std::string> titleForState(ControlState state) const;
    void setTitleColor(std::optional<gfx::Color> color, ControlState state = ControlState::Normal);
    gfx::Color titleColorForState(ControlState state) const;
    // A styled title (runs of their own fonts and colours) shown in every
    // state in place of the plain titles; nothing returns to them.
    void setAttributedTitle(std::optional<gfx::AttributedText> title);
    const std::optional<gfx::AttributedText>& attributedTitle() const { return attributedTitle_; }
    void setImage(gfx::Image image, ControlState state = ControlState::Normal);
    gfx::Image imageForState(ControlState state) const;

    // What the button shows in its current state.
    std::string currentTitle() const { return titleForState(state()).value_or(""); }
    gfx::Image currentImage() const { return imageForState(state()); }

    // The label (font, lines, alignment) and the image view the button shows.
    Label* titleLabel() const { return titleLabel_.get(); }
    ImageView* imageView() const { return imageView_.get(); }

    gfx::Size sizeThatFits(gfx::Size size) const override;

  protected:
    void layoutSubviews() override;
    void stateChanged() override;

  private:
    static std::size_t slot(ControlState state) { return static_cast<std::size_t>(state); }
    void refresh();

    std::array<std::optional<std::string>, 4> titles_;
    std::array<std::optional<gfx::Color>, 4> titleColors_;
    std::array<gfx::Image, 4> images_;
    std::optional<gfx::AttributedText> attributedTitle_;
    std::shared_ptr<Label> titleLabel_;
    std::shared_ptr<ImageView> imageView_;
};

} // namespace morvane::ui
