#pragma once
// Inside the library only: decoded pictures kept in memory in front of the
// file cache, least recently used first out once their pixels pass the byte
// limit. Safe from any thread.
//
// An entry is the decoded copy of one version of one cache file, never a
// picture for an address: the file cache's rules (which file, how fresh)
// decide first, and the memory only saves the decode. So a file replaced by a
// newer download, or removed by anyone, is never answered from memory.

#include <morvane/gfx/Image.h>
#include <morvane/sys/Files.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace morvane::detail {

class MemoryCache {
  public:
    static MemoryCache& shared();

    // The picture decoded from that version of the file at the path; a null
    // image when there is none (an entry of another version is dropped).
    gfx::Image find(const std::string& path, const sys::Files::Version& version);
    void insert(const std::string& path, const sys::Files::Version& version, const gfx::Image& image);
    void clear();

    // Bytes of pixels kept at most; 0 turns the cache off.
    std::size_t limit() const;
    void setLimit(std::size_t bytes);
    std::size_t bytes() const;
};

} // namespace morvane::detail
