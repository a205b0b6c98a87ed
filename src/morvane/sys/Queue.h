#pragma once
// Dispatch queues: the main queue (blocks run in order on the main thread, from
// the main run loop), global queues by priority (blocks run concurrently on a
// small pool of threads that grows while blocks wait, say on a download) and
// named serial queues (one thread each; the same name gives the same queue).
//
// Any queue can be posted to from any thread. Delays are measured on the kit's
// clock: with the manual clock a delayed block is released to its queue when
// RunLoop::advance passes its time. Queues live as long as the process.

#include <functional>
#include <string>
#include <string_view>

namespace morvane::sys {

enum class Priority { Background, Default, UserInitiated };

class Queue {
  public:
    using Block = std::function<void()>;

    static Queue& main();
    static Queue& global(Priority priority = Priority::Default);
    // The serial queue of that name, created on first use.
    static Queue& serial(std::string_view name);

    // Runs the block on this queue, after what was posted before it.
    void async(Block block);
    // Runs the block on this queue once `seconds` have passed on the kit's
    // clock. Negative or not-a-number delays count as none; an infinite delay
    // never falls due and the block is dropped.
    void after(double seconds, Block block);

    const std::string& label() const { return label_; }
    bool isMain() const { return kind_ == Kind::Main; }
    // True inside a block that this queue is running (for the main queue: on the main thread).
    bool isCurrent() const;

    // Waits until every global and serial queue has run all the blocks
    // released to it, including blocks those blocks posted. Delayed blocks not
    // yet due are not waited for. Tests call it on the main thread to make
    // background work deterministic; calling it from a queue's own thread
    // would wait for itself, so there it returns at once.
    static void waitIdle();

    Queue(const Queue&) = delete;
    Queue& operator=(const Queue&) = delete;

  private:
    enum class Kind { Main, Global, Serial };
    struct Serial;
    Queue(Kind kind, std::string label, Priority priority);
    ~Queue() = delete; // queues are never destroyed

    friend class RunLoop;
    // Hands a block that is due now to the queue's threads.
    void release(Block block);

    Kind kind_;
    std::string label_;
    Priority priority_;
    Serial* serial_ = nullptr;
};

// True on the main thread: the thread that loaded the kit (the program's first thread).
bool isMainThread();

} // namespace morvane::sys

// Debug builds stop the program when main-thread-only code runs elsewhere.
#ifdef NDEBUG
#define MORVANE_ASSERT_MAIN_THREAD() ((void)0)
#else
#define MORVANE_ASSERT_MAIN_THREAD()                                                                         \
    ((void)(::morvane::sys::isMainThread() ||                                                                \
            (::morvane::sys::detail::mainThreadViolation(__FILE__, __LINE__, __func__), false)))
namespace morvane::sys::detail {
[[noreturn]] void mainThreadViolation(const char* file, int line, const char* function);
}
#endif
