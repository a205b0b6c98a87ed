#pragma once
// Inside the library only: decoded pictures kept in memory in front of the
// file cache, keyed by address and date stamp, least recently used first out
// once their pixels pass the byte limit. Safe from any thread.

#include <morvane/gfx/Image.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace morvane::detail {

class MemoryCache {
  public:
    static MemoryCache& shared();

    gfx::Image find(std::string_view address, std::string_view stamp);
    void insert(std::string_view address, std::string_view stamp, const gfx::Image& image);
    void clear();

    // Bytes of pixels kept at most; 0 turns the cache off.
    std::size_t limit() const;
    void setLimit(std::size_t bytes);
    std::size_t bytes() const;
};

} // namespace morvane::detail
