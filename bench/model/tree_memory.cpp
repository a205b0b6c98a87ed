// Resident memory when one thread parses and another drops: the usual shape
// of an app (a reply parsed on a background queue, shown and let go on the
// main queue). A long-lived worker parses citm_catalog.json and hands each
// tree over; this thread drops it while the worker parses the next. Memory
// must level off: the goal compares the resident size after 500 rounds with
// the size after 10, once the pool's caches have settled.

#include <morvane/model/Json.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/BlockPool.h>

#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>

using namespace morvane;

namespace {

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

double residentMegabytes() {
    std::ifstream statm("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    statm >> pages >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

// One tree in flight between the worker and this thread.
class Handoff {
  public:
    void put(Value tree) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !slot_; });
        slot_ = std::move(tree);
        changed_.notify_all();
    }
    Value take() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return slot_.has_value(); });
        Value tree = std::move(*slot_);
        slot_.reset();
        changed_.notify_all();
        return tree;
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<Value> slot_;
};

} // namespace

int main() {
    constexpr int kRounds = 500;
    constexpr int kSettled = 10;
    constexpr double kTargetMegabytes = 20.0;

    const std::string text = readFile(MORVANE_SHARED_DATA_DIR "/json/citm_catalog.json");
    if (text.empty()) {
        std::printf("cannot read citm_catalog.json\n");
        return 1;
    }

    Handoff handoff;
    std::thread worker([&] {
        for (int round = 0; round < kRounds; ++round)
            handoff.put(json::parse(text));
    });

    double settled = 0;
    double last = 0;
    for (int round = 1; round <= kRounds; ++round) {
        Value tree = handoff.take();
        if (!tree.node()) {
            std::printf("round %d: citm_catalog.json did not read\n", round);
            worker.join();
            return 1;
        }
        tree = Value(); // dropped here, on this thread
        last = residentMegabytes();
        if (round == kSettled) settled = last;
        if (round == kSettled || round % 100 == 0)
            std::printf("round %3d: resident %.1f MB, slabs %zu\n", round, last, detail::slabCount());
    }
    worker.join();

    const double growth = last - settled;
    std::printf("GOAL tree_memory_growth_500_rounds_mb measured=%.2f target=%.2f met=%s\n", growth,
                kTargetMegabytes, growth <= kTargetMegabytes ? "yes" : "no");
    return 0;
}
