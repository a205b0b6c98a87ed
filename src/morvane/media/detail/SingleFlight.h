#pragma once
// Inside the library only: one transfer per picture at a time. The first
// request for a key runs the work on its own thread; requests for the same
// key that arrive meanwhile wait for that result instead of starting their
// own. Every request then gets its own delivery: the first on its thread, the
// others each on the default global queue, so a slow receiver holds up nobody.
// A failed run (a null image) delivers to nobody.

#include <morvane/gfx/Image.h>

#include <functional>
#include <string>

namespace morvane::detail {

class SingleFlight {
  public:
    using Work = std::function<gfx::Image()>;
    using Delivery = std::function<void(const gfx::Image&)>;

    static SingleFlight& shared();

    // Runs `work` unless a run for the key is in flight, in which case the
    // delivery joins that run. Returns when this request's part is done (at
    // once for a request that joined).
    void run(const std::string& key, const Work& work, Delivery delivery);

    // Requests now waiting on runs in flight (for tests and benchmarks).
    std::size_t pending() const;
};

} // namespace morvane::detail
