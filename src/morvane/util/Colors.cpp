#include <morvane/util/Colors.h>

#include <cstdint>

namespace morvane {

namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// Reads a hexadecimal number the way a text scanner that skips "#" does: the
// "#" characters in front are passed over, an optional "0x" follows, then the
// digits up to the first other character. A number too large for 32 bits
// saturates. Nothing read gives 0.
std::uint32_t scanHex(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && text[i] == '#')
        ++i;
    if (i + 2 < text.size() && text[i] == '0' && (text[i + 1] == 'x' || text[i + 1] == 'X') &&
        hexDigit(text[i + 2]) >= 0)
        i += 2;
    std::uint64_t value = 0;
    for (; i < text.size(); ++i) {
        const int digit = hexDigit(text[i]);
        if (digit < 0) break;
        value = value * 16 + static_cast<std::uint64_t>(digit);
        if (value > 0xFFFFFFFFu) value = 0xFFFFFFFFu;
    }
    return static_cast<std::uint32_t>(value);
}

double takeIfPositive(double component, double d) {
    return component > 0 ? component - d : component;
}

} // namespace

gfx::Color Colors::hex(std::string_view text) {
    const std::uint32_t value = scanHex(text);
    return {((value >> 16) & 0xFF) / 255.0, ((value >> 8) & 0xFF) / 255.0, (value & 0xFF) / 255.0, 1.0};
}

gfx::Color Colors::hexDark(std::string_view text) {
    return darkerBy(hex(text), 0.15);
}

gfx::Color Colors::darker(const gfx::Color& color) {
    return darkerBy(color, 0.1);
}

gfx::Color Colors::darkerBy(const gfx::Color& color, double d) {
    return {takeIfPositive(color.red, d), takeIfPositive(color.green, d), takeIfPositive(color.blue, d), 1.0};
}

gfx::Color Colors::lightup(const gfx::Color& color, double d) {
    return {color.red + d, color.green + d, color.blue + d, 1.0};
}

} // namespace morvane
