#pragma once
// EditHelp: the panel laid over a label that EditSLayer edits in place: a
// text view filling the panel, a small "home" icon at its top left and a
// round "↑" done button at its bottom right, with a caption, an error line and
// a toaster as the input field has them. Every change is checked through the
// text callback (an answer [message, colour] shows in the error line and a
// toast); the done button hands the caption and the text to the complete
// callback.
//
//   auto help = EditHelp::initWithName("edit", "home", false);
//   help->watchAction(1, [](const std::string& caption, const std::string& text) { return Value(); },
//                     [](const std::string& caption, const std::string& text) { ... });
//   help->addTxt("Reception");
//
// The caption, the error line and the toaster are given no place by the
// panel: an owner that wants them seen frames them itself.
// Threads: main thread only. The callbacks may release the panel.

#include <morvane/forms/detail/InputField.h>
#include <morvane/ui/controls/Button.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace morvane {

class EditHelp : public detail::InputField {
  public:
    using CompleteCB = std::function<void(const std::string& caption, const std::string& text)>;

    // The image name is not used: the icon is always the "home" picture.
    EditHelp(std::string_view name, std::string_view image, bool password);
    static std::shared_ptr<EditHelp> initWithName(std::string_view name, std::string_view image,
                                                  bool password);
    ~EditHelp() override;

    const std::shared_ptr<ui::Button>& editBtn() const { return editBtn_; }

    // Stores both callbacks; the number is not used.
    void watchAction(int unused, ValidationCB text, CompleteCB complete);
    void addTxt(std::string_view text);
    // The done button: the caption and the text to the complete callback.
    void editAction();

  protected:
    void layoutSubviews() override;
    void textViewDidChange(ui::TextView& view) override;

  private:
    std::shared_ptr<ui::Button> editBtn_;
    CompleteCB completeCB_;
};

} // namespace morvane
