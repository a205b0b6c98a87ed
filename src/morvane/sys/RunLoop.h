#pragma once
// The main run loop: it runs the main queue's blocks, the delayed blocks meant
// for the main queue and the timers, on the main thread, in time order (ties
// in the order they were posted).
//
// Three ways to drive it:
// - a window host calls runDue() once per iteration, sleeps at most
//   timeUntilNextDue(), and is woken through setWakeUpHandler() when another
//   thread posts work;
// - a program without a window calls run() until stop();
// - a test on the manual clock calls runUntilIdle() and advance(seconds).

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace morvane::sys {

class Queue;
class Timer;

class RunLoop {
  public:
    static RunLoop& main();

    // Runs what is due at the moment of the call, once: blocks posted while
    // it runs wait for the next call. Returns how many blocks and timers ran.
    int runDue();
    // Runs everything due now, including whatever that posts for now, until
    // nothing is left to run now.
    void runUntilIdle();
    // Moves the manual clock forward by `seconds`, running every block and
    // timer that falls due on the way at its own time, and releasing delayed
    // blocks of other queues to their threads at theirs. On the real clock it
    // runs the loop for that long.
    void advance(double seconds);

    // Seconds until the next block or timer is due: 0 when something is due
    // now, nothing when nothing is pending at all.
    std::optional<double> timeUntilNextDue() const;

    // Called from the posting thread whenever work arrives from a thread
    // other than the main thread (at most once until the loop next runs).
    // The handler must be safe to call from any thread.
    void setWakeUpHandler(std::function<void()> handler);

    // Runs the loop, sleeping while nothing is due, until stop() is called
    // (from any thread, or from a block).
    void run();
    void stop();

    // Drops every pending block and timer, of the main loop and the delayed
    // blocks of other queues (tests call it between cases).
    void discardPending();

    // Until nothing is left anywhere: waits for the global and serial queues,
    // then runs the main loop's due work, and again while either posted more.
    void settle();

    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

  private:
    RunLoop();
    ~RunLoop() = delete;

    friend class Queue;
    friend class Timer;
    using Block = std::function<void()>;
    // Appends a block to the main queue.
    void post(Block block);
    // Keeps a block until `due` on the clock; then it runs on the main thread
    // (target nullptr) or is released to the target queue.
    void schedule(double due, Queue* target, Block block);
    void schedule(double due, std::shared_ptr<Timer> timer);
    bool runOneTimed(double now, std::uint64_t seqLimit);
    void wake();

    struct State;
    State* state_;
};

} // namespace morvane::sys
