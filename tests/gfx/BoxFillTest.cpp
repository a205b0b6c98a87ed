// Rectangles, rounded rectangles and their outlines are filled straight into
// the pixels at scales 2 and 3. Inside a transparency layer the same shapes go
// through Cairo's general path filler, so drawing a scene both ways must give
// the same picture up to antialiasing differences.

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/ImageContext.h>

#include <Snapshot.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

using namespace morvane::gfx;

namespace {

void scene(Canvas& canvas) {
    canvas.fillRect(Rect{0, 0, 120, 90}, Color::gray(0.9));
    // Fractional edges, translucent colours, corners from none to a pill and
    // beyond half the shorter side.
    canvas.fillRect(Rect{3.3, 4.7, 20.15, 9.9}, Color(0.8, 0.1, 0.2));
    canvas.fillRoundedRect(Rect{26.1, 2.2, 30, 18.4}, 4, Color(0.2, 0.4, 0.8, 0.35));
    canvas.fillRoundedRect(Rect{60.4, 3.05, 40, 10}, 5, Color(0.1, 0.6, 0.3));
    canvas.fillRoundedRect(Rect{104.2, 2.5, 12, 12}, 40, Color(0.9, 0.6, 0.1, 0.8));
    canvas.fillRoundedRect(Rect{5.5, 20.5, 3.9, 16.1}, 2, Color(0.5, 0.2, 0.7));
    // Outlines: square and round corners, hairline to thick, a filled-in one.
    canvas.strokeRect(Rect{12.25, 22.25, 20.5, 12.5}, Color::darkGrayColor(), 0.5);
    canvas.strokeRoundedRect(Rect{36.4, 21.6, 24, 14}, 3, Color(0, 0, 0, 0.6), 1.5);
    canvas.strokeRoundedRect(Rect{64.3, 22.9, 20, 12}, 1, Color(0.7, 0.1, 0.1), 3);
    canvas.strokeRoundedRect(Rect{90, 24, 4, 4}, 1, Color::blueColor(), 5);
    // Views drawn from a translated origin, with alpha, partly off the canvas.
    {
        auto saved = canvas.saved();
        canvas.translate(7.3, 40.1);
        canvas.multiplyAlpha(0.5);
        canvas.fillRoundedRect(Rect{0, 0, 50, 20}, 6, Color::redColor());
        canvas.fillRect(Rect{-20, 25, 40, 30}, Color::greenColor());
    }
    // A rectangular clip, whole and fractional, and a rounded one.
    {
        auto saved = canvas.saved();
        canvas.clipToRect(Rect{60, 40, 25, 20});
        canvas.fillRoundedRect(Rect{55.2, 35.4, 20, 20}, 4, Color(0.3, 0.3, 0.9));
        canvas.clipToRect(Rect{70.1, 45.2, 20, 20});
        canvas.fillRect(Rect{65, 42, 30, 30}, Color(0.9, 0.9, 0.2, 0.7));
    }
    {
        auto saved = canvas.saved();
        canvas.clipToRoundedRect(Rect{90, 40, 25, 25}, 8);
        canvas.fillRect(Rect{88, 38, 30, 30}, Color(0.2, 0.7, 0.7));
    }
    canvas.fillRoundedRect(Rect{100, 80, 40, 40}, 6, Color::blackColor()); // reaches past the edge
}

Image draw(double scale, bool throughLayer) {
    ImageContext context(Size{120, 90}, Opacity::Opaque, scale);
    Canvas& canvas = context.canvas();
    if (throughLayer) canvas.beginTransparencyLayer();
    scene(canvas);
    if (throughLayer) canvas.endTransparencyLayer(1);
    return context.takeImage();
}

// The largest difference of any channel of any pixel, 0 to 1.
double largestDifference(const Image& a, const Image& b) {
    double largest = 0;
    for (int y = 0; y < a.pixelHeight(); ++y)
        for (int x = 0; x < a.pixelWidth(); ++x) {
            Color p = *a.pixelColor(x, y), q = *b.pixelColor(x, y);
            largest = std::max({largest, std::abs(p.red - q.red), std::abs(p.green - q.green),
                                std::abs(p.blue - q.blue), std::abs(p.alpha - q.alpha)});
        }
    return largest;
}

} // namespace

TEST(BoxFill, matches_the_general_filler_at_scales_2_and_3) {
    for (double scale : {2.0, 3.0}) {
        SCOPED_TRACE(scale);
        Image direct = draw(scale, false), general = draw(scale, true);
        ASSERT_EQ(direct.pixelWidth(), general.pixelWidth());
        // Only edge pixels differ, by Cairo's coarser coverage grid and its
        // arcs flattened to chords a third of a pixel inside; a shape in the
        // wrong place, a wrong blend or a missed clip differs over whole areas.
        EXPECT_TRUE(morvane::testing::imagesMatch(direct, general, 0.01, 0.1));
        EXPECT_LT(largestDifference(direct, general), 0.7);
    }
}

namespace {

// The coverage a filled rounded box gives a device pixel, worked out pixel by
// pixel from the shape alone: the share of the pixel inside the box's sides,
// and in a corner the distance to the arc over a one-pixel ramp.
double referenceCoverage(double x0, double y0, double x1, double y1, double r, int i, int j) {
    auto overlap = [](double a0, double a1, double b0, double b1) {
        return std::max(0.0, std::min(a1, b1) - std::max(a0, b0));
    };
    double c = overlap(i, i + 1.0, x0, x1) * overlap(j, j + 1.0, y0, y1);
    if (c <= 0 || r <= 0) return c;
    double px = i + 0.5, py = j + 0.5;
    bool cornerRow = j < y0 + r || j + 1 > y1 - r;
    if (!cornerRow) return c;
    double cx = std::clamp(px, x0 + r, x1 - r), cy = std::clamp(py, y0 + r, y1 - r);
    if (cx == px || cy == py) return c;
    double d = std::hypot(px - cx, py - cy);
    return std::min(c, std::clamp(r + 0.5 - d, 0.0, 1.0));
}

} // namespace

// The fast paths (runs between corners, whole rows, corner rows split at
// their middle) must give each pixel exactly what the shape's own coverage
// gives it, for boxes wide and narrow, round and square, at any offset.
TEST(BoxFill, every_pixel_gets_the_shapes_own_coverage) {
    // Scale 2 keeps the device geometry exact through the division to points.
    const double scale = 2;
    const Color tone(0.2, 0.5, 0.7);
    for (int n = 0; n < 60; ++n) {
        // Device-pixel geometry from a simple sequence: offsets in every
        // fraction, widths from two pixels up, radii up to and past a pill.
        double x0 = 2 + (n * 0.37 - std::floor(n * 0.37)), y0 = 2 + (n * 0.61 - std::floor(n * 0.61));
        double w = 2 + (n % 13) * 1.7, h = 4 + (n % 7) * 3.3;
        double r = (n % 5) * 0.3 * std::min(w, h);
        SCOPED_TRACE(::testing::Message() << "box " << x0 << "," << y0 << " " << w << "x" << h << " r " << r);
        ImageContext context(Size{30, 60}, Opacity::Opaque, scale);
        context.canvas().clear(Color::whiteColor());
        context.canvas().fillRoundedRect(Rect{x0 / scale, y0 / scale, w / scale, h / scale}, r / scale, tone);
        Image image = context.takeImage();
        double radius = std::min({r, w / 2, h / 2});
        int wrong = 0;
        for (int j = 0; j < image.pixelHeight(); ++j)
            for (int i = 0; i < image.pixelWidth(); ++i) {
                double c = referenceCoverage(x0, y0, x0 + w, y0 + h, radius, i, j);
                auto amount = static_cast<int>(c * 255 + 0.5);
                // Source over white in 8 bits, rounded as the blend rounds.
                auto times = [](int a, int b) {
                    int t = a * b + 128;
                    return (t + (t >> 8)) >> 8;
                };
                int expected = times(255, 255 - amount) + times(Color::toByte(0.2), amount);
                int red = static_cast<int>(std::lround(image.pixelColor(i, j)->red * 255));
                if (red != expected) ++wrong;
            }
        EXPECT_EQ(wrong, 0);
    }
}
