// Search by content and field, key listings and the split helper.

#include "Trees.h"

#include <gtest/gtest.h>

using namespace morvane;
using namespace morvane::testing;

TEST(NodeSearchField, content_search_returns_the_first_node_whose_field_is_like_the_text) {
    auto hit = node({{"name", "Green Tea"}});
    auto tree = node({{"name", "Menu"}, {"rows", list({node({{"name", "Coffee"}}), list({hit})})}});
    EXPECT_EQ(tree->searchContent("name", "menu"), tree); // the receiver itself
    EXPECT_EQ(tree->searchContent("name", "TEA"), hit);
    EXPECT_EQ(tree->searchArrayContent(tree->get("rows").list(), "name", "tea"), hit);
    EXPECT_EQ(tree->searchContent("name", "juice"), nullptr);
    // A field holding a Node is no hit; the search goes on into it.
    auto inner = node({{"name", "x-ray"}});
    EXPECT_EQ(node({{"name", node({{"sub", inner}})}})->searchContent("name", "ray"), inner);
    EXPECT_EQ(node({{"name", Value(42)}})->searchContent("name", "42"), nullptr);

    // The list-hosted twins walk the same way.
    auto rows = tree->get("rows").list();
    EXPECT_EQ(rows->arraySearch("name", "tea"), hit);
    EXPECT_EQ(rows->contentsearch(tree, "name", "coffee")->get("name").textOr(), "Coffee");
    EXPECT_EQ(rows->contentsearch(nullptr, "name", "coffee"), nullptr);
}

// Catches a field search that folds case, or that misses a Node hanging
// under the field's name.
TEST(NodeSearchField, field_search_matches_exactly_or_by_the_key_of_a_nested_node) {
    auto hit = node({{"code", "SEA"}});
    auto tree = node({{"code", "sea"}, {"list", list({node({{"code", "YVR"}}), hit})}});
    EXPECT_EQ(tree->searchNodeFld("code", "SEA"), hit);
    EXPECT_EQ(tree->searchNodeFld("code", "sea"), tree);
    auto under = node({{"whatever", "x"}});
    EXPECT_EQ(node({{"a", "b"}, {"code", under}})->searchNodeFld("code", "SEA"), under);
    EXPECT_EQ(tree->searchNodeFldArray(tree->get("list").list(), "code", "YVR")->get("code").textOr(), "YVR");
    EXPECT_EQ(tree->searchNodeFld("code", "LAX"), nullptr);
}

// Catches a listing that stops after the first nested Node (we scan every
// entry) or that enters lists.
TEST(NodeSearchField, key_listing_scans_every_entry_and_skips_lists) {
    auto tree = node({{"a-Phone", "1"},
                      {"nested", node({{"b-phone", "2"}})},
                      {"c-PHONE", "3"},
                      {"rows", list({node({{"d-phone", "4"}})})},
                      {"email", "x"}});
    auto hits = tree->txtLikeList("phone");
    EXPECT_EQ(fieldsOf(hits, "key"), (std::vector<std::string>{"a-Phone", "b-phone", "c-PHONE"}));
    EXPECT_EQ(fieldsOf(hits, "val"), (std::vector<std::string>{"1", "2", "3"}));
    EXPECT_TRUE(Node::make()->txtLikeList("x")->empty());
}

TEST(NodeSearchField, hit_sort_orders_by_key_in_place) {
    auto host = Node::make();
    auto hits =
        list({node({{"key", "b"}}), node({{"key", "a"}}), node({{"key", "B"}}), node({{"key", "a"}})});
    auto first = hits->at(1).node();
    EXPECT_EQ(host->sortArray(hits), hits);
    EXPECT_EQ(fieldsOf(hits, "key"), (std::vector<std::string>{"B", "a", "a", "b"}));
    EXPECT_EQ(hits->at(1).node(), first); // equal keys are not swapped
    auto empty = list();
    EXPECT_EQ(host->sortArray(empty), empty);
    EXPECT_EQ(host->sortArray(nullptr), nullptr);
}

TEST(NodeSearchField, like_key_text_lists_sorted_hits_without_the_excepted_ones) {
    auto tree = node({{"2-Phone", "555"}, {"1-home phone", "444"}, {"3-Fax phone", "333"}, {"other", "x"}});
    EXPECT_EQ(tree->txtLikeKey("phone", list({"FAX"})), "home phone: 444\nPhone: 555\n");
    EXPECT_EQ(tree->txtLikeKey("phone", list()), "home phone: 444\nPhone: 555\nFax phone: 333\n");
    EXPECT_EQ(tree->txtLikeKey("nothing", list()), "");
    EXPECT_EQ(node({{"1-a", "x"}})->txtLikeKey("a", nullptr), "a: x\n");
    // A key without "-" is listed whole.
    EXPECT_EQ(node({{"plain", "x"}})->txtLikeKey("plain", list()), "plain: x\n");
}

TEST(NodeSearchField, split_keeps_the_part_after_the_first_separator) {
    auto host = Node::make();
    EXPECT_EQ(host->splitBy("a-b-c", "-").textOr(), "b-c");
    EXPECT_EQ(host->splitBy("a--b", "-").textOr(), "b");
    EXPECT_TRUE(host->splitBy("a-", "-").isText());
    EXPECT_EQ(host->splitBy("a-", "-").textOr(), "");
    EXPECT_FALSE(host->splitBy("abc", "-"));
    EXPECT_FALSE(host->splitBy("abc", ""));
    EXPECT_EQ(host->splitBy("x<en>y<en>z", "<en>").textOr(), "y<en>z");
}
