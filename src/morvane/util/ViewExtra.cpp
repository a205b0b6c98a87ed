#include <morvane/util/ViewExtra.h>

namespace morvane {

double ViewExtra::yPos(const gfx::Rect& rect, double by) {
    const double bottom = rect.y + rect.height;
    if (by >= 0 && by < 10) return bottom + rect.height * by;
    return bottom + by;
}

gfx::Rect ViewExtra::advanceV(const gfx::Rect& rect, double offset) {
    return {rect.x, rect.y + rect.height + offset, rect.width, rect.height};
}

} // namespace morvane
