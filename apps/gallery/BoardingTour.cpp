// The boarding pass's tour: the pass voided and restored, scanned through
// the virtual camera and read back, then a code of plain text refused.

#include "BoardingScreen.h"
#include "TourSteps.h"

#include <morvane/ui/hosts/HeadlessHost.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "boarding";

std::shared_ptr<BoardingScreen> boarding(TourContext& tour) {
    return tour.screen<BoardingScreen>();
}

std::string tapOn(TourContext& tour, const ui::View& button) {
    return tour.tap(button) ? "" : "no button to tap";
}

} // namespace

std::vector<TourStep> boardingSteps() {
    return {
        {
            .screen = kScreen,
            .title = "A void pass",
            .caption = "The booking's compact JSON as a QR code at level H, drawn to the view's size; "
                       "Void lays the turned VOID stamp over it.",
            .act = [](TourContext& tour) { return tapOn(tour, *boarding(tour)->voidButton()); },
            .check = [](TourContext& tour) -> std::string {
                const auto stamp = boarding(tour)->pass()->stamp();
                return stamp->tag() == 1 && !stamp->isHidden() ? "" : "the VOID stamp";
            },
        },
        {
            .screen = kScreen,
            .title = "The pass read back",
            .caption = "Restored, the pass is shown to the reader through the virtual camera: the reader "
                       "decodes the code on its own queue, stops the camera and hands back the booking, "
                       "shown beside the original.",
            .act = [](TourContext& tour) -> std::string {
                if (auto why = tapOn(tour, *boarding(tour)->voidButton()); !why.empty()) return why;
                return tapOn(tour, *boarding(tour)->scanButton());
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = boarding(tour);
                if (screen->reads() < 1) return "the booking read back";
                return screen->status()->text() == "Read back: the same booking" ? "" : "the same booking";
            },
        },
        {
            .screen = kScreen,
            .title = "Plain text is refused",
            .caption = "A code that holds plain text, not a JSON object, gives the reader's error strip "
                       "sliding up from its bottom edge, and no answer.",
            .act = [](TourContext& tour) -> std::string {
                if (auto why = tapOn(tour, *boarding(tour)->textButton()); !why.empty()) return why;
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                const auto reader = boarding(tour)->reader();
                if (reader->toaster()->isHidden()) return "the error strip";
                // Half way up: the strip is easy to see in the screenshot.
                return reader->toaster()->presentation().frame().maxY() < reader->bounds().height - 4
                           ? ""
                           : "the error strip on its way up";
            },
            .settle = false,
        },
    };
}

} // namespace gallery
