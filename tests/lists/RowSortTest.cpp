// The row sort's fast path must give exactly what the kit's exchange sort
// gives. The reference follows the exchange sort step by step on the rows
// themselves, searching each pair afresh, as the kit always has.
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
            const NodePtr &a = items[i].node(), &b = items[j].node();
            if (!a || !b || a->isReadOnly() || b->isReadOnly()) continue;
            const Value va = a->valLikeKey(key), vb = b->valLikeKey(key);
            if (!va || !vb) continue;
            const int relation = detail::compareText(va.textOr(), vb.textOr());
            if (ascend ? relation > 0 : relation < 0) std::swap(items[i], items[j]);
        }
    }
}

// Rows with distinct sort values or values from a small alphabet, mixed with
// texts, keyless, read-only, nested-key and like-key rows.
ListPtr randomRows(std::mt19937& random, std::size_t count, bool distinct) {
    auto rows = List::make();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string id = "row" + std::to_string(i);
        const std::string v = "v" + std::to_string(distinct ? i * 7919 % 100003 : random() % 4);
        switch (random() % 10) {
        case 0:
            rows->push(Value(id));
            break;
        case 1:
            rows->push(Node::make({{"id", id}}));
            break;
        case 2: {
            auto frozen = Node::make({{"id", id}, {"rank", v}});
            frozen->setReadOnly(true);
            rows->push(frozen);
        } break;
        case 3:
            rows->push(Node::make({{"id", id}, {"in", Node::make({{"rank", v}})}}));
            break;
        case 4:
            rows->push(Node::make({{"id", id}, {"ranking", v + "x"}}));
            break;
        default:
            rows->push(Node::make({{"id", id}, {"rank", v}}));
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

// The list's sort against the reference, both directions, with and without
// repeated values (the fast path and the exact fallback).
TEST(RowSort, ListSortMatchesTheExchangeSortExactly) {
    std::mt19937 random(20240501);
    auto list = std::make_shared<UITbl>();
    for (int round = 0; round < 40; ++round) {
        for (bool ascend : {true, false}) {
            auto rows = randomRows(random, 1 + std::size_t(round * 7 % 120), round % 2 == 0);
            auto expected = rows->shallowCopy();
            referenceExchangeSort(*expected, "rank", ascend);
            list->sortArray(rows, "rank", ascend);
            ASSERT_EQ(ids(*rows), ids(*expected)) << round << ascend;
        }
    }
}

// The fast path answers only when no two values are equal, and then agrees
// with the exchange sort, also for texts beyond the basic plane.
TEST(RowSort, FastPathOnlyForDistinctValues) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        std::vector<std::string> texts{"\xef\xbd\xa1", "\xf0\x9f\x98\x80"}; // U+FF61 sorts after U+1F600
        for (int i = 0; i < 2 + round * 5; ++i)
            texts.push_back(std::to_string(random() % (round % 3 ? 999999 : 5)));
        detail::SortKeys keys;
        for (const auto& text : texts) {
            if (random() % 4 == 0) keys.push_back(std::nullopt);
            keys.push_back(std::string_view(text));
        }
        auto sorted = texts; // the keys view into texts: sort a copy
        std::sort(sorted.begin(), sorted.end());
        const bool repeats = std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
        for (bool ascend : {true, false}) {
            const auto exact = detail::exchangeSortOrder(keys, ascend);
            const auto fast = detail::distinctSortOrder(keys, ascend);
            EXPECT_EQ(fast.has_value(), !repeats) << round;
            EXPECT_EQ(fast.value_or(exact), exact) << round;
        }
    }
    // Equal values keep the exchange sort's own order: the later smaller value
    // swaps the first "2" past the second.
    EXPECT_EQ(detail::rowSortOrder({"2", "2", "1"}, true), (std::vector<std::size_t>{2, 1, 0}));
}
