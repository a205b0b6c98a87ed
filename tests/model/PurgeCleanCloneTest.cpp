// Purging in place, and the copies that leave keys or records out.

#include "Trees.h"

#include <gtest/gtest.h>

using namespace morvane;
using namespace morvane::testing;

// Catches purges that remove lists, miss records inside lists, or stop
// early when entries go during the walk.
TEST(PurgeCleanClone, purge_removes_stamps_and_dollar_entries_everywhere_but_keeps_lists) {
    auto record = node({{"name", "Tea"}, {"$price", "2"}, {"key", "/x"}, {"$sel", node({{"a", "b"}})}});
    auto tree = node({{"key", "/"},
                      {"$data", "x"},
                      {"keyList", list({record, list({node({{"key", "k"}, {"v", "1"}})})})},
                      {"monkey", node({{"whole", "subtree"}})},
                      {"n", Value(1)},
                      {"keep", node({{"key", "k"}, {"t", "1"}})}});
    tree->mutablePurge();
    EXPECT_EQ(keysOf(tree), (std::vector<std::string>{"keyList", "n", "keep"}));
    EXPECT_EQ(keysOf(record), (std::vector<std::string>{"name"}));
    EXPECT_EQ(keysOf(tree->get("keyList").list()->at(1).list()->at(0).node()),
              (std::vector<std::string>{"v"}));
    EXPECT_EQ(keysOf(tree->get("keep").node()), (std::vector<std::string>{"t"}));
}

TEST(PurgeCleanClone, purge_with_a_word_removes_matching_nested_nodes_whole) {
    auto tree = node({{"draft-notes", node({{"keep", "x"}})}, {"final", node({{"draft", "y"}, {"z", "1"}})}});
    tree->mutablePurge("draft");
    EXPECT_EQ(keysOf(tree), (std::vector<std::string>{"final"}));
    EXPECT_EQ(keysOf(tree->get("final").node()), (std::vector<std::string>{"z"}));
    tree->mutablePurge("");
    EXPECT_EQ(keysOf(tree), (std::vector<std::string>{"final"}));

    auto ro = frozen(node({{"$x", "1"}}));
    ro->mutablePurge();
    EXPECT_TRUE(ro->has("$x"));
}

// Catches a key removal that leaves emptied records in lists, or changes the
// source.
TEST(PurgeCleanClone, remove_key_copies_without_the_key_and_drops_emptied_list_entries) {
    auto tree = node({{"key", "/"},
                      {"rows", list({node({{"key", "a"}}), node({{"key", "b"}, {"t", "x"}}), Value("text"),
                                     Value(3), list({node({{"key", "c"}})}), list()})},
                      {"sub", node({{"key", "s"}})}});
    auto copy = tree->removeKey("key");
    EXPECT_EQ(keysOf(copy), (std::vector<std::string>{"rows", "sub"}));
    auto rows = copy->get("rows").list();
    ASSERT_EQ(rows->size(), 3u); // texts and numbers are kept, empty copies dropped
    EXPECT_EQ(keysOf(rows->at(0).node()), (std::vector<std::string>{"t"}));
    EXPECT_EQ(rows->at(1).textOr(), "text");
    EXPECT_EQ(rows->at(2).number(), 3);
    EXPECT_TRUE(copy->get("sub").node()->empty()); // outside a list it stays
    EXPECT_TRUE(tree->has("key"));
    EXPECT_EQ(tree->get("rows").list()->size(), 6u);
}

TEST(PurgeCleanClone, clean_drops_records_without_the_wanted_field) {
    auto tree = node({{"items", list({node({{"name", "A"}, {"price", "1"}}), node({{"price", "2"}})})}});
    auto cleaned = tree->clean("name");
    auto items = cleaned->get("items").list();
    ASSERT_EQ(items->size(), 1u);
    EXPECT_EQ(items->at(0).node()->get("name").textOr(), "A");
    EXPECT_EQ(tree->get("items").list()->size(), 2u);

    // A leaf record outside a list is emptied in place; a Node holding a
    // Node or list always stays.
    EXPECT_TRUE(node({{"price", "2"}})->clean("name")->empty());
    auto kept = node({{"rec", node({{"price", "2"}})}, {"x", "1"}})->clean("name");
    EXPECT_EQ(keysOf(kept), (std::vector<std::string>{"rec", "x"}));
    EXPECT_TRUE(kept->get("rec").node()->empty());
    // The field matches by containment in the key, case-sensitively.
    EXPECT_FALSE(node({{"firstname", "A"}})->clean("name")->empty());
    EXPECT_TRUE(node({{"Name", "A"}})->clean("name")->empty());
    // Texts inside lists have no entries and are kept.
    EXPECT_EQ(Node::make()->cleanArray(list({"t", node({{"x", "1"}})}), "name")->size(), 1u);

    auto host = Node::make();
    EXPECT_TRUE(host->ok(node({{"l", list()}}), "zz"));
    EXPECT_FALSE(host->ok(node({{"n", Value(1)}}), "n")); // only a text field counts
    EXPECT_FALSE(host->ok(nullptr, "n"));
}

// Catches shallow copies: a change to the copy must not reach the source.
TEST(PurgeCleanClone, deep_copies_share_nothing_with_the_source) {
    auto record = node({{"name", "A"}, {"n", Value(1)}, {"z", Value::null()}, {"b", Value(true)}});
    auto source = node({{"rows", list({record, list({Value("t")})})}, {"sub", node({{"x", "1"}})}});
    auto copy = source->deepCopyDictionary();
    EXPECT_TRUE(copy->equals(*source));
    auto copiedRecord = copy->get("rows").list()->at(0).node();
    EXPECT_NE(copiedRecord, record);
    copiedRecord->set("name", Value("B"));
    copy->get("rows").list()->at(1).list()->push(Value("u"));
    copy->get("sub").node()->set("y", Value("2"));
    EXPECT_EQ(record->get("name").textOr(), "A");
    EXPECT_EQ(source->get("rows").list()->at(1).list()->size(), 1u);
    EXPECT_FALSE(source->get("sub").node()->has("y"));
    EXPECT_TRUE(copiedRecord->get("b").isBool());

    auto records = list({record});
    auto copies = Node::make()->deepCopyArray(records);
    EXPECT_TRUE(copies->equals(*records));
    EXPECT_NE(copies->at(0).node(), record);
    EXPECT_FALSE(frozen(node({{"a", node()}}))->deepCopyDictionary()->get("a").node()->isReadOnly());
}

// A large Node keeps a key index beside its entries; its copy must find every
// key, and changing the copy must keep the copy's index right and leave the
// source's alone.
TEST(PurgeCleanClone, deep_copy_of_a_large_node_finds_and_changes_its_keys) {
    auto source = Node::make();
    for (int i = 0; i < 40; ++i)
        source->set("k" + std::to_string(i), Value(i));
    auto copy = source->deepCopyDictionary();
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(copy->get("k" + std::to_string(i)).number(), i);
    EXPECT_TRUE(copy->remove("k3"));
    EXPECT_TRUE(copy->set("k39", Value("changed")));
    EXPECT_TRUE(copy->set("extra", Value(1)));
    EXPECT_FALSE(copy->has("k3"));
    EXPECT_EQ(copy->get("k39").textOr(), "changed");
    EXPECT_EQ(copy->get("k38").number(), 38);
    EXPECT_EQ(copy->size(), 40u);
    EXPECT_TRUE(source->has("k3"));
    EXPECT_FALSE(source->has("extra"));
    EXPECT_EQ(source->get("k39").number(), 39);
}
