#pragma once
// A 2-D affine transform in the row-vector convention of the platform we stand
// in for: a point (x, y) maps to (a x + c y + tx, b x + d y + ty). A layer's
// 3-D scale (0.7 on all three axes) keeps its z factor in zScale(); drawing is
// flat, so only the 2-D part affects pixels.

#include <morvane/gfx/Geometry.h>

#include <optional>

namespace morvane::gfx {

class Transform {
  public:
    double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

    constexpr Transform() = default;
    constexpr Transform(double a_, double b_, double c_, double d_, double tx_, double ty_)
        : a(a_), b(b_), c(c_), d(d_), tx(tx_), ty(ty_) {}

    static constexpr Transform identity() { return {}; }
    static constexpr Transform translation(double dx, double dy) { return {1, 0, 0, 1, dx, dy}; }
    static constexpr Transform scale(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }
    // A scale on all three axes, as a layer's 3-D transform states it.
    static constexpr Transform scale3D(double sx, double sy, double sz) {
        Transform t{sx, 0, 0, sy, 0, 0};
        t.sz_ = sz;
        return t;
    }
    // Rotation by an angle in radians; positive angles turn clockwise on screen
    // because y grows downwards.
    static Transform rotation(double angle);

    constexpr double zScale() const { return sz_; }
    constexpr bool isIdentity() const { return *this == Transform(); }
    constexpr bool operator==(const Transform&) const = default;

    // This transform followed by the other one.
    constexpr Transform concatenated(const Transform& then) const {
        Transform t{a * then.a + b * then.c,
                    a * then.b + b * then.d,
                    c * then.a + d * then.c,
                    c * then.b + d * then.d,
                    tx * then.a + ty * then.c + then.tx,
                    tx * then.b + ty * then.d + then.ty};
        t.sz_ = sz_ * then.sz_;
        return t;
    }
    // The operation applied before this transform (so in its coordinate space),
    // as when a drawing context is translated, scaled or rotated.
    constexpr Transform translated(double dx, double dy) const {
        return translation(dx, dy).concatenated(*this);
    }
    constexpr Transform scaled(double sx, double sy) const { return scale(sx, sy).concatenated(*this); }
    Transform rotated(double angle) const { return rotation(angle).concatenated(*this); }

    // The inverse; nothing when the transform collapses the plane.
    std::optional<Transform> inverted() const;

    constexpr Point apply(Point p) const { return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty}; }
    // A size maps without the translation (signs may flip under a mirror).
    constexpr Size apply(Size s) const { return {a * s.width + c * s.height, b * s.width + d * s.height}; }
    // The bounding box of the transformed rectangle.
    Rect apply(const Rect& r) const;

  private:
    double sz_ = 1;
};

} // namespace morvane::gfx
