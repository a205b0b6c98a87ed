#include <morvane/media/detail/MemoryCache.h>

#include <list>
#include <mutex>
#include <unordered_map>

namespace morvane::detail {

namespace {

constexpr std::size_t kDefaultLimit = 64u * 1024 * 1024;

struct Store {
    struct Entry {
        std::string key;
        sys::Files::Version version;
        gfx::Image image;
        std::size_t bytes;
    };
    std::mutex mutex;
    std::list<Entry> order; // most recently used first
    std::unordered_map<std::string, std::list<Entry>::iterator> index;
    std::size_t limit = kDefaultLimit;
    std::size_t bytes = 0;

    void trim() {
        while (bytes > limit && !order.empty()) {
            bytes -= order.back().bytes;
            index.erase(order.back().key);
            order.pop_back();
        }
    }
};

Store& store() {
    static Store* instance = new Store; // outlives queue threads at exit
    return *instance;
}

std::size_t bytesOf(const gfx::Image& image) {
    return std::size_t(image.pixelWidth()) * std::size_t(image.pixelHeight()) * 4;
}

} // namespace

MemoryCache& MemoryCache::shared() {
    static MemoryCache instance;
    return instance;
}

gfx::Image MemoryCache::find(const std::string& path, const sys::Files::Version& version) {
    auto& s = store();
    std::lock_guard lock(s.mutex);
    auto found = s.index.find(path);
    if (found == s.index.end()) return {};
    if (!(found->second->version == version)) {
        s.bytes -= found->second->bytes;
        s.order.erase(found->second);
        s.index.erase(found);
        return {};
    }
    s.order.splice(s.order.begin(), s.order, found->second);
    return found->second->image;
}

void MemoryCache::insert(const std::string& path, const sys::Files::Version& version,
                         const gfx::Image& image) {
    if (image.isNull()) return;
    auto& s = store();
    std::lock_guard lock(s.mutex);
    const std::size_t size = bytesOf(image);
    if (size > s.limit) return;
    std::string key = path;
    if (auto found = s.index.find(key); found != s.index.end()) {
        s.bytes -= found->second->bytes;
        s.order.erase(found->second);
        s.index.erase(found);
    }
    s.order.push_front({key, version, image, size});
    s.index.emplace(std::move(key), s.order.begin());
    s.bytes += size;
    s.trim();
}

void MemoryCache::clear() {
    auto& s = store();
    std::lock_guard lock(s.mutex);
    s.order.clear();
    s.index.clear();
    s.bytes = 0;
}

std::size_t MemoryCache::limit() const {
    auto& s = store();
    std::lock_guard lock(s.mutex);
    return s.limit;
}

void MemoryCache::setLimit(std::size_t bytes) {
    auto& s = store();
    std::lock_guard lock(s.mutex);
    s.limit = bytes;
    s.trim();
}

std::size_t MemoryCache::bytes() const {
    auto& s = store();
    std::lock_guard lock(s.mutex);
    return s.bytes;
}

} // namespace morvane::detail
