#include "TourSteps.h"

#include "Navigator.h"

#include <morvane/lists/UITbl.h>
#include <morvane/model/List.h>

namespace gallery {

std::vector<TourStep> homeSteps() {
    return {{
        .screen = Navigator::kHomeId,
        .title = "The gallery's screens",
        .caption =
            "The home screen is itself a kit list: one row per screen, each opened with a tap and left "
            "with its Home button.",
        .check = [](TourContext& tour) -> std::string {
            const auto rows = tour.app().homeList()->myData()->size();
            return rows == tour.app().entries().size() ? "" : "a home row for every screen";
        },
    }};
}

std::vector<TourStep> tourSteps() {
    std::vector<TourStep> steps;
    for (auto part : {homeSteps, venueSteps, menusSteps, bookingsSteps, toastsSteps, boardingSteps,
                      cameraSteps, formsSteps, purseSteps, pricesSteps, flightsSteps, guestSteps,
                      editLayersSteps, farolSteps, adminSteps})
        for (TourStep& step : part())
            steps.push_back(std::move(step));
    return steps;
}

} // namespace gallery
