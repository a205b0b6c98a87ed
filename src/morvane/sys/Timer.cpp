#include <morvane/sys/Timer.h>

#include <morvane/sys/Clock.h>
#include <morvane/sys/RunLoop.h>

#include <cmath>

namespace morvane::sys {

namespace {
constexpr double kShortestRepeat = 0.001;
}

Timer::Timer(double interval, Repeat repeat, Block block)
    : interval_(interval), repeat_(repeat), block_(std::move(block)) {}

std::shared_ptr<Timer> Timer::schedule(double interval, Repeat repeat, Block block) {
    if (!(interval > 0)) interval = 0;
    if (repeat == Repeat::Repeating && interval < kShortestRepeat) interval = kShortestRepeat;
    auto timer = std::make_shared<Timer>(interval, repeat, std::move(block));
    // A timer that could never fire is handed back already invalid.
    if (std::isinf(interval) || !timer->block_) {
        timer->invalidate();
        return timer;
    }
    RunLoop::main().schedule(Clock::now() + interval, timer);
    return timer;
}

void Timer::invalidate() {
    Block dropped;
    {
        std::lock_guard lock(mutex_);
        valid_.store(false);
        dropped.swap(block_);
    }
    // `dropped` dies here, outside the lock: its captures may do anything.
}

void Timer::fire() {
    Block block;
    {
        std::lock_guard lock(mutex_);
        if (!valid_.load()) return;
        if (repeat_ == Repeat::Once) {
            valid_.store(false);
            block.swap(block_);
        } else {
            block = block_;
        }
    }
    block(*this);
}

} // namespace morvane::sys
