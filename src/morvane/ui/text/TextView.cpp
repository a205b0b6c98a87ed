#include <morvane/ui/text/TextView.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/sys/Log.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/text/detail/TextBuffer.h>

#include <algorithm>
#include <cmath>

namespace morvane::ui {

namespace {
const gfx::Color kCaretColor = gfx::Color::fromBytes(0, 122, 255);
// The container's own padding at the line ends, as on the platform.
constexpr double kLinePadding = 5;
} // namespace

TextView::TextView() {
    style_.font = gfx::Font::systemFont(gfx::Font::systemFontSize());
    style_.numberOfLines = 0;
    style_.lineBreak = gfx::LineBreakMode::WordWrap;
    setBackgroundColor(gfx::Color::whiteColor());
    setShowsHorizontalScrollIndicator(false);
}

TextView::TextView(const gfx::Rect& frame) : TextView() {
    setFrame(frame);
}

void TextView::setText(std::string text) {
    text_ = std::move(text);
    selection_ = {detail::utf16Length(text_), 0};
    textChanged();
}

void TextView::setFont(const gfx::Font& font) {
    style_.font = font;
    textChanged();
}

void TextView::setTextColor(const gfx::Color& color) {
    style_.color = color;
    setNeedsDisplay();
}

void TextView::setTextAlignment(gfx::TextAlignment alignment) {
    style_.alignment = alignment;
    setNeedsDisplay();
}

void TextView::setEditable(bool editable) {
    editable_ = editable;
    if (!editable && editing_) resignFirstResponder();
}

void TextView::setTextContainerInset(const gfx::Insets& inset) {
    inset_ = inset;
    textChanged();
}

void TextView::setMaximumNumberOfLines(int lines) {
    style_.numberOfLines = std::max(0, lines);
    style_.lineBreak = lines > 0 ? gfx::LineBreakMode::TruncateTail : gfx::LineBreakMode::WordWrap;
    textChanged();
}

void TextView::setSecureTextEntry(bool secure) {
    secure_ = secure;
    textChanged();
}

void TextView::setDelegate(TextViewDelegate* delegate) {
    delegate_ = delegate;
    ScrollView::setDelegate(delegate);
}

std::string TextView::shownText() const {
    return secure_ ? detail::bullets(text_) : text_;
}

void TextView::textChanged() {
    setNeedsLayout();
    setNeedsDisplay();
}

void TextView::layoutSubviews() {
    ScrollView::layoutSubviews();
    double width = std::max(0.0, bounds().width - inset_.left - inset_.right - 2 * kLinePadding);
    gfx::Size text = gfx::TextMetrics::boundingSize(shownText().empty() ? std::string("A") : shownText(),
                                                    style_.font, width);
    if (style_.numberOfLines > 0) {
        double line = gfx::TextMetrics::size("Ag", style_.font).height;
        text.height = std::min(text.height, line * style_.numberOfLines);
    }
    setContentSize({bounds().width, text.height + inset_.top + inset_.bottom});
}

gfx::Size TextView::sizeThatFits(gfx::Size size) const {
    double width = std::max(0.0, size.width - inset_.left - inset_.right - 2 * kLinePadding);
    gfx::Size text = gfx::TextMetrics::boundingSize(shownText().empty() ? std::string("A") : shownText(),
                                                    style_.font, width);
    return {size.width, text.height + inset_.top + inset_.bottom};
}

void TextView::setSelectedRange(TextRange range) {
    if (!detail::fits(text_, range)) {
        sys::Log::platform("TextView: a selection outside the text is ignored");
        return;
    }
    selection_ = range;
    setNeedsDisplay();
    if (delegate_) delegate_->textViewDidChangeSelection(*this);
}

bool TextView::canBecomeFirstResponder() const {
    return editable_ && !isHidden();
}

bool TextView::becomeFirstResponder() {
    if (editing_ && isFirstResponder()) return true;
    if (!window() || !canBecomeFirstResponder()) return false;
    if (delegate_ && !delegate_->textViewShouldBeginEditing(*this)) return false;
    if (!ScrollView::becomeFirstResponder()) return false;
    editing_ = true;
    setNeedsDisplay();
    auto keep = shared_from_this();
    if (delegate_) delegate_->textViewDidBeginEditing(*this);
    return true;
}

bool TextView::resignFirstResponder() {
    if (!editing_) return ScrollView::resignFirstResponder();
    if (isFirstResponder() && delegate_ && !delegate_->textViewShouldEndEditing(*this)) return false;
    if (!ScrollView::resignFirstResponder()) return false;
    editing_ = false;
    setNeedsDisplay();
    auto keep = shared_from_this();
    if (delegate_) delegate_->textViewDidEndEditing(*this);
    return true;
}

bool TextView::replace(TextRange range, std::string_view replacement) {
    if (!detail::replaced(text_, range, replacement)) {
        sys::Log::platform("TextView: " + detail::editOutsideText(text_, range));
        return false;
    }
    auto keep = shared_from_this();
    if (delegate_ && !delegate_->shouldChangeText(*this, range, replacement)) return false;
    if (!detail::applyEdit(text_, selection_, range, replacement)) return false;
    textChanged();
    if (delegate_) delegate_->textViewDidChange(*this);
    return true;
}

std::string TextView::textToCopy() const {
    if (secure_) return {};
    if (selection_.length == 0) return text_;
    auto from = detail::byteOffset(text_, selection_.location);
    auto to = detail::byteOffset(text_, selection_.end());
    if (!from || !to) return {};
    return text_.substr(*from, *to - *from);
}

void TextView::insertText(std::string_view text) {
    if (!editing_) return;
    std::string clean = detail::typedText(text, /*oneLine=*/false);
    if (!clean.empty()) replace(selection_, clean);
}

bool TextView::keyPressed(Key key) {
    if (!editing_) return ScrollView::keyPressed(key);
    std::size_t length = detail::utf16Length(text_);
    switch (key) {
    case Key::Return:
        replace(selection_, "\n");
        return true;
    case Key::Backspace:
    case Key::Delete:
        if (auto range = detail::deletionRange(text_, selection_, key)) replace(*range, "");
        return true;
    case Key::Left:
        setSelectedRange({detail::previousBoundary(text_, selection_.location), 0});
        return true;
    case Key::Right:
        setSelectedRange({detail::nextBoundary(text_, selection_.end()), 0});
        return true;
    case Key::Tab:
        if (Window* w = window()) return w->focusNextField(*this);
        return false;
    case Key::Home:
        setSelectedRange({0, 0});
        return true;
    case Key::End:
        setSelectedRange({length, 0});
        return true;
    default:
        return ScrollView::keyPressed(key);
    }
}

void TextView::contentTapped(gfx::Point) {
    if (editable_) becomeFirstResponder();
}

void TextView::draw(gfx::Canvas& canvas, const gfx::Rect& rect) {
    gfx::Rect area{inset_.left + kLinePadding, inset_.top,
                   std::max(0.0, rect.width - inset_.left - inset_.right - 2 * kLinePadding),
                   std::max(0.0, contentSize().height - inset_.top - inset_.bottom)};
    std::string shown = shownText();
    if (!shown.empty()) canvas.drawText(shown, area, style_);
    if (!editing_) return;
    // The caret: below the lines before it, after the text of its own line.
    // Soft-wrapped lines are measured as the text up to the caret wraps.
    std::string before = detail::textBefore(text_, selection_.location);
    if (secure_) before = detail::bullets(before);
    double line = gfx::TextMetrics::size("Ag", style_.font).height;
    std::size_t lineStart = before.rfind('\n');
    std::string lastLine = lineStart == std::string::npos ? before : before.substr(lineStart + 1);
    int lines = before.empty() ? 1 : gfx::TextMetrics::lineCount(before + "|", style_.font, area.width);
    double x = gfx::TextMetrics::size(lastLine, style_.font).width;
    if (x > area.width && area.width > 0) x = std::fmod(x, area.width);
    // Centred and right-aligned lines start where their whole line puts them.
    if (style_.alignment != gfx::TextAlignment::Left) {
        const std::string shownAll = secure_ ? detail::bullets(text_) : text_;
        const std::size_t from = lineStart == std::string::npos ? 0 : lineStart + 1;
        const std::size_t to = shownAll.find('\n', from);
        const double whole =
            gfx::TextMetrics::size(
                shownAll.substr(from, to == std::string::npos ? std::string::npos : to - from), style_.font)
                .width;
        if (whole <= area.width) { // a line that does not wrap
            const double room = area.width - whole;
            x += style_.alignment == gfx::TextAlignment::Center ? room / 2 : room;
        }
    }
    double y = area.y + (std::max(1, lines) - 1) * line;
    canvas.fillRect({area.x + std::min(x, area.width), y, 2, line}, kCaretColor);
}

} // namespace morvane::ui
