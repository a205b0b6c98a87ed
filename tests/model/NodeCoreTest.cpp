// The core map: insertion order, the hash index of large Nodes, absent values
// and the read-only flag.

#include "Trees.h"

#include <gtest/gtest.h>

#include <string>

using namespace morvane;
using namespace morvane::testing;

namespace {
std::string keyAt(int i) {
    return "key" + std::to_string(i * 7919 % 1000);
}
} // namespace

// Catches a hash index that loses keys when it grows, or goes stale when a
// removal shifts entry positions.
TEST(NodeCore, large_node_keeps_insertion_order_and_finds_every_key_through_changes) {
    auto n = Node::make();
    for (int i = 0; i < 600; ++i)
        n->set(keyAt(i), Value(i));
    ASSERT_EQ(n->size(), 600u);
    for (int i = 0; i < 600; ++i)
        ASSERT_EQ(n->get(keyAt(i)).number(), i) << keyAt(i);

    // Remove every third key; the others keep their place and stay findable.
    for (int i = 0; i < 600; i += 3)
        ASSERT_TRUE(n->remove(keyAt(i)));
    EXPECT_EQ(n->size(), 400u);
    std::size_t position = 0;
    for (int i = 0; i < 600; ++i) {
        if (i % 3 == 0) {
            EXPECT_FALSE(n->has(keyAt(i))) << keyAt(i);
            continue;
        }
        EXPECT_EQ(n->entries()[position++].first, keyAt(i));
        EXPECT_EQ(n->get(keyAt(i)).number(), i);
    }

    // Overwriting keeps the place; re-adding a removed key puts it last.
    n->set(keyAt(1), Value("again"));
    EXPECT_EQ(n->entries()[0].first, keyAt(1));
    EXPECT_EQ(n->get(keyAt(1)).textOr(), "again");
    n->set(keyAt(0), Value("back"));
    EXPECT_EQ(n->entries().back().first, keyAt(0));
    EXPECT_EQ(n->size(), 401u);
}

// Catches a small-to-large switch of the index that drops a key at the
// threshold, in both directions.
TEST(NodeCore, node_crossing_the_index_threshold_finds_every_key) {
    auto n = Node::make();
    for (int i = 0; i < 40; ++i) {
        n->set("k" + std::to_string(i), Value(i));
        for (int j = 0; j <= i; ++j)
            ASSERT_TRUE(n->has("k" + std::to_string(j)));
    }
    for (int i = 39; i >= 0; --i) {
        n->remove("k" + std::to_string(i));
        for (int j = 0; j < i; ++j)
            ASSERT_TRUE(n->has("k" + std::to_string(j)));
        ASSERT_FALSE(n->has("k" + std::to_string(i)));
    }
}

TEST(NodeCore, absent_value_removes_and_read_only_node_refuses_changes) {
    auto n = node({{"a", "1"}, {"b", "2"}});
    n->set("a", Value());
    EXPECT_EQ(keysOf(n), (std::vector<std::string>{"b"}));
    freeze(Value(n));
    EXPECT_FALSE(n->set("c", Value("2")));
    EXPECT_FALSE(n->remove("b"));
    n->clear();
    EXPECT_EQ(keysOf(n), (std::vector<std::string>{"b"}));
}
