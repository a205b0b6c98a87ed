// The camera and its sources (test pattern, picture file, device): frames on
// the camera's own threads, photos, swapping the picture while running,
// dropping frames for a slow receiver, failures, and the default source.
#include "AppSandbox.h"

#include <morvane/gfx/Image.h>
#include <morvane/sys/Camera.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>

using namespace morvane;
using namespace std::chrono_literals;

namespace {

// Frames as they arrive, for a test to wait on.
struct FrameLog {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<gfx::Image> frames;
    std::vector<std::thread::id> threads;

    sys::Camera::FrameHandler handler() {
        return [this](const gfx::Image& frame) {
            std::lock_guard lock(mutex);
            frames.push_back(frame);
            threads.push_back(std::this_thread::get_id());
            changed.notify_all();
        };
    }
    // The newest frame once there are more than `count`; null after 10 s.
    gfx::Image waitBeyond(std::size_t count) {
        std::unique_lock lock(mutex);
        changed.wait_for(lock, 10s, [&] { return frames.size() > count; });
        return frames.size() > count ? frames.back() : gfx::Image();
    }
    std::size_t size() {
        std::lock_guard lock(mutex);
        return frames.size();
    }
};

std::string writePicture(const std::string& name, gfx::Color colour) {
    const std::string path = (std::filesystem::temp_directory_path() / name).string();
    std::ofstream(path, std::ios::binary) << test::pngBytes(64, 48, colour);
    return path;
}

bool isMostly(const gfx::Image& frame, double red, double blue) {
    auto c = frame.pixelColor(frame.pixelWidth() / 2, frame.pixelHeight() / 2);
    return c && std::abs(c->red - red) < 0.1 && std::abs(c->blue - blue) < 0.1;
}

} // namespace

TEST(Camera, test_pattern_streams_frames_off_the_main_thread_and_takes_photos) {
    std::string why;
    FrameLog log; // outlives the camera, which may still deliver until it goes
    auto camera = sys::Camera::open(sys::Camera::Source::testPattern(320, 240), &why);
    ASSERT_TRUE(camera) << why;
    camera->setFrameHandler(log.handler());
    ASSERT_TRUE(camera->start(&why)) << why;
    const gfx::Image frame = log.waitBeyond(2);
    ASSERT_FALSE(frame.isNull());
    EXPECT_EQ(frame.pixelWidth(), 320);
    EXPECT_EQ(frame.pixelHeight(), 240);
    {
        std::lock_guard lock(log.mutex);
        EXPECT_NE(log.threads.front(), std::this_thread::get_id());
    }

    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<std::uint8_t> photo;
    camera->capturePhoto([&](std::vector<std::uint8_t> jpeg) {
        std::lock_guard lock(mutex);
        photo = std::move(jpeg);
        arrived.notify_all();
    });
    {
        std::unique_lock lock(mutex);
        arrived.wait_for(lock, 10s, [&] { return !photo.empty(); });
    }
    const auto decoded = gfx::Image::fromData(photo);
    EXPECT_EQ(gfx::Image::codecOf(photo), gfx::ImageCodec::JPEG);
    EXPECT_EQ(decoded.pixelWidth(), 320);

    camera->stop();
    EXPECT_FALSE(camera->running());
    const std::size_t afterStop = log.size();
    std::this_thread::sleep_for(150ms);
    EXPECT_EQ(log.size(), afterStop) << "no frame after stop returned";
    // A photo asked of a stopped camera never arrives.
    bool late = false;
    camera->capturePhoto([&](std::vector<std::uint8_t>) { late = true; });
    ASSERT_TRUE(camera->start(&why)) << why;
    log.waitBeyond(afterStop + 2);
    camera->stop();
    EXPECT_FALSE(late);
}

TEST(Camera, picture_camera_shows_its_file_and_swaps_it_while_running) {
    const std::string red = writePicture("morvane-camera-red.png", {1, 0, 0, 1});
    const std::string blue = writePicture("morvane-camera-blue.png", {0, 0, 1, 1});
    std::string why;
    FrameLog log;
    auto camera = sys::Camera::open(sys::Camera::Source::picture(red), &why);
    ASSERT_TRUE(camera) << why;
    camera->setFrameHandler(log.handler());
    ASSERT_TRUE(camera->start(&why)) << why;
    gfx::Image frame = log.waitBeyond(1);
    ASSERT_FALSE(frame.isNull());
    EXPECT_EQ(frame.pixelWidth(), 64);
    EXPECT_TRUE(isMostly(frame, 1, 0));

    ASSERT_TRUE(camera->showPicture(blue, &why)) << why;
    EXPECT_TRUE(camera->running());
    const std::size_t swapped = log.size();
    frame = log.waitBeyond(swapped + 1);
    EXPECT_TRUE(isMostly(frame, 0, 1));
    EXPECT_FALSE(sys::Camera::open(sys::Camera::Source::testPattern())->showPicture(red));
}

TEST(Camera, a_slow_receiver_misses_frames_instead_of_queueing_them) {
    auto camera = sys::Camera::open(sys::Camera::Source::testPattern(160, 120));
    ASSERT_TRUE(camera);
    std::mutex mutex;
    std::vector<double> taken;
    camera->setFrameHandler([&](const gfx::Image&) {
        {
            std::lock_guard lock(mutex);
            taken.push_back(camera->lastFrameTime());
        }
        std::this_thread::sleep_for(150ms);
    });
    ASSERT_TRUE(camera->start());
    std::this_thread::sleep_for(1000ms);
    camera->stop();
    std::lock_guard lock(mutex);
    ASSERT_GE(taken.size(), 3u);
    // Each frame handed over is a fresh one: those taken while the receiver
    // was busy were dropped. Queued frames would come 1/30 s apart.
    for (std::size_t i = 1; i < taken.size(); ++i)
        EXPECT_GT(taken[i] - taken[i - 1], 0.1)
            << "frame " << i << ": " << taken[i - 1] << " then " << taken[i];
}

TEST(Camera, missing_devices_and_bad_pictures_are_reported_not_thrown) {
    std::string why;
    auto absent = sys::Camera::open(sys::Camera::Source::device("/dev/morvane-no-such-video"), &why);
    ASSERT_TRUE(absent) << why;
    EXPECT_FALSE(absent->start(&why));
    EXPECT_FALSE(why.empty());
    EXPECT_FALSE(absent->running());

    if (!std::filesystem::exists("/dev/video0")) {
        why.clear();
        EXPECT_FALSE(sys::Camera::open(sys::Camera::Source::device(), &why));
        EXPECT_EQ(why, "no camera (no /dev/video* device)");
    }

    // A file that is not a picture fails the running stream once, with a log line.
    const std::string text =
        (std::filesystem::temp_directory_path() / "morvane-camera-not-a-picture.png").string();
    std::ofstream(text) << "this is not a picture, only words\n";
    sys::Log::Capture capture;
    auto camera = sys::Camera::open(sys::Camera::Source::picture(text), &why);
    ASSERT_TRUE(camera);
    std::mutex mutex;
    std::condition_variable failed;
    std::vector<std::string> failures;
    camera->setFailureHandler([&](const std::string& reason) {
        std::lock_guard lock(mutex);
        failures.push_back(reason);
        failed.notify_all();
    });
    FrameLog log;
    camera->setFrameHandler(log.handler());
    const bool started = camera->start(&why);
    if (started) {
        std::unique_lock lock(mutex);
        failed.wait_for(lock, 10s, [&] { return !failures.empty(); });
        EXPECT_EQ(failures.size(), 1u);
        EXPECT_EQ(capture.texts().size(), 1u);
    } else {
        EXPECT_FALSE(why.empty());
    }
    camera->stop();
    EXPECT_EQ(log.size(), 0u);
}

TEST(Camera, the_application_choice_wins_over_the_environment) {
    ::setenv("MORVANE_CAMERA", "picture:/tmp/somewhere.png", 1);
    EXPECT_EQ(sys::Camera::defaultSource().kind, sys::Camera::Source::Kind::Picture);
    EXPECT_EQ(sys::Camera::defaultSource().path, "/tmp/somewhere.png");
    sys::Camera::setDefaultSource(sys::Camera::Source::testPattern(640, 480));
    EXPECT_EQ(sys::Camera::defaultSource().kind, sys::Camera::Source::Kind::TestPattern);
    sys::Camera::setDefaultSource(std::nullopt);
    ::setenv("MORVANE_CAMERA", "device:/dev/video7", 1);
    EXPECT_EQ(sys::Camera::defaultSource().path, "/dev/video7");
    ::unsetenv("MORVANE_CAMERA");
    EXPECT_EQ(sys::Camera::defaultSource().kind, sys::Camera::Source::Kind::Device);
}
