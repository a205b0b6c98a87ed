#pragma once
// The gallery's edit layers: a front desk's notice board on an EditSLayer.
// With Edit on, a touch chooses the notice's heading or a line, and the "↑"
// button lays the help panel over it: the line follows every keystroke and
// the panel's round button hands the final text back to the layer, which the
// screen reports. The welcome text is a text view, typed in place.
//
//   auto screen = EditLayersScreen::make(frame, goHome);

#include "TitledScreen.h"

#include <morvane/forms/EditSLayer.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/text/TextView.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace gallery {

// The layer, telling the screen what the done button hands it.
class NoticeBoard : public morvane::EditSLayer {
  public:
    std::function<void(const std::string& text, morvane::ui::View& view)> changed;
    void txtChanged(const std::string& text, morvane::ui::View& view) override {
        if (changed) changed(text, view);
    }
};

class EditLayersScreen : public TitledScreen {
  public:
    static std::shared_ptr<EditLayersScreen> make(const morvane::gfx::Rect& frame, Back back);
    explicit EditLayersScreen(const morvane::gfx::Rect& frame);

    const std::shared_ptr<NoticeBoard>& board() const { return board_; }
    const std::shared_ptr<morvane::ui::Button>& editSwitch() const { return editSwitch_; }
    const std::vector<std::shared_ptr<morvane::ui::Label>>& lines() const { return lines_; }
    const std::shared_ptr<morvane::ui::TextView>& welcome() const { return welcome_; }
    // The texts the layer reported, in order.
    const std::vector<std::string>& reported() const { return reported_; }

  protected:
    void layoutSubviews() override;

  private:
    void wire(Back back);

    std::shared_ptr<NoticeBoard> board_;
    std::shared_ptr<morvane::ui::Button> editSwitch_;
    std::vector<std::shared_ptr<morvane::ui::Label>> lines_;
    std::shared_ptr<morvane::ui::TextView> welcome_;
    std::vector<std::string> reported_;
};

} // namespace gallery
