#include <morvane/flight/UIFltTiny.h>

#include <morvane/gfx/Font.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/text/detail/TextBuffer.h>
#include <morvane/util/Dates.h>

namespace morvane {

namespace {

const gfx::Color kWhite = gfx::Color::whiteColor();

// Plain buttons used as labels: they show text and take no touches.
std::shared_ptr<ui::Button> labelButton(const gfx::Font& font) {
    auto b = std::make_shared<ui::Button>();
    b->titleLabel()->setFont(font);
    b->setTitleColor(kWhite);
    b->setUserInteractionEnabled(false);
    return b;
}

} // namespace

UIFltTiny::UIFltTiny(const gfx::Rect& frame) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double s = gfx::Font::systemFontSize();
    title_ = labelButton(gfx::Font::boldSystemFont(s));
    title_->setContentVerticalAlignment(ui::ContentVerticalAlignment::Bottom);
    addSubview(title_);
    login_ = labelButton(gfx::Font::boldSystemFont(1.5 * s));
    login_->setContentVerticalAlignment(ui::ContentVerticalAlignment::Top);
    login_->setContentHorizontalAlignment(ui::ContentHorizontalAlignment::Center);
    login_->titleLabel()->setNumberOfLines(2);
    login_->titleLabel()->setTextAlignment(gfx::TextAlignment::Center);
    addSubview(login_);
}

std::shared_ptr<UIFltTiny> UIFltTiny::initWithTitle(std::string_view caption) {
    auto row = std::make_shared<UIFltTiny>();
    row->title_->setTitle(std::string(caption));
    return row;
}

bool UIFltTiny::begin(const std::optional<std::string>& caption, const Value& value) {
    MORVANE_ASSERT_MAIN_THREAD();
    login_->setAttributedTitle(std::nullopt);
    login_->setTitle("");
    if (!value.isText()) return false;
    if (caption) title_->setTitle(*caption);
    return true;
}

void UIFltTiny::addData(const std::optional<std::string>& caption, const Value& value) {
    if (!begin(caption, value)) return;
    const std::string& text = *value.text();
    // Lengths count UTF-16 units, as the kit's texts always have.
    login_->setAttributedTitle(ui::detail::utf16Length(text) < kLongText ? timeTxt(text)
                                                                         : longTxt(text, 0.6));
}

void UIFltTiny::addDataBreak(const std::optional<std::string>& caption, const Value& value) {
    if (!begin(caption, value)) return;
    login_->setAttributedTitle(longTxt(evenText(*value.text()), 0.5));
}

void UIFltTiny::addData(const std::optional<std::string>& caption, const Value& value, const Value& remark) {
    if (!begin(caption, value)) return;
    const std::string& text = *value.text();
    if (const std::string* zone = remark.text(); zone && ui::detail::utf16Length(*zone) < kLongRemark)
        login_->setAttributedTitle(timeTxt(text, *zone));
    else
        login_->setAttributedTitle(timeTxt(text));
}

gfx::AttributedText UIFltTiny::timeTxt(std::string_view text) {
    return gfx::AttributedText(std::string(text), gfx::Font::boldSystemFont(gfx::Font::systemFontSize()),
                               kWhite);
}

gfx::AttributedText UIFltTiny::timeTxt(std::string_view value, std::string_view remark) {
    const double s = gfx::Font::systemFontSize();
    gfx::AttributedText out(std::string(value), gfx::Font::boldSystemFont(s), kWhite);
    out.append(" ", gfx::Font::boldSystemFont(s), kWhite);
    out.append(std::string(remark), gfx::Font::fontWithName(kRemarkFont, 0.5 * s), kWhite);
    return out;
}

gfx::AttributedText UIFltTiny::longTxt(std::string_view text, double factor) {
    return gfx::AttributedText(std::string(text),
                               gfx::Font::italicSystemFont(gfx::Font::systemFontSize() * factor), kWhite);
}

std::string UIFltTiny::evenText(std::string_view text) {
    const std::size_t half = text.size() / 2;
    std::size_t blank = half == 0 ? std::string_view::npos : text.rfind(' ', half - 1);
    if (blank == std::string_view::npos) blank = text.find(' ', half);
    if (blank == std::string_view::npos) return std::string(text);
    const std::string first(text.substr(0, blank)), second(text.substr(blank + 1));
    sys::Log::platform("First part: " + first);
    sys::Log::platform("Second part: " + second);
    return first + "\n" + second;
}

std::optional<double> UIFltTiny::isDate(std::string_view text) {
    return Dates::textToDate(text, "d MMMM yyyy");
}

void UIFltTiny::addBorder(ui::View& view, double width) {
    view.layer().setBorderColor(kWhite);
    view.layer().setBorderWidth(width);
}

void UIFltTiny::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, s = gfx::Font::systemFontSize();
    title_->setFrame({0, 0, w, h / 2});
    login_->setFrame({0, h / 2, w, h / 2});
    if (w > 4 * h) {
        title_->titleLabel()->setFont(gfx::Font::systemFont(s));
        login_->titleLabel()->setFont(gfx::Font::italicSystemFont(0.6 * s));
    } else {
        title_->titleLabel()->setFont(gfx::Font::systemFont(0.7 * s));
        login_->titleLabel()->setFont(gfx::Font::boldSystemFont(s));
    }
}

} // namespace morvane
