#include "Reentrancy.h"

namespace morvane::test {

int randomInt(Random& random, int low, int high) {
    if (high <= low) return low;
    return std::uniform_int_distribution<int>(low, high)(random);
}

bool chance(Random& random, double probability) {
    return std::uniform_real_distribution<double>(0, 1)(random) < probability;
}

gfx::Point randomPointIn(Random& random, const gfx::Rect& rect) {
    std::uniform_real_distribution<double> unit(0, 1);
    return {rect.x + unit(random) * rect.width, rect.y + unit(random) * rect.height};
}

gfx::Point centreOf(const ui::View& view) {
    return view.convertRectTo(view.bounds(), nullptr).center();
}

} // namespace morvane::test
