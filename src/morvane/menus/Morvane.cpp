#include <morvane/menus/Morvane.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/gfx/Font.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Notifications.h>
#include <morvane/sys/Queue.h>

namespace morvane {

Morvane::Morvane(const gfx::Rect& frame)
    : RecordScreen(frame, UITblHdrAll::Form::Grid, std::string(kRegistration), gfx::Color::redColor(),
                   false) {
    touchZB_ = std::make_shared<ZBTouch>();
    profileUI()->addSubview(touchZB_);
    watchTouch();
}

Morvane::~Morvane() {
    touchZB_->watchItemSelect({});
}

void Morvane::itemSelected(const NodePtr& record) {
    recordSelected(record, record ? record->get("key") : Value(), false);
}

void Morvane::updateProfile(const NodePtr& item) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!item) return;
    UIProfile& card = *profileUI();
    card.clear();
    const Value& image = item->get("image");
    const Value& imaged = item->get("imaged");
    if (!image.isAbsent() && !imaged.isAbsent())
        card.addImage(image.toText(), imaged.toText(), gfx::Color::yellowColor());
    for (const std::string& key : listHeader())
        if (const Value& value = item->get(key); !value.isAbsent()) card.addName(value.toText());
    const auto& body = listBody();
    for (std::size_t i = 0; i < body.size(); ++i) {
        const Value& value = item->get(body[i]);
        if (value.isAbsent()) continue;
        card.addVal(value, body[i]);
        // Translated once, after the last value.
        if (i + 1 == body.size()) card.refreshTranslate();
    }
    updateTouch(item);
}

void Morvane::updateTouch(const NodePtr& item) {
    touchZB_->clear();
    for (std::string_view key : kTouchKeys)
        if (item && item->has(key)) touchZB_->addObj(key, item);
    touchZB_->refresh();
}

void Morvane::watchTouch() {
    touchZB_->watchItemSelect([this](const std::string& key, const NodePtr& item) {
        if (!touchSelectCB_) return;
        DispatchGuard guard(*this);
        const TouchSelectCB call = touchSelectCB_;
        call(key, item);
    });
}

void Morvane::editEnable(bool enable) {
    profileUI()->editEnable(enable);
}

void Morvane::admin(bool show) {
    editBtn()->setHidden(!show);
}

void Morvane::watchHdrBack(std::optional<std::string> title, UIHeader::BackCB callback) {
    tblHdrUI()->watchHdrBack(std::move(title), std::move(callback));
}

void Morvane::clear() {
    tblHdrUI()->setHidden(false);
    tblHdrUI()->clearHeader();
}

void Morvane::setBackgroundColor(const gfx::Color& color) {
    RecordScreen::setBackgroundColor(color);
    if (touchZB_) touchZB_->setBackgroundColor(color);
}

void Morvane::layoutSubviews() {
    RecordScreen::layoutSubviews();
    const double w = bounds().width, h = bounds().height, b = 2.5 * gfx::Font::systemFontSize();
    touchZB_->setFrame({w - 1.4 * b, 0, b, 0.4 * h});
}

// ---- Dates ------------------------------------------------------------------------------

std::optional<Dates::Time> Morvane::textToDate(std::string_view text) {
    return Dates::textToDate(text);
}

std::string Morvane::getFDate(Dates::Time date) {
    return Dates::getFDate(date, Dates::kShowDay);
}

bool Morvane::isValidDateFormat(std::string_view text, std::string_view form) {
    return Dates::isValidDateFormat(text, form);
}

// ---- Notifications -----------------------------------------------------------------------

void Morvane::addNotification(const std::string& title, const std::string& body) {
    sys::Notifications::removeAllPending();
    sys::Notifications::add("FiveSecond",
                            {.title = sys::Notifications::localizedString(title),
                             .body = sys::Notifications::localizedString(body),
                             .defaultSound = true},
                            5.0, false, [](const std::string& error) {
                                if (!error.empty()) sys::Log::platform("Something went wrong: " + error);
                            });
}

} // namespace morvane
