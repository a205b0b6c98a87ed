// Trees are made on one thread and dropped on another (a reply parsed on a
// background queue, shown and let go on the main thread). Their blocks are
// recycled per thread; these run under ThreadSanitizer (label concurrency).

#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/BlockPool.h>

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

using namespace morvane;

namespace {
std::string sampleText(int i) {
    return R"({"id": )" + std::to_string(i) + R"(, "points": [[1, 2], [3, 4], [5, 6]], "tags": ["a", "b"],
              "owner": {"name": "n)" +
           std::to_string(i) + R"(", "key": "k"}})";
}
} // namespace

// Builders, readers and droppers on different threads, several rounds, with
// threads ending in between (their spare blocks move to the shared store and
// are reused by the next threads). Every tree must read back intact.
TEST(TreeThreads, trees_made_read_and_dropped_on_different_threads_stay_intact) {
    constexpr int kThreads = 4;
    constexpr int kTrees = 200;
    for (int round = 0; round < 3; ++round) {
        std::vector<std::vector<Value>> made(kThreads);
        std::vector<std::thread> makers;
        for (int t = 0; t < kThreads; ++t)
            makers.emplace_back([&made, t] {
                for (int i = 0; i < kTrees; ++i) {
                    Value tree = json::parse(sampleText(t * kTrees + i));
                    made[t].push_back(tree.node()->deepCopyDictionary());
                }
            });
        for (auto& thread : makers)
            thread.join();

        std::vector<int> bad(kThreads, 0);
        std::vector<std::thread> droppers;
        for (int t = 0; t < kThreads; ++t)
            droppers.emplace_back([&made, &bad, t] {
                // Each thread checks and drops the trees another thread made.
                auto& trees = made[(t + 1) % kThreads];
                for (std::size_t i = 0; i < trees.size(); ++i) {
                    const NodePtr& n = trees[i].node();
                    const int id = static_cast<int>(n->get("id").number());
                    const bool ok = n->valKey("name").textOr() == "n" + std::to_string(id) &&
                                    n->get("points").list()->at(2).list()->at(1).number() == 6 &&
                                    n->mutableChange()->get("tags").list()->size() == 2;
                    bad[t] += ok ? 0 : 1;
                }
                trees.clear();
            });
        for (auto& thread : droppers)
            thread.join();
        for (int t = 0; t < kThreads; ++t)
            EXPECT_EQ(bad[t], 0) << "round " << round << " thread " << t;
    }
}

namespace {
// A document of a few hundred kilobytes of tree: many slabs of blocks.
std::string bigText() {
    std::string text = "[";
    for (int i = 0; i < 2000; ++i)
        text += (i ? "," : "") + sampleText(i);
    return text + "]";
}
} // namespace

// The usual shape of an app: a long-lived worker parses, the main thread
// drops. The blocks freed on the dropping thread must come back to the
// worker; if they stay with the dropper, the worker carves new slabs every
// round and memory grows without bound.
TEST(TreeThreads, parsing_on_one_thread_and_dropping_on_another_reuses_the_same_slabs) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the block pool is off under AddressSanitizer";
#endif
    const std::string text = bigText();
    std::mutex mutex;
    std::condition_variable changed;
    Value handed;
    bool wanted = false;
    bool done = false;
    std::thread worker([&] {
        for (;;) {
            std::unique_lock lock(mutex);
            changed.wait(lock, [&] { return wanted || done; });
            if (done) return;
            lock.unlock();
            Value tree = json::parse(text);
            lock.lock();
            handed = std::move(tree);
            wanted = false;
            changed.notify_all();
        }
    });
    auto round = [&] {
        std::unique_lock lock(mutex);
        wanted = true;
        changed.notify_all();
        changed.wait(lock, [&] { return !wanted; });
        Value tree = std::move(handed);
        lock.unlock();
        ASSERT_EQ(tree.list()->size(), 2000u);
    }; // the tree goes here, on this thread
    for (int i = 0; i < 10; ++i)
        round();
    const std::size_t settled = detail::slabCount();
    for (int i = 0; i < 100; ++i)
        round();
    {
        std::lock_guard lock(mutex);
        done = true;
        changed.notify_all();
    }
    worker.join();
    // One tree is about 20 slabs: a leak of one round would show at once.
    EXPECT_LE(detail::slabCount(), settled + 2);
}

// A tree held by a thread-local of a thread is freed after the pool's own
// state for that thread has been handed over; its blocks must still go back
// (to the shared store) and serve the next thread.
TEST(TreeThreads, a_tree_freed_during_thread_end_is_reused_by_the_next_thread) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the block pool is off under AddressSanitizer";
#endif
    struct Holder {
        Value tree;
    };
    const std::string text = bigText();
    auto makeAndKeep = [&] {
        static thread_local Holder holder; // made first, so destroyed after the pool's hand-over
        holder.tree = json::parse(text);
    };
    std::thread(makeAndKeep).join();
    const std::size_t after = detail::slabCount();
    std::thread(makeAndKeep).join();
    EXPECT_LE(detail::slabCount(), after + 1);
}
