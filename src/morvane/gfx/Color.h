#pragma once
// A colour as red, green, blue and alpha doubles. Components are nominally
// 0...1 but are not clamped: colour arithmetic may go outside (darkening a
// dark colour gives negative components) and drawing clamps at the last moment.
// A grey colour keeps its grey level in red, green and blue alike.

#include <cstdint>

namespace morvane::gfx {

struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    constexpr Color() = default; // the clear colour
    constexpr Color(double r, double g, double b, double a = 1) : red(r), green(g), blue(b), alpha(a) {}

    static constexpr Color gray(double level, double a = 1) { return {level, level, level, a}; }
    // From 8-bit components (each divided by 255).
    static constexpr Color fromBytes(std::uint8_t r, std::uint8_t g, std::uint8_t b, std::uint8_t a = 255) {
        return {r / 255.0, g / 255.0, b / 255.0, a / 255.0};
    }

    // The platform's named colours, with its values (named as the platform names them).
    static constexpr Color clearColor() { return {0, 0, 0, 0}; }
    static constexpr Color blackColor() { return gray(0); }
    static constexpr Color whiteColor() { return gray(1); }
    static constexpr Color redColor() { return {1, 0, 0}; }
    static constexpr Color greenColor() { return {0, 1, 0}; }
    static constexpr Color blueColor() { return {0, 0, 1}; }
    static constexpr Color yellowColor() { return {1, 1, 0}; }
    static constexpr Color brownColor() { return {0.6, 0.4, 0.2}; }
    static constexpr Color grayColor() { return gray(0.5); }
    static constexpr Color lightGrayColor() { return gray(2.0 / 3.0); }
    static constexpr Color darkGrayColor() { return gray(1.0 / 3.0); }
    static constexpr Color lightTextColor() { return gray(1, 0.6); }

    constexpr bool operator==(const Color&) const = default;

    constexpr Color withAlpha(double a) const { return {red, green, blue, a}; }
    // Every component limited to 0...1.
    constexpr Color clamped() const { return {clamp01(red), clamp01(green), clamp01(blue), clamp01(alpha)}; }
    // Linear mix: 0 gives this colour, 1 the other.
    constexpr Color mixed(const Color& other, double t) const {
        return {red + (other.red - red) * t, green + (other.green - green) * t,
                blue + (other.blue - blue) * t, alpha + (other.alpha - alpha) * t};
    }
    // True when each of red, green, blue and alpha differs by at most the tolerance.
    constexpr bool isClose(const Color& other, double tolerance) const {
        return diff(red, other.red) <= tolerance && diff(green, other.green) <= tolerance &&
               diff(blue, other.blue) <= tolerance && diff(alpha, other.alpha) <= tolerance;
    }
    // A component as a byte, clamped and rounded.
    static constexpr std::uint8_t toByte(double component) {
        return static_cast<std::uint8_t>(clamp01(component) * 255.0 + 0.5);
    }

  private:
    static constexpr double clamp01(double v) { return v < 0 ? 0 : (v > 1 ? 1 : v); }
    static constexpr double diff(double p, double q) { return p > q ? p - q : q - p; }
};

} // namespace morvane::gfx
