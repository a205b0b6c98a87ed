#pragma once
// A view that shows a text, plain (one font and colour) or attributed (runs
// with their own fonts and colours), centred vertically in its bounds. Labels
// do not take touches unless asked to.

#include <morvane/gfx/AttributedText.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextStyle.h>
#include <morvane/ui/core/View.h>

#include <optional>
#include <string>

namespace morvane::ui {

class Label : public View {
  public:
    Label();
    explicit Label(const gfx::Rect& frame);

    const std::string& text() const { return text_; }
    // Sets a plain text; it replaces an attributed text.
    void setText(std::string text);
    const std::optional<gfx::AttributedText>& attributedText() const { return attributedText_; }
    // Sets an attributed text; text() becomes its plain string.
    void setAttributedText(std::optional<gfx::AttributedText> text);

    const gfx::Font& font() const { return style_.font; }
    void setFont(const gfx::Font& font);
    const gfx::Color& textColor() const { return style_.color; }
    void setTextColor(const gfx::Color& color);
    gfx::TextAlignment textAlignment() const { return style_.alignment; }
    void setTextAlignment(gfx::TextAlignment alignment);
    // 0: as many lines as the bounds hold.
    int numberOfLines() const { return style_.numberOfLines; }
    void setNumberOfLines(int lines);
    gfx::LineBreakMode lineBreakMode() const { return style_.lineBreak; }
    void setLineBreakMode(gfx::LineBreakMode mode);

    // The text's size: one line, or wrapped to the width when lines are allowed.
    gfx::Size sizeThatFits(gfx::Size size) const override;
    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;

  private:
    std::string text_;
    std::optional<gfx::AttributedText> attributedText_;
    gfx::TextStyle style_;
};

} // namespace morvane::ui
