#pragma once
// A multi-line, scrolling text that can be edited. Typing goes in at the
// caret through the delegate's shouldChangeText answer, one replacement at a
// time; return inserts a line end. The text sits inside textContainerInset,
// and a line limit (0: none) cuts what is shown.
//
//   note->setTextContainerInset({8, 4, 8, 4});
//   note->setDelegate(&form);             // not owned
//
// Ranges count UTF-16 code units (see TextRange).

#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextStyle.h>
#include <morvane/ui/collections/ScrollView.h>
#include <morvane/ui/core/Key.h>
#include <morvane/ui/text/TextRange.h>

#include <string>
#include <string_view>

namespace morvane::ui {

class TextView;

class TextViewDelegate : public ScrollViewDelegate {
  public:
    virtual bool textViewShouldBeginEditing(TextView&) { return true; }
    virtual void textViewDidBeginEditing(TextView&) {}
    virtual bool textViewShouldEndEditing(TextView&) { return true; }
    virtual void textViewDidEndEditing(TextView&) {}
    virtual bool shouldChangeText(TextView&, TextRange /*range*/, std::string_view /*replacement*/) {
        return true;
    }
    virtual void textViewDidChange(TextView&) {}
    virtual void textViewDidChangeSelection(TextView&) {}
};

class TextView : public ScrollView {
  public:
    TextView();
    explicit TextView(const gfx::Rect& frame);

    const std::string& text() const { return text_; }
    // Sets the text directly (no delegate answers); the caret goes to the end.
    void setText(std::string text);
    const gfx::Font& font() const { return style_.font; }
    void setFont(const gfx::Font& font);
    const gfx::Color& textColor() const { return style_.color; }
    void setTextColor(const gfx::Color& color);
    gfx::TextAlignment textAlignment() const { return style_.alignment; }
    void setTextAlignment(gfx::TextAlignment alignment);
    bool isEditable() const { return editable_; }
    void setEditable(bool editable);
    bool isSelectable() const { return selectable_; }
    void setSelectable(bool selectable) { selectable_ = selectable; }
    const gfx::Insets& textContainerInset() const { return inset_; }
    void setTextContainerInset(const gfx::Insets& inset);
    // The most lines shown (0: all).
    int maximumNumberOfLines() const { return style_.numberOfLines; }
    void setMaximumNumberOfLines(int lines);
    bool isSecureTextEntry() const { return secure_; }
    void setSecureTextEntry(bool secure);

    TextViewDelegate* delegate() const { return delegate_; }
    void setDelegate(TextViewDelegate* delegate);

    bool isEditing() const { return editing_; }
    TextRange selectedRange() const { return selection_; }
    void setSelectedRange(TextRange range);
    // Replaces a range as typing would: asks the delegate, changes the text,
    // tells textViewDidChange. False when refused or outside the text (logged).
    bool replace(TextRange range, std::string_view replacement);
    // The selected text, or all of it when nothing is selected; nothing from
    // a secure view.
    std::string textToCopy() const;

    bool canBecomeFirstResponder() const override;
    bool becomeFirstResponder() override;
    bool resignFirstResponder() override;
    void insertText(std::string_view text) override;
    bool keyPressed(Key key) override;
    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;
    gfx::Size sizeThatFits(gfx::Size size) const override;

  protected:
    void layoutSubviews() override;
    void contentTapped(gfx::Point location) override;

  private:
    std::string shownText() const;
    void textChanged();

    std::string text_;
    gfx::TextStyle style_;
    bool editable_ = true;
    bool selectable_ = true;
    bool secure_ = false;
    gfx::Insets inset_{8, 0, 8, 0};
    TextViewDelegate* delegate_ = nullptr;
    bool editing_ = false;
    TextRange selection_;
};

} // namespace morvane::ui
