// Gathering texts and numbers from a tree, and pulling values into templates.

#include "Trees.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace morvane;
using namespace morvane::testing;

// Catches separators in the wrong place: doubled for an element that gives
// nothing, or at the start or end.
TEST(GatherPull, list_gathering_puts_the_separator_only_between_pieces) {
    auto choices = list({node({{"$selection", "Tea"}}), node({{"other", "x"}}), Value("loose"),
                         node({{"$selection", "Cake"}})});
    EXPECT_EQ(choices->gatherArrayText("$selection", "  ", "\n"), "  Tea\n  Cake");
    EXPECT_EQ(Node::make()->gatherArrayTxt(choices, "$selection", "  ", "\n"), "  Tea\n  Cake");
    EXPECT_EQ(list()->gatherArrayText("k", "-", ","), "");
    EXPECT_EQ(list({node({{"k", "only"}})})->gatherArrayText("k", "", ","), "only");
}

TEST(GatherPull, node_gathering_runs_pieces_together_and_joins_only_inside_lists) {
    auto tree = node({{"a", node({{"k", "1"}})},
                      {"k", "0"},
                      {"b", node({{"k", "2"}})},
                      {"l", list({node({{"k", "3"}}), list({node({{"k", "4"}})})})},
                      {"n", node({{"k", Value(9)}})}});
    EXPECT_EQ(tree->gatherTxt("k", "", ","), "1023,4");
    EXPECT_EQ(tree->gatherTxt("missing", "", ","), "");
    // Hosted on the list, a Node's own value comes before its nested pieces.
    auto host = list();
    EXPECT_EQ(host->gatherText(tree, "k", "", ","), "0123,4");
    EXPECT_EQ(host->gatherText(nullptr, "k", "", ","), "");
}

// Catches number gathering that reads number values, parses texts at double
// precision, or fails on leading white space.
TEST(GatherPull, number_gathering_sums_the_numbers_texts_begin_with) {
    auto tree = node({{"p", "12.5"},
                      {"a", node({{"p", "  3 dollars"}})},
                      {"b", node({{"p", "abc"}})},
                      {"c", node({{"p", Value(100)}})},
                      {"l", list({node({{"p", "-1e1"}}), list({node({{"p", "+.5"}})})})}});
    EXPECT_DOUBLE_EQ(tree->gatherFloat("p"), 12.5 + 3 - 10 + 0.5);
    // Each text is read at single precision before it is added.
    EXPECT_DOUBLE_EQ(node({{"p", "0.1"}})->gatherFloat("p"), static_cast<double>(0.1f));
    EXPECT_NE(node({{"p", "0.1"}})->gatherFloat("p"), 0.1);
    auto records = list({node({{"p", "1"}}), node({{"p", "2"}})});
    EXPECT_DOUBLE_EQ(records->gatherArrayFloat("p"), 3.0);
    EXPECT_DOUBLE_EQ(Node::make()->gatherArrayFloat(records, "p"), 3.0);
    EXPECT_DOUBLE_EQ(records->gatherFloat(tree, "p"), 6.0);
    // Odd texts: an exponent without digits, a bare point, overflow.
    EXPECT_DOUBLE_EQ(node({{"p", "2e"}})->gatherFloat("p"), 2.0);
    EXPECT_DOUBLE_EQ(node({{"p", "."}})->gatherFloat("p"), 0.0);
    EXPECT_TRUE(std::isinf(node({{"p", "1e999"}})->gatherFloat("p")));
    EXPECT_DOUBLE_EQ(node({{"p", "1e-999"}})->gatherFloat("p"), 0.0);
}

TEST(GatherPull, peek_follows_a_path_of_keys) {
    auto tree = node({{"a", node({{"b", node({{"c", "x"}})}})}, {"t", "text"}});
    EXPECT_EQ(tree->peek(list({"a", "b", "c"})).textOr(), "x");
    EXPECT_EQ(tree->peek(list()).node(), tree);
    EXPECT_FALSE(tree->peek(list({"zz", "b"})));
    EXPECT_FALSE(tree->peek(list({"t", "c"}))); // cannot step through a text
}

TEST(GatherPull, pull_finds_any_kind_at_the_root_before_deeper_and_enters_every_branch) {
    auto tree = node({{"deep", node({{"city", "Deep"}})},
                      {"city", "Root"},
                      {"x>", node({{"zip", "98"}})},
                      {"l", list({node({{"tags", list({"a"})}})})}});
    EXPECT_EQ(tree->pullDict("city").textOr(), "Root");
    EXPECT_EQ(tree->pullDict("zip").textOr(), "98");
    EXPECT_TRUE(tree->pullDict("tags").isList());
    EXPECT_FALSE(tree->pullDict("City"));
    EXPECT_TRUE(tree->pullArray(tree->get("l").list(), "tags").isList());
    EXPECT_EQ(tree->pullTxt(list({"city", "missing", "zip", "tags"}), ", "), "Root, 98");
    EXPECT_EQ(tree->pullTxt(list(), ", "), "");
}

// Catches template filling that keeps entries whose source is missing or
// null, that loses the scope of a path, or that walks a changing template.
TEST(GatherPull, pull_it_fills_the_template_in_place) {
    auto source = node({{"hotel", node({{"name", "Inn"}, {"address", node({{"city", "Lyon"}})}})},
                        {"phone", "555"},
                        {"fax", Value::null()},
                        {"city", "Paris"}});
    auto templ = node({{"name", "name"},
                       {"missing", "nope"},
                       {"nullish", "fax"},
                       {"where", "hotel:address:city"},
                       {"pathMiss", "hotel:zzz"},
                       {"lastIsNode", "phone:hotel"},
                       {"joined", list({"phone", "city", "zz"})},
                       {"none", list({"zz"})},
                       {"number", Value(7)}});
    source->pullIt(templ, " / ");
    EXPECT_EQ(templ->get("name").textOr(), "Inn");
    EXPECT_FALSE(templ->has("missing"));
    EXPECT_FALSE(templ->has("nullish"));
    EXPECT_EQ(templ->get("where").textOr(), "Lyon");
    EXPECT_FALSE(templ->has("pathMiss"));
    EXPECT_EQ(templ->get("lastIsNode").textOr(), "555"); // kept from the part before
    EXPECT_EQ(templ->get("joined").textOr(), "555 / Paris");
    EXPECT_EQ(templ->get("none").textOr(), "");
    EXPECT_EQ(templ->get("number").number(), 7);
    // A path that misses and then hits sets the entry again.
    auto again = node({{"t", "zz:city"}});
    source->pullIt(again, "");
    EXPECT_EQ(again->get("t").textOr(), "Paris");
}

// An empty found text: pullTxt puts the gap only after a non-empty text so
// far, a template's key list between every two found texts.
TEST(GatherPull, empty_pulled_texts_and_the_gap) {
    auto source = node({{"a", ""}, {"b", "B"}, {"sub", node({{"c", "C"}})}});
    EXPECT_EQ(source->pullTxt(list({"a", "b", "c"}), "|"), "B|C");
    auto templ = node({{"t", list({"a", "b", "sub"})}});
    source->pullIt(templ, "|");
    EXPECT_EQ(templ->get("t").textOr(), "|B"); // a Node pulled counts as not found
}
