#include <morvane/model/detail/BlockPool.h>
#include <morvane/model/detail/FastThreadLocal.h>

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

long long threadBlockBytes() noexcept {
    return 0;
}

std::size_t slabCount() noexcept {
    return 0;
}

std::size_t slabBytes() noexcept {
    return 0;
}

#else

namespace {

constexpr std::size_t kStep = 8;
constexpr std::size_t kClasses = kLargestPooledBlock / kStep + 1;
constexpr std::size_t kSlabBytes = 64 * 1024;
// A batch moved between a thread and the shared store holds about this many
// bytes of blocks; a thread keeps at most two batches' worth per size.
constexpr std::size_t kBatchBytes = 16 * 1024;
// The rest of an ended thread's slab is worth keeping from this size on.
constexpr std::size_t kSmallestSpareTail = 4 * 1024;

struct FreeBlock {
    FreeBlock* next;
};

struct Batch {
    FreeBlock* head;
    std::uint32_t count;
};

std::size_t sizeClass(std::size_t size) {
    return size == 0 ? 1 : (size + kStep - 1) / kStep;
}

std::uint32_t batchCount(std::size_t c) {
    return static_cast<std::uint32_t>(kBatchBytes / (c * kStep));
}

// What threads hand over: batches of free blocks by size, the uncarved ends
// of the slabs of threads that ended, and the count of every slab made (the
// slabs themselves are reused through their blocks, never given back).
struct Shared {
    std::mutex mutex;
    std::array<std::vector<Batch>, kClasses> batches;
    std::vector<std::pair<char*, char*>> spareTails;
    std::size_t slabs = 0;

    // A new stretch of memory to carve: a spare tail, or a new slab.
    std::pair<char*, char*> takeStretch() {
        std::lock_guard lock(mutex);
        if (!spareTails.empty()) {
            auto tail = spareTails.back();
            spareTails.pop_back();
            return tail;
        }
        ++slabs;
        auto* slab = static_cast<char*>(::operator new(kSlabBytes));
        return {slab, slab + kSlabBytes};
    }
};

Shared& shared() {
    static Shared* store = new Shared; // outlives every thread's last free
    return *store;
}

// One thread's free lists. Plain data that is never destroyed, so a block
// freed while the thread's thread-locals are being destroyed (a Node held by
// one of them) still finds a valid `ended` flag and goes to the shared store.
// Per size there is the list in use and at most one full batch in reserve;
// each is a chain that ends in nullptr, so a batch changes hands whole,
// without a walk through its blocks.
struct Local {
    std::array<FreeBlock*, kClasses> heads;
    std::array<std::uint32_t, kClasses> counts;
    std::array<FreeBlock*, kClasses> spares; // a full batch, or nullptr
    char* next;
    char* end;
    long long blockBytes;
    bool armed; // the flush at thread end is registered
    bool ended; // and has run
};

constinit thread_local Local tLocal MORVANE_FAST_TLS{};

void flush(Local& local) noexcept;

// Registers the hand-over at thread end; it holds no state of its own.
struct ThreadEnd {
    bool touched = false;
    ~ThreadEnd() { flush(tLocal); }
};

thread_local ThreadEnd tThreadEnd;

void arm(Local& local) noexcept {
    local.armed = true;
    tThreadEnd.touched = true;
}

void flush(Local& local) noexcept {
    Shared& store = shared();
    std::lock_guard lock(store.mutex);
    for (std::size_t c = 1; c < kClasses; ++c) {
        if (local.heads[c]) store.batches[c].push_back({local.heads[c], local.counts[c]});
        if (local.spares[c]) store.batches[c].push_back({local.spares[c], batchCount(c)});
        local.heads[c] = local.spares[c] = nullptr;
        local.counts[c] = 0;
    }
    if (static_cast<std::size_t>(local.end - local.next) >= kSmallestSpareTail)
        store.spareTails.emplace_back(local.next, local.end);
    local.next = local.end = nullptr;
    local.ended = true;
}

// After its thread-locals are gone a thread works on the shared store
// directly, one block at a time under the lock: rare, and never cached.
void* allocateEnded(std::size_t c) {
    Shared& store = shared();
    {
        std::lock_guard lock(store.mutex);
        auto& batches = store.batches[c];
        if (!batches.empty()) {
            Batch& batch = batches.back();
            FreeBlock* block = batch.head;
            batch.head = block->next;
            if (--batch.count == 0) batches.pop_back();
            return block;
        }
    }
    // A stretch of its own for one block: the rest goes back as a spare tail.
    auto [next, end] = store.takeStretch();
    std::lock_guard lock(store.mutex);
    if (static_cast<std::size_t>(end - next) - c * kStep >= kSmallestSpareTail)
        store.spareTails.emplace_back(next + c * kStep, end);
    return next;
}

void freeEnded(FreeBlock* block, std::size_t c) noexcept {
    Shared& store = shared();
    std::lock_guard lock(store.mutex);
    auto& batches = store.batches[c];
    if (!batches.empty() && batches.back().count < batchCount(c)) {
        block->next = batches.back().head;
        batches.back().head = block;
        ++batches.back().count;
        return;
    }
    block->next = nullptr;
    batches.push_back({block, 1});
}

// The list in use is a full batch: it becomes the reserve, and a reserve
// already there goes to the store.
void retire(Local& local, std::size_t c) noexcept {
    if (FreeBlock* full = local.spares[c]) {
        Shared& store = shared();
        std::lock_guard lock(store.mutex);
        store.batches[c].push_back({full, batchCount(c)});
    }
    local.spares[c] = local.heads[c];
    local.heads[c] = nullptr;
    local.counts[c] = 0;
}

// Refills an empty list in use: from the reserve, else from the store.
bool takeBatch(Local& local, std::size_t c) {
    if (FreeBlock* full = local.spares[c]) {
        local.heads[c] = full;
        local.counts[c] = batchCount(c);
        local.spares[c] = nullptr;
        return true;
    }
    Shared& store = shared();
    std::lock_guard lock(store.mutex);
    auto& batches = store.batches[c];
    if (batches.empty()) return false;
    local.heads[c] = batches.back().head;
    local.counts[c] = batches.back().count;
    batches.pop_back();
    return true;
}

} // namespace

void* allocateBlock(std::size_t size) {
    if (size > kLargestPooledBlock) return ::operator new(size);
    const std::size_t c = sizeClass(size);
    Local& local = tLocal;
    if (local.ended) return allocateEnded(c);
    if (!local.armed) arm(local);
    local.blockBytes += static_cast<long long>(c * kStep);
    if (local.heads[c] || takeBatch(local, c)) {
        FreeBlock* block = local.heads[c];
        local.heads[c] = block->next;
        --local.counts[c];
        return block;
    }
    const std::size_t bytes = c * kStep;
    if (static_cast<std::size_t>(local.end - local.next) < bytes) {
        // The rest of the old stretch is left unused: less than one block.
        auto [next, end] = shared().takeStretch();
        local.next = next;
        local.end = end;
    }
    void* block = local.next;
    local.next += bytes;
    return block;
}

void freeBlock(void* block, std::size_t size) noexcept {
    if (!block) return;
    if (size > kLargestPooledBlock) {
        ::operator delete(block);
        return;
    }
    const std::size_t c = sizeClass(size);
    auto* freed = static_cast<FreeBlock*>(block);
    Local& local = tLocal;
    if (local.ended) return freeEnded(freed, c);
    if (!local.armed) arm(local);
    local.blockBytes -= static_cast<long long>(c * kStep);
    freed->next = local.heads[c];
    local.heads[c] = freed;
    if (++local.counts[c] == batchCount(c)) retire(local, c);
}

long long threadBlockBytes() noexcept {
    return tLocal.blockBytes;
}

std::size_t slabCount() noexcept {
    Shared& store = shared();
    std::lock_guard lock(store.mutex);
    return store.slabs;
}

std::size_t slabBytes() noexcept {
    return slabCount() * kSlabBytes;
}

#endif

} // namespace morvane::detail
