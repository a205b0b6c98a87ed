#pragma once
// A soft shadow as a layer describes it: colour, opacity, blur radius and
// offset (the platform's defaults: black, invisible, radius 3, offset (0, -3)).

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>

namespace morvane::gfx {

struct Shadow {
    Color color = Color::blackColor();
    double opacity = 0;
    double radius = 3;
    Size offset{0, -3};

    bool isVisible() const { return opacity > 0 && color.alpha > 0; }
};

} // namespace morvane::gfx
