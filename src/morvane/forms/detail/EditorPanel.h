#pragma once
// What the two text editor panels share: a heading, an input field holding
// the text to edit, and Save, Cancel and DELETE, each ending the editing and
// reporting once to the owner. ZBTextview and NTextview add their layouts.

#include <morvane/forms/detail/InputField.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/core/View.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace morvane::detail {

class EditorPanel : public ui::View {
  public:
    using SaveCB = std::function<void(const std::string& text)>;
    using DoneCB = std::function<void(bool)>;

    ~EditorPanel() override;

    const std::shared_ptr<ui::Button>& title() const { return title_; }
    const std::shared_ptr<ui::Button>& deleteBtn() const { return deleteBtn_; }
    const std::shared_ptr<ui::Button>& cancelBtn() const { return cancelBtn_; }

    // The text to edit.
    void addData(std::string_view text);
    // Stores the callbacks; the number is not used.
    void watchAction(int unused, SaveCB save, DoneCB del, DoneCB cancel);
    // Each gives up the keyboard, then reports: Save the text as it stands,
    // DELETE and Cancel true.
    void saveAction();
    void deleteAction();
    void cancelAction();

  protected:
    EditorPanel(std::string_view heading, std::shared_ptr<InputField> field);

    std::shared_ptr<InputField> field_;
    std::shared_ptr<ui::Button> saveButton_;

  private:
    std::shared_ptr<ui::Button> title_;
    std::shared_ptr<ui::Button> deleteBtn_;
    std::shared_ptr<ui::Button> cancelBtn_;
    SaveCB saveCB_;
    DoneCB cancelCB_;
    DoneCB deleteCB_;
};

} // namespace morvane::detail
