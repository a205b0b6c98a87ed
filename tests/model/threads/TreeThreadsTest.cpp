// Trees are made on one thread and dropped on another (a reply parsed on a
// background queue, shown and let go on the main thread). Their blocks are
// recycled per thread; these run under ThreadSanitizer (label concurrency).

#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <gtest/gtest.h>

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
