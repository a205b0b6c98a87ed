#include <morvane/lists/detail/RowSort.h>

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

} // namespace morvane::detail
