// Picture operations: tinting, scaling, the byte budget, the JPEG size
// estimate, the orange tone and reading a point's colour.
#include "MediaFixture.h"

#include <morvane/gfx/ImageContext.h>
#include <morvane/media/ImageColor.h>

#include <gtest/gtest.h>

using namespace morvane;
using morvane::test::noiseImage;
using morvane::test::solidImage;

namespace {

// An icon: a red square in the middle of a transparent 20 x 20 picture, at the scale.
gfx::Image icon(double scale = 1) {
    gfx::ImageContext context(gfx::Size(20, 20), gfx::Opacity::Transparent, scale);
    context.canvas().fillRect(gfx::Rect(5, 5, 10, 10), gfx::Color(1, 0, 0, 0.5));
    return context.takeImage();
}

} // namespace

// Tinting must follow the icon's shape: the colour replaces what is visible,
// keeps each pixel's alpha, and never fills the transparent background.
TEST(ImageColor, tinting_replaces_visible_pixels_and_keeps_transparency) {
    for (double scale : {1.0, 2.0}) {
        const gfx::Image tinted = ImageColor::color(icon(scale), gfx::Color::blueColor());
        ASSERT_FALSE(tinted.isNull());
        EXPECT_EQ(tinted.scale(), scale);
        EXPECT_EQ(tinted.size(), gfx::Size(20, 20));
        const int inside = int(10 * scale), corner = 0;
        auto centre = tinted.pixelColor(inside, inside);
        ASSERT_TRUE(centre);
        EXPECT_TRUE(centre->isClose(gfx::Color(0, 0, 1, 0.5), 0.02)) << "alpha of the icon kept";
        EXPECT_EQ(tinted.pixelColor(corner, corner)->alpha, 0) << "background stays transparent";
    }
    EXPECT_TRUE(ImageColor::white(icon()).pixelColor(10, 10)->isClose(gfx::Color(1, 1, 1, 0.5), 0.02));
    EXPECT_TRUE(ImageColor::maskedImageWithcolor(gfx::Image(), gfx::Color::redColor()).isNull());
}

// Sizes come out exactly as asked, whatever the source's proportions and scale.
TEST(ImageColor, scaling_gives_the_asked_size_at_scale_one) {
    const gfx::Image wide = solidImage(100, 30, gfx::Color::greenColor(), 2);
    const gfx::Image square = ImageColor::size(wide, 40);
    EXPECT_EQ(square.size(), gfx::Size(40, 40));
    EXPECT_EQ(square.scale(), 1);

    EXPECT_EQ(ImageColor::resize(wide, {7, 3}).size(), gfx::Size(7, 3));
    EXPECT_EQ(ImageColor::imageWithImage(wide, 25, 10).size(), gfx::Size(25, 10));
    EXPECT_EQ(ImageColor::resizeImageBy(wide, 0.5).size(), gfx::Size(25, 8))
        << "a half pixel rounds up to a whole one";

    const gfx::Image copy = ImageColor::rotate(wide);
    EXPECT_EQ(copy.size(), wide.size());
    EXPECT_EQ(copy.scale(), 2);
    EXPECT_FALSE(copy.isSameAs(wide));
    EXPECT_TRUE(ImageColor::rotate(gfx::Image()).isNull());
    EXPECT_TRUE(ImageColor::applyFilter(wide).isSameAs(wide));
    EXPECT_TRUE(ImageColor::size(wide, 0).isNull()) << "an empty size gives no picture";
}

// The byte budget halves both sides per step and stops as soon as the PNG fits.
TEST(ImageColor, byte_budget_halves_both_sides_until_the_png_fits) {
    const gfx::Image photo = noiseImage(64, 48);
    const float pngLength = float(photo.pngData().size());

    EXPECT_TRUE(ImageColor::resizeImage(photo, pngLength).isSameAs(photo)) << "fits exactly: unchanged";
    EXPECT_TRUE(ImageColor::resizeImage(photo, pngLength * 2).isSameAs(photo));

    const gfx::Image half = ImageColor::resizeImage(photo, pngLength - 1);
    EXPECT_EQ(half.pixelWidth(), 32);
    EXPECT_EQ(half.pixelHeight(), 24);

    // Noise hardly compresses, so a budget of a twentieth needs three halvings
    // (area 1/64), and the result must fit while its double must not.
    const gfx::Image small = ImageColor::resizeImage(photo, pngLength / 20);
    EXPECT_LE(float(small.pngData().size()), pngLength / 20);
    EXPECT_EQ(small.pixelWidth(), 8);
    EXPECT_EQ(small.pixelHeight(), 6);

    const gfx::Image least = ImageColor::resizeImage(photo, 0);
    EXPECT_EQ(least.pixelWidth(), 1) << "an impossible budget still ends";
    EXPECT_TRUE(ImageColor::resizeImage(gfx::Image(), 100).isNull());
}

TEST(ImageColor, size_if_resized_is_the_jpeg_length_of_the_scaled_picture) {
    const gfx::Image photo = noiseImage(80, 60);
    const auto full = ImageColor::sizeIfResizeBy(photo, 1);
    const auto quarter = ImageColor::sizeIfResizeBy(photo, 0.5);
    EXPECT_EQ(full, std::int64_t(ImageColor::resizeImageBy(photo, 1).jpegData(1.0).size()));
    EXPECT_GT(full, 2 * quarter) << "a quarter of the pixels of noise takes far fewer bytes";
    EXPECT_EQ(ImageColor::sizeIfResizeBy(gfx::Image(), 1), 0);
}

// The orange tone: half-way between each pixel and its toned luminance;
// black and white keep their level, middle grey leans to the tone, alpha stays.
TEST(ImageColor, orange_tone_blends_half_way_towards_the_tone) {
    const gfx::Image grey = solidImage(4, 4, gfx::Color::gray(0.5), 2);
    const gfx::Image toned = ImageColor::applyFilterOrg(grey);
    EXPECT_EQ(toned.scale(), 1);
    EXPECT_EQ(toned.pixelWidth(), 4);
    const auto c = *toned.pixelColor(1, 1);
    EXPECT_NEAR(c.red, (0.5 + 0.76) / 2, 0.02);
    EXPECT_NEAR(c.green, (0.5 + 0.34) / 2, 0.02);
    EXPECT_NEAR(c.blue, (0.5 + 0.0) / 2, 0.02);

    const auto white =
        *ImageColor::applyFilterOrg(solidImage(2, 2, gfx::Color::whiteColor())).pixelColor(0, 0);
    EXPECT_TRUE(white.isClose(gfx::Color::whiteColor(), 0.01));
    const auto black =
        *ImageColor::applyFilterOrg(solidImage(2, 2, gfx::Color::blackColor())).pixelColor(0, 0);
    EXPECT_TRUE(black.isClose(gfx::Color::blackColor(), 0.01));
    const auto faint =
        *ImageColor::applyFilterOrg(solidImage(2, 2, gfx::Color(0, 0, 1, 0.4))).pixelColor(0, 0);
    EXPECT_NEAR(faint.alpha, 0.4, 0.01);
}

TEST(ImageColor, color_of_point_reads_the_pixel_in_points_and_nothing_outside) {
    gfx::ImageContext context(gfx::Size(10, 10), gfx::Opacity::Transparent, 2);
    context.canvas().fillRect(gfx::Rect(0, 0, 5, 10), gfx::Color::redColor());
    context.canvas().fillRect(gfx::Rect(5, 0, 5, 10), gfx::Color(0, 0, 1, 0.5));
    const gfx::Image image = context.takeImage();

    EXPECT_EQ(*ImageColor::colorOfPoint(image, {4.9, 9.5}), gfx::Color::redColor());
    const auto right = *ImageColor::colorOfPoint(image, {9, 0});
    EXPECT_NEAR(right.blue, 0.5, 0.01) << "bytes as the bitmap holds them: premultiplied";
    EXPECT_NEAR(right.alpha, 0.5, 0.01);
    EXPECT_FALSE(ImageColor::colorOfPoint(image, {10, 0})) << "points, not pixels";
    EXPECT_FALSE(ImageColor::colorOfPoint(image, {-0.5, 0}));
    EXPECT_FALSE(ImageColor::colorOfPoint(gfx::Image(), {0, 0}));
}
