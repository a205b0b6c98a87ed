#pragma once
// ZBTxt: a labelled text field that formats what is typed into a field named
// for a phone or flight number, and keeps the last text typed into each field
// name in the application's settings store, offering it again (also after the
// application is started anew).
//
//   auto phone = ZBTxt::initWithName("Phone", "phone", false);
//   phone->watchAction(0, validatePhone, [](bool editing) { ... });
//   if (auto last = phone->addPlaceholder("Phone")) ... // the stored text
//
// A field of the name "Phone" shows "(555) 123-4567" while its store keeps
// "5551234567", the text as typed. A password field stores nothing: its
// text never leaves the field.
// Threads: main thread only.

#include <morvane/forms/detail/LabelledField.h>

namespace morvane {

class ZBTxt : public detail::LabelledField {
  public:
    // name: the caption, placeholder and key of the stored text; image: the
    // icon's picture name (no icon when it is not found).
    ZBTxt(std::string_view name, std::optional<std::string_view> image, bool password, bool edit = true);
    static std::shared_ptr<ZBTxt> initWithName(std::string_view name, std::optional<std::string_view> image,
                                               bool password, bool edit = true);
    ~ZBTxt() override;

    // The second caption, right-aligned on the caption row.
    const std::shared_ptr<ui::TextField>& extra() const { return extra_; }

    // Shows a text (other values are ignored); the error line goes.
    ZBTxt& addText(const Value& value);
    ZBTxt& addExtra(std::string_view text);
    // isErrorInput, showing the error when it is true.
    bool isErrorInputShowErrorMsg();
    // Caption visibility and validation of the text.
    void processText(const std::string& text);
    // Renames the field; shows (and validates) the text stored under the new
    // name, which it returns, or empties the entry.
    std::optional<std::string> addPlaceholder(std::string_view name);
    // The keyboard and icon for a field of that name.
    void assignIcon(std::string_view name);
    // "person", "phone" or "email" for a text holding "name", "phone" or
    // "email"; "about" otherwise.
    static std::string iconList(std::string_view text);
    // The keyboard toolbar's Done.
    void doneButtonTapped();

    // The settings store. A save is read back at once and written to the
    // store's file a moment later, off the main thread, in the order made;
    // a failed write is logged and the field carries on.
    static void userDefaultSave(std::string_view key, std::string_view value);
    static std::optional<std::string> userDefault(std::string_view key);

  protected:
    bool shouldChangeCharacters(ui::TextField& field, ui::TextRange range,
                                std::string_view replacement) override;
    void textFieldDidChange() override;
};

} // namespace morvane
