#include "Gallery.h"

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
    return data_->load(error);
}

std::shared_ptr<VenueScreen> Gallery::makeScreen(const gfx::Rect& frame) {
    return VenueScreen::make(frame, data_->city(), data_->tagline(), translator_,
                             [this](int edition) { return rows(edition); });
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
