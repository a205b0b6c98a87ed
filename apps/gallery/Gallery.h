#pragma once
// The gallery app put together: the application's identity and folders, the
// sample pictures on the loopback picture server, the sample data and the
// translator. Both ways of running it, the scripted tour without a display
// and the window, build the app from here: a home screen and its screens.
//
//   Gallery gallery({.resources = ..., .scratch = ...});
//   if (!gallery.start(&error)) ...
//   auto app = gallery.makeApp({0, 0, 390, 844});

#include "Navigator.h"
#include "PictureServer.h"
#include "SamplePictures.h"
#include "Translator.h"
#include "VenueData.h"
#include "VenueScreen.h"

#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace gallery {

class Gallery {
  public:
    struct Options {
        std::filesystem::path resources; // venues.json and pictures/*.svg
        std::filesystem::path scratch;   // this run's documents and data folders go below it
        double translationDelay = 0.4;   // seconds before the translator answers
    };

    // The pictures that get a newer version on the server at every pull to
    // refresh, so that the cache must fetch them again.
    static const std::vector<std::string> kUpdatedPictures;

    explicit Gallery(Options options);
    ~Gallery();

    // Points the kit at this run's folders, draws the pictures, starts the
    // server and reads the sample data. False with the reason when any step fails.
    bool start(std::string* error);

    // The home screen and every screen it opens.
    std::shared_ptr<Navigator> makeApp(const morvane::gfx::Rect& frame);
    std::vector<Navigator::Entry> screens();

    PictureServer& server() { return server_; }
    const std::vector<SamplePicture>& pictures() const { return pictures_; }
    const std::shared_ptr<Translator>& translator() const { return translator_; }
    const VenueData& data() const { return *data_; }

  private:
    // The rows of an edition. From edition 1 on, the server has the evening
    // versions of the updated pictures, and the rows say so with a stamp.
    morvane::ListPtr rows(int edition);
    // What the gallery's cameras look at: the bistro's picture.
    morvane::gfx::Image cameraScene() const;
    // The sample picture of that name (its evening look when asked); null when there is none.
    morvane::gfx::Image picture(std::string_view name, bool evening = false) const;

    Options options_;
    PictureServer server_;
    std::vector<SamplePicture> pictures_;
    std::shared_ptr<Translator> translator_;
    std::optional<VenueData> data_;
    std::string menusText_;    // menus.json, server filled in
    std::string bookingsText_; // bookings.json
    std::string boardingText_; // boarding.json
    std::string purseText_;    // purse.json
    std::string pricesText_;   // prices.txt
    std::string flightsText_;  // flights.json
    std::string guestText_;    // guest.json
    std::string farolText_;    // farol.json
    std::string adminText_;    // admin.json
};

} // namespace gallery
