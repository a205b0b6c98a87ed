// The venue screen's tour: scroll, tap, swipe both ways, pull to refresh.

#include "Gallery.h"
#include "TourSteps.h"
#include "VenueScreen.h"

#include <morvane/lists/UITblCell.h>
#include <morvane/model/List.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <memory>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "venues";

// What one step notes for the next one to check against.
struct Notes {
    double offset = 0;
    int selects = 0;
    int calls = 0;
    int refreshes = 0;
    std::string key;
};

std::shared_ptr<VenueScreen> venues(TourContext& tour) {
    return tour.screen<VenueScreen>();
}

// Drags the n-th row on show sideways, by `distance` points from `from`.
TourStep swipe(const std::shared_ptr<Notes>& notes, std::size_t n, double from, double distance,
               std::string title, std::string caption) {
    return {
        .screen = kScreen,
        .title = std::move(title),
        .caption = std::move(caption),
        .act = [notes, n, from, distance](TourContext& tour) -> std::string {
            gfx::Rect row;
            if (!tour.visibleRow(*venues(tour)->list(), n, &row, &notes->key)) return "no row to swipe";
            tour.host().drag({from, row.midY()}, {from + distance, row.midY()}, 0.25, 10);
            tour.host().advance(0.5);
            return {};
        },
        .check = [distance](TourContext& tour) -> std::string {
            const auto& table = *venues(tour)->list()->tbl();
            const bool open =
                table.swipedRow() && (distance < 0 ? table.swipeOffset() < 0 : table.swipeOffset() > 0);
            return open ? "" : "the row open on the side it was swiped to";
        },
    };
}

// Taps the first action button of the open row.
std::string tapAction(TourContext& tour) {
    const auto buttons = venues(tour)->list()->tbl()->swipeActionButtons();
    if (buttons.empty()) return "no action button showed";
    tour.tap(*buttons.front());
    tour.host().advance(0.5);
    return {};
}

} // namespace

std::vector<TourStep> venueSteps() {
    auto notes = std::make_shared<Notes>();
    return {
        {
            .screen = kScreen,
            .title = "The venues, best rated first",
            .caption =
                "Each row shows the venue's picture, downloaded from the gallery's own server into the "
                "picture cache: wide pictures fill the circle, square ones show whole and unclipped, tall "
                "ones sit on their corner colour. Texts marked for translation arrived later, from another "
                "thread, in French.",
        },
        {
            .screen = kScreen,
            .title = "Scrolled down",
            .caption = "Rows that scroll in reuse the cells of rows that left; their pictures come from the "
                       "server on first sight and from the cache after that.",
            .act = [notes](TourContext& tour) -> std::string {
                notes->offset = venues(tour)->list()->tbl()->contentOffset().y;
                tour.host().drag({195, 700}, {195, 260}, 0.3, 12);
                tour.host().advance(3); // let the list glide to a stop
                return {};
            },
            .check = [notes](TourContext& tour) -> std::string {
                return venues(tour)->list()->tbl()->contentOffset().y > notes->offset + 100
                           ? ""
                           : "the list moved";
            },
        },
        {
            .screen = kScreen,
            .title = "A tap selects a row",
            .caption =
                "The tapped venue gets the check mark and the app's select callback tells the status line.",
            .act = [notes](TourContext& tour) -> std::string {
                gfx::Rect row;
                if (!tour.visibleRow(*venues(tour)->list(), 1, &row, &notes->key)) return "no row to tap";
                notes->selects = venues(tour)->events().selects;
                tour.host().tap(row.center());
                return {};
            },
            .check = [notes](TourContext& tour) -> std::string {
                const auto screen = venues(tour);
                if (screen->events().selects != notes->selects + 1) return "one call of the select callback";
                if (screen->list()->currentSelection().value_or("") != notes->key)
                    return "the tapped row " + notes->key + " as the selection";
                for (const auto& cell : screen->list()->tbl()->visibleCells())
                    if (auto row = std::dynamic_pointer_cast<UITblCell>(cell);
                        row && !row->checkLabel()->isHidden())
                        return {};
                return "a row with the check mark";
            },
        },
        swipe(notes, 2, 340, -190, "Swipe left: Call",
              "Swiping a row to the left shows its trailing action."),
        {
            .screen = kScreen,
            .act = [notes](TourContext& tour) -> std::string {
                notes->calls = venues(tour)->events().calls;
                notes->selects = venues(tour)->events().selects;
                return tapAction(tour);
            },
            .check = [notes](TourContext& tour) -> std::string {
                const auto& events = venues(tour)->events();
                return events.calls == notes->calls + 1 && events.selects == notes->selects + 1
                           ? ""
                           : "the action's callback and then the select callback, once each";
            },
        },
        swipe(notes, 3, 40, 190, "Swipe right: Save",
              "Swiping the other way shows the leading action. The status line still tells of the call made "
              "with "
              "the previous row's trailing action."),
        {
            .screen = kScreen,
            .title = "Saved for later",
            .caption =
                "The Save action marks the venue; the populate callback adds a line to the row when it is "
                "drawn again. Translated lines come later, so they land below it.",
            .act = tapAction,
            .check = [notes](TourContext& tour) -> std::string {
                return venues(tour)->isSaved(notes->key) ? "" : "the venue " + notes->key + " saved";
            },
        },
        {
            .screen = kScreen,
            .act = [](TourContext& tour) -> std::string {
                venues(tour)->list()->tbl()->scrollToRow(ui::IndexPath::forRow(0),
                                                         ui::TableView::ScrollPosition::Top, false);
                // The photos' new date must be later than the cached copies' (stamps count whole seconds).
                tour.host().advance(2);
                return {};
            },
        },
        {
            .screen = kScreen,
            .title = "Pull to refresh",
            .caption =
                "Pulling the list down past its top calls the app's refresh callback at once: the new venue "
                "is in while the finger is still down, and spinners turn while the newer photos download.",
            .act = [notes](TourContext& tour) -> std::string {
                notes->refreshes = venues(tour)->events().refreshes;
                const gfx::Point start{195, 200};
                tour.host().touchDown(start);
                for (int step = 1; step <= 12; ++step) {
                    tour.host().advance(0.03);
                    tour.host().touchMove({start.x, start.y + step * 15.0});
                }
                return {};
            },
            .check = [notes](TourContext& tour) -> std::string {
                return venues(tour)->events().refreshes == notes->refreshes + 1
                           ? ""
                           : "one call of the refresh callback";
            },
            .settle = false,
        },
        {
            .screen = kScreen,
            .title = "Refreshed",
            .caption =
                "After the pull a new venue is listed, and two venues announce newer photos by their date "
                "stamp: the picture cache fetches the evening versions again from the server.",
            .act = [](TourContext& tour) -> std::string {
                tour.host().touchUp({195, 380});
                tour.host().advance(1);
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                if (venues(tour)->list()->myData()->size() != tour.gallery().data().rows(1, {}, "")->size())
                    return "the refreshed venues";
                for (const std::string& path : Gallery::kUpdatedPictures)
                    if (tour.gallery().server().requestCount(path) < 2)
                        return "the new version of " + path + " downloaded";
                return {};
            },
        },
    };
}

} // namespace gallery
