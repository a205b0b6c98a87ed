// Opens a real window, draws a few frames (one with a running animation),
// clicks a button with a synthetic mouse event, and closes. Exit code 0 on
// success; used by the window host's smoke test under Xvfb.

#include <morvane/sys/Clock.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/WindowHost.h>

#include <cstdint>
#include <cstdio>

using namespace morvane;

// In the sanitizer build this program checks memory errors but not leaks: SDL
// loads D-Bus and X11 helper libraries at run time and unloads them on exit,
// leaving allocations the leak checker cannot attribute. The test suite's own
// executable keeps leak checking for the view layer.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

int main() {
    ui::WindowHost host({.title = "Morvane smoke test", .size = {200, 300}, .scale = 1});
    if (!host.isOpen()) {
        std::fprintf(stderr, "window host did not open: %s\n", host.error().c_str());
        return 2;
    }
    auto button = std::make_shared<ui::Button>(gfx::Rect{20, 20, 160, 44});
    button->setBackgroundColor(gfx::Color::blueColor());
    button->setTitle("Close");
    host.root()->addSubview(button);
    int pressed = 0;
    button->addAction(ui::ControlEvent::TouchUpInside, [&](ui::Control&) { ++pressed; });

    ui::View::animate(0.2, [&] { button->setCenter({100, 200}); });
    // Then a click, which must show (the pressed look comes and goes), and
    // work posted from another thread wakes the loop and closes the window.
    enum class Step { Animating, Clicked, Closing } step = Step::Animating;
    std::uint64_t framesAtClick = 0;
    double start = sys::Clock::now();
    while (host.runOnce(0.05)) {
        double elapsed = sys::Clock::now() - start;
        if (step == Step::Animating && elapsed > 0.4 && host.framesDrawn() > 0) {
            step = Step::Clicked;
            framesAtClick = host.framesDrawn();
            host.root()->sendTouchDown({100, 200});
            host.root()->sendTouchUp({100, 200});
        } else if (step == Step::Clicked && host.framesDrawn() > framesAtClick) {
            step = Step::Closing;
            sys::Queue::global().async([&host] { sys::Queue::main().async([&host] { host.close(); }); });
        }
        if (elapsed > 20) {
            std::fprintf(stderr, "timed out\n");
            return 3;
        }
    }
    std::printf("frames drawn: %llu, presses: %d\n", static_cast<unsigned long long>(host.framesDrawn()),
                pressed);
    return host.framesDrawn() >= 2 && pressed == 1 ? 0 : 1;
}
