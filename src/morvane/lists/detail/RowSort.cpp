#include <morvane/lists/detail/RowSort.h>

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Text.h>

#include <algorithm>
#include <numeric>

namespace morvane::detail {

std::vector<std::size_t> exchangeSortOrder(const SortKeys& keys, bool ascend) {
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const std::size_t count = order.size();
    if (count < 2) return order;
    for (std::size_t i = 0; i + 1 < count; ++i) {
        if (!keys[order[i]]) continue; // never compared, never moved
        for (std::size_t j = i + 1; j < count; ++j) {
            const auto& b = keys[order[j]];
            if (!b) continue;
            const int relation = compareText(*keys[order[i]], *b);
            if (ascend ? relation > 0 : relation < 0) std::swap(order[i], order[j]);
        }
    }
    return order;
}

std::optional<std::vector<std::size_t>> distinctSortOrder(const SortKeys& keys, bool ascend) {
    std::vector<std::size_t> positions; // where the comparable elements sit
    positions.reserve(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i)
        if (keys[i]) positions.push_back(i);
    std::vector<std::size_t> sorted = positions;
    std::sort(sorted.begin(), sorted.end(), [&keys, ascend](std::size_t a, std::size_t b) {
        const int relation = compareText(*keys[a], *keys[b]);
        return ascend ? relation < 0 : relation > 0;
    });
    for (std::size_t k = 1; k < sorted.size(); ++k)
        if (compareText(*keys[sorted[k - 1]], *keys[sorted[k]]) == 0) return std::nullopt;
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    for (std::size_t k = 0; k < positions.size(); ++k)
        order[positions[k]] = sorted[k];
    return order;
}

std::vector<std::size_t> rowSortOrder(const SortKeys& keys, bool ascend) {
    if (auto fast = distinctSortOrder(keys, ascend)) return std::move(*fast);
    return exchangeSortOrder(keys, ascend);
}

bool rowsHaveKey(const ListPtr& list, std::string_view key) {
    if (!list) return true;
    for (const Value& element : *list) {
        const NodePtr& node = element.node();
        if (!node || !node->valKey(key)) return false;
    }
    return true;
}

void sortRows(const ListPtr& list, std::string_view key, bool ascend) {
    if (!list || list->size() < 2 || list->isReadOnly()) return;
    const List& items = *list;
    // The values never change while the rows move, so each row is searched once.
    std::vector<Value> found(items.size());
    SortKeys keys(items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        const NodePtr& node = items[i].node();
        if (!node || node->isReadOnly()) continue;
        found[i] = node->valLikeKey(key);
        if (const std::string* text = found[i].text()) keys[i] = *text;
    }
    const std::vector<std::size_t> order = rowSortOrder(keys, ascend);
    std::vector<Value> sorted;
    sorted.reserve(items.size());
    for (std::size_t index : order)
        sorted.push_back(items[index]);
    list->clear();
    for (Value& row : sorted)
        list->push(std::move(row));
}

void sortRowsForRefresh(const ListPtr& rows, std::optional<bool> ascending,
                        const std::optional<std::vector<std::string>>& sortBy) {
    if (!ascending) {
        // Never configured: the rows' own keys order them.
        sortRows(rows, "key", true);
        return;
    }
    std::string_view key = "key";
    if (sortBy) {
        for (const std::string& candidate : *sortBy) {
            if (rowsHaveKey(rows, candidate)) {
                key = candidate;
                break;
            }
        }
    }
    sortRows(rows, key, *ascending);
}

} // namespace morvane::detail
