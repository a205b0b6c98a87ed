#include <morvane/sys/RunLoop.h>

#include <morvane/sys/Clock.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/sys/Timer.h>
#include <morvane/sys/detail/RunBlock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace morvane::sys {
namespace {

// A delayed block or a timer waiting for its time. `seq` is the posting order,
// which breaks ties between items due at the same moment.
struct Item {
    double due;
    std::uint64_t seq;
    Queue* target; // nullptr: the main loop
    std::function<void()> block;
    std::shared_ptr<Timer> timer;
};

// Orders the heaps so that the earliest item (then the first posted) is on top.
struct Later {
    bool operator()(const Item& a, const Item& b) const {
        return a.due > b.due || (a.due == b.due && a.seq > b.seq);
    }
};

// A block that keeps posting itself would make runUntilIdle spin for ever; after
// this many blocks in one call it gives up and says so.
constexpr long kIdleGuard = 50'000'000;

} // namespace

struct RunLoop::State {
    // Blocks posted to the main queue, from any thread.
    std::mutex postMutex;
    std::condition_variable postCv;
    std::deque<Block> posted;
    bool sleeping = false;
    bool stopRequested = false;

    // The batch being run (main thread only); nested runs continue it in order.
    std::deque<Block> running;

    // Delayed work: for the main loop, and for the other queues.
    mutable std::mutex timedMutex;
    std::vector<Item> mainTimed;
    std::vector<Item> otherTimed;
    std::condition_variable releaseCv;
    bool releaseThreadStarted = false;

    std::atomic<std::uint64_t> seq{0};
    std::atomic<bool> wakePending{false};
    std::mutex handlerMutex;
    std::shared_ptr<std::function<void()>> handler;
};

RunLoop::RunLoop() : state_(new State) {}

RunLoop& RunLoop::main() {
    // Never destroyed: other threads may post to it while the program exits.
    static RunLoop* loop = new RunLoop;
    return *loop;
}

void RunLoop::wake() {
    if (isMainThread() || state_->wakePending.exchange(true)) return;
    std::shared_ptr<std::function<void()>> handler;
    {
        std::lock_guard lock(state_->handlerMutex);
        handler = state_->handler;
    }
    if (handler && *handler) (*handler)();
}

void RunLoop::post(Block block) {
    if (!block) return;
    bool notify;
    {
        std::lock_guard lock(state_->postMutex);
        state_->posted.push_back(std::move(block));
        notify = state_->sleeping;
    }
    if (notify) state_->postCv.notify_one();
    wake();
}

void RunLoop::schedule(double due, Queue* target, Block block) {
    if (!block) return;
    Item item{due, state_->seq.fetch_add(1), target, std::move(block), nullptr};
    bool startReleaser = false;
    {
        std::lock_guard lock(state_->timedMutex);
        auto& heap = target ? state_->otherTimed : state_->mainTimed;
        heap.push_back(std::move(item));
        std::push_heap(heap.begin(), heap.end(), Later{});
        if (target && !state_->releaseThreadStarted) startReleaser = state_->releaseThreadStarted = true;
    }
    if (target) {
        if (startReleaser) {
            // On the real clock this thread hands delayed blocks of the other
            // queues to them when they fall due, whether or not the main loop
            // runs. On the manual clock it idles: advance() releases them.
            std::thread([this] {
                std::unique_lock lock(state_->timedMutex);
                for (;;) {
                    auto& heap = state_->otherTimed;
                    if (Clock::isManual() || heap.empty()) {
                        state_->releaseCv.wait_for(lock, std::chrono::milliseconds(50));
                        continue;
                    }
                    double wait = heap.front().due - Clock::now();
                    if (wait > 0) {
                        state_->releaseCv.wait_for(lock, std::chrono::duration<double>(std::min(wait, 0.05)));
                        continue;
                    }
                    std::pop_heap(heap.begin(), heap.end(), Later{});
                    Item item = std::move(heap.back());
                    heap.pop_back();
                    lock.unlock();
                    item.target->release(std::move(item.block));
                    lock.lock();
                }
            }).detach();
        } else {
            state_->releaseCv.notify_one();
        }
        return;
    }
    {
        std::lock_guard lock(state_->postMutex);
        if (state_->sleeping) state_->postCv.notify_one();
    }
    wake();
}

void RunLoop::schedule(double due, std::shared_ptr<Timer> timer) {
    {
        std::lock_guard lock(state_->timedMutex);
        state_->mainTimed.push_back({due, state_->seq.fetch_add(1), nullptr, nullptr, std::move(timer)});
        std::push_heap(state_->mainTimed.begin(), state_->mainTimed.end(), Later{});
    }
    {
        std::lock_guard lock(state_->postMutex);
        if (state_->sleeping) state_->postCv.notify_one();
    }
    wake();
}

// Takes the earliest item due by `now` from either heap (posted before
// `seqLimit`) and runs or releases it. False when there is none.
bool RunLoop::runOneTimed(double now, std::uint64_t seqLimit) {
    Item item;
    {
        std::lock_guard lock(state_->timedMutex);
        auto due = [&](const std::vector<Item>& heap) {
            return !heap.empty() && heap.front().due <= now && heap.front().seq < seqLimit;
        };
        bool mainDue = due(state_->mainTimed), otherDue = due(state_->otherTimed);
        if (!mainDue && !otherDue) return false;
        auto* heap = &state_->mainTimed;
        if (!mainDue || (otherDue && Later{}(state_->mainTimed.front(), state_->otherTimed.front())))
            heap = &state_->otherTimed;
        std::pop_heap(heap->begin(), heap->end(), Later{});
        item = std::move(heap->back());
        heap->pop_back();
    }
    if (item.target) {
        item.target->release(std::move(item.block));
    } else if (item.timer) {
        Timer& timer = *item.timer;
        if (timer.isValid() && timer.repeats()) {
            // The next firing keeps the timer's rhythm; firings missed while the
            // loop was busy are skipped rather than run in a burst.
            double steps = std::floor((now - item.due) / timer.interval()) + 1;
            schedule(item.due + steps * timer.interval(), item.timer);
        }
        std::function<void()> fire = [&timer] { timer.fire(); };
        detail::runBlock(fire, "main");
    } else {
        detail::runBlock(item.block, "main");
    }
    return true;
}

int RunLoop::runDue() {
    MORVANE_ASSERT_MAIN_THREAD();
    state_->wakePending.store(false);
    std::uint64_t seqLimit = state_->seq.load();
    size_t count;
    {
        std::lock_guard lock(state_->postMutex);
        for (auto& block : state_->posted)
            state_->running.push_back(std::move(block));
        state_->posted.clear();
        count = state_->running.size();
    }
    int ran = 0;
    for (size_t i = 0; i < count && !state_->running.empty(); ++i) {
        Block block = std::move(state_->running.front());
        state_->running.pop_front();
        detail::runBlock(block, "main");
        ++ran;
    }
    double now = Clock::now();
    while (runOneTimed(now, seqLimit))
        ++ran;
    return ran;
}

void RunLoop::runUntilIdle() {
    MORVANE_ASSERT_MAIN_THREAD();
    long ran = 0;
    for (;;) {
        state_->wakePending.store(false);
        bool did = false;
        for (;;) {
            {
                std::lock_guard lock(state_->postMutex);
                for (auto& block : state_->posted)
                    state_->running.push_back(std::move(block));
                state_->posted.clear();
            }
            if (state_->running.empty()) break;
            while (!state_->running.empty()) {
                Block block = std::move(state_->running.front());
                state_->running.pop_front();
                detail::runBlock(block, "main");
                did = true;
                ++ran;
            }
        }
        if (runOneTimed(Clock::now(), UINT64_MAX)) {
            did = true;
            ++ran;
        }
        if (!did) return;
        if (ran > kIdleGuard) {
            Log::platform("The main run loop is not becoming idle: blocks keep posting blocks");
            return;
        }
    }
}

void RunLoop::advance(double seconds) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!(seconds > 0)) seconds = 0;
    if (!std::isfinite(seconds)) {
        Log::platform("RunLoop::advance: ignoring an endless time");
        seconds = 0;
    }
    double target = Clock::now() + seconds;
    if (!Clock::isManual()) {
        // The real clock cannot be moved: run the loop for that long instead.
        for (;;) {
            runUntilIdle();
            double left = target - Clock::now();
            if (left <= 0) return;
            auto next = timeUntilNextDue();
            double wait = std::min(left, next ? *next : left);
            std::unique_lock lock(state_->postMutex);
            if (!state_->posted.empty()) continue;
            state_->sleeping = true;
            state_->postCv.wait_for(lock, std::chrono::duration<double>(wait));
            state_->sleeping = false;
        }
    }
    runUntilIdle();
    for (;;) {
        double next;
        {
            std::lock_guard lock(state_->timedMutex);
            next = target + 1;
            if (!state_->mainTimed.empty()) next = state_->mainTimed.front().due;
            if (!state_->otherTimed.empty()) next = std::min(next, state_->otherTimed.front().due);
        }
        if (next > target) break;
        Clock::moveManualTo(next);
        runUntilIdle();
    }
    Clock::moveManualTo(target);
    runUntilIdle();
}

std::optional<double> RunLoop::timeUntilNextDue() const {
    {
        std::lock_guard lock(state_->postMutex);
        if (!state_->posted.empty()) return 0.0;
    }
    if (isMainThread() && !state_->running.empty()) return 0.0;
    std::lock_guard lock(state_->timedMutex);
    if (state_->mainTimed.empty()) return std::nullopt;
    return std::max(0.0, state_->mainTimed.front().due - Clock::now());
}

void RunLoop::setWakeUpHandler(std::function<void()> handler) {
    auto shared = std::make_shared<std::function<void()>>(std::move(handler));
    std::lock_guard lock(state_->handlerMutex);
    state_->handler = std::move(shared);
}

void RunLoop::run() {
    MORVANE_ASSERT_MAIN_THREAD();
    {
        std::lock_guard lock(state_->postMutex);
        state_->stopRequested = false;
    }
    for (;;) {
        runDue();
        auto next = timeUntilNextDue();
        std::unique_lock lock(state_->postMutex);
        if (state_->stopRequested) return;
        if (!state_->posted.empty() || (next && *next <= 0)) continue;
        state_->sleeping = true;
        // On the manual clock time only moves by advance(), so only a post
        // (or stop) can bring new work.
        if (next && !Clock::isManual())
            state_->postCv.wait_for(lock, std::chrono::duration<double>(*next));
        else
            state_->postCv.wait_for(lock, std::chrono::milliseconds(100));
        state_->sleeping = false;
        if (state_->stopRequested) return;
    }
}

void RunLoop::stop() {
    std::lock_guard lock(state_->postMutex);
    state_->stopRequested = true;
    state_->postCv.notify_all();
}

void RunLoop::discardPending() {
    // The blocks are destroyed outside the locks: their captures may post.
    std::deque<Block> posted, running;
    std::vector<Item> mainTimed, otherTimed;
    {
        std::lock_guard lock(state_->postMutex);
        posted.swap(state_->posted);
    }
    if (isMainThread()) running.swap(state_->running);
    {
        std::lock_guard lock(state_->timedMutex);
        mainTimed.swap(state_->mainTimed);
        otherTimed.swap(state_->otherTimed);
    }
    for (Item& item : mainTimed)
        if (item.timer) item.timer->invalidate();
}

void RunLoop::settle() {
    MORVANE_ASSERT_MAIN_THREAD();
    for (;;) {
        Queue::waitIdle();
        runUntilIdle();
        // Quiet only when the main loop's work posted nothing to the other queues.
        Queue::waitIdle();
        std::lock_guard lock(state_->postMutex);
        if (state_->posted.empty()) return;
    }
}

} // namespace morvane::sys
