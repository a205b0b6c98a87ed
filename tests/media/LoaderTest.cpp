// The photo loader crosses threads (downloads on global queues, callbacks
// there); this program runs under ThreadSanitizer.
#include "MediaFixture.h"

#include <morvane/media/ResourcePictures.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/sys/Fetch.h>
#include <morvane/sys/Files.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>

#include "LoopbackServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

using namespace morvane;
using morvane::test::kJan2024;
using morvane::test::kWeek;
using morvane::test::LoopbackServer;
using morvane::test::MediaFixture;
using morvane::test::pngBytes;
namespace fs = std::filesystem;

namespace {

// What one request saw; the loader always reports success with its picture.
struct Outcome : morvane::test::Recorder<bool> {
    ~Outcome() {
        for (const auto& [image, flag] : seen)
            EXPECT_TRUE(flag);
    }
};

class LoaderTest : public MediaFixture {
  protected:
    std::string path(std::string_view address) {
        ZBImageCut cut;
        cut.setFileName(address);
        return ZBImageCut::currentPath2(cut.dirName(), cut.fileName());
    }
    LoopbackServer server;
};

} // namespace

// Resource pictures come back at once, untinted, without touching the cache
// or the network; no name gives the "about" picture tinted white.
TEST_F(LoaderTest, resource_pictures_and_the_default_come_back_synchronously) {
    resourcePicture("menu", 6, 6, gfx::Color::redColor());
    Outcome outcome;
    ZBImageModel loader;
    loader.taskWithName("menu", "2099.01.01T00:00:00", outcome.callback());
    loader.taskWithName(std::nullopt, std::nullopt, outcome.callback());
    ASSERT_EQ(outcome.count(), 2u);
    EXPECT_EQ(outcome.onCallerThread, 2);
    EXPECT_TRUE(outcome.seen[0].first.pixelColor(3, 3)->isClose(gfx::Color::redColor(), 0.01)) << "untinted";
    const gfx::Image about = outcome.seen[1].first;
    EXPECT_EQ(about.size(), ResourcePictures::named("about").size());
    EXPECT_TRUE(about.pixelColor(int(32 * about.scale()), int(40 * about.scale()))
                    ->isClose(gfx::Color::whiteColor(), 0.02));
    EXPECT_FALSE(fs::exists(documents / "img"));
    EXPECT_EQ(server.totalRequests(), 0);
}

// The first request downloads (on a global queue, not the caller's thread),
// caches and dates the file; later requests whose stamp is not newer than the
// file's creation are served from disk at once; a newer stamp downloads again.
TEST_F(LoaderTest, stamps_decide_between_the_cached_file_and_a_download) {
    useManualClock(kJan2024);
    server.serve("/menu/soup.png", pngBytes(8, 4, gfx::Color::greenColor()), "image/png");
    const std::string address = server.address("/menu/soup.png");

    Outcome first;
    ZBImageModel().taskWithName(address, "2023.12.31T00:00:00", first.callback());
    EXPECT_EQ(first.count(), 0u) << "a download never answers before the call returns";
    sys::Queue::waitIdle();
    ASSERT_EQ(first.count(), 1u);
    EXPECT_EQ(first.onCallerThread, 0);
    EXPECT_EQ(first.seen[0].first.size(), gfx::Size(8, 4));
    EXPECT_EQ(first.seen[0].first.scale(), 1);
    ASSERT_TRUE(fs::exists(path(address)));
    EXPECT_EQ(server.requestCount("/menu/soup.png"), 1);

    // Served from disk on the caller's thread: created 2024.01.01, asked for older or equal.
    for (std::optional<std::string_view> stamp :
         {std::optional<std::string_view>("2024.01.01T00:00:00.999"), std::optional<std::string_view>()}) {
        ZBImageModel::clearMemoryCache();
        Outcome hit;
        ZBImageModel().taskWithName(address, stamp, hit.callback());
        ASSERT_EQ(hit.count(), 1u);
        EXPECT_EQ(hit.onCallerThread, 1);
    }
    EXPECT_EQ(server.requestCount("/menu/soup.png"), 1);

    // A version announced one second after the download: fetched again.
    advance(10);
    Outcome newer;
    ZBImageModel().taskWithName(address, "2024.01.01T00:00:01", newer.callback());
    EXPECT_EQ(newer.count(), 0u);
    sys::Queue::waitIdle();
    EXPECT_EQ(newer.count(), 1u);
    EXPECT_EQ(server.requestCount("/menu/soup.png"), 2);
    EXPECT_EQ(*ZBImageCut::fileDateEx(path(address)), "2024.01.01T00:00:10")
        << "the new download replaced the file";
}

// The memory cache saves decoding a file again, and answers exactly as the
// files do: once a newer version has replaced the file, a request with no
// stamp or with the older one gets the new picture; a file the application
// deleted is downloaded again, not served from memory.
TEST_F(LoaderTest, memory_cache_answers_as_the_files_do) {
    useManualClock(kJan2024);
    const gfx::Color green = gfx::Color::greenColor(), red = gfx::Color::redColor();
    server.serve("/menu/soup.png", pngBytes(4, 4, green), "image/png");
    const std::string address = server.address("/menu/soup.png");
    const std::optional<std::string_view> noStamp, oldStamp("2023.12.31T00:00:00");
    auto shown = [&](std::optional<std::string_view> stamp) {
        Outcome outcome;
        ZBImageModel().taskWithName(address, stamp, outcome.callback());
        sys::Queue::waitIdle();
        return outcome.count() == 1 ? outcome.seen[0].first : gfx::Image();
    };
    auto colourOf = [](const gfx::Image& image) { return image.pixelColor(1, 1).value_or(gfx::Color()); };

    const gfx::Image first = shown(noStamp);
    EXPECT_TRUE(colourOf(first).isClose(green, 0.01));
    EXPECT_TRUE(shown(oldStamp).isSameAs(first)) << "decoded once, served from memory";
    EXPECT_TRUE(shown(noStamp).isSameAs(first));

    advance(10);
    server.serve("/menu/soup.png", pngBytes(4, 4, red), "image/png");
    EXPECT_TRUE(colourOf(shown("2024.01.01T00:00:05")).isClose(red, 0.01)) << "a newer version is fetched";
    for (auto stamp : {noStamp, oldStamp})
        EXPECT_TRUE(colourOf(shown(stamp)).isClose(red, 0.01)) << stamp.value_or("no stamp");
    EXPECT_EQ(server.requestCount("/menu/soup.png"), 2);

    fs::remove(path(address));
    Outcome afterDelete;
    ZBImageModel().taskWithName(address, noStamp, afterDelete.callback());
    EXPECT_EQ(afterDelete.count(), 0u) << "no file: a download, never the picture in memory";
    sys::Queue::waitIdle();
    EXPECT_EQ(afterDelete.count(), 1u);
    EXPECT_EQ(server.requestCount("/menu/soup.png"), 3);

    ZBImageModel::setMemoryCacheLimit(0);
    const gfx::Image decoded = shown(noStamp);
    EXPECT_FALSE(shown(noStamp).isSameAs(decoded)) << "without the memory cache every hit decodes";
    ZBImageModel::setMemoryCacheLimit(64u << 20);
}

// Failures are silent: no callback, no file, whatever went wrong.
TEST_F(LoaderTest, failed_downloads_leave_no_callback_and_no_file) {
    server.respond("/missing.png", {404, "<html>no</html>", {}});
    server.serve("/page.png", "<html>this is not a picture</html>", "text/html");
    server.reset("/reset.png");
    // A PNG header that claims 100000 x 100000 pixels: refused before allocating.
    std::string huge = pngBytes(1, 1, gfx::Color::redColor());
    huge[16] = 0, huge[17] = 1, huge[18] = char(0x86), huge[19] = char(0xA0);
    huge[20] = 0, huge[21] = 1, huge[22] = char(0x86), huge[23] = char(0xA0);
    server.serve("/huge.png", huge, "image/png");

    Outcome outcome;
    for (const char* name : {"/missing.png", "/page.png", "/reset.png", "/huge.png"})
        ZBImageModel().taskWithName(server.address(name), std::nullopt, outcome.callback());
    ZBImageModel().taskWithName("ftp://127.0.0.1/x.png", std::nullopt, outcome.callback());
    ZBImageModel().taskWithName("not-a-resource", std::nullopt, outcome.callback());
    sys::Queue::waitIdle();
    EXPECT_EQ(outcome.count(), 0u);
    EXPECT_TRUE(filesBelowRoot().empty());
    EXPECT_EQ(server.requestCount("/missing.png"), 1);
    EXPECT_EQ(server.requestCount("/page.png"), 1);
}

// Hostile addresses served by a real server: every picture is delivered, and
// nothing is written outside the cache folders.
TEST_F(LoaderTest, hostile_addresses_are_delivered_but_never_written_outside) {
    const std::string picture = pngBytes(3, 3, gfx::Color::redColor());
    server.serve("/a", picture, "image/png");
    server.serve("/%2e%2e/%2e%2e/x.png", picture, "image/png");
    server.serve("/a%252F..%252Fx.png", picture, "image/png");
    server.serve("/a\\..\\x.png", picture, "image/png");
    server.serve("/" + std::string(600, 'n') + ".png", picture, "image/png");
    const std::vector<std::string> addresses = {
        server.address("/a/.."),
        server.address("/a/%2F.."),
        server.address("/%2e%2e/%2e%2e/x.png"),
        server.address("/a%252F..%252Fx.png"),
        server.address("/a\\..\\x.png"),
        server.address("/" + std::string(600, 'n') + ".png"),
    };
    Outcome outcome;
    for (const auto& address : addresses)
        ZBImageModel().taskWithName(address, std::nullopt, outcome.callback());
    sys::Queue::waitIdle();
    for (const auto& file : filesBelowRoot())
        EXPECT_TRUE(file.rfind("Documents/img/", 0) == 0) << file;
    EXPECT_GE(outcome.count(), 3u);
}

// Concurrent requests for one address share one transfer and one write; each
// still gets its own callback, on a global queue.
TEST_F(LoaderTest, concurrent_requests_for_one_address_share_one_fetch) {
    LoopbackServer::Response slow{200, pngBytes(16, 16, gfx::Color::redColor()), {}};
    server.delay("/shared.png", 0.3, slow);
    const std::string address = server.address("/shared.png");
    Outcome outcome;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 5; ++i)
                ZBImageModel().taskWithName(address, std::nullopt, outcome.callback());
        });
    for (auto& thread : threads)
        thread.join();
    sys::Queue::waitIdle();
    EXPECT_EQ(outcome.count(), 20u);
    EXPECT_EQ(server.requestCount("/shared.png"), 1);
    for (const auto& [image, flag] : outcome.seen)
        EXPECT_EQ(image.size(), gfx::Size(16, 16));
}

// Two addresses that the cache files under one name (one path, two queries)
// are two pictures: requested at once, each caller gets its own.
TEST_F(LoaderTest, addresses_sharing_a_cache_file_are_downloaded_apart) {
    server.delay("/dish.png?v=1", 0.3, {200, pngBytes(4, 4, gfx::Color::redColor()), {}});
    server.delay("/dish.png?v=2", 0.3, {200, pngBytes(4, 4, gfx::Color::blueColor()), {}});
    ASSERT_EQ(path(server.address("/dish.png?v=1")), path(server.address("/dish.png?v=2")));
    Outcome one, two;
    ZBImageModel().taskWithName(server.address("/dish.png?v=1"), std::nullopt, one.callback());
    ZBImageModel().taskWithName(server.address("/dish.png?v=2"), std::nullopt, two.callback());
    sys::Queue::waitIdle();
    ASSERT_EQ(one.count(), 1u);
    ASSERT_EQ(two.count(), 1u);
    EXPECT_TRUE(one.seen[0].first.pixelColor(1, 1)->isClose(gfx::Color::redColor(), 0.01));
    EXPECT_TRUE(two.seen[0].first.pixelColor(1, 1)->isClose(gfx::Color::blueColor(), 0.01));
    EXPECT_EQ(server.requestCount("/dish.png?v=1"), 1);
    EXPECT_EQ(server.requestCount("/dish.png?v=2"), 1);
}

namespace {

bool waitUntil(const std::function<bool()>& condition, double seconds) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

// Twenty pictures from a server that holds every answer for seconds: the
// other background work of the app still runs at once, and only a few
// transfers are open; the rest wait their turn.
TEST_F(LoaderTest, stalled_picture_servers_do_not_starve_the_global_queues) {
    constexpr int kPictures = 20;
    for (int i = 0; i < kPictures; ++i)
        server.delay("/slow" + std::to_string(i) + ".png", 4,
                     {200, pngBytes(2, 2, gfx::Color::redColor()), {}});
    Outcome outcome;
    for (int i = 0; i < kPictures; ++i)
        ZBImageModel().taskWithName(server.address("/slow" + std::to_string(i) + ".png"), std::nullopt,
                                    outcome.callback());
    ASSERT_TRUE(waitUntil([&] { return server.totalRequests() >= sys::FetchQueue::kMaxTransfers; }, 3));
    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // room for more transfers to start

    std::atomic<bool> translated{false};
    sys::Queue::global().async([&translated] { translated = true; });
    EXPECT_TRUE(waitUntil([&] { return translated.load(); }, 2)) << "a background block waited on pictures";
    EXPECT_EQ(server.totalRequests(), sys::FetchQueue::kMaxTransfers);
    server.stop(); // the waiting transfers now fail at once
    sys::Queue::waitIdle();
    EXPECT_EQ(outcome.count(), 0u);
}

// A download whose every requester is gone is given up, running or waiting:
// the waiting ones never reach the server. A picture that someone still wants
// arrives, to that requester only.
TEST_F(LoaderTest, downloads_nobody_waits_for_are_given_up) {
    // Long enough that the kept transfer cannot end (and free its slot for a
    // waiting one) before the requesters are dropped, even on a loaded machine.
    server.delay("/kept.png", 2, {200, pngBytes(2, 2, gfx::Color::redColor()), {}});
    constexpr int kGone = 6;
    for (int i = 0; i < kGone; ++i)
        server.delay("/gone" + std::to_string(i) + ".png", 6,
                     {200, pngBytes(2, 2, gfx::Color::redColor()), {}});
    auto request = [&](const std::string& where, const std::shared_ptr<int>& requester, Outcome& outcome) {
        ZBImageModel loader;
        loader.setRequester(requester);
        loader.taskWithName(server.address(where), std::nullopt, outcome.callback());
    };
    auto keeper = std::make_shared<int>(0), leaver = std::make_shared<int>(0);
    Outcome kept, left, gone;
    request("/kept.png", keeper, kept);
    request("/kept.png", leaver, left);
    std::vector<std::shared_ptr<int>> requesters;
    for (int i = 0; i < kGone; ++i) {
        requesters.push_back(std::make_shared<int>(i));
        request("/gone" + std::to_string(i) + ".png", requesters.back(), gone);
    }
    ASSERT_TRUE(waitUntil([&] { return server.totalRequests() >= sys::FetchQueue::kMaxTransfers; }, 3));
    requesters.clear();
    leaver.reset();

    const auto start = std::chrono::steady_clock::now();
    sys::Queue::waitIdle();
    EXPECT_LT(secondsSince(start), 4) << "the stalled transfers were waited out";
    EXPECT_EQ(server.totalRequests(), sys::FetchQueue::kMaxTransfers);
    EXPECT_EQ(server.requestCount("/kept.png"), 1);
    EXPECT_EQ(kept.count(), 1u);
    EXPECT_EQ(left.count(), 0u);
    EXPECT_EQ(gone.count(), 0u);
}
