// Throughput of the two paths the kit leans on hardest: blocks posted to the
// main queue from another thread (download completions, flight updates) and
// settings saves, each one committed transaction.
#include <morvane/sys/Queue.h>
#include <morvane/sys/RunLoop.h>
#include <morvane/sys/Settings.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace morvane::sys;
using Clock = std::chrono::steady_clock;

namespace {

double seconds(Clock::time_point since) {
    return std::chrono::duration<double>(Clock::now() - since).count();
}

// Another thread posts `count` blocks; the main thread runs its loop until the
// last one has run. Blocks per second, posting and running included.
double mainQueueRate(long count) {
    long ran = 0; // main thread only
    auto start = Clock::now();
    std::thread poster([&] {
        for (long i = 0; i < count; ++i)
            Queue::main().async([&ran, count] {
                if (++ran == count) RunLoop::main().stop();
            });
    });
    RunLoop::main().run();
    double elapsed = seconds(start);
    poster.join();
    if (ran != count) std::fprintf(stderr, "only %ld of %ld blocks ran\n", ran, count);
    return double(count) / elapsed;
}

// Saves per second into a store in write-ahead-log mode; each save is its own transaction.
double settingsSaveRate(int count) {
    auto folder =
        std::filesystem::temp_directory_path() / ("morvane-bench-settings-" + std::to_string(getpid()));
    std::filesystem::remove_all(folder);
    double rate;
    {
        Settings store(folder / "Settings.sqlite");
        std::string value(64, 'v');
        auto start = Clock::now();
        for (int i = 0; i < count; ++i)
            store.setText("key" + std::to_string(i % 500), value + std::to_string(i));
        rate = count / seconds(start);
    }
    std::filesystem::remove_all(folder);
    return rate;
}

void goal(const char* name, double measured, double target) {
    std::printf("GOAL %s measured=%.0f target=%.0f met=%s\n", name, measured, target,
                measured >= target ? "yes" : "no");
}

} // namespace

int main() {
    mainQueueRate(100000); // warm up the allocator and the threads
    // Three runs each; the goal lines report the median run.
    std::vector<double> posting, saves;
    for (int run = 0; run < 3; ++run) {
        posting.push_back(mainQueueRate(2000000));
        std::printf("main queue posting, run %d: %.0f blocks/s\n", run + 1, posting.back());
    }
    for (int run = 0; run < 3; ++run) {
        saves.push_back(settingsSaveRate(3000));
        std::printf("settings saves (WAL, flushed per commit), run %d: %.0f saves/s\n", run + 1,
                    saves.back());
    }
    std::sort(posting.begin(), posting.end());
    std::sort(saves.begin(), saves.end());
    goal("main_queue_posts_per_second", posting[1], 1e6);
    goal("settings_saves_per_second", saves[1], 2000);
    return 0;
}
