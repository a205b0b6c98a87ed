// The row sort's fast path must give exactly what the kit's exchange sort
// gives. The reference here follows the exchange sort step by step on the
// rows themselves, searching each pair afresh, as the kit always has.
#include <morvane/lists/UITbl.h>
#include <morvane/lists/detail/RowSort.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Text.h>

#include <gtest/gtest.h>

#include <random>

using namespace morvane;

namespace {

void referenceExchangeSort(List& list, std::string_view key, bool ascend) {
    auto& items = list.items();
    for (std::size_t i = 0; i + 1 < items.size(); ++i) {
        for (std::size_t j = i + 1; j < items.size(); ++j) {
            const NodePtr& a = items[i].node();
            const NodePtr& b = items[j].node();
            if (!a || !b || a->isReadOnly() || b->isReadOnly()) continue;
            const Value va = a->valLikeKey(key);
            const Value vb = b->valLikeKey(key);
            if (!va || !vb) continue;
            const int relation = detail::compareText(va.textOr(), vb.textOr());
            if (ascend ? relation > 0 : relation < 0) std::swap(items[i], items[j]);
        }
    }
}

// Rows with sort values drawn from `alphabet` distinct texts (few: many
// duplicates; many: almost none), with texts, keyless, nested-key and
// read-only rows mixed in.
ListPtr randomRows(std::mt19937& random, std::size_t count, int alphabet, bool distinct) {
    auto rows = List::make();
    std::uniform_int_distribution<int> kind(0, 9);
    std::uniform_int_distribution<int> value(0, alphabet - 1);
    for (std::size_t i = 0; i < count; ++i) {
        const std::string id = "row" + std::to_string(i);
        const std::string v =
            distinct ? "v" + std::to_string(i * 7919 % 100003) : "v" + std::to_string(value(random));
        switch (kind(random)) {
        case 0:
            rows->push(Value("text " + id));
            break;
        case 1:
            rows->push(Node::make({{"id", id}}));
            break;
        case 2: {
            auto frozen = Node::make({{"id", id}, {"rank", v}});
            frozen->setReadOnly(true);
            rows->push(frozen);
            break;
        }
        case 3:
            rows->push(Node::make({{"id", id}, {"inner", Node::make({{"rank", v}})}}));
            break;
        case 4:
            rows->push(Node::make({{"id", id}, {"ranking", v + "x"}}));
            break; // found by likeness
        default:
            rows->push(Node::make({{"id", id}, {"rank", v}}));
            break;
        }
    }
    return rows;
}

std::vector<std::string> ids(const List& rows) {
    std::vector<std::string> out;
    for (const Value& row : rows)
        out.push_back(row.node() ? row.node()->get("id").textOr() : row.textOr());
    return out;
}

} // namespace

// The list's sort against the reference, both directions, on rows with and
// without duplicate values.
TEST(RowSort, ListSortMatchesTheExchangeSortExactly) {
    std::mt19937 random(20240501);
    auto list = std::make_shared<UITbl>();
    for (int round = 0; round < 40; ++round) {
        const bool distinct = round % 2 == 0;
        const std::size_t count = 1 + std::size_t(round * 7 % 120);
        const int alphabet = round % 4 == 1 ? 3 : 40;
        for (bool ascend : {true, false}) {
            auto rows = randomRows(random, count, alphabet, distinct);
            auto expected = rows->shallowCopy();
            referenceExchangeSort(*expected, "rank", ascend);
            list->sortArray(rows, "rank", ascend);
            ASSERT_EQ(ids(*rows), ids(*expected))
                << "round " << round << (ascend ? " ascending" : " descending");
        }
    }
}

// The fast path answers exactly when no two values are equal, and then
// agrees with the exchange sort; texts outside the basic plane order by
// UTF-16 code unit in both.
TEST(RowSort, FastPathOnlyForDistinctValuesAndThenIdentical) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        std::vector<std::string> texts;
        const int count = 2 + round * 5;
        for (int i = 0; i < count; ++i)
            texts.push_back(std::to_string(random() % (round % 3 == 0 ? 5u : 1000000u)));
        if (round % 5 == 0) {
            texts.push_back("\xef\xbd\xa1");     // U+FF61, above the surrogates in UTF-16
            texts.push_back("\xf0\x9f\x98\x80"); // U+1F600, a surrogate pair: sorts first
        }
        detail::SortKeys keys;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            if (random() % 4 == 0) keys.push_back(std::nullopt);
            keys.push_back(std::string_view(texts[i]));
        }
        for (bool ascend : {true, false}) {
            const auto exact = detail::exchangeSortOrder(keys, ascend);
            const auto fast = detail::distinctSortOrder(keys, ascend);
            std::vector<std::string_view> present;
            for (const auto& k : keys)
                if (k) present.push_back(*k);
            std::sort(present.begin(), present.end());
            const bool hasDuplicates = std::adjacent_find(present.begin(), present.end()) != present.end();
            EXPECT_EQ(fast.has_value(), !hasDuplicates) << round;
            if (fast) {
                EXPECT_EQ(*fast, exact) << round;
            }
            EXPECT_EQ(detail::rowSortOrder(keys, ascend), exact) << round;
        }
    }
    // The exchange sort's own order of equal values: a later smaller value
    // swaps the first of two equal ones past the second.
    const detail::SortKeys equal = {"2", "2", "1"};
    EXPECT_EQ(detail::exchangeSortOrder(equal, true), (std::vector<std::size_t>{2, 1, 0}));
    EXPECT_EQ(detail::rowSortOrder(equal, true), (std::vector<std::size_t>{2, 1, 0}));
}
