#pragma once
// A one-line text entry. Tapping it (or becomeFirstResponder) starts editing:
// typed text goes in at the caret, one replacement at a time, each first
// offered to the delegate's shouldChangeCharacters answer; refused changes
// leave the text as it was. After each accepted change the field sends
// EditingChanged. Return asks the delegate's shouldReturn.
//
//   field->setPlaceholder("Guest name");
//   field->setDelegate(&form);            // not owned
//   field->addAction(ui::ControlEvent::EditingChanged, [](ui::Control& c) { ... });
//
// Ranges count UTF-16 code units (see TextRange). While editing, the caret
// blinks on the kit's clock (half a second on, half off, steady right after
// each change) and a text wider than the field scrolls so the caret stays in
// sight. Tab hands the focus to the next field of the window.

#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextStyle.h>
#include <morvane/ui/controls/Control.h>
#include <morvane/ui/core/Key.h>
#include <morvane/ui/text/TextRange.h>

#include <memory>
#include <string>
#include <string_view>

namespace morvane::sys {
class Timer;
}

namespace morvane::ui {

class TextField;

enum class KeyboardType {
    Default,
    ASCIICapable,
    NumbersAndPunctuation,
    URL,
    NumberPad,
    PhonePad,
    EmailAddress,
    DecimalPad
};
enum class TextAutocorrectionType { Default, No, Yes };
enum class TextAutocapitalizationType { None, Words, Sentences, AllCharacters };

// Every answer is optional; the defaults allow everything.
class TextFieldDelegate {
  public:
    virtual ~TextFieldDelegate() = default;
    virtual bool textFieldShouldBeginEditing(TextField&) { return true; }
    virtual void textFieldDidBeginEditing(TextField&) {}
    virtual bool textFieldShouldEndEditing(TextField&) { return true; }
    virtual void textFieldDidEndEditing(TextField&) {}
    virtual bool textFieldShouldReturn(TextField&) { return true; }
    virtual bool textFieldShouldClear(TextField&) { return true; }
    virtual bool shouldChangeCharacters(TextField&, TextRange /*range*/, std::string_view /*replacement*/) {
        return true;
    }
};

class TextField : public Control {
  public:
    enum class BorderStyle { None, Line, RoundedRect };

    TextField();
    explicit TextField(const gfx::Rect& frame);
    ~TextField() override;

    const std::string& text() const { return text_; }
    // Sets the text directly (no delegate answer, no event); the caret goes to the end.
    void setText(std::string text);
    const std::string& placeholder() const { return placeholder_; }
    void setPlaceholder(std::string placeholder);
    const gfx::Font& font() const { return style_.font; }
    void setFont(const gfx::Font& font);
    const gfx::Color& textColor() const { return style_.color; }
    void setTextColor(const gfx::Color& color);
    gfx::TextAlignment textAlignment() const { return style_.alignment; }
    void setTextAlignment(gfx::TextAlignment alignment);
    BorderStyle borderStyle() const { return border_; }
    void setBorderStyle(BorderStyle style);
    bool isSecureTextEntry() const { return secure_; }
    void setSecureTextEntry(bool secure);
    KeyboardType keyboardType() const { return keyboard_; }
    void setKeyboardType(KeyboardType type) { keyboard_ = type; }
    TextAutocorrectionType autocorrectionType() const { return autocorrection_; }
    void setAutocorrectionType(TextAutocorrectionType type) { autocorrection_ = type; }
    TextAutocapitalizationType autocapitalizationType() const { return autocapitalization_; }
    void setAutocapitalizationType(TextAutocapitalizationType type) { autocapitalization_ = type; }
    // Shown along the bottom of the window while the field is edited.
    const std::shared_ptr<View>& inputAccessoryView() const { return accessory_; }
    void setInputAccessoryView(std::shared_ptr<View> view);

    TextFieldDelegate* delegate() const { return delegate_; }
    void setDelegate(TextFieldDelegate* delegate) { delegate_ = delegate; }

    bool isEditing() const { return editing_; }
    // The caret (an empty range) or selection, in UTF-16 units.
    TextRange selectedRange() const { return selection_; }
    void setSelectedRange(TextRange range);

    // Replaces a range as typing would: asks the delegate, then changes the
    // text and sends EditingChanged. False when refused or when the range
    // lies outside the text (logged).
    bool replace(TextRange range, std::string_view replacement);
    // Empties the field when the delegate's shouldClear agrees.
    bool clear();
    // The selected text, or all of it when nothing is selected; nothing from
    // a secure field, whose text must not leave it.
    std::string textToCopy() const;
    // True while the blinking caret is in its visible half.
    bool isCaretShown() const { return editing_ && caretShown_; }
    // How far the text is scrolled to the left to keep the caret in sight.
    double scrollOffset() const { return scrollOffset_; }

    bool canBecomeFirstResponder() const override;
    bool becomeFirstResponder() override;
    bool resignFirstResponder() override;
    void insertText(std::string_view text) override;
    bool keyPressed(Key key) override;
    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;
    gfx::Size sizeThatFits(gfx::Size size) const override;

  protected:
    void touchEndedInside(const Touch& touch) override;
    void didMoveToWindow() override;

  private:
    gfx::Rect textRect() const;
    void endEditingState();
    // The caret shows steadily again after a change or a move, then blinks.
    void restartBlink();
    void stopBlink();
    // Caret position (from the text's start) and the scroll that keeps it in view.
    void updateScroll();

    std::string text_;
    std::string placeholder_;
    gfx::TextStyle style_;
    BorderStyle border_ = BorderStyle::None;
    bool secure_ = false;
    KeyboardType keyboard_ = KeyboardType::Default;
    TextAutocorrectionType autocorrection_ = TextAutocorrectionType::Default;
    TextAutocapitalizationType autocapitalization_ = TextAutocapitalizationType::Sentences;
    std::shared_ptr<View> accessory_;
    TextFieldDelegate* delegate_ = nullptr;
    bool editing_ = false;
    TextRange selection_;
    std::shared_ptr<sys::Timer> blink_;
    bool caretShown_ = true;
    double scrollOffset_ = 0;
};

} // namespace morvane::ui
