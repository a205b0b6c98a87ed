#pragma once
// The gallery's administration: the front office's guests and staff as the
// administration panel's data sets, a list of records; a tapped record on
// the profile card (named by its category, stored dates shown readable, the
// guest's photo), the edit button turning editing on, and each field edit
// reported below by the field's own callback. The " ←" band leads home.
//
//   auto screen = AdminScreen::make(frame, sample, goHome);

#include "Screen.h"

#include <morvane/commerce/UIAdmin.h>
#include <morvane/model/Forward.h>
#include <morvane/ui/controls/Label.h>

#include <memory>
#include <string>

namespace gallery {

class AdminScreen : public Screen {
  public:
    static std::shared_ptr<AdminScreen> make(const morvane::gfx::Rect& frame, const morvane::NodePtr& sample,
                                             Back back);
    explicit AdminScreen(const morvane::gfx::Rect& frame);

    const std::shared_ptr<morvane::UIAdmin>& admin() const { return admin_; }
    const std::shared_ptr<morvane::ui::Label>& status() const { return status_; }
    std::shared_ptr<morvane::ui::View> backControl() const override { return admin_->backBtn(); }
    std::string waitingFor() const override;

  protected:
    void layoutSubviews() override;

  private:
    void wire(const morvane::NodePtr& sample, Back back);

    std::shared_ptr<morvane::UIAdmin> admin_;
    std::shared_ptr<morvane::ui::Label> status_;
};

} // namespace gallery
