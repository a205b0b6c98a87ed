// The administration's tour: the guests, one on the card with a readable
// date, and a field edited and reported by its own callback.

#include "AdminScreen.h"
#include "TourSteps.h"

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/ui/hosts/HeadlessHost.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "admin";
constexpr const char* kNewEmail = "ines@farol.pt";

std::shared_ptr<AdminScreen> office(TourContext& tour) {
    return tour.screen<AdminScreen>();
}

std::string tapRecord(TourContext& tour, const std::string& name) {
    const auto& list = *office(tour)->admin()->tblHdrUI()->tblUI();
    const ListPtr& rows = list.myData();
    for (std::size_t i = 0; rows && i < rows->size(); ++i) {
        if (rows->at(i).node()->get("name").textOr() != name) continue;
        const auto& table = *list.tbl();
        tour.host().tap(
            table.convertRectTo(table.rectForRow(ui::IndexPath::forRow(int(i))), nullptr).center());
        return {};
    }
    return "no row for " + name;
}

} // namespace

std::vector<TourStep> adminSteps() {
    return {
        {
            .screen = kScreen,
            .title = "Guests",
            .caption = "The administration panel: the front office's first data set, its guests, as a list "
                       "of records.",
            .check = [](TourContext& tour) -> std::string {
                const ListPtr& rows = office(tour)->admin()->tblHdrUI()->tblUI()->myData();
                return rows && rows->size() == 3 ? "" : "three guests";
            },
        },
        {
            .screen = kScreen,
            .title = "A guest on the card",
            .caption = "A tapped record on the profile card: named by its category (the part after the "
                       "\"-\"), its values, and the stored stamp of the last stay shown as a readable date.",
            .act = [](TourContext& tour) { return tapRecord(tour, "Inês Araújo"); },
            .check = [](TourContext& tour) -> std::string {
                const auto& card = *office(tour)->admin()->profileUI();
                if (card.isHidden()) return "the card";
                if (card.myLbl().size() < 4) return "four values";
                return card.myLbl()[3]->text().find("23 Nov 2026") == 0 ? "" : "the readable date";
            },
        },
        {
            .screen = kScreen,
            .title = "A field edited",
            .caption = "The pen turns editing on; the email retyped in the data input bar and saved reaches "
                       "the panel's callback for \"email\" with the record's key and title.",
            .act = [](TourContext& tour) -> std::string {
                const auto admin = office(tour)->admin();
                if (!tour.tap(*admin->editBtn())) return "no pen";
                const auto& card = *admin->profileUI();
                if (!tour.tap(*card.myLbl()[2])) return "no email on the card";
                if (!tour.tap(*card.editBtn())) return "no edit button";
                tour.host().advance(1.1);
                const auto& text = card.dataInputZB()->nTextview()->inputTxt()->txt();
                if (!tour.tap(*text)) return "no text to type in";
                text->setText("");
                tour.host().typeText(kNewEmail);
                return tour.tap(*card.dataInputZB()->nTextview()->saveBtn()) ? "" : "no Save";
            },
            .check = [](TourContext& tour) -> std::string {
                const std::string& text = office(tour)->status()->text();
                return text.find(kNewEmail) != std::string::npos ? ""
                                                                 : "the report (it says \"" + text + "\")";
            },
        },
    };
}

} // namespace gallery
