#pragma once
// Shows a view tree in a desktop window (SDL2) on the real clock: the mouse
// acts as a finger, typing and editing keys go to the focused view, and the
// main run loop is pumped between frames. A frame is drawn only when something
// changed (a view property, a running animation or spinner, work that ran) and
// at most once per display refresh; an idle window sleeps until an event, due
// work, or a wake-up from another thread. Creating a window host puts the
// kit on the real clock.
//
//   ui::WindowHost host({.title = "Gallery"});
//   if (!host.isOpen()) return fail(host.error());
//   host.root()->addSubview(screen);
//   host.run();                      // until the window is closed

#include <morvane/gfx/Geometry.h>

#include <cstdint>
#include <memory>
#include <string>

namespace morvane::ui {

class Window;

class WindowHost {
  public:
    struct Options {
        std::string title = "Morvane";
        gfx::Size size{390, 844}; // in points
        double scale = 1;         // pixels per point
    };

    explicit WindowHost(Options options);
    WindowHost();
    ~WindowHost();
    WindowHost(const WindowHost&) = delete;
    WindowHost& operator=(const WindowHost&) = delete;

    // False when no window could be made (no display, say); error() tells why.
    bool isOpen() const;
    const std::string& error() const { return error_; }
    const std::shared_ptr<Window>& root() const { return window_; }

    // Runs until the window is closed or close() is called.
    void run();
    // One turn of the loop: waits at most `maxWait` seconds for an event or
    // due work, handles what came, and draws a frame if one is needed and the
    // display refresh allows. False once the window is closed.
    bool runOnce(double maxWait);
    // Asks the loop to end; the window closes.
    void close();

    // Frames drawn so far (a frame in which nothing changed draws nothing).
    std::uint64_t framesDrawn() const { return framesDrawn_; }
    // Seconds between display refreshes.
    double refreshInterval() const { return refreshInterval_; }

  private:
    struct Impl;
    bool needsFrame() const;
    void drawFrame();
    void handleEvents(double maxWait);

    std::unique_ptr<Impl> impl_;
    std::shared_ptr<Window> window_;
    std::string error_;
    Options options_;
    double refreshInterval_ = 1.0 / 60;
    double lastFrameTime_ = -1e9;
    std::uint64_t drawnGeneration_ = 0;
    std::uint64_t framesDrawn_ = 0;
    bool closing_ = false;
    bool workRan_ = false;
};

} // namespace morvane::ui
