#include <morvane/forms/detail/LabelledField.h>

#include <morvane/forms/detail/Strips.h>

#include <morvane/gfx/Font.h>
#include <morvane/media/ImageColor.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/model/detail/Text.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Txt.h>

namespace morvane::detail {

namespace {

// Icons are drawn at this size and shown smaller, so they stay sharp at any scale.
constexpr gfx::Size kIconSize{60, 60};

} // namespace

LabelledField::LabelledField(std::string_view kind, std::string_view name,
                             std::optional<std::string_view> image, bool password, bool edit, bool tintIcon)
    : ui::View(gfx::Rect{}), kind_(kind) {
    const double f = gfx::Font::systemFontSize();
    title_ =
        makeStrip(gfx::Font::boldSystemFont(0.9 * f), gfx::Color::whiteColor(), gfx::Color::clearColor());
    addSubview(title_);
    if (kind_ == "ZBTxt") {
        extra_ =
            makeStrip(gfx::Font::boldSystemFont(0.6 * f), gfx::Color::whiteColor(), gfx::Color::clearColor());
        extra_->setTextAlignment(gfx::TextAlignment::Right);
        addSubview(extra_);
    }
    txt_ = std::make_shared<ui::TextField>();
    txt_->setDelegate(this);
    txt_->setEnabled(edit);
    txt_->setSecureTextEntry(password);
    txt_->setPlaceholder(std::string(name));
    txt_->setAutocapitalizationType(ui::TextAutocapitalizationType::None);
    txt_->setBackgroundColor(gfx::Color::whiteColor());
    txt_->setFont(gfx::Font::systemFont(f));
    txt_->setTextColor(gfx::Color::blackColor());
    txt_->layer().setBorderWidth(1);
    txt_->layer().setBorderColor(gfx::Color::lightTextColor());
    txt_->addAction(ui::ControlEvent::EditingChanged, [this](ui::Control&) { textFieldDidChange(); });
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
            photo_->setImage(tintIcon ? ImageColor::color(icon, gfx::Color::blackColor()) : icon);
            photo_->setContentMode(gfx::ContentMode::AspectFit);
            addSubview(photo_);
        }
    }
}

LabelledField::~LabelledField() {
    txt_->setDelegate(nullptr);
    txt_->removeActions(ui::ControlEvent::EditingChanged);
}

void LabelledField::watchAction(int, ValidationCB text, StatusCB focus) {
    textCB_ = std::move(text);
    statusCB_ = std::move(focus);
}

std::string LabelledField::text() const {
    return txt_->text();
}

LabelledField& LabelledField::quit() {
    MORVANE_ASSERT_MAIN_THREAD();
    // Resigning asks this field whether editing may end, which quits again.
    if (quitting_) return *this;
    quitting_ = true;
    txt_->resignFirstResponder();
    quitting_ = false;
    return *this;
}

void LabelledField::addError(std::string_view text, const gfx::Color& colour) {
    showError(*error_, text, colour);
    // The icon and the entry move when the line comes and goes.
    setNeedsLayout();
}

bool LabelledField::isErrorInput() const {
    return Txt::trim(txt_->text()).empty();
}

void LabelledField::showErrorInput() {
    addError("Please enter " + lowerCaption() + ".", gfx::Color::redColor());
}

void LabelledField::toast(std::string_view text) {
    MORVANE_ASSERT_MAIN_THREAD();
    slideToast(toaster_, bounds().height, text);
}

gfx::Image LabelledField::bImage(std::string_view name) {
    return ResourcePictures::named(name, kIconSize);
}

void LabelledField::showCaptionFor(const std::string& t) {
    title_->setHidden(t.empty());
}

void LabelledField::validate(const std::string& t) {
    showCaptionFor(t);
    if (!textCB_) {
        addError("", gfx::Color::clearColor());
        return;
    }
    // The callback may release this field; keep it for the answer.
    auto keep = weak_from_this().lock();
    ValidationCB check = textCB_;
    const Value answer = check(caption(), t);
    if (auto failure = readValidation(answer, caption())) {
        error_->setBackgroundColor(failure->colour);
        toast(failure->message);
    } else {
        addError("", gfx::Color::clearColor());
    }
}

const std::string& LabelledField::caption() const {
    return title_->text();
}

std::string LabelledField::lowerCaption() const {
    return detail::lowercase(caption());
}

void LabelledField::reportFocus(bool editing) {
    if (!statusCB_) return;
    auto keep = weak_from_this().lock();
    StatusCB status = statusCB_;
    status(editing);
}

bool LabelledField::textFieldShouldBeginEditing(ui::TextField&) {
    reportFocus(true);
    return true;
}

bool LabelledField::textFieldShouldEndEditing(ui::TextField&) {
    quit();
    reportFocus(false);
    return true;
}

bool LabelledField::textFieldShouldReturn(ui::TextField&) {
    quit();
    reportFocus(false);
    return true;
}

void LabelledField::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, f = gfx::Font::systemFontSize(), s = 1.2 * f;
    if (photo_) {
        const double r = h > 3 * s ? s : h / 3;
        title_->setFrame({0, (h - 3 * r) / 2, w, r});
        title_->layer().setSublayerTranslation({0, 0});
        if (extra_) extra_->setFrame({0.7 * w, (h - 3 * r) / 2, 0.3 * w, r});
        txt_->setFrame({0, (h - r) / 2, w, 2 * r});
        error_->setFrame({0, txt_->frame().maxY() - 0.8 * r, w, 0.8 * r});
        error_->layer().setSublayerTranslation({2 * r, 0});
        toaster_->setFrame({0, h, w, 0.8 * r});
        toaster_->layer().setSublayerTranslation({2 * r, 0});
        if (error_->isHidden()) {
            photo_->setFrame({0.3 * r, (h - 0.15 * r) / 2, 1.2 * r, 1.2 * r});
            txt_->layer().setSublayerTranslation({2.1 * r, 0});
        } else {
            photo_->setFrame({0.5 * r, (h - 0.6 * r) / 2, r, r});
            txt_->layer().setSublayerTranslation({2.1 * r, -0.3 * r});
        }
        txt_->layer().setCornerRadius(0.4 * r);
        layer().setCornerRadius(0.4 * r);
    } else {
        title_->setFrame({0, 0, w, 0.26 * h});
        title_->layer().setSublayerTranslation({0.084 * h, 0});
        txt_->setFrame({0, 0.29 * h, w, 0.71 * h});
        txt_->layer().setSublayerTranslation({0.252 * h, 0});
        error_->setFrame({0, 0.75 * h, w, 0.25 * h});
        error_->layer().setSublayerTranslation({0.252 * h, 0});
        // A field without an icon still says why it refused a key or what
        // its validation found: its toaster rises over the error line's place.
        toaster_->setFrame({0, h, w, 0.25 * h});
        toaster_->layer().setSublayerTranslation({0.252 * h, 0});
        layer().setCornerRadius(0.4 * s);
    }
}

} // namespace morvane::detail
