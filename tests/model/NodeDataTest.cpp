// Keyed access: item identity, lookups by field, the stable insertion sorts,
// copies with selected keys, leaf tagging, paths and the translation dump.

#include "Trees.h"

#include <gtest/gtest.h>

using namespace morvane;
using namespace morvane::testing;

namespace {
NodePtr item(const char* dscr, const char* icon, const char* icond, const char* itemName) {
    return node({{"dscr", dscr}, {"icon", icon}, {"icond", icond}, {"item", itemName}});
}
} // namespace

// Catches identity that treats a key missing on both sides as equal.
TEST(NodeData, item_identity_needs_all_four_keys_on_the_first_item) {
    auto host = Node::make();
    EXPECT_TRUE(host->isSame(item("d", "i", "2024", "x"), item("d", "i", "2024", "x")));
    EXPECT_FALSE(host->isSame(item("d", "i", "2024", "x"), item("d", "i", "2025", "x")));
    auto noIcond = node({{"dscr", "d"}, {"icon", "i"}, {"item", "x"}});
    EXPECT_FALSE(host->isSame(noIcond, noIcond));
    // Values compare by value: a number equals the same number.
    auto numeric = node({{"dscr", "d"}, {"icon", "i"}, {"icond", Value(3)}, {"item", "x"}});
    auto numeric2 = node({{"dscr", "d"}, {"icon", "i"}, {"icond", Value(3.0)}, {"item", "x"}});
    EXPECT_TRUE(host->isSame(numeric, numeric2));
    EXPECT_FALSE(host->isSame(numeric, item("d", "i", "3", "x")));

    auto menu = node({{"note", "text"}, {"a", item("d", "i", "1", "x")}, {"b", item("d", "i", "2", "x")}});
    EXPECT_TRUE(menu->alreadyExists(item("d", "i", "2", "x")));
    EXPECT_FALSE(menu->alreadyExists(item("d", "i", "3", "x")));
    EXPECT_FALSE(menu->alreadyExists(nullptr));
}

TEST(NodeData, find_obj_gives_the_key_of_the_first_child_with_the_field_value) {
    auto tree = node({{"t", "Tea"},
                      {"x", node({{"name", "Tea "}})},
                      {"y", node({{"name", "Tea"}})},
                      {"z", node({{"name", "Tea"}})}});
    EXPECT_EQ(tree->findObj("Tea", "name").textOr(), "y");
    EXPECT_FALSE(tree->findObj("tea", "name")); // exact, case-sensitive
    EXPECT_FALSE(Node::make()->findObj("Tea", "name"));
}

// Catches an unstable or wrongly directed insertion sort, and sorts that
// take in text children.
TEST(NodeData, sorts_keep_equal_values_in_iteration_order) {
    auto tree = node({{"c", node({{"rank", "2"}, {"id", "c"}})},
                      {"a", node({{"rank", "1"}, {"id", "a"}})},
                      {"note", "skipped"},
                      {"b", node({{"rank", "2"}, {"id", "b"}})},
                      {"d", node({{"id", "d"}})}});
    // A missing field sorts as "".
    EXPECT_EQ(fieldsOf(tree->toSortArrayAtField("rank"), "id"),
              (std::vector<std::string>{"d", "a", "c", "b"}));
    EXPECT_FALSE(tree->get("a").node()->has("key")); // the field sort stamps nothing

    auto byKey = tree->toSortArray();
    EXPECT_EQ(fieldsOf(byKey, "key"), (std::vector<std::string>{"a", "b", "c", "d"}));
    EXPECT_EQ(tree->get("c").node()->get("key").textOr(), "c"); // stamped in place
    EXPECT_EQ(fieldsOf(tree->toSortArray(false), "id"), (std::vector<std::string>{"d", "c", "b", "a"}));

    auto numbers = node({{"x", node({{"n", Value(10)}})}, {"y", node({{"n", Value(9)}})}});
    // Numbers sort by their decimal text: "10" < "9".
    EXPECT_EQ(fieldsOf(numbers->toSortArrayAtField("n"), "n"), (std::vector<std::string>{"10", "9"}));
    // Sorting by key overwrites an earlier stamp.
    auto stamped = node({{"b", node({{"key", "old"}})}, {"a", Node::make()}});
    EXPECT_EQ(fieldsOf(stamped->toSortArray(true), "key"), (std::vector<std::string>{"a", "b"}));

    auto texts = node({{"b", "2"}, {"a", "1"}, {"c", Value(3)}});
    EXPECT_EQ(textsOf(texts->toSortArrayTxt(true)), (std::vector<std::string>{"a: 1", "b: 2", "c: 3"}));
    EXPECT_EQ(textsOf(texts->toSortArrayTxt(false)), (std::vector<std::string>{"c: 3", "b: 2", "a: 1"}));
    EXPECT_TRUE(Node::make()->toSortArrayTxt(true)->empty());
}

// Catches an index that puts an equal value in front (unstable) or that
// misreads the direction.
TEST(NodeData, insertion_index_is_the_first_element_past_the_new_value) {
    auto host = Node::make();
    auto texts = list({"a", "c", "c", "e"});
    EXPECT_EQ(host->findTextInArray(texts, "c", true), 3);
    EXPECT_EQ(host->findTextInArray(texts, "f", true), -1);
    EXPECT_EQ(host->findTextInArray(list(), "a", true), -1);
    EXPECT_EQ(host->findTxtIdx(list({"e", "c", "a"}), "c", false), 2);
    EXPECT_EQ(host->findTxtIdx(list({"e", "c", "a"}), "f", false), 0);

    auto records = list({node({{"p", "1"}}), node({{"p", Value(2)}}), node({{"p", "3"}})});
    EXPECT_EQ(host->findIdx(records, Value(2), "p", true), 2);
    EXPECT_EQ(host->findIdx(records, Value("0"), "p", true), 0);
    EXPECT_EQ(host->findIdx(records, Value("9"), "p", true), -1);
}

TEST(NodeData, copies_with_selected_keys) {
    auto shared = node({{"x", "1"}});
    auto tree = node({{"a", "1"}, {"b", shared}, {"c", "3"}});
    EXPECT_EQ(keysOf(tree->removeExtra(list({"a", "zz"}))), (std::vector<std::string>{"b", "c"}));
    EXPECT_EQ(keysOf(tree->copyObj(Value(list({"c", "a", "zz"})))), (std::vector<std::string>{"c", "a"}));
    EXPECT_EQ(keysOf(tree->copyObjExclude(Value(list({"b"})))), (std::vector<std::string>{"a", "c"}));
    // Shallow: nested Nodes are shared.
    EXPECT_EQ(tree->copyObj(Value(list({"b"})))->get("b").node(), shared);
    // Not a list: the receiver itself, not a copy.
    EXPECT_EQ(tree->copyObj(Value("a")), tree);
    EXPECT_EQ(tree->copyObjExclude(Value()), tree);
    EXPECT_EQ(keysOf(tree), (std::vector<std::string>{"a", "b", "c"}));
}

// Catches tagging that touches a Node holding non-text values, or that
// misses an empty Node.
TEST(NodeData, tagging_sets_the_key_only_in_leaf_nodes) {
    auto leaf = node({{"t", "x"}});
    auto inList = node({{"t", "y"}});
    auto tree = node({{"text", "x"}, {"leaf", leaf}, {"items", list({inList})}});
    tree->tagChildWithKey("sel", Value("1"));
    EXPECT_FALSE(tree->has("sel"));
    EXPECT_EQ(leaf->get("sel").textOr(), "1");
    EXPECT_FALSE(inList->has("sel")); // lists are not entered

    auto empty = Node::make();
    empty->tagChildWithKey("sel", Value(true));
    EXPECT_TRUE(empty->get("sel").isBool());
}

TEST(NodeData, path_assembly_and_key_presence) {
    auto tree = node({{"city", "Tokyo"}, {"n", Value(7)}, {"sub", Node::make()}});
    EXPECT_EQ(tree->asmKey(list({"city", "food"})), "Tokyo/food");
    EXPECT_EQ(tree->asmKey(list({"food"})), "food");
    EXPECT_EQ(tree->asmKey(list()), "");
    EXPECT_EQ(tree->asmKey(list({"n", "sub"})), "7/sub");
    EXPECT_EQ(frozen(node({{"a", "b"}}))->asmKey(list({"a", "a"})), "b/b");

    EXPECT_TRUE(tree->areNull(list()));
    EXPECT_TRUE(tree->areNull(list({"x", "y"})));
    EXPECT_FALSE(tree->areNull(list({"x", "sub"})));
    EXPECT_TRUE(tree->containsTxt());
    EXPECT_FALSE(node({{"n", Value(1)}, {"s", Node::make()}})->containsTxt());
}

TEST(NodeData, translation_dump_lists_the_pieces_after_the_separator) {
    auto tree = node({{"<en>Menu", "Carte"},
                      {"sub", node({{"<en>Drinks", "Boissons"}, {"x<en>Tea<en>extra", "Thé"}})},
                      {"plain", "ignored"},
                      {"items", list({node({{"<en>Lost", "in a list"}})})}});
    EXPECT_EQ(textsOf(tree->mutableToTextArray("<en>")),
              (std::vector<std::string>{"Menu = Carte", "Drinks = Boissons", "Tea = Thé"}));
    EXPECT_EQ(tree->mutableToText("<en>"), "Drinks = Boissons\nMenu = Carte\nTea = Thé\n");
    EXPECT_EQ(node({{"a", "b"}})->mutableToText("<en>"), "");
    EXPECT_EQ(tree->mutableToText(""), "");
}
