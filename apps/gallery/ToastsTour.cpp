// The toasts screen's tour: a message toast with its chime, then the Photo
// or Camera choice.

#include "ToastsScreen.h"
#include "TourSteps.h"

#include <morvane/sys/Sound.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <cmath>
#include <memory>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "toasts";

std::shared_ptr<ToastsScreen> toasts(TourContext& tour) {
    return tour.screen<ToastsScreen>();
}

// True when the bar has slid up by its height from just below the screen.
bool isUp(const ui::View& bar, const ui::View& screen) {
    return std::abs(bar.frame().maxY() - screen.bounds().height) < 1e-6;
}

} // namespace

std::vector<TourStep> toastsSteps() {
    auto alerts = std::make_shared<int>(0);
    return {
        {
            .screen = kScreen,
            .title = "A toast has arrived",
            .caption = "The toast slid up from below the screen in 2.5 s and, once there, rang the kit's "
                       "alert chime "
                       "(on a machine without audio it stays silent and says so once in the log).",
            .act = [alerts](TourContext& tour) -> std::string {
                *alerts = sys::Sound::alertsAsked();
                if (!tour.tap(*toasts(tour)->toastButton())) return "no button to tap";
                tour.host().advance(2.45); // just before it arrives: then it starts to fall
                return {};
            },
            .check = [alerts](TourContext& tour) -> std::string {
                const auto screen = toasts(tour);
                return isUp(*screen->toast(), *screen) ? "" : "the toast up";
            },
        },
        {
            .screen = kScreen,
            .act = [](TourContext& tour) -> std::string {
                tour.host().advance(1.7);
                return {};
            },
            .check = [alerts](TourContext& tour) -> std::string {
                if (sys::Sound::alertsAsked() <= *alerts) return "the alert chime asked for";
                return toasts(tour)->status()->text() == "Toast 1 has gone" ? "" : "the toast's done report";
            },
        },
        {
            .screen = kScreen,
            .title = "Photo or camera",
            .caption = "The choice bar slides up the same way and offers two buttons.",
            .act = [](TourContext& tour) -> std::string {
                if (!tour.tap(*toasts(tour)->photoButton())) return "no button to tap";
                tour.host().advance(2.6);
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = toasts(tour);
                return isUp(*screen->chooser(), *screen) ? "" : "the choice bar up";
            },
        },
        {
            .screen = kScreen,
            .title = "Camera chosen",
            .caption =
                "A tap on Camera starts the bar's slide away and fade, and only then reports the choice.",
            .act = [](TourContext& tour) -> std::string {
                if (!tour.tap(*toasts(tour)->chooser()->camera())) return "no Camera button";
                tour.host().advance(1.6);
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = toasts(tour);
                if (screen->status()->text() != "Camera chosen") return "the camera choice reported";
                return screen->chooser()->alpha() == 0 ? "" : "the choice bar gone";
            },
        },
    };
}

} // namespace gallery
