// The row sort's fast path must give exactly what the kit's exchange sort
// gives. The reference follows the exchange sort step by step on the rows
// themselves, searching each pair afresh, as the kit always has.
#include <morvane/lists/UITbl.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Text.h>

#include <gtest/gtest.h>

#include <random>

using namespace morvane;

namespace {

void referenceExchangeSort(List& list, std::string_view key, bool ascend) {
    const List& items = list;
    for (std::size_t i = 0; i + 1 < items.size(); ++i) {
        for (std::size_t j = i + 1; j < items.size(); ++j) {
            const NodePtr &a = items[i].node(), &b = items[j].node();
            if (!a || !b || a->isReadOnly() || b->isReadOnly()) continue;
            const Value va = a->valLikeKey(key), vb = b->valLikeKey(key);
            if (!va || !vb) continue;
            const int relation = detail::compareText(va.textOr(), vb.textOr());
            if (ascend ? relation > 0 : relation < 0) {
                const Value first = items[i];
                list.replace(i, items[j]);
                list.replace(j, first);
            }
        }
    }
}

// Rows with distinct sort values or values from a small alphabet (some beyond
// the basic plane), mixed with texts, keyless, read-only, nested-key and
// like-key rows.
ListPtr randomRows(std::mt19937& random, std::size_t count, bool distinct) {
    auto rows = List::make();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string id = "row" + std::to_string(i);
        // U+FF61 sorts after U+1F600 as the kit compares texts.
        const char* prefix[] = {"", "\xef\xbd\xa1", "\xf0\x9f\x98\x80"};
        const std::string v =
            prefix[random() % 3] + ("v" + std::to_string(distinct ? i * 7919 % 100003 : random() % 4));
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
// repeated values: the fast path must answer only when no two values are
// equal, or the exchange sort's own order among equal values is lost.
TEST(RowSort, list_sort_matches_the_exchange_sort_exactly) {
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
