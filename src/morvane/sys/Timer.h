#pragma once
// A timer on the main run loop: fires once or repeatedly after its interval on
// the kit's clock, until invalidated. The run loop keeps a scheduled timer
// alive; the returned pointer is only needed to invalidate it.

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

namespace morvane::sys {

class Timer {
  public:
    enum class Repeat { Once, Repeating };
    using Block = std::function<void(Timer&)>;

    // Schedules a timer; safe from any thread, the block always runs on the
    // main thread. A repeating timer's interval is at least a millisecond.
    static std::shared_ptr<Timer> schedule(double interval, Repeat repeat, Block block);

    // Stops the timer for good and lets go of its block. Safe from any thread;
    // a timer invalidated on the main thread never fires again.
    void invalidate();
    bool isValid() const { return valid_.load(); }
    double interval() const { return interval_; }
    bool repeats() const { return repeat_ == Repeat::Repeating; }

    Timer(double interval, Repeat repeat, Block block);

  private:
    friend class RunLoop;
    // Runs the block when still valid; a one-shot timer ends itself first.
    void fire();

    std::atomic<bool> valid_{true};
    double interval_;
    Repeat repeat_;
    std::mutex mutex_;
    Block block_;
};

} // namespace morvane::sys
