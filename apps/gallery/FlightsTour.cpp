// The flights' tour: the arrivals fetched from the flight service, a
// number typed and formatted, the search turning the indicator, the flight
// pushed field by field from the service's thread, an unknown number refused,
// and the departures through the header's switch.

#include "FlightsScreen.h"
#include "TourSteps.h"

#include <morvane/lists/UICTbl.h>
#include <morvane/lists/UIHeader.h>
#include <morvane/model/List.h>
#include <morvane/ui/controls/SegmentedControl.h>
#include <morvane/ui/hosts/HeadlessHost.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "flights";

std::shared_ptr<FlightsScreen> flights(TourContext& tour) {
    return tour.screen<FlightsScreen>();
}

std::size_t tiles(TourContext& tour) {
    const ListPtr& rows = flights(tour)->search()->tblHdrUI()->ctblUI()->myData();
    return rows ? rows->size() : 0;
}

// A tap into the number field, Backspace until it is empty, then the keys.
std::string typeNumber(TourContext& tour, const std::string& keys) {
    auto& field = *flights(tour)->search()->searchFltUI()->txtZB();
    if (!tour.tap(*field.txt())) return "no number field";
    while (!field.text().empty())
        if (!tour.host().pressKey(ui::Key::Backspace)) return "Backspace refused";
    tour.host().typeText(keys);
    return {};
}

} // namespace

std::vector<TourStep> flightsSteps() {
    return {
        {
            .screen = kScreen,
            .title = "Arrivals",
            .caption = "The search screen over its header-and-grid composite: the arrivals are a data set "
                       "the composite fetches through its flight callback, answered by the sample flight "
                       "service on a background queue.",
            .check = [](TourContext& tour) -> std::string {
                return tiles(tour) == 3 ? "" : "three arrivals";
            },
        },
        {
            .screen = kScreen,
            .title = "A flight number typed",
            .caption = "\"as1144\" typed into the Flight Number field shows as an airline code and a number.",
            .act = [](TourContext& tour) { return typeNumber(tour, "as1144"); },
            .check = [](TourContext& tour) -> std::string {
                return flights(tour)->search()->searchFltUI()->txtZB()->text() == "AS 1144" ? "" : "AS 1144";
            },
        },
        {
            .screen = kScreen,
            .title = "Searching",
            .caption = "Search hands the number to the application, which starts a search: the busy "
                       "indicator turns while the service looks the flight up.",
            .act = [](TourContext& tour) -> std::string {
                return tour.tap(*flights(tour)->search()->searchFltUI()->takePhotoBtn()) ? ""
                                                                                         : "no Search button";
            },
            .check = [](TourContext& tour) -> std::string {
                return flights(tour)->search()->indicator()->isAnimating() ? "" : "the busy indicator";
            },
            .settle = false,
        },
        {
            .screen = kScreen,
            .title = "The flight",
            .caption =
                "The service pushes the flight field by field from its own thread; the kit applies each "
                "on the main thread, and the first airport brings the display up over the dimmed screen.",
            .check = [](TourContext& tour) -> std::string {
                const auto& display = *flights(tour)->search()->fltDisplayUI();
                if (display.isHidden()) return "the display";
                const auto& belt = display.arriveUI()->baggage()->login()->attributedTitle();
                return belt && belt->string() == "2" ? "" : "the arrival's baggage belt";
            },
        },
        {
            .screen = kScreen,
            .title = "An unknown flight",
            .caption = "CLOSE puts the display away; a number the service does not know stops the indicator "
                       "and shows the search box's error line.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = flights(tour);
                if (!tour.tap(*screen->search()->fltDisplayUI()->closeBtn())) return "no CLOSE";
                if (auto why = typeNumber(tour, "xx9999"); !why.empty()) return why;
                return tour.tap(*screen->search()->searchFltUI()->takePhotoBtn()) ? "" : "no Search button";
            },
            .check = [](TourContext& tour) -> std::string {
                const auto& field = *flights(tour)->search()->searchFltUI()->txtZB();
                return !field.error()->isHidden() && field.error()->text() == "No flight XX 9999 today"
                           ? ""
                           : "the error line";
            },
        },
        {
            .screen = kScreen,
            .title = "Arrivals",
            .caption =
                "The header's switch, second segment: the arrivals, fetched from the service the same way.",
            .act = [](TourContext& tour) -> std::string {
                const auto& control = *flights(tour)->search()->tblHdrUI()->headerUI()->segmentedControl();
                const gfx::Rect rect = TourContext::windowRect(control);
                if (rect.width <= 0) return "no switch on show";
                tour.host().tap({rect.x + rect.width * 0.75, rect.midY()});
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                return flights(tour)->segment() == "Departures" && tiles(tour) == 4 ? "" : "four departures";
            },
        },
    };
}

} // namespace gallery
