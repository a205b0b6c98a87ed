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
