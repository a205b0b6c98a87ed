#pragma once
// The gallery's Hotel Farol: the kit's menu screen with the hotel's rooms,
// restaurant, spa and excursions as the header's data sets, each a
// two-column grid of tiles. A tap opens the item on the profile card with
// its contact strip; a contact tap is reported below, and "book" also
// schedules the hotel's five-second notification, whose delivery to the
// desktop is reported too. The edit button turns editing on; retyped values
// reach the screen's field callbacks. The ✓ button switches the grid's
// check marks on (the card then stays closed). The " ←" band at the top
// leads home.
//
//   auto screen = FarolScreen::make(frame, sample, translator, goHome);

#include "Screen.h"
#include "Translator.h"

#include <morvane/menus/Morvane.h>
#include <morvane/model/Forward.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>

#include <memory>
#include <string>

namespace gallery {

class FarolScreen : public Screen {
  public:
    static std::shared_ptr<FarolScreen> make(const morvane::gfx::Rect& frame, const morvane::NodePtr& sample,
                                             std::shared_ptr<Translator> translator, Back back);
    FarolScreen(const morvane::gfx::Rect& frame, std::shared_ptr<Translator> translator);
    ~FarolScreen() override;

    const std::shared_ptr<morvane::Morvane>& menu() const { return menu_; }
    const std::shared_ptr<morvane::ui::Label>& status() const { return status_; }
    const std::shared_ptr<morvane::ui::Button>& checkMarks() const { return checkMarks_; }
    std::shared_ptr<morvane::ui::View> backControl() const override { return menu_->backBtn(); }
    std::string waitingFor() const override;
    // Configures the menu with check marks on or off (the data sets stay).
    void configure(bool checkMarks);

  protected:
    void layoutSubviews() override;

  private:
    void wire(const morvane::NodePtr& sample, Back back);
    void say(const std::string& text);

    std::shared_ptr<Translator> translator_;
    std::shared_ptr<morvane::Morvane> menu_;
    std::shared_ptr<morvane::ui::Label> status_;
    std::shared_ptr<morvane::ui::Button> checkMarks_;
    bool checkMarksOn_ = false;
};

} // namespace gallery
