// The bookings screen's tour: arrivals and departures through the header's
// switch, the next day, a guest checked out with a swipe, a booking
// cancelled, and the error toast for a day the desk has no list for.

#include "BookingsScreen.h"
#include "TourSteps.h"

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <memory>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "bookings";

std::shared_ptr<BookingsScreen> desk(TourContext& tour) {
    return tour.screen<BookingsScreen>();
}

std::string guestKeys(TourContext& tour) {
    return TourContext::keysOf(desk(tour)->composite()->tblUI()->myData());
}

// The header shows the day and the rows are that day's guests (sorted by name).
std::function<std::string(TourContext&)> shows(std::string segment, std::string day, std::string keys) {
    return [segment, day, keys](TourContext& tour) -> std::string {
        const auto screen = desk(tour);
        if (screen->segment() != segment) return segment + " on show";
        // The button shows the name on two lines; its hint holds the whole name.
        const std::string shown =
            screen->composite()->headerUI()->selectionBtn()->accessibilityHint().value_or("");
        if (shown != "Day-" + day) return "the day " + day + " (it shows " + shown + ")";
        if (guestKeys(tour) != keys) return "the guests " + keys + " (there are " + guestKeys(tour) + ")";
        return {};
    };
}

// Swipes the n-th guest on show and taps the action that opens.
std::function<std::string(TourContext&)> swipeAndTap(std::shared_ptr<std::string> key, std::size_t n,
                                                     double from, double distance) {
    return [key, n, from, distance](TourContext& tour) -> std::string {
        const auto& list = *desk(tour)->composite()->tblUI();
        gfx::Rect row;
        if (!tour.visibleRow(list, n, &row, key.get())) return "no guest to swipe";
        tour.host().drag({from, row.midY()}, {from + distance, row.midY()}, 0.25, 10);
        tour.host().advance(0.5);
        const auto buttons = list.tbl()->swipeActionButtons();
        if (buttons.empty()) return "no action button showed";
        tour.tap(*buttons.front());
        tour.host().advance(0.5);
        return {};
    };
}

std::function<std::string(TourContext&)> marked(std::shared_ptr<std::string> key, std::string what) {
    return [key, what](TourContext& tour) -> std::string {
        return desk(tour)->statusOf(*key) == what ? "" : "the booking " + *key + " marked " + what;
    };
}

} // namespace

std::vector<TourStep> bookingsSteps() {
    auto checkedOut = std::make_shared<std::string>(), cancelled = std::make_shared<std::string>();
    return {
        {
            .screen = kScreen,
            .title = "Arrivals on Monday",
            .caption =
                "The header-and-list composite in list form: the switch in the header picks arrivals or "
                "departures, the button the day, and the day's guests are the rows.",
            .check = shows("Arrivals", "Mon 23", "A00 A01 A02 A03 A04"),
        },
        {
            .screen = kScreen,
            .title = "Departures",
            .caption =
                "A tap on the switch's second segment: the screen's segment callback gives the header the "
                "departure days, and the first day's guests become the rows.",
            .act = [](TourContext& tour) -> std::string {
                const auto& control = *desk(tour)->composite()->headerUI()->segmentedControl();
                const gfx::Rect rect = TourContext::windowRect(control);
                tour.host().tap({rect.x + rect.width * 0.75, rect.midY()});
                return {};
            },
            .check = shows("Departures", "Mon 23", "D00 D01 D02 D03 D04"),
        },
        {
            .screen = kScreen,
            .act = [](TourContext& tour) -> std::string {
                return tour.tap(*desk(tour)->composite()->headerUI()->selectionBtn()) ? "" : "no day to tap";
            },
            .check = shows("Departures", "Tue 24", "D13 D14 D10 D11 D12"),
        },
        {
            .screen = kScreen,
            .title = "Checked out",
            .caption =
                "A guest swiped to the left and its Check in/out action tapped: on the departures list it "
                "checks the guest out, and the row gets a line saying so when it is drawn again.",
            .act = swipeAndTap(checkedOut, 1, 340, -190),
            .check = marked(checkedOut, "Checked out"),
        },
        {
            .screen = kScreen,
            .title = "Cancelled",
            .caption = "Swiped the other way, a booking is cancelled.",
            .act = swipeAndTap(cancelled, 2, 40, 190),
            .check = marked(cancelled, "Cancelled"),
        },
        {
            .screen = kScreen,
            .title = "A day with no list",
            .caption =
                "Asked for a day it has no list for, the header shows its error toast, which rises into the "
                "bar and falls away after two seconds; the rows stay as they were.",
            .act = [](TourContext& tour) -> std::string {
                desk(tour)->showDay("Sun 29");
                tour.host().advance(1.9); // the strip takes two seconds to rise
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                const auto& toaster = *desk(tour)->composite()->headerUI()->toaster();
                if (toaster.isHidden() || toaster.text().find("Error: Sun 29") == std::string::npos)
                    return "the error toast for Sun 29";
                return guestKeys(tour) == "D13 D14 D10 D11 D12" ? "" : "the rows of Tue 24 still";
            },
            .settle = false,
        },
    };
}

} // namespace gallery
