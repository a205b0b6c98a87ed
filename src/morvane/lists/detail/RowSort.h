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

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace morvane::detail {

using SortKeys = std::vector<std::optional<std::string_view>>;

std::vector<std::size_t> exchangeSortOrder(const SortKeys& keys, bool ascend);
std::optional<std::vector<std::size_t>> distinctSortOrder(const SortKeys& keys, bool ascend);
std::vector<std::size_t> rowSortOrder(const SortKeys& keys, bool ascend);

} // namespace morvane::detail
