// The main run loop and timers on the manual clock (order, repeats, odd
// delays, one pass at a time, throwing blocks) and on the real clock.
#include <morvane/sys/Clock.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/sys/RunLoop.h>
#include <morvane/sys/Timer.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

using namespace morvane::sys;

namespace {

class ManualClock : public ::testing::Test {
  protected:
    void SetUp() override {
        Clock::useManual(kStart);
        RunLoop::main().discardPending();
        origin = Clock::now();
    }
    void TearDown() override {
        RunLoop::main().discardPending();
        Clock::useReal();
    }
    // Seconds since the test began, on the manual clock.
    double elapsed() const { return Clock::now() - origin; }

    static constexpr Date kStart = 1577836800; // 2020-01-01 00:00:00 UTC
    double origin = 0;
    RunLoop& loop = RunLoop::main();
};

void expectTimes(const std::vector<double>& actual, const std::vector<double>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (size_t i = 0; i < actual.size(); ++i)
        EXPECT_NEAR(actual[i], expected[i], 1e-9) << "item " << i;
}

} // namespace

// The core promise of the manual clock: whatever order work was posted in, it
// runs in the order it falls due, each item at its own time, and a timer that
// was invalidated does not fire.
TEST_F(ManualClock, delayed_blocks_and_timers_run_in_time_order_at_their_own_time) {
    std::vector<std::string> order;
    std::vector<double> at;
    auto note = [&](std::string name) {
        order.push_back(std::move(name));
        at.push_back(elapsed());
    };
    Queue::main().after(3, [&] { note("after 3"); });
    auto timer = Timer::schedule(1, Timer::Repeat::Once, [&](Timer&) { note("timer 1"); });
    Queue::main().after(2, [&] { note("after 2"); });
    auto cancelled = Timer::schedule(1.5, Timer::Repeat::Once, [&](Timer&) { note("cancelled"); });
    cancelled->invalidate();

    loop.runUntilIdle();
    EXPECT_TRUE(order.empty()) << "nothing is due before the clock moves";
    loop.advance(5);
    EXPECT_EQ(order, (std::vector<std::string>{"timer 1", "after 2", "after 3"}));
    expectTimes(at, {1, 2, 3});
    EXPECT_NEAR(elapsed(), 5, 1e-9);
    EXPECT_NEAR(Clock::date(), kStart + 5, 1e-6);
    EXPECT_FALSE(timer->isValid()) << "a one-shot timer ends after firing";
}

// Items due together run in posting order; work that a delayed block posts
// for "now" runs before the clock moves on to later items: completions
// chained on a completion keep their place in time.
TEST_F(ManualClock, items_due_together_keep_posting_order_and_chained_work_keeps_its_place) {
    std::string order;
    Queue::main().after(1, [&] { order += "a"; });
    Timer::schedule(1, Timer::Repeat::Once, [&](Timer&) { order += "b"; });
    Queue::main().after(1, [&] {
        order += "c";
        Queue::main().async([&] { order += "d"; });
        Queue::main().after(0.5, [&] { order += "f"; });
    });
    Queue::main().async([&] { order += "0"; });
    Queue::main().after(1.2, [&] { order += "e"; });
    Queue::main().after(2, [&] { order += "g"; });
    loop.advance(1.9);
    EXPECT_EQ(order, "0abcdef");
    loop.advance(0.2);
    EXPECT_EQ(order, "0abcdefg");
}

TEST_F(ManualClock, repeating_timer_fires_at_each_interval_until_invalidated) {
    std::vector<double> at;
    auto timer = Timer::schedule(0.5, Timer::Repeat::Repeating, [&](Timer& self) {
        at.push_back(elapsed());
        if (at.size() == 3) self.invalidate();
    });
    loop.advance(1.2);
    expectTimes(at, {0.5, 1.0});
    loop.advance(10);
    expectTimes(at, {0.5, 1.0, 1.5});
    EXPECT_FALSE(timer->isValid());

    // Invalidated from outside between firings: never fires again.
    int count = 0;
    auto other = Timer::schedule(1, Timer::Repeat::Repeating, [&](Timer&) { ++count; });
    loop.advance(2.5);
    other->invalidate();
    loop.advance(5);
    EXPECT_EQ(count, 2);

    // Invalidation lets go of the block at once: a timer must not keep what
    // its block captured alive until it would have fired.
    auto token = std::make_shared<int>(1);
    std::weak_ptr<int> watch = token;
    auto holder = Timer::schedule(60, Timer::Repeat::Repeating, [token](Timer&) {});
    token.reset();
    EXPECT_FALSE(watch.expired());
    holder->invalidate();
    EXPECT_TRUE(watch.expired());
}

TEST_F(ManualClock, odd_delays_are_tamed) {
    std::string order;
    Queue::main().after(-3, [&] { order += "negative "; });
    Queue::main().after(std::nan(""), [&] { order += "nan "; });
    Queue::main().after(std::numeric_limits<double>::infinity(), [&] { order += "never "; });
    auto never = Timer::schedule(std::numeric_limits<double>::infinity(), Timer::Repeat::Once,
                                 [&](Timer&) { order += "never-timer "; });
    auto busy = Timer::schedule(0, Timer::Repeat::Repeating, [&](Timer&) { order += "."; });
    loop.runUntilIdle();
    EXPECT_EQ(order, "negative nan ");
    EXPECT_FALSE(never->isValid());
    loop.advance(0.0025);
    EXPECT_EQ(order, "negative nan ..") << "a zero repeat interval becomes the shortest one";
    busy->invalidate();
    loop.advance(1e9);
    EXPECT_EQ(order, "negative nan ..");
}

// The window host's view of the loop: one pass runs what was due when it
// started, and the time until the next item tells it how long it may sleep.
TEST_F(ManualClock, run_due_runs_one_pass_and_reports_the_next_item) {
    EXPECT_EQ(loop.timeUntilNextDue(), std::nullopt);
    std::string order;
    Queue::main().async([&] {
        order += "a";
        Queue::main().async([&] { order += "b"; });
    });
    Timer::schedule(2, Timer::Repeat::Once, [&](Timer&) { order += "t"; });
    EXPECT_EQ(loop.timeUntilNextDue(), 0.0);
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_EQ(order, "a");
    EXPECT_EQ(loop.timeUntilNextDue(), 0.0);
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_EQ(order, "ab");
    ASSERT_TRUE(loop.timeUntilNextDue());
    EXPECT_NEAR(*loop.timeUntilNextDue(), 2.0, 1e-9);
    loop.advance(2.001);
    EXPECT_EQ(order, "abt");
    EXPECT_EQ(loop.timeUntilNextDue(), std::nullopt);
}

TEST_F(ManualClock, a_throwing_block_is_logged_and_the_loop_goes_on) {
    Log::Capture log;
    std::string order;
    Queue::main().async([] { throw std::runtime_error("boom"); });
    Queue::main().async([&] { order += "after"; });
    Timer::schedule(1, Timer::Repeat::Once, [](Timer&) { throw 42; });
    Queue::main().after(1, [&] { order += " timer"; });
    loop.advance(1);
    EXPECT_EQ(order, "after timer");
    ASSERT_EQ(log.texts().size(), 2u);
    EXPECT_NE(log.texts()[0].find("boom"), std::string::npos);
}

TEST_F(ManualClock, discard_pending_drops_everything) {
    bool ran = false;
    Queue::main().async([&] { ran = true; });
    Queue::main().after(1, [&] { ran = true; });
    auto timer = Timer::schedule(1, Timer::Repeat::Repeating, [&](Timer&) { ran = true; });
    loop.discardPending();
    loop.advance(5);
    EXPECT_FALSE(ran);
    EXPECT_FALSE(timer->isValid());
}

TEST(RealClock, run_stops_when_a_block_asks_and_timers_fire_on_their_own) {
    ASSERT_FALSE(Clock::isManual());
    EXPECT_GT(Clock::date(), 1.7e9) << "dates follow the wall clock";
    int ticks = 0;
    double start = Clock::now();
    Timer::schedule(0.005, Timer::Repeat::Repeating, [&](Timer& timer) {
        if (++ticks == 3) {
            timer.invalidate();
            Queue::main().after(0.01, [] { RunLoop::main().stop(); });
        }
    });
    RunLoop::main().run();
    EXPECT_EQ(ticks, 3);
    EXPECT_GE(Clock::now() - start, 0.025);

    // On the real clock advance() runs the loop for that long.
    bool ran = false;
    Queue::main().after(0.01, [&] { ran = true; });
    RunLoop::main().advance(0.03);
    EXPECT_TRUE(ran);
    EXPECT_GE(Clock::now() - start, 0.055);
}
