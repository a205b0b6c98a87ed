// Runs the gallery as built, the way the README's main job does, and checks
// what it leaves: the pages, the screenshots they name, and nothing else.

#include "Programs.h"
#include "SanitizerSuppressions.h"

#include <morvane/gfx/Image.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using morvane::test::Outcome;
using morvane::test::readFile;
using morvane::test::shellQuote;

// A fresh folder per test, which is also the gallery's temporary folder, so
// the test sees whether the run cleaned up after itself.
class GalleryRun : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "morvane-gallery-test-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        dir_ = pattern;
        fs::create_directories(dir_ / "tmp");
        // The gallery is a program of its own, without the test programs'
        // built-in allowances for the font stack (see tests/support): give
        // it the same ones for sanitizer builds. Its own code gets none.
        std::ofstream(dir_ / "leaks.supp") << __lsan_default_suppressions();
        std::ofstream(dir_ / "races.supp") << __tsan_default_suppressions();
    }
    void TearDown() override { fs::remove_all(dir_); }

    // `environment` is put in front of the command ("NAME=value ...").
    Outcome run(const std::vector<std::string>& args, const std::string& environment = "") {
        std::string command = "TMPDIR=" + shellQuote((dir_ / "tmp").string()) +
                              " LSAN_OPTIONS=suppressions=" + shellQuote((dir_ / "leaks.supp").string()) +
                              " TSAN_OPTIONS=suppressions=" + shellQuote((dir_ / "races.supp").string()) +
                              " " + environment + " " + shellQuote(MORVANE_GALLERY_BINARY);
        for (const auto& arg : args)
            command += " " + shellQuote(arg);
        return morvane::test::runCommand(command);
    }

    fs::path dir_;
};

std::size_t occurrences(const std::string& text, const std::string& what) {
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++count;
    return count;
}

// The share of pixels in the rectangle (in points, scale 2) that are clearly
// coloured: neither the lists' dark blues nor white, grey or black text.
double colourfulShare(const morvane::gfx::Image& image, double x0, double y0, double x1, double y1) {
    int colourful = 0, all = 0;
    for (int y = int(y0 * 2); y < int(y1 * 2) && y < image.pixelHeight(); y += 2)
        for (int x = int(x0 * 2); x < int(x1 * 2) && x < image.pixelWidth(); x += 2) {
            const auto c = image.pixelColor(x, y);
            if (!c) continue;
            ++all;
            const double high = std::max({c->red, c->green, c->blue}),
                         low = std::min({c->red, c->green, c->blue});
            if (high - low > 0.3) ++colourful;
        }
    return all ? double(colourful) / all : 0;
}

// Pixels close to the colour in the rectangle (points, scale 2).
int pixelsNear(const morvane::gfx::Image& image, morvane::gfx::Color colour, double x0, double y0, double x1,
               double y1) {
    int near = 0;
    for (int y = int(y0 * 2); y < int(y1 * 2) && y < image.pixelHeight(); ++y)
        for (int x = int(x0 * 2); x < int(x1 * 2) && x < image.pixelWidth(); ++x)
            if (auto c = image.pixelColor(x, y); c && c->isClose(colour, 0.04)) ++near;
    return near;
}

} // namespace

TEST_F(GalleryRun, writes_pages_whose_screenshots_show_the_list_with_its_pictures) {
    const fs::path out = dir_ / "pages";
    const Outcome outcome = run({"--out", out.string(), "--wait", "120"});
    ASSERT_EQ(outcome.status, 0) << outcome.out;
    EXPECT_NE(outcome.out.find((out / "index.html").string()), std::string::npos)
        << "it says where the pages are: " << outcome.out;

    // Every picture the page names exists, is a PNG of a phone screen at scale 2, and has a caption.
    const std::string page = readFile(out / "index.html");
    ASSERT_NE(page.find("<!DOCTYPE html>"), std::string::npos);
    std::vector<std::string> named;
    const std::string tag = "<img src=\"";
    for (std::size_t at = page.find(tag); at != std::string::npos; at = page.find(tag, at + 1)) {
        const std::size_t start = at + tag.size();
        named.push_back(page.substr(start, page.find('"', start) - start));
    }
    ASSERT_GE(named.size(), 6u) << page;
    EXPECT_EQ(named.size(), occurrences(page, "<figcaption><b>")) << "one caption per picture";
    for (const std::string& name : named) {
        const std::string bytes = readFile(out / name);
        ASSERT_GT(bytes.size(), 8u) << name;
        EXPECT_EQ(bytes.substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8)) << name;
        std::string why;
        const auto shot = morvane::gfx::Image::fromFile((out / name).string(), 1, &why);
        ASSERT_FALSE(shot.isNull()) << name << ": " << why;
        EXPECT_EQ(shot.pixelWidth(), 780) << name;
        EXPECT_EQ(shot.pixelHeight(), 1688) << name;
    }

    // One section per screen that has shots ("venues-01.png" is the venues screen's).
    std::set<std::string> screens;
    for (const std::string& name : named) screens.insert(name.substr(0, name.rfind('-')));
    EXPECT_GE(screens.size(), 7u) << "home, venues, menus, bookings, toasts, boarding, camera at least";
    EXPECT_EQ(occurrences(page, "<section>"), screens.size()) << page;

    // The venue screen's first shot has pictures in its photo column, not
    // spinners on a flat row colour.
    std::vector<std::string> venues;
    std::copy_if(named.begin(), named.end(), std::back_inserter(venues),
                 [](const std::string& name) { return name.starts_with("venues-"); });
    ASSERT_GE(venues.size(), 2u) << page;
    const auto first = morvane::gfx::Image::fromFile((out / venues.front()).string());
    EXPECT_GT(colourfulShare(first, 10, 110, 90, 790), 0.12); // about a quarter with pictures, none without
    // The refreshed venues show the evening versions the server offered
    // after the pull: the cache fetched them again instead of keeping the old.
    const morvane::gfx::Color dusk{0xf4 / 255.0, 0x84 / 255.0, 0x5f / 255.0};
    const auto last = morvane::gfx::Image::fromFile((out / venues.back()).string());
    EXPECT_EQ(pixelsNear(first, dusk, 10, 110, 90, 790), 0);
    EXPECT_GT(pixelsNear(last, dusk, 10, 110, 90, 790), 500);

    // The run's picture cache and settings went to a scratch folder that is gone now.
    EXPECT_TRUE(fs::is_empty(dir_ / "tmp")) << "left behind in the temporary folder";
}

TEST_F(GalleryRun, says_what_went_wrong_and_fails) {
    // Pages cannot go where a file is.
    std::ofstream(dir_ / "file") << "x";
    Outcome outcome = run({"--out", (dir_ / "file").string()});
    EXPECT_EQ(outcome.status, 1) << outcome.out;
    EXPECT_NE(outcome.out.find("cannot make the folder"), std::string::npos) << outcome.out;

    // Sample data that is not there.
    outcome = run({"--resources", (dir_ / "nowhere").string(), "--out", (dir_ / "pages").string()});
    EXPECT_EQ(outcome.status, 1) << outcome.out;
    EXPECT_NE(outcome.out.find("nowhere"), std::string::npos) << outcome.out;
    EXPECT_FALSE(fs::exists(dir_ / "pages" / "index.html"));

    // No display for a window.
    outcome = run({"--window"}, "env -u DISPLAY -u WAYLAND_DISPLAY -u SDL_VIDEODRIVER");
    EXPECT_EQ(outcome.status, 1) << outcome.out;
    EXPECT_NE(outcome.out.find("no window"), std::string::npos) << outcome.out;

    // Arguments it does not understand.
    for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
             {"--frobnicate"}, {"--out"}, {"--scale", "9"}, {"--wait", "soon"}, {"stray"}}) {
        outcome = run(args);
        EXPECT_EQ(outcome.status, 2) << args.front() << ": " << outcome.out;
        EXPECT_NE(outcome.out.find("--help"), std::string::npos) << outcome.out;
    }
    EXPECT_EQ(run({"--help"}).status, 0);
    EXPECT_TRUE(fs::is_empty(dir_ / "tmp"));
}
