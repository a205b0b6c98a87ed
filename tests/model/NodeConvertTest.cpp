// Conversion copies: mutableKey stamps paths, mutableChange copies plainly;
// both drop numbers and give mutable Nodes from read-only ones.

#include "Trees.h"

#include <gtest/gtest.h>

using namespace morvane;
using namespace morvane::testing;

// Catches paths built from the indexed path (l[0]/x instead of l/x), stamps
// on Nodes without text, and numbers surviving the conversion.
TEST(NodeConvert, mutable_key_stamps_the_paths_of_text_holding_nodes) {
    auto tree = node(
        {{"a", node({{"t", "x"}, {"b", node({{"u", "y"}})}, {"c", node({{"n", Value(1)}})}})},
         {"n", Value(5)},
         {"l", list({node({{"t", "1"}, {"inner", node({{"v", "w"}})}}), node({{"t", "2"}}),
                     node({{"n", Value(2)}}), Value("loose"), Value(3), list({node({{"t", "deep"}})})})}});
    auto copy = tree->mutableKey("");
    EXPECT_FALSE(copy->has("n"));
    auto a = copy->get("a").node();
    EXPECT_EQ(a->get("key").textOr(), "/a");
    EXPECT_EQ(a->get("b").node()->get("key").textOr(), "/a/b");
    EXPECT_FALSE(a->get("c").node()->has("key")); // holds no text
    EXPECT_TRUE(a->get("c").node()->empty());     // and its number is gone

    auto l = copy->get("l").list();
    ASSERT_EQ(l->size(), 5u); // the number element is dropped
    EXPECT_EQ(l->at(0).node()->get("key").textOr(), "/l[0]");
    EXPECT_EQ(l->at(0).node()->get("inner").node()->get("key").textOr(), "/l/inner");
    EXPECT_EQ(l->at(1).node()->get("key").textOr(), "/l[1]");
    EXPECT_FALSE(l->at(2).node()->has("key"));
    EXPECT_EQ(l->at(3).textOr(), "loose");
    EXPECT_EQ(l->at(4).list()->at(0).node()->get("key").textOr(), "/l[0]");

    EXPECT_FALSE(tree->get("a").node()->has("key")); // the source is not touched
    EXPECT_EQ(tree->mutableKey("root")->get("a").node()->get("key").textOr(), "root/a");
}

TEST(NodeConvert, mutable_change_copies_texts_nodes_and_lists_into_mutable_nodes) {
    auto source = frozen(node({{"t", "x"},
                               {"n", Value(1)},
                               {"z", Value::null()},
                               {"sub", node({{"u", "y"}, {"b", Value(true)}})},
                               {"l", list({node({{"v", "w"}}), Value(2), list({Value("s")})})}}));
    auto copy = source->mutableChange();
    EXPECT_FALSE(copy->isReadOnly());
    EXPECT_EQ(keysOf(copy), (std::vector<std::string>{"t", "sub", "l"}));
    auto sub = copy->get("sub").node();
    EXPECT_FALSE(sub->isReadOnly());
    EXPECT_NE(sub, source->get("sub").node());
    EXPECT_EQ(keysOf(sub), (std::vector<std::string>{"u"}));
    auto l = copy->get("l").list();
    ASSERT_EQ(l->size(), 2u);
    EXPECT_FALSE(l->at(0).node()->has("key")); // no stamps
    EXPECT_TRUE(l->at(0).node()->set("new", Value("ok")));
    EXPECT_EQ(l->at(1).list()->at(0).textOr(), "s");
}

// The copy of a large Node drops its numbers, so its entries sit at other
// positions than the source's: every kept key must still be found, and new
// keys must go last.
TEST(NodeConvert, mutable_change_of_a_large_node_finds_every_kept_key) {
    auto source = Node::make();
    for (int i = 0; i < 60; ++i)
        source->set("k" + std::to_string(i), i % 3 == 0 ? Value(i) : Value(std::to_string(i)));
    auto copy = source->mutableChange();
    EXPECT_EQ(copy->size(), 40u);
    for (int i = 0; i < 60; ++i)
        EXPECT_EQ(copy->has("k" + std::to_string(i)), i % 3 != 0) << i;
    EXPECT_EQ(copy->get("k59").textOr(), "59");
    EXPECT_TRUE(copy->set("k0", Value("new")));
    EXPECT_EQ(keysOf(copy).back(), "k0");
    EXPECT_TRUE(copy->remove("k1"));
    EXPECT_EQ(copy->get("k2").textOr(), "2");
    EXPECT_EQ(copy->get("k58").textOr(), "58");
}
