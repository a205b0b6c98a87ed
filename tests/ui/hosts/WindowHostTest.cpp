// The SDL2 window host, run as a separate program on a display: under
// xvfb-run when it is installed, else on the DISPLAY at hand; skipped without
// either.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

bool haveProgram(const char* name) {
    std::string probe = std::string("command -v ") + name + " > /dev/null 2>&1";
    return std::system(probe.c_str()) == 0;
}

TEST(WindowHost, opens_draws_and_closes_on_a_real_display) {
    std::string command;
    if (haveProgram("xvfb-run"))
        command = std::string("xvfb-run -a ") + MORVANE_WINDOW_SMOKE;
    else if (std::getenv("DISPLAY"))
        command = MORVANE_WINDOW_SMOKE;
    else
        GTEST_SKIP() << "no DISPLAY and no xvfb-run";
    // One retry: a virtual display started by another program at the same
    // moment can take the display number xvfb-run picked.
    int status = std::system(command.c_str());
    if (status != 0) status = std::system(command.c_str());
    EXPECT_EQ(status, 0) << command;
}

} // namespace

// In-process, on SDL's display-less video driver: frames come only when
// something changed, at most one per refresh, and keep coming while an
// animation runs.
#include <morvane/ui/core/View.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/WindowHost.h>

#include <chrono>

namespace {

using namespace morvane;

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST(WindowHost, draws_a_frame_only_when_something_changed) {
    const char* previous = std::getenv("SDL_VIDEODRIVER");
    std::string saved = previous ? previous : "";
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    {
        ui::WindowHost host({.title = "test", .size = {100, 100}, .scale = 1});
        if (!host.isOpen()) {
            unsetenv("SDL_VIDEODRIVER");
            GTEST_SKIP() << host.error();
        }
        auto box = std::make_shared<ui::View>(gfx::Rect{10, 10, 50, 50});
        host.root()->addSubview(box);
        auto start = std::chrono::steady_clock::now();
        while (host.framesDrawn() == 0 && secondsSince(start) < 2)
            host.runOnce(0.02);
        ASSERT_EQ(host.framesDrawn(), 1u);

        for (int i = 0; i < 10; ++i)
            host.runOnce(0.01);
        EXPECT_EQ(host.framesDrawn(), 1u) << "nothing changed, nothing drawn";

        // Several changes in a row make one frame.
        box->setBackgroundColor(gfx::Color::redColor());
        box->setAlpha(0.5);
        start = std::chrono::steady_clock::now();
        while (host.framesDrawn() == 1 && secondsSince(start) < 2)
            host.runOnce(0.01);
        for (int i = 0; i < 5; ++i)
            host.runOnce(0.01);
        EXPECT_EQ(host.framesDrawn(), 2u);

        // An animation keeps frames coming, no faster than the refresh.
        std::uint64_t before = host.framesDrawn();
        ui::View::animate(0.3, [&] { box->setCenter({60, 60}); });
        start = std::chrono::steady_clock::now();
        while (secondsSince(start) < 0.4)
            host.runOnce(0.01);
        std::uint64_t during = host.framesDrawn() - before;
        EXPECT_GE(during, 3u);
        EXPECT_LE(static_cast<double>(during), 0.4 / host.refreshInterval() + 2);
    }
    if (previous)
        setenv("SDL_VIDEODRIVER", saved.c_str(), 1);
    else
        unsetenv("SDL_VIDEODRIVER");
}

// Without any display SDL falls back to drawing off screen by itself; that
// is no window anyone can use, and the host must say so rather than run.
TEST(WindowHost, no_display_is_no_window) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER"})
        unsetenv(name); // each test runs in a process of its own
    ui::WindowHost host({.title = "test", .size = {100, 100}, .scale = 1});
    EXPECT_FALSE(host.isOpen());
    EXPECT_FALSE(host.error().empty());
    EXPECT_FALSE(host.runOnce(0.01));
}

} // namespace
