// The walks on the deepest tree the JSON reader accepts (512 levels),
// alternating Nodes and lists, and on trees an application builds itself a
// million levels deep, which no walk, copy, comparison or release may
// overflow the stack on; run under ASan too, where frames are larger.

#include "Trees.h"

#include <morvane/model/Json.h>

#include <gtest/gtest.h>

#include <string>

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

namespace {
constexpr int kMillion = 1'000'000;

NodePtr bottomNode() {
    return node({{"leaf", "bottom"}, {"$price", "2.5"}, {"key", "k"}});
}

// A million Nodes, each under the key "k" of the one before.
NodePtr millionChain() {
    NodePtr top = bottomNode();
    for (int level = 1; level < kMillion; ++level)
        top = node({{"k", top}});
    return top;
}

// A list nested a million deep, the bottom Node in the innermost one.
ListPtr millionNesting() {
    ListPtr top = list({bottomNode()});
    for (int level = 1; level < kMillion; ++level)
        top = list({top});
    return top;
}
} // namespace

// Each of these once called itself per level and overflowed the stack.
TEST(DeepTree, searches_gathers_and_pulls_reach_the_bottom_of_a_million_node_chain) {
    const NodePtr chain = millionChain();
    EXPECT_EQ(chain->valKey("leaf").textOr(), "bottom");
    EXPECT_FALSE(chain->valKey("absent"));
    EXPECT_EQ(chain->valKey2("leaf").textOr(), "bottom");
    EXPECT_EQ(chain->valLikeKey("lea").textOr(), "bottom");
    EXPECT_EQ(chain->nodeKey("absent"), nullptr);
    EXPECT_EQ(chain->searchContent("leaf", "bott")->get("key").textOr(), "k");
    EXPECT_EQ(chain->searchNodeFld("leaf", "bottom")->get("key").textOr(), "k");
    EXPECT_EQ(chain->pullDict("leaf").textOr(), "bottom");
    EXPECT_EQ(chain->pullTxt(list({"leaf", "key"}), "/"), "bottom/k");
    EXPECT_EQ(chain->gatherTxt("leaf", "<", ","), "<bottom");
    EXPECT_EQ(list({chain})->gatherText(chain, "leaf", "", ","), "bottom");
    EXPECT_DOUBLE_EQ(chain->gatherFloat("$price"), 2.5);
    EXPECT_EQ(list({chain})->arraySearch("leaf", "bottom")->get("key").textOr(), "k");
    EXPECT_EQ(chain->txtLikeList("lea")->size(), 1u);
    EXPECT_EQ(chain->mutableToTextArray("$")->size(), 1u);
    // The Node above the bottom hangs under "k" too, so the bottom is not
    // the first hit of a Node search for "k".
    EXPECT_EQ(chain->nodeKey("k"), chain->get("k").node());
}

TEST(DeepTree, copies_and_comparisons_of_a_million_node_chain_match_their_source) {
    const NodePtr chain = millionChain();
    const NodePtr copy = chain->deepCopyDictionary();
    EXPECT_NE(copy->get("k").node(), chain->get("k").node());
    EXPECT_TRUE(copy->equals(*chain));
    EXPECT_TRUE(Value(copy) == Value(chain));
    EXPECT_TRUE(chain->mutableChange()->equals(*chain)); // only texts and Nodes to keep
    EXPECT_FALSE(chain->removeKey("$price")->pullDict("$price"));
    EXPECT_EQ(chain->removeKey("$price")->pullDict("leaf").textOr(), "bottom");
    EXPECT_EQ(chain->clean("leaf")->pullDict("leaf").textOr(), "bottom");
    // The bottom of the copy changes; the comparison must go all the way down.
    copy->searchNodeFld("leaf", "bottom")->set("leaf", "changed");
    EXPECT_FALSE(copy->equals(*chain));

    // Only the bottom holds texts, so only it is stamped, with the whole path.
    const std::string stamp = chain->mutableKey("")->pullDict("key").textOr();
    EXPECT_EQ(stamp.size(), 2u * (kMillion - 1));
    EXPECT_EQ(stamp.substr(0, 4), "/k/k");
}

TEST(DeepTree, purging_and_tagging_change_the_bottom_of_a_million_node_chain) {
    const NodePtr chain = millionChain();
    chain->tagChildWithKey("tag", Value("y"));
    EXPECT_EQ(chain->pullDict("tag").textOr(), "y");
    chain->mutablePurge("tag");
    EXPECT_FALSE(chain->pullDict("tag"));
    chain->mutablePurge();
    EXPECT_FALSE(chain->pullDict("$price"));
    EXPECT_FALSE(chain->pullDict("key"));
    EXPECT_EQ(chain->pullDict("leaf").textOr(), "bottom");
}

TEST(DeepTree, walks_copies_and_writing_reach_the_bottom_of_a_list_nested_a_million_deep) {
    const ListPtr nesting = millionNesting();
    Node host;
    EXPECT_EQ(host.searchArray(nesting, "leaf", true).textOr(), "bottom");
    EXPECT_EQ(host.searchNodeArray(nesting, "absent", true), nullptr);
    EXPECT_EQ(host.searchArrayContent(nesting, "leaf", "bott")->get("key").textOr(), "k");
    EXPECT_EQ(host.searchNodeFldArray(nesting, "leaf", "bottom")->get("key").textOr(), "k");
    EXPECT_EQ(nesting->arraySearch("leaf", "bottom")->get("key").textOr(), "k");
    EXPECT_EQ(host.pullArray(nesting, "leaf").textOr(), "bottom");
    EXPECT_EQ(nesting->gatherArrayText("leaf", "<", ","), "<bottom");
    EXPECT_DOUBLE_EQ(nesting->gatherArrayFloat("$price"), 2.5);

    const ListPtr copy = host.deepCopyArray(nesting);
    EXPECT_TRUE(copy->equals(*nesting));
    EXPECT_TRUE(host.mutableArrayChange(nesting)->equals(*host.mutableArrayChange(copy)));
    EXPECT_EQ(host.pullArray(host.removeArray(nesting, "leaf"), "key").textOr(), "k");
    EXPECT_EQ(host.pullArray(host.cleanArray(nesting, "leaf"), "leaf").textOr(), "bottom");
    EXPECT_EQ(host.pullArray(host.mutableArrayChange(nesting, "/l"), "key").textOr(), "/l[0]");

    host.mutablePurgeArray(nesting, "$");
    EXPECT_FALSE(host.pullArray(nesting, "$price"));
    EXPECT_FALSE(copy->equals(*nesting));

    const std::string written = json::write(Value(nesting));
    EXPECT_EQ(written.size(), 2u * kMillion + std::string(R"({"leaf":"bottom","key":"k"})").size());
}
