#include <morvane/gfx/Transform.h>

#include <algorithm>
#include <cmath>

namespace morvane::gfx {

Transform Transform::rotation(double angle) {
    double cosine = std::cos(angle);
    double sine = std::sin(angle);
    return {cosine, sine, -sine, cosine, 0, 0};
}

std::optional<Transform> Transform::inverted() const {
    double determinant = a * d - b * c;
    if (determinant == 0 || !std::isfinite(determinant) || sz_ == 0) return std::nullopt;
    Transform inverse{d / determinant,
                      -b / determinant,
                      -c / determinant,
                      a / determinant,
                      (c * ty - d * tx) / determinant,
                      (b * tx - a * ty) / determinant};
    inverse.sz_ = 1 / sz_;
    return inverse;
}

Rect Transform::apply(const Rect& r) const {
    Rect s = r.standardized();
    Point corners[] = {apply(Point{s.minX(), s.minY()}), apply(Point{s.maxX(), s.minY()}),
                       apply(Point{s.minX(), s.maxY()}), apply(Point{s.maxX(), s.maxY()})};
    double left = corners[0].x, right = corners[0].x, top = corners[0].y, bottom = corners[0].y;
    for (const Point& p : corners) {
        left = std::min(left, p.x);
        right = std::max(right, p.x);
        top = std::min(top, p.y);
        bottom = std::max(bottom, p.y);
    }
    return {left, top, right - left, bottom - top};
}

} // namespace morvane::gfx
