// The recursive walks on the deepest tree the JSON reader accepts (512
// levels), alternating Nodes and lists; run under ASan too.

#include "Trees.h"

#include <gtest/gtest.h>

using namespace morvane;
using namespace morvane::testing;

namespace {
constexpr int kDepth = 512;

// Levels alternate: Node {"t": text, "n": next} and list [next]; the last
// Node holds the leaf keys.
NodePtr deepTree() {
    Value next(node({{"leaf", "bottom"}, {"$price", "2.5"}, {"key", "k"}}));
    for (int level = kDepth - 1; level > 0; --level) {
        if (level % 2)
            next = Value(list({next}));
        else
            next = Value(node({{"t", "x"}, {"n", next}}));
    }
    return node({{"t", "x"}, {"n", next}});
}
} // namespace

TEST(DeepTree, every_recursive_walk_reaches_the_bottom_of_a_512_level_tree) {
    auto tree = deepTree();
    EXPECT_EQ(tree->valKey("leaf").textOr(), "bottom");
    EXPECT_FALSE(tree->valKey("absent"));
    EXPECT_FALSE(tree->valKey2("absent"));
    EXPECT_EQ(tree->nodeKey("absent"), nullptr);
    EXPECT_EQ(tree->searchContent("leaf", "bott")->get("leaf").textOr(), "bottom");
    EXPECT_EQ(tree->searchNodeFld("leaf", "bottom")->get("leaf").textOr(), "bottom");
    EXPECT_EQ(tree->pullDict("leaf").textOr(), "bottom");
    EXPECT_EQ(tree->gatherTxt("leaf", "", ","), "bottom");
    EXPECT_EQ(list({tree})->gatherArrayText("leaf", "", ","), "bottom");
    EXPECT_DOUBLE_EQ(tree->gatherFloat("$price"), 2.5);
    EXPECT_EQ(list({tree})->arraySearch("leaf", "bottom")->get("leaf").textOr(), "bottom");
    EXPECT_EQ(tree->txtLikeList("t")->size(), 1u); // lists stop the listing
    EXPECT_EQ(tree->mutableToTextArray("<en>")->size(), 0u);

    auto keyed = tree->mutableKey("");
    EXPECT_EQ(keyed->pullDict("leaf").textOr(), "bottom");
    EXPECT_TRUE(tree->mutableChange()->equals(*tree->removeKey("none")));
    EXPECT_TRUE(tree->deepCopyDictionary()->equals(*tree));
    EXPECT_EQ(tree->clean("leaf")->pullDict("leaf").textOr(), "bottom");

    tree->mutablePurge();
    EXPECT_FALSE(tree->pullDict("$price"));
    EXPECT_FALSE(tree->pullDict("key"));
    EXPECT_EQ(tree->pullDict("leaf").textOr(), "bottom");
}

// Tagging does not enter lists, so it gets a chain of Nodes.
TEST(DeepTree, tagging_reaches_the_leaf_of_a_512_level_chain_of_nodes) {
    NodePtr chain = node({{"leaf", "bottom"}});
    for (int level = 1; level < kDepth; ++level)
        chain = node({{"n", chain}, {"c", Value(level)}});
    chain->tagChildWithKey("tag", Value("y"));
    EXPECT_EQ(chain->pullDict("tag").textOr(), "y");
    EXPECT_FALSE(chain->has("tag"));
    // Only the leaf holds text, so only it is stamped, with the full path.
    std::string path;
    for (int level = 1; level < kDepth; ++level)
        path += "/n";
    EXPECT_EQ(chain->mutableKey("")->valKey("key").textOr(), path);
}
