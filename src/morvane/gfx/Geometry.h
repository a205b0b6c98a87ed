#pragma once
// The geometry value types: Point, Size, Rect and Insets, in points, with exact
// double arithmetic (a frame of (109.6, 125.76, 142.8, 47.6) stays exactly that).
// Rectangles have their origin at the top-left and grow right and down.

#include <algorithm>
#include <cmath>

namespace morvane::gfx {

struct Point {
    double x = 0;
    double y = 0;

    constexpr Point() = default;
    constexpr Point(double x_, double y_) : x(x_), y(y_) {}

    constexpr Point operator+(Point other) const { return {x + other.x, y + other.y}; }
    constexpr Point operator-(Point other) const { return {x - other.x, y - other.y}; }
    constexpr Point operator*(double factor) const { return {x * factor, y * factor}; }
    constexpr Point& operator+=(Point other) { return *this = *this + other; }
    constexpr Point& operator-=(Point other) { return *this = *this - other; }
    constexpr bool operator==(const Point&) const = default;

    // Euclidean distance to another point.
    double distanceTo(Point other) const { return std::hypot(x - other.x, y - other.y); }
};

struct Size {
    double width = 0;
    double height = 0;

    constexpr Size() = default;
    constexpr Size(double width_, double height_) : width(width_), height(height_) {}

    constexpr Size operator*(double factor) const { return {width * factor, height * factor}; }
    constexpr bool operator==(const Size&) const = default;

    // True when either side is zero or negative: nothing can be drawn in it.
    constexpr bool isEmpty() const { return !(width > 0) || !(height > 0); }
    constexpr double area() const { return isEmpty() ? 0 : width * height; }
    // Width divided by height; 0 for an empty size.
    constexpr double aspectRatio() const { return isEmpty() ? 0 : width / height; }
};

// Space taken from each side of a rectangle.
struct Insets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;

    constexpr Insets() = default;
    constexpr Insets(double top_, double left_, double bottom_, double right_)
        : top(top_), left(left_), bottom(bottom_), right(right_) {}
    static constexpr Insets uniform(double inset) { return {inset, inset, inset, inset}; }

    constexpr bool operator==(const Insets&) const = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    constexpr Rect() = default;
    constexpr Rect(double x_, double y_, double width_, double height_)
        : x(x_), y(y_), width(width_), height(height_) {}
    constexpr Rect(Point origin, Size size)
        : x(origin.x), y(origin.y), width(size.width), height(size.height) {}

    constexpr Point origin() const { return {x, y}; }
    constexpr Size size() const { return {width, height}; }
    constexpr bool operator==(const Rect&) const = default;

    constexpr double minX() const { return std::min(x, x + width); }
    constexpr double minY() const { return std::min(y, y + height); }
    constexpr double maxX() const { return std::max(x, x + width); }
    constexpr double maxY() const { return std::max(y, y + height); }
    constexpr double midX() const { return x + width / 2; }
    constexpr double midY() const { return y + height / 2; }
    constexpr Point center() const { return {midX(), midY()}; }

    constexpr bool isEmpty() const { return size().isEmpty(); }
    constexpr double area() const { return size().area(); }

    // The same rectangle with a non-negative width and height.
    constexpr Rect standardized() const { return {minX(), minY(), maxX() - minX(), maxY() - minY()}; }

    // Half-open: the left and top edges belong to the rectangle, the right and
    // bottom edges do not, so neighbouring rectangles never both contain a point.
    constexpr bool contains(Point p) const {
        return !isEmpty() && p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
    }
    constexpr bool contains(const Rect& other) const {
        return !isEmpty() && !other.isEmpty() && other.minX() >= minX() && other.maxX() <= maxX() &&
               other.minY() >= minY() && other.maxY() <= maxY();
    }
    constexpr bool intersects(const Rect& other) const { return !intersection(other).isEmpty(); }

    // The common part; an empty rectangle (all zero) when there is none.
    constexpr Rect intersection(const Rect& other) const {
        double left = std::max(minX(), other.minX());
        double top = std::max(minY(), other.minY());
        double right = std::min(maxX(), other.maxX());
        double bottom = std::min(maxY(), other.maxY());
        if (isEmpty() || other.isEmpty() || right <= left || bottom <= top) return {};
        return {left, top, right - left, bottom - top};
    }
    // The smallest rectangle holding both; an empty rectangle does not count.
    constexpr Rect united(const Rect& other) const {
        if (isEmpty()) return other.standardized();
        if (other.isEmpty()) return standardized();
        double left = std::min(minX(), other.minX());
        double top = std::min(minY(), other.minY());
        return {left, top, std::max(maxX(), other.maxX()) - left, std::max(maxY(), other.maxY()) - top};
    }

    // Shrinks by dx on the left and right and dy on the top and bottom (grows
    // for negative values).
    constexpr Rect insetBy(double dx, double dy) const {
        return {x + dx, y + dy, width - 2 * dx, height - 2 * dy};
    }
    constexpr Rect inset(const Insets& in) const {
        return {x + in.left, y + in.top, width - in.left - in.right, height - in.top - in.bottom};
    }
    constexpr Rect offsetBy(double dx, double dy) const { return {x + dx, y + dy, width, height}; }

    // The smallest rectangle with whole-number edges that holds this one
    // (pixel-aligned damage areas and cached bitmaps use it).
    Rect integral() const {
        Rect r = standardized();
        double left = std::floor(r.x);
        double top = std::floor(r.y);
        return {left, top, std::ceil(r.x + r.width) - left, std::ceil(r.y + r.height) - top};
    }
};

} // namespace morvane::gfx
