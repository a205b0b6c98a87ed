#include <morvane/model/detail/BlockPool.h>

#include <array>
#include <cstdint>
#include <mutex>
#include <new>
#include <vector>

namespace morvane::detail {

#if defined(__SANITIZE_ADDRESS__)

void* allocateBlock(std::size_t size) {
    return ::operator new(size);
}

void freeBlock(void* block, std::size_t) noexcept {
    ::operator delete(block);
}

std::size_t uncarvedBytes() noexcept {
    return 0;
}

#else

namespace {

constexpr std::size_t kStep = 8;
constexpr std::size_t kClasses = kLargestPooledBlock / kStep + 1;
constexpr std::size_t kSlabBytes = 64 * 1024;

struct FreeBlock {
    FreeBlock* next;
};

std::size_t sizeClass(std::size_t size) {
    return (size + kStep - 1) / kStep;
}

// Free lists handed over by threads that ended, and every slab ever made (so
// that the blocks stay reachable: they are reused, never given back).
struct Shared {
    std::mutex mutex;
    std::array<FreeBlock*, kClasses> lists{};
    std::vector<void*> slabs;
};

Shared& shared() {
    static Shared* store = new Shared; // outlives every thread's last free
    return *store;
}

class Cache {
  public:
    ~Cache() {
        flush();
        ended_ = true;
    }

    void* allocate(std::size_t size) {
        const std::size_t c = sizeClass(size);
        if (FreeBlock* block = lists_[c]) {
            lists_[c] = block->next;
            return block;
        }
        if (void* block = refill(c)) return block;
        const std::size_t bytes = c * kStep;
        if (static_cast<std::size_t>(end_ - next_) < bytes) newSlab();
        void* block = next_;
        next_ += bytes;
        return block;
    }

    void free(void* block, std::size_t size) noexcept {
        const std::size_t c = sizeClass(size);
        auto* freed = static_cast<FreeBlock*>(block);
        if (ended_) { // a thread-local destroyed after this cache
            Shared& store = shared();
            std::lock_guard lock(store.mutex);
            freed->next = store.lists[c];
            store.lists[c] = freed;
            return;
        }
        freed->next = lists_[c];
        lists_[c] = freed;
    }

    std::size_t uncarved() const noexcept { return static_cast<std::size_t>(end_ - next_); }

  private:
    // Takes over what ended threads left of this size.
    void* refill(std::size_t c) {
        Shared& store = shared();
        std::lock_guard lock(store.mutex);
        FreeBlock* block = store.lists[c];
        if (!block) return nullptr;
        store.lists[c] = nullptr;
        lists_[c] = block->next;
        return block;
    }

    void newSlab() {
        // The rest of the old slab is left unused: at most one block's worth.
        auto* slab = static_cast<char*>(::operator new(kSlabBytes));
        {
            Shared& store = shared();
            std::lock_guard lock(store.mutex);
            store.slabs.push_back(slab);
        }
        next_ = slab;
        end_ = slab + kSlabBytes;
    }

    void flush() noexcept {
        Shared& store = shared();
        std::lock_guard lock(store.mutex);
        for (std::size_t c = 0; c < kClasses; ++c) {
            while (FreeBlock* block = lists_[c]) {
                lists_[c] = block->next;
                block->next = store.lists[c];
                store.lists[c] = block;
            }
        }
    }

    std::array<FreeBlock*, kClasses> lists_{};
    char* next_ = nullptr;
    char* end_ = nullptr;
    bool ended_ = false;
};

thread_local Cache tCache;

} // namespace

void* allocateBlock(std::size_t size) {
    if (size > kLargestPooledBlock) return ::operator new(size);
    return tCache.allocate(size);
}

void freeBlock(void* block, std::size_t size) noexcept {
    if (!block) return;
    if (size > kLargestPooledBlock) {
        ::operator delete(block);
        return;
    }
    tCache.free(block, size);
}

std::size_t uncarvedBytes() noexcept {
    return tCache.uncarved();
}

#endif

} // namespace morvane::detail
