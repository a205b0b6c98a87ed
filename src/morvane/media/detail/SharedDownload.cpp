#include <morvane/media/detail/Download.h>
#include <morvane/media/detail/SharedDownload.h>
#include <morvane/sys/Fetch.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>

#include <map>
#include <mutex>
#include <vector>

namespace morvane::detail {

namespace {

struct Flight {
    std::string address;
    SharedDownload::Keep keep;
    std::vector<SharedDownload::Requester> requesters;
};

struct Flights {
    std::mutex mutex;
    std::map<std::string, Flight> byKey;
};

Flights& flights() {
    // Never destroyed: transfers may end after static destruction began.
    static Flights* instance = new Flights;
    return *instance;
}

bool isWanted(const SharedDownload::Requester& requester) {
    return !requester.owner || !requester.owner->expired();
}

// Whether anybody still waits for the key's transfer; the caller holds the lock.
bool anyoneWaits(const Flights& state, const std::string& key) {
    auto found = state.byKey.find(key);
    if (found == state.byKey.end()) return false;
    for (const auto& requester : found->second.requesters)
        if (isWanted(requester)) return true;
    return false;
}

void finish(const std::string& key, sys::FetchResult result);

void start(const std::string& key, const std::string& address) {
    sys::FetchOptions options;
    options.wanted = [key] {
        auto& state = flights();
        std::lock_guard lock(state.mutex);
        return anyoneWaits(state, key);
    };
    // Decoding and writing are short work for a global queue; the fetch
    // queue's threads are kept for transfers.
    sys::FetchQueue::shared().add(address, std::move(options), [key](sys::FetchResult result) {
        sys::Queue::global(sys::Priority::Default).async([key, result = std::move(result)]() mutable {
            finish(key, std::move(result));
        });
    });
}

void finish(const std::string& key, sys::FetchResult result) {
    auto& state = flights();
    std::string address;
    SharedDownload::Keep keep;
    {
        std::lock_guard lock(state.mutex);
        auto found = state.byKey.find(key);
        if (found == state.byKey.end()) return;
        address = found->second.address;
        keep = found->second.keep;
        if (result.failure == sys::FetchResult::Failure::Cancelled) {
            // Someone may have asked again between the give-up and now.
            if (!anyoneWaits(state, key)) {
                state.byKey.erase(found);
                return;
            }
        }
    }
    if (result.failure == sys::FetchResult::Failure::Cancelled) {
        start(key, address);
        return;
    }
    gfx::Image image;
    if (!result) {
        sys::Log::platform("Got an error: " + result.error);
    } else {
        image = decodePicture(result.body);
        if (image.isNull())
            sys::Log::platform("Not a picture, not cached: " + address);
        else if (keep && !keep(result.body, image))
            image = {};
    }
    // Requests that joined while the picture was kept are still served.
    std::vector<SharedDownload::Requester> requesters;
    {
        std::lock_guard lock(state.mutex);
        if (auto found = state.byKey.find(key); found != state.byKey.end()) {
            requesters = std::move(found->second.requesters);
            state.byKey.erase(found);
        }
    }
    if (image.isNull()) return;
    bool first = true;
    for (auto& requester : requesters) {
        if (!isWanted(requester) || !requester.deliver) continue;
        if (first) {
            first = false;
            requester.deliver(image);
        } else {
            sys::Queue::global(sys::Priority::Default).async([deliver = std::move(requester.deliver), image] {
                deliver(image);
            });
        }
    }
}

} // namespace

void SharedDownload::request(const std::string& address, const std::string& stamp, const std::string& place,
                             Keep keep, Requester requester) {
    std::string key = address;
    key += '\n';
    key += stamp;
    key += '\n';
    key += place;
    auto& state = flights();
    {
        std::lock_guard lock(state.mutex);
        auto [found, added] = state.byKey.try_emplace(key);
        found->second.requesters.push_back(std::move(requester));
        if (!added) return;
        found->second.address = address;
        found->second.keep = std::move(keep);
    }
    start(key, address);
}

} // namespace morvane::detail
