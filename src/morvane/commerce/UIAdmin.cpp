#include <morvane/commerce/UIAdmin.h>

#include <morvane/sys/Queue.h>
#include <morvane/util/Dates.h>

namespace morvane {

UIAdmin::UIAdmin(const gfx::Rect& frame)
    : RecordScreen(frame, UITblHdrAll::Form::List, std::string(kRegistration), gfx::Color::greenColor(),
                   true) {}

UIAdmin::UIAdmin(bool) : UIAdmin(gfx::Rect{}) {}

std::shared_ptr<UIAdmin> UIAdmin::initWithBackButton(bool backButton) {
    return std::make_shared<UIAdmin>(backButton);
}

void UIAdmin::itemSelected(const NodePtr& record) {
    recordSelected(record, record ? record->valKey("key") : Value(), true);
}

std::string UIAdmin::reformatDate(const Value& value) {
    const std::string text = value.toText();
    if (!Dates::isValidDateFormat(text, Dates::kStamp)) return text;
    const auto date = Dates::textToDate(text, Dates::kStamp);
    return date ? Dates::getFDate(*date, Dates::kShowMoment) : text;
}

void UIAdmin::updateProfile(const NodePtr& record) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!record) return;
    UIProfile& card = *profileUI();
    card.clear();
    for (const std::string& key : listHeader()) {
        if (const Value name = record->valLikeKey(key); !name.isAbsent()) {
            card.addName(name.toText());
            break;
        }
    }
    for (const std::string& key : listBody())
        if (const Value value = record->valLikeKey(key); !value.isAbsent())
            card.addVal(Value(reformatDate(value)), key);
    if (const Value image = record->valLikeKey("image"); !image.isAbsent()) {
        const Value imaged = record->valLikeKey("imaged");
        const std::string stamp = imaged.toText();
        card.addImage(image.toText(),
                      imaged.isAbsent() ? std::nullopt : std::optional<std::string_view>(stamp),
                      gfx::Color::yellowColor());
    }
    card.refresh();
}

void UIAdmin::editEnable(bool enable) {
    profileUI()->editEnable(enable);
    editBtn()->setHidden(!enable);
}

void UIAdmin::showProfile(bool show) {
    profileUI()->setHidden(!show);
}

void UIAdmin::setHidden(bool hidden) {
    RecordScreen::setHidden(hidden);
    profileUI()->setHidden(true);
}

void UIAdmin::clear() {
    profileUI()->setHidden(true);
    tblHdrUI()->setHidden(false);
    tblHdrUI()->clearHeader();
}

void UIAdmin::watchSwipe(std::string title, const gfx::Color& color, UITblHdrAll::SwipeCB swipe) {
    tblHdrUI()->watchSwipe(std::move(title), color, std::move(swipe));
}

void UIAdmin::watchSwipeLeft(std::string title, const gfx::Color& color, UITblHdrAll::SwipeCB swipe) {
    tblHdrUI()->watchSwipeLeft(std::move(title), color, std::move(swipe));
}

} // namespace morvane
