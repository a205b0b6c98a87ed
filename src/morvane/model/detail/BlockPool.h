#pragma once
// Memory for the blocks of Nodes and lists.
//
// A tree is tens of thousands of small blocks made and dropped together (a
// copy of a catalogue, a parsed geometry file). The general-purpose heap pays
// for that twice: a header on every block, and for a large tree, a pass that
// merges its freed small blocks when the next large one is asked for. Small
// blocks therefore come from slabs carved at their exact size (in steps of
// eight bytes), and a freed block goes on a free list of the thread that
// frees it, for the next block of that size. Blocks may be freed on any
// thread. A thread's free lists go to a shared store when the thread ends.
// Slabs are kept for reuse for the life of the process.
//
// Builds with AddressSanitizer take every block from the general heap, so
// that a use after free of a Node or list is still caught.

#include <cstddef>

namespace morvane::detail {

// The largest block the pool serves; larger ones come from operator new.
inline constexpr std::size_t kLargestPooledBlock = 256;

// A block of `size` bytes, aligned for any of the tree's types (8 bytes).
void* allocateBlock(std::size_t size);
// Gives back a block from allocateBlock, with the size it was asked for.
void freeBlock(void* block, std::size_t size) noexcept;
// Bytes of the calling thread's current slab not yet carved into blocks
// (allocated, but holding no block): for measurements of a tree's memory.
std::size_t uncarvedBytes() noexcept;

} // namespace morvane::detail
