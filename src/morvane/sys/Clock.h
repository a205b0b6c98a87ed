#pragma once
// The one clock of the kit. Everything that waits (delayed blocks, timers,
// animation completions) and everything that asks for "now" goes through it.
//
// The real clock follows the system: a monotonic time for scheduling and the
// wall clock for dates. The manual clock stands still until the main run loop
// moves it (RunLoop::advance), so tests see every delay fall due exactly when
// they say so. Dates on the manual clock start at a chosen moment and move by
// exactly the time advanced.

#include <morvane/sys/Forward.h>

#include <optional>

namespace morvane::sys {

class Clock {
  public:
    enum class Kind { Real, Manual };

    // Seconds on a monotonic scale with an arbitrary origin; delays are measured on it.
    static double now();
    // The current moment as a date (seconds since 1970 UTC).
    static Date date();

    static Kind kind();
    static bool isManual() { return kind() == Kind::Manual; }

    // Stops time: from here on only RunLoop::advance moves it. Dates continue
    // from `start` (by default the current wall clock). Pending delays keep
    // their remaining time.
    static void useManual(std::optional<Date> start = std::nullopt);
    // Returns to the system's clocks.
    static void useReal();

  private:
    friend class RunLoop;
    // Moves the manual clock forward to `time` (never backwards).
    static void moveManualTo(double time);
};

} // namespace morvane::sys
