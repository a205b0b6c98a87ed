// The guest profile's tour: the card filled and its note translated; edit
// mode; the email retyped and saved in the data input bar, the phone
// deleted, and the photo replaced through the camera; each time the screen
// shows what the application received.

#include "GuestScreen.h"
#include "TourSteps.h"

#include <morvane/ui/hosts/HeadlessHost.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "guest";
constexpr const char* kNewEmail = "ines@farol.pt";

std::shared_ptr<GuestScreen> guest(TourContext& tour) {
    return tour.screen<GuestScreen>();
}

// Touches the view on the card and presses its "↑" button.
std::string chooseAndOpen(TourContext& tour, const ui::View& view) {
    const auto card = guest(tour)->card();
    if (!tour.tap(view)) return "the view is not on screen";
    if (card->currentView() != &view) return "the touch chose another view";
    if (!tour.tap(*card->editBtn())) return "no edit button";
    tour.host().advance(1.1); // the bar slides in
    return {};
}

} // namespace

std::vector<TourStep> guestSteps() {
    return {
        {
            .screen = kScreen,
            .title = "A guest's card",
            .caption =
                "The card from a guest's Node: the photo from the picture server, the name (the "
                "part after the last \"-\" and \"/\"), the white line, and the values; the note marked "
                "\"<en>\" arrives translated from another thread.",
            .check = [](TourContext& tour) -> std::string {
                const auto card = guest(tour)->card();
                if (card->nameLbl()->text() != "Inês Araújo") return "the name";
                return card->myLblData().size() == 5 ? "" : "five values";
            },
        },
        {
            .screen = kScreen,
            .title = "Edit mode",
            .caption = "With Edit on, the take-photo button shows on the picture; a touch on the email "
                       "chooses it: a thin border and the round \"↑\" button at its top right.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = guest(tour);
                if (!tour.tap(*screen->editSwitch())) return "no edit switch";
                return tour.tap(*screen->card()->myLbl()[1]) ? "" : "no email on screen";
            },
            .check = [](TourContext& tour) -> std::string {
                const auto card = guest(tour)->card();
                if (card->takePhotoBtn()->isHidden()) return "the take-photo button";
                return card->editBtn()->isHidden() ? "the edit button" : "";
            },
        },
        {
            .screen = kScreen,
            .title = "The email retyped",
            .caption = "The \"↑\" button opens the data input bar with the email; retyped and saved, the "
                       "card shows it and the application receives it with the card's Node and the field.",
            .act = [](TourContext& tour) -> std::string {
                const auto card = guest(tour)->card();
                if (auto why = chooseAndOpen(tour, *card->myLbl()[1]); !why.empty()) return why;
                const auto& text = card->dataInputZB()->nTextview()->inputTxt()->txt();
                if (!tour.tap(*text)) return "no text to type in";
                text->setText("");
                tour.host().typeText(kNewEmail);
                return tour.tap(*card->dataInputZB()->nTextview()->saveBtn()) ? "" : "no Save";
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = guest(tour);
                if (screen->card()->myLbl()[1]->text() != kNewEmail) return "the new email on the card";
                return screen->received() == std::string("editCB(\"") + kNewEmail + "\")" ? "" : "the report";
            },
        },
        {
            .screen = kScreen,
            .title = "The phone deleted",
            .caption = "DELETE in the bar reports the phone emptied; the card leaves the text as it was "
                       "for the application to decide.",
            .act = [](TourContext& tour) -> std::string {
                const auto card = guest(tour)->card();
                tour.host().advance(1.1); // the last bar slides away
                if (auto why = chooseAndOpen(tour, *card->myLbl()[0]); !why.empty()) return why;
                return tour.tap(*card->dataInputZB()->nTextview()->deleteBtn()) ? "" : "no DELETE";
            },
            .check = [](TourContext& tour) -> std::string {
                return guest(tour)->received() == "editCB(\"\")" ? "" : "the report of the deletion";
            },
        },
        {
            .screen = kScreen,
            .title = "A new photo",
            .caption = "The picture chosen and its \"↑\" button pressed: the canvas's camera opens (the "
                       "virtual one, looking at a new photo of the guest); the shutter takes the photo, "
                       "which replaces the old one and reaches the application.",
            .act = [](TourContext& tour) -> std::string {
                const auto card = guest(tour)->card();
                tour.host().advance(1.1);
                card->setContentOffset({0, 0});
                if (auto why = chooseAndOpen(tour, *card->imageZB()); !why.empty()) return why;
                if (card->camera()->isHidden()) return "the camera";
                return tour.tap(*card->camera()->save()) ? "" : "no shutter";
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = guest(tour);
                const auto card = screen->card();
                if (card->camera()->previewFramesShown() > 0 && card->camera()->save()->tag() == 1)
                    tour.tap(*card->camera()->save()); // the preview runs: take the photo
                return screen->received().rfind("logoCB(", 0) == 0 ? "" : "the new photo reported";
            },
        },
    };
}

} // namespace gallery
