#include <morvane/sys/Queue.h>

#include <morvane/sys/Clock.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/RunLoop.h>
#include <morvane/sys/detail/RunBlock.h>

#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <exception>
#include <map>
#include <mutex>
#include <thread>

namespace morvane::sys {
namespace {

// The library is loaded by the program's first thread before main() runs, so
// this records the main thread.
const std::thread::id gMainThread = std::this_thread::get_id();

// The queue whose block the current thread is running.
thread_local Queue* tCurrent = nullptr;

// Blocks handed to global or serial queues and not yet finished; waitIdle()
// waits for it to reach zero. Never destroyed: worker threads still finish
// blocks while the program exits.
struct Outstanding {
    std::mutex mutex;
    std::condition_variable idle;
    size_t count = 0;
};

Outstanding& outstanding() {
    static Outstanding* instance = new Outstanding;
    return *instance;
}

void began() {
    std::lock_guard lock(outstanding().mutex);
    ++outstanding().count;
}

void finished() {
    Outstanding& state = outstanding();
    std::lock_guard lock(state.mutex);
    if (--state.count == 0) state.idle.notify_all();
}

// The threads behind the global queues. It starts empty and adds a thread when
// a block arrives and none is free, up to kMaxThreads: global blocks often
// wait (a download), and a fixed small pool would let a few slow ones starve
// the rest.
class Pool {
  public:
    static constexpr int kMaxThreads = 16;

    void post(Queue* queue, int priority, std::function<void()> block) {
        std::unique_lock lock(mutex_);
        lanes_[priority].push_back({queue, std::move(block)});
        if (idle_ > 0) {
            lock.unlock();
            cv_.notify_one();
        } else if (threads_ < kMaxThreads) {
            ++threads_;
            std::thread([this] { work(); }).detach();
        }
    }

  private:
    struct Job {
        Queue* queue;
        std::function<void()> block;
    };

    void work() {
        std::unique_lock lock(mutex_);
        for (;;) {
            Job job;
            bool found = false;
            // Higher priorities first: user-initiated, default, background.
            for (int lane = 2; lane >= 0 && !found; --lane) {
                if (!lanes_[lane].empty()) {
                    job = std::move(lanes_[lane].front());
                    lanes_[lane].pop_front();
                    found = true;
                }
            }
            if (!found) {
                ++idle_;
                cv_.wait(lock);
                --idle_;
                continue;
            }
            lock.unlock();
            tCurrent = job.queue;
            detail::runBlock(job.block, job.queue->label().c_str());
            job.block = nullptr; // captures die before the block counts as done
            tCurrent = nullptr;
            finished();
            lock.lock();
        }
    }

    std::mutex mutex_;
    std::condition_variable cv_;
    std::deque<Job> lanes_[3];
    int idle_ = 0;
    int threads_ = 0;
};

Pool& pool() {
    static Pool* instance = new Pool; // never destroyed, like the queues
    return *instance;
}

} // namespace

// A serial queue has its own thread, started with its first block.
struct Queue::Serial {
    std::mutex mutex;
    std::condition_variable cv;
    std::deque<std::function<void()>> blocks;
    bool started = false;
};

Queue::Queue(Kind kind, std::string label, Priority priority)
    : kind_(kind), label_(std::move(label)), priority_(priority) {
    if (kind_ == Kind::Serial) serial_ = new Serial;
}

Queue& Queue::main() {
    static Queue* queue = new Queue(Kind::Main, "main", Priority::UserInitiated);
    return *queue;
}

Queue& Queue::global(Priority priority) {
    static Queue* queues[3] = {new Queue(Kind::Global, "global.background", Priority::Background),
                               new Queue(Kind::Global, "global.default", Priority::Default),
                               new Queue(Kind::Global, "global.user-initiated", Priority::UserInitiated)};
    int index = static_cast<int>(priority);
    if (index < 0 || index > 2) index = 1;
    return *queues[index];
}

Queue& Queue::serial(std::string_view name) {
    static auto* mutex = new std::mutex;
    static auto* queues = new std::map<std::string, Queue*, std::less<>>;
    std::lock_guard lock(*mutex);
    auto found = queues->find(name);
    if (found != queues->end()) return *found->second;
    Queue* queue = new Queue(Kind::Serial, std::string(name), Priority::Default);
    queues->emplace(std::string(name), queue);
    return *queue;
}

void Queue::async(Block block) {
    if (!block) return;
    if (kind_ == Kind::Main)
        RunLoop::main().post(std::move(block));
    else
        release(std::move(block));
}

void Queue::after(double seconds, Block block) {
    if (!block) return;
    if (!(seconds > 0)) seconds = 0; // also catches not-a-number
    if (std::isinf(seconds)) return;
    RunLoop::main().schedule(Clock::now() + seconds, kind_ == Kind::Main ? nullptr : this, std::move(block));
}

void Queue::release(Block block) {
    began();
    if (kind_ == Kind::Global) {
        pool().post(this, static_cast<int>(priority_), std::move(block));
        return;
    }
    std::unique_lock lock(serial_->mutex);
    serial_->blocks.push_back(std::move(block));
    if (serial_->started) {
        lock.unlock();
        serial_->cv.notify_one();
        return;
    }
    serial_->started = true;
    std::thread([this] {
        tCurrent = this;
        std::unique_lock lock(serial_->mutex);
        for (;;) {
            serial_->cv.wait(lock, [this] { return !serial_->blocks.empty(); });
            Block next = std::move(serial_->blocks.front());
            serial_->blocks.pop_front();
            lock.unlock();
            detail::runBlock(next, label_.c_str());
            next = nullptr;
            finished();
            lock.lock();
        }
    }).detach();
}

bool Queue::isCurrent() const {
    return kind_ == Kind::Main ? isMainThread() : tCurrent == this;
}

void Queue::waitIdle() {
    if (tCurrent) return;
    Outstanding& state = outstanding();
    std::unique_lock lock(state.mutex);
    state.idle.wait(lock, [&state] { return state.count == 0; });
}

bool isMainThread() {
    return std::this_thread::get_id() == gMainThread;
}

namespace detail {

void mainThreadViolation(const char* file, int line, const char* function) {
    char text[512];
    std::snprintf(text, sizeof text, "%s:%d: %s must run on the main thread\n", file, line, function);
    Log::standardError(text);
    std::abort();
}

void runBlock(std::function<void()>& block, const char* queueLabel) {
    try {
        block();
    } catch (const std::exception& error) {
        Log::platform(std::string("A block on queue ") + queueLabel + " threw: " + error.what());
    } catch (...) {
        Log::platform(std::string("A block on queue ") + queueLabel + " threw an unknown exception");
    }
}

} // namespace detail
} // namespace morvane::sys
