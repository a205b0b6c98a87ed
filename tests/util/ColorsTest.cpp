// Colours from hex texts and their darker and lighter shades, and the two
// frame helpers of ViewExtra.
#include <morvane/util/Colors.h>
#include <morvane/util/ViewExtra.h>

#include <gtest/gtest.h>

using morvane::Colors;
using morvane::ViewExtra;
using morvane::gfx::Color;
using morvane::gfx::Rect;

namespace {

void expectColor(const Color& c, double r, double g, double b, double a = 1) {
    EXPECT_NEAR(c.red, r, 1e-9);
    EXPECT_NEAR(c.green, g, 1e-9);
    EXPECT_NEAR(c.blue, b, 1e-9);
    EXPECT_NEAR(c.alpha, a, 1e-9);
}

// Reading stops at the first other character; eight digits drop the alpha
// byte; too many digits saturate instead of wrapping; no number is black.
TEST(Colors, hex_reads_the_number_with_or_without_hash) {
    expectColor(Colors::hex("#FF8000"), 1, 128 / 255.0, 0);
    expectColor(Colors::hex("FF8000"), 1, 128 / 255.0, 0);
    expectColor(Colors::hex("##1a2B3c"), 0x1A / 255.0, 0x2B / 255.0, 0x3C / 255.0);
    expectColor(Colors::hex("0x00FF00"), 0, 1, 0);
    expectColor(Colors::hex("#FF80zz"), 0, 0xFF / 255.0, 0x80 / 255.0);
    expectColor(Colors::hex("#80FF8000"), 1, 128 / 255.0, 0);
    expectColor(Colors::hex("FFFFFFFFFFFF000000"), 1, 1, 1);
    for (const char* text : {"", "#", "zzz", " #FF0000", "\xff\xfe"})
        expectColor(Colors::hex(text), 0, 0, 0);
}

TEST(Colors, darkening_only_touches_components_above_zero) {
    expectColor(Colors::hexDark("#000000"), 0, 0, 0);
    expectColor(Colors::hexDark("#FF0000"), 0.85, 0, 0);
    // A component below the step goes negative rather than stopping at 0.
    expectColor(Colors::hexDark("#0A0000"), 10 / 255.0 - 0.15, 0, 0);
    expectColor(Colors::darker(Color(0.5, 0, 1, 0.3)), 0.4, 0, 0.9);
    expectColor(Colors::darkerBy(Color::gray(0.6, 0.5), 0.2), 0.4, 0.4, 0.4);
    expectColor(Colors::darkerBy(Color(-0.1, 0.05, 0, 1), 0.1), -0.1, -0.05, 0);
    // lightup has no such condition and no limit.
    expectColor(Colors::lightup(Color(0.95, 0, -0.2, 0.2), 0.1), 1.05, 0.1, -0.1);
}

// yPos counts heights under ten and points from ten; advanceV moves a
// frame down by its height and the gap, keeping its size.
TEST(ViewExtra, positions_count_heights_under_ten_and_points_from_ten) {
    const Rect r(0, 10, 50, 20);
    EXPECT_DOUBLE_EQ(ViewExtra::yPos(r, 0.5), 40);
    EXPECT_DOUBLE_EQ(ViewExtra::yPos(r, 12), 42);
    EXPECT_DOUBLE_EQ(ViewExtra::yPos(r, -5), 25);
    // The switch from heights to points is at 10 exactly.
    EXPECT_DOUBLE_EQ(ViewExtra::yPos(r, 9.5), 30 + 190);
    EXPECT_DOUBLE_EQ(ViewExtra::yPos(r, 10), 40);
    EXPECT_EQ(ViewExtra::advanceV(Rect(5, 10, 50, 20), 4), Rect(5, 34, 50, 20));
    EXPECT_EQ(ViewExtra::advanceV(Rect(5, 10, 50, 20), -20), Rect(5, 10, 50, 20));
}

} // namespace
