// The flight display fed from several threads at once: every field lands on
// the main thread, each thread's values in the order it sent them, and a
// display released before its queued updates run takes no harm. In the TSan run.
#include <morvane/flight/UIFltDisplay.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

using namespace morvane;

namespace {

std::string shown(const UIFltTiny& row) {
    const auto& text = row.login()->attributedTitle();
    return text ? text->string() : std::string();
}

} // namespace

TEST(FlightThreads, four_threads_fields_land_on_the_main_thread_in_each_threads_order) {
    ui::HeadlessHost host;
    auto display = std::make_shared<UIFltDisplay>(gfx::Rect{8, 200, 374, 420});
    host.root()->addSubview(display);
    constexpr int kUpdates = 2000;
    // Each thread owns one field and sends it 0, 1, 2, ...; the row it fills
    // checks on the main thread that no value ever goes backwards.
    std::vector<std::thread> threads;
    std::atomic<bool> go{false};
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&, thread] {
            while (!go)
                std::this_thread::yield();
            for (int i = 0; i < kUpdates; ++i) {
                const std::string value = std::to_string(i);
                switch (thread) {
                case 0:
                    display->addGate("D", "Gate", value);
                    break;
                case 1:
                    display->gateLeft("Gate", value);
                    break;
                case 2:
                    display->addTerminal("D", "Terminal", value);
                    break;
                default:
                    display->addFlightHeader(value, Value(), Value());
                    break;
                }
            }
        });
    go = true;
    int last[4] = {-1, -1, -1, -1};
    bool backwards = false;
    const auto current = [&] {
        return std::vector<std::string>{shown(*display->departureUI()->gate()),
                                        shown(*display->arriveUI()->gate()),
                                        shown(*display->departureUI()->terminal()), display->title()->text()};
    };
    for (;;) {
        host.runUntilIdle();
        const auto values = current();
        for (int f = 0; f < 4; ++f) {
            const int v = values[f].empty() ? -1 : std::stoi(values[f]);
            backwards |= v < last[f];
            last[f] = v;
        }
        if (last[0] == kUpdates - 1 && last[1] == kUpdates - 1 && last[2] == kUpdates - 1 &&
            last[3] == kUpdates - 1)
            break;
    }
    for (auto& t : threads)
        t.join();
    host.runUntilIdle();
    EXPECT_FALSE(backwards);
    EXPECT_EQ(current(), std::vector<std::string>(4, std::to_string(kUpdates - 1)));
}

TEST(FlightThreads, updates_queued_for_a_display_released_meanwhile_are_dropped) {
    ui::HeadlessHost host;
    auto display = std::make_shared<UIFltDisplay>(gfx::Rect{8, 200, 374, 420});
    host.root()->addSubview(display);
    std::weak_ptr<UIFltDisplay> weak = display;
    // Two threads queue thousands of updates; the display is released before
    // the main thread runs any of them.
    std::vector<std::thread> pushers;
    for (const char* side : {"A", "D"})
        pushers.emplace_back([display, side] {
            for (int i = 0; i < 5000; ++i)
                display->addSchedule(side, "Scheduled", std::to_string(i), "PST");
        });
    for (auto& pusher : pushers)
        pusher.join();
    display->removeFromSuperview();
    display.reset();
    host.runUntilIdle();
    EXPECT_TRUE(weak.expired());
}
