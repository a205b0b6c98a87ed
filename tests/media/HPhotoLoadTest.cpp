// The hotel photo loader: its path and ratio arithmetic, tinted resources,
// downloads bound to the first address, and failures and hostile paths that
// write nothing outside its folder. Crosses threads: in the TSan run.
#include "MediaFixture.h"

#include <morvane/media/HPhotoLoad.h>
#include <morvane/sys/Files.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Dates.h>

#include "LoopbackServer.h"

#include <gtest/gtest.h>

using namespace morvane;
using morvane::test::kJan2024;
using morvane::test::LoopbackServer;
using morvane::test::MediaFixture;
using morvane::test::pngBytes;
namespace fs = std::filesystem;

namespace {

using Calls = morvane::test::Recorder<std::string>;

class HPhotoLoadTest : public MediaFixture {
  protected:
    LoopbackServer server;
};

} // namespace

TEST_F(HPhotoLoadTest, paths_ratios_and_error_names_come_from_the_address_the_size_and_the_clock) {
    EXPECT_EQ(HPhotoLoad::pathMinusFirstToken("https://h.com/a//b/c.png?x=1"), "toskar/h.com/a/b/c.png?x=1");
    EXPECT_EQ(HPhotoLoad::pathMinusFirstToken("http://"), "");
    EXPECT_EQ(HPhotoLoad::pathMinusFirstToken("x/httpdocs/y"), "toskar/x/y")
        << "any component with http goes";
    EXPECT_EQ(HPhotoLoad::pathMinusLastToken("/var//data/pic.png"), "/var/data");
    EXPECT_EQ(HPhotoLoad::pathMinusLastToken("pic.png"), "");
    EXPECT_EQ(HPhotoLoad::pathMinusLastToken("toskar/h.com/pic.png"), "/toskar/h.com");

    EXPECT_FLOAT_EQ(HPhotoLoad::findRatio(500, 500), 0.5f);
    EXPECT_FLOAT_EQ(HPhotoLoad::findRatio(499, 500), 1.0f);
    EXPECT_FLOAT_EQ(HPhotoLoad::findRatio(1000, 1000), 1.0f / 3);
    EXPECT_FLOAT_EQ(HPhotoLoad::findRatio(4000, 4000), 1.0f / 9)
        << "(4000 / 8) squared is exactly 250000: not below";
    EXPECT_FLOAT_EQ(HPhotoLoad::findRatio(10000, 10000), 0.1f);
    useManualClock(kJan2024 + 14 * 3600 + 5 * 60 + 9);
    EXPECT_EQ(HPhotoLoad::trgImagex(), "Error/202401011405009.jpg");
}

// Resource pictures come back tinted with the loader's colour and the name;
// a text that is neither a resource nor an address gives no image.
TEST_F(HPhotoLoadTest, resources_are_tinted_and_unknown_names_give_no_image) {
    resourcePicture("pin", 4, 4, gfx::Color::redColor());
    Calls calls;
    HPhotoLoad loader(gfx::Color::greenColor());
    loader.taskWithName("pin", std::nullopt, calls.callback());
    loader.watchImage("nowhere", std::nullopt, calls.callback());
    ASSERT_EQ(calls.count(), 2u);
    EXPECT_TRUE(calls.seen[0].first.pixelColor(2, 2)->isClose(gfx::Color::greenColor(), 0.01));
    EXPECT_EQ(calls.seen[0].second, "pin");
    EXPECT_TRUE(calls.seen[1].first.isNull());
    EXPECT_EQ(calls.seen[1].second, "nowhere");
    EXPECT_TRUE(loader.trgImage().empty());
}

// Downloads go to toskar/<host>/<path> dated with the stamp as given; the
// loader stays bound to its first picture; a newer stamp fetches again.
TEST_F(HPhotoLoadTest, downloads_are_bound_to_the_first_address) {
    useManualClock(kJan2024);
    server.serve("/p/one.png", pngBytes(7, 3, gfx::Color::redColor()), "image/png");
    server.serve("/p/two.png", pngBytes(2, 2, gfx::Color::blueColor()), "image/png");
    const std::string host = "127.0.0.1:" + std::to_string(server.port());
    Calls calls;
    HPhotoLoad loader;
    loader.taskWithName(server.address("/p/one.png"), "2001.02.03T04:05:06", calls.callback());
    EXPECT_EQ(loader.trgImage(), "toskar/" + host + "/p/one.png");
    sys::Queue::waitIdle();
    ASSERT_EQ(calls.count(), 1u);
    EXPECT_EQ(calls.seen[0].second, "toskar/" + host + "/p/one.png");
    const fs::path file = documents / loader.trgImage();
    ASSERT_TRUE(fs::exists(file));
    EXPECT_EQ(Dates::stamp(*sys::Files::modificationDate(file)), "2001.02.03T04:05:06")
        << "no four-week rule";

    loader.taskWithName(server.address("/p/two.png"), std::nullopt, calls.callback());
    ASSERT_EQ(calls.count(), 2u) << "served from its own file at once";
    EXPECT_EQ(calls.seen[1].first.size(), gfx::Size(7, 3));
    EXPECT_EQ(server.requestCount("/p/two.png"), 0);

    loader.taskWithName(server.address("/p/one.png"), "2024.01.01T00:00:01", calls.callback());
    sys::Queue::waitIdle();
    ASSERT_EQ(calls.count(), 3u);
    EXPECT_EQ(server.requestCount("/p/one.png"), 2);
}

TEST_F(HPhotoLoadTest, failures_and_hostile_paths_write_nothing_outside) {
    server.respond("/gone.png", {500, "", {}});
    server.serve("/x.png", pngBytes(2, 2, gfx::Color::redColor()), "image/png");
    Calls calls;
    HPhotoLoad().taskWithName(server.address("/gone.png"), std::nullopt, calls.callback());
    sys::Queue::waitIdle();
    EXPECT_EQ(calls.count(), 0u);
    EXPECT_TRUE(filesBelowRoot().empty());

    // ".." steps survive the path derivation of this loader; the picture is
    // delivered but not written.
    HPhotoLoad().taskWithName(server.address("/../../x.png"), std::nullopt, calls.callback());
    HPhotoLoad().taskWithName("http://../x.png", std::nullopt, calls.callback());
    sys::Queue::waitIdle();
    for (const auto& file : filesBelowRoot())
        EXPECT_TRUE(file.rfind("Documents/toskar/", 0) == 0) << file;
    EXPECT_FALSE(HPhotoLoad::ModDate((root / "elsewhere").string(), "2001.01.01T00:00:00"));
    EXPECT_FALSE(HPhotoLoad::FRead("..", "secret"));
}
