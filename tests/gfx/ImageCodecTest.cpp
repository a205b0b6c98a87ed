#include <morvane/gfx/Image.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

using namespace morvane::gfx;

namespace {

// A picture with recognisable regions: left half red, right half blue, a
// green top-left quadrant, and a half-transparent bottom row.
Image testPicture(int width, int height, bool withAlpha) {
    std::vector<std::uint8_t> rgba(static_cast<std::size_t>(width) * height * 4);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint8_t* p = &rgba[(static_cast<std::size_t>(y) * width + x) * 4];
            bool left = x < width / 2, top = y < height / 2;
            p[0] = left && !top ? 220 : 20;
            p[1] = left && top ? 200 : 30;
            p[2] = left ? 10 : 230;
            p[3] = withAlpha && y == height - 1 ? 128 : 255;
        }
    }
    return Image::fromPixels(rgba.data(), width, height, static_cast<std::size_t>(width) * 4,
                             PixelFormat::RGBA, 2);
}

// A JPEG with an EXIF APP1 segment that carries one orientation tag.
std::vector<std::uint8_t> withOrientation(std::vector<std::uint8_t> jpeg, int orientation) {
    const std::uint8_t body[] = {'E',  'x',  'i', 'f', 0, 0,       // APP1 identifier
                                 'M',  'M',  0,   42,  0, 0, 0, 8, // big-endian TIFF
                                 0,    1,                          // one entry
                                 0x01, 0x12, 0,   3,   0, 0, 0, 1, 0, std::uint8_t(orientation),
                                 0,    0,             // SHORT
                                 0,    0,    0,   0}; // no next IFD
    std::vector<std::uint8_t> segment = {0xFF, 0xE1, 0, std::uint8_t(sizeof body + 2)};
    segment.insert(segment.end(), std::begin(body), std::end(body));
    jpeg.insert(jpeg.begin() + 2, segment.begin(), segment.end());
    return jpeg;
}

bool near(const std::optional<Color>& c, Color expected, double tolerance) {
    return c && c->isClose(expected, tolerance);
}

} // namespace

// PNG keeps size, scale and exact pixels, including partial alpha (which is
// stored premultiplied and must come back straight).
TEST(ImageCodec, png_round_trip_is_lossless) {
    Image picture = testPicture(40, 30, true);
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.size(), (Size{20, 15}));
    auto png = picture.pngData();
    ASSERT_GT(png.size(), 8u);
    EXPECT_EQ(Image::codecOf(png), ImageCodec::PNG);

    Image back = Image::fromData(png, 2);
    ASSERT_FALSE(back.isNull());
    EXPECT_EQ(back.pixelWidth(), 40);
    EXPECT_EQ(back.pixelHeight(), 30);
    EXPECT_EQ(back.size(), picture.size());
    EXPECT_EQ(back.pixels(PixelFormat::ARGBPremultiplied), picture.pixels(PixelFormat::ARGBPremultiplied));
    EXPECT_TRUE(near(back.pixelColor(0, 29), Color::fromBytes(220, 30, 10, 128), 1.5 / 255));
}

// An opaque picture is written without an alpha channel (smaller, faster) and
// still reads back opaque.
TEST(ImageCodec, opaque_png_reads_back_opaque) {
    Image picture = testPicture(16, 16, false);
    Image back = Image::fromPNG(picture.pngData());
    ASSERT_FALSE(back.isNull());
    EXPECT_TRUE(near(back.pixelColor(15, 15), Color::fromBytes(20, 30, 230), 0));
    EXPECT_EQ(back.pixelColor(3, 3)->alpha, 1);
}

// The byte orders the sampling operations read: ARGB premultiplied (alpha
// first) and RGBA straight.
TEST(ImageCodec, pixel_copies_follow_the_named_byte_order) {
    const std::uint8_t rgba[] = {200, 100, 50, 128, 0, 0, 255, 255};
    Image picture = Image::fromPixels(rgba, 2, 1, 8, PixelFormat::RGBA);
    auto argb = picture.pixels(PixelFormat::ARGBPremultiplied);
    EXPECT_EQ(argb[0], 128);
    EXPECT_NEAR(argb[1], 100, 1); // 200 * 128 / 255
    EXPECT_NEAR(argb[3], 25, 1);
    EXPECT_EQ((std::vector<std::uint8_t>(argb.begin() + 4, argb.end())),
              (std::vector<std::uint8_t>{255, 0, 0, 255}));
    auto straight = picture.pixels(PixelFormat::RGBA);
    EXPECT_NEAR(straight[0], 200, 2);
    EXPECT_NEAR(straight[2], 50, 2);
    EXPECT_EQ(straight[3], 128);
    auto premultiplied = picture.pixels(PixelFormat::RGBAPremultiplied);
    EXPECT_EQ(premultiplied[3], 128);
    EXPECT_EQ(premultiplied[0], argb[1]);
    EXPECT_FALSE(picture.pixelColor(2, 0).has_value()) << "outside the picture";
    EXPECT_FALSE(picture.pixelColor(-1, 0).has_value());
}

// JPEG is lossy: colours within tolerance; a lower quality gives fewer bytes.
TEST(ImageCodec, jpeg_round_trip_and_quality_affects_size) {
    Image picture = testPicture(64, 48, false);
    auto best = picture.jpegData(1.0);
    auto low = picture.jpegData(0.1);
    ASSERT_FALSE(best.empty());
    ASSERT_FALSE(low.empty());
    EXPECT_LT(low.size(), best.size());
    EXPECT_EQ(Image::codecOf(best), ImageCodec::JPEG);

    Image back = Image::fromData(best, 2);
    ASSERT_FALSE(back.isNull());
    EXPECT_EQ(back.size(), picture.size());
    EXPECT_TRUE(back.isOpaque());
    EXPECT_TRUE(near(back.pixelColor(5, 5), Color::fromBytes(20, 200, 10), 0.06));
    EXPECT_TRUE(near(back.pixelColor(50, 40), Color::fromBytes(20, 30, 230), 0.06));
    EXPECT_TRUE(near(back.pixelColor(5, 40), Color::fromBytes(220, 30, 10), 0.06));
}

// EXIF orientation 6 means the camera was turned: the stored left column is
// the upright top row. Orientation 3 turns the picture half round.
TEST(ImageCodec, jpeg_orientation_is_applied_when_decoding) {
    Image picture = testPicture(64, 32, false); // left half red/green, right half blue
    auto jpeg = picture.jpegData(1.0);

    Image turned = Image::fromJPEG(withOrientation(jpeg, 6));
    ASSERT_FALSE(turned.isNull());
    EXPECT_EQ(turned.pixelWidth(), 32);
    EXPECT_EQ(turned.pixelHeight(), 64);
    // Upright top = stored left half (green top quadrant lands at the top right).
    EXPECT_TRUE(near(turned.pixelColor(28, 4), Color::fromBytes(20, 200, 10), 0.08));
    EXPECT_TRUE(near(turned.pixelColor(4, 4), Color::fromBytes(220, 30, 10), 0.08));
    EXPECT_TRUE(near(turned.pixelColor(16, 60), Color::fromBytes(20, 30, 230), 0.08));

    Image halfRound = Image::fromJPEG(withOrientation(jpeg, 3));
    ASSERT_FALSE(halfRound.isNull());
    EXPECT_EQ(halfRound.pixelWidth(), 64);
    EXPECT_TRUE(near(halfRound.pixelColor(60, 28), Color::fromBytes(20, 200, 10), 0.08));
    EXPECT_TRUE(near(halfRound.pixelColor(4, 4), Color::fromBytes(20, 30, 230), 0.08));

    EXPECT_EQ(Image::fromJPEG(withOrientation(jpeg, 1)).pixelWidth(), 64);
}

// Scale only changes the size in points, never the pixels.
TEST(ImageCodec, scale_changes_points_not_pixels) {
    Image picture = testPicture(30, 60, false);
    Image tripled = picture.withScale(3);
    EXPECT_EQ(tripled.size(), (Size{10, 20}));
    EXPECT_EQ(tripled.pixelWidth(), 30);
    EXPECT_FALSE(tripled.isSameAs(picture));
    EXPECT_TRUE(picture.isSameAs(Image(picture)));
    EXPECT_EQ(Image::blank(4, 4, 0).scale(), 1) << "a zero scale falls back to 1";
}

TEST(ImageCodec, svg_renders_at_the_requested_size_and_scale) {
    std::string svg = R"(<svg xmlns="http://www.w3.org/2000/svg" width="10" height="10" viewBox="0 0 10 10">
        <rect x="0" y="0" width="5" height="10" fill="#ff0000"/></svg>)";
    std::span<const std::uint8_t> bytes(reinterpret_cast<const std::uint8_t*>(svg.data()), svg.size());
    Image icon = Image::fromSVG(bytes, Size{20, 20}, 2);
    ASSERT_FALSE(icon.isNull());
    EXPECT_EQ(icon.pixelWidth(), 40);
    EXPECT_EQ(icon.size(), (Size{20, 20}));
    EXPECT_TRUE(near(icon.pixelColor(5, 20), Color::redColor(), 0.01));
    EXPECT_EQ(icon.pixelColor(35, 20)->alpha, 0) << "unpainted area stays transparent";

    Image natural = Image::fromData(bytes);
    ASSERT_FALSE(natural.isNull());
    EXPECT_EQ(natural.size(), (Size{10, 10}));
}

// Bad input of every kind: no image and a reason, never a crash.
TEST(ImageCodec, bad_input_gives_no_image_and_a_reason) {
    Image picture = testPicture(64, 48, false);
    auto png = picture.pngData();
    auto jpeg = picture.jpegData(0.8);
    std::string error;

    EXPECT_TRUE(Image::fromData({}, 1, &error).isNull());
    EXPECT_FALSE(error.empty());

    const std::uint8_t garbage[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_TRUE(Image::fromData(garbage).isNull());

    for (std::size_t cut : {std::size_t(8), std::size_t(40), png.size() / 2, png.size() - 20}) {
        error.clear();
        EXPECT_TRUE(Image::fromPNG(std::span(png).first(cut), 1, &error).isNull()) << "PNG cut at " << cut;
        EXPECT_FALSE(error.empty());
    }
    for (std::size_t cut : {std::size_t(3), std::size_t(100), jpeg.size() / 2}) {
        error.clear();
        EXPECT_TRUE(Image::fromJPEG(std::span(jpeg).first(cut), 1, &error).isNull()) << "JPEG cut at " << cut;
        EXPECT_FALSE(error.empty());
    }
    auto corrupt = png;
    for (std::size_t i = 60; i < corrupt.size() - 12; i += 7)
        corrupt[i] ^= 0x5a;
    EXPECT_TRUE(Image::fromPNG(corrupt).isNull());

    const char* badSvg = "<svg xmlns='http://www.w3.org/2000/svg'><rect";
    EXPECT_TRUE(Image::fromSVG(std::span(reinterpret_cast<const std::uint8_t*>(badSvg), std::strlen(badSvg)),
                               Size{10, 10}, 1, &error)
                    .isNull());

    EXPECT_TRUE(Image::fromFile("/nonexistent/picture.png", 1, &error).isNull());
    EXPECT_TRUE(Image::fromFile(MORVANE_SOURCE_DIR, 1, &error).isNull()) << "a directory";
    EXPECT_TRUE(Image::blank(0, 10).isNull());
    EXPECT_TRUE(Image::blank(-3, -3).isNull());
    EXPECT_TRUE(Image().pngData().empty());
    EXPECT_TRUE(Image().jpegData(1).empty());
    EXPECT_EQ(Image().size(), Size{});
}

// A header that claims a huge picture is refused before pixels are allocated
// (the data behind it would never fill them anyway).
TEST(ImageCodec, huge_pictures_are_refused_before_allocating) {
    Image picture = testPicture(16, 16, false);
    auto png = picture.pngData();
    // IHDR width and height are the big-endian words at bytes 16 and 20; the
    // CRC that follows is not checked before the size is.
    auto huge = png;
    const std::uint8_t side[] = {0, 0, 0x4e, 0x20}; // 20000 x 20000 = 400 megapixels
    std::copy(std::begin(side), std::end(side), huge.begin() + 16);
    std::copy(std::begin(side), std::end(side), huge.begin() + 20);
    std::string error;
    EXPECT_TRUE(Image::fromPNG(huge, 1, &error).isNull());
    EXPECT_FALSE(error.empty());

    auto jpeg = picture.jpegData(0.5);
    // The SOF0 frame header holds height and width after its length and precision.
    for (std::size_t i = 2; i + 9 < jpeg.size(); ++i) {
        if (jpeg[i] == 0xFF && jpeg[i + 1] == 0xC0) {
            jpeg[i + 5] = 0xFF, jpeg[i + 6] = 0xF0, jpeg[i + 7] = 0xFF, jpeg[i + 8] = 0xF0;
            break;
        }
    }
    EXPECT_TRUE(Image::fromJPEG(jpeg, 1, &error).isNull());
    EXPECT_TRUE(Image::fromSVG({}, Size{20000, 20000}, 1).isNull());
    EXPECT_TRUE(Image::fromPixels(nullptr, 20000, 20000, 80000, PixelFormat::RGBA).isNull());
}
