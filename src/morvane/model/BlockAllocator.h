#pragma once
// The blocks of the model's own pool, and an allocator over them for the
// entry arrays of Nodes. Internal to the model (see detail/BlockPool.h for
// how the pool works); this header is public only because Node's layout
// names the allocator.

#include <cstddef>

namespace morvane::detail {

// The largest block the pool serves; larger ones come from operator new.
inline constexpr std::size_t kLargestPooledBlock = 256;

// A block of `size` bytes, aligned for any of the tree's types (8 bytes).
void* allocateBlock(std::size_t size);
// Gives back a block from allocateBlock, with the size it was asked for.
void freeBlock(void* block, std::size_t size) noexcept;

// An allocator over the pool, for the entry arrays of small Nodes: a parsed
// or copied tree makes one per Node, and most fit a pooled block.
template <typename T> struct BlockAllocator {
    static_assert(alignof(T) <= 8, "pooled blocks are aligned to 8 bytes");
    using value_type = T;
    BlockAllocator() noexcept = default;
    template <typename U> BlockAllocator(const BlockAllocator<U>&) noexcept {}
    T* allocate(std::size_t count) { return static_cast<T*>(allocateBlock(count * sizeof(T))); }
    void deallocate(T* items, std::size_t count) noexcept { freeBlock(items, count * sizeof(T)); }
    friend bool operator==(const BlockAllocator&, const BlockAllocator&) noexcept { return true; }
};

} // namespace morvane::detail
