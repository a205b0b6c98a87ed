#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Transform.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace morvane::gfx;

namespace {

void expectNear(Point p, Point q) {
    EXPECT_NEAR(p.x, q.x, 1e-9);
    EXPECT_NEAR(p.y, q.y, 1e-9);
}

} // namespace

// Frames computed from fractions must keep the exact double values the layouts
// produce; a float somewhere in the chain would lose them.
TEST(Geometry, frames_keep_exact_double_values) {
    Rect frame{109.6, 125.76, 142.8, 47.6};
    EXPECT_EQ(frame.maxX(), 109.6 + 142.8);
    EXPECT_EQ(frame.offsetBy(0.1, 0.2).origin(), (Point{109.6 + 0.1, 125.76 + 0.2}));
    EXPECT_EQ(frame.size(), (Size{142.8, 47.6}));
}

// Intersection and union: every piece lies inside both (or holds both), and
// disjoint or empty rectangles do not pretend to overlap.
TEST(Geometry, intersection_and_union_respect_containment) {
    Rect a{0, 0, 100, 50};
    Rect b{60, 20, 100, 100};
    Rect common = a.intersection(b);
    EXPECT_EQ(common, (Rect{60, 20, 40, 30}));
    EXPECT_TRUE(a.contains(common));
    EXPECT_TRUE(b.contains(common));
    EXPECT_EQ(common, b.intersection(a));

    Rect both = a.united(b);
    EXPECT_TRUE(both.contains(a));
    EXPECT_TRUE(both.contains(b));
    EXPECT_EQ(both.area(), 160.0 * 120.0) << "united is the tightest box";

    EXPECT_TRUE(a.intersection(Rect{100, 0, 10, 10}).isEmpty()) << "touching edges do not overlap";
    EXPECT_FALSE(a.intersects(Rect{100, 0, 10, 10}));
    EXPECT_EQ(a.united(Rect{}), a) << "an empty rectangle adds nothing";
    EXPECT_TRUE(Rect(0, 0, -5, 10).isEmpty());
}

// Half-open containment: a point on the shared edge of two neighbours belongs
// to exactly one of them (hit testing relies on it).
TEST(Geometry, neighbouring_rectangles_share_no_point) {
    Rect left{0, 0, 50, 50};
    Rect right{50, 0, 50, 50};
    for (double y : {0.0, 25.0, 49.999}) {
        Point p{50, y};
        EXPECT_NE(left.contains(p), right.contains(p));
    }
    EXPECT_FALSE(left.contains(Point{0, 50}));
    EXPECT_FALSE(Rect(0, 0, 0, 10).contains(Point{0, 0})) << "an empty rectangle holds nothing";
}

TEST(Geometry, insets_and_negative_sizes_standardize) {
    Rect r{10, 20, 100, 40};
    EXPECT_EQ(r.inset(Insets{2.5, 5, 2.5, 5}), r.insetBy(5, 2.5));
    EXPECT_EQ(r.insetBy(-5, -5).insetBy(5, 5), r);
    Rect flipped{110, 60, -100, -40};
    EXPECT_EQ(flipped.standardized(), r);
    EXPECT_EQ(flipped.minX(), 10);
    EXPECT_EQ(flipped.maxY(), 60);
    EXPECT_EQ(Rect(0.2, 0.7, 10.1, 1).integral(), Rect(0, 0, 11, 2));
}

// Transforms: composition order, inverse, and the rectangle bounding box.
TEST(Transform, composition_follows_the_drawing_context_order) {
    // Translating a context and then scaling it: a point is scaled first, then moved.
    Transform t = Transform::identity().translated(10, 20).scaled(2, 3);
    EXPECT_EQ(t.apply(Point{1, 1}), (Point{12, 23}));
    // The same as the explicit concatenation scale-then-translation.
    EXPECT_EQ(t, Transform::scale(2, 3).concatenated(Transform::translation(10, 20)));

    Transform r = Transform::rotation(std::numbers::pi / 2);
    expectNear(r.apply(Point{1, 0}), Point{0, 1}); // clockwise on a y-down screen

    Transform any = Transform::rotation(0.3).translated(5, -7).scaled(1.5, 0.5);
    auto inverse = any.inverted();
    ASSERT_TRUE(inverse.has_value());
    for (Point p : {Point{0, 0}, Point{3.5, -2}, Point{100, 40}})
        expectNear(inverse->apply(any.apply(p)), p);
    EXPECT_FALSE(Transform::scale(0, 1).inverted().has_value()) << "a collapsed plane has no inverse";

    Rect box = Transform::rotation(std::numbers::pi / 4).apply(Rect{0, 0, 2, 2});
    EXPECT_NEAR(box.width, 2 * std::sqrt(2.0), 1e-9);
    EXPECT_NEAR(box.height, 2 * std::sqrt(2.0), 1e-9);
}

TEST(Transform, three_axis_scale_keeps_its_depth_factor) {
    Transform t = Transform::scale3D(0.7, 0.7, 0.7);
    EXPECT_EQ(t.zScale(), 0.7);
    EXPECT_EQ(t.apply(Size{10, 20}), (Size{7, 14}));
    EXPECT_DOUBLE_EQ(t.concatenated(t).zScale(), 0.49);
    EXPECT_FALSE(t.isIdentity());
    Transform back = t.concatenated(*t.inverted());
    EXPECT_NEAR(back.a, 1, 1e-12);
    EXPECT_NEAR(back.zScale(), 1, 1e-12);
}

// Named colours carry the platform's values; greys report their level in all
// three components; arithmetic is not clamped until asked.
TEST(Color, named_colours_and_unclamped_arithmetic) {
    EXPECT_EQ(Color::brownColor(), (Color{0.6, 0.4, 0.2, 1}));
    EXPECT_EQ(Color::lightGrayColor().red, 2.0 / 3.0);
    EXPECT_EQ(Color::lightGrayColor().blue, Color::lightGrayColor().green);
    EXPECT_EQ(Color::lightTextColor(), Color::gray(1, 0.6));
    EXPECT_EQ(Color::clearColor().alpha, 0);

    Color dark{0.05, 0.5, 1, 1};
    Color darker{dark.red - 0.1, dark.green - 0.1, dark.blue - 0.1, 1};
    EXPECT_LT(darker.red, 0) << "components are not clamped by arithmetic";
    EXPECT_EQ(darker.clamped().red, 0);
    EXPECT_EQ(Color::toByte(darker.red), 0);
    EXPECT_EQ(Color::toByte(1.7), 255);

    Color mid = Color::blackColor().mixed(Color::whiteColor(), 0.5);
    EXPECT_TRUE(mid.isClose(Color::grayColor(), 1e-12));
    EXPECT_FALSE(mid.isClose(Color::gray(0.62), 0.1));
    EXPECT_TRUE(mid.isClose(Color::gray(0.6), 0.1));
    for (int byte : {0, 1, 127, 128, 254, 255})
        EXPECT_EQ(Color::toByte(Color::fromBytes(0, 0, static_cast<std::uint8_t>(byte)).blue), byte);
}
