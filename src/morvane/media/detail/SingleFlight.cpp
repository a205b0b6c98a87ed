#include <morvane/media/detail/SingleFlight.h>
#include <morvane/sys/Queue.h>

#include <map>
#include <mutex>
#include <vector>

namespace morvane::detail {

namespace {

struct Flights {
    std::mutex mutex;
    // Key -> the deliveries of requests that joined the run in flight.
    std::map<std::string, std::vector<SingleFlight::Delivery>> waiting;
};

Flights& flights() {
    // Never destroyed: runs on queue threads may end after static destruction began.
    static Flights* instance = new Flights;
    return *instance;
}

} // namespace

SingleFlight& SingleFlight::shared() {
    static SingleFlight instance;
    return instance;
}

void SingleFlight::run(const std::string& key, const Work& work, Delivery delivery) {
    auto& state = flights();
    {
        std::lock_guard lock(state.mutex);
        auto found = state.waiting.find(key);
        if (found != state.waiting.end()) {
            found->second.push_back(std::move(delivery));
            return;
        }
        state.waiting.emplace(key, std::vector<Delivery>{});
    }
    gfx::Image image = work ? work() : gfx::Image();
    std::vector<Delivery> joined;
    {
        std::lock_guard lock(state.mutex);
        auto found = state.waiting.find(key);
        joined = std::move(found->second);
        state.waiting.erase(found);
    }
    if (image.isNull()) return;
    for (auto& other : joined) {
        if (other) sys::Queue::global(sys::Priority::Default).async([other, image] { other(image); });
    }
    if (delivery) delivery(image);
}

std::size_t SingleFlight::pending() const {
    auto& state = flights();
    std::lock_guard lock(state.mutex);
    std::size_t count = 0;
    for (const auto& [key, list] : state.waiting)
        count += list.size();
    return count;
}

} // namespace morvane::detail
