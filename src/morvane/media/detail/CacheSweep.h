#pragma once
// Inside the library only: when the picture cache is swept. Picture views ask
// for a sweep after every picture they show, and a sweep walks both cache
// folders reading every file's dates: a grid of a hundred tiles would walk
// them a hundred times on the main thread. So a sweep runs at most once per
// launch (a new documents folder counts as a new launch) and then at most
// once per interval, always on a background queue; requests in between are
// dropped. What a sweep removes is ZBImageCut's rule alone.

#include <filesystem>

namespace morvane::detail {

class CacheSweep {
  public:
    static constexpr double kInterval = 3600; // seconds on the kit's clock

    // Starts a sweep of the cache folders on a background queue when one is
    // due, and returns at once either way.
    static void request();

    // What the sweeps measured about themselves since the start (for tests
    // and benchmarks): walks of a cache folder, and the seconds spent inside
    // them on the main thread.
    struct Stats {
        long walks = 0;
        double mainThreadSeconds = 0;
    };
    static Stats stats();
    // Called by the walk itself.
    static void recordWalk(double mainThreadSeconds);
};

} // namespace morvane::detail
