#pragma once
// The place of a row in a table (section and row) or of an item in a grid
// (section and item, the same number as the row).

#include <compare>

namespace morvane::ui {

struct IndexPath {
    int section = 0;
    int row = 0;

    static constexpr IndexPath forRow(int row, int section = 0) { return {section, row}; }
    static constexpr IndexPath forItem(int item, int section = 0) { return {section, item}; }
    constexpr int item() const { return row; }
    constexpr auto operator<=>(const IndexPath&) const = default;
};

} // namespace morvane::ui
