// Everything here crosses threads; the suite runs under ThreadSanitizer.
#include <morvane/sys/Clock.h>
#include <morvane/sys/Fetch.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/sys/RunLoop.h>
#include <morvane/sys/Settings.h>
#include <morvane/sys/Timer.h>

#include "LoopbackServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace morvane::sys;
using namespace std::chrono_literals;

namespace {

// Runs the main loop until the condition holds (or a generous deadline passes).
template <typename Condition> bool pumpUntil(Condition condition) {
    auto deadline = std::chrono::steady_clock::now() + 20s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        RunLoop::main().runUntilIdle();
        std::this_thread::yield();
    }
    return true;
}

} // namespace

// Posts from several threads at once: nothing is lost, nothing runs twice,
// each thread's blocks keep their order, and all of them run on the main thread.
TEST(Posting, many_threads_post_to_main_without_loss_and_in_order) {
    constexpr int kThreads = 4, kPerThread = 20000;
    std::vector<std::vector<int>> seen(kThreads); // touched only on the main thread
    bool offMain = false;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([t, &seen, &offMain] {
            for (int i = 0; i < kPerThread; ++i)
                Queue::main().async([t, i, &seen, &offMain] {
                    if (!isMainThread()) offMain = true;
                    seen[size_t(t)].push_back(i);
                });
        });
    auto total = [&] {
        size_t sum = 0;
        for (auto& list : seen)
            sum += list.size();
        return sum;
    };
    EXPECT_TRUE(pumpUntil([&] { return total() == size_t(kThreads * kPerThread); }));
    for (auto& thread : threads)
        thread.join();
    RunLoop::main().runUntilIdle();
    EXPECT_FALSE(offMain);
    for (auto& list : seen) {
        ASSERT_EQ(list.size(), size_t(kPerThread));
        for (int i = 0; i < kPerThread; ++i)
            ASSERT_EQ(list[size_t(i)], i);
    }
}

TEST(Posting, global_queues_run_every_block_and_wait_idle_waits_for_chains) {
    std::atomic<int> count{0};
    for (int i = 0; i < 300; ++i)
        for (Priority priority : {Priority::Background, Priority::Default, Priority::UserInitiated})
            Queue::global(priority).async([&count, priority] {
                count.fetch_add(1);
                // Work that posts more work: waitIdle must wait for that too.
                if (priority == Priority::Background)
                    Queue::serial("chain").async([&count] { count.fetch_add(1); });
            });
    Queue::waitIdle();
    EXPECT_EQ(count.load(), 1200);
}

// A serial queue runs one block at a time, in order: the unguarded vector is
// only safe (and TSan quiet) if that holds.
TEST(Posting, serial_queue_runs_one_block_at_a_time_in_order) {
    Queue& queue = Queue::serial("myQueue");
    EXPECT_EQ(&queue, &Queue::serial("myQueue"));
    EXPECT_NE(&queue, &Queue::serial("otherQueue"));
    std::vector<int> order;
    std::atomic<bool> wrongQueue{false};
    std::vector<std::thread> posters;
    for (int t = 0; t < 2; ++t)
        posters.emplace_back([&, t] {
            for (int i = 0; i < 1000; ++i)
                queue.async([&, t, i] {
                    if (!queue.isCurrent() || Queue::main().isCurrent()) wrongQueue = true;
                    order.push_back(t * 1000 + i);
                });
        });
    for (auto& poster : posters)
        poster.join();
    Queue::waitIdle();
    ASSERT_EQ(order.size(), 2000u);
    EXPECT_FALSE(wrongQueue.load());
    int lastOfEach[2] = {-1, 999};
    for (int value : order) {
        int& last = lastOfEach[value / 1000];
        EXPECT_GT(value, last);
        last = value;
    }
}

// The photo loaders' path: background queue, then serial, then back to main.
TEST(Posting, settle_follows_work_across_queues_back_to_main) {
    std::string trail; // written on main only
    std::atomic<bool> backgroundRan{false};
    Queue::main().async([&] {
        trail += "main ";
        Queue::global(Priority::Background).async([&] {
            backgroundRan = true;
            Queue::serial("myQueue").async([&] { Queue::main().async([&] { trail += "back on main"; }); });
        });
    });
    RunLoop::main().settle();
    EXPECT_TRUE(backgroundRan.load());
    EXPECT_EQ(trail, "main back on main");
}

// With the manual clock, delayed blocks for other queues wait for advance()
// and then run on their own threads.
TEST(Posting, manual_clock_releases_delayed_background_blocks_when_due) {
    Clock::useManual();
    std::atomic<int> ran{0};
    std::atomic<bool> onMain{false};
    Queue::global().after(1, [&] {
        if (isMainThread()) onMain = true;
        ran.fetch_add(1);
    });
    Queue::serial("later").after(2, [&] { ran.fetch_add(10); });
    RunLoop::main().advance(0.5);
    Queue::waitIdle();
    std::this_thread::sleep_for(100ms); // the real clock would have released them by now
    EXPECT_EQ(ran.load(), 0);
    RunLoop::main().advance(0.6);
    Queue::waitIdle();
    EXPECT_EQ(ran.load(), 1);
    RunLoop::main().advance(1);
    Queue::waitIdle();
    EXPECT_EQ(ran.load(), 11);
    EXPECT_FALSE(onMain.load());
    Clock::useReal();
}

TEST(Posting, real_clock_releases_delayed_background_blocks_without_the_main_loop) {
    std::atomic<bool> ran{false};
    auto start = std::chrono::steady_clock::now();
    Queue::global().after(0.02, [&] { ran = true; });
    while (!ran.load() && std::chrono::steady_clock::now() - start < 10s)
        std::this_thread::sleep_for(1ms);
    EXPECT_TRUE(ran.load());
    EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
}

// The window host sleeps in its own event loop; posts from other threads must
// wake it through the handler, once per sleep rather than once per block.
TEST(Posting, wake_up_handler_is_called_for_posts_from_other_threads) {
    RunLoop::main().runUntilIdle();
    std::atomic<int> wakes{0};
    RunLoop::main().setWakeUpHandler([&] { wakes.fetch_add(1); });
    int ran = 0;
    Queue::main().async([&] { ++ran; }); // from the main thread: no wake-up needed
    EXPECT_EQ(wakes.load(), 0);
    std::thread([&] {
        for (int i = 0; i < 100; ++i)
            Queue::main().async([&] { ++ran; });
    }).join();
    EXPECT_EQ(wakes.load(), 1);
    RunLoop::main().runDue();
    EXPECT_EQ(ran, 101);
    std::thread([&] { Timer::schedule(0, Timer::Repeat::Once, [&](Timer&) { ++ran; }); }).join();
    EXPECT_EQ(wakes.load(), 2);
    RunLoop::main().setWakeUpHandler(nullptr);
    EXPECT_TRUE(pumpUntil([&] { return ran == 102; }));
}

TEST(Posting, blocking_run_wakes_for_posts_and_stops_from_another_thread) {
    std::atomic<bool> ranOnMain{false};
    std::thread poster([&] {
        std::this_thread::sleep_for(20ms);
        Queue::main().async([&] { ranOnMain = isMainThread(); });
        std::this_thread::sleep_for(20ms);
        RunLoop::main().stop();
    });
    RunLoop::main().run();
    poster.join();
    EXPECT_TRUE(ranOnMain.load());
}

TEST(Posting, timers_scheduled_from_other_threads_fire_on_main) {
    std::atomic<int> fired{0};
    std::atomic<bool> offMain{false};
    std::vector<std::shared_ptr<Timer>> kept(4);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            kept[size_t(t)] = Timer::schedule(0.001 * t, Timer::Repeat::Once, [&](Timer&) {
                if (!isMainThread()) offMain = true;
                fired.fetch_add(1);
            });
        });
    for (auto& thread : threads)
        thread.join();
    kept[3]->invalidate(); // from the main thread, before it is due: never fires
    EXPECT_TRUE(pumpUntil([&] { return fired.load() == 3; }));
    std::this_thread::sleep_for(10ms);
    RunLoop::main().runUntilIdle();
    EXPECT_EQ(fired.load(), 3);
    EXPECT_FALSE(offMain.load());
}

TEST(Logging, lines_from_many_threads_arrive_whole) {
    Log::Capture capture;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < 200; ++i) {
                Log::platform("Deleted file: /t" + std::to_string(t) + "/" + std::to_string(i));
                Log::standardError("-zd line " + std::to_string(i) + "\n");
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(capture.texts(Log::Channel::Platform).size(), 800u);
    EXPECT_EQ(capture.texts(Log::Channel::StandardError).size(), 800u);
    EXPECT_TRUE(capture.contains("Deleted file: /t3/199"));
    EXPECT_TRUE(capture.contains("-zd line 5\n", Log::Channel::StandardError));
}

TEST(Logging, nested_captures_and_the_sink_each_get_only_their_own_lines) {
    std::vector<std::string> sunk;
    Log::setPlatformSink([&](std::string_view text) { sunk.emplace_back(text); });
    {
        Log::Capture outer;
        {
            Log::Capture inner;
            Log::platform("inner");
            EXPECT_TRUE(inner.contains("inner"));
        }
        Log::platform("outer");
        EXPECT_EQ(outer.texts(), std::vector<std::string>{"outer"});
    }
    Log::platform("to the sink");
    Log::setPlatformSink(nullptr);
    EXPECT_EQ(sunk, std::vector<std::string>{"to the sink"});
}

TEST(SettingsThreads, saves_from_many_threads_all_land) {
    auto folder =
        std::filesystem::temp_directory_path() / ("morvane-settings-threads-" + std::to_string(getpid()));
    std::filesystem::remove_all(folder);
    {
        Settings store(folder / "Settings.sqlite");
        std::vector<std::thread> threads;
        std::atomic<int> failures{0};
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&, t] {
                for (int i = 0; i < 50; ++i) {
                    std::string key = "k" + std::to_string(t) + "." + std::to_string(i);
                    if (!store.setText(key, key)) failures.fetch_add(1);
                    if (store.text(key) != key) failures.fetch_add(1);
                }
            });
        for (auto& thread : threads)
            thread.join();
        EXPECT_EQ(failures.load(), 0);
        EXPECT_EQ(store.keys().size(), 200u);
    }
    std::filesystem::remove_all(folder);
}

// Picture downloads: many fetches at once on the global queues, each result
// handed back to the main queue.
TEST(FetchThreads, parallel_fetches_on_global_queues_report_back_to_main) {
    morvane::test::LoopbackServer server;
    for (int i = 0; i < 8; ++i)
        server.serve("/p" + std::to_string(i) + ".png", std::string(10000 + i, 'p'));
    server.stall("/stalled.png");
    std::vector<size_t> sizes; // main thread only
    FetchOptions options;
    options.totalTimeout = 1;
    for (int i = 0; i < 9; ++i) {
        std::string address = server.address(i < 8 ? "/p" + std::to_string(i) + ".png" : "/stalled.png");
        Queue::global(i % 2 ? Priority::Default : Priority::Background).async([&sizes, address, options] {
            auto result = fetch(address, options);
            Queue::main().async(
                [&sizes, size = result.ok() ? result.body.size() : 0] { sizes.push_back(size); });
        });
    }
    RunLoop::main().settle();
    std::sort(sizes.begin(), sizes.end());
    EXPECT_EQ(sizes, (std::vector<size_t>{0, 10000, 10001, 10002, 10003, 10004, 10005, 10006, 10007}));
    EXPECT_EQ(server.totalRequests(), 9);
}

// The fetch queue runs a few transfers at once and keeps the rest waiting in
// order; transfers nobody wants any more end at once, running or waiting,
// without a request for the waiting ones ever reaching the server.
TEST(FetchThreads, fetch_queue_bounds_transfers_and_drops_unwanted_ones) {
    morvane::test::LoopbackServer server;
    constexpr int kTransfers = FetchQueue::kMaxTransfers + 3;
    for (int i = 0; i < kTransfers; ++i)
        server.delay("/slow" + std::to_string(i), 8, {200, "late", {}});
    std::atomic<bool> wanted{true};
    std::mutex mutex;
    std::vector<FetchResult::Failure> failures;
    for (int i = 0; i < kTransfers; ++i) {
        FetchOptions options;
        options.wanted = [&wanted] { return wanted.load(); };
        FetchQueue::shared().add(server.address("/slow" + std::to_string(i)), options,
                                 [&](FetchResult result) {
                                     std::lock_guard lock(mutex);
                                     failures.push_back(result.failure);
                                 });
    }
    auto deadline = std::chrono::steady_clock::now() + 5s;
    while (server.totalRequests() < FetchQueue::kMaxTransfers && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(10ms);
    std::this_thread::sleep_for(100ms); // room for a transfer beyond the limit to show up
    EXPECT_EQ(server.totalRequests(), FetchQueue::kMaxTransfers);
    EXPECT_EQ(FetchQueue::shared().running(), FetchQueue::kMaxTransfers);
    EXPECT_EQ(FetchQueue::shared().waiting(), size_t(kTransfers - FetchQueue::kMaxTransfers));

    const auto start = std::chrono::steady_clock::now();
    wanted = false;
    Queue::waitIdle();
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 4)
        << "given up, not waited out";
    EXPECT_EQ(server.totalRequests(), FetchQueue::kMaxTransfers);
    EXPECT_EQ(failures, std::vector<FetchResult::Failure>(kTransfers, FetchResult::Failure::Cancelled));
    EXPECT_EQ(FetchQueue::shared().running(), 0);
}
