#pragma once
// The gallery's table request: labelled text fields for the guest's name,
// phone (formatted while typed), email (validated), party size (digits only)
// and flight number (formatted), each remembering its last entry; a note
// retyped in a data input bar; and a request button that names what is
// missing.
//
//   auto screen = FormsScreen::make(frame, goHome);

#include "TitledScreen.h"

#include <morvane/forms/UITxt.h>
#include <morvane/forms/ZBDataInput.h>
#include <morvane/forms/ZBTxt.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>

#include <memory>

namespace gallery {

class FormsScreen : public TitledScreen {
  public:
    static std::shared_ptr<FormsScreen> make(const morvane::gfx::Rect& frame, Back back);
    explicit FormsScreen(const morvane::gfx::Rect& frame);

    const std::shared_ptr<morvane::ZBTxt>& name() const { return name_; }
    const std::shared_ptr<morvane::ZBTxt>& phone() const { return phone_; }
    const std::shared_ptr<morvane::ZBTxt>& email() const { return email_; }
    const std::shared_ptr<morvane::UITxt>& party() const { return party_; }
    const std::shared_ptr<morvane::ZBTxt>& flight() const { return flight_; }
    const std::shared_ptr<morvane::ui::Label>& note() const { return note_; }
    const std::shared_ptr<morvane::ui::Button>& noteButton() const { return noteButton_; }
    const std::shared_ptr<morvane::ui::Button>& requestButton() const { return requestButton_; }
    const std::shared_ptr<morvane::ZBDataInput>& noteBar() const { return noteBar_; }

  protected:
    void layoutSubviews() override;

  private:
    void wire(Back back);
    void request();

    std::shared_ptr<morvane::ZBTxt> name_;
    std::shared_ptr<morvane::ZBTxt> phone_;
    std::shared_ptr<morvane::ZBTxt> email_;
    std::shared_ptr<morvane::UITxt> party_;
    std::shared_ptr<morvane::ZBTxt> flight_;
    std::shared_ptr<morvane::ui::Label> note_;
    std::shared_ptr<morvane::ui::Button> noteButton_;
    std::shared_ptr<morvane::ui::Button> requestButton_;
    std::shared_ptr<morvane::ZBDataInput> noteBar_;
};

} // namespace gallery
