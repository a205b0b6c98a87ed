#pragma once
// What the two labelled text fields share: construction, layout, the focus
// and validation callbacks, the error line and the toaster. ZBTxt (formats
// phone and flight numbers, keeps the last entry in the settings store) and
// UITxt (filters what is typed) add their own typing rules on top.

#include <morvane/components/Validation.h>
#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>
#include <morvane/model/Value.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/core/View.h>
#include <morvane/ui/text/TextField.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace morvane::detail {

class LabelledField : public ui::View, protected ui::TextFieldDelegate {
  public:
    // true when editing begins, false when it ends.
    using StatusCB = std::function<void(bool editing)>;

    ~LabelledField() override;

    const std::shared_ptr<ui::TextField>& title() const { return title_; }
    const std::shared_ptr<ui::TextField>& txt() const { return txt_; }
    const std::shared_ptr<ui::TextField>& error() const { return error_; }
    // The icon; null when none was found at construction.
    const std::shared_ptr<ui::ImageView>& photo() const { return photo_; }
    const std::shared_ptr<ui::TextField>& toaster() const { return toaster_; }

    // Stores the validation and focus callbacks; the number is not used.
    void watchAction(int unused, ValidationCB text, StatusCB focus);
    // The entry's text.
    std::string text() const;
    // Ends editing.
    LabelledField& quit();
    // Shows the text in the error line on that colour; "" hides the line.
    void addError(std::string_view text, const gfx::Color& colour);
    // True when the text is empty once white space and line ends are trimmed.
    bool isErrorInput() const;
    // "Please enter <caption in lower case>." in red.
    void showErrorInput();
    // Slides the message up from the bottom edge (1.5 s) and away (1 s).
    void toast(std::string_view text);
    // The named picture among the kit's own (an application's picture of the
    // same name takes its place).
    static gfx::Image bImage(std::string_view name);

  protected:
    LabelledField(std::string_view kind, std::string_view name, std::optional<std::string_view> image,
                  bool password, bool edit, bool tintIcon);

    // Caption visibility and the validation callback, for the text t.
    void validate(const std::string& t);
    // The caption shows once the entry holds text.
    void showCaptionFor(const std::string& t);
    const std::string& caption() const;
    std::string lowerCaption() const;
    bool isPassword() const { return txt_->isSecureTextEntry(); }
    const std::string& kind() const { return kind_; }

    void layoutSubviews() override;
    // The extra caption of ZBTxt, placed by the icon branch of the layout.
    std::shared_ptr<ui::TextField> extra_;

    // Focus: the same for both fields.
    bool textFieldShouldBeginEditing(ui::TextField&) override;
    bool textFieldShouldEndEditing(ui::TextField&) override;
    bool textFieldShouldReturn(ui::TextField&) override;
    bool textFieldShouldClear(ui::TextField&) override { return true; }
    // After each change of the entry's text (the editing-changed event).
    virtual void textFieldDidChange() {}

  private:
    void reportFocus(bool editing);

    std::string kind_;
    std::shared_ptr<ui::TextField> title_;
    std::shared_ptr<ui::TextField> txt_;
    std::shared_ptr<ui::TextField> error_;
    std::shared_ptr<ui::ImageView> photo_;
    std::shared_ptr<ui::TextField> toaster_;
    ValidationCB textCB_;
    StatusCB statusCB_;
    bool quitting_ = false;
};

} // namespace morvane::detail
