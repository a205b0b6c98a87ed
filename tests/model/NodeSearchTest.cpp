// Search by key: searchDict and its family, searchNode and its family, and
// the rules for read-only Nodes and ">" branches.

#include "Trees.h"

#include <gtest/gtest.h>

using namespace morvane;
using namespace morvane::testing;

// Catches a single-pass depth-first search, which returns a deep hit before
// a shallow one that sits later in the Node.
TEST(NodeSearch, key_search_tries_own_entries_before_nested_ones) {
    auto tree = node({{"sub", node({{"name", "deep"}})}, {"name", "top"}});
    EXPECT_EQ(tree->valKey("name").textOr(), "top");
    // Only text values are hits; a Node under the key is searched into.
    auto nested = node({{"name", node({{"name", "inner"}})}});
    EXPECT_EQ(nested->valKey("name").textOr(), "inner");
    EXPECT_FALSE(Node::make()->valKey("name"));
    EXPECT_FALSE(node({{"n", Value(1)}})->valKey("n")); // numbers are not text hits
}

TEST(NodeSearch, key_search_never_enters_branches_whose_key_holds_a_marker) {
    auto tree = node({{"a>b", node({{"secret", "x"}})},
                      {"list>", list({node({{"secret", "y"}})})},
                      {"x>", "direct text is still tested"}});
    EXPECT_FALSE(tree->valKey("secret"));
    EXPECT_FALSE(tree->valLikeKey("secret"));
    EXPECT_EQ(tree->valKey("x>").textOr(), "direct text is still tested");
    // Other operations do enter them.
    EXPECT_EQ(tree->pullDict("secret").textOr(), "x");
}

// Catches exact matching that folds case, and like matching that prefers a
// like hit near the root over an exact hit deep in the tree.
TEST(NodeSearch, exact_is_case_sensitive_and_preferred_over_like) {
    auto tree =
        node({{"Surname", "like-at-root"}, {"deep", node({{"inner", node({{"name", "exact-deep"}})}})}});
    EXPECT_FALSE(tree->valKey("Name"));
    EXPECT_EQ(tree->valLikeKey("name").textOr(), "exact-deep");
    EXPECT_EQ(tree->valLikeKey("NAME").textOr(), "like-at-root");
    EXPECT_EQ(tree->searchDict("URNA", false).textOr(), "like-at-root");

    auto inList = node({{"rows", list({Value("text"), list({node({{"price", "4.5"}})})})}});
    EXPECT_EQ(inList->valKey("price").textOr(), "4.5");
    EXPECT_EQ(inList->searchArray(inList->get("rows").list(), "price", true).textOr(), "4.5");

    EXPECT_EQ(tree->txtInList(list({"nothing", Value(3), "NAME"})).textOr(), "like-at-root");
    EXPECT_FALSE(tree->txtInList(list({"nothing"})));
}

// Catches searches that ignore the read-only rules: a mutable Node enters
// only mutable nested Nodes, searchDict2 and read-only Nodes enter both.
TEST(NodeSearch, key_search_enters_read_only_nodes_by_the_receivers_kind) {
    auto readOnlyChild = frozen(node({{"hidden", "ro"}, {"inner", node({{"deeper", "ro2"}})}}));
    auto tree = node({{"ro", readOnlyChild},
                      {"rows", list({frozen(node({{"row", "ro-row"}})), node({{"row2", "rw-row"}})})},
                      {"rw", node({{"open", "rw"}})}});
    EXPECT_FALSE(tree->valKey("hidden"));
    EXPECT_FALSE(tree->valKey("row"));
    EXPECT_EQ(tree->valKey("row2").textOr(), "rw-row");
    EXPECT_EQ(tree->valKey("open").textOr(), "rw");
    EXPECT_EQ(tree->valKey2("hidden").textOr(), "ro");
    EXPECT_EQ(tree->valKey2("row").textOr(), "ro-row");
    EXPECT_EQ(tree->searchDict2("DEEP", false).textOr(), "ro2");

    // A read-only Node enters every nested Node, mutable or not.
    auto roRoot = frozen(node({{"a", node({{"b", "x"}})}}));
    auto mixed = Node::make();
    mixed->set("inner", Value(node({{"c", "rw-in-ro"}})));
    auto outer = node({{"m", mixed}, {"r", roRoot}});
    roRoot->setReadOnly(false);
    roRoot->set("rw", Value(node({{"d", "rw-child"}})));
    roRoot->setReadOnly(true);
    EXPECT_EQ(roRoot->valKey("b").textOr(), "x");
    EXPECT_EQ(roRoot->valKey("d").textOr(), "rw-child");
    EXPECT_EQ(outer->valKey("c").textOr(), "rw-in-ro");
    EXPECT_FALSE(outer->valKey("b")); // outer is mutable, roRoot read-only
}

// Catches a node search that returns a grandchild before a later direct
// child, or that matches keys case-sensitively.
TEST(NodeSearch, node_search_tries_direct_children_first_and_ignores_case) {
    auto drinks = node({{"tea", "1"}});
    auto tree = node({{"food", node({{"drinks", node({{"water", "2"}})}})}, {"Drinks", drinks}});
    EXPECT_EQ(tree->nodeKey("drinks"), drinks);
    EXPECT_EQ(tree->nodeKey("DRINKS"), drinks);
    EXPECT_EQ(tree->searchNode("drinks", true), drinks);
    EXPECT_EQ(tree->nodeLike("ink"), drinks);
    EXPECT_EQ(tree->nodeKey("ink"), nullptr);
    EXPECT_EQ(tree->nodeLike("nothing"), nullptr);
    // A text under a matching key is not a hit.
    EXPECT_EQ(node({{"drinks", "text"}})->nodeKey("drinks"), nullptr);
    // nodeLike prefers an exact key anywhere to a like key at the top.
    auto exactDeep = node({{"inks", "x"}});
    auto preferExact = node({{"Drinks", node({{"x", "1"}})}, {"d", node({{"INK", exactDeep}})}});
    EXPECT_EQ(preferExact->nodeLike("ink"), exactDeep);
}

TEST(NodeSearch, node_search_in_a_list_returns_the_element_holding_the_hit) {
    auto hit = node({{"v", "1"}});
    auto element = node({{"name", "e"}, {"target", hit}});
    auto tree = node({{"rows", list({node({{"x", "1"}}), list({element})})}});
    EXPECT_EQ(tree->searchNodeArray(tree->get("rows").list(), "target", true), element);
    // Through the tree search, the list element holding the hit comes back.
    EXPECT_EQ(tree->nodeKey("target"), element);
    EXPECT_EQ(tree->searchNodeArray(list({Value("t")}), "target", true), nullptr);
}

// Catches the first pass testing read-only children of a mutable Node, and a
// second pass that fails to test them.
TEST(NodeSearch, node_search_tests_read_only_children_of_a_mutable_node_second) {
    auto roHit = frozen(node({{"v", "ro"}}));
    auto rwHit = node({{"v", "rw"}});
    // The first pass skips the read-only direct child; the second pass tests
    // it before it enters "other".
    auto tree = node({{"menu", roHit}, {"other", node({{"menu", rwHit}})}});
    EXPECT_EQ(tree->nodeKey("menu"), roHit);
    auto rwFirst = node({{"x", node({{"menu", roHit}})}, {"menu", rwHit}});
    EXPECT_EQ(rwFirst->nodeKey("menu"), rwHit);
    // On a read-only Node the read-only child is a first-pass hit.
    auto roTree =
        frozen(node({{"x", node({{"menu", node({{"v", "deep"}})}})}, {"menu", node({{"v", "top"}})}}));
    EXPECT_EQ(roTree->nodeKey("menu")->get("v").textOr(), "top");
    // So a mutable grandchild in an earlier subtree wins over a read-only
    // direct child.
    auto order = node({{"a", node({{"menu", rwHit}})}, {"menu", roHit}});
    EXPECT_EQ(order->nodeKey("menu"), rwHit);
}
