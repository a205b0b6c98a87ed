#pragma once
// Which rows of a vertical run lie in a viewport: a pure computation on the
// rows' running tops and heights, kept apart from the cells so it can be
// checked on its own.

#include <algorithm>
#include <cstddef>
#include <vector>

namespace morvane::ui::detail {

struct RowRun {
    std::size_t first = 0;
    std::size_t end = 0; // one past the last
};

// The rows from the first one ending below `top` to the last one starting
// above `bottom`. `tops` is ascending; a row of height 0 at the edge is out.
// A binary search each way, however many rows there are.
inline RowRun visibleRows(const std::vector<double>& tops, const std::vector<double>& heights, double top,
                          double bottom) {
    std::size_t first = std::size_t(std::upper_bound(tops.begin(), tops.end(), top) - tops.begin());
    if (first > 0) --first;
    while (first < tops.size() && tops[first] + heights[first] <= top)
        ++first;
    std::size_t end = std::size_t(std::lower_bound(tops.begin(), tops.end(), bottom) - tops.begin());
    return {first, std::max(first, end)};
}

} // namespace morvane::ui::detail
