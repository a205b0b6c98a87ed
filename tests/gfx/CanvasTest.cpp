#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/ImageContext.h>

#include <gtest/gtest.h>

#include <numbers>

using namespace morvane::gfx;

namespace {

bool near(const std::optional<Color>& c, Color expected, double tolerance = 2.0 / 255) {
    return c && c->isClose(expected, tolerance);
}

// A 20 x 20 point icon at scale 2: transparent, with an opaque black disc in
// the middle and a half-transparent square in the corner.
Image icon() {
    ImageContext context(Size{20, 20}, Opacity::Transparent, 2);
    context.canvas().fillEllipse(Rect{5, 5, 10, 10}, Color::blackColor());
    context.canvas().fillRect(Rect{0, 0, 4, 4}, Color::gray(0.2, 0.5));
    return context.takeImage();
}

// A picture twice as wide as high: left half red, right half blue.
Image widePicture() {
    ImageContext context(Size{200, 100}, Opacity::Opaque, 1);
    context.canvas().fillRect(Rect{0, 0, 100, 100}, Color::redColor());
    context.canvas().fillRect(Rect{100, 0, 100, 100}, Color::blueColor());
    return context.takeImage();
}

} // namespace

// Drawing is in points: at scale 2 a 10-point square covers 20 x 20 pixels.
TEST(Canvas, draws_in_points_at_the_device_scale) {
    ImageContext context(Size{30, 30}, Opacity::Transparent, 2);
    ASSERT_TRUE(context.isValid());
    Canvas& canvas = context.canvas();
    EXPECT_EQ(canvas.size(), (Size{30, 30}));
    canvas.fillRect(Rect{10, 10, 10, 10}, Color::redColor());
    Image image = context.image();
    EXPECT_EQ(image.pixelWidth(), 60);
    EXPECT_EQ(image.size(), (Size{30, 30}));
    EXPECT_TRUE(near(image.pixelColor(20, 20), Color::redColor()));
    EXPECT_TRUE(near(image.pixelColor(39, 39), Color::redColor()));
    EXPECT_EQ(image.pixelColor(40, 40)->alpha, 0);
    EXPECT_EQ(image.pixelColor(19, 25)->alpha, 0);
}

// Save and restore bring back transform, clip, alpha and blend mode; nested
// alpha multiplies; an unmatched restore is harmless.
TEST(Canvas, saved_state_restores_transform_clip_alpha_and_blend) {
    ImageContext context(Size{40, 20}, Opacity::Transparent, 1);
    Canvas& canvas = context.canvas();
    canvas.restore(); // unmatched: ignored
    {
        auto saved = canvas.saved();
        canvas.translate(20, 0);
        canvas.clipToRect(Rect{0, 0, 10, 10});
        canvas.multiplyAlpha(0.5);
        canvas.multiplyAlpha(0.5);
        EXPECT_DOUBLE_EQ(canvas.alpha(), 0.25);
        canvas.setBlendMode(BlendMode::Multiply);
        EXPECT_EQ(canvas.transform(), Transform::translation(20, 0));
        EXPECT_EQ(canvas.clipBounds(), (Rect{0, 0, 10, 10}));
        EXPECT_FALSE(canvas.isVisible(Rect{-15, 0, 5, 5}));
        canvas.fillRect(Rect{0, 0, 20, 20}, Color::blueColor());
    }
    EXPECT_TRUE(canvas.transform().isIdentity());
    EXPECT_EQ(canvas.alpha(), 1);
    EXPECT_EQ(canvas.blendMode(), BlendMode::Normal);
    EXPECT_EQ(canvas.clipBounds(), (Rect{0, 0, 40, 20}));
    canvas.fillRect(Rect{0, 15, 5, 5}, Color::greenColor());

    Image image = context.takeImage();
    EXPECT_NEAR(image.pixelColor(25, 5)->alpha, 0.25, 0.01) << "clipped fill at a quarter alpha";
    EXPECT_EQ(image.pixelColor(25, 12)->alpha, 0) << "outside the clip";
    EXPECT_TRUE(near(image.pixelColor(2, 17), Color::greenColor()))
        << "drawn after the restore at full alpha";
}

// Tinting with source-atop: the colour replaces every visible pixel and keeps
// its alpha; transparent pixels stay transparent.
TEST(Canvas, source_atop_tint_keeps_transparent_pixels_transparent) {
    Image original = icon();
    ImageContext context(original.size(), Opacity::Transparent, original.scale());
    Canvas& canvas = context.canvas();
    canvas.drawImage(original, Rect{Point{}, original.size()});
    canvas.setBlendMode(BlendMode::SourceAtop);
    canvas.fillRect(Rect{Point{}, original.size()}, Color::redColor());
    Image tinted = context.takeImage();

    ASSERT_EQ(tinted.pixelWidth(), 40);
    auto before = original.pixels(PixelFormat::RGBA);
    auto after = tinted.pixels(PixelFormat::RGBA);
    int visible = 0;
    for (std::size_t i = 0; i < before.size(); i += 4) {
        ASSERT_NEAR(after[i + 3], before[i + 3], 1) << "alpha kept at pixel " << i / 4;
        if (before[i + 3] == 0) continue;
        ++visible;
        EXPECT_NEAR(after[i], 255, 2);
        EXPECT_NEAR(after[i + 1], 0, 2);
    }
    EXPECT_GT(visible, 300);
    EXPECT_EQ(tinted.pixelColor(39, 39)->alpha, 0);
    EXPECT_NEAR(tinted.pixelColor(2, 2)->alpha, 0.5, 0.01);
}

// Content modes: fit lies inside and touches two sides, fill covers and
// overflows, both keep the proportions and are centred.
TEST(Canvas, content_modes_place_the_picture) {
    Rect bounds{10, 20, 100, 100};
    Size picture{200, 100};
    Rect fit = placeContent(picture, bounds, ContentMode::AspectFit);
    Rect fill = placeContent(picture, bounds, ContentMode::AspectFill);
    EXPECT_EQ(fit, (Rect{10, 45, 100, 50}));
    EXPECT_EQ(fill, (Rect{-40, 20, 200, 100}));
    for (const Rect& r : {fit, fill}) {
        EXPECT_DOUBLE_EQ(r.size().aspectRatio(), 2);
        EXPECT_EQ(r.center(), bounds.center());
    }
    EXPECT_EQ(placeContent(picture, bounds, ContentMode::ScaleToFill), bounds);
    EXPECT_EQ(placeContent(Size{20, 10}, bounds, ContentMode::Center), (Rect{50, 65, 20, 10}));
    EXPECT_TRUE(placeContent(Size{}, bounds, ContentMode::AspectFit).isEmpty());

    // Drawn: aspect fit leaves bands above and below; aspect fill, clipped,
    // shows the middle of the picture (red left of centre, blue right).
    Image wide = widePicture();
    ImageContext context(Size{100, 100}, Opacity::Transparent, 1);
    context.canvas().drawImage(wide, Rect{0, 0, 100, 100}, ContentMode::AspectFit);
    Image fitted = context.image();
    EXPECT_EQ(fitted.pixelColor(50, 10)->alpha, 0);
    EXPECT_TRUE(near(fitted.pixelColor(10, 50), Color::redColor()));
    EXPECT_TRUE(near(fitted.pixelColor(90, 50), Color::blueColor()));
    EXPECT_EQ(fitted.pixelColor(50, 90)->alpha, 0);

    ImageContext fillContext(Size{100, 100}, Opacity::Transparent, 1);
    fillContext.canvas().clipToRect(Rect{0, 0, 100, 100});
    fillContext.canvas().drawImage(wide, Rect{0, 0, 100, 100}, ContentMode::AspectFill);
    Image filled = fillContext.takeImage();
    EXPECT_TRUE(near(filled.pixelColor(10, 5), Color::redColor()));
    EXPECT_TRUE(near(filled.pixelColor(90, 95), Color::blueColor()));
}

// Copy and the other unbounded operators are confined to the drawn shape, as
// on the platform (Cairo alone would clear the rest of the clip).
TEST(Canvas, blend_modes_stay_inside_the_shape) {
    ImageContext context(Size{20, 10}, Opacity::Transparent, 1);
    Canvas& canvas = context.canvas();
    canvas.fillRect(Rect{0, 0, 20, 10}, Color::greenColor());
    canvas.setBlendMode(BlendMode::Copy);
    canvas.fillRect(Rect{0, 0, 10, 10}, Color::redColor().withAlpha(0.5));
    canvas.setBlendMode(BlendMode::DestinationOut);
    canvas.fillRect(Rect{15, 0, 5, 5}, Color::blackColor());
    Image image = context.takeImage();
    EXPECT_NEAR(image.pixelColor(5, 5)->alpha, 0.5, 0.01) << "copy replaced, did not blend";
    EXPECT_TRUE(near(image.pixelColor(12, 5), Color::greenColor())) << "outside the copied shape untouched";
    EXPECT_EQ(image.pixelColor(17, 2)->alpha, 0) << "destination-out punched a hole";
    EXPECT_TRUE(near(image.pixelColor(17, 7), Color::greenColor()));
}

// A transparency layer composes its content first: overlapping shapes drawn
// at half alpha do not show a darker overlap.
TEST(Canvas, transparency_layer_composes_before_alpha) {
    ImageContext context(Size{30, 10}, Opacity::Transparent, 1);
    Canvas& canvas = context.canvas();
    canvas.beginTransparencyLayer();
    canvas.fillRect(Rect{0, 0, 20, 10}, Color::blueColor());
    canvas.fillRect(Rect{10, 0, 20, 10}, Color::blueColor());
    canvas.save(); // left open on purpose: ending the layer unwinds it
    canvas.translate(100, 100);
    canvas.endTransparencyLayer(0.5);
    EXPECT_TRUE(canvas.transform().isIdentity());
    Image image = context.takeImage();
    EXPECT_NEAR(image.pixelColor(5, 5)->alpha, 0.5, 0.01);
    EXPECT_NEAR(image.pixelColor(15, 5)->alpha, 0.5, 0.01) << "overlap not darker";
}

// A soft shadow is darkest under the shape, fades with distance, follows the
// offset and is symmetric about the shape's centre.
TEST(Canvas, soft_shadow_fades_away_from_the_shape) {
    ImageContext context(Size{100, 100}, Opacity::Transparent, 2);
    Shadow shadow{Color::blackColor(), 0.8, 8, Size{0, 4}};
    context.canvas().drawShadow(Rect{30, 30, 40, 40}, 10, shadow);
    Image image = context.takeImage();
    auto alphaAt = [&](double x, double y) { return image.pixelColor(int(x * 2), int(y * 2))->alpha; };
    EXPECT_NEAR(alphaAt(50, 54), 0.8, 0.03) << "full opacity under the middle";
    EXPECT_GT(alphaAt(50, 76), alphaAt(50, 82));
    EXPECT_GT(alphaAt(50, 82), 0.0);
    EXPECT_EQ(alphaAt(50, 99), 0.0);
    EXPECT_GT(alphaAt(50, 73), alphaAt(50, 27)) << "offset down: more shadow below the shape than above";
    EXPECT_NEAR(alphaAt(50, 54 + 22), alphaAt(50, 54 - 22), 0.05) << "symmetric about the offset centre";
    EXPECT_NEAR(alphaAt(25, 54), alphaAt(75, 54), 0.02) << "symmetric left and right";
    EXPECT_LT(alphaAt(31, 35), alphaAt(50, 35)) << "rounded corner lets the shadow thin out";
}

// Opaque contexts start black; empty, negative and oversized contexts are
// invalid but accept drawing; a taken context draws nowhere.
TEST(Canvas, image_context_edge_cases) {
    ImageContext opaque(Size{2, 2}, Opacity::Opaque, 1);
    Image black = opaque.image();
    EXPECT_TRUE(black.isOpaque());
    EXPECT_TRUE(near(black.pixelColor(1, 1), Color::blackColor()));

    ImageContext fractional(Size{10.2, 3.3}, Opacity::Transparent, 3);
    Image f = fractional.takeImage();
    EXPECT_EQ(f.pixelWidth(), 31);
    EXPECT_EQ(f.pixelHeight(), 10);
    EXPECT_FALSE(fractional.isValid());
    fractional.canvas().fillRect(Rect{0, 0, 10, 10}, Color::redColor());
    EXPECT_EQ(f.pixelColor(0, 0)->alpha, 0) << "drawing after take does not reach the image";

    for (Size bad : {Size{0, 10}, Size{-5, 5}, Size{20000, 20000}}) {
        ImageContext context(bad, Opacity::Transparent, 1);
        EXPECT_FALSE(context.isValid());
        context.canvas().fillRect(Rect{0, 0, 10, 10}, Color::redColor());
        context.canvas().drawText("x", Rect{0, 0, 10, 10}, TextStyle{});
        EXPECT_TRUE(context.takeImage().isNull());
    }

    ImageContext::setScreenScale(3);
    ImageContext screen(Size{1, 1}, Opacity::Transparent, 0);
    EXPECT_EQ(screen.image().pixelWidth(), 3);
    ImageContext::setScreenScale(1);

    // Degenerate geometry is ignored, not fatal.
    ImageContext context(Size{10, 10}, Opacity::Transparent, 1);
    Canvas& canvas = context.canvas();
    canvas.concat(Transform::scale(0, 0));
    canvas.scaleBy(0, 1);
    canvas.fillRect(Rect{0, 0, std::numeric_limits<double>::infinity(), 5}, Color::redColor());
    canvas.drawImage(Image(), Rect{0, 0, 5, 5});
    canvas.fillPath(Path(), Color::redColor());
    canvas.fillRect(Rect{0, 0, 2, 2}, Color::redColor());
    EXPECT_TRUE(near(context.image().pixelColor(1, 1), Color::redColor())) << "the canvas still works";
}

TEST(Canvas, paths_fill_with_the_chosen_rule) {
    Path ring;
    ring.addEllipse(Rect{0, 0, 40, 40});
    ring.addEllipse(Rect{10, 10, 20, 20});
    ImageContext context(Size{80, 40}, Opacity::Transparent, 1);
    context.canvas().fillPath(ring, Color::blackColor(), FillRule::EvenOdd);
    context.canvas().translate(40, 0);
    context.canvas().fillPath(ring, Color::blackColor(), FillRule::Winding);
    Image image = context.takeImage();
    EXPECT_EQ(image.pixelColor(20, 20)->alpha, 0) << "even-odd leaves the hole";
    EXPECT_EQ(image.pixelColor(5, 20)->alpha, 1);
    EXPECT_EQ(image.pixelColor(60, 20)->alpha, 1) << "winding fills it";

    Path arc;
    arc.addArc(Point{20, 20}, 10, 0, std::numbers::pi, ArcDirection::Clockwise);
    EXPECT_EQ(arc.bounds(), (Rect{10, 10, 20, 20}));
    Path rounded = Path::roundedRect(Rect{0, 0, 10, 4}, 50);
    EXPECT_EQ(rounded.bounds(), (Rect{0, 0, 10, 4})) << "radius limited to half the short side";
}

// A host (the window) hands its own pixel buffer: drawing lands in it in
// native 32-bit ARGB, premultiplied, row by row with the host's stride.
TEST(Canvas, draws_into_pixels_the_host_owns) {
    constexpr int width = 6, height = 4, stride = 32; // padded rows
    std::vector<std::uint32_t> pixels(stride / 4 * height, 0);
    auto canvas =
        Canvas::overPixels(reinterpret_cast<std::uint8_t*>(pixels.data()), width, height, stride, 2);
    ASSERT_NE(canvas, nullptr);
    EXPECT_EQ(canvas->size(), (Size{3, 2}));
    canvas->fillRect(Rect{1, 1, 2, 1}, Color(1, 0, 0, 0.5));
    canvas.reset(); // flushes into the buffer
    EXPECT_EQ(pixels[0], 0u);
    std::uint32_t p = pixels[2 * (stride / 4) + 2]; // pixel (2, 2)
    EXPECT_EQ(p >> 24, 128u);
    EXPECT_EQ((p >> 16) & 0xff, 128u) << "premultiplied red";
    EXPECT_EQ(p & 0xffff, 0u);
    EXPECT_EQ(pixels[2 * (stride / 4) + 6], 0u) << "row padding untouched";
    EXPECT_EQ(Canvas::overPixels(nullptr, 4, 4, 16, 1), nullptr);
    EXPECT_EQ(Canvas::overPixels(reinterpret_cast<std::uint8_t*>(pixels.data()), 9, 4, 32, 1), nullptr)
        << "stride too small";
}
