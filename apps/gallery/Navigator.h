#pragma once
// The gallery as an app of many screens: a home screen that lists them and
// one screen shown at a time. A tap on a home row opens that screen, freshly
// built; its back control brings the home screen back. The tour and the
// window both drive it the same way, with a finger.
//
//   auto app = Navigator::make(frame, {{"venues", "Places", "...", makeVenues}, ...});
//   window->addSubview(app);

#include "Screen.h"

#include <morvane/gfx/Geometry.h>
#include <morvane/lists/UITbl.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace gallery {

class Navigator : public morvane::ui::View {
  public:
    struct Entry {
        std::string id;      // short, used in file names: "venues"
        std::string title;   // the home row's title and the page section's heading
        std::string summary; // a sentence on what the screen shows
        std::function<std::shared_ptr<Screen>(const morvane::gfx::Rect& frame, Screen::Back back)> make;
    };
    static constexpr const char* kHomeId = "home";

    static std::shared_ptr<Navigator> make(const morvane::gfx::Rect& frame, std::vector<Entry> entries,
                                           std::string heading);
    // Use make(): the home list's callbacks need the navigator to be owned.
    Navigator(const morvane::gfx::Rect& frame, std::vector<Entry> entries, std::string heading);

    const std::vector<Entry>& entries() const { return entries_; }
    const std::shared_ptr<morvane::UITbl>& homeList() const { return homeList_; }
    // The screen on show, and its id ("home" for the home screen).
    std::shared_ptr<Screen> current() const { return current_; }
    const std::string& currentId() const { return currentId_; }

    // Shows the screen of that id (built anew), or the home screen for "home".
    // False for an id no entry has.
    bool open(const std::string& id);

  protected:
    void layoutSubviews() override;

  private:
    class Home;
    void watchHome();

    std::vector<Entry> entries_;
    std::shared_ptr<Screen> home_;
    std::shared_ptr<morvane::UITbl> homeList_;
    std::shared_ptr<Screen> current_;
    std::string currentId_ = kHomeId;
};

} // namespace gallery
