// Record lists: finding, counting, removing, joining, sorting and the keyed
// Node.

#include "Trees.h"

#include <gtest/gtest.h>

#include <ctime>

using namespace morvane;
using namespace morvane::testing;

namespace {
NodePtr rec(const char* id, const char* f) {
    return node({{"id", id}, {"f", f}});
}
} // namespace

// Catches scans in the wrong direction: the Bus family finds the last
// record, the Req family the first.
TEST(ListRecords, finds_scan_from_the_end_or_from_the_start) {
    auto records = list({rec("1", "A"), Value("text"), rec("2", "B"), rec("3", "A")});
    EXPECT_EQ(records->findObj("f", "A")->get("id").textOr(), "3");
    EXPECT_EQ(records->findData("f", "A")->get("id").textOr(), "1");
    EXPECT_EQ(records->findIdx("f", "A"), 3);
    EXPECT_EQ(records->findIdx("f", "a"), -1);
    EXPECT_EQ(records->findObj("f", "Z"), nullptr);
    EXPECT_EQ(records->findData("f", "Z"), nullptr);
    EXPECT_TRUE(records->containsObj("f", "B"));
    EXPECT_TRUE(records->dataExist("f", "B"));
    EXPECT_FALSE(records->dataExist("id", "B"));
    EXPECT_EQ(records->countItem("f", "A"), 1);
    EXPECT_EQ(records->countItem("f", "Q"), 0);

    auto named =
        list({node({{"name", "Green Tea"}}), node({{"name", "Black TEA"}}), node({{"name", "Coffee"}})});
    EXPECT_EQ(named->findObjContains("name", "tea")->get("name").textOr(), "Black TEA");
    EXPECT_EQ(named->findObjContains("name", ""), nullptr);
    EXPECT_EQ(list()->findObj("f", "A"), nullptr);

    // Distinct values: A, B, the number 1 and the text "1".
    auto mixed = list({rec("1", "A"), rec("2", "B"), rec("3", "A"), node({{"id", "4"}}),
                       node({{"f", Value(1)}}), node({{"f", "1"}}), node({{"f", Value(1.0)}})});
    EXPECT_EQ(mixed->countItem("f"), 4);
    EXPECT_EQ(list()->countItem("f"), 0);
}

TEST(ListRecords, removal_by_value_with_an_exception) {
    auto records = list({node({{"f", "A"}, {"keep", "yes"}}), rec("2", "A"), rec("3", "B"), rec("4", "A")});
    records->removeObj("f", "A", "keep", "yes");
    EXPECT_EQ(fieldsOf(records, "id"), (std::vector<std::string>{"", "3"}));
    records->removeObj("f", "A");
    EXPECT_EQ(fieldsOf(records, "id"), (std::vector<std::string>{"3"}));

    auto byText =
        list({node({{"f", "old-1"}}), node({{"f", "new"}}), node({{"f", "OLD"}}), node({{"f", "old-2"}})});
    byText->removeFlds("f", "old");
    EXPECT_EQ(fieldsOf(byText, "f"), (std::vector<std::string>{"new", "OLD"}));
    byText->removeFlds("f", "");
    EXPECT_EQ(byText->size(), 2u);

    auto ro = list({rec("1", "A")});
    ro->setReadOnly(true);
    ro->removeObj("f", "A");
    EXPECT_EQ(ro->size(), 1u);
}

TEST(ListRecords, find_by_fields_agrees_on_every_listed_field) {
    auto records = list({node({{"a", "1"}, {"b", "2"}}), node({{"a", "1"}, {"b", "3"}}), node({{"a", "1"}})});
    EXPECT_EQ(records->find(node({{"a", "1"}, {"b", "3"}}), list({"a", "b"})), records->at(1).node());
    // Both lacking a field agree on it.
    EXPECT_EQ(records->find(node({{"a", "1"}}), list({"a", "b"})), records->at(2).node());
    EXPECT_EQ(records->find(node({{"a", "9"}}), list()), records->at(0).node());
    EXPECT_EQ(records->find(node({{"a", "9"}}), list({"a"})), nullptr);
}

TEST(ListRecords, copy_all_appends_every_element_even_from_itself) {
    auto records = list({"a"});
    records->copyAll(list({"b", "c"}));
    records->copyAll(records);
    EXPECT_EQ(textsOf(records), (std::vector<std::string>{"a", "b", "c", "a", "b", "c"}));
}

// Catches joins that put separators around empty entries or skipped fields.
TEST(ListRecords, joining_builds_the_compact_choice_text) {
    auto records = list({node({{"label", "0335AM"}, {"price", "1.0"}, {"dir", "N"}}),
                         node({{"label", "0505AM"}, {"price", Value(2)}, {"dir", "S"}}),
                         node({{"label", ""}, {"dir", "N"}})});
    EXPECT_EQ(records->combineTextWith(Value(), list({"label", "price"})), "0335AM:1.0,0505AM:2,");
    EXPECT_EQ(records->combineTextWith(Value(), "dir", "S", list({"label", "price"})), "0505AM:2");
    EXPECT_EQ(records->combineTextWith(Value(), "dir", "X", list({"label"})), "");
    EXPECT_EQ(records->combineTextWith(Value(1), "label"), "0335AM,0505AM");
    // A missing field contributes nothing, not a separator.
    EXPECT_EQ(list({node({{"price", "3"}})})->combineTextWith(Value(), list({"label", "price"})), "3");
    EXPECT_EQ(list()->combineTextWith(Value(), list({"label"})), "");
}

TEST(ListRecords, already_used_labels_are_the_parts_before_the_colon) {
    auto records = list({node({{"list", "0335AM:1.0,0505AM:2.0"}}), node({{"other", "x"}}),
                         node({{"list", "plain,,x:1:2"}})});
    EXPECT_EQ(textsOf(records->getAlreadyUsed("list")),
              (std::vector<std::string>{"0335AM", "0505AM", "plain", "x"}));
}

// Catches an unstable insertion sort and exchange sorts that compare the
// wrong way round.
TEST(ListRecords, sorts_by_field) {
    auto records = list({rec("1", "a"), rec("2", "c"), rec("3", "b"), rec("4", "a")});
    EXPECT_EQ(fieldsOf(records->sortArray("f"), "id"), (std::vector<std::string>{"1", "4", "3", "2"}));

    auto temp = records->sortTemp("f", false);
    EXPECT_EQ(fieldsOf(temp, "f"), (std::vector<std::string>{"c", "b", "a", "a"}));
    EXPECT_EQ(fieldsOf(records, "id"), (std::vector<std::string>{"1", "2", "3", "4"})); // untouched
    // Records that moved to the later position of a swap are copies.
    EXPECT_NE(temp->at(3).node(), records->at(0).node());
    EXPECT_TRUE(temp->at(3).node()->equals(*records->at(0).node()) ||
                temp->at(3).node()->equals(*records->at(3).node()));

    records->sort("f", true);
    EXPECT_EQ(fieldsOf(records, "f"), (std::vector<std::string>{"a", "a", "b", "c"}));
    auto empty = list();
    empty->sort("f", true);
    EXPECT_TRUE(empty->empty());

    auto texts = list({"b", "A", "a", "B"});
    EXPECT_EQ(textsOf(texts->sortTextTemp(false)), (std::vector<std::string>{"b", "a", "B", "A"}));
    EXPECT_EQ(texts->sortText(true), texts);
    EXPECT_EQ(textsOf(texts), (std::vector<std::string>{"A", "B", "a", "b"}));

    EXPECT_EQ(texts->findText("B", true), 2);
    EXPECT_EQ(texts->findText("c", true), -1);
    EXPECT_EQ(records->findIdx(Value("a"), "f", true), 2);
    EXPECT_EQ(temp->findIdx(Value("b"), "f", false), 2); // temp is c, b, a, a

    // The exchange sort swaps position i with every later smaller value, so
    // two equal records come out reordered.
    auto equal = list({rec("1", "b"), rec("2", "b"), rec("3", "a")});
    equal->sort("f", true);
    EXPECT_EQ(fieldsOf(equal, "id"), (std::vector<std::string>{"3", "2", "1"}));
}

TEST(ListRecords, keyed_node_names_records_by_position_and_label) {
    auto records = list({node({{"f", "1-Breakfast"}, {"x", "a"}}), node({{"x", "no f"}}),
                         node({{"f", "2-Lunch-Late"}}), node({{"f", "Dinner"}})});
    auto keyed = records->toDictionary("f");
    EXPECT_EQ(keysOf(keyed), (std::vector<std::string>{"A00-Breakfast", "C02-Lunch-Late", "D03-Dinner"}));
    EXPECT_EQ(keysOf(keyed->get("A00-Breakfast").node()), (std::vector<std::string>{"x"}));
    EXPECT_TRUE(records->at(0).node()->has("f")); // records are copied, not changed

    std::vector<Value> many;
    for (int i = 0; i < 30; ++i)
        many.emplace_back(node({{"f", "n-x"}}));
    auto keys = keysOf(List::make(many)->toDictionary("f"));
    EXPECT_EQ(keys[25], "Z25-x");
    EXPECT_EQ(keys[26], "[26-x"); // past Z the character runs on

    // The label is the part after the first separator, or the whole text.
    EXPECT_EQ(records->splitString("1-Breakfast", "-"), "Breakfast");
    EXPECT_EQ(records->splitString("Dinner", "-"), "Dinner");
    EXPECT_EQ(records->splitString("a--b", "-"), "b");
}

TEST(ListRecords, date_stamp_is_hours_minutes_and_three_digit_seconds) {
    for (int attempt = 0; attempt < 3; ++attempt) {
        const std::time_t before = std::time(nullptr);
        const std::string stamp = list()->getDate();
        if (std::time(nullptr) != before) continue; // the second turned; try again
        std::tm local{};
        localtime_r(&before, &local);
        char expected[16];
        std::snprintf(expected, sizeof expected, "%02d%02d0%02d", local.tm_hour, local.tm_min, local.tm_sec);
        EXPECT_EQ(stamp, expected);
        return;
    }
    FAIL() << "the clock kept turning";
}
