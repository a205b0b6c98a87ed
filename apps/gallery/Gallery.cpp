#include "Gallery.h"

#include "AdminScreen.h"
#include "BoardingScreen.h"
#include "BookingsScreen.h"
#include "CameraScreen.h"
#include "EditLayersScreen.h"
#include "FarolScreen.h"
#include "FlightsScreen.h"
#include "FormsScreen.h"
#include "GuestScreen.h"
#include "MenusScreen.h"
#include "PricesScreen.h"
#include "PurseScreen.h"
#include "SampleFile.h"
#include "ToastsScreen.h"

#include <morvane/sys/App.h>
#include <morvane/util/Dates.h>

namespace gallery {

using namespace morvane;

const std::vector<std::string> Gallery::kUpdatedPictures = {"/pictures/harbour.jpg", "/pictures/tower.jpg"};

Gallery::Gallery(Options options)
    : options_(std::move(options)), translator_(std::make_shared<Translator>(options_.translationDelay)) {}

Gallery::~Gallery() {
    server_.stop();
}

bool Gallery::start(std::string* error) {
    // The picture cache writes below the documents folder and the settings
    // store lives in the data folder: both go to this run's scratch folder,
    // so every run downloads afresh and leaves nothing behind.
    sys::App::setIdentifier("org.morvane.gallery");
    sys::App::setResourceFolder(options_.resources);
    sys::App::setDocumentsFolder(options_.scratch / "Documents");
    sys::App::setDataFolder(options_.scratch / "Data");

    pictures_ = SamplePictures::render(options_.resources / "pictures", error);
    if (pictures_.empty()) return false;
    if (!server_.start(error)) return false;
    for (const SamplePicture& picture : pictures_)
        server_.publish(picture.path, picture.contentType, picture.day);

    data_.emplace(options_.resources / "venues.json", server_.address(""));
    if (!data_->load(error)) return false;
    return readSampleFile(options_.resources / "menus.json", server_.address(""), &menusText_, error) &&
           readSampleFile(options_.resources / "bookings.json", server_.address(""), &bookingsText_, error) &&
           readSampleFile(options_.resources / "boarding.json", server_.address(""), &boardingText_, error) &&
           readSampleFile(options_.resources / "purse.json", server_.address(""), &purseText_, error) &&
           readTextFile(options_.resources / "prices.txt", &pricesText_, error) &&
           readSampleFile(options_.resources / "flights.json", server_.address(""), &flightsText_, error) &&
           readSampleFile(options_.resources / "guest.json", server_.address(""), &guestText_, error) &&
           readSampleFile(options_.resources / "farol.json", server_.address(""), &farolText_, error) &&
           readSampleFile(options_.resources / "admin.json", server_.address(""), &adminText_, error);
}

std::vector<Navigator::Entry> Gallery::screens() {
    return {
        {"venues", "Places in " + data_->city(),
         "A table list of the city's venues: pictures from the server, texts translated from another thread, "
         "a check mark on the tapped row, swipe actions on both sides and pull to refresh.",
         [this](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return VenueScreen::make(
                 frame, data_->city(), data_->tagline(), translator_,
                 [this](int edition) { return rows(edition); }, std::move(back));
         }},
        {"menus", "Menus of " + data_->city(),
         "A venue's menus in the header-and-grid composite: the header cycles through them, each shown as "
         "two columns of dishes; the specials come from a service on another thread.",
         [this](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return MenusScreen::make(frame, parseSample(menusText_), translator_, std::move(back));
         }},
        {"bookings", "Bookings",
         "A hotel's front desk in the header-and-list composite: arrivals and departures through the "
         "header's "
         "switch, a day at a time, guests checked in, out or cancelled with a swipe.",
         [this](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return BookingsScreen::make(frame, parseSample(bookingsText_), std::move(back));
         }},
        {"toasts", "Toasts",
         "A message toast that slides up and rings the kit's alert chime when it has arrived, and the bar "
         "that "
         "offers a photo or the camera.",
         [](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return ToastsScreen::make(frame, std::move(back));
         }},
        {"boarding", "Boarding pass",
         "A booking as a QR code with a VOID stamp to set and lift, and a QR reader pointed through the "
         "virtual camera at a picture of the code, reading the booking back.",
         [this](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return BoardingScreen::make(frame, parseSample(boardingText_), options_.scratch / "camera",
                                         std::move(back));
         }},
        {"camera", "Cameras",
         "The plain camera, its photo brought within the photo limits, and the captioned camera whose "
         "caption is placed with a touch and typed.",
         [this](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return CameraScreen::make(frame, cameraScene(), options_.scratch / "camera", std::move(back));
         }},
        {"forms", "Table request",
         "Labelled text fields that format, filter and check what is typed and remember the last entry, "
         "and a note retyped in a data input bar.",
         [](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return FormsScreen::make(frame, std::move(back));
         }},
        {"purse", "Purse",
         "A hotel folio and a spa card as the purse's wallets, an entry on the QR profile panel with its "
         "code, lines and total, the panel's reader pointed at another entry's code, and the payment strip.",
         [this](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return PurseScreen::make(frame, parseSample(purseText_), options_.scratch / "camera",
                                      std::move(back));
         }},
        {"prices", "Menu prices",
         "A kitchen's choice records as dishes and prices; the item price selector over them refuses a "
         "name already used and saves a new price back into its record.",
         [this](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return PricesScreen::make(frame, pricesText_, std::move(back));
         }},
        {"flights", "Flights",
         "An airport's departures and arrivals from a flight service on another thread, and the flight "
         "search: a number typed, the busy indicator, the flight pushed into the display field by field.",
         [this](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return FlightsScreen::make(frame, parseSample(flightsText_), std::move(back));
         }},
        {"guest", "Guest profile",
         "A guest's card with photo, name and values, a note translated from English; in edit mode a value "
         "retyped and another deleted in the data input bar, and the photo replaced with the camera, each "
         "change shown as the application received it.",
         [this](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return GuestScreen::make(frame, parseSample(guestText_), picture("guest", true), translator_,
                                      options_.scratch / "camera", std::move(back));
         }},
        {"farol", "Hotel Farol",
         "The kit's menu screen: the hotel's rooms, restaurant, spa and excursions in the header, a grid of "
         "tiles, an item on the profile card with its contact strip, a booking's notification five seconds "
         "later, a field edited in edit mode, and check marks that keep the card closed.",
         [this](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return FarolScreen::make(frame, parseSample(farolText_), translator_, std::move(back));
         }},
        {"admin", "Administration",
         "The front office's guests and staff in the administration panel: a record on the profile card with "
         "its stored dates made readable, and a field edited and reported by its own callback.",
         [this](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return AdminScreen::make(frame, parseSample(adminText_), std::move(back));
         }},
        {"layers", "Edit layers",
         "A notice board on the scrolling edit layer: a notice edited in place through the help panel, "
         "following every keystroke, and reported once when done.",
         [](const gfx::Rect& frame, Screen::Back back) -> std::shared_ptr<Screen> {
             return EditLayersScreen::make(frame, std::move(back));
         }},
    };
}

std::shared_ptr<Navigator> Gallery::makeApp(const gfx::Rect& frame) {
    return Navigator::make(frame, screens(), "Morvane gallery");
}

gfx::Image Gallery::cameraScene() const {
    return picture("bistro");
}

gfx::Image Gallery::picture(std::string_view name, bool evening) const {
    for (const SamplePicture& picture : pictures_) {
        if (picture.path.find("/" + std::string(name) + ".") == std::string::npos) continue;
        const std::string& bytes = evening ? picture.evening : picture.day;
        return gfx::Image::fromData(
            std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
    }
    return {};
}

ListPtr Gallery::rows(int edition) {
    std::string stamp;
    if (edition > 0) {
        // The venues sent new photos: the server has them now, and the list
        // answers with their date, later than the cached copies.
        for (const SamplePicture& picture : pictures_)
            for (const std::string& updated : kUpdatedPictures)
                if (picture.path == updated)
                    server_.publish(picture.path, picture.contentType, picture.evening);
        stamp = Dates::stamp();
    }
    return data_->rows(edition, kUpdatedPictures, stamp);
}

} // namespace gallery
