#pragma once
// A vector path in points: lines, Bézier curves, arcs, rectangles, rounded
// rectangles and ellipses, kept as a list of elements that a Canvas replays.
// Angles are in radians; on the y-down screen, increasing angles turn clockwise.

#include <morvane/gfx/Geometry.h>

#include <vector>

namespace morvane::gfx {

enum class ArcDirection { Clockwise, CounterClockwise };

class Path {
  public:
    enum class Kind { Move, Line, Curve, Arc, Close };
    struct Element {
        Kind kind;
        // Move/Line: the point in 0-1. Curve: two control points and the end.
        // Arc: centre x, y, radius, start angle, end angle, and 1 for clockwise.
        double values[6];
    };

    static Path rect(const Rect& r);
    // The corner radius is limited to half the shorter side (a pill or a circle at most).
    static Path roundedRect(const Rect& r, double cornerRadius);
    static Path ellipse(const Rect& r);
    static Path circle(Point center, double radius);

    void moveTo(Point p);
    void lineTo(Point p);
    void curveTo(Point control1, Point control2, Point end);
    void quadCurveTo(Point control, Point end);
    void addArc(Point center, double radius, double startAngle, double endAngle, ArcDirection direction);
    void addRect(const Rect& r);
    void addRoundedRect(const Rect& r, double cornerRadius);
    void addEllipse(const Rect& r);
    void close();

    bool isEmpty() const { return elements_.empty(); }
    const std::vector<Element>& elements() const { return elements_; }
    // A box holding every point and control point (arcs count by their full circle).
    Rect bounds() const;

  private:
    std::vector<Element> elements_;
    Point current_;
};

} // namespace morvane::gfx
