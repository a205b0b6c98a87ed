#pragma once
// The gallery's menus screen: a venue's menus in the kit's header-and-grid
// composite. The header cycles through the menus ("Breakfast", "Dinner",
// "Drinks", "Lunch", "Specials"); each becomes the tiles below, two to a
// row, with their pictures from the picture server, prices and ingredients
// (gathered from the dish's "$" entries). The specials come from the
// kitchen's service: the menu only says "api", and the composite asks the
// screen's flight callback, which answers later from another thread.
//
//   auto screen = MenusScreen::make(frame, parseSample(menusText), translator, goHome);

#include "CompositeScreen.h"

#include <morvane/model/Forward.h>

#include <atomic>
#include <memory>
#include <string>

namespace gallery {

class Translator;

class MenusScreen : public CompositeScreen {
  public:
    // Seconds (on the kit's clock) the kitchen's service takes to answer.
    static constexpr double kServiceDelay = 0.6;

    static std::shared_ptr<MenusScreen> make(const morvane::gfx::Rect& frame, morvane::NodePtr menus,
                                             std::shared_ptr<Translator> translator, Back back);
    // Use make(): the callbacks need the screen to be owned already.
    MenusScreen(const morvane::gfx::Rect& frame, morvane::NodePtr menus,
                std::shared_ptr<Translator> translator);

    // Requests sent to the kitchen's service, and the answers it gave.
    int serviceRequests() const { return service_->requests.load(); }
    int serviceAnswers() const { return service_->answers.load(); }
    const std::string& lastSelected() const { return lastSelected_; }

    std::string waitingFor() const override;

  private:
    void wire(Back back);

    // Shared with the answers in flight, which may outlive the screen.
    struct Service {
        std::atomic<int> requests{0};
        std::atomic<int> answers{0};
    };

    morvane::NodePtr menus_;
    std::shared_ptr<Translator> translator_;
    std::shared_ptr<Service> service_ = std::make_shared<Service>();
    std::string lastSelected_;
};

} // namespace gallery
