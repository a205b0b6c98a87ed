#include <morvane/forms/UITxt.h>

#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/text/detail/TextBuffer.h>

#include <unicode/unistr.h>

#include <algorithm>

namespace morvane {

namespace {

// The low byte of each UTF-16 unit of the text, as a signed 8-bit character.
std::string lowBytes(std::string_view text) {
    const icu::UnicodeString units =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), int32_t(text.size())));
    std::string bytes;
    bytes.reserve(std::size_t(units.length()));
    for (int32_t i = 0; i < units.length(); ++i)
        bytes.push_back(static_cast<char>(units.charAt(i) & 0xFF));
    return bytes;
}

template <class Test> bool anyUnit(std::string_view text, Test test) {
    for (char c : lowBytes(text))
        if (test(c)) return true;
    return false;
}

constexpr std::string_view kNumeric = "0123456789.";

} // namespace

UITxt::UITxt(std::string_view name, std::optional<std::string_view> image, bool password, bool edit)
    : LabelledField("UITxt", name, image, password, edit, false) {}

std::shared_ptr<UITxt> UITxt::initWithName(std::string_view name, std::optional<std::string_view> image,
                                           bool password, bool edit) {
    return std::make_shared<UITxt>(name, image, password, edit);
}

UITxt& UITxt::addText(const Value& value) {
    MORVANE_ASSERT_MAIN_THREAD();
    const std::string* text = value.text();
    if (!text) {
        sys::Log::platform("zed: error");
        return *this;
    }
    txt()->setText(*text);
    showCaptionFor(*text);
    return *this;
}

void UITxt::addPlaceholder(std::string_view name) {
    title()->setText(std::string(name));
    txt()->setPlaceholder(std::string(name));
    txt()->setText("");
}

bool UITxt::checkIllegalChar(std::string_view text) {
    return anyUnit(text, illegalChar);
}

bool UITxt::illegalChar(char c) {
    return c == ':';
}

bool UITxt::accept(std::string_view text) {
    return !anyUnit(text, [](char c) { return !charOK(c); });
}

bool UITxt::charOK(char c) {
    return kNumeric.find(c) != std::string_view::npos;
}

std::string UITxt::acceptChr(std::string_view s, std::int64_t min, std::int64_t max) {
    const std::string bytes = lowBytes(s);
    std::string kept;
    for (std::int64_t i = std::max<std::int64_t>(min, 0); i <= max && i < std::int64_t(bytes.size()); ++i)
        kept.push_back(bytes[std::size_t(i)]);
    return kept;
}

std::string UITxt::acceptOnly(std::string_view s) {
    std::string kept;
    for (char c : lowBytes(s))
        if (charOK(c)) kept.push_back(c);
    return kept;
}

std::string UITxt::phoneFormat(std::string_view) {
    return "";
}

bool UITxt::shouldChangeCharacters(ui::TextField& field, ui::TextRange range, std::string_view replacement) {
    // Deleting (nothing inserted) always passes.
    if (checkIllegalChar(replacement)) {
        toast("wrong character");
        return false;
    }
    if (numeric_ && !accept(replacement)) {
        toast("numeric only");
        return false;
    }
    validate(ui::detail::replaced(field.text(), range, replacement).value_or(field.text()));
    return true;
}

void UITxt::textFieldDidEndEditing(ui::TextField&) {
    sys::Log::platform("textFieldDidEndEditing");
}

} // namespace morvane
