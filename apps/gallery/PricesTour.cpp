// The menu prices' tour: the dishes of the kitchen's records, one opened in
// the item price selector, a name already in use refused, and a new price
// saved back into its record.

#include "PricesScreen.h"
#include "TourSteps.h"

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/ui/hosts/HeadlessHost.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "prices";

std::shared_ptr<PricesScreen> prices(TourContext& tour) {
    return tour.screen<PricesScreen>();
}

// Empties a field as a finger would: a tap into it, then Backspace until it is empty.
void retype(TourContext& tour, detail::LabelledField& field, const std::string& text) {
    tour.tap(*field.txt());
    for (std::size_t i = field.text().size(); i > 0 && !field.text().empty(); --i)
        tour.host().pressKey(ui::Key::Backspace);
    tour.host().typeText(text);
}

} // namespace

std::vector<TourStep> pricesSteps() {
    return {
        {
            .screen = kScreen,
            .title = "The kitchen's prices",
            .caption = "Three choice records as the kitchen sends them, a comma after the last member, read "
                       "leniently: each entry of their lists a dish with its price.",
            .check = [](TourContext& tour) -> std::string {
                const ListPtr& rows = prices(tour)->list()->myData();
                return rows && rows->size() == 8 ? "" : "eight dishes";
            },
        },
        {
            .screen = kScreen,
            .title = "A name already used",
            .caption = "A tap on the sardines opens the item price selector with the dish; renamed to a dish "
                       "the menu already has, the name field says \"Already used\".",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = prices(tour);
                gfx::Rect row;
                std::string key;
                if (!tour.visibleRow(*screen->list(), 1, &row, &key)) return "no second row";
                tour.host().tap(row.center());
                tour.host().runUntilIdle();
                if (screen->editor()->isHidden()) return "the editor did not open";
                retype(tour, *screen->editor()->itemTxt(), "Caldo verde");
                tour.host().advance(1.4); // the message nearly up
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                const auto& field = *prices(tour)->editor()->itemTxt();
                return field.toaster()->text() == "Already used" ? "" : "the \"Already used\" message";
            },
            .settle = false,
        },
        {
            .screen = kScreen,
            .title = "A new price saved",
            .caption = "The name back as it was and a new price typed (the price field takes digits and a "
                       "point only): Save hides the selector and the record's list has the new price.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = prices(tour);
                retype(tour, *screen->editor()->itemTxt(), "Grilled sardines");
                retype(tour, *screen->editor()->priceTxt(), "10.50");
                return tour.tap(*screen->editor()->saveBtn()) ? "" : "no Save button";
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = prices(tour);
                if (!screen->editor()->isHidden()) return "the selector hidden";
                return screen->priceOf("Grilled sardines") == "10.50" ? "" : "the new price in the record";
            },
        },
    };
}

} // namespace gallery
