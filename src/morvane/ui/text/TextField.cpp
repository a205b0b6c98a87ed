#include <morvane/ui/text/TextField.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Timer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/text/detail/TextBuffer.h>

#include <algorithm>

namespace morvane::ui {

namespace {
constexpr double kPadding = 7;
const gfx::Color kPlaceholderColor = gfx::Color::gray(0.7);
const gfx::Color kCaretColor = gfx::Color::fromBytes(0, 122, 255);
constexpr double kBlinkHalfPeriod = 0.5;
} // namespace

TextField::TextField() {
    style_.font = gfx::Font::systemFont(gfx::Font::systemFontSize());
    style_.verticalAlignment = gfx::VerticalAlignment::Center;
    style_.lineBreak = gfx::LineBreakMode::Clip;
}

TextField::TextField(const gfx::Rect& frame) : TextField() {
    setFrame(frame);
}

TextField::~TextField() {
    stopBlink();
    if (accessory_) accessory_->removeFromSuperview();
}

void TextField::restartBlink() {
    caretShown_ = true;
    stopBlink();
    if (!editing_) return;
    std::weak_ptr<View> weak = weak_from_this();
    blink_ = sys::Timer::schedule(kBlinkHalfPeriod, sys::Timer::Repeat::Repeating, [weak](sys::Timer& timer) {
        auto self = std::static_pointer_cast<TextField>(weak.lock());
        if (!self || !self->editing_) {
            timer.invalidate();
            return;
        }
        self->caretShown_ = !self->caretShown_;
        self->setNeedsDisplay();
    });
}

void TextField::stopBlink() {
    if (blink_) blink_->invalidate();
    blink_.reset();
}

std::string TextField::textToCopy() const {
    if (secure_) return {};
    if (selection_.length == 0) return text_;
    auto from = detail::byteOffset(text_, selection_.location);
    auto to = detail::byteOffset(text_, selection_.end());
    if (!from || !to) return {};
    return text_.substr(*from, *to - *from);
}

void TextField::setText(std::string text) {
    text_ = std::move(text);
    selection_ = {detail::utf16Length(text_), 0};
    caretShown_ = true;
    setNeedsDisplay();
}

void TextField::setPlaceholder(std::string placeholder) {
    placeholder_ = std::move(placeholder);
    setNeedsDisplay();
}

void TextField::setFont(const gfx::Font& font) {
    style_.font = font;
    setNeedsDisplay();
}

void TextField::setTextColor(const gfx::Color& color) {
    style_.color = color;
    setNeedsDisplay();
}

void TextField::setTextAlignment(gfx::TextAlignment alignment) {
    style_.alignment = alignment;
    setNeedsDisplay();
}

void TextField::setBorderStyle(BorderStyle style) {
    border_ = style;
    setNeedsDisplay();
}

void TextField::setSecureTextEntry(bool secure) {
    secure_ = secure;
    setNeedsDisplay();
}

void TextField::setInputAccessoryView(std::shared_ptr<View> view) {
    if (accessory_) accessory_->removeFromSuperview();
    accessory_ = std::move(view);
    if (editing_) didMoveToWindow();
}

void TextField::setSelectedRange(TextRange range) {
    if (!detail::fits(text_, range)) {
        sys::Log::platform("TextField: a selection outside the text is ignored");
        return;
    }
    selection_ = range;
    setNeedsDisplay();
}

bool TextField::canBecomeFirstResponder() const {
    return isEnabled() && !isHidden();
}

bool TextField::becomeFirstResponder() {
    if (editing_ && isFirstResponder()) return true;
    if (!window() || !canBecomeFirstResponder()) return false;
    if (delegate_ && !delegate_->textFieldShouldBeginEditing(*this)) return false;
    if (!Control::becomeFirstResponder()) return false;
    editing_ = true;
    selection_ = {detail::utf16Length(text_), 0};
    restartBlink();
    didMoveToWindow(); // shows the accessory view
    setNeedsDisplay();
    auto keep = shared_from_this();
    if (delegate_) delegate_->textFieldDidBeginEditing(*this);
    sendActions(ControlEvent::EditingDidBegin);
    return true;
}

bool TextField::resignFirstResponder() {
    if (!editing_) return Control::resignFirstResponder();
    if (isFirstResponder() && delegate_ && !delegate_->textFieldShouldEndEditing(*this)) return false;
    if (!Control::resignFirstResponder()) return false;
    endEditingState();
    return true;
}

void TextField::endEditingState() {
    editing_ = false;
    stopBlink();
    scrollOffset_ = 0;
    if (accessory_) accessory_->removeFromSuperview();
    setNeedsDisplay();
    auto keep = shared_from_this();
    if (delegate_) delegate_->textFieldDidEndEditing(*this);
    sendActions(ControlEvent::EditingDidEnd);
}

void TextField::didMoveToWindow() {
    Window* w = window();
    if (!accessory_) return;
    if (!w || !editing_) {
        accessory_->removeFromSuperview();
        return;
    }
    double height = accessory_->bounds().height;
    accessory_->setFrame({0, w->bounds().height - height, w->bounds().width, height});
    if (accessory_->superview() != w) w->addSubview(accessory_);
}

bool TextField::replace(TextRange range, std::string_view replacement) {
    if (!detail::replaced(text_, range, replacement)) {
        sys::Log::platform("TextField: " + detail::editOutsideText(text_, range));
        return false;
    }
    auto keep = shared_from_this();
    if (delegate_ && !delegate_->shouldChangeCharacters(*this, range, replacement)) return false;
    // The delegate may have changed the text itself; the range must still fit.
    if (!detail::applyEdit(text_, selection_, range, replacement)) return false;
    caretShown_ = true;
    setNeedsDisplay();
    sendActions(ControlEvent::EditingChanged);
    return true;
}

bool TextField::clear() {
    if (delegate_ && !delegate_->textFieldShouldClear(*this)) return false;
    if (text_.empty()) return true;
    text_.clear();
    selection_ = {};
    setNeedsDisplay();
    sendActions(ControlEvent::EditingChanged);
    return true;
}

void TextField::insertText(std::string_view text) {
    if (!editing_) return;
    // A line end typed into a one-line field is a return.
    if (text == "\n" || text == "\r") {
        keyPressed(Key::Return);
        return;
    }
    std::string clean = detail::typedText(text, /*oneLine=*/true);
    if (!clean.empty()) replace(selection_, clean);
}

bool TextField::keyPressed(Key key) {
    if (!editing_) return Control::keyPressed(key);
    std::size_t length = detail::utf16Length(text_);
    caretShown_ = true;
    switch (key) {
    case Key::Tab:
        if (Window* w = window()) return w->focusNextField(*this);
        return false;
    case Key::Return: {
        auto keep = shared_from_this();
        bool accept = !delegate_ || delegate_->textFieldShouldReturn(*this);
        if (accept) sendActions(ControlEvent::EditingDidEndOnExit);
        return true;
    }
    case Key::Backspace:
    case Key::Delete:
        if (auto range = detail::deletionRange(text_, selection_, key)) replace(*range, "");
        return true;
    case Key::Left:
        selection_ = {selection_.length ? selection_.location
                                        : detail::previousBoundary(text_, selection_.location),
                      0};
        setNeedsDisplay();
        return true;
    case Key::Right:
        selection_ = {selection_.length ? selection_.end() : detail::nextBoundary(text_, selection_.location),
                      0};
        setNeedsDisplay();
        return true;
    case Key::Home:
        selection_ = {0, 0};
        setNeedsDisplay();
        return true;
    case Key::End:
        selection_ = {length, 0};
        setNeedsDisplay();
        return true;
    default:
        return Control::keyPressed(key);
    }
}

void TextField::touchEndedInside(const Touch&) {
    becomeFirstResponder();
}

gfx::Rect TextField::textRect() const {
    gfx::Rect b = bounds();
    double inset = border_ == BorderStyle::None ? 0 : kPadding;
    // Text shifted right by the layer shows in less of the width.
    double shifted = std::max(0.0, layer().sublayerTranslation().x);
    return {inset, 0, std::max(0.0, b.width - 2 * inset - shifted), b.height};
}

gfx::Size TextField::sizeThatFits(gfx::Size) const {
    gfx::Size text = gfx::TextMetrics::size(text_.empty() ? placeholder_ : text_, style_.font);
    double inset = border_ == BorderStyle::None ? 0 : kPadding;
    return {text.width + 2 * inset + 2, std::max(text.height + 8, 30.0)};
}

void TextField::draw(gfx::Canvas& canvas, const gfx::Rect& rect) {
    if (border_ == BorderStyle::RoundedRect) {
        canvas.fillRoundedRect(rect, 5, gfx::Color::whiteColor());
        canvas.strokeRoundedRect(rect.insetBy(0.25, 0.25), 5, gfx::Color::gray(0.8), 0.5);
    } else if (border_ == BorderStyle::Line) {
        canvas.strokeRect(rect.insetBy(0.5, 0.5), gfx::Color::gray(0.2), 1);
    }
    gfx::Rect area = textRect();
    std::string shown = secure_ ? detail::bullets(text_) : text_;
    if (shown.empty() && !placeholder_.empty()) {
        gfx::TextStyle placeholderStyle = style_;
        placeholderStyle.color = kPlaceholderColor;
        canvas.drawText(placeholder_, area, placeholderStyle);
    }
    double full = shown.empty() ? 0 : gfx::TextMetrics::size(shown, style_.font).width;
    // The caret: after the text before it, placed as the alignment places the line.
    double caret = 0;
    if (editing_) {
        std::string before = detail::textBefore(text_, selection_.location);
        if (secure_) before = detail::bullets(before);
        caret = gfx::TextMetrics::size(before, style_.font).width;
    }
    double lineStart = area.x;
    if (full + 2 > area.width) {
        // Too wide for the field: left aligned, scrolled just enough to keep
        // the caret in sight (the end of the text when not editing).
        if (!editing_) caret = full;
        scrollOffset_ = std::min(std::max(scrollOffset_, caret + 2 - area.width), caret);
        scrollOffset_ = std::min(std::max(scrollOffset_, 0.0), full + 2 - area.width);
        lineStart = area.x - scrollOffset_;
        if (!shown.empty()) {
            gfx::Canvas::SavedState saved(canvas);
            canvas.clipToRect(area);
            gfx::TextStyle style = style_;
            style.alignment = gfx::TextAlignment::Left;
            canvas.drawText(shown, {lineStart, area.y, full + 2, area.height}, style);
        }
    } else {
        scrollOffset_ = 0;
        if (!shown.empty()) canvas.drawText(shown, area, style_);
        if (style_.alignment == gfx::TextAlignment::Center)
            lineStart += (area.width - full) / 2;
        else if (style_.alignment == gfx::TextAlignment::Right)
            lineStart += area.width - full;
    }
    if (!editing_ || !caretShown_) return;
    double x = lineStart + caret;
    double lineHeight = gfx::TextMetrics::size("Ag", style_.font).height;
    double top = area.y + (area.height - lineHeight) / 2;
    canvas.fillRect({std::min(x, area.x + area.width - 2), top, 2, lineHeight}, kCaretColor);
}

} // namespace morvane::ui
