// The menus screen's tour: the header cycling through the menus, the
// specials answered from another thread, a dish selected.

#include "MenusScreen.h"
#include "TourSteps.h"

#include <morvane/lists/UICTblCell.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <memory>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "menus";

std::shared_ptr<MenusScreen> menus(TourContext& tour) {
    return tour.screen<MenusScreen>();
}

// The whole name of the menu on show (the button shows its last part).
std::string caption(TourContext& tour) {
    const std::string name =
        menus(tour)->composite()->headerUI()->selectionBtn()->accessibilityHint().value_or("");
    return name.starts_with("Menu-") ? name.substr(5) : name;
}

// The keys of the tiles' dishes, in their order.
std::string dishKeys(TourContext& tour) {
    return TourContext::keysOf(menus(tour)->composite()->ctblUI()->myData());
}

std::string tapMenuName(TourContext& tour) {
    return tour.tap(*menus(tour)->composite()->headerUI()->selectionBtn()) ? "" : "no menu name to tap";
}

// The header shows the menu and the tiles are its dishes.
std::function<std::string(TourContext&)> shows(std::string menu, std::string keys) {
    return [menu, keys](TourContext& tour) -> std::string {
        if (caption(tour) != menu) return "the menu name " + menu + " (it shows " + caption(tour) + ")";
        if (dishKeys(tour) != keys) return "the dishes " + keys + " (there are " + dishKeys(tour) + ")";
        return {};
    };
}

std::shared_ptr<UICTblCell> tile(TourContext& tour, int item) {
    return std::dynamic_pointer_cast<UICTblCell>(
        menus(tour)->composite()->ctblUI()->tbl()->cellForItem(ui::IndexPath::forItem(item)));
}

} // namespace

std::vector<TourStep> menusSteps() {
    return {
        {
            .screen = kScreen,
            .title = "Breakfast at the harbour",
            .caption =
                "The header-and-grid composite: the header's button names the menu on show, and the "
                "menu's dishes are the tiles below, two to a row, with their pictures from the server and "
                "their prices. The title was marked for translation and arrived in French.",
            .check = [](TourContext& tour) -> std::string {
                if (std::string why = shows("Breakfast", "B01 B03 B02 B04")(tour); !why.empty()) return why;
                if (menus(tour)->composite()->headerUI()->titleLbl()->text() != "Nos menus")
                    return "the title in French";
                // The tile's hidden body holds the ingredients, gathered from its "$" entries.
                const auto croissant = tile(tour, 0);
                if (!croissant || croissant->bodyLbl()->text() != "Butter\nApricot jam")
                    return "the croissant's ingredients gathered from its \"$\" entries";
                return {};
            },
        },
        {
            .screen = kScreen,
            .title = "Next menu: Dinner",
            .caption =
                "A tap on the menu's name moves to the next one, in alphabetical order: the header hands "
                "the menu to the composite, which makes its dishes the tiles.",
            .act = tapMenuName,
            .check = shows("Dinner", "D02 D03 D04 D01"),
        },
        {.screen = kScreen, .act = tapMenuName, .check = shows("Drinks", "K02 K03 K01")},
        {.screen = kScreen, .act = tapMenuName, .check = shows("Lunch", "L03 L02 L01 L04 L05")},
        {
            .screen = kScreen,
            .title = "Specials from the kitchen",
            .caption =
                "The Specials menu holds only an \"api\" entry: the composite asks the screen's flight "
                "callback, which answers 0.6 s later from another thread, and the answer is loaded on the "
                "main queue.",
            .act = tapMenuName,
            .check = [](TourContext& tour) -> std::string {
                if (menus(tour)->serviceRequests() != 1) return "one request to the kitchen's service";
                return shows("Specials", "S01 S02")(tour);
            },
        },
        {
            .screen = kScreen,
            .title = "A dish chosen",
            .caption =
                "A tap on a tile selects the dish: it gets the check mark and the status line says what it "
                "costs.",
            .act = [](TourContext& tour) -> std::string {
                const auto catchOfTheDay = tile(tour, 0);
                return catchOfTheDay && tour.tap(*catchOfTheDay) ? "" : "no tile to tap";
            },
            .check = [](TourContext& tour) -> std::string {
                if (menus(tour)->lastSelected() != "S01") return "the catch of the day selected";
                const auto chosen = tile(tour, 0), other = tile(tour, 1);
                if (!chosen || chosen->checkLabel()->isHidden()) return "the check mark on the chosen tile";
                if (!other || !other->checkLabel()->isHidden()) return "no check mark on the other tile";
                return {};
            },
        },
    };
}

} // namespace gallery
