#pragma once
// The list's row sort, on the rows' sort texts alone. Element i takes part
// when keys[i] holds a text; the others keep their places. The result is the
// new order: order[position] is the index of the element that ends there.
//
// exchangeSortOrder is the kit's exchange sort exactly as it has always run
// (quadratic; equal values are never exchanged, which gives equal values an
// order of their own). distinctSortOrder gives the same result in n log n when
// no two taking part are equal (then every correct sort agrees) and nothing
// otherwise. rowSortOrder takes the fast way when it can.

#include <morvane/model/Forward.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::detail {

using SortKeys = std::vector<std::optional<std::string_view>>;

std::vector<std::size_t> exchangeSortOrder(const SortKeys& keys, bool ascend);
std::optional<std::vector<std::size_t>> distinctSortOrder(const SortKeys& keys, bool ascend);
std::vector<std::size_t> rowSortOrder(const SortKeys& keys, bool ascend);

// ---- The row operations the list and the grid share ----------------------------
// True when the list is empty or every element yields a value for the key
// through valKey; stops at the first that does not (hasFld).
bool rowsHaveKey(const ListPtr& list, std::string_view key);
// The kit's exchange sort of the rows by the key's text through valLikeKey:
// only mutable Nodes with such a text take part (sortArray).
void sortRows(const ListPtr& list, std::string_view key, bool ascend);
// The sort a refresh runs: unconfigured (no direction) by "key" ascending;
// otherwise by the first sortBy key every row has, else "key".
void sortRowsForRefresh(const ListPtr& rows, std::optional<bool> ascending,
                        const std::optional<std::vector<std::string>>& sortBy);

} // namespace morvane::detail
