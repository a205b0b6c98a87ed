#include "Rects.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace morvane::test {

::testing::AssertionResult sameRect(const gfx::Rect& a, const gfx::Rect& b) {
    const double d[] = {a.x - b.x, a.y - b.y, a.width - b.width, a.height - b.height};
    if (std::all_of(std::begin(d), std::end(d), [](double v) { return std::abs(v) < 1e-6; }))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << a.x << "," << a.y << " " << a.width << "x" << a.height << " is not " << b.x << "," << b.y << " "
           << b.width << "x" << b.height;
}

} // namespace morvane::test
