#include <morvane/gfx/Path.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace morvane::gfx {

Path Path::rect(const Rect& r) {
    Path p;
    p.addRect(r);
    return p;
}

Path Path::roundedRect(const Rect& r, double cornerRadius) {
    Path p;
    p.addRoundedRect(r, cornerRadius);
    return p;
}

Path Path::ellipse(const Rect& r) {
    Path p;
    p.addEllipse(r);
    return p;
}

Path Path::circle(Point center, double radius) {
    return ellipse(Rect{center.x - radius, center.y - radius, 2 * radius, 2 * radius});
}

void Path::moveTo(Point p) {
    elements_.push_back({Kind::Move, {p.x, p.y, 0, 0, 0, 0}});
    current_ = p;
}

void Path::lineTo(Point p) {
    if (elements_.empty()) return moveTo(p);
    elements_.push_back({Kind::Line, {p.x, p.y, 0, 0, 0, 0}});
    current_ = p;
}

void Path::curveTo(Point c1, Point c2, Point end) {
    if (elements_.empty()) moveTo(c1);
    elements_.push_back({Kind::Curve, {c1.x, c1.y, c2.x, c2.y, end.x, end.y}});
    current_ = end;
}

void Path::quadCurveTo(Point control, Point end) {
    // A quadratic curve is the cubic with control points two thirds of the way
    // from each end towards the quadratic's control point.
    Point start = current_;
    Point c1 = start + (control - start) * (2.0 / 3.0);
    Point c2 = end + (control - end) * (2.0 / 3.0);
    curveTo(c1, c2, end);
}

void Path::addArc(Point center, double radius, double startAngle, double endAngle, ArcDirection direction) {
    if (!(radius > 0)) return;
    elements_.push_back({Kind::Arc,
                         {center.x, center.y, radius, startAngle, endAngle,
                          direction == ArcDirection::Clockwise ? 1.0 : 0.0}});
    current_ = {center.x + radius * std::cos(endAngle), center.y + radius * std::sin(endAngle)};
}

void Path::addRect(const Rect& r) {
    moveTo({r.x, r.y});
    lineTo({r.x + r.width, r.y});
    lineTo({r.x + r.width, r.y + r.height});
    lineTo({r.x, r.y + r.height});
    close();
}

void Path::addRoundedRect(const Rect& rect, double cornerRadius) {
    Rect r = rect.standardized();
    double radius = std::clamp(cornerRadius, 0.0, std::min(r.width, r.height) / 2);
    if (!(radius > 0)) return addRect(r);
    constexpr double pi = std::numbers::pi;
    moveTo({r.x + radius, r.y});
    addArc({r.maxX() - radius, r.y + radius}, radius, -pi / 2, 0, ArcDirection::Clockwise);
    addArc({r.maxX() - radius, r.maxY() - radius}, radius, 0, pi / 2, ArcDirection::Clockwise);
    addArc({r.x + radius, r.maxY() - radius}, radius, pi / 2, pi, ArcDirection::Clockwise);
    addArc({r.x + radius, r.y + radius}, radius, pi, 3 * pi / 2, ArcDirection::Clockwise);
    close();
}

void Path::addEllipse(const Rect& rect) {
    Rect r = rect.standardized();
    if (r.isEmpty()) return;
    // Four cubic quarters; kappa puts the control points where a circle's
    // quarter is matched best.
    constexpr double kappa = 0.5522847498307936;
    double rx = r.width / 2, ry = r.height / 2, cx = r.midX(), cy = r.midY();
    moveTo({cx + rx, cy});
    curveTo({cx + rx, cy + ry * kappa}, {cx + rx * kappa, cy + ry}, {cx, cy + ry});
    curveTo({cx - rx * kappa, cy + ry}, {cx - rx, cy + ry * kappa}, {cx - rx, cy});
    curveTo({cx - rx, cy - ry * kappa}, {cx - rx * kappa, cy - ry}, {cx, cy - ry});
    curveTo({cx + rx * kappa, cy - ry}, {cx + rx, cy - ry * kappa}, {cx + rx, cy});
    close();
}

void Path::close() {
    if (!elements_.empty()) elements_.push_back({Kind::Close, {0, 0, 0, 0, 0, 0}});
}

Rect Path::bounds() const {
    bool any = false;
    double left = 0, top = 0, right = 0, bottom = 0;
    auto add = [&](double x, double y) {
        if (!any) {
            left = right = x, top = bottom = y, any = true;
            return;
        }
        left = std::min(left, x), right = std::max(right, x);
        top = std::min(top, y), bottom = std::max(bottom, y);
    };
    for (const Element& e : elements_) {
        switch (e.kind) {
        case Kind::Move:
        case Kind::Line:
            add(e.values[0], e.values[1]);
            break;
        case Kind::Curve:
            for (int i = 0; i < 6; i += 2)
                add(e.values[i], e.values[i + 1]);
            break;
        case Kind::Arc:
            add(e.values[0] - e.values[2], e.values[1] - e.values[2]);
            add(e.values[0] + e.values[2], e.values[1] + e.values[2]);
            break;
        case Kind::Close:
            break;
        }
    }
    return any ? Rect{left, top, right - left, bottom - top} : Rect{};
}

} // namespace morvane::gfx
