// Hotel Farol's tour: the excursions, the rooms, a room on the card with its
// contact strip, a contact tapped, a booking's notification handed to the
// desktop five seconds later, a field edited in edit mode, and check marks
// that keep the card closed.

#include "FarolScreen.h"
#include "TourSteps.h"

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/ui/hosts/HeadlessHost.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "farol";
constexpr const char* kNewPhone = "+351 210 000 099";

std::shared_ptr<FarolScreen> farol(TourContext& tour) {
    return tour.screen<FarolScreen>();
}

std::string setShown(TourContext& tour) {
    return farol(tour)->menu()->tblHdrUI()->headerUI()->selectionBtn()->accessibilityHint().value_or("");
}

std::string tapTile(TourContext& tour, const std::string& name) {
    const auto& grid = *farol(tour)->menu()->tblHdrUI()->ctblUI();
    const ListPtr& items = grid.myData();
    for (std::size_t i = 0; items && i < items->size(); ++i) {
        if (items->at(i).node()->get("name").textOr() != name) continue;
        const auto& view = *grid.tbl();
        tour.host().tap(
            view.convertRectTo(view.frameForItem(ui::IndexPath::forItem(int(i))), nullptr).center());
        return {};
    }
    return "no tile for " + name;
}

std::string tapContact(TourContext& tour, const std::string& action) {
    const auto& strip = *farol(tour)->menu()->touchZB();
    for (std::size_t i = 0; i < strip.myData().size(); ++i) {
        if (strip.myData()[i]->get("key").textOr() != action) continue;
        const auto& view = *strip.tbl();
        tour.host().tap(
            view.convertRectTo(view.frameForItem(ui::IndexPath::forItem(int(i))), nullptr).center());
        return {};
    }
    return "no " + action + " on the strip";
}

std::function<std::string(TourContext&)> says(std::string start) {
    return [start](TourContext& tour) -> std::string {
        const std::string& text = farol(tour)->status()->text();
        return text.rfind(start, 0) == 0 ? "" : "the status \"" + start + "...\" (it says \"" + text + "\")";
    };
}

} // namespace

std::vector<TourStep> farolSteps() {
    return {
        {
            .screen = kScreen,
            .title = "Hotel Farol",
            .caption = "The menu screen: the hotel in the header, its first data set (the excursions) as a "
                       "two-column grid of tiles with pictures, times and prices. The \" ←\" band at the top "
                       "leads back.",
            .check = [](TourContext& tour) -> std::string {
                const ListPtr& items = farol(tour)->menu()->tblHdrUI()->ctblUI()->myData();
                return items && items->size() == 3 ? "" : "the three excursions";
            },
        },
        {
            .screen = kScreen,
            .title = "The rooms",
            .caption = "A tap on the set's name cycles the data sets: the restaurant, then the rooms.",
            .act = [](TourContext& tour) -> std::string {
                const auto& button = *farol(tour)->menu()->tblHdrUI()->headerUI()->selectionBtn();
                return tour.tap(button) && tour.tap(button) ? "" : "no set name to tap";
            },
            .check = [](TourContext& tour) -> std::string {
                return setShown(tour) == "Rooms" ? "" : "the rooms (it shows " + setShown(tour) + ")";
            },
        },
        {
            .screen = kScreen,
            .title = "A room on the card",
            .caption =
                "A tap on a tile opens the profile card: the room's picture, its name, its values (the "
                "\"<en>\" one translated on another thread) and, down the right, its contact strip in "
                "the kit's fixed order.",
            .act = [](TourContext& tour) { return tapTile(tour, "Sea view suite"); },
            .check = [](TourContext& tour) -> std::string {
                const auto menu = farol(tour)->menu();
                if (menu->profileUI()->isHidden()) return "the card";
                return menu->touchZB()->myData().size() == 5 ? "" : "five contact actions";
            },
        },
        {
            .screen = kScreen,
            .title = "A contact tapped",
            .caption = "A tap on the strip's phone reaches the application with the action and the item.",
            .act = [](TourContext& tour) { return tapContact(tour, "phone"); },
            .check = says("Contact \"phone\" for Sea view suite"),
        },
        {
            .screen = kScreen,
            .title = "A booking's notification",
            .caption = "\"book\" schedules the hotel's notification (\"FiveSecond\", its texts from the "
                       "application's table); five seconds later on the tour's clock it is handed to the "
                       "desktop's notification service, and the screen shows what was handed over.",
            .act = [](TourContext& tour) -> std::string {
                if (auto why = tapContact(tour, "book"); !why.empty()) return why;
                tour.host().advance(5.2);
                return {};
            },
            .check = says("The desktop was handed \"Your booking at Hotel Farol\""),
        },
        {
            .screen = kScreen,
            .title = "A field edited",
            .caption =
                "The pen turns editing on: the phone chosen, its \"↑\" button, the number retyped in "
                "the data input bar and saved; the screen's callback for \"phone\" gets the item's key, "
                "its title, the field and the new text.",
            .act = [](TourContext& tour) -> std::string {
                const auto menu = farol(tour)->menu();
                if (!tour.tap(*menu->editBtn())) return "no pen";
                const auto& card = *menu->profileUI();
                if (card.myLbl().size() < 2 || !tour.tap(*card.myLbl()[1])) return "no phone on the card";
                if (!tour.tap(*card.editBtn())) return "no edit button";
                tour.host().advance(1.1);
                const auto& text = card.dataInputZB()->nTextview()->inputTxt()->txt();
                if (!tour.tap(*text)) return "no text to type in";
                text->setText("");
                tour.host().typeText(kNewPhone);
                return tour.tap(*card.dataInputZB()->nTextview()->saveBtn()) ? "" : "no Save";
            },
            .check = says(std::string("Field \"phone\" of farol/Rooms/r12 is now \"") + kNewPhone),
        },
        {
            .screen = kScreen,
            .title = "Check marks",
            .caption = "Editing off and the card closed, ✓ configures the grid again with check marks on: a "
                       "tap marks the tile and fills the card, which stays closed.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = farol(tour);
                tour.host().advance(1.1);
                screen->menu()->editAction();
                if (!tour.tap(*screen->checkMarks())) return "no ✓";
                return tapTile(tour, "Garden room");
            },
            .check = [](TourContext& tour) -> std::string {
                const auto menu = farol(tour)->menu();
                if (!menu->profileUI()->isHidden()) return "the card closed";
                return menu->profileUI()->keyCode() == "farol/Rooms/r21" ? ""
                                                                         : "the card filled with the room";
            },
        },
    };
}

} // namespace gallery
