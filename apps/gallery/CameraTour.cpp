// The cameras' tour: the plain camera opened and a photo taken and brought
// within the limits; the captioned camera opened, its caption placed with a
// touch and typed, then left to rest.

#include "CameraScreen.h"
#include "TourSteps.h"

#include <morvane/ui/hosts/HeadlessHost.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "camera";
constexpr const char* kCaption = "Table 4, by the window";

std::shared_ptr<CameraScreen> cameras(TourContext& tour) {
    return tour.screen<CameraScreen>();
}

} // namespace

std::vector<TourStep> cameraSteps() {
    return {
        {
            .screen = kScreen,
            .title = "The camera open",
            .caption = "The first press of the shutter opens the camera (here the virtual one, looking at "
                       "a picture of the bistro): the shutter turns red and the preview fills with frames.",
            .act = [](TourContext& tour) -> std::string {
                return tour.tap(*cameras(tour)->camera()->save()) ? "" : "no shutter";
            },
            .check = [](TourContext& tour) -> std::string {
                return cameras(tour)->camera()->previewFramesShown() > 0 ? "" : "a preview frame";
            },
        },
        {
            .screen = kScreen,
            .title = "A photo within the limits",
            .caption = "The second press takes the photo: the camera closes and the photo, brought within "
                       "350 x 400 and stored as JPEG at quality 0.1, is shown beside it.",
            .act = [](TourContext& tour) -> std::string {
                return tour.tap(*cameras(tour)->camera()->save()) ? "" : "no shutter";
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = cameras(tour);
                if (screen->photo()->image().isNull()) return "the photo";
                return screen->camera()->save()->tag() == 0 ? "" : "the camera closed";
            },
        },
        {
            .screen = kScreen,
            .title = "A caption typed on the picture",
            .caption = "The captioned camera, opened: a touch places the caption at its height and opens "
                       "it for typing, for 5 seconds after the last key.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = cameras(tour);
                if (!tour.tap(*screen->captioned()->save())) return "no shutter";
                const gfx::Rect area = TourContext::windowRect(*screen->captioned());
                tour.host().tap({area.midX(), area.y + area.height * 0.6});
                if (!tour.tap(*screen->captioned()->name())) return "no caption to tap";
                tour.host().typeText(kCaption);
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = cameras(tour);
                if (screen->captioned()->name()->text() != kCaption) return "the typed caption";
                return screen->captioned()->previewFramesShown() > 0 ? "" : "a preview frame";
            },
            .settle = false,
        },
        {
            .screen = kScreen,
            .title = "The caption at rest",
            .caption = "Five quiet seconds later the caption closes: clear, white letters on the picture.",
            .act = [](TourContext& tour) -> std::string {
                tour.host().advance(5.1);
                return {};
            },
            .check = [](TourContext& tour) -> std::string {
                return cameras(tour)->captioned()->timer() ? "the caption closed" : "";
            },
        },
    };
}

} // namespace gallery
