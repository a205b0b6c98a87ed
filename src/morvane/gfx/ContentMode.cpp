#include <morvane/gfx/ContentMode.h>

#include <algorithm>

namespace morvane::gfx {

Rect placeContent(Size content, const Rect& bounds, ContentMode mode) {
    if (content.isEmpty()) return Rect{bounds.midX(), bounds.midY(), 0, 0};
    switch (mode) {
    case ContentMode::ScaleToFill:
        return bounds;
    case ContentMode::Center:
        break;
    case ContentMode::AspectFit:
    case ContentMode::AspectFill: {
        double sx = bounds.width / content.width, sy = bounds.height / content.height;
        double factor = mode == ContentMode::AspectFit ? std::min(sx, sy) : std::max(sx, sy);
        content = content * factor;
        break;
    }
    }
    return Rect{bounds.midX() - content.width / 2, bounds.midY() - content.height / 2, content.width,
                content.height};
}

} // namespace morvane::gfx
