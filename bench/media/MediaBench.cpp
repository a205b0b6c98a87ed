// The photo loader against a loopback server: many distinct pictures at once,
// the cost of a cache hit (file read and JPEG decode), many requests for one
// picture at once, and a grid of picture views shown from the cache on the
// headless host, with the main thread's share of the cache sweep. Ends with
// one GOAL line per goal.
#include <morvane/gfx/ImageContext.h>
#include <morvane/media/ZBImage.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/media/detail/CacheSweep.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include "LoopbackServer.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

using namespace morvane;
using morvane::test::LoopbackServer;
using Steady = std::chrono::steady_clock;

namespace {

double msSince(Steady::time_point start) {
    return std::chrono::duration<double, std::milli>(Steady::now() - start).count();
}

// A photo-like picture: smooth gradients with some grain, so JPEG sizes are realistic.
std::string photoJpeg(int side, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> pixels(std::size_t(side) * side * 4);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            std::uint8_t* p = &pixels[(std::size_t(y) * side + x) * 4];
            const int grain = int(random() % 24);
            p[0] = std::uint8_t((x * 255 / side + grain + seed * 13) % 256);
            p[1] = std::uint8_t((y * 255 / side + grain) % 256);
            p[2] = std::uint8_t(((x + y) * 127 / side + grain) % 256);
            p[3] = 255;
        }
    }
    auto image =
        gfx::Image::fromPixels(pixels.data(), side, side, std::size_t(side) * 4, gfx::PixelFormat::RGBA);
    auto bytes = image.jpegData(0.85);
    return std::string(bytes.begin(), bytes.end());
}

bool waitFor(const std::atomic<int>& counter, int expected, double seconds) {
    const auto deadline = Steady::now() + std::chrono::duration<double>(seconds);
    while (counter.load() < expected && Steady::now() < deadline) {
        sys::Queue::waitIdle();
        usleep(1000);
    }
    return counter.load() >= expected;
}

void goal(const char* name, const std::string& measured, const std::string& target, bool met) {
    std::printf("GOAL %s measured=%s target=%s met=%s\n", name, measured.c_str(), target.c_str(),
                met ? "yes" : "no");
}

} // namespace

int main() {
    const auto folder =
        std::filesystem::temp_directory_path() / ("morvane-media-bench-" + std::to_string(getpid()));
    std::filesystem::remove_all(folder);
    sys::App::setDocumentsFolder(folder / "Documents");
    sys::Log::Capture quiet; // download failures would be logged; none are expected

    LoopbackServer server;

    // 1. 200 distinct pictures requested at once.
    constexpr int kDistinct = 200;
    for (int i = 0; i < kDistinct; ++i)
        server.serve("/menu/dish" + std::to_string(i) + ".jpg", photoJpeg(96, unsigned(i)), "image/jpeg");
    std::atomic<int> delivered{0};
    auto start = Steady::now();
    for (int i = 0; i < kDistinct; ++i)
        ZBImageModel().taskWithName(server.address("/menu/dish" + std::to_string(i) + ".jpg"), std::nullopt,
                                    [&delivered](const gfx::Image& image, bool) {
                                        if (!image.isNull()) delivered.fetch_add(1);
                                    });
    waitFor(delivered, kDistinct, 60);
    const double distinctMs = msSince(start);
    int maxFetches = 0;
    for (int i = 0; i < kDistinct; ++i)
        maxFetches = std::max(maxFetches, server.requestCount("/menu/dish" + std::to_string(i) + ".jpg"));
    std::printf("200 distinct pictures: %d delivered in %.1f ms, %d requests in all\n", delivered.load(),
                distinctMs, server.totalRequests());

    // 2. A cache hit of a 1000 x 1000 JPEG: read and decode, memory cache off.
    server.serve("/photo/big.jpg", photoJpeg(1000, 7), "image/jpeg");
    const std::string big = server.address("/photo/big.jpg");
    std::atomic<int> fetched{0};
    ZBImageModel().taskWithName(big, std::nullopt,
                                [&fetched](const gfx::Image&, bool) { fetched.fetch_add(1); });
    waitFor(fetched, 1, 30);
    const std::size_t memoryLimit = ZBImageModel::memoryCacheLimit();
    ZBImageModel::setMemoryCacheLimit(0);
    std::vector<double> hits;
    bool allSynchronous = true;
    for (int i = 0; i < 60; ++i) {
        bool served = false;
        const auto t0 = Steady::now();
        ZBImageModel().taskWithName(big, std::nullopt, [&served](const gfx::Image& image, bool) {
            served = image.pixelWidth() == 1000;
        });
        hits.push_back(msSince(t0));
        allSynchronous = allSynchronous && served;
    }
    std::sort(hits.begin(), hits.end());
    const double hitMedian = hits[hits.size() / 2];
    ZBImageModel::setMemoryCacheLimit(memoryLimit);
    std::vector<double> memoryHits;
    for (int i = 0; i < 60; ++i) {
        const auto t0 = Steady::now();
        ZBImageModel().taskWithName(big, std::nullopt, [](const gfx::Image&, bool) {});
        memoryHits.push_back(msSince(t0));
    }
    std::sort(memoryHits.begin(), memoryHits.end());
    std::printf(
        "1000x1000 JPEG cache hit: file read + decode median %.2f ms (p90 %.2f ms); memory hit median "
        "%.4f ms\n",
        hitMedian, hits[hits.size() * 9 / 10], memoryHits[memoryHits.size() / 2]);

    // 3. 50 concurrent requests for one address (the server takes 200 ms to answer).
    constexpr int kConcurrent = 50;
    server.delay("/shared/hero.jpg", 0.2, {200, photoJpeg(320, 3), {}});
    const std::string shared = server.address("/shared/hero.jpg");
    std::atomic<int> sharedDelivered{0};
    start = Steady::now();
    for (int i = 0; i < kConcurrent; ++i)
        ZBImageModel().taskWithName(shared, std::nullopt, [&sharedDelivered](const gfx::Image& image, bool) {
            if (!image.isNull()) sharedDelivered.fetch_add(1);
        });
    waitFor(sharedDelivered, kConcurrent, 30);
    const double sharedMs = msSince(start);
    const int sharedFetches = server.requestCount("/shared/hero.jpg");
    std::printf("50 requests for one address: %d delivered in %.1f ms, %d fetch(es)\n",
                sharedDelivered.load(), sharedMs, sharedFetches);

    // 4. A grid of 100 picture views shown from the warm cache (the pictures
    // downloaded first) on the headless host. Each view asks for the cache sweep
    // after its picture; the sweep times itself whenever it runs on the main
    // thread, which it must not during the first second (or ever).
    constexpr int kTiles = 100;
    double sweepMainMs = 0;
    long sweepWalks = 0;
    int tilesShown = 0;
    double gridMs = 0;
    {
        ui::HeadlessHost host;
        std::vector<std::shared_ptr<ZBImage>> tiles;
        const auto before = detail::CacheSweep::stats();
        const auto t0 = Steady::now();
        for (int i = 0; i < kTiles; ++i) {
            auto tile = std::make_shared<ZBImage>(gfx::Rect(39.0 * (i % 10), 39.0 * (i / 10), 39, 39));
            host.root()->addSubview(tile);
            tile->addImage(server.address("/menu/dish" + std::to_string(i) + ".jpg"), std::nullopt);
            tiles.push_back(tile);
        }
        host.runUntilIdle();
        gridMs = msSince(t0);
        host.advance(1.0); // the first second of the screen
        sys::Queue::waitIdle();
        host.runUntilIdle();
        const auto after = detail::CacheSweep::stats();
        sweepMainMs = (after.mainThreadSeconds - before.mainThreadSeconds) * 1000;
        sweepWalks = after.walks - before.walks;
        for (const auto& tile : tiles)
            tilesShown += !tile->imageView().isHidden() && !tile->imageView().image().isNull();
    }
    std::printf("grid of %d picture views from the cache: %d shown in %.1f ms; sweep walks %ld, on the main "
                "thread %.3f ms\n",
                kTiles, tilesShown, gridMs, sweepWalks, sweepMainMs);

    // What one sweep of this cache costs, wherever it runs (here, timed on this thread).
    std::vector<double> sweeps;
    for (int i = 0; i < 20; ++i) {
        const auto t0 = Steady::now();
        ZBImageCut::traverseDirectoryAtPath(ZBImageCut::currentPath2("img", std::nullopt));
        sweeps.push_back(msSince(t0));
    }
    std::sort(sweeps.begin(), sweeps.end());
    std::printf("one sweep of a cache of %d pictures: median %.2f ms\n", kDistinct + 2,
                sweeps[sweeps.size() / 2]);

    server.stop();
    std::filesystem::remove_all(folder);

    char text[64];
    std::snprintf(text, sizeof text, "%d", delivered.load());
    goal("distinct_pictures_delivered", text, "200", delivered.load() == kDistinct);
    std::snprintf(text, sizeof text, "%d", maxFetches);
    goal("distinct_pictures_max_fetches_per_address", text, "1", maxFetches == 1);
    std::snprintf(text, sizeof text, "%.2f", hitMedian);
    goal("cache_hit_1000x1000_jpeg_median_ms", text, "10", hitMedian < 10 && allSynchronous);
    std::snprintf(text, sizeof text, "%d", sharedFetches);
    goal("concurrent_same_address_fetches", text, "1",
         sharedFetches == 1 && sharedDelivered.load() == kConcurrent);
    std::snprintf(text, sizeof text, "%.3f", sweepMainMs);
    goal("picture_sweep_main_thread_ms", text, "0", sweepMainMs == 0 && tilesShown == kTiles);
    return 0;
}
