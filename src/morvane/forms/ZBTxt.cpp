#include <morvane/forms/ZBTxt.h>

#include <morvane/media/ImageColor.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/model/detail/Text.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/sys/Settings.h>
#include <morvane/ui/controls/BarButtonItem.h>
#include <morvane/ui/controls/Toolbar.h>
#include <morvane/ui/text/detail/TextBuffer.h>
#include <morvane/util/Txt.h>

#include <array>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

namespace morvane {

namespace {

bool contains(const std::string& text, std::string_view word) {
    return text.find(word) != std::string::npos;
}

} // namespace

ZBTxt::ZBTxt(std::string_view name, std::optional<std::string_view> image, bool password, bool edit)
    : LabelledField("ZBTxt", name, image, password, edit, true) {
    if (contains(lowerCaption(), "flight")) txt()->setAutocorrectionType(ui::TextAutocorrectionType::No);
    // The toolbar takes the field's width when made, which is none yet: the
    // window stretches an accessory across the screen.
    auto toolbar =
        std::make_shared<ui::Toolbar>(gfx::Rect{0, 0, bounds().width, ui::Toolbar::kDefaultHeight});
    toolbar->setItems({ui::BarButtonItem::flexibleSpace(),
                       ui::BarButtonItem::systemItem(ui::BarButtonItem::SystemItem::Done,
                                                     [this](ui::BarButtonItem&) { doneButtonTapped(); })});
    txt()->setInputAccessoryView(toolbar);
}

std::shared_ptr<ZBTxt> ZBTxt::initWithName(std::string_view name, std::optional<std::string_view> image,
                                           bool password, bool edit) {
    return std::make_shared<ZBTxt>(name, image, password, edit);
}

ZBTxt::~ZBTxt() {
    // The toolbar may outlive the field; its Done item must not reach back.
    if (auto toolbar = std::dynamic_pointer_cast<ui::Toolbar>(txt()->inputAccessoryView()))
        toolbar->setItems({});
}

ZBTxt& ZBTxt::addText(const Value& value) {
    MORVANE_ASSERT_MAIN_THREAD();
    const std::string* text = value.text();
    if (!text) return *this;
    txt()->setText(*text);
    showCaptionFor(*text);
    error()->setHidden(true);
    setNeedsLayout();
    return *this;
}

ZBTxt& ZBTxt::addExtra(std::string_view text) {
    extra_->setText(std::string(text));
    extra_->setHidden(false);
    return *this;
}

bool ZBTxt::isErrorInputShowErrorMsg() {
    const bool empty = isErrorInput();
    if (empty) showErrorInput();
    return empty;
}

void ZBTxt::processText(const std::string& text) {
    validate(text);
}

std::optional<std::string> ZBTxt::addPlaceholder(std::string_view name) {
    MORVANE_ASSERT_MAIN_THREAD();
    title()->setText(std::string(name));
    txt()->setPlaceholder(std::string(name));
    assignIcon(name);
    std::optional<std::string> stored = userDefault(name);
    error()->setHidden(true);
    if (stored) {
        txt()->setText(*stored);
        processText(*stored);
    } else {
        txt()->setText("");
    }
    setNeedsLayout();
    return stored;
}

void ZBTxt::assignIcon(std::string_view name) {
    const std::string lower = detail::lowercase(name);
    if (contains(lower, "phone")) {
        txt()->setKeyboardType(ui::KeyboardType::NumberPad);
    } else if (contains(lower, "flight")) {
        txt()->setAutocorrectionType(ui::TextAutocorrectionType::No);
    } else {
        txt()->setKeyboardType(ui::KeyboardType::Default);
    }
    if (photo()) {
        const gfx::Image icon = ResourcePictures::named(iconList(lower), {60, 60});
        photo()->setImage(icon.isNull() ? icon : ImageColor::color(icon, gfx::Color::blackColor()));
    }
}

std::string ZBTxt::iconList(std::string_view text) {
    static const std::array<std::pair<std::string_view, std::string_view>, 3> kIcons{
        {{"name", "person"}, {"phone", "phone"}, {"email", "email"}}};
    for (const auto& [word, icon] : kIcons)
        if (text.find(word) != std::string_view::npos) return std::string(icon);
    return "about";
}

void ZBTxt::doneButtonTapped() {
    txt()->resignFirstResponder();
}

void ZBTxt::userDefaultSave(std::string_view key, std::string_view value) {
    if (!sys::Settings::standard()->setText(key, value))
        sys::Log::platform("ZBTxt: the last entry of \"" + std::string(key) + "\" could not be stored");
}

std::optional<std::string> ZBTxt::userDefault(std::string_view key) {
    return sys::Settings::standard()->text(key);
}

bool ZBTxt::shouldChangeCharacters(ui::TextField& field, ui::TextRange range, std::string_view replacement) {
    // The text as typed, before any formatting, is what is kept; a password is not.
    if (!isPassword()) {
        if (auto next = ui::detail::replaced(field.text(), range, replacement))
            userDefaultSave(caption(), *next);
    }
    return true;
}

void ZBTxt::textFieldDidChange() {
    std::string text = txt()->text();
    const std::string lower = lowerCaption();
    if (contains(lower, "phone")) {
        text = Txt::phoneFormat(text);
        txt()->setText(text);
    } else if (contains(lower, "flight")) {
        text = Txt::flightFormat(text);
        txt()->setText(text);
    }
    processText(text);
}

} // namespace morvane
