#include <morvane/sys/Clock.h>

#include <atomic>
#include <chrono>

namespace morvane::sys {
namespace {

std::atomic<bool> gManual{false};
// The manual clock's monotonic time, and the difference between its dates and
// that time. Both are plain atomics so that reading the clock never locks.
std::atomic<double> gManualNow{0.0};
std::atomic<double> gManualDateOffset{0.0};

double realNow() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

Date realDate() {
    using namespace std::chrono;
    return duration<double>(system_clock::now().time_since_epoch()).count();
}

} // namespace

double Clock::now() {
    return gManual.load(std::memory_order_acquire) ? gManualNow.load() : realNow();
}

Date Clock::date() {
    if (gManual.load(std::memory_order_acquire)) return gManualNow.load() + gManualDateOffset.load();
    return realDate();
}

Clock::Kind Clock::kind() {
    return gManual.load(std::memory_order_acquire) ? Kind::Manual : Kind::Real;
}

void Clock::useManual(std::optional<Date> start) {
    // Continue from the current monotonic time so that delays already pending
    // keep the time they have left.
    double from = now();
    Date startDate = start ? *start : date();
    gManualNow.store(from);
    gManualDateOffset.store(startDate - from);
    gManual.store(true, std::memory_order_release);
}

void Clock::useReal() {
    gManual.store(false, std::memory_order_release);
}

void Clock::moveManualTo(double time) {
    double current = gManualNow.load();
    while (time > current && !gManualNow.compare_exchange_weak(current, time)) {
    }
}

} // namespace morvane::sys
