#pragma once
// UITxt: a labelled text field that filters what is typed. ":" is never
// taken ("wrong character"); in numeric mode, on from the start, only
// "0123456789." is ("numeric only"). A refused change leaves the text as it
// was and says why in the toaster; an accepted one is validated at once.
//
//   auto price = UITxt::initWithName("Price", std::nullopt, false);
//   price->watchAction(0, validatePrice, {});
//   item->setNumeric(false); // words too
//
// Characters are tested one UTF-16 unit at a time by their low byte, as the
// kit always has: a letter whose low byte is that of ":" counts as ":".
// Threads: main thread only.

#include <morvane/forms/detail/LabelledField.h>

#include <cstdint>

namespace morvane {

class UITxt : public detail::LabelledField {
  public:
    UITxt(std::string_view name, std::optional<std::string_view> image, bool password, bool edit = true);
    static std::shared_ptr<UITxt> initWithName(std::string_view name, std::optional<std::string_view> image,
                                               bool password, bool edit = true);

    bool numeric() const { return numeric_; }
    void setNumeric(bool numeric) { numeric_ = numeric; }

    // Shows a text; other values are ignored with the log line "zed: error".
    UITxt& addText(const Value& value);
    // Renames the field and empties it.
    void addPlaceholder(std::string_view name);

    // True when one of the text's characters is illegal.
    static bool checkIllegalChar(std::string_view text);
    static bool illegalChar(char c);
    // True when every character passes charOK (also for "").
    static bool accept(std::string_view text);
    static bool charOK(char c);
    // The characters at positions min to max (inclusive), and those that pass
    // charOK, each kept as its low byte.
    static std::string acceptChr(std::string_view s, std::int64_t min, std::int64_t max);
    static std::string acceptOnly(std::string_view s);
    // Always "": kept for applications that call it.
    static std::string phoneFormat(std::string_view text);

  protected:
    bool shouldChangeCharacters(ui::TextField& field, ui::TextRange range,
                                std::string_view replacement) override;
    void textFieldDidEndEditing(ui::TextField&) override;

  private:
    bool numeric_ = true;
};

} // namespace morvane
