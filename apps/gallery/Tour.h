#pragma once
// The scripted tour: the venue screen on a headless host with the manual
// clock, driven like a finger would (scroll, tap, swipe both ways, pull to
// refresh). After each step it checks that the screen did what the step
// should make it do, takes a screenshot, and in the end writes index.html.
//
//   Tour tour(gallery, {.out = "gallery-pages"});
//   int status = tour.run(); // 0 when every step worked

#include "Pages.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace morvane::ui {
class HeadlessHost;
}

namespace gallery {

class Gallery;
class VenueScreen;

class Tour {
  public:
    struct Options {
        std::filesystem::path out = "gallery-pages";
        double scale = 2;        // screenshot pixels per point
        double waitSeconds = 30; // how long to wait (real time) for pictures and translations
    };

    Tour(Gallery& gallery, Options options);
    ~Tour();

    // Plays the tour, writing screenshots and index.html into the out folder.
    // Returns 0 when every step worked; otherwise prints what failed and returns 1.
    int run();

    const std::vector<Screenshot>& shots() const { return shots_; }

  private:
    bool firstScreen();
    bool scroll();
    bool tapRow();
    bool swipeToCall();
    bool swipeToSave();
    bool pullToRefresh();

    // Runs the clock and the main loop until `done` holds or the wait is over.
    bool waitFor(const std::function<bool()>& done);
    // Waits until every row on screen shows its picture and no translation is
    // outstanding; on failure says which rows are missing.
    bool waitForScreen(const std::string& step);
    std::vector<std::string> rowsWithoutPicture() const;
    // The window point at the middle of the n-th visible row (nothing when there is none).
    bool visibleRowCenter(std::size_t n, double* x, double* y, std::string* key) const;

    bool shoot(const std::string& file, const std::string& title, const std::string& caption);
    bool fail(const std::string& step, const std::string& why);

    Gallery& gallery_;
    Options options_;
    std::unique_ptr<morvane::ui::HeadlessHost> host_;
    std::shared_ptr<VenueScreen> screen_;
    std::vector<Screenshot> shots_;
};

} // namespace gallery
