// The table request's tour: fields typed one character at a time (the phone
// and flight numbers formatted as they come), a request that names what is
// missing, validation toasts, a note retyped in the data input bar, and the
// form opened again with the last entries remembered.

#include "FormsScreen.h"
#include "TourSteps.h"

#include <morvane/ui/hosts/HeadlessHost.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "forms";

std::shared_ptr<FormsScreen> forms(TourContext& tour) {
    return tour.screen<FormsScreen>();
}

// Taps the field's entry and types the text a character at a time.
std::string typeInto(TourContext& tour, detail::LabelledField& field, const std::string& text) {
    if (!tour.tap(*field.txt())) return "no field to tap";
    tour.host().typeText(text);
    return {};
}

} // namespace

std::vector<TourStep> formsSteps() {
    return {
        {
            .screen = kScreen,
            .title = "Typed into labelled fields",
            .caption = "Each caption shows once its field holds text; the phone number is formatted as the "
                       "digits come, the flight number too.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = forms(tour);
                for (auto& [field, text] :
                     std::initializer_list<std::pair<detail::LabelledField*, std::string>>{
                         {screen->name().get(), "Inês Araújo"},
                         {screen->phone().get(), "5551234567"},
                         {screen->flight().get(), "tp1947"}})
                    if (auto why = typeInto(tour, *field, text); !why.empty()) return why;
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = forms(tour);
                if (screen->phone()->text() != "555 123-4567") return "the phone number formatted";
                return screen->flight()->text() == "TP 1947" ? "" : "the flight number formatted";
            },
        },
        {
            .screen = kScreen,
            .title = "What is missing",
            .caption = "Request a table: the email is still empty, so its field shows the error line "
                       "\"Please enter email.\" and the status line names it.",
            .act = [](TourContext& tour) -> std::string {
                return tour.tap(*forms(tour)->requestButton()) ? "" : "no request button";
            },
            .check = [](TourContext& tour) -> std::string {
                const auto email = forms(tour)->email();
                return !email->error()->isHidden() && email->error()->text() == "Please enter email."
                           ? ""
                           : "the email's error line";
            },
        },
        {
            .screen = kScreen,
            .title = "Checked while typed",
            .caption = "The email is checked at every key: without an @ the toaster slides up with the "
                       "message. The party size takes digits only and says so.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = forms(tour);
                if (auto why = typeInto(tour, *screen->email(), "ines.araujo"); !why.empty()) return why;
                tour.host().advance(0.8);
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                return forms(tour)->email()->toaster()->text() == "An email address has an @"
                           ? ""
                           : "the email's toast";
            },
            .settle = false,
        },
        {
            .screen = kScreen,
            .title = "A note retyped",
            .caption = "Add a note: the data input bar veils the form and slides its editor panel up; the "
                       "text is typed there.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = forms(tour);
                tour.host().advance(3); // the email's toast has gone
                if (auto why = typeInto(tour, *screen->email(), "@example.com"); !why.empty()) return why;
                if (auto why = typeInto(tour, *screen->party(), "4"); !why.empty()) return why;
                if (!tour.tap(*screen->noteButton())) return "no note button";
                tour.host().advance(1.0);
                if (!tour.tap(*screen->noteBar()->nTextview()->inputTxt()->txt()))
                    return "no note to type in";
                tour.host().typeText("Window seat, please.");
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                const auto bar = forms(tour)->noteBar();
                return !bar->isHidden() &&
                               bar->nTextview()->inputTxt()->txt()->text() == "Window seat, please."
                           ? ""
                           : "the note typed in the bar";
            },
        },
        {
            .screen = kScreen,
            .title = "Requested",
            .caption = "Save slides the panel away and the note shows on the form; the request now goes "
                       "through.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = forms(tour);
                if (!tour.tap(*screen->noteBar()->nTextview()->saveBtn())) return "no Save";
                tour.host().advance(1.1);
                return tour.tap(*screen->requestButton()) ? "" : "no request button";
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = forms(tour);
                if (screen->note()->text() != "Window seat, please.") return "the saved note";
                if (!screen->noteBar()->isHidden()) return "the bar hidden";
                return screen->status()->text() == "Table requested for Inês Araújo" ? "" : "the request";
            },
        },
        {
            .screen = Navigator::kHomeId,
            .act = [](TourContext&) -> std::string { return {}; },
        },
        {
            .screen = kScreen,
            .title = "Remembered",
            .caption = "Opened again, each field offers the last text typed into it, kept under the "
                       "field's name in the application's settings store.",
            .check = [](TourContext& tour) -> std::string {
                const auto screen = forms(tour);
                if (screen->name()->text() != "Inês Araújo") return "the remembered name";
                return screen->email()->text() == "ines.araujo@example.com" ? "" : "the remembered email";
            },
        },
    };
}

} // namespace gallery
