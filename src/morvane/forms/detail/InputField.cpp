#include <morvane/forms/detail/InputField.h>

#include <morvane/forms/detail/LabelledField.h>
#include <morvane/forms/detail/Strips.h>
#include <morvane/gfx/Font.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/text/detail/TextBuffer.h>

namespace morvane::detail {

InputField::InputField(std::string_view name, std::optional<std::string_view> image, bool password)
    : ui::View(gfx::Rect{}) {
    const double f = gfx::Font::systemFontSize();
    title_ =
        makeStrip(gfx::Font::boldSystemFont(0.9 * f), gfx::Color::whiteColor(), gfx::Color::clearColor());
    addSubview(title_);
    txt_ = std::make_shared<ui::TextView>();
    txt_->setDelegate(this);
    txt_->setSecureTextEntry(password);
    txt_->setBackgroundColor(gfx::Color::whiteColor());
    txt_->setFont(gfx::Font::systemFont(f));
    txt_->setTextColor(gfx::Color::blackColor());
    txt_->layer().setBorderWidth(1);
    txt_->layer().setBorderColor(gfx::Color::lightTextColor());
    addSubview(txt_);
    setClipsToBounds(true);
    error_ = makeStrip(gfx::Font::boldSystemFont(0.6 * f), gfx::Color::whiteColor(), gfx::Color::redColor());
    addSubview(error_);
    toaster_ =
        makeStrip(gfx::Font::boldSystemFont(0.6 * f), gfx::Color::whiteColor(), gfx::Color::blackColor());
    addSubview(toaster_);
    title_->setText(std::string(name));
    if (image) {
        if (gfx::Image icon = bImage(*image); !icon.isNull()) {
            photo_ = std::make_shared<ui::ImageView>();
            photo_->setImage(icon);
            photo_->setContentMode(gfx::ContentMode::AspectFit);
            addSubview(photo_);
        }
    }
}

InputField::~InputField() {
    txt_->setDelegate(nullptr);
}

void InputField::watchAction(int, ValidationCB text) {
    textCB_ = std::move(text);
}

void InputField::resign() {
    MORVANE_ASSERT_MAIN_THREAD();
    title_->resignFirstResponder();
    toaster_->resignFirstResponder();
    error_->resignFirstResponder();
    txt_->resignFirstResponder();
}

void InputField::addError(std::string_view text, const gfx::Color& colour) {
    showError(*error_, text, colour);
    setNeedsLayout();
}

void InputField::toast(std::string_view text) {
    MORVANE_ASSERT_MAIN_THREAD();
    slideToast(toaster_, bounds().height, text);
}

gfx::Image InputField::bImage(std::string_view name) {
    return LabelledField::bImage(name);
}

bool InputField::shouldChangeText(ui::TextView& view, ui::TextRange range, std::string_view replacement) {
    if (replacement == "\n") sys::Log::platform("Enter \n");
    const std::string next = ui::detail::replaced(view.text(), range, replacement).value_or(view.text());
    title_->setHidden(next.empty());
    if (!textCB_) {
        addError("", gfx::Color::clearColor());
        return true;
    }
    // The callback may release this field; keep it for the answer.
    auto keep = weak_from_this().lock();
    ValidationCB check = textCB_;
    if (auto failure = readValidation(check(title_->text(), next), title_->text())) {
        sys::Log::platform("error : " + failure->message);
        error_->setBackgroundColor(failure->colour);
        toast(failure->message);
    } else {
        addError("", gfx::Color::clearColor());
    }
    return true;
}

bool InputField::textFieldShouldReturn(ui::TextField&) {
    sys::Log::platform("textFieldShouldReturn");
    return true;
}

void InputField::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, s = 1.2 * gfx::Font::systemFontSize();
    title_->setFrame({0.02 * w, 0, 0.96 * w, s});
    txt_->setFrame({0.02 * w, 1.1 * s, 0.96 * w, h - 2.5 * s});
    txt_->setTextContainerInset({0.5 * s, 2.1 * s, 0, 2});
    if (photo_) photo_->setFrame({0.03 * w, 1.1 * s, 1.5 * s, 2 * s});
    error_->setFrame({0.02 * w, txt_->frame().maxY(), 0.96 * w, s});
    error_->layer().setSublayerTranslation({2.1 * s, 0});
}

} // namespace morvane::detail
