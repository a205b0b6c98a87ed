#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/ImageContext.h>

#include <Snapshot.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace morvane::gfx;

namespace {

// A striped picture standing in for a photo.
Image photo() {
    ImageContext context(Size{60, 40}, Opacity::Opaque, 1);
    Canvas& canvas = context.canvas();
    for (int i = 0; i < 6; ++i)
        canvas.fillRect(Rect{i * 10.0, 0, 10, 40}, Color(0.9 - i * 0.12, 0.4 + i * 0.08, 0.2 + i * 0.1));
    canvas.fillEllipse(Rect{20, 10, 20, 20}, Color::yellowColor());
    return context.takeImage();
}

// One card with every kind of drawing the views use: background, shadowed
// rounded card, a circular aspect-filled picture with a border, bold, italic,
// truncated and attributed texts, a tinted icon and round buttons with symbols.
Image testCard(double scale) {
    ImageContext context(Size{240, 160}, Opacity::Opaque, scale);
    Canvas& canvas = context.canvas();
    canvas.fillRect(Rect{0, 0, 240, 160}, Color(0.12, 0.2, 0.32));

    Rect card{12, 12, 216, 112};
    canvas.drawShadow(card, 12, Shadow{Color::blackColor(), 0.6, 8, Size{0, 4}});
    canvas.fillRoundedRect(card, 12, Color(0.2, 0.3, 0.45));
    canvas.strokeRoundedRect(card.insetBy(0.5, 0.5), 11.5, Color::whiteColor().withAlpha(0.3), 1);

    Rect picture{22, 22, 56, 56};
    {
        auto saved = canvas.saved();
        canvas.clipToRoundedRect(picture, 28);
        canvas.drawImage(photo(), picture, ContentMode::AspectFill);
    }
    canvas.strokeEllipse(picture, Color::whiteColor(), 2);

    TextStyle bold{Font::boldSystemFont(0.9 * 17), Color::whiteColor()};
    canvas.drawText("Harbour Suite", Rect{88, 24, 130, 20}, bold);
    TextStyle italic{Font::italicSystemFont(0.7 * 17), Color::lightTextColor()};
    italic.numberOfLines = 2;
    canvas.drawText("Sea view, late checkout and breakfast on the terrace every morning",
                    Rect{88, 46, 130, 32}, italic);
    TextStyle price{Font::boldSystemFont(15), Color::yellowColor()};
    price.alignment = TextAlignment::Right;
    canvas.drawText("€ 240", Rect{88, 92, 128, 20}, price);

    AttributedText time;
    time.append("14:35", Font::boldSystemFont(17), Color::whiteColor())
        .append(" ", Font::boldSystemFont(17), Color::whiteColor())
        .append("GMT+1", Font::fontWithName("HelveticaNeue-CondensedBold", 8.5), Color::lightGrayColor());
    canvas.drawText(time, Rect{22, 90, 100, 22}, TextStyle{});

    // A tinted icon: a black ring made white with source-atop.
    ImageContext iconContext(Size{16, 16}, Opacity::Transparent, scale);
    iconContext.canvas().strokeEllipse(Rect{2, 2, 12, 12}, Color::blackColor(), 3);
    Image icon = iconContext.takeImage();
    ImageContext tintContext(icon.size(), Opacity::Transparent, icon.scale());
    tintContext.canvas().drawImage(icon, Point{});
    tintContext.canvas().setBlendMode(BlendMode::SourceAtop);
    tintContext.canvas().fillRect(Rect{0, 0, 16, 16}, Color::whiteColor());
    canvas.drawImage(tintContext.takeImage(), Point{200, 28});

    const char* symbols[] = {"←", "✓", "✘", "↑"};
    for (int i = 0; i < 4; ++i) {
        Rect button{24 + i * 52.0, 130, 24, 24};
        canvas.fillEllipse(button, i == 1 ? Color(0.2, 0.6, 0.3) : Color(0.85, 0.85, 0.9));
        TextStyle symbol{Font::boldSystemFont(14), i == 1 ? Color::whiteColor() : Color::blackColor()};
        symbol.alignment = TextAlignment::Center;
        symbol.verticalAlignment = VerticalAlignment::Center;
        canvas.drawText(symbols[i], button, symbol);
    }
    canvas.multiplyAlpha(0.5);
    canvas.drawLine(Point{12, 127}, Point{228, 127}, Color::whiteColor(), 1);
    return context.takeImage();
}

} // namespace

// Against the stored reference: catches regressions in any drawing primitive,
// the font set-up or the colour handling. Small font-rendering differences
// between machines stay within the tolerance.
TEST(TestCard, matches_the_reference_at_scale_2) {
    morvane::testing::expectImageMatches(testCard(2), "tests/gfx/snapshots/test_card@2x.png", 0.01);
}

// The same card at scale 1 and 3 keeps the layout: text and shapes land in
// the same places in points (compared at scale 1 after scaling the scale-3
// card down).
TEST(TestCard, layout_is_the_same_at_every_scale) {
    Image one = testCard(1);
    Image three = testCard(3);
    EXPECT_EQ(three.size(), one.size());
    ImageContext context(one.size(), Opacity::Opaque, 1);
    context.canvas().drawImage(three, Rect{Point{}, one.size()});
    Image reduced = context.takeImage();
    morvane::testing::expectImageMatches(one, "tests/gfx/snapshots/test_card@1x.png", 0.01);
    // Downsampling blurs edges differently from drawing at scale 1: allow
    // soft edges, but not a shifted text or shape.
    EXPECT_TRUE(morvane::testing::imagesMatch(reduced, one, 0.05, 0.3));
}
