#pragma once
// The scripted tour: the gallery app on a headless host with the manual
// clock, driven like a finger would. The tour is a list of steps declared as
// data, screen by screen (see TourSteps.h); this runner knows no screen. For
// each step it opens the step's screen from the home screen when another one
// is showing (tapping back, then the home row), does what the step does,
// waits until the step's check and the screen itself are content, takes the
// step's screenshot, and in the end writes index.html, grouped by screen.
//
//   Tour tour(gallery, {.out = "gallery-pages"});
//   int status = tour.run(); // 0 when every step worked

#include "Navigator.h"
#include "Pages.h"

#include <morvane/gfx/Geometry.h>
#include <morvane/model/Forward.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace morvane {
class UITbl;
namespace ui {
class HeadlessHost;
}
} // namespace morvane

namespace gallery {

class Gallery;
class TourContext;

struct TourStep {
    // Members start empty, so that a step names only what it has.
    std::string screen{};  // the id of the screen it runs on ("home" for the home screen)
    std::string title{};   // the screenshot's title; "" for a step without a screenshot
    std::string caption{}; // what the screenshot shows
    // What the finger does: "" when done, or why it could not be done.
    std::function<std::string(TourContext&)> act{};
    // What the screen must show afterwards: "" once it does, or what is still
    // missing. Asked again while the clock and the main loop run, until the wait is over.
    std::function<std::string(TourContext&)> check{};
    // Also wait for the screen's own pictures and translations before the
    // screenshot (off for a shot taken in the middle of a gesture).
    bool settle = true;
};

// What a step can reach and do.
class TourContext {
  public:
    TourContext(morvane::ui::HeadlessHost& host, Navigator& app, Gallery& gallery)
        : host_(host), app_(app), gallery_(gallery) {}

    morvane::ui::HeadlessHost& host() { return host_; }
    Navigator& app() { return app_; }
    Gallery& gallery() { return gallery_; }
    // The screen on show as a T, or null when another kind is showing.
    template <class T> std::shared_ptr<T> screen() const {
        return std::dynamic_pointer_cast<T>(app_.current());
    }

    // A tap in the middle of the view; false when it is not on the window.
    bool tap(const morvane::ui::View& view);
    // The part of a view that shows on the window, in window coordinates.
    static morvane::gfx::Rect windowRect(const morvane::ui::View& view);
    // The rows' "key" texts in their order, one space between ("?" for a row that is no Node).
    static std::string keysOf(const morvane::ListPtr& rows);
    // The window rectangle and "key" of the n-th row wholly on show in a list.
    bool visibleRow(const morvane::UITbl& list, std::size_t n, morvane::gfx::Rect* rect,
                    std::string* key) const;

  private:
    morvane::ui::HeadlessHost& host_;
    Navigator& app_;
    Gallery& gallery_;
};

class Tour {
  public:
    struct Options {
        std::filesystem::path out = "gallery-pages";
        double scale = 2;        // screenshot pixels per point
        double waitSeconds = 30; // how long to wait (real time) at each step
    };

    Tour(Gallery& gallery, Options options);
    ~Tour();

    // Plays the tour, writing screenshots and index.html into the out folder.
    // Returns 0 when every step worked; otherwise prints what failed and returns 1.
    int run();

  private:
    bool play(TourContext& context, const std::vector<TourStep>& steps);
    bool go(TourContext& context, const std::string& screen);
    // Runs the clock and the main loop until `missing` answers "" or the wait
    // is over; what was still missing then, or "".
    std::string waitFor(const std::function<std::string()>& missing);
    bool shoot(const std::string& screen, const std::string& title, const std::string& caption);
    bool fail(const std::string& step, const std::string& why);

    Gallery& gallery_;
    Options options_;
    std::unique_ptr<morvane::ui::HeadlessHost> host_;
    std::shared_ptr<Navigator> app_;
    std::vector<std::pair<std::string, Screenshot>> shots_; // screen id, shot
};

} // namespace gallery
