#pragma once
// Inside the library only: one transfer per picture request at a time, run by
// the fetch queue. Requests are the same when their address, date stamp and
// the place the picture is kept are: two addresses that the cache files under one name (one path with two
// queries, one path on two hosts) are two pictures and two transfers. Requests
// that arrive while a transfer runs join it, and each gets its own delivery.
//
// A request may name the object the picture is for (a view, held weakly);
// once every requester of a transfer is gone, running or waiting, the
// transfer is given up. A request that names nobody is wanted until the end.
// A failed transfer delivers to nobody.

#include <morvane/gfx/Image.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace morvane::detail {

class SharedDownload {
  public:
    struct Requester {
        std::function<void(const gfx::Image&)> deliver;
        std::optional<std::weak_ptr<const void>> owner; // nothing: wanted until the end
    };
    // Keeps a downloaded picture (bytes and their decoded image): writes it to
    // the cache, say. False ends the request without a delivery.
    using Keep = std::function<bool(const std::string& bytes, const gfx::Image& image)>;

    // Starts the transfer of the address for the stamp and the place (the
    // cache path it is kept at), or joins the one running. Deliveries run on the default global queue: the
    // first inside the block that decoded and kept the picture, the others each in a block of their own, so a
    // slow receiver holds up nobody. The `keep` of the request that started the transfer is the one that
    // runs.
    static void request(const std::string& address, const std::string& stamp, const std::string& place,
                        Keep keep, Requester requester);
};

} // namespace morvane::detail
