#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/ImageContext.h>
#include <morvane/gfx/TextMetrics.h>

#include <gtest/gtest.h>

using namespace morvane::gfx;

namespace {

// The box of all pixels with visible ink, in points.
Rect inkBounds(const Image& image) {
    int left = image.pixelWidth(), top = image.pixelHeight(), right = -1, bottom = -1;
    auto pixels = image.pixels(PixelFormat::RGBAPremultiplied);
    for (int y = 0; y < image.pixelHeight(); ++y) {
        for (int x = 0; x < image.pixelWidth(); ++x) {
            if (pixels[(static_cast<std::size_t>(y) * image.pixelWidth() + x) * 4 + 3] < 40) continue;
            left = std::min(left, x), right = std::max(right, x);
            top = std::min(top, y), bottom = std::max(bottom, y);
        }
    }
    if (right < 0) return {};
    double s = image.scale();
    return {left / s, top / s, (right + 1 - left) / s, (bottom + 1 - top) / s};
}

Image drawn(std::string_view text, Size size, const TextStyle& style, double scale) {
    ImageContext context(size, Opacity::Transparent, scale);
    context.canvas().drawText(text, Rect{Point{}, size}, style);
    return context.takeImage();
}

} // namespace

// The layouts' unit of height: "Sample Text" in the 17-point system font is
// 20.574 points high, the same before and after drawing at any scale.
TEST(Text, sample_text_height_is_scale_independent) {
    Font font = Font::systemFont(17);
    Size measured = TextMetrics::size("Sample Text", font);
    EXPECT_NEAR(measured.height, 20.574, 0.001);
    EXPECT_GT(measured.width, 90);
    EXPECT_LT(measured.width, 110);

    TextStyle style{font, Color::blackColor()};
    Rect previousInk;
    for (double scale : {1.0, 2.0, 3.0}) {
        Image image = drawn("Sample Text", Size{140, 30}, style, scale);
        Rect ink = inkBounds(image);
        // The ink lies within the measured box and nearly spans its width.
        EXPECT_GE(ink.x, -0.5) << "scale " << scale;
        EXPECT_LE(ink.maxX(), measured.width + 0.5) << "scale " << scale;
        EXPECT_GT(ink.width, measured.width - 3) << "scale " << scale;
        EXPECT_LE(ink.maxY(), measured.height + 0.5) << "scale " << scale;
        if (scale > 1) {
            EXPECT_NEAR(ink.width, previousInk.width, 1.0) << "glyph positions do not move with scale";
        }
        previousInk = ink;
    }
    EXPECT_EQ(TextMetrics::size("Sample Text", font), measured);
    TextMetrics::clearCache();
    EXPECT_EQ(TextMetrics::size("Sample Text", font), measured)
        << "a fresh measurement agrees with the cache";
}

// Fonts: sizes scale measurements, bold is wider, named fonts map onto
// installed faces with a condensed face for condensed names, and the system
// size is app-wide.
TEST(Text, fonts_map_names_and_sizes) {
    Font regular = Font::systemFont(17);
    EXPECT_NEAR(TextMetrics::size("Sample Text", regular.withSize(34)).width,
                2 * TextMetrics::size("Sample Text", regular).width, 0.05);
    EXPECT_GT(TextMetrics::size("Sample Text", Font::boldSystemFont(17)).width,
              TextMetrics::size("Sample Text", regular).width);
    EXPECT_TRUE(Font::italicSystemFont(12).isItalic());

    Font condensed = Font::fontWithName("HelveticaNeue-CondensedBold", 8.5);
    EXPECT_TRUE(condensed.isBold());
    EXPECT_EQ(condensed.width(), FontWidth::Condensed);
    EXPECT_EQ(condensed.pointSize(), 8.5);
    Font wide = Font("DejaVu Sans", 8.5, FontWeight::Bold);
    EXPECT_LT(TextMetrics::size("GMT+02:00", condensed).width, TextMetrics::size("GMT+02:00", wide).width)
        << "the condensed face is narrower";

    EXPECT_EQ(Font::fontWithName("Helvetica-Bold", 12), Font::boldSystemFont(12));
    EXPECT_EQ(Font::fontWithName("Inter-Italic", 12), Font::italicSystemFont(12));
    EXPECT_EQ(Font::fontWithName("NoSuchFamily-Regular", 12).family(), Font::kSystemFamily);
    EXPECT_EQ(Font::fontWithName("DejaVu Serif", 12).family(), "DejaVu Serif");
    EXPECT_EQ(Font::fontWithName("", 12).family(), Font::kSystemFamily);

    EXPECT_EQ(Font::systemFontSize(), 17);
    Font::setSystemFontSize(20);
    EXPECT_EQ(Font().pointSize(), 20);
    Font::setSystemFontSize(-1); // ignored
    EXPECT_EQ(Font::systemFontSize(), 20);
    Font::setSystemFontSize(17);

    EXPECT_NEAR(regular.lineHeight(), 20.574, 0.01);
    EXPECT_GT(regular.ascender(), regular.descender());
}

// Wrapped measurement: narrower widths give more lines and more height; the
// width used never exceeds the limit; a word longer than the width is broken.
TEST(Text, bounding_height_grows_as_the_width_shrinks) {
    Font font = Font::systemFont(17);
    std::string text = "Breakfast is served on the terrace from seven until half past ten";
    double lineHeight = TextMetrics::size("Sample Text", font).height;
    double previous = 0;
    for (double width : {1000.0, 300.0, 150.0, 80.0}) {
        Size bounds = TextMetrics::boundingSize(text, font, width);
        EXPECT_LE(bounds.width, width + 0.01);
        EXPECT_GE(bounds.height, previous);
        int lines = TextMetrics::lineCount(text, font, width);
        EXPECT_NEAR(bounds.height, lines * lineHeight, 0.5) << "width " << width;
        previous = bounds.height;
    }
    EXPECT_EQ(TextMetrics::lineCount(text, font, 1000), 1);
    EXPECT_GT(TextMetrics::lineCount("Supercalifragilisticexpialidocious", font, 60), 1);
    EXPECT_EQ(TextMetrics::size("", font).width, 0);
    EXPECT_GT(TextMetrics::boundingSize(text, font, 0).height, 0) << "a zero width still measures";
}

// Drawing honours alignment, the line limit and truncation; the ink never
// leaves the rectangle.
TEST(Text, drawing_honours_alignment_lines_and_truncation) {
    Font font = Font::systemFont(17);
    TextStyle style{font, Color::blackColor()};
    style.alignment = TextAlignment::Right;
    Rect right = inkBounds(drawn("Gate 12", Size{200, 30}, style, 2));
    EXPECT_GT(right.x, 120);
    EXPECT_NEAR(right.maxX(), 200, 2);
    style.alignment = TextAlignment::Center;
    Rect centred = inkBounds(drawn("Gate 12", Size{200, 30}, style, 2));
    EXPECT_NEAR(centred.midX(), 100, 2);

    std::string longText = "Late checkout is available on request at the reception desk";
    style.alignment = TextAlignment::Left;
    Rect truncated = inkBounds(drawn(longText, Size{120, 60}, style, 2));
    EXPECT_LE(truncated.maxX(), 120.5);
    EXPECT_LT(truncated.height, 21) << "one line by default";

    style.numberOfLines = 2;
    Rect twoLines = inkBounds(drawn(longText, Size{120, 200}, style, 2));
    EXPECT_GT(twoLines.height, 25);
    EXPECT_LT(twoLines.height, 2 * 20.574 + 1);

    style.numberOfLines = 0;
    style.lineBreak = LineBreakMode::WordWrap;
    Rect all = inkBounds(drawn(longText, Size{120, 400}, style, 1));
    EXPECT_NEAR(all.height, TextMetrics::boundingSize(longText, font, 120).height, 21);
    EXPECT_GT(all.height, twoLines.height);

    style.numberOfLines = 2;
    Rect cut = inkBounds(drawn(longText, Size{120, 400}, style, 1));
    EXPECT_LT(cut.height, 2 * 20.574 + 1) << "wrapping without an ellipsis still stops at the limit";

    style = TextStyle{font, Color::blackColor()};
    style.verticalAlignment = VerticalAlignment::Bottom;
    Rect bottom = inkBounds(drawn("Gate", Size{100, 100}, style, 1));
    EXPECT_GT(bottom.y, 75);
}

// Runs of different fonts measure as one paragraph: the bold time and the
// small condensed zone side by side.
TEST(Text, attributed_runs_measure_and_draw_together) {
    Font bold = Font::boldSystemFont(17);
    Font zone = Font::fontWithName("HelveticaNeue-CondensedBold", 8.5);
    AttributedText text;
    text.append("14:35", bold, Color::whiteColor())
        .append(" ", bold, Color::whiteColor())
        .append("GMT+1", zone, Color::whiteColor());
    EXPECT_EQ(text.string(), "14:35 GMT+1");
    Size whole = TextMetrics::size(text);
    double parts = TextMetrics::size("14:35 ", bold).width + TextMetrics::size("GMT+1", zone).width;
    EXPECT_NEAR(whole.width, parts, 0.5);
    EXPECT_NEAR(whole.height, TextMetrics::size("14:35", bold).height, 0.5)
        << "the tallest run sets the height";

    ImageContext context(Size{120, 30}, Opacity::Opaque, 2);
    context.canvas().drawText(text, Rect{0, 0, 120, 30}, TextStyle{});
    Image image = context.takeImage();
    auto pixels = image.pixels(PixelFormat::RGBA);
    int white = 0;
    for (std::size_t i = 0; i < pixels.size(); i += 4)
        white += pixels[i] > 200;
    EXPECT_GT(white, 50) << "run colours drawn, not the style's black";
}

// Showing text leaves Cairo a current point; a path drawn next must not start
// with a line from it.
TEST(Text, drawing_after_text_draws_no_stray_line) {
    ImageContext context(Size{200, 60}, Opacity::Transparent, 1);
    Canvas& canvas = context.canvas();
    canvas.drawText("Room", Rect{0, 0, 60, 20}, TextStyle{});
    Path line;
    line.moveTo(Point{150, 50});
    line.lineTo(Point{190, 50});
    canvas.strokePath(line, Color::redColor(), 2);
    Image image = context.takeImage();
    for (int x = 70; x < 145; ++x)
        for (int y = 0; y < 60; ++y)
            ASSERT_EQ(image.pixelColor(x, y)->alpha, 0) << x << "," << y;
}
