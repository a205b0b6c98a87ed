// Corner colours of pictures: agreement of the four corners, closeness to
// white, the premultiplied ARGB bitmaps they are read from, bounds, and that
// reading them never copies the picture.
#include <morvane/gfx/Canvas.h>
#include <morvane/util/GColor.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <vector>

using morvane::GColor;
using morvane::gfx::Color;
using morvane::gfx::Image;
using morvane::gfx::PixelFormat;

// The largest single allocation through operator new on this thread while a
// probe is armed: a picture-sized buffer shows up here, whatever frees it.
// The replacement pairs malloc with free, which GCC cannot see through once
// it inlines them into the callers of new and delete.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif
namespace {
thread_local std::size_t* tLargestAllocation = nullptr;

void* counted(std::size_t size) noexcept {
    if (tLargestAllocation) *tLargestAllocation = std::max(*tLargestAllocation, size);
    return std::malloc(size ? size : 1);
}
} // namespace

// Every plain form is replaced, so all of this program's memory pairs malloc
// with free, also under a sanitizer that brings its own new and delete.
void* operator new(std::size_t size) {
    if (void* memory = counted(size)) return memory;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    if (void* memory = counted(size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return counted(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return counted(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

namespace {

struct Rgba {
    std::uint8_t r, g, b, a;
};

// A w x h picture filled with `fill`, with chosen pixels set.
struct Picture {
    int w, h;
    std::vector<std::uint8_t> bytes;
    Picture(int w_, int h_, Rgba fill) : w(w_), h(h_), bytes(static_cast<std::size_t>(w_ * h_ * 4)) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                set(x, y, fill);
    }
    Picture& set(int x, int y, Rgba c) {
        auto* p = &bytes[static_cast<std::size_t>((y * w + x) * 4)];
        p[0] = c.r, p[1] = c.g, p[2] = c.b, p[3] = c.a;
        return *this;
    }
    Image image() const {
        return Image::fromPixels(bytes.data(), w, h, static_cast<std::size_t>(w * 4), PixelFormat::RGBA);
    }
};

constexpr Rgba kWhite{255, 255, 255, 255};
constexpr Rgba kLightGrey{245, 245, 245, 255};
constexpr Rgba kGrey240{240, 240, 240, 255};
constexpr Rgba kRed{255, 0, 0, 255};
constexpr Rgba kBlue{0, 0, 255, 255};

TEST(GColor, corners_that_agree_give_the_first_sample) {
    // White, white, white and a light grey within 0.1 of it.
    Picture p(4, 3, kBlue);
    p.set(1, 1, kWhite).set(3, 0, kWhite).set(0, 2, kWhite).set(3, 2, kLightGrey);
    EXPECT_EQ(GColor::cornersColor(p.image()), Color(1, 1, 1, 1));
    EXPECT_TRUE(GColor::isAllCornerColorToWhite(p.image()));

    // Grey 240 agrees with white component by component (0.06 apart) but its
    // distance from white, 0.06 x sqrt(3), is over 0.1: the two tests differ.
    p.set(3, 2, kGrey240);
    EXPECT_EQ(GColor::cornersColor(p.image()), Color(1, 1, 1, 1));
    EXPECT_FALSE(GColor::isAllCornerColorToWhite(p.image()));
}

TEST(GColor, one_different_corner_gives_the_clear_colour) {
    for (auto [x, y] : {std::pair{1, 1}, {3, 0}, {0, 2}, {3, 2}}) {
        SCOPED_TRACE(testing::Message() << x << "," << y);
        Picture p(4, 3, kWhite);
        p.set(x, y, kRed);
        EXPECT_EQ(GColor::cornersColor(p.image()), Color::clearColor());
        EXPECT_FALSE(GColor::isAllCornerColorToWhite(p.image()));
    }
}

TEST(GColor, samples_are_premultiplied_argb_bytes) {
    // Half-transparent red reads as premultiplied: red about 0.5, alpha about 0.5.
    Picture p(2, 2, {255, 0, 0, 128});
    const auto c = GColor::getColorOfCornersForImage(p.image());
    ASSERT_TRUE(c);
    EXPECT_NEAR(c->red, 128 / 255.0, 1.5 / 255);
    EXPECT_NEAR(c->green, 0, 1e-9);
    EXPECT_NEAR(c->alpha, 128 / 255.0, 1e-9);
    // A transparent picture has clear corners, which are not white.
    Picture clear(3, 3, {255, 255, 255, 0});
    EXPECT_EQ(GColor::cornersColor(clear.image()), Color::clearColor());
    EXPECT_FALSE(GColor::isAllCornerColorToWhite(clear.image()));
}

TEST(GColor, bitmaps_are_blank_and_spell_pixels_alpha_first) {
    const auto picture = Picture(2, 1, kBlue).set(1, 0, kRed).image();
    auto bitmap = GColor::createARGBBitmapContextFromImage2(picture);
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->width(), 2);
    EXPECT_EQ(bitmap->height(), 1);
    EXPECT_EQ(bitmap->bytes(), (std::vector<std::uint8_t>(8, 0)));
    bitmap->canvas().drawImage(picture, morvane::gfx::Rect(0, 0, 2, 1));
    EXPECT_EQ(bitmap->bytes(), (std::vector<std::uint8_t>{255, 0, 0, 255, 255, 255, 0, 0}));

    // A picture at scale 2 still gets a bitmap of its pixel size.
    const auto retina = Image::fromPixels(Picture(4, 6, kRed).bytes.data(), 4, 6, 16, PixelFormat::RGBA, 2);
    bitmap = GColor::createARGBBitmapContextFromImage2(retina);
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->width(), 4);
    EXPECT_EQ(bitmap->height(), 6);
    EXPECT_EQ(GColor::cornersColor(retina), Color(1, 0, 0, 1));
}

// Reading the corners of a tall photo reads four pixels in place: no copy of
// the picture is made, however large it is (views do this on the main thread).
TEST(GColor, corner_colours_are_read_without_copying_the_picture) {
    const auto tall = Picture(1000, 4000, kLightGrey).set(999, 3999, kRed).image();
    std::size_t largest = 0;
    tLargestAllocation = &largest;
    const auto corners = GColor::cornersColor(tall);
    const auto first = GColor::getColorOfCornersForImage(tall);
    const bool white = GColor::isAllCornerColorToWhite(tall);
    tLargestAllocation = nullptr;
    EXPECT_EQ(corners, Color::clearColor()) << "the red corner disagrees";
    EXPECT_EQ(first, Color::fromBytes(245, 245, 245, 255));
    EXPECT_FALSE(white);
    EXPECT_LT(largest, std::size_t(64 * 1024)) << "a copy of the pixels was made";
}

TEST(GColor, pictures_too_small_to_sample_give_nothing) {
    for (auto [w, h] : {std::pair{1, 1}, {1, 5}, {5, 1}}) {
        SCOPED_TRACE(testing::Message() << w << "x" << h);
        const auto image = Picture(w, h, kWhite).image();
        EXPECT_FALSE(GColor::cornersColor(image));
        EXPECT_FALSE(GColor::getColorOfCornersForImage(image));
        EXPECT_FALSE(GColor::isAllCornerColorToWhite(image));
    }
    EXPECT_FALSE(GColor::cornersColor(Image()));
    EXPECT_FALSE(GColor::createARGBBitmapContextFromImage2(Image()));
}

TEST(GColor, getColorAtPoint_never_reads_outside_the_bytes) {
    const std::vector<std::uint8_t> data{10, 20, 30, 40, 50, 60, 70, 80};
    EXPECT_EQ(GColor::getColorAtPoint({1, 0}, data, 2), Color::fromBytes(60, 70, 80, 50));
    EXPECT_EQ(GColor::getColorAtPoint({1.9, 0.7}, data, 2), Color::fromBytes(60, 70, 80, 50));
    EXPECT_FALSE(GColor::getColorAtPoint({2, 0}, data, 2)); // past the row
    EXPECT_FALSE(GColor::getColorAtPoint({0, 1}, data, 2)); // past the bytes
    EXPECT_FALSE(GColor::getColorAtPoint({0, 0}, data, 0));
    EXPECT_FALSE(GColor::getColorAtPoint({1e300, 0}, data, 2));
    EXPECT_FALSE(GColor::getColorAtPoint({0, std::nan("")}, data, 2));
}

TEST(GColor, comparisons_need_both_colours) {
    const Color a(0.5, 0.5, 0.5, 1);
    EXPECT_TRUE(GColor::UIColorCompareWithThreshold(a, Color(0.6, 0.4, 0.5, 0.9), 0.1 + 1e-12));
    EXPECT_FALSE(GColor::UIColorCompareWithThreshold(a, Color(0.5, 0.5, 0.5, 0.8), 0.1));
    EXPECT_FALSE(GColor::UIColorCompareWithThreshold(a, std::nullopt, 1));

    EXPECT_TRUE(GColor::isColorCloseToWhite(Color(0.95, 0.95, 0.95), 0.1));
    // Each component within 0.1 is not enough: the distance adds them up.
    EXPECT_FALSE(GColor::isColorCloseToWhite(Color(0.92, 0.92, 0.92), 0.1));
    EXPECT_FALSE(GColor::isColorCloseToWhite(std::nullopt, 10));
}

} // namespace
