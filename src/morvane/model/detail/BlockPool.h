#pragma once
// Memory for the blocks of Nodes and lists.
//
// A tree is tens of thousands of small blocks made and dropped together (a
// copy of a catalogue, a parsed geometry file). The general-purpose heap pays
// for that twice: a header on every block, and for a large tree, a pass that
// merges its freed small blocks when the next large one is asked for. Small
// blocks therefore come from slabs carved at their exact size (in steps of
// eight bytes).
//
// A freed block goes on a free list of the thread that frees it, for the next
// block of that size. Those lists are bounded: past a few kilobytes a batch
// of blocks moves to a shared store, and a thread that runs out takes a
// whole batch from there before it carves anything new. So a tree parsed on
// a worker and dropped on the main thread comes back to the worker, and the
// pool's memory stays bounded whichever thread drops what. A thread's lists
// and the rest of its slab go to the shared store when the thread ends;
// blocks freed later on that thread (from a thread-local destructor) go
// there directly. Slabs are kept for reuse for the life of the process.
//
// Builds with AddressSanitizer take every block from the general heap, so
// that a use after free of a Node or list is still caught.

#include <morvane/model/BlockAllocator.h>

#include <cstddef>

namespace morvane::detail {

// For measurements and tests.
// Bytes of pooled blocks the calling thread took minus those it gave back
// (each block counted at the size it is carved at).
long long threadBlockBytes() noexcept;
// Slabs made so far by all threads, and their bytes.
std::size_t slabCount() noexcept;
std::size_t slabBytes() noexcept;

} // namespace morvane::detail
