#pragma once
// How a picture is placed in a rectangle: stretched to fill it, fitted inside
// it with its proportions kept (aspect fit), covering it with its proportions
// kept (aspect fill, overflowing on one axis), or centred at its own size.

#include <morvane/gfx/Geometry.h>

namespace morvane::gfx {

enum class ContentMode { ScaleToFill, AspectFit, AspectFill, Center };

// Where a picture of `content` size lands in `bounds` under the mode. Aspect
// modes centre the picture; an empty content size gives an empty rectangle.
Rect placeContent(Size content, const Rect& bounds, ContentMode mode);

} // namespace morvane::gfx
