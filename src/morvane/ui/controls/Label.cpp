#include <morvane/ui/controls/Label.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/TextMetrics.h>

namespace morvane::ui {

Label::Label() {
    setUserInteractionEnabled(false);
    style_.verticalAlignment = gfx::VerticalAlignment::Center;
}

Label::Label(const gfx::Rect& frame) : Label() {
    setFrame(frame);
}

void Label::setText(std::string text) {
    if (text == text_ && !attributedText_) return;
    text_ = std::move(text);
    attributedText_.reset();
    setNeedsDisplay();
}

void Label::setAttributedText(std::optional<gfx::AttributedText> text) {
    text_ = text ? text->string() : std::string();
    attributedText_ = std::move(text);
    setNeedsDisplay();
}

void Label::setFont(const gfx::Font& font) {
    style_.font = font;
    setNeedsDisplay();
}

void Label::setTextColor(const gfx::Color& color) {
    style_.color = color;
    setNeedsDisplay();
}

void Label::setTextAlignment(gfx::TextAlignment alignment) {
    style_.alignment = alignment;
    setNeedsDisplay();
}

void Label::setNumberOfLines(int lines) {
    style_.numberOfLines = lines < 0 ? 0 : lines;
    setNeedsDisplay();
}

void Label::setLineBreakMode(gfx::LineBreakMode mode) {
    style_.lineBreak = mode;
    setNeedsDisplay();
}

gfx::Size Label::sizeThatFits(gfx::Size size) const {
    if (style_.numberOfLines == 1 || !(size.width > 0)) {
        return attributedText_ ? gfx::TextMetrics::size(*attributedText_)
                               : gfx::TextMetrics::size(text_, style_.font);
    }
    return attributedText_ ? gfx::TextMetrics::boundingSize(*attributedText_, size.width)
                           : gfx::TextMetrics::boundingSize(text_, style_.font, size.width);
}

void Label::draw(gfx::Canvas& canvas, const gfx::Rect& rect) {
    if (attributedText_)
        canvas.drawText(*attributedText_, rect, style_);
    else if (!text_.empty())
        canvas.drawText(text_, rect, style_);
}

} // namespace morvane::ui
