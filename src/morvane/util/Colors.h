#pragma once
// Colors: colours from hexadecimal text and the colour arithmetic the lists
// and cards use to derive their shades from the owner's background, e.g.
// `Colors::darkerBy(Colors::hex("#1A2B3C"), 0.2)`.
//
// Results are not clamped: darkening a dark colour gives negative components
// and lightening a light one goes above 1, as the components expect; drawing
// clamps at the last moment.

#include <morvane/gfx/Color.h>

#include <string_view>

namespace morvane {

class Colors {
  public:
    Colors() = delete;

    // The colour of the hexadecimal number in the text (leading "#" skipped,
    // "0x" allowed): red from bits 16-23, green 8-15, blue 0-7, alpha 1.
    // Black when the text holds no hexadecimal number.
    static gfx::Color hex(std::string_view text);
    // hex, then 0.15 taken from every component above 0 (for dark backgrounds).
    static gfx::Color hexDark(std::string_view text);
    // darkerBy 0.1.
    static gfx::Color darker(const gfx::Color& color);
    // d taken from every red, green or blue component above 0; alpha 1.
    static gfx::Color darkerBy(const gfx::Color& color, double d);
    // d added to red, green and blue without limit; alpha 1.
    static gfx::Color lightup(const gfx::Color& color, double d);
};

} // namespace morvane
