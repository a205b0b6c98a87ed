#pragma once
// Animation bookkeeping behind View::animate. Model values change at once; a
// view that is animating keeps, per property, where the screen started from
// and when, and the renderer asks for the value in between by the kit's clock.
// Everything here belongs to the main thread.

#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>
#include <morvane/gfx/Transform.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace morvane::ui {
class View;
}

namespace morvane::ui::detail {

enum AnimatedProperty : int { kCenter = 0, kBounds, kAlpha, kTransform, kPropertyCount };

// One animate() call: its completion runs once, when its time is up or when
// its animations are removed.
struct AnimationGroup {
    std::function<void(bool)> completion;
    bool done = false;
    bool cancelled = false; // removed early: finishes with false

    void finish(bool finished);
};

struct Track {
    bool active = false;
    double start = 0;
    double duration = 0;
    std::shared_ptr<AnimationGroup> group;

    // 0...1 along the timing curve; 1 once the time is up.
    double progress(double now) const;
    bool runningAt(double now) const { return active && now < start + duration; }
};

struct ViewAnimations {
    Track tracks[kPropertyCount];
    gfx::Point fromCenter;
    gfx::Rect fromBounds;
    double fromAlpha = 1;
    gfx::Transform fromTransform;

    // A cross-dissolve: the old look fades out over the new one.
    Track dissolve;
    gfx::Image oldLook;

    bool runningAt(double now) const;
};

// Mixes two values: t = 0 gives `from`, 1 gives `to`.
double mix(double from, double to, double t);
gfx::Point mix(gfx::Point from, gfx::Point to, double t);
gfx::Rect mix(const gfx::Rect& from, const gfx::Rect& to, double t);
gfx::Transform mix(const gfx::Transform& from, const gfx::Transform& to, double t);

class Animator {
  public:
    struct Context {
        double duration = 0;
        double start = 0;
        std::shared_ptr<AnimationGroup> group;
    };

    // The innermost open animate() block, or null outside of one.
    static Context* current();
    static void push(Context context);
    static void pop();

    // The time on the kit's clock until which something animates.
    static double busyUntil();
    static void noteBusyUntil(double time);

    // Things that move for as long as they run (a spinning activity
    // indicator) ask for a frame on every display refresh while they count.
    static void addContinuous();
    static void removeContinuous();
    static int continuousCount();

    // Moves with every change that should reach the screen; a host redraws
    // when it differs from the value it drew.
    static std::uint64_t displayGeneration();
    static void bumpDisplayGeneration();
};

} // namespace morvane::ui::detail
