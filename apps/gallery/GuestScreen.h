#pragma once
// The gallery's guest profile: a guest's card (photo from the picture
// server, name, phone, email, web site, room and a note translated from
// English) with an edit switch. In edit mode a touch chooses the name, a
// value or the photo, and the "↑" button retypes or deletes it in the data
// input bar, or replaces the photo through the camera. Under the card the
// screen shows what the application received with each change: the
// callback, its text and the card's Node.
//
//   auto screen = GuestScreen::make(frame, sample, scene, translator, scratchFolder, goHome);

#include "TitledScreen.h"
#include "Translator.h"

#include <morvane/forms/UIProfile.h>
#include <morvane/media/NCamera.h>
#include <morvane/model/Forward.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>

#include <filesystem>
#include <memory>
#include <string>

namespace gallery {

class GuestScreen : public TitledScreen {
  public:
    // The cameras look at the scene (the guest's new photo).
    static std::shared_ptr<GuestScreen> make(const morvane::gfx::Rect& frame, const morvane::NodePtr& sample,
                                             const morvane::gfx::Image& scene,
                                             std::shared_ptr<Translator> translator,
                                             const std::filesystem::path& folder, Back back);
    GuestScreen(const morvane::gfx::Rect& frame, std::shared_ptr<Translator> translator);

    const std::shared_ptr<morvane::UIProfile>& card() const { return card_; }
    const std::shared_ptr<morvane::ui::Button>& editSwitch() const { return editSwitch_; }
    // The application's own camera, opened by the card's take-photo button.
    const std::shared_ptr<morvane::NCamera>& camera() const { return camera_; }
    // The last report, as the screen shows it ("" until the first).
    const std::string& received() const { return receivedText_; }
    std::string waitingFor() const override;

  protected:
    void layoutSubviews() override;

  private:
    void fill(const morvane::NodePtr& sample);
    void wire(Back back);
    void show(const std::string& what, const std::string& text, const morvane::NodePtr& node);

    std::shared_ptr<Translator> translator_;
    std::shared_ptr<morvane::UIProfile> card_;
    std::shared_ptr<morvane::ui::Button> editSwitch_;
    std::shared_ptr<morvane::ui::Label> received_;
    std::shared_ptr<morvane::NCamera> camera_;
    std::string receivedText_;
    std::string noteSource_;
};

} // namespace gallery
