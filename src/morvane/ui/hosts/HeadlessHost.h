#pragma once
// Runs a view tree without a display: a phone-sized window, the manual clock,
// simulated touches and typing, and snapshots as images or PNG files. Tests
// and the gallery's scripted tour drive components through it.
//
//   ui::HeadlessHost host;
//   host.root()->addSubview(card);
//   host.tap({195, 400});
//   host.advance(0.5);                 // half an animation later
//   host.writeSnapshot("card.png", 2);
//
// Every input is followed by running the main queue until idle, as a real
// event loop runs posted work before the next event arrives. Creating a host
// switches the kit to the manual clock; destroying it drops pending work.

#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>
#include <morvane/ui/core/Key.h>
#include <morvane/ui/core/Renderer.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::ui {

class Window;

class HeadlessHost {
  public:
    static constexpr gfx::Size kPhoneSize{390, 844};

    explicit HeadlessHost(gfx::Size size = kPhoneSize);
    ~HeadlessHost();
    HeadlessHost(const HeadlessHost&) = delete;
    HeadlessHost& operator=(const HeadlessHost&) = delete;

    const std::shared_ptr<Window>& root() const { return window_; }

    // A touch down and up at the same point (window coordinates).
    void tap(gfx::Point location);
    void touchDown(gfx::Point location);
    void touchMove(gfx::Point location);
    void touchUp(gfx::Point location);
    // A finger pressed at `from`, moved to `to` in `steps` even moves over
    // `duration` seconds of the clock, and lifted (a scroll, a swipe, a pull).
    void drag(gfx::Point from, gfx::Point to, double duration = 0.25, int steps = 10);
    // Typed text and keys for the focused view (nothing happens without one).
    // Typing sends one character at a time, as a keyboard does.
    void typeText(std::string_view text);
    // Pasted text arrives as one piece.
    void paste(std::string_view text);
    bool pressKey(Key key);

    // Lays out, then runs everything due now on the main loop.
    void runUntilIdle();
    // Moves the manual clock forward, running what falls due on the way.
    void advance(double seconds);

    // The window as drawn now (mid-animation values included) at the scale.
    gfx::Image snapshot(double scale = 2) const;
    // The snapshot as a PNG file; false when it could not be written.
    bool writeSnapshot(const std::string& path, double scale = 2) const;

    // The next frame, drawn as a window host draws it: into pixels the host
    // keeps from frame to frame, redrawing only what changed since the last
    // frame (all of it the first time, or at another scale). Says what was
    // drawn and moved: nothing when nothing changed.
    Renderer::Frame drawFrame(double scale = 2);
    // The pixels of the frames drawn so far (null before the first).
    gfx::Image frameImage() const;

  private:
    std::shared_ptr<Window> window_;
    std::unique_ptr<Renderer> frameRenderer_;
    std::vector<std::uint8_t> framePixels_;
    int frameWidth_ = 0;
    int frameHeight_ = 0;
    double frameScale_ = 0;
};

} // namespace morvane::ui
