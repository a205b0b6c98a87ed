// The edit layers' tour: a notice chosen, opened in the help panel, retyped
// with the line following each key, and handed back once by the panel's
// done button.

#include "EditLayersScreen.h"
#include "TourSteps.h"

#include <morvane/ui/hosts/HeadlessHost.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "layers";
constexpr const char* kNotice = "Pool open until 21:00";

std::shared_ptr<EditLayersScreen> layers(TourContext& tour) {
    return tour.screen<EditLayersScreen>();
}

} // namespace

std::vector<TourStep> editLayersSteps() {
    return {
        {
            .screen = kScreen,
            .title = "A notice in the help panel",
            .caption = "Edit on, a touch on a notice and its \"↑\" button: the help panel lies over the "
                       "notice with its text, and the layer scrolls it to the top. Typing changes the "
                       "notice at every key.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = layers(tour);
                if (!tour.tap(*screen->editSwitch())) return "no edit switch";
                if (!tour.tap(*screen->lines()[2])) return "no notice on screen";
                if (!tour.tap(*screen->board()->editBtn())) return "no edit button";
                tour.host().advance(0.5);
                const auto& text = screen->board()->editHelp()->txt();
                if (!tour.tap(*text)) return "no panel";
                text->setText("");
                tour.host().typeText(kNotice);
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = layers(tour);
                if (screen->lines()[2]->text() != kNotice) return "the notice following the typing";
                return screen->reported().empty() ? "" : "nothing reported yet";
            },
        },
        {
            .screen = kScreen,
            .title = "The notice handed back",
            .caption = "The panel's round button hands the text to the layer once; the panel closes and "
                       "the layer scrolls back.",
            .act = [](TourContext& tour) -> std::string {
                return tour.tap(*layers(tour)->board()->editHelp()->editBtn()) ? "" : "no done button";
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = layers(tour);
                if (!screen->board()->editHelp()->isHidden()) return "the panel closed";
                return screen->reported() == std::vector<std::string>{kNotice} ? "" : "one report";
            },
        },
    };
}

} // namespace gallery
