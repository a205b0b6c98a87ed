#pragma once
// The multi-line input field of the editor panels: a caption, an icon over
// the text's left inset, an error line below the text and a toaster, around
// a text view. ZBInput and CTextview are this field under the two names the
// panels use.

#include <morvane/components/Validation.h>
#include <morvane/gfx/Color.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/core/View.h>
#include <morvane/ui/text/TextField.h>
#include <morvane/ui/text/TextView.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace morvane::detail {

class InputField : public ui::View, protected ui::TextViewDelegate, protected ui::TextFieldDelegate {
  public:
    InputField(std::string_view name, std::optional<std::string_view> image, bool password);
    ~InputField() override;

    const std::shared_ptr<ui::TextField>& title() const { return title_; }
    const std::shared_ptr<ui::TextField>& error() const { return error_; }
    // The icon; null when the picture was not found.
    const std::shared_ptr<ui::ImageView>& photo() const { return photo_; }
    const std::shared_ptr<ui::TextField>& toaster() const { return toaster_; }
    const std::shared_ptr<ui::TextView>& txt() const { return txt_; }

    // Stores the validation callback; the number is not used.
    void watchAction(int unused, ValidationCB text);
    // Every part gives up the keyboard.
    void resign();
    void addError(std::string_view text, const gfx::Color& colour);
    void toast(std::string_view text);
    static gfx::Image bImage(std::string_view name);

  protected:
    void layoutSubviews() override;
    bool shouldChangeText(ui::TextView& view, ui::TextRange range, std::string_view replacement) override;
    bool textFieldShouldReturn(ui::TextField&) override;
    bool textFieldShouldClear(ui::TextField&) override { return true; }

  private:
    std::shared_ptr<ui::TextField> title_;
    std::shared_ptr<ui::TextField> error_;
    std::shared_ptr<ui::ImageView> photo_;
    std::shared_ptr<ui::TextField> toaster_;
    std::shared_ptr<ui::TextView> txt_;
    ValidationCB textCB_;
};

} // namespace morvane::detail
